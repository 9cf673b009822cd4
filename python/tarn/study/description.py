"""Studies that are described in YAML: reading them, and every mistake with its place."""

from __future__ import annotations

import csv
import os
import pathlib
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from typing import Any

import yaml

from tarn.study.designs import Design, FullFactorial, LatinHypercube, OneAtATime, Table
from tarn.study.errors import Fault, Place, StudyError, nearest
from tarn.study.factors import (SIGNIFICANT_DIGITS, Factor, LogNormal, Normal, Range, Triangular, Values,
                                 ValueSource)
from tarn.study.study import MODELS, Output, Study

MOST_BYTES = 64_000_000
"""A description, or a table of points, of more bytes is refused."""

TOP_KEYS = ("Study", "Description", "Rules", "Model", "Root", "Seed", "Factors", "Design", "Outputs", "Models")
FACTOR_KEYS = ("Parameter", "Units", "Base", "Digits", "Steps", "Values", "Range", "Logarithmic", "Whole Numbers", "Normal",
               "Log Normal", "Triangular")
SOURCES = ("Values", "Range", "Normal", "Log Normal", "Triangular")
DESIGNS = ("Full Factorial", "Latin Hypercube", "One at a Time", "Table")


def read_study(path: str | os.PathLike[str]) -> Study:
    """Reads a study from a file. Paths in it are relative to the folder of the file.

    Raises `StudyError` with all mistakes of the description. Some mistakes show only with the rules and the model, such
    as a pattern that meets nothing: `prepare` finds these.
    """
    reader = _Reader(os.fspath(path))
    study = reader.study()
    faults = reader.faults or study.faults()
    if faults:
        raise StudyError(sorted(faults, key=lambda fault: (fault.place.file, fault.place.line, fault.place.column)))
    return study


@dataclass
class _Entry:
    key: str
    key_node: Any
    node: Any


