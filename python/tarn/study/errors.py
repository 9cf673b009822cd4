"""Mistakes in the description of a study, each with its place."""

from __future__ import annotations

import difflib
from collections.abc import Iterable, Sequence
from dataclasses import dataclass


@dataclass(frozen=True)
class Place:
    """A place in a file. Line and column count from 1; 0 where they are not known."""

    file: str = ""
    line: int = 0
    column: int = 0

    def __str__(self) -> str:
        parts = [self.file, *(str(number) for number in (self.line, self.column) if number)]
        return ":".join(part for part in parts if part)


@dataclass(frozen=True)
class Fault:
    """One mistake."""

    message: str
    place: Place = Place()

    def __str__(self) -> str:
        where = str(self.place)
        return f"{where}: {self.message}" if where else self.message


class StudyError(Exception):
    """A study cannot be read, or cannot be run. `faults` has every mistake that was found."""

    def __init__(self, faults: Sequence[Fault] | str) -> None:
        self.faults: list[Fault] = [Fault(faults)] if isinstance(faults, str) else list(faults)
        super().__init__("\n".join(str(fault) for fault in self.faults))

    def __reduce__(self) -> tuple[type[StudyError], tuple[list[Fault]]]:
        return (type(self), (self.faults,))


def nearest(name: str, known: Iterable[str]) -> str:
    """The end of a sentence about an unknown name: the known name that was probably meant, if one is near."""
    names = list(known)
    folded = {one.casefold(): one for one in names}
    if name.casefold() in folded:
        match = [folded[name.casefold()]]
    else:
        match = difflib.get_close_matches(name, names, n=1, cutoff=0.6)
    return f'; did you mean "{match[0]}"?' if match else "."
