"""Making points: the edits of a point in a session, what became of them, the review and the model text.

`prepare` opens a study once: it resolves patterns in the base model and returns a `PreparedStudy`, which has all that is
needed to make points and can be pickled. A `PointMaker` makes the points in one process or thread.
"""

from __future__ import annotations

import hashlib
from collections.abc import Iterable, Sequence
from dataclasses import dataclass, field
from functools import cached_property
from typing import Any

import tarn
from tarn import _tarn
from tarn.study.designs import Point
from tarn.study.errors import Fault, Place, StudyError, nearest
from tarn.study.patterns import matches, split_parameter
from tarn.study.study import Study

VERSION = _tarn.version

MOST_SENTENCES = 20
"""A row of the table lists at most so many reasons, and so many findings. Their numbers are always complete."""

MOST_TARGETS = 100_000
"""A factor that sets more parameters is refused."""


@dataclass(frozen=True)
class PreparedStudy:
    """A study whose patterns are resolved: for each factor the parameters that it sets, and the output columns."""

    rules: tarn.Rules
    model: tarn.Model
    root: str | None
    targets: tuple[tuple[tarn.Item, ...], ...]
    outputs: tuple[tarn.Item, ...]
    output_counts: tuple[int, ...]
    """How many of the outputs belong to each output of the study."""
    models: str

    @property
    def rules_digest(self) -> str:
        """A hash of the texts of the rules, wherever they are."""
        return digest_of(*(text for _, text in self.rules.sources))

    @cached_property
    def digest(self) -> str:
        """A hash of everything that decides what becomes of a point."""
        parts = [self.rules_digest, self.model.content, self.root, self.models]
        parts += [tuple((item.path, item.name) for item in items) for items in (*self.targets, self.outputs)]
        return digest_of(*parts)

    def __getstate__(self) -> dict[str, Any]:
        return {name: value for name, value in self.__dict__.items() if name != "digest"}


def digest_of(*parts: object) -> str:
    whole = hashlib.sha256()
    for part in parts:
        data = part if isinstance(part, bytes) else repr(part).encode("utf-8", "surrogateescape")
        whole.update(len(data).to_bytes(8, "little"))
        whole.update(data)
    return whole.hexdigest()


@dataclass
class MadePoint:
    """A point that was made, and what became of it."""

    number: int
    status: str = "failed"
    """"sound", "unsound" if the review finds errors, or "failed" if the point could not be made at all."""
    as_asked: bool = False
    """Every value of the point is in force, if need be in other units."""
    refused: int = 0
    waiting: int = 0
    adjusted: int = 0
    converted: int = 0
    changed: int = 0
    """Other values that came, went or changed, because the rules wanted it."""
    errors: int = 0
    warnings: int = 0
    reasons: list[str] = field(default_factory=list)
    findings: list[str] = field(default_factory=list)
    outputs: list[str | None] = field(default_factory=list)
    model: bytes | None = None


def prepare(study: Study) -> PreparedStudy:
    """Loads the rules and the base model and resolves all patterns. Raises `StudyError`."""
    study.check()
    try:
        rules = tarn.load_rules(*study.rule_paths)
        model = tarn.Model.from_dict({}) if study.model is None else tarn.Model.read(study.model)
        session = tarn.Session(rules, model, root=study.root)
    except OSError as error:
        raise StudyError([Fault(f"{error.filename} cannot be read: {error.strerror}.", study.place)]) from None
    except (tarn.RuleError, tarn.ModelError) as error:  # their messages have places of their own
        raise StudyError(str(error)) from None
    except tarn.Error as error:
        raise StudyError([Fault(str(error), study.place)]) from None
    present = _objects_of(session)
    faults: list[Fault] = []
    targets = []
    for factor in study.factors:
        items = [item for path in factor.parameters for item in _resolved(session, present, path, factor.place, faults)]
        if len(items) > MOST_TARGETS:
            faults.append(Fault(f'Factor "{factor.name}" sets {len(items):,} parameters, and at most {MOST_TARGETS:,} are '
                                'possible.', factor.place))
        targets.append(tuple(dict.fromkeys(items)))
    faults += _shared_targets(study, targets)
    outputs = [_resolved(session, present, output.path, output.place, faults) for output in study.columns]
    if faults:
        raise StudyError(faults)
    return PreparedStudy(rules, model, study.root, tuple(targets), tuple(item for items in outputs for item in items),
                         tuple(len(items) for items in outputs), study.models)


def _objects_of(session: tarn.Session) -> list[str]:
    """The paths of all objects of the base state, those that only hold others included."""
    found: dict[str, None] = {}
    for path in session.result().state:
        parts = path.split("/")
        for end in range(2, len(parts) + 1):
            found["/".join(parts[:end])] = None
    return list(found)