class _Reader:
    def __init__(self, path: str) -> None:
        self.path = path
        self.folder = pathlib.Path(path).parent
        self.faults: list[Fault] = []

    # Places and faults

    def place(self, node: Any) -> Place:
        mark = node.start_mark
        return Place(self.path, mark.line + 1, mark.column + 1)

    def fault(self, node: Any, message: str) -> None:
        self.faults.append(Fault(message, self.place(node)))

    # YAML

    def root(self) -> Any:
        text = _read_text(self.path, Place(self.path))
        try:
            node = yaml.compose(text, Loader=yaml.SafeLoader)
        except yaml.MarkedYAMLError as error:
            mark = error.problem_mark or error.context_mark
            place = Place(self.path, mark.line + 1, mark.column + 1) if mark else Place(self.path)
            raise StudyError([Fault(f"This is not YAML: {error.problem or error.context}.", place)]) from None
        except yaml.reader.ReaderError as error:
            line = text.count("\n", 0, error.position) + 1
            message = f"The character U+{ord(str(error.character)):04X} is not allowed in YAML."
            raise StudyError([Fault(message, Place(self.path, line))]) from None
        except RecursionError:
            raise StudyError([Fault("The description is nested too deeply.", Place(self.path))]) from None
        if node is None:
            raise StudyError([Fault("The description is empty.", Place(self.path))])
        if not isinstance(node, yaml.MappingNode):
            raise StudyError([Fault('A study begins with keys, such as "Study: 1".', self.place(node))])
        return node

    def entries(self, node: Any, what: str, known: Sequence[str] | None = None) -> dict[str, _Entry]:
        """The entries of a mapping by key. Without `known`, every key is allowed."""
        found: dict[str, _Entry] = {}
        if not isinstance(node, yaml.MappingNode):
            self.fault(node, f"{what} must be a mapping of keys and values.")
            return found
        for key_node, value in node.value:
            if not isinstance(key_node, yaml.ScalarNode):
                self.fault(key_node, f"A key of {what} must be a plain text.")
                continue
            key = key_node.value
            if key in found:
                self.fault(key_node, f'The key "{key}" is there twice.')
            elif known is not None and key not in known:
                self.fault(key_node, f'{what} has no key "{key}"{nearest(key, known)}')
            else:
                found[key] = _Entry(key, key_node, value)
        return found

    def text(self, node: Any, what: str) -> str | None:
        if isinstance(node, yaml.ScalarNode) and node.value != "":
            return str(node.value)
        self.fault(node, f"{what} must be a text.")
        return None

    def number(self, node: Any, what: str) -> float | None:
        if isinstance(node, yaml.ScalarNode):
            try:
                return float(node.value)
            except ValueError:
                pass
        hint = " Units go into the key Units." if isinstance(node, yaml.ScalarNode) and "[" in node.value else ""
        self.fault(node, f"{what} must be a number.{hint}")
        return None

    def whole(self, node: Any, what: str) -> int | None:
        if isinstance(node, yaml.ScalarNode):
            try:
                return int(node.value.replace("_", ""))
            except ValueError:
                pass
        self.fault(node, f"{what} must be a whole number.")
        return None

    def truth(self, node: Any, what: str) -> bool:
        known = {"yes": True, "true": True, "no": False, "false": False}
        if isinstance(node, yaml.ScalarNode) and node.value.lower() in known:
            return known[node.value.lower()]
        self.fault(node, f"{what} must be yes or no.")
        return False

    def texts(self, node: Any, what: str) -> list[str]:
        """One text, or a list of them."""
        nodes = node.value if isinstance(node, yaml.SequenceNode) else [node]
        if not nodes:
            self.fault(node, f"{what} must not be empty.")
        return [text for one in nodes if (text := self.text(one, what)) is not None]

    # The study

    def study(self) -> Study:
        root = self.root()
        entries = self.entries(root, "A study", TOP_KEYS)
        for key in ("Study", "Rules", "Factors", "Design"):
            if key not in entries and not any(key in fault.message for fault in self.faults):
                self.fault(root, f'The study needs the key "{key}".')
        if "Study" in entries and getattr(entries["Study"].node, "value", None) != "1":
            self.fault(entries["Study"].node, 'The form of the description must be 1, as in "Study: 1".')

        def get(key: str, read: Callable[[Any, str], Any], default: Any) -> Any:
            if key not in entries:
                return default
            found = read(entries[key].node, f'"{key}"')
            return default if found is None else found

        factors = list(self.factors(entries["Factors"].node)) if "Factors" in entries else []
        models = get("Models", self.text, MODELS[0])
        if models not in MODELS:
            self.fault(entries["Models"].node, f'"Models" must be one of {", ".join(MODELS)}{nearest(models, MODELS)}')
            models = MODELS[0]
        model = get("Model", self.text, None)
        return Study(
            rules=[str(self.folder / path) for path in get("Rules", self.texts, [])],
            model=None if model is None else str(self.folder / model),
            root=get("Root", self.text, None),
            factors=factors,
            design=self.design(entries["Design"].node) if "Design" in entries else FullFactorial(),
            seed=get("Seed", self.whole, 0),
            outputs=list(self.outputs(entries["Outputs"].node)) if "Outputs" in entries else [],
            models=models,
            place=self.place(root))

    def factors(self, node: Any) -> Iterator[Factor]:
        for name, entry in self.entries(node, '"Factors"').items():
            place, what = self.place(entry.key_node), f'Factor "{name}"'
            entries = self.entries(entry.node, what, FACTOR_KEYS)
            if "Parameter" not in entries:
                if isinstance(entry.node, yaml.MappingNode):
                    self.fault(entry.key_node, f'{what} needs the key "Parameter".')
                continue

            source = self.source(entry.key_node, what, entries)
            digits = self.whole(entries["Digits"].node, '"Digits"') if "Digits" in entries else SIGNIFICANT_DIGITS
            if digits is not None and not 1 <= digits <= SIGNIFICANT_DIGITS:
                self.fault(entries["Digits"].node, f'"Digits" must be between 1 and {SIGNIFICANT_DIGITS}.')
                digits = None
            if "Digits" in entries and not isinstance(source, (Range, Normal, LogNormal, Triangular, type(None))):
                self.fault(entries["Digits"].key_node, '"Digits" goes only with a range or a distribution.')

            def text(key: str) -> str | None:
                return self.text(entries[key].node, f'"{key}"') if key in entries else None

            yield Factor(name, self.texts(entries["Parameter"].node, '"Parameter"'),
                         source, text("Units") or "", text("Base"), digits or SIGNIFICANT_DIGITS, place)

    def source(self, factor: Any, what: str, entries: dict[str, _Entry]) -> ValueSource | None:
        given = [key for key in SOURCES if key in entries]
        if len(given) > 1:
            self.fault(entries[given[1]].key_node, f'{what} has both "{given[0]}" and "{given[1]}"; keep one of them.')
            return None
        for key, needs in (("Logarithmic", "Range"), ("Whole Numbers", "Range")):
            if key in entries and needs not in given:
                self.fault(entries[key].key_node, f'"{key}" goes only with "{needs}".')
        steps = self.whole(entries["Steps"].node, '"Steps"') if "Steps" in entries else None
        if "Steps" in entries and given in ([], ["Values"]):
            self.fault(entries["Steps"].key_node, '"Steps" goes only with a range or a distribution.')
        if not given:
            return None
        (key,) = given
        node = entries[key].node
        source = self.source_of(key, node, steps, entries)
        if source is not None and (fault := source.fault()):
            self.fault(node, fault)
            return None
        return source

    def source_of(self, key: str, node: Any, steps: int | None, entries: dict[str, _Entry]) -> ValueSource | None:
        if key == "Values":
            if not isinstance(node, yaml.SequenceNode):
                self.fault(node, '"Values" must be a list.')
                return None
            values = self.texts(node, f'"{key}"')
            return Values(values) if values else None
        if key == "Range":
            if not isinstance(node, yaml.SequenceNode) or len(node.value) != 2:
                self.fault(node, '"Range" must be a list of two numbers, such as [10, 20].')
                return None
            lowest, highest = (self.number(one, "The end of a range") for one in node.value)
            logarithmic, whole = (key in entries and self.truth(entries[key].node, f'"{key}"')
                                  for key in ("Logarithmic", "Whole Numbers"))
            if lowest is None or highest is None:
                return None
            return Range(lowest, highest, steps, logarithmic, whole)
        if key == "Triangular":
            numbers = self.numbers(node, key, ("Lowest", "Peak", "Highest"), ())
            return numbers and Triangular(**numbers, steps=steps)
        if key == "Normal":
            numbers = self.numbers(node, key, ("Mean", "Deviation"), ("Lowest", "Highest"))
            return numbers and Normal(**numbers, steps=steps)
        numbers = self.numbers(node, key, ("Median", "Spread"), ("Lowest", "Highest"))
        return numbers and LogNormal(**numbers, steps=steps)

    def numbers(self, node: Any, what: str, needed: Sequence[str], possible: Sequence[str]) -> Any:
        """Numbers by lower-case key; None after a fault."""
        before = len(self.faults)
        entries = self.entries(node, f'"{what}"', (*needed, *possible))
        for key in needed:
            if key not in entries and len(self.faults) == before:
                self.fault(node, f'"{what}" needs the key "{key}".')
        found = {key.lower(): self.number(entry.node, f'"{key}"') for key, entry in entries.items()}
        return found if len(self.faults) == before else None

    def design(self, node: Any) -> Design:
        place = self.place(node)
        if isinstance(node, yaml.ScalarNode):
            if node.value == "Full Factorial":
                return FullFactorial(place)
            if node.value == "One at a Time":
                return OneAtATime(place)
            hint = {"Latin Hypercube": '; write "Latin Hypercube: 100", with the number of points.',
                    "Table": '; write "Table: FILE.csv".'}.get(node.value, nearest(node.value, DESIGNS))
            self.fault(node, f'There is no design "{node.value}"{hint}')
            return FullFactorial(place)
        entries = self.entries(node, '"Design"', ("Latin Hypercube", "Table"))
        if len(entries) != 1:
            if entries or not self.faults:
                self.fault(node, '"Design" must name one design.')
            return FullFactorial(place)
        (entry,) = entries.values()
        if entry.key == "Latin Hypercube":
            number = self.whole(entry.node, "The number of points")
            return LatinHypercube(1 if number is None else number, self.place(entry.node))
        return self.table(entry.node)

    def table(self, node: Any) -> Table:
        place = self.place(node)
        if isinstance(node, yaml.ScalarNode):
            return read_table(self.folder / node.value, place)
        if not isinstance(node, yaml.SequenceNode):
            self.fault(node, '"Table" must be the name of a CSV file, or a list of points.')
            return Table((), (), place)
        rows = [self.entries(one, "A point of the table") for one in node.value]
        columns = list(dict.fromkeys(key for row in rows for key in row))
        cells = [[self._cell(row, column) for column in columns] for row in rows]
        return Table(columns, cells, place, [self.place(one) for one in node.value])

    def _cell(self, row: dict[str, _Entry], column: str) -> str | None:
        if column not in row:
            return None
        node = row[column].node
        if isinstance(node, yaml.ScalarNode):
            return node.value or None
        self.fault(node, f'The value of "{column}" must be a text.')
        return None

    def outputs(self, node: Any) -> Iterator[Output]:
        if isinstance(node, yaml.MappingNode):
            for name, entry in self.entries(node, '"Outputs"').items():
                if (path := self.text(entry.node, "An output")) is not None:
                    yield Output(path, name, self.place(entry.node))
        elif isinstance(node, yaml.SequenceNode):
            for one in node.value:
                if (path := self.text(one, "An output")) is not None:
                    yield Output(path, "", self.place(one))
        else:
            self.fault(node, '"Outputs" must be a list of parameters, or a mapping of names to parameters.')


