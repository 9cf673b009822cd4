"""Designs: which points a study consists of.

A point is a tuple with one value for each factor, as text with units; None leaves the parameter as the model has it.
Points have numbers from 0. A design gives any point by its number and by nothing else, so it does not matter in which
order, in which batches and on how many machines points are made.
"""

from __future__ import annotations

import hashlib
import math
import random
from array import array
from collections.abc import Sequence
from dataclasses import dataclass, field
from typing import Protocol

from tarn.model import value_text
from tarn.study.errors import Fault, Place, nearest
from tarn.study.factors import Factor

MOST_POINTS = 10_000_000
"""A study with more points is refused."""

Point = tuple[str | None, ...]


class Points(Protocol):
    """The points of a design for certain factors."""

    def __len__(self) -> int: ...

    def __getitem__(self, number: int) -> Point: ...


class Design(Protocol):
    """A way to choose points."""

    def faults(self, factors: Sequence[Factor]) -> list[Fault]:
        """All mistakes, the limit on the number of points included."""

    def points(self, factors: Sequence[Factor], seed: int) -> Points:
        """The points. Call it only if there are no faults."""

    def describe(self) -> str:
        """The design in a few words."""


def _missing_values(factors: Sequence[Factor]) -> list[Fault]:
    return [Fault(f'Factor "{factor.name}" has no values.', factor.place) for factor in factors if factor.values is None]


def _missing_levels(factors: Sequence[Factor], design: str) -> list[Fault]:
    faults = _missing_values(factors)
    for factor in factors:
        if factor.values is not None and not factor.source().fault() and not factor.levels():
            faults.append(Fault(f'Factor "{factor.name}" needs "Steps", the number of its levels, in a {design} design.',
                                factor.place))
    return faults


def _too_many(number: int, place: Place, remedy: str) -> list[Fault]:
    if number <= MOST_POINTS:
        return []
    return [Fault(f"The design has {number:,} points, and at most {MOST_POINTS:,} are possible.{remedy}", place)]


@dataclass(frozen=True)
class FullFactorial:
    """Every combination of the levels of all factors. The last factor changes fastest."""

    place: Place = field(default=Place(), compare=False, repr=False)

    def faults(self, factors: Sequence[Factor]) -> list[Fault]:
        faults = _missing_levels(factors, "full factorial")
        if faults or any(factor.source().fault() for factor in factors):
            return faults
        number = math.prod(len(factor.levels() or ()) for factor in factors)
        return _too_many(number, self.place, " Use fewer levels or factors, or a Latin hypercube.")

    def points(self, factors: Sequence[Factor], seed: int) -> Points:
        return _Grid([factor.levels() or () for factor in factors])

    def describe(self) -> str:
        return "full factorial"


@dataclass(frozen=True)
class _Grid:
    levels: Sequence[Sequence[str]]

    def __len__(self) -> int:
        return math.prod(len(one) for one in self.levels)

    def __getitem__(self, number: int) -> Point:
        _require(self, number)
        values: list[str] = []
        for one in reversed(self.levels):
            number, index = divmod(number, len(one))
            values.append(one[index])
        return tuple(reversed(values))


@dataclass(frozen=True)
class LatinHypercube:
    """`number` points. The values of each factor are divided into as many parts of equal probability as there are
    points, and each part has exactly one point. Within its part a value is random."""

    number: int
    place: Place = field(default=Place(), compare=False, repr=False)

    def faults(self, factors: Sequence[Factor]) -> list[Fault]:
        faults = _missing_values(factors)
        if not isinstance(self.number, int) or isinstance(self.number, bool):
            return [*faults, Fault(f"The number of points must be a whole number, not {self.number!r}.", self.place)]
        if self.number < 1:
            faults.append(Fault("A Latin hypercube needs at least 1 point.", self.place))
        return faults + _too_many(self.number, self.place, "")

    def points(self, factors: Sequence[Factor], seed: int) -> Points:
        return _Hypercube(factors, self.number, seed)

    def describe(self) -> str:
        return "Latin hypercube"


