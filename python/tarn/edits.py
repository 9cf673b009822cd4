"""Edits, the items that they are about, and the reasons why they are refused."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Literal

from tarn._sentences import Sentence, sentence_field

__all__ = ["Edit", "EditKind", "Item", "Refused"]

EditKind = Literal["set-param", "activate-param", "deactivate-param", "activate-object", "deactivate-object",
                   "add-object", "remove-object", "duplicate-object", "rename-object"]


@dataclass(frozen=True, slots=True)
class Item:
    """An object, or with `name` one of its parameters.

    >>> Item("/Case/Domain:rotor", "Motion").text
    '/Case/Domain:rotor/Motion'
    >>> Item("/Case/Domain:rotor").is_param
    False
    """

    path: str
    name: str | None = None

    @property
    def is_param(self) -> bool:
        return self.name is not None

    @property
    def text(self) -> str:
        """The path of the item; "/" is the root of the model."""
        return self.path or "/" if self.name is None else f"{self.path}/{self.name}"

    def __str__(self) -> str:
        return self.text


@dataclass(frozen=True, slots=True)
class Edit:
    """One edit of a model, of one of nine kinds. It can be stored, sent, and applied to any session.

    `path` is the absolute path of the object, or of the object that holds the parameter. `name` is the parameter, or the
    new name of a copied or renamed object. `value` is used by "set-param" only.

    >>> edit = Edit.set_param("/Case/Domain:rotor", "Motion", "Rotating")
    >>> print(edit)
    set /Case/Domain:rotor/Motion to "Rotating"
    """

    kind: EditKind
    path: str
    name: str = ""
    value: str = ""

    @staticmethod
    def set_param(path: str, name: str, value: str) -> Edit:
        return Edit("set-param", path, name, value)

    @staticmethod
    def activate_param(path: str, name: str) -> Edit:
        return Edit("activate-param", path, name)

    @staticmethod
    def deactivate_param(path: str, name: str) -> Edit:
        return Edit("deactivate-param", path, name)

    @staticmethod
    def activate_object(path: str) -> Edit:
        return Edit("activate-object", path)

    @staticmethod
    def deactivate_object(path: str) -> Edit:
        return Edit("deactivate-object", path)

    @staticmethod
    def add_object(path: str) -> Edit:
        return Edit("add-object", path)

    @staticmethod
    def remove_object(path: str) -> Edit:
        return Edit("remove-object", path)

    @staticmethod
    def duplicate_object(path: str, new_name: str) -> Edit:
        return Edit("duplicate-object", path, new_name)

    @staticmethod
    def rename_object(path: str, new_name: str) -> Edit:
        return Edit("rename-object", path, new_name)

    def __str__(self) -> str:
        from tarn import _tarn

        return _tarn.edit_sentence(self)


@dataclass(frozen=True, slots=True)
class Refused(Sentence):
    """Why edits were refused, and what would have worked. `str` has all of it in one sentence."""

    code: str
    """Lower case words with hyphens, such as "unknown-parameter"."""
    index: int
    """The index of the refused edit among those that were given, from 0."""
    edit: Edit
    sentence: str
    """The reason, without the proposal."""
    nearest: Edit | None
    """The nearest edit that is possible. It has been tried."""
    possible: tuple[str, ...]
    """The values, names or units that are possible now, in the order of the rules. When the name of a parameter is right
    and its object is not, the paths of the first 20 parameters of that name, in the order of the model."""
    possible_count: int
    """How many paths there are in all, when `possible` leaves some out. 0 when it leaves out none."""
    _text: str = sentence_field()