def read_table(path: str | os.PathLike[str], place: Place = Place()) -> Table:
    """Reads the points of a table from a CSV file. Its first line has the names of the factors."""
    shown = os.fspath(path)
    text = _read_text(shown, place)
    rows = csv.reader(text.splitlines(keepends=True), strict=True)
    cells, places = [], []
    try:
        for row in rows:
            if row:
                cells.append([cell.strip() for cell in row])
                places.append(Place(shown, rows.line_num))
    except csv.Error as error:
        raise StudyError([Fault(f"This is not CSV: {error}.", Place(shown, rows.line_num))]) from None
    if not cells:
        raise StudyError([Fault("The table is empty; its first line must name the factors.", Place(shown))])
    return Table(cells[0], cells[1:], places[0], places[1:])


def _read_text(path: str, place: Place) -> str:
    try:
        if os.path.getsize(path) > MOST_BYTES:
            raise StudyError([Fault(f"{path} has more than {MOST_BYTES:,} bytes.", place)])
        data = pathlib.Path(path).read_bytes()
    except OSError as error:
        # A description is named by the message alone, a table also by the place that asks for it.
        raise StudyError([Fault(f"{path} cannot be read: {error.strerror}.",
                                place if place.line else Place())]) from None
    try:
        return data.decode("utf-8-sig")
    except UnicodeDecodeError as error:
        line = data.count(b"\n", 0, error.start) + 1
        raise StudyError([Fault("This is not UTF-8 text.", Place(path, line))]) from None
