"""Writing Parquet files: the small part of the format that a table of numbers, truth values and texts needs.

Debian 12 has no Python package that writes Parquet, and a study must be able to write its table everywhere. The file is
plain: rows in groups, one page for each column of a group, plain encoding, compressed with gzip. All readers know this.
"""

from __future__ import annotations

import gzip
import itertools
import os
import struct
from collections.abc import Sequence
from dataclasses import dataclass
from types import TracebackType
from typing import Any

_MAGIC = b"PAR1"

# Numbers of the format.
_BOOLEAN, _INT64, _BYTE_ARRAY = 0, 2, 6
_REQUIRED, _OPTIONAL = 0, 1
_PLAIN, _RLE = 0, 3
_GZIP = 2
_DATA_PAGE = 0
_UTF8 = 0

MOST_PAGE_BYTES = 1 << 30
"""A page must be smaller than 2 GiB; the rows at hand are divided until it is."""


@dataclass(frozen=True)
class Column:
    """A column of `int`, `bool` or `str`. Cells of an optional column may be None."""

    name: str
    kind: type
    optional: bool = False

    @property
    def number(self) -> int:
        return {bool: _BOOLEAN, int: _INT64, str: _BYTE_ARRAY}[self.kind]


class ParquetWriter:
    """Writes a table, a group of rows at a time. The file is complete when the writer is closed."""

    def __init__(self, path: str | os.PathLike[str], columns: Sequence[Column]) -> None:
        self._columns = tuple(columns)
        self._file = open(path, "wb")
        self._file.write(_MAGIC)
        self._groups: list[_Fields] = []
        self._rows = 0

    def write(self, rows: Sequence[Sequence[Any]]) -> None:
        """Writes rows as a group. A text with bytes that are not UTF-8 gets "?" for each, since Parquet has only UTF-8."""
        if not rows:
            return
        pages = [_page(column, cells) for column, cells in zip(self._columns, zip(*rows), strict=True)]
        if len(rows) > 1 and max(map(len, pages)) > MOST_PAGE_BYTES:
            self.write(rows[:len(rows) // 2])
            self.write(rows[len(rows) // 2:])
            return
        chunks = [self._write_page(column, page, len(rows)) for column, page in zip(self._columns, pages)]
        size = sum(chunk[3][6] for chunk in chunks)
        self._groups.append({1: chunks, 2: _I64(size), 3: _I64(len(rows))})
        self._rows += len(rows)

    def _write_page(self, column: Column, page: bytes, rows: int) -> _Fields:
        packed = gzip.compress(page, mtime=0)
        header = _struct({1: _DATA_PAGE, 2: len(page), 3: len(packed), 5: {1: rows, 2: _PLAIN, 3: _RLE, 4: _RLE}})
        start = self._file.tell()
        self._file.write(header)
        self._file.write(packed)
        return {2: _I64(start),
                3: {1: column.number, 2: [_PLAIN, _RLE], 3: [column.name], 4: _GZIP, 5: _I64(rows),
                    6: _I64(len(header) + len(page)), 7: _I64(len(header) + len(packed)), 9: _I64(start)}}

    def close(self) -> None:
        """Writes the description of the columns and groups, which is at the end of the file."""
        root: _Fields = {4: "table", 5: len(self._columns)}
        fields: list[_Fields] = [
            {1: one.number, 3: _OPTIONAL if one.optional else _REQUIRED, 4: one.name}
            | ({6: _UTF8, 10: {1: {}}} if one.kind is str else {}) for one in self._columns]
        footer = _struct({1: 1, 2: [root, *fields], 3: _I64(self._rows), 4: self._groups, 6: "tarn"})
        self._file.write(footer + struct.pack("<I", len(footer)) + _MAGIC)
        self._file.close()

    def __enter__(self) -> ParquetWriter:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        if kind is None:
            self.close()
        else:
            self._file.close()


def _page(column: Column, cells: Sequence[Any]) -> bytes:
    if not column.optional:
        return _plain(column.kind, cells)
    present = [cell for cell in cells if cell is not None]
    runs = b"".join(_varint(len(list(run)) << 1) + bytes([is_present])
                    for is_present, run in itertools.groupby(cell is not None for cell in cells))
    return struct.pack("<I", len(runs)) + runs + _plain(column.kind, present)


def _plain(kind: type, cells: Sequence[Any]) -> bytes:
    if kind is int:
        return struct.pack(f"<{len(cells)}q", *cells)
    if kind is bool:
        bits = sum(1 << index for index, cell in enumerate(cells) if cell)
        return bits.to_bytes((len(cells) + 7) // 8, "little")
    texts = [cell.encode("utf-8", "replace") for cell in cells]
    return b"".join(struct.pack("<I", len(text)) + text for text in texts)


# The descriptions are structures of Thrift, in its compact form. Here a structure is a dictionary by numbers of fields.

_Fields = dict[int, Any]


class _I64(int):
    """A number of 64 bits; others have 32."""


_TYPE_I32, _TYPE_I64, _TYPE_BINARY, _TYPE_LIST, _TYPE_STRUCT = 5, 6, 8, 9, 12


def _type(value: Any) -> int:
    if isinstance(value, _I64):
        return _TYPE_I64
    return {int: _TYPE_I32, str: _TYPE_BINARY, list: _TYPE_LIST, dict: _TYPE_STRUCT}[type(value)]


def _struct(fields: _Fields) -> bytes:
    parts = []
    last = 0
    for number in sorted(fields):
        # No gap between the numbers of fields is wider than 15 here.
        parts.append(bytes([(number - last) << 4 | _type(fields[number])]) + _value(fields[number]))
        last = number
    return b"".join(parts) + b"\0"


def _value(value: Any) -> bytes:
    if isinstance(value, int):
        return _varint(value << 1 ^ value >> 63)
    if isinstance(value, str):
        text = value.encode("utf-8", "replace")
        return _varint(len(text)) + text
    if isinstance(value, list):
        kind = _type(value[0]) if value else _TYPE_STRUCT
        size = bytes([len(value) << 4 | kind]) if len(value) < 15 else bytes([0xF0 | kind]) + _varint(len(value))
        return size + b"".join(map(_value, value))
    return _struct(value)


def _varint(number: int) -> bytes:
    parts = bytearray()
    while number > 0x7F:
        parts.append(number & 0x7F | 0x80)
        number >>= 7
    parts.append(number)
    return bytes(parts)
