"""Sessions: a set-up at work."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from typing import Any, Literal, NoReturn

from tarn import _checks, _tarn
from tarn._html import Table
from tarn.errors import OpenError, SaveError, UnknownItem
from tarn.model import Model, ParamValue, as_model, value_text
from tarn.records import (ChildTypeRecord, Difference, Edit, EditResult, Explanation, Findings, Found, HowResult, Item,
                          ObjectRecord, OwnValue, ParamRecord, Proof, Step, TryResult, Waiting)
from tarn.rules import AnyPath, Rules, _database_of

__all__ = ["QueryResult", "Session", "WrittenItem"]

WrittenItem = str | Item
"""An object or a parameter: an `Item`, or its path as users write it. A path that does not begin with "/" starts at the
object that is edited, and "" is that object itself."""


@dataclass(frozen=True, slots=True)
class QueryResult:
    """The value of an expression, and how it came about."""

    expression: str
    value: bool | float | str | tuple[str, ...] | None
    """None for what is not a number. Numbers are in the first unit of their quantity type."""
    explanation: Explanation

    def __str__(self) -> str:
        return str(self.value)

    def _repr_html_(self) -> str:
        rows = Table()
        for node in self.explanation.nodes:
            rows.add(node.text, str(node.result.value))
        return rows.html(f"{self.expression}: {self.value}")


class Session:
    """A set-up at work: a model, the rules for it, and the object of the model that is edited.

    >>> import tarn
    >>> rules = tarn.load_rules("examples/flow/rules")
    >>> session = tarn.Session(rules, "examples/flow/models/sound.tdf")
    >>> session.root
    '/Case'
    >>> result = session.set("Flow Regime", "laminar")
    >>> result.applied, result.refused.code, result.refused.possible
    (False, 'value-not-allowed', ('Laminar', 'Turbulent'))
    >>> result = session.set("Flow Regime", "Laminar")
    >>> result.step
    1

    An edit is applied or refused; refusals are results, not exceptions. `result.or_raise()` makes an exception of a
    refusal. A slip, such as an unknown name, is refused. A wish that cannot be in force now waits until the rules allow
    it. The C++ header <tarn/session/Session.h> describes all of this.

    Items are given as `Item`, or as the path that users write: see `WrittenItem`. Several threads may use one session:
    their calls wait for each other. The interpreter lock is released while the library works.
    """

    __slots__ = ("_handle", "_model", "_rules", "__weakref__")

    def __init__(self, rules: Rules, model: Model | AnyPath | Mapping[str, Any] | None = None, *,
                 root: str | None = None) -> None:
        """Opens a session on a model: a `Model`, the name of a file, or dictionaries as `Model.from_dict` takes them.

        Without a model it begins with an empty one. `root` is the path of the object to edit; by default the only one
        that the rules look at. Raises `ModelError` for a text with malformed lines, `OpenError` if there is no object to
        edit or it is not clear which, and `OSError` if the file cannot be read. Costs the size of the model.
        """
        self._rules = rules
        self._model = as_model(model)
        database = _database_of(rules)
        if root is not None:
            _checks.text(root, "root")
        if self._model.has_text:
            self._handle = _tarn.open_text(database, self._model.source, self._model.content, root,
                                           self._model.file is not None)
        else:
            self._handle = _tarn.open_state(database, self._model._known_state(), root)

    # What the session works with

    @property
    def rules(self) -> Rules:
        return self._rules

    @property
    def model(self) -> Model:
        """The model that was opened."""
        return self._model

    @property
    def root(self) -> str:
        """The path of the object that is edited; "" for the whole model."""
        return self._handle.root()

    # Edit

    def edit(self, *edits: Edit | Iterable[Edit], follow_references: bool = False) -> EditResult:
        """Makes edits, in their order and as one step: if one is refused, none is made.

        With `follow_references`, the values that name a renamed object follow it. Costs what the edits change.

        >>> import tarn
        >>> session = tarn.Session(tarn.load_rules("examples/heating/rules"), "examples/heating/models/house.tdf")
        >>> print(session.edit(tarn.Edit.add_object("/Plant/Circuit:garage"),
        ...                    tarn.Edit.set_param("/Plant/Circuit:garage", "Boiler", "main")).step)
        1
        """
        return self._handle.edit(_flat(edits), follow_references)

    def set(self, param: WrittenItem, value: ParamValue) -> EditResult:
        """Sets a parameter. `value` may be a text, a number, a truth value or a list: see `value_text`.

        A number without units is in the first unit of the parameter's quantity type.
        """
        return self.edit(self._param_edit("set-param", param, value_text(value)))

    def activate(self, item: WrittenItem) -> EditResult:
        """Switches on an optional parameter or object."""
        return self.edit(self._switch("activate", item))

    def deactivate(self, item: WrittenItem) -> EditResult:
        """Switches off an optional parameter or object."""
        return self.edit(self._switch("deactivate", item))

    def add(self, path: WrittenItem) -> EditResult:
        """Adds an object with a name of your choice: `session.add("Domain:rotor")`."""
        return self.edit(Edit("add-object", self._object_path(path)))

    def remove(self, path: WrittenItem) -> EditResult:
        """Removes a named object."""
        return self.edit(Edit("remove-object", self._object_path(path)))

    def duplicate(self, path: WrittenItem, new_name: str) -> EditResult:
        """Copies a named object, with everything in it, under a new name beside it."""
        return self.edit(Edit("duplicate-object", self._object_path(path), _checks.text(new_name, "new_name")))

    def rename(self, path: WrittenItem, new_name: str, *, follow_references: bool = False) -> EditResult:
        """Gives a named object a new name. With `follow_references`, the values that name it follow."""
        edit = Edit("rename-object", self._object_path(path), _checks.text(new_name, "new_name"))
        return self.edit(edit, follow_references=follow_references)

    def edit_for(self, param: WrittenItem, value: ParamValue) -> Edit:
        """The edit that `set` would make, for use in a list of edits. Nothing is checked or made.

        >>> import tarn
        >>> session = tarn.Session(tarn.load_rules("examples/heating/rules"), "examples/heating/models/house.tdf")
        >>> session.edit_for("Boiler:main/Rated Power", "18 [kW]")
        Edit(kind='set-param', path='/Plant/Boiler:main', name='Rated Power', value='18 [kW]')
        """
        return self._param_edit("set-param", param, value_text(value))

    # What if

    def what_if(self, *edits: Edit | Iterable[Edit], follow_references: bool = False,
                findings: bool = True) -> TryResult:
        """The outcome that edits would have, and with `findings` the findings that would come and go. Changes nothing.

        Costs what the edits change; with `findings` also two reviews of the model.
        """
        return self._handle.try_edits(_flat(edits), follow_references, findings)

    # History

    def undo(self) -> EditResult | None:
        """Takes back the last step exactly. None when there is nothing to undo."""
        return self._handle.undo()

    def redo(self) -> EditResult | None:
        """Makes the step again that was undone last. None when there is none."""
        return self._handle.redo()

    @property
    def steps(self) -> tuple[Step, ...]:
        """The steps that are in force, the oldest first."""
        return self._handle.steps()

    @property
    def undone_steps(self) -> int:
        """The number of steps that `redo` can make."""
        return self._handle.undone_steps()

    @property
    def last_result(self) -> EditResult | None:
        """The result of the last step that is in force."""
        return self._handle.last_result()

    # Look

    def item(self, text: WrittenItem) -> Item:
        """The item of a path that a user has written. Its object need not be there, but the rules must know it.

        Raises `UnknownItem`, which has the item that was probably meant.
        """
        if isinstance(text, Item):
            return text
        item, refused = self._handle.known_item(_path_text(text))
        if item is None:
            assert refused is not None
            raise UnknownItem(refused)
        return item

    def look(self, item: WrittenItem = "") -> ParamRecord | ObjectRecord:
        """Everything about a parameter or an object, as it is now. Raises `UnknownItem`.

        >>> import tarn
        >>> session = tarn.Session(tarn.load_rules("examples/heating/rules"), "examples/heating/models/house.tdf")
        >>> power = session.look("Boiler:main/Rated Power")
        >>> power.value, power.origin, power.units[0], power.lower_bound
        ('14 [kW]', 'model', 'kW', '0 [kW]')
        """
        found = self.item(item)
        record = self._handle.look(found.path, found.name)
        if record is None:
            # The item was made by the caller. The refusal for its path has what was probably meant.
            raise UnknownItem(self._handle.refusal(found.path, found.name))
        return record

    def param(self, item: WrittenItem) -> ParamRecord:
        """The same for a parameter. Raises `UnknownItem` for anything else, and `TypeError` for an object."""
        record = self.look(item)
        if not isinstance(record, ParamRecord):
            raise TypeError(f"{record.path or '/'} is an object, not a parameter")
        return record

    def object(self, item: WrittenItem = "") -> ObjectRecord:
        """The same for an object. Raises `UnknownItem` for anything else, and `TypeError` for a parameter."""
        record = self.look(item)
        if not isinstance(record, ObjectRecord):
            raise TypeError(f"{record.item} is a parameter, not an object")
        return record

    def value(self, item: WrittenItem) -> str | None:
        """The value of a parameter, None when it is not present. Raises `UnknownItem`."""
        return self.param(item).value

    def params(self, path: WrittenItem = "") -> tuple[ParamRecord, ...]:
        """All parameters that the rules know in an object, in the order of the rules."""
        return self._handle.look_params(self._object_path(path))

    def param_names(self, path: WrittenItem = "") -> tuple[str, ...]:
        """Their names only."""
        return self._handle.params(self._object_path(path))

    def children(self, path: WrittenItem = "") -> tuple[str, ...]:
        """The paths of the objects in an object, by types in the order of the rules."""
        return tuple(child for one in self.child_types(path) for child in one.present)

    def child_types(self, path: WrittenItem = "") -> tuple[ChildTypeRecord, ...]:
        """The types of children that the rules know in an object, with the children there are."""
        return self._handle.child_types(self._object_path(path))

    def find(self, text: str, most: int = 100) -> tuple[Found, ...]:
        """The present objects and the known parameters whose name or type contains `text`, the best matches first."""
        return self._handle.find(_checks.text(text, "text"), _checks.whole(most, "most"))

    @property
    def own(self) -> tuple[OwnValue, ...]:
        """The values that were set in this session, by path and name."""
        return self._handle.own()

    @property
    def waiting(self) -> tuple[Waiting, ...]:
        """Everything that was asked for and is not in force."""
        return self._handle.waiting()

    def diff(self) -> tuple[Difference, ...]:
        """How the result differs from the model that was opened, by path and name."""
        return self._handle.differences()

    # Why and how

    def why(self, item: WrittenItem, value: ParamValue | None = None, *, depth: int = 1,
            question: Literal["presence", "value", "allowed", "last-edit"] | None = None) -> Proof:
        """Why an item is there or not, why a parameter has its value, or with `value` why that is allowed or not.

        With a `depth` of 2, what the rules have read is explained as well, and so on. The question "last-edit" is why
        the last step changed the item. Raises `UnknownItem`.

        >>> import tarn
        >>> session = tarn.Session(tarn.load_rules("examples/flow/rules"), "examples/flow/models/sound.tdf")
        >>> proof = session.why("Analysis/Time Step")
        >>> proof.fact
        'not-live'
        >>> print(proof)
        /Case/Analysis/Time Step is absent: it needs Analysis Type to be 'Transient', which is 'Steady'
        """
        found = self.item(item)
        text = None if value is None else value_text(value)
        if text is not None and not found.is_param:
            raise ValueError(f"{found} is an object and has no value")
        return self._handle.why(found.path, found.name, text, question, _checks.whole(depth, "depth"))

    def how(self, item: WrittenItem, value: ParamValue | None = None, *, max_edits: int = 3, max_candidates: int = 100,
            max_trials: int = 20_000, max_ways: int = 3, max_seconds: float = 10.0) -> HowResult:
        """The shortest sequences of edits after which an item is there, or has a value. Changes nothing.

        `max_seconds` is a safety stop: the result says when it was reached. Ctrl-C ends the search at once. Raises
        `UnknownItem`.
        """
        found = self.item(item)
        text = None if value is None else value_text(value)
        if text is not None and not found.is_param:
            raise ValueError(f"{found} is an object and has no value")
        _checks.whole(max_edits, "max_edits")
        _checks.whole(max_candidates, "max_candidates")
        _checks.whole(max_trials, "max_trials")
        _checks.whole(max_ways, "max_ways", 1)
        return self._handle.how(found.path, found.name, text, max_edits, max_candidates, max_trials, max_ways,
                                max_seconds)

    def eval(self, expression: str, at: WrittenItem | None = None) -> QueryResult:
        """The value of an expression of the rule language in the present state. Changes nothing.

        Relative paths start at the object `at`, by default at `root`. Raises `RuleError` for an expression with errors,
        and `ValueError` if the model has no such object.

        >>> import tarn
        >>> session = tarn.Session(tarn.load_rules("examples/heating/rules"), "examples/heating/models/house.tdf")
        >>> session.eval("count({/Plant/Circuit:*})").value
        2.0
        """
        start = None if at is None else self._object_path(at)
        value, explanation = self._handle.eval(_checks.text(expression, "an expression"), start)
        return QueryResult(expression, value, explanation)

    # Result

    def review(self) -> Findings:
        """Everything that is wrong with the result. A second review of the same state costs nothing."""
        return self._handle.review()

    def result(self) -> Model:
        """The whole model as it is now. `text` of this session has it as text that keeps the bytes of the model."""
        return Model._of_state(self._handle.result(), self._model.source)

    @property
    def text(self) -> str:
        """The text that `save` would write: that of the model, with what has changed. Everything else stays as it is.

        Raises `Error` if model text cannot hold the result.
        """
        return self._handle.text().decode("utf-8", "surrogateescape")

    def save(self, path: AnyPath | None = None, *, overwrite: bool = False) -> str:
        """Saves the result in the file that was opened, or in another one, which is the session's file from then on.

        Bytes that the session did not change stay as they are. Returns the name of the file. Raises `SaveError`: the
        file was changed by someone else, or it exists and is not the session's file, unless `overwrite` is set; it
        cannot be written; there is no file. There is always the old or the new file, whatever happens.
        """
        if path is None and not self._handle.has_file():
            raise SaveError("the model was not read from a file; give the path where to save it", "no-file")
        return self._handle.save(None if path is None else _checks.path(path), overwrite)

    def __repr__(self) -> str:
        return f"<tarn.Session on {self._model.source}, {self.root or '/'}>"

    def __reduce__(self) -> NoReturn:
        raise TypeError("a session cannot be pickled; pickle its rules, its model and its edits: "
                        "session.rules, session.result(), [step.made for step in session.steps]")

    # Help

    def _object_path(self, item: WrittenItem) -> str:
        if not isinstance(item, Item):
            return self._handle.absolute_path(_path_text(item))
        if item.name is not None:
            raise ValueError(f"{item} is a parameter, not an object")
        return item.path

    def _param_item(self, item: WrittenItem) -> Item:
        if isinstance(item, Item):
            if item.name is None:
                raise ValueError(f"{item} is an object, not a parameter")
            return item
        path, _, name = self._handle.absolute_path(_path_text(item)).rpartition("/")
        return Item(path, name)

    def _param_edit(self, kind: Literal["set-param", "activate-param", "deactivate-param"], item: WrittenItem,
                    value: str = "") -> Edit:
        found = self._param_item(item)
        return Edit(kind, found.path, found.name or "", value)

    def _switch(self, verb: Literal["activate", "deactivate"], item: WrittenItem) -> Edit:
        if isinstance(item, Item):
            is_param = item.is_param
        else:
            is_param = self._handle.means_param(self._handle.absolute_path(_path_text(item)))
        if is_param:
            return self._param_edit("activate-param" if verb == "activate" else "deactivate-param", item)
        return Edit("activate-object" if verb == "activate" else "deactivate-object", self._object_path(item))


def _path_text(item: object) -> str:
    if not isinstance(item, str):
        raise TypeError(f"an item must be a path or a tarn.Item, not {type(item).__name__}")
    return item


def _flat(edits: Iterable[Edit | Iterable[Edit]]) -> list[Edit]:
    flat: list[Edit] = []
    for one in edits:
        if not isinstance(one, (Edit, Iterable)):
            raise TypeError(f"an edit must be a tarn.Edit, not {type(one).__name__}")
        for edit in (one,) if isinstance(one, Edit) else one:
            if not isinstance(edit, Edit):
                raise TypeError(f"an edit must be a tarn.Edit, not {type(edit).__name__}")
            flat.append(edit)
    return flat
