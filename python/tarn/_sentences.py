"""Records whose sentence the library has made with them."""

from __future__ import annotations

from dataclasses import field


class Sentence:
    """A record whose sentence was made with it."""

    __slots__ = ()
    _text: str

    def __str__(self) -> str:
        return self._text


def sentence_field() -> str:
    """The field of a sentence. It says what the other fields say, so it is neither shown nor compared."""
    text: str = field(default="", repr=False, compare=False)
    return text
