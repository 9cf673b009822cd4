"""The faults of rule files and of model texts, with their places."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Literal

from tarn._sentences import Sentence, sentence_field

__all__ = ["Diagnostic", "DiagnosticFix", "DiagnosticNote", "ModelFault", "Place"]


@dataclass(frozen=True, slots=True)
class Place:
    """Where something is written. Lines and columns count from 1, columns in characters.

    >>> str(Place("flow.rules.yaml", 34, 20))
    'flow.rules.yaml:34:20'
    """

    file: str
    line: int
    column: int

    def __str__(self) -> str:
        return f"{self.file}:{self.line}:{self.column}"


@dataclass(frozen=True, slots=True)
class ModelFault:
    """A malformed line of a model text. Lines and columns count from 1, columns in characters."""

    line: int
    column: int
    reason: str


@dataclass(frozen=True, slots=True)
class DiagnosticFix:
    """A change of a rule file that removes a problem: replace the characters from the first position up to the second
    by `text`."""

    title: str
    source: str
    line: int
    column: int
    end_line: int
    end_column: int
    text: str


@dataclass(frozen=True, slots=True)
class DiagnosticNote:
    """A further position that belongs to a problem."""

    source: str
    line: int
    column: int
    end_line: int
    end_column: int
    message: str
    source_line: str
    source_column: int


@dataclass(frozen=True, slots=True)
class Diagnostic(Sentence):
    """A problem in a rule file. `str` shows the line with marks under the problem.

    Lines and columns count from 1, columns in characters. All four numbers are 0 for a problem of a whole file.
    """

    source: str
    line: int
    column: int
    end_line: int
    end_column: int
    severity: Literal["error", "warning", "note"]
    code: str
    message: str
    source_line: str
    source_column: int
    notes: tuple[DiagnosticNote, ...]
    affected: int
    fix: DiagnosticFix | None
    _text: str = sentence_field()
