"""The answers of a session and of a review, as plain values.

A record is a frozen dataclass: it can be compared, pickled and turned into dictionaries with `dataclasses.asdict`. Lists
are tuples. An optional value that is empty is None. Codes are words such as "not-available": they keep their meaning from
release to release, while sentences get better. `str(record)` is the sentence of a record, where it has one.

Paths are those of the library: "/Case/Domain:rotor" is an object, and "" is the root of the model. Values are texts as the
model has them: "0.025 [m]", "yes", "Water,Oil".
"""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass, field
from typing import Literal

from tarn._html import Table, table
from tarn._sentences import Sentence, sentence_field
from tarn.diagnostics import Diagnostic, DiagnosticFix, DiagnosticNote, ModelFault, Place
from tarn.edits import Edit, EditKind, Item, Refused
from tarn.errors import EditRefused

__all__ = [
    "BoundsChange", "ChildTypeRecord", "ChoicesChange", "Conversion", "Diagnostic", "DiagnosticFix", "DiagnosticNote",
    "Difference", "Edit", "EditKind", "EditResult", "Effect", "Expected", "Explanation", "ExplanationNode",
    "ExplanationResult", "Finding", "Findings", "FollowedReference", "Found", "Goal", "HowResult", "Item", "ModelFault",
    "ModelRead", "ObjectRecord", "OwnValue", "ParamAllowedValues", "ParamRecord", "Place", "Proof", "ProofNode",
    "ProofRead", "ProofRule", "Refused", "Step", "TextChange", "TryResult", "ValueChange", "Waiting", "WaitingChange",
    "Way",
]

@dataclass(frozen=True, slots=True)
class ParamAllowedValues:
    """The values that a parameter can have now. Without `has_allowed_values` any value will do."""

    has_allowed_values: bool
    has_subset: bool
    """Only `subset_values` are on offer."""
    allows_any_value: bool
    """The list is advice: any other value is allowed as well."""
    allowed_values: tuple[str, ...]
    subset_values: tuple[str, ...]

    @property
    def on_offer(self) -> tuple[str, ...]:
        """The values on offer: the subset where there is one."""
        return self.subset_values if self.has_subset else self.allowed_values


@dataclass(frozen=True, slots=True)
class Waiting(Sentence):
    """Something that was asked for, is kept, and is not in force. It comes into force when the rules allow it."""

    item: Item
    value: str | None
    reason: Literal["not-available", "object-not-present", "switched-off", "value-not-allowed", "overridden",
                    "not-in-the-rules"]
    rule_reason: str
    """The `Reason` of the rule; "" when it gives none."""
    missing_object: str
    """The object that must be present first, for "object-not-present"."""
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class ValueChange(Sentence):
    """A parameter that came (`before` is None), went (`after` is None), or has another value."""

    path: str
    name: str
    before: str | None
    after: str | None
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class ChoicesChange(Sentence):
    """A parameter whose allowed values, or whose subset of them, changed."""

    path: str
    name: str
    before: ParamAllowedValues
    after: ParamAllowedValues
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class BoundsChange(Sentence):
    """A parameter whose bounds changed: lower and upper bound with their units. "" means no bound."""

    path: str
    name: str
    before: tuple[str, str]
    after: tuple[str, str]
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class TextChange(Sentence):
    """A parameter whose default or quantity type changed. "" means that it has none."""

    path: str
    name: str
    before: str
    after: str
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class WaitingChange(Sentence):
    """A request that began to wait, waits no longer, or waits for another reason."""

    item: Item
    before: Waiting | None
    after: Waiting | None
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class Effect:
    """The net effect of one or several edits: how the state after them differs from the state before.

    Each tuple is sorted by path and name. `len(effect)` is the number of all entries.
    """

    values: tuple[ValueChange, ...]
    choices: tuple[ChoicesChange, ...]
    bounds: tuple[BoundsChange, ...]
    defaults: tuple[TextChange, ...]
    quantities: tuple[TextChange, ...]
    offers_gained: tuple[Item, ...]
    """Items that the user can switch on now and could not before."""
    offers_lost: tuple[Item, ...]
    objects_created: tuple[str, ...]
    """The paths of all objects that came."""
    objects_deleted: tuple[str, ...]
    waiting: tuple[WaitingChange, ...]
    _sentences: tuple[str, ...] = field(default=(), repr=False, compare=False)

    @property
    def sentences(self) -> tuple[str, ...]:
        """A sentence for each entry, in the order of the fields."""
        return self._sentences

    def __len__(self) -> int:
        return (len(self.values) + len(self.choices) + len(self.bounds) + len(self.defaults) + len(self.quantities)
                + len(self.offers_gained) + len(self.offers_lost) + len(self.objects_created)
                + len(self.objects_deleted) + len(self.waiting))

    def __str__(self) -> str:
        return "\n".join(self._sentences)

    def _repr_html_(self) -> str:
        return table(None, [[sentence] for sentence in self._sentences] or [["Nothing changes."]])


