"""Models: as text, as a flat dictionary, and as a tree of dictionaries."""

from __future__ import annotations

import math
import numbers
import os
from collections.abc import Mapping, Sequence
from typing import Any

from tarn import _checks, _tarn
from tarn.rules import AnyPath, Rules, _bytes, _database_of
from tarn._html import table

__all__ = ["Model", "State", "value_text"]

State = dict[str, dict[str, str]]
"""The content of a model: the path of each object, with the values of its parameters by their names."""


ParamValue = str | float | Sequence[str | float]
"""A value for a parameter: a text, a number, a truth value, or a list of them. See `value_text`."""


class Model:
    """A model: text, or what a text would say. It does not change.

    >>> model = Model("/Case/Title = Fan\\n/Case/Domain:rotor/Motion = Rotating\\n")
    >>> model.state
    {'/Case': {'Title': 'Fan'}, '/Case/Domain:rotor': {'Motion': 'Rotating'}}
    >>> model.tree
    {'Case': {'Title': 'Fan', 'Domain:rotor': {'Motion': 'Rotating'}}}

    Bytes of a text that are not UTF-8 are lone surrogates in Python, as in the names of files. They are kept.
    """

    __slots__ = ("_content", "_file", "_source", "_state")

    _source: str
    _file: str | None
    _content: bytes | None
    _state: State | None

    def __init__(self, text: str | bytes, source: str = "<model>") -> None:
        """A model from its text, which messages call `source`.

        Malformed lines are found when the content is needed: `state`, `tree` and sessions raise `ModelError`.
        """
        self._source = source
        self._file = None
        self._content = _bytes(text)
        self._state = None

    @classmethod
    def read(cls, path: AnyPath) -> Model:
        """Reads a model file. Raises `OSError` if that fails.

        >>> len(Model.read("examples/heating/models/house.tdf").state)
        17
        """
        name = _checks.path(path)
        with open(name, "rb") as file:
            model = cls(file.read(), source=name)
        model._file = name
        return model

    @classmethod
    def from_dict(cls, content: Mapping[str, Any], source: str = "<dictionary>") -> Model:
        """A model from dictionaries. A value that is a dictionary is an object, every other value is a parameter.

        The key of an object is its type, or its type and name: "Domain:rotor". It may be a whole path, so the flat form
        of `state` can be given as well. Values may be texts, numbers, truth values, and lists of them: see `value_text`.
        Raises `ValueError` for a parameter that is given twice, and `TypeError` for other values.

        >>> Model.from_dict({"Case": {"Title": "Fan", "Domain:rotor": {"Blades": 7, "Fluids": ["Air", "Oil"]}}}).state
        {'/Case': {'Title': 'Fan'}, '/Case/Domain:rotor': {'Blades': '7', 'Fluids': 'Air,Oil'}}
        """
        model = cls.__new__(cls)
        model._source = source
        model._file = None
        model._content = None
        model._state = _state_of(content)
        return model

    @classmethod
    def _of_state(cls, state: State, source: str) -> Model:
        """A model of a state that the library has made."""
        model = cls.from_dict({}, source)
        model._state = _canonical(state)
        return model

    @property
    def source(self) -> str:
        """The name of the model in messages; of a model that was read, its file."""
        return self._source

    @property
    def file(self) -> str | None:
        """The file that the model was read from."""
        return self._file

    @property
    def has_text(self) -> bool:
        """Whether the model was made from text. Findings have places in it."""
        return self._content is not None

    @property
    def content(self) -> bytes:
        """The text as bytes. For a model from dictionaries, a text that gives it: blocks in the order of the paths.

        Raises `Error` for a model from dictionaries that text cannot hold, such as a value with a line end.
        """
        if self._content is not None:
            return self._content
        return _tarn.write_model(self._known_state(), b"")

    @property
    def text(self) -> str:
        """The text of the model.

        >>> print(Model.from_dict({"Case": {"Title": "Fan"}}).text)
        Case:
          Title = Fan
        END # Case:
        <BLANKLINE>
        """
        return self.content.decode("utf-8", "surrogateescape")

    @property
    def state(self) -> State:
        """The content as a flat dictionary: object path to the values of its parameters, in byte-wise order.

        The path of the root is "". An object without parameters has an empty dictionary; one that only holds other
        objects may have none. The dictionaries are the caller's. Raises `ModelError` for a text with malformed lines.
        """
        return {path: dict(params) for path, params in self._known_state().items()}

    @property
    def tree(self) -> dict[str, Any]:
        """The content as nested dictionaries: values are texts, objects are dictionaries.

        Where an object has the name of a parameter beside it, the key of the object begins with "/". `from_dict`
        understands it. Raises `ModelError` for a text with malformed lines.
        """
        root: dict[str, Any] = {}
        for path, params in self._known_state().items():
            _object_at(root, path).update(params)
        return _without_clashes(root)

    def value(self, path: str, name: str) -> str | None:
        """The value of a parameter of the object at an absolute path; None when the model does not have it."""
        return self._known_state().get(path, {}).get(name)

    def same_as(self, other: Model) -> bool:
        """Whether both models say the same, however it is written."""
        return _canonical(self._known_state()) == _canonical(other._known_state())

    def _known_state(self) -> State:
        if self._state is None:
            assert self._content is not None
            self._state = _tarn.parse_model(self._source, self._content)
        return self._state

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Model):
            return NotImplemented
        return (self._source, self._file, self._content) == (other._source, other._file, other._content) \
            and (self._content is not None or self._state == other._state)

    def __hash__(self) -> int:
        return hash((self._source, self._content))

    def __repr__(self) -> str:
        return f"<tarn.Model {self._source}>"

    def _repr_html_(self) -> str:
        rows = [[path or "/", name, value] for path, params in self._known_state().items()
                for name, value in params.items()]
        return table(["Object", "Parameter", "Value"], rows)

    def __getstate__(self) -> tuple[str, str | None, bytes | None, State | None]:
        # The state of a text is found again where it arrives.
        return self._source, self._file, self._content, None if self._content is not None else self._state

    def __setstate__(self, state: tuple[str, str | None, bytes | None, State | None]) -> None:
        self._source, self._file, self._content, self._state = state


