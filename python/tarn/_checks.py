"""Arguments of the wrong kind: errors that say what is expected, before they reach the compiled module."""

from __future__ import annotations

import numbers
import os
from typing import Any


def text(value: Any, what: str) -> str:
    """The value, if it is a text. Raises `TypeError`."""
    if not isinstance(value, str):
        raise TypeError(f"{what} must be a text, not {type(value).__name__}")
    return value


def path(value: Any) -> str:
    """The path as a text. Raises `TypeError`."""
    return text(os.fspath(value), "a path")


def whole(value: Any, what: str, least: int = 0) -> int:
    """The value, if it is a whole number of at least `least`. Raises `TypeError` and `ValueError`."""
    if not isinstance(value, numbers.Integral) or isinstance(value, bool):
        raise TypeError(f"{what} must be a whole number, not {type(value).__name__}")
    number = int(value)
    if not least <= number < 2**63:
        raise ValueError(f"{what} is {number}; give at least {least}" if number < least else f"{what} is too large")
    return number


def several(values: Any, what: str) -> Any:
    """The values, if they are not one text, which would be taken as a list of letters. Raises `TypeError`."""
    if isinstance(values, (str, bytes)):
        raise TypeError(f"{what} must be a list, not one text; write [{values!r}]")
    return values