@dataclass(frozen=True, slots=True)
class Conversion(Sentence):
    """A number that was rewritten on entry, because its units are not those of the parameter."""

    index: int
    """The index of the edit among those that were given, from 0."""
    item: Item
    from_: str
    """As it was given: "25 mm"."""
    to: str
    """As it was set: "0.025 [m]"."""
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class FollowedReference(Sentence):
    """A value that followed the renaming of an object whose name it held."""

    item: Item
    before: str
    after: str
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class EditResult(Sentence):
    """The outcome of one or several edits. They are applied as one, or refused as one."""

    refused: Refused | None
    step: int
    """The number of the step in the history, from 1. 0 when the edits were refused or only tried."""
    made: tuple[Edit, ...]
    """The edits as they were made: with converted values, and with those that a renaming caused."""
    conversions: tuple[Conversion, ...]
    followed: tuple[FollowedReference, ...]
    effect: Effect
    _text: str = sentence_field()

    @property
    def applied(self) -> bool:
        return self.refused is None

    def or_raise(self) -> EditResult:
        """This result, if the edits were applied. Raises `EditRefused` otherwise."""
        if self.refused is not None:
            raise EditRefused(self.refused)
        return self

    def _repr_html_(self) -> str:
        rows = [[sentence] for sentence in self.effect.sentences]
        rows += [[str(conversion)] for conversion in self.conversions]
        return table(None, rows, caption=str(self))


@dataclass(frozen=True, slots=True)
class TryResult:
    """The outcome that edits would have, and the findings that would come and go."""

    result: EditResult
    findings_gained: tuple[Finding, ...]
    findings_lost: tuple[Finding, ...]

    @property
    def applied(self) -> bool:
        """Whether the edits would be applied."""
        return self.result.applied

    @property
    def refused(self) -> Refused | None:
        return self.result.refused

    @property
    def effect(self) -> Effect:
        return self.result.effect

    def __str__(self) -> str:
        lines = [str(self.result)]
        lines += [f"+ {finding}" for finding in self.findings_gained]
        lines += [f"- {finding}" for finding in self.findings_lost]
        return "\n".join(lines)

    def _repr_html_(self) -> str:
        return self.result._repr_html_() + _findings_table(self.findings_gained, "Findings that would come") \
            + _findings_table(self.findings_lost, "Findings that would go")


@dataclass(frozen=True, slots=True)
class Expected:
    """The remedy of a finding: values, bounds and names that would be right. None and () where nothing is known."""

    allowed: tuple[str, ...]
    lower_bound: str | None
    upper_bound: str | None
    lower_bound_excluded: bool
    upper_bound_excluded: bool
    units: tuple[str, ...]
    minimum_count: int | None
    maximum_count: int | None
    pattern: str | None
    near_match: str | None
    value: str | None
    """A text that can replace the whole value."""


@dataclass(frozen=True, slots=True)
class Finding:
    """One thing that is wrong with a model. docs/findings.md lists the codes."""

    code: str
    kind: Literal["model", "dependency", "global", "unknown-name", "value", "count", "object-check", "history", "beta"]
    severity: Literal["error", "warning", "note"]
    path: str
    name: str | None
    type: str | None
    check: str | None
    value: str | None
    wrong: tuple[str, ...]
    """The parts that are wrong: items of a list value, or names of children."""
    expected: Expected
    places: tuple[Place, ...]
    """Where the item is written in the text of the model. Empty for a model that is not text."""
    rule: Place | None
    message: str

    def __str__(self) -> str:
        return self.message


