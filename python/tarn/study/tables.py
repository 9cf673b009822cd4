"""The table of a study: a row for each point, in the order of their numbers."""

from __future__ import annotations

import csv
import itertools
import os
from collections.abc import Iterator
from typing import Any

from tarn.study.errors import StudyError
from tarn.study.making import PreparedStudy
from tarn.study.parquet import Column, ParquetWriter
from tarn.study.storing import Store, model_name
from tarn.study.study import Study

FORMATS = ("csv", "parquet")

_COUNTS = ("refused", "waiting", "adjusted", "converted", "changed", "errors", "warnings")
_ROWS_AT_ONCE = 10_000


def check_format(table: str) -> None:
    """Raises `StudyError` for a format that is unknown."""
    if table not in FORMATS:
        raise StudyError(f'There is no format "{table}"; there are {" and ".join(FORMATS)}.')


def column_names(study: Study, prepared: PreparedStudy) -> list[str]:
    """The names of all columns, in their order."""
    return ["point", *(factor.name for factor in study.factors), "status", "as asked", *_COUNTS, "reasons", "findings",
            *output_names(study, prepared), "model file"]


def output_names(study: Study, prepared: PreparedStudy) -> list[str]:
    """The columns of the outputs. An output of several parameters has the path of each after its name."""
    names: list[str] = []
    left = list(prepared.outputs)
    for output, number in zip(study.columns, prepared.output_counts):
        items, left = left[:number], left[number:]
        name = output.name
        names += [item.text if not name else name if number == 1 else f"{name} {item.text}" for item in items]
    return names


def rows(store: Store, study: Study, prepared: PreparedStudy) -> Iterator[list[Any]]:
    """The rows of the table. Truth values, numbers and missing values are those of Python."""
    for number, record in enumerate(store.records()):
        if record is None:
            raise StudyError(f"Point {number} is not finished.")
        # A failed point has no outputs.
        outputs = record["outputs"] or [None] * len(prepared.outputs)
        yield [number, *study.points[number], record["status"], record["as_asked"], *(record[one] for one in _COUNTS),
               " | ".join(record["reasons"]), " | ".join(record["findings"]), *outputs,
               None if record["model"] is None else model_name(number)]


def write_table(store: Store, study: Study, prepared: PreparedStudy, table: str) -> str:
    """Writes the table beside the journal and returns its path. There is always the whole old or the whole new table."""
    path = store.folder / f"table.{table}"
    temporary = store.folder / f"table.{table}.{os.getpid()}"
    columns = column_names(study, prepared)
    write = _write_csv if table == "csv" else _write_parquet
    try:
        write(os.fspath(temporary), columns, rows(store, study, prepared))
        os.replace(temporary, path)
    except OSError as error:
        raise StudyError(f"{error.filename or path} cannot be written: {error.strerror}.") from None
    finally:
        temporary.unlink(missing_ok=True)
    return str(path)


def _write_csv(path: str, columns: list[str], content: Iterator[list[Any]]) -> None:
    with open(path, "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(columns)
        for row in content:
            writer.writerow(["" if cell is None else _yes_or_no(cell) for cell in row])


def _yes_or_no(cell: Any) -> Any:
    return ("yes" if cell else "no") if isinstance(cell, bool) else cell


def _write_parquet(path: str, columns: list[str], content: Iterator[list[Any]]) -> None:
    kinds = {"point": int, "as asked": bool, **{one: int for one in _COUNTS}}
    described = [Column(name, kinds[name]) if name in kinds else Column(name, str, optional=True) for name in columns]
    with ParquetWriter(path, described) as writer:
        while some := list(itertools.islice(content, _ROWS_AT_ONCE)):
            writer.write(some)
