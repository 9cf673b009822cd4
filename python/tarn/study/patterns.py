"""Patterns: paths of parameters with "*" in names of objects."""

from __future__ import annotations

import re
from functools import lru_cache


def split_parameter(path: str) -> tuple[str, str]:
    """The path of the object and the name of the parameter."""
    objects, _, name = path.rpartition("/")
    return objects, name


def matches(pattern: str, path: str) -> bool:
    """Whether the path of an object meets a pattern. "*" means any part of one name, also an empty one."""
    return _expression(pattern).fullmatch(path) is not None


@lru_cache(maxsize=1000)
def _expression(pattern: str) -> re.Pattern[str]:
    return re.compile("/".join(_component(one) for one in pattern.split("/")), re.DOTALL)


def _component(component: str) -> str:
    kind, colon, name = component.partition(":")
    # An object whose name is its type has no name in its path.
    alone = f"|{re.escape(kind)}" if name == "*" else ""
    parts = "[^/]*".join(re.escape(part) for part in name.split("*"))
    return f"(?:{re.escape(kind)}{colon}{parts}{alone})" if colon else re.escape(kind)