def _findings_table(findings: tuple[Finding, ...], caption: str | None) -> str:
    if not findings and caption is not None:
        return ""
    rows = [[one.severity, Item(one.path, one.name).text, one.message, str(one.places[0]) if one.places else ""]
            for one in findings]
    return table(["Severity", "Item", "Finding", "Place"], rows, caption=caption)


@dataclass(frozen=True, slots=True)
class Findings:
    """Everything that is wrong with one model. Iterates over `list`; true when there is an error or a warning."""

    list: tuple[Finding, ...]
    """The errors and warnings."""
    beta: tuple[Finding, ...]
    """Remarks of the rule authors about items that are not released yet. These are not findings."""
    status: int
    """The result of the validator, a bit set."""
    missing_roots: tuple[str, ...]
    """Roots that were asked for and that the model does not have. If there is one, nothing was judged."""
    objects_passed_over: int
    """Number of objects at the root of the model that the rules do not look at."""

    @property
    def errors(self) -> tuple[Finding, ...]:
        return tuple(one for one in self.list if one.severity == "error")

    @property
    def warnings(self) -> tuple[Finding, ...]:
        return tuple(one for one in self.list if one.severity == "warning")

    def __iter__(self) -> Iterator[Finding]:
        return iter(self.list)

    def __len__(self) -> int:
        return len(self.list)

    def __str__(self) -> str:
        return "\n".join(f"{one.severity}: {one.message}" for one in self.list)

    def _repr_html_(self) -> str:
        if not self.list:
            return table(None, [["Nothing is wrong."]])
        return _findings_table(self.list, None)


@dataclass(frozen=True, slots=True)
class ParamRecord(Sentence):
    """Everything about one parameter of one object, as it is now."""

    path: str
    name: str
    description: str
    group: str
    label: str
    advanced: bool
    type: Literal["Integer", "Integer List", "Logical", "Logical List", "Real", "Real List", "String", "String List"]
    required: bool
    present: bool
    offered: bool
    """The parameter is not present, and the user can switch it on or give it a value."""
    reason: str
    """The `Reason` of the rule, when the parameter is not available."""
    decision: bool | None
    """The user's decision: switched on (True), switched off (False), or none."""
    value: str | None
    """The value when the parameter is present. "" means that it still needs one."""
    origin: Literal["user", "model", "default", "override", "former override", "completed list", "none"]
    step: int
    """The step that gave the value, for the origin "user"; otherwise 0."""
    waiting: Waiting | None
    value_in_model: str | None
    default_value: str | None
    lower_bound: str | None
    upper_bound: str | None
    lower_bound_excluded: bool
    upper_bound_excluded: bool
    out_of_bounds: str
    """How the value is outside of its bounds: "is below its lower bound 0 [m]". "" if it is inside, or if there is none.
    Such a value is in force, and a review has a finding about it."""
    quantity_type: str
    units: tuple[str, ...]
    """The units of the quantity type. The first unit is taken when a value has none."""
    allowed: ParamAllowedValues
    complete_list_required: bool
    rule: Place | None
    _text: str = sentence_field()

    @property
    def available(self) -> bool:
        """The parameter is present or on offer."""
        return self.present or self.offered

    @property
    def item(self) -> Item:
        return Item(self.path, self.name)

    def _repr_html_(self) -> str:
        rows = Table()
        rows.add("Description", self.description)
        rows.add("Type", " ".join(filter(None, [self.type, self.quantity_type and f"({self.quantity_type})"])))
        rows.add("State", "present" if self.present else "on offer" if self.offered else "not available")
        rows.add("Required", "yes" if self.required else "")
        rows.add("Reason", self.reason)
        rows.add("Value", self.value)
        rows.add("Out of bounds", self.out_of_bounds)
        rows.add("Origin", self.origin if self.present else "")
        rows.add("Waiting", str(self.waiting) if self.waiting else "")
        rows.add("Value in the model", self.value_in_model)
        rows.add("Default", self.default_value)
        rows.add("Lower bound", _bound(self.lower_bound, self.lower_bound_excluded))
        rows.add("Upper bound", _bound(self.upper_bound, self.upper_bound_excluded))
        rows.add("Units", ", ".join(self.units))
        rows.add("Values on offer", _some(self.allowed.on_offer))
        rows.add("Rule", str(self.rule) if self.rule else "")
        return rows.html(self.item.text)