class _Hypercube:
    def __init__(self, factors: Sequence[Factor], number: int, seed: int) -> None:
        self.factors, self.number = factors, number
        # A factor has the same values whatever other factors there are: its numbers come from its own name.
        self.parts = [_parts(number, seed, factor.name) for factor in factors]

    def __len__(self) -> int:
        return self.number

    def __getitem__(self, number: int) -> Point:
        _require(self, number)
        return tuple(factor.at(order[number], self.number, within[number])
                     for factor, (order, within) in zip(self.factors, self.parts))


def _parts(number: int, seed: int, name: str) -> tuple[array[int], array[float]]:
    """A random order of the parts of a factor, and a random place within the part of each point."""
    source = random.Random(int.from_bytes(hashlib.sha256(f"{seed}\n{name}".encode()).digest(), "big"))
    order = array("l", range(number))
    # Written out, because the order of `random.shuffle` is not promised to stay the same.
    for last in range(number - 1, 0, -1):
        other = int(source.random() * (last + 1))
        order[last], order[other] = order[other], order[last]
    return order, array("d", (source.random() for _ in range(number)))


@dataclass(frozen=True)
class OneAtATime:
    """The base first, then each level of each factor while all others have their base."""

    place: Place = field(default=Place(), compare=False, repr=False)

    def faults(self, factors: Sequence[Factor]) -> list[Fault]:
        faults = _missing_levels(factors, "one-at-a-time")
        if faults or any(factor.source().fault() for factor in factors):
            return faults
        return _too_many(1 + sum(len(factor.levels() or ()) for factor in factors), self.place, " Use fewer levels.")

    def points(self, factors: Sequence[Factor], seed: int) -> Points:
        base = tuple(None if factor.base is None else factor.text(value_text(factor.base)) for factor in factors)
        rows: list[Point] = [base]
        for index, factor in enumerate(factors):
            # The level that is the base is the first point already.
            rows += [(*base[:index], value, *base[index + 1:]) for value in factor.levels() or () if value != base[index]]
        return _Rows(rows)

    def describe(self) -> str:
        return "one at a time"


@dataclass(frozen=True)
class Table:
    """Points that are listed: one row for each point, one column for each factor. An empty cell leaves the parameter
    as the model has it."""

    columns: Sequence[str]
    rows: Sequence[Sequence[object]]
    place: Place = field(default=Place(), compare=False, repr=False)
    row_places: Sequence[Place] = field(default=(), compare=False, repr=False)

    def faults(self, factors: Sequence[Factor]) -> list[Fault]:
        names = [factor.name for factor in factors]
        faults = [Fault(f'The column "{column}" has the name of no factor{nearest(column, names)}', self.place)
                  for column in self.columns if column not in names]
        faults += [Fault(f'The column "{column}" is there twice.', self.place)
                   for column in sorted(set(self.columns)) if list(self.columns).count(column) > 1]
        faults += [Fault(f'The table has no column "{factor.name}".', factor.place)
                   for factor in factors if factor.name not in self.columns]
        faults += [Fault(f'Factor "{factor.name}" has values of its own, but the points come from a table.', factor.place)
                   for factor in factors if factor.values is not None]
        if not self.rows:
            faults.append(Fault("The table has no rows.", self.place))
        for number, row in enumerate(self.rows):
            if len(row) != len(self.columns):
                place = self.row_places[number] if number < len(self.row_places) else self.place
                cells = "1 cell" if len(row) == 1 else f"{len(row)} cells"
                faults.append(Fault(f"Row {number + 1} of the table has {cells} instead of {len(self.columns)}.", place))
        return faults + _too_many(len(self.rows), self.place, "")

    def points(self, factors: Sequence[Factor], seed: int) -> Points:
        position = {name: index for index, name in enumerate(self.columns)}
        return _Rows([tuple(_cell(factor, row[position[factor.name]]) for factor in factors) for row in self.rows])

    def describe(self) -> str:
        return "table"


def _cell(factor: Factor, cell: object) -> str | None:
    if cell is None or cell == "":
        return None
    return factor.text(value_text(cell))


@dataclass(frozen=True)
class _Rows:
    rows: Sequence[Point]

    def __len__(self) -> int:
        return len(self.rows)

    def __getitem__(self, number: int) -> Point:
        _require(self, number)
        return self.rows[number]


def _require(points: Points, number: int) -> None:
    if not 0 <= number < len(points):
        raise IndexError(f"there is no point {number}; the design has {len(points)}")
