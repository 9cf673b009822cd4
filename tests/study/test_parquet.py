"""Parquet files: the reader of the tests reads what the package writes. `data/checked.parquet` was also read by three
readers of other people, with the cells below. It shows that the reader of the tests understands the format as they do."""

import pathlib
from typing import Any

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import tarn.study.parquet
from conftest import DATA
from parquet_reader import read_parquet
from tarn.study.parquet import Column, ParquetWriter

COLUMNS = [Column("point", int), Column("fuel", str, True), Column("as asked", bool), Column("ünit", str, True)]
DESCRIBED = [("point", 2, False), ("fuel", 6, True), ("as asked", 0, False), ("ünit", 6, True)]


def checked_row(i: int) -> tuple[int, str | None, bool, str | None]:
    return i, None if i % 3 == 0 else f"{i} [kW] äö€", i % 2 == 0, None if i < 50 else "x" * i


def named(rows: list[Any]) -> list[dict[str, Any]]:
    return [dict(zip([one.name for one in COLUMNS], row)) for row in rows]


def test_the_reader_of_the_tests_understands_a_file_that_others_have_read() -> None:
    assert read_parquet(DATA / "checked.parquet") == (DESCRIBED, named([checked_row(i) for i in range(111)]))


def test_pyarrow_reads_the_file_if_there_is_one() -> None:
    parquet = pytest.importorskip("pyarrow.parquet")
    assert parquet.read_table(DATA / "checked.parquet").to_pylist() == named([checked_row(i) for i in range(111)])


TEXTS = st.none() | st.text(st.characters(blacklist_categories=("Cs",)), max_size=20)
ROWS = st.lists(st.tuples(st.integers(-2**63, 2**63 - 1), TEXTS, st.booleans(), TEXTS), max_size=40)


@settings(max_examples=60, deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(groups=st.lists(ROWS, max_size=20))
def test_every_row_is_read_as_it_was_written(tmp_path: pathlib.Path, groups: list[Any]) -> None:
    with ParquetWriter(tmp_path / "t.parquet", COLUMNS) as writer:
        for rows in groups:
            writer.write(rows)
    assert read_parquet(tmp_path / "t.parquet") == (DESCRIBED, named([row for rows in groups for row in rows]))


def test_rows_whose_texts_are_too_long_for_one_page_are_divided(tmp_path: pathlib.Path,
                                                               monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(tarn.study.parquet, "MOST_PAGE_BYTES", 100)
    rows = [checked_row(i) for i in range(60)]
    with ParquetWriter(tmp_path / "t.parquet", COLUMNS) as writer:
        writer.write(rows)
        assert len(writer._groups) > 10
    assert read_parquet(tmp_path / "t.parquet") == (DESCRIBED, named(rows))


def test_bytes_that_are_not_text_become_question_marks(tmp_path: pathlib.Path) -> None:
    with ParquetWriter(tmp_path / "t.parquet", [Column("text", str)]) as writer:
        writer.write([["a\udcffb"]])
    assert read_parquet(tmp_path / "t.parquet")[1] == [{"text": "a?b"}]


def test_more_columns_than_a_short_list_of_the_format_can_have(tmp_path: pathlib.Path) -> None:
    columns = [Column(f"c{i}", int) for i in range(40)]
    with ParquetWriter(tmp_path / "t.parquet", columns) as writer:
        writer.write([range(40), range(1, 41)])
    assert [list(row.values()) for row in read_parquet(tmp_path / "t.parquet")[1]] == [list(range(40)), list(range(1, 41))]
