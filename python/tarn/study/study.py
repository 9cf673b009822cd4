"""A study: a base model, its rules, what is varied and how, and what is of interest."""

from __future__ import annotations

import os
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, field
from functools import cached_property
from typing import cast

from tarn.study.designs import Design, Points
from tarn.study.errors import Fault, Place, StudyError
from tarn.study.factors import Factor

MODELS = ("sound", "as asked", "none")
"""Which models are written: those without errors; of these, only those in which every value is as it was asked for; or
no models."""

COLUMNS = ("point", "status", "as asked", "refused", "waiting", "adjusted", "converted", "changed", "errors", "warnings",
           "reasons", "findings", "model file")
"""The columns of the table that are not factors or outputs."""

MOST_FACTORS = 1_000


@dataclass(frozen=True)
class Output:
    """A parameter of interest: its path, or a pattern; each parameter of a pattern gets a column of its own. `name` is
    the name of the column, by default the path."""

    path: str
    name: str = ""
    place: Place = field(default=Place(), compare=False, repr=False)


@dataclass
class Study:
    """A design of experiments over a set-up.

    `rules` are files and folders with rules, `model` is a file with the base model, and `root` the object that is
    edited, by default the only one that the rules look at. Without a model, the study begins with an empty one.
    """

    rules: Sequence[str | os.PathLike[str]] | str | os.PathLike[str]
    model: str | os.PathLike[str] | None
    factors: Sequence[Factor]
    design: Design
    seed: int = 0
    root: str | None = None
    outputs: Sequence[Output] | Sequence[str] | Mapping[str, str] | str = ()
    models: str = MODELS[0]
    place: Place = field(default=Place(), compare=False, repr=False)

    def __post_init__(self) -> None:
        given = [self.rules] if isinstance(self.rules, (str, os.PathLike)) else self.rules
        self.rules = [os.fspath(path) for path in given]
        if self.model is not None:
            self.model = os.fspath(self.model)
        if isinstance(self.factors, Factor):
            self.factors = [self.factors]
        for factor in self.factors:
            if not isinstance(factor, Factor):
                raise TypeError(f"a factor must be a tarn.study.Factor, not {type(factor).__name__}")
        if isinstance(self.design, type) or not hasattr(self.design, "faults"):
            raise TypeError("design must be a design, such as FullFactorial() or LatinHypercube(100), not "
                            f"{self.design!r}")
        if not isinstance(self.seed, int):
            raise TypeError(f"seed must be a whole number, not {type(self.seed).__name__}")
        if isinstance(self.outputs, str):
            self.outputs = [self.outputs]
        if isinstance(self.outputs, Mapping):
            self.outputs = [Output(path, name) for name, path in self.outputs.items()]
        self.outputs = [Output(one) if isinstance(one, str) else one for one in self.outputs]
        for output in self.outputs:
            if not isinstance(output, Output):
                raise TypeError(f"an output must be the path of a parameter, not {type(output).__name__}")

    @property
    def rule_paths(self) -> list[str]:
        """The files and folders with rules."""
        return cast(list[str], self.rules)

    @property
    def columns(self) -> list[Output]:
        """The outputs."""
        return cast(list[Output], self.outputs)

    def faults(self) -> list[Fault]:
        """All mistakes that show without rules and model."""
        faults: list[Fault] = []
        if not self.rules:
            faults.append(Fault("The study has no rules.", self.place))
        if not self.factors:
            faults.append(Fault("The study has no factors.", self.place))
        if len(self.factors) > MOST_FACTORS:
            faults.append(Fault(f"The study has {len(self.factors):,} factors, and at most {MOST_FACTORS:,} are possible.",
                                self.place))
        if self.models not in MODELS:
            faults.append(Fault(f'"models" must be one of {", ".join(MODELS)}.', self.place))
        faults += self._faults_of_names()
        for factor in self.factors:
            if factor.values is not None and (fault := factor.source().fault()):
                faults.append(Fault(fault, factor.place))
            for path in factor.parameters:
                faults += _faults_of_path(path, factor.place)
        for output in self.columns:
            faults += _faults_of_path(output.path, output.place)
        return faults + self.design.faults(self.factors)

    def _faults_of_names(self) -> list[Fault]:
        faults: list[Fault] = []
        taken: set[str] = set(COLUMNS)
        named = [(factor.name, factor.place) for factor in self.factors]
        named += [(output.name, output.place) for output in self.columns if output.name]
        for name, place in named:
            if name in COLUMNS:
                faults.append(Fault(f'The table has a column "{name}" of its own; choose another name.', place))
            elif name in taken:
                faults.append(Fault(f'The name "{name}" is there twice.', place))
            elif not name or any(ord(character) < 32 for character in name):
                faults.append(Fault("The name of a column must not be empty or have control characters.", place))
            taken.add(name)
        return faults

    def check(self) -> None:
        """Raises `StudyError` if there are mistakes that show without rules and model."""
        if faults := self.faults():
            raise StudyError(faults)

    @cached_property
    def points(self) -> Points:
        """The points of the design. Call `check` first."""
        return self.design.points(self.factors, self.seed)


def _faults_of_path(path: str, place: Place) -> list[Fault]:
    """A path or a pattern begins with "/" and ends with the name of a parameter."""
    objects, _, name = path.rpartition("/")
    if not path.startswith("/") or not objects or not name:
        return [Fault(f'"{path}" is not the path of a parameter, such as "/Case/Domain:rotor/Motion".', place)]
    if "*" in name:
        return [Fault(f'"{path}" has "*" in the name of the parameter; only names of objects can have it.', place)]
    for component in objects[1:].split("/"):
        kind, _, _ = component.partition(":")
        if not kind:
            return [Fault(f'"{path}" has an object without a type.', place)]
        if "*" in kind:
            return [Fault(f'"{path}" has "*" in the type of an object; write "TYPE:*".', place)]
    return []