def _resolved(session: tarn.Session, present: Sequence[str], path: str, place: Place,
              faults: list[Fault]) -> list[tarn.Item]:
    """The parameters that a path or a pattern means."""
    objects, name = split_parameter(path)
    if "*" not in objects:
        try:
            item = session.item(path)
        except tarn.UnknownItem as error:
            faults.append(Fault(str(error), place))
            return []
        if not item.is_param:
            faults.append(Fault(f'"{path}" is an object, not a parameter.', place))
            return []
        return [item]
    met = [one for one in present if matches(objects, one)]
    if not met:
        faults.append(Fault(f'The pattern "{path}" meets no object of the base model.', place))
        return []
    found = [tarn.Item(one, name) for one in met if name in session.param_names(one)]
    if not found:
        known = dict.fromkeys(param for one in met for param in session.param_names(one))
        faults.append(Fault(f'None of the objects that the pattern "{path}" meets can have a parameter '
                            f'"{name}"{nearest(name, known)}', place))
    return found


def _shared_targets(study: Study, targets: Sequence[Iterable[tarn.Item]]) -> list[Fault]:
    owner: dict[tarn.Item, str] = {}
    faults = []
    for factor, items in zip(study.factors, targets):
        both = next((item for item in items if item in owner), None)
        if both is not None:
            faults.append(Fault(f'Both factor "{owner[both]}" and factor "{factor.name}" set {both.text}.', factor.place))
        for item in items:
            owner.setdefault(item, factor.name)
    return faults


class PointMaker:
    """Makes the points of a prepared study, one at a time. One thread at a time may use it."""

    def __init__(self, prepared: PreparedStudy) -> None:
        self.prepared = prepared
        self.session = tarn.Session(prepared.rules, prepared.model, root=prepared.root)
        self._steps = 0

    def make(self, number: int, point: Point) -> MadePoint:
        """Makes a point. The session is afterwards as it was before, so no point depends on another one."""
        try:
            return self._made(number, point)
        except tarn.Error as error:
            return MadePoint(number, reasons=[str(error)])
        finally:
            self._undo()

    def _edit(self, *edits: tarn.Edit) -> tarn.EditResult:
        result = self.session.edit(edits)
        self._steps += result.applied
        return result

    def _undo(self) -> None:
        while self._steps:
            self.session.undo()
            self._steps -= 1

    def _made(self, number: int, point: Point) -> MadePoint:
        edits = [tarn.Edit.set_param(item.path, item.name, value)
                 for items, value in zip(self.prepared.targets, point) if value is not None
                 for item in items if item.name is not None]
        made = MadePoint(number, "sound")
        accepted = self._apply(edits, made)
        self._compare(accepted, made)
        review = self.session.review()
        made.errors, made.warnings = len(review.errors), len(review.warnings)
        made.findings = _some([str(one) for one in review])
        if made.errors:
            made.status = "unsound"
        made.as_asked = not (made.refused or made.waiting or made.adjusted)
        made.outputs = [self._value(item) for item in self.prepared.outputs]
        made.reasons = _some(made.reasons)
        wanted = {"sound": True, "as asked": made.as_asked, "none": False}[self.prepared.models]
        if wanted and made.status == "sound":
            made.model = self.session.text.encode("utf-8", "surrogateescape")
        return made

    def _apply(self, edits: Sequence[tarn.Edit], made: MadePoint) -> Sequence[tuple[tarn.Edit, str]]:
        """Makes the edits as one step, without those that are refused. Returns each with the value that was set.

        An edit can be refused because another one of the point is not made yet. So refused edits are tried again after
        the others, until no more of them can be made.
        """
        if not edits:
            return []
        result = self._edit(*edits)
        if result.refused is not None:
            edits = self._possible(edits, made)
            if not edits:
                return []
            result = self._edit(*edits).or_raise()
        made.converted = len(result.conversions)
        asked = {(edit.path, edit.name) for edit in edits}
        made.changed = sum((one.path, one.name) not in asked for one in result.effect.values)
        return [(edit, after.value) for edit, after in zip(edits, result.made)]

    def _possible(self, edits: Sequence[tarn.Edit], made: MadePoint) -> list[tarn.Edit]:
        """The edits that can be made one after the other, in that order. The session is left as it was."""
        possible: list[tarn.Edit] = []
        open_edits = list(edits)
        while True:
            refused = []
            for edit in open_edits:
                result = self._edit(edit)
                if result.refused is None:
                    possible.append(edit)
                else:
                    refused.append((edit, str(result.refused.sentence)))
            if not refused or len(refused) == len(open_edits):
                break
            open_edits = [edit for edit, _ in refused]
        self._undo()
        made.refused = len(refused)
        made.reasons += [f"refused: {sentence}" for _, sentence in refused]
        return possible

    def _compare(self, accepted: Sequence[tuple[tarn.Edit, str]], made: MadePoint) -> None:
        """Finds the values that are not in force as they were set."""
        for edit, value in accepted:
            record = self.session.param(tarn.Item(edit.path, edit.name))
            if record.waiting is not None:
                made.waiting += 1
                made.reasons.append(f"waiting: {record.waiting}")
            elif record.value != value:
                made.adjusted += 1
                made.reasons.append(f'adjusted: {record.item.text} is "{record.value or ""}" instead of "{value}" '
                                    f"({record.origin})")

    def _value(self, item: tarn.Item) -> str | None:
        try:
            record = self.session.param(item)
        except tarn.UnknownItem:  # its object went away
            return None
        return record.value if record.present else None


def _some(sentences: list[str]) -> list[str]:
    more = len(sentences) - MOST_SENTENCES
    return sentences if more <= 0 else [*sentences[:MOST_SENTENCES], f"and {more} more"]
