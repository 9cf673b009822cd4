"""Refuses subinterpreters. The compiled module belongs to the interpreter that loads it first; another one of the same
process would share its classes, or wait for ever while it loads the module."""

from __future__ import annotations

import importlib
from typing import Any


def _subinterpreters() -> Any:
    """The module of Python that knows interpreters, whose name depends on the version of Python. None without one."""
    for name in ("_xxsubinterpreters", "_interpreters"):
        try:
            return importlib.import_module(name)
        except ImportError:
            pass
    return None


known = _subinterpreters()
if known is not None and known.get_current() != known.get_main():
    raise ImportError("the package tarn cannot be used in a subinterpreter; use a process or a thread")
