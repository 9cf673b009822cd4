"""A second reading of the Parquet format, from its description: what a file of plain pages with gzip says."""

import gzip
import pathlib
import struct
from typing import Any


class Thrift:
    """Reads the compact form of Thrift. A structure becomes a dictionary by numbers of fields."""

    def __init__(self, data: bytes, position: int = 0) -> None:
        self.data, self.position = data, position

    def byte(self) -> int:
        self.position += 1
        return self.data[self.position - 1]

    def varint(self) -> int:
        number, shift = 0, 0
        while True:
            byte = self.byte()
            number |= (byte & 127) << shift
            shift += 7
            if byte < 128:
                return number

    def value(self, kind: int) -> Any:
        if kind in (1, 2):
            return kind == 1
        if kind in (4, 5, 6):
            number = self.varint()
            return number // 2 if number % 2 == 0 else -(number // 2) - 1
        if kind == 8:
            length = self.varint()
            self.position += length
            return self.data[self.position - length:self.position].decode("utf-8")
        if kind == 9:
            header = self.byte()
            length = self.varint() if header >> 4 == 15 else header >> 4
            return [self.value(header & 15) for _ in range(length)]
        assert kind == 12, f"unexpected type {kind}"
        return self.structure()

    def structure(self) -> dict[int, Any]:
        fields: dict[int, Any] = {}
        number = 0
        while header := self.byte():
            number = number + (header >> 4) if header >> 4 else self.value(4)
            fields[number] = self.value(header & 15)
        return fields


def read_parquet(path: pathlib.Path) -> tuple[list[tuple[str, int, bool]], list[dict[str, Any]]]:
    """The columns, each with its number of the type and whether it is optional, and the rows."""
    data = path.read_bytes()
    assert data[:4] == data[-4:] == b"PAR1"
    (length,) = struct.unpack("<I", data[-8:-4])
    reader = Thrift(data, len(data) - 8 - length)
    footer = reader.structure()
    assert reader.position == len(data) - 8, "the description has another length than the file says"
    root, *schema = footer[2]
    assert root[5] == len(schema)
    columns = [(one[4], one[1], one[3] == 1) for one in schema]
    rows = []
    for group in footer[4]:
        assert group[2] == sum(chunk[3][6] for chunk in group[1])
        cells = [_chunk(data, chunk, group[3], column) for chunk, column in zip(group[1], columns, strict=True)]
        rows += [dict(zip((name for name, _, _ in columns), row)) for row in zip(*cells, strict=True)]
    assert len(rows) == footer[3]
    return columns, rows


def _chunk(data: bytes, chunk: dict[int, Any], rows: int, column: tuple[str, int, bool]) -> list[Any]:
    name, kind, optional = column
    description = chunk[3]
    assert (description[1], description[3], description[4], description[5]) == (kind, [name], 2, rows)
    reader = Thrift(data, description[9])
    header = reader.structure()
    assert header[1] == 0 and header[5][1] == rows
    page = gzip.decompress(data[reader.position:reader.position + header[3]])
    head = reader.position - description[9]
    assert (len(page) + head, header[3] + head) == (description[6], description[7]) and len(page) == header[2]
    present = [True] * rows
    if optional:
        (length,) = struct.unpack_from("<I", page)
        present, page = _levels(page[4:4 + length]), page[4 + length:]
        assert len(present) == rows
    values = iter(_values(kind, page, sum(present)))
    return [next(values) if one else None for one in present]


def _levels(data: bytes) -> list[bool]:
    reader, levels = Thrift(data), []
    while reader.position < len(data):
        run = reader.varint()
        assert run % 2 == 0, "only runs of equal levels are expected"
        levels += [bool(reader.byte())] * (run // 2)
    return levels


def _values(kind: int, page: bytes, number: int) -> list[Any]:
    if kind == 0:
        assert len(page) == (number + 7) // 8
        return [bool(page[index // 8] >> index % 8 & 1) for index in range(number)]
    if kind == 2:
        assert len(page) == 8 * number
        return [int.from_bytes(page[8 * index:8 * index + 8], "little", signed=True) for index in range(number)]
    assert kind == 6
    values, position = [], 0
    for _ in range(number):
        (length,) = struct.unpack_from("<I", page, position)
        values.append(page[position + 4:position + 4 + length].decode("utf-8"))
        position += 4 + length
    assert position == len(page)
    return values
