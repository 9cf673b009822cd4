"""Tables for notebooks. Every text is escaped: models and rules are other people's files."""

from __future__ import annotations

import html
from collections.abc import Iterable, Sequence


def escape(text: str) -> str:
    """The text as HTML. Bytes of a file that are not UTF-8 become U+FFFD."""
    return html.escape(text.encode("utf-8", "surrogateescape").decode("utf-8", "replace"))


def table(head: Sequence[str] | None, rows: Iterable[Sequence[str]], caption: str | None = None) -> str:
    """A table; without `head` it has no heading."""
    parts = ["<table>"]
    if caption is not None:
        parts.append(f"<caption>{escape(caption)}</caption>")
    if head is not None:
        parts.append("<thead><tr>" + "".join(f"<th>{escape(text)}</th>" for text in head) + "</tr></thead>")
    parts.append("<tbody>")
    for row in rows:
        parts.append("<tr>" + "".join(f"<td>{escape(text)}</td>" for text in row) + "</tr>")
    parts.append("</tbody></table>")
    return "".join(parts)


class Table:
    """A table of names and values that leaves out empty values."""

    def __init__(self) -> None:
        self._rows: list[tuple[str, str]] = []

    def add(self, name: str, value: str | None) -> None:
        if value:
            self._rows.append((name, value))

    def html(self, caption: str) -> str:
        return table(None, self._rows, caption)
