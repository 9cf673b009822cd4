"""The exceptions of the package. All are a `tarn.Error`."""

from __future__ import annotations

from collections.abc import Iterable

from tarn.diagnostics import Diagnostic, ModelFault
from tarn.edits import Item, Refused

__all__ = ["EditRefused", "Error", "ModelError", "OpenError", "RuleError", "SaveError", "UnknownItem"]


class Error(Exception):
    """The base of all exceptions of the package."""


class RuleError(Error):
    """Rule files, or an expression, contain errors. The message shows each with its place and marks under the problem.

    >>> import tarn
    >>> try:
    ...     tarn.parse_rules("Rule Database: 1\\nObject:\\n", source="pump.rules.yaml")
    ... except tarn.RuleError as error:
    ...     for one in error.diagnostics:
    ...         print(one.source, one.line, one.column, one.code)
    ...     print(error)
    pump.rules.yaml 2 1 unknown-key
    pump.rules.yaml:2:1: error: unknown key 'Object' in a rule file; did you mean 'Objects'?
        2 | Object:
          | ^~~~~~
    """

    diagnostics: tuple[Diagnostic, ...]
    """Never empty; in the order of files and of positions in them."""

    def __init__(self, message: str, diagnostics: Iterable[Diagnostic]) -> None:
        super().__init__(message, tuple(diagnostics))
        self.diagnostics = tuple(diagnostics)

    def __str__(self) -> str:
        return str(self.args[0])


class ModelError(Error):
    """A model text has malformed lines, so nothing of it was read. The message has a line for each.

    >>> import tarn
    >>> try:
    ...     tarn.Model("/Case/Title = Fan\\n/Case/Domain:\\n", source="fan.tdf").state
    ... except tarn.ModelError as error:
    ...     print(error)
    ...     print([(fault.line, fault.column) for fault in error.faults])
    fan.tdf:2:1: neither "=" in the line nor "/" at its end; write path/name=value, or path/ for an object
    [(2, 1)]
    """

    source: str
    """The name of the text."""
    faults: tuple[ModelFault, ...]
    """The malformed lines, at most 1,000."""
    fault_count: int
    """The number of all malformed lines."""

    def __init__(self, source: str, faults: Iterable[ModelFault], fault_count: int) -> None:
        self.source = source
        self.faults = tuple(faults)
        self.fault_count = fault_count
        super().__init__(source, self.faults, fault_count)

    def __str__(self) -> str:
        lines = [f"{self.source}:{one.line}:{one.column}: {one.reason}" for one in self.faults]
        more = self.fault_count - len(self.faults)
        if more > 0:
            lines.append(f"{self.source}: {more} further malformed lines")
        return "\n".join(lines)


class OpenError(Error):
    """A session could not be opened: there is no object to edit, or it is not clear which one."""

    fault: str
    """"root-unknown", "no-root", "several-roots", "root-unreadable", "model-unreadable" or "rule-failed"."""
    candidates: tuple[str, ...]
    """The paths of objects that could be edited."""

    def __init__(self, message: str, fault: str, candidates: Iterable[str]) -> None:
        self.fault = fault
        self.candidates = tuple(candidates)
        super().__init__(message, fault, self.candidates)

    def __str__(self) -> str:
        message = str(self.args[0])
        return f"{message} Give it as root: {', '.join(self.candidates)}." if self.candidates else message


class SaveError(Error):
    """A model could not be saved. The file is as it was."""

    fault: str
    """"file-changed", "not-writable", "write-failed" or "no-file"."""

    def __init__(self, message: str, fault: str) -> None:
        self.fault = fault
        super().__init__(message, fault)

    def __str__(self) -> str:
        return str(self.args[0])


class EditRefused(Error):
    """Edits were refused, and the caller wanted them to be applied. Raised by `EditResult.or_raise` only."""

    refused: Refused

    def __init__(self, refused: Refused) -> None:
        self.refused = refused
        super().__init__(refused)

    def __str__(self) -> str:
        return str(self.refused)


class UnknownItem(Error, LookupError):
    """There is no item of this path."""

    refused: Refused
    """Why, and in `nearest` the item that was probably meant."""

    def __init__(self, refused: Refused) -> None:
        self.refused = refused
        super().__init__(refused)

    @property
    def nearest(self) -> Item | None:
        """The item that was probably meant."""
        edit = self.refused.nearest
        return None if edit is None else Item(edit.path, edit.name or None)

    def __str__(self) -> str:
        hint = f" Did you mean {self.nearest}?" if self.nearest else ""
        return self.refused.sentence + hint