def _bound(bound: str | None, excluded: bool) -> str:
    return "" if bound is None else f"{bound}, excluded" if excluded else bound


def _some(values: tuple[str, ...], most: int = 50) -> str:
    more = f", and {len(values) - most} more" if len(values) > most else ""
    return ", ".join(values[:most]) + more


@dataclass(frozen=True, slots=True)
class ObjectRecord(Sentence):
    """Everything about one object, as it is now."""

    path: str
    type: str
    name: str
    """The name; that of an object without a name is its type. "" for the root of the model."""
    description: str
    group: str
    label: str
    advanced: bool
    required: bool
    singleton: bool
    """There is at most one object of this type in its parent, without a name."""
    editable: bool
    """False when the object is taken from the model as it is."""
    present: bool
    offered: bool
    available: bool
    reason: str
    decision: bool | None
    waiting: Waiting | None
    in_model: bool
    params: int
    """The number of its present parameters."""
    children: int
    """The number of its present children."""
    rule: Place | None
    content: Place | None
    _text: str = sentence_field()

    @property
    def item(self) -> Item:
        return Item(self.path)

    def _repr_html_(self) -> str:
        rows = Table()
        rows.add("Description", self.description)
        rows.add("Type", self.type)
        rows.add("State", "present" if self.present else "on offer" if self.offered else "not present")
        rows.add("Required", "yes" if self.required else "")
        rows.add("Reason", self.reason)
        rows.add("Waiting", str(self.waiting) if self.waiting else "")
        rows.add("Parameters", str(self.params))
        rows.add("Children", str(self.children))
        rows.add("Rule", str(self.rule) if self.rule else "")
        return rows.html(self.path or "/")


@dataclass(frozen=True, slots=True)
class ChildTypeRecord(Sentence):
    """One type of children of an object, as it is now."""

    type: str
    description: str
    group: str
    label: str
    advanced: bool
    required: bool
    singleton: bool
    editable: bool
    available: bool
    reason: str
    can_add: bool
    """The user can add an object of the type and choose its name."""
    allowed_names: tuple[str, ...] | None
    """None when any name will do."""
    present: tuple[str, ...]
    """The paths of the children of the type, in the order of the model."""
    offered: tuple[str, ...]
    """The paths of the children that the user can switch on."""
    rule: Place | None
    _text: str = sentence_field()

    def _repr_html_(self) -> str:
        rows = Table()
        rows.add("Description", self.description)
        rows.add("State", "available" if self.available else "not available")
        rows.add("Reason", self.reason)
        rows.add("Present", _some(self.present))
        rows.add("On offer", _some(self.offered))
        rows.add("Names", _some(self.allowed_names) if self.allowed_names is not None else "")
        return rows.html(self.type)


@dataclass(frozen=True, slots=True)
class Found(Sentence):
    """An item that a search has found."""

    item: Item
    match: Literal["exact", "prefix", "word", "substring"]
    present: bool
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class Step(Sentence):
    """One step of the history."""

    number: int
    edits: tuple[Edit, ...]
    """As they were given."""
    made: tuple[Edit, ...]
    conversions: tuple[Conversion, ...]
    followed: tuple[FollowedReference, ...]
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class OwnValue(Sentence):
    """A value that the user has set in this session and that no later edit has replaced."""

    item: Item
    value: str
    step: int
    in_force: bool
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class Difference(Sentence):
    """How one item of the result differs from the model that was opened."""

    item: Item
    in_model: str | None
    now: str | None
    is_new_object: bool
    """For objects: the result has it, and the model does not. Otherwise the other way round."""
    _text: str = sentence_field()


