"""Rule files: loading them, and what is wrong with them."""

from __future__ import annotations

import functools
import hashlib
import os
import threading
from collections.abc import Iterable, Mapping

from tarn import _checks, _tarn
from tarn.records import Diagnostic

__all__ = ["Rules", "lint_rules", "lint_text", "load_rules", "parse_rules"]

AnyPath = str | os.PathLike[str]


class Rules:
    """A rule database. It does not change, and any number of threads and sessions may use it at once.

    `load_rules` and `parse_rules` make it. It can be pickled: its texts go along and are parsed where they arrive. A
    process that gets the same rules several times parses them once.
    """

    __slots__ = ("_database", "_sources", "__weakref__")

    def __init__(self, sources: Iterable[tuple[str, bytes]]) -> None:
        """Rules from the names and texts of rule files, in the order in which they count. Raises `RuleError`."""
        self._sources = tuple((str(name), _bytes(text)) for name, text in sources)
        self._database = _tarn.Rules(list(self._sources))

    @property
    def sources(self) -> tuple[tuple[str, bytes], ...]:
        """The name and the text of each rule file, in the order in which they count."""
        return self._sources

    @property
    def root_types(self) -> tuple[str, ...]:
        """The types of the objects at the root of a model that the rules look at."""
        return tuple(self._database.root_types())

    @property
    def digest(self) -> str:
        """A hash of the texts, in hexadecimal digits: the same for the same texts in the same order."""
        whole = hashlib.sha256()
        for name, text in self._sources:
            for part in (name.encode("utf-8", "surrogateescape"), text):
                whole.update(len(part).to_bytes(8, "little"))
                whole.update(part)
        return whole.hexdigest()

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Rules) and self._sources == other._sources

    def __hash__(self) -> int:
        return hash(self._sources)

    def __repr__(self) -> str:
        return f"<tarn.Rules of {', '.join(name for name, _ in self._sources)}>"

    def __reduce__(self) -> tuple[object, ...]:
        return _shared_rules, (self._sources,)


_sharing = threading.Lock()


def _shared_rules(sources: tuple[tuple[str, bytes], ...]) -> Rules:
    """The rules of these texts: parsed once, as long as this process does not work with too many others in turn."""
    with _sharing:
        return _last_rules(sources)


@functools.lru_cache(maxsize=4)
def _last_rules(sources: tuple[tuple[str, bytes], ...]) -> Rules:
    return Rules(sources)


def load_rules(*paths: AnyPath) -> Rules:
    """Loads rules from files and folders, in the order given. A folder means its files `*.rules.yaml`, by name.

    Raises `RuleError` with all errors of all files; a file that cannot be read is one of them.

    >>> rules = load_rules("examples/heating/rules")
    >>> rules.root_types
    ('Plant',)
    """
    return Rules(_tarn.read_rule_files([_checks.path(path) for path in paths]))


def parse_rules(text: str | bytes | Mapping[str, str | bytes], source: str = "<rules>") -> Rules:
    """Loads rules from the text of one rule file, or from several texts by the names of their files.

    Messages name a single text `source`. Raises `RuleError`.

    >>> rules = parse_rules("Rule Database: 1\\nPertinent Roots: [Case]\\nObjects:\\n  /Case:\\n")
    >>> rules.root_types
    ('Case',)
    """
    texts = text if isinstance(text, Mapping) else {source: text}
    return Rules((name, _bytes(one)) for name, one in texts.items())


def lint_rules(*paths: AnyPath) -> tuple[Diagnostic, ...]:
    """Everything that is wrong or doubtful in rule files: errors, warnings and notes. Empty when nothing was found."""
    return _tarn.lint_files([_checks.path(path) for path in paths])


def lint_text(text: str | bytes, source: str = "<rules>") -> tuple[Diagnostic, ...]:
    """The same for the text of one rule file.

    >>> for one in lint_text("Rule Database: 1\\nObject:\\n"):
    ...     print(one.severity, one.code, one.message)
    error unknown-key unknown key 'Object' in a rule file; did you mean 'Objects'?
    """
    return _tarn.lint_text(_bytes(text), source)


def _bytes(text: str | bytes) -> bytes:
    if isinstance(text, str):
        return text.encode("utf-8", "surrogateescape")
    if not isinstance(text, (bytes, bytearray, memoryview)):
        raise TypeError(f"a text must be str or bytes, not {type(text).__name__}")
    return bytes(text)


def _database_of(rules: Rules) -> _tarn.Rules:
    """The rules as the compiled module has them. Raises `TypeError`."""
    if not isinstance(rules, Rules):
        raise TypeError(f"rules must be a tarn.Rules, which load_rules makes, not {type(rules).__name__}")
    return rules._database