def value_text(value: object) -> str:
    """The text of a value: a text as it is, a number as Python writes it, yes or no for a truth value, and the items of
    a list or a tuple with commas between them.

    >>> [value_text(one) for one in ("0.02 [m]", 7, 1.5e-5, True, ["Air", "Oil"])]
    ['0.02 [m]', '7', '1.5e-05', 'yes', 'Air,Oil']

    Raises `TypeError` for anything else, and `ValueError` for a number that is infinite or not a number.
    """
    if isinstance(value, str):
        return value
    if isinstance(value, bool):
        return "yes" if value else "no"
    if isinstance(value, numbers.Integral):
        return str(int(value))
    if isinstance(value, numbers.Real):
        if not math.isfinite(value):
            raise ValueError(f"{value} cannot be the value of a parameter")
        return repr(float(value))
    if isinstance(value, (list, tuple)):
        return ",".join(value_text(item) for item in value)
    raise TypeError(f"a value must be a text, a number, a truth value, or a list of them, not {type(value).__name__}")


def _state_of(content: Mapping[str, Any]) -> State:
    if not isinstance(content, Mapping):
        raise TypeError(f"a model must be a dictionary, not {type(content).__name__}")
    state: State = {}
    # Not recursive: a model may have a thousand levels.
    todo: list[tuple[str, Mapping[str, Any]]] = [("", content)]
    while todo:
        path, entries = todo.pop()
        params: dict[str, str] = {}
        for key, value in entries.items():
            if not isinstance(key, str):
                raise TypeError(f"the key {key!r} in the object {path or '/'} is not a text")
            if isinstance(value, Mapping):
                todo.append((path + "/" + key.strip("/") if key.strip("/") else path, value))
            else:
                params[key] = value_text(value)
        known = state.setdefault(path, {})
        for name in params.keys() & known.keys():
            raise ValueError(f"the parameter {path}/{name} is given twice")
        known.update(params)
    if not state[""]:
        del state[""]
    return _canonical(state)


def _canonical(state: State) -> State:
    """The state without entries that say nothing, sorted: an object with others below it needs none."""
    holders = {""}
    for path in state:
        while path := path.rpartition("/")[0]:
            if path in holders:
                break
            holders.add(path)
    return {path: dict(sorted(params.items(), key=lambda entry: entry[0].encode("utf-8", "surrogateescape")))
            for path, params in sorted(state.items(), key=lambda entry: entry[0].encode("utf-8", "surrogateescape"))
            if params or path not in holders}


def _object_at(root: dict[str, Any], path: str) -> dict[str, Any]:
    """The dictionary of an object; keys of objects begin with "/" here."""
    place = root
    for component in path.split("/")[1:]:
        place = place.setdefault("/" + component, {})
    return place


def _without_clashes(root: dict[str, Any]) -> dict[str, Any]:
    """The same with plain keys of objects, where no parameter has that key."""
    result: dict[str, Any] = {}
    todo = [(root, result)]
    while todo:
        source, target = todo.pop()
        for key, value in source.items():
            if isinstance(value, str):
                target[key] = value
                continue
            made: dict[str, Any] = {}
            target[key if isinstance(source.get(key[1:]), str) else key[1:]] = made
            todo.append((value, made))
    return result


def as_model(model: Model | AnyPath | Mapping[str, Any] | None) -> Model:
    """The model that an argument means: a model, a file name, dictionaries, or None for an empty one."""
    if isinstance(model, Model):
        return model
    if model is None:
        return Model.from_dict({})
    if isinstance(model, Mapping):
        return Model.from_dict(model)
    if not isinstance(model, (str, bytes, os.PathLike)):
        raise TypeError(f"a model must be a tarn.Model, the name of a file, or a dictionary, not {type(model).__name__}")
    return Model.read(model)


def written(state: State, text: bytes, rules: Rules | None) -> bytes:
    """`text`, changed so that it says `state`."""
    return _tarn.write_model(state, text, _database_of(rules) if rules is not None else None)