@dataclass(frozen=True, slots=True)
class ModelRead:
    """One fact of a model that a rule asked for, with the answer."""

    kind: Literal["value", "presence", "object", "parameter-names", "children", "children-of-type"]
    object: str
    name: str
    is_present: bool
    value: str
    items: tuple[str, ...]
    """At most 100 of them."""
    item_count: int


@dataclass(frozen=True, slots=True)
class ExplanationResult:
    """The result of a part of an expression."""

    kind: Literal["truth", "number", "text", "list", "objects"]
    value: bool | float | str | tuple[str, ...] | None
    """None for what is not a number. At most 20 items of a list."""
    item_count: int


@dataclass(frozen=True, slots=True)
class ExplanationNode:
    """A part of an expression, its value, and what it read."""

    text: str
    operation: str
    name: str
    place: Place | None
    """Where the expression begins that the text is a part of."""
    context: str
    result: ExplanationResult
    also_fails: bool
    total: int
    agreeing: int
    is_cut_short: bool
    """The set has more objects than ``total``. The others were not looked at."""
    reads: tuple[int, ...]
    """Indices in the reads of the explanation."""
    children: tuple[int, ...]
    """Indices in the nodes of the explanation."""


@dataclass(frozen=True, slots=True)
class Explanation:
    """Why an expression had its result: the parts that decided. The first node is the whole expression."""

    nodes: tuple[ExplanationNode, ...]
    reads: tuple[ModelRead, ...]
    is_complete: bool
    is_minimal: bool


@dataclass(frozen=True, slots=True)
class ProofRead:
    """A read that decided, with where its value comes from."""

    read: ModelRead
    origin: str
    step: int
    place: Place | None
    is_old: bool
    """The rule used a value that has changed since; `value_now` is the new one."""
    value_now: str | None
    node: int | None
    """The index of the node that explains this."""


@dataclass(frozen=True, slots=True)
class ProofRule:
    """One rule that decided."""

    attribute: str
    text: str
    place: Place | None
    explanation: Explanation
    reads: tuple[ProofRead, ...]


@dataclass(frozen=True, slots=True)
class ProofNode:
    """One fact of a proof."""

    item: Item
    fact: str
    """Lower case words with hyphens, such as "not-available"."""
    value: str
    step: int
    context_param: str
    needed: tuple[str, ...]
    reason: str
    place: Place | None
    rules: tuple[ProofRule, ...]
    before: str | None
    after: str | None
    is_outdated: bool
    children: tuple[int, ...]
    """Indices of the nodes that explain this one."""


@dataclass(frozen=True, slots=True)
class Proof(Sentence):
    """Why something is as it is: a tree of facts. `str` is the proof as text."""

    question: Literal["presence", "value", "allowed", "last-edit"]
    item: Item
    nodes: tuple[ProofNode, ...]
    hidden: int
    """Number of reads whose explanation would need more depth."""
    _text: str = sentence_field()

    @property
    def answer(self) -> ProofNode:
        return self.nodes[0]

    @property
    def fact(self) -> str:
        """The fact that answers the question, such as "not-available"."""
        return self.nodes[0].fact


@dataclass(frozen=True, slots=True)
class Goal:
    """The state to reach: the item is present, or the parameter has the value."""

    item: Item
    value: str | None = None


@dataclass(frozen=True, slots=True)
class Way:
    """A sequence of edits that was tried and reached the goal."""

    edits: tuple[Edit, ...]
    result: EditResult
    lost: tuple[ValueChange, ...]
    """Values that would no longer be in force. They are kept, and wait."""
    findings_gained: tuple[Finding, ...]
    at_next_edit: bool
    """The goal is reached only when a further edit is made."""


@dataclass(frozen=True, slots=True)
class HowResult(Sentence):
    """The result of a search for edits. `str` is all of it as text."""

    goal: Goal
    answer: Literal["already-so", "found", "impossible", "not-found"]
    ways: tuple[Way, ...]
    """The shortest ways, the best first."""
    trials: int
    completed_edits: int
    stopped_by_time: bool
    refused: Refused | None
    blocking: Proof | None
    free_params: tuple[Item, ...]
    _text: str = sentence_field()
