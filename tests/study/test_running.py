"""Making the points of a study: the table, models, going on after a stop, and several processes."""

import csv
import io
import os
import pathlib
import signal
import sys
import time
from collections.abc import Sequence
from typing import Any

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import tarn
from conftest import MODEL, RULES, Describe, run_command, study_process
from parquet_reader import read_parquet
from tarn.study import (Design, Factor, FullFactorial, LatinHypercube, Range, Study, StudyError, Table, prepare, read_study,
                        run_study)

CHANNEL = """
Factors:
  regime: {Parameter: /Case/Regime, Values: [Laminar, Turbulent]}
  cells: {Parameter: /Case/Cells, Values: [100, 300, 5000, lots]}
  rough: {Parameter: /Case/Roughness, Values: [1], Units: mm}
Design: Full Factorial
Outputs: [/Case/Model, "/Case/Pump:*/Head"]
"""


def channel(factors: Sequence[Factor], design: Design, **others: Any) -> Study:
    return Study(rules=RULES, model=MODEL, factors=factors, design=design, **others)


def table_of(folder: pathlib.Path) -> list[dict[str, str]]:
    """The rows of the table as dictionaries."""
    text = (pathlib.Path(folder) / "table.csv").read_text(encoding="utf-8")
    return list(csv.DictReader(io.StringIO(text)))


def contents(folder: pathlib.Path) -> dict[str, bytes]:
    """Everything that a study has written and that does not depend on how it was run: the table and the models."""
    folder = pathlib.Path(folder)
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in [folder / "table.csv", *sorted(folder.glob("models/*/*.tdf"))]}


def test_the_table_says_what_became_of_every_point(described: Describe, tmp_path: pathlib.Path) -> None:
    out = tmp_path / "out"
    assert run_command(described(CHANNEL), "--out", out, "--jobs", "1") == (
        1, "", f"study: 8 points: 4 sound, 4 with errors, 5 not as asked. The table is {out}/table.csv.\n")
    assert (out / "table.csv").read_text(encoding="utf-8") == (pathlib.Path(__file__).parent / "data/channel.csv").read_text()


def test_sound_points_are_written_as_model_text_that_validates(described: Describe, tmp_path: pathlib.Path) -> None:
    out = tmp_path / "out"
    run_command(described(CHANNEL), "--out", out, "--jobs", "1")
    rows = table_of(out)
    rules = tarn.load_rules(RULES)
    for row in rows:
        assert bool(row["model file"]) == (row["status"] == "sound")
        if row["model file"]:
            model = tarn.Model.read(out / row["model file"])
            assert not tarn.Review(rules).judge(model).errors
            assert (model.value("/Case", "Regime"), model.value("/Case", "Model")) == (row["regime"], row["/Case/Model"])
    # The rest of the base model is kept as it was, comments included.
    assert (out / rows[0]["model file"]).read_text().startswith("# The base model of the studies.\nCase:\n")


def test_the_order_of_factors_does_not_matter_for_edits_that_need_each_other(tmp_path: pathlib.Path) -> None:
    """The model SST is refused until the flow is turbulent."""
    model, regime = Factor("model", "/Case/Model", ["SST"]), Factor("regime", "/Case/Regime", ["Turbulent"])
    cells = Factor("cells", "/Case/Cells", [500])
    for name, factors in (("a", [model, regime, cells]), ("b", [regime, model, cells])):
        run_study(channel(factors, FullFactorial()), tmp_path / name, jobs=1)
        (row,) = table_of(tmp_path / name)
        assert (row["status"], row["as asked"], row["refused"]) == ("sound", "yes", "0")


def test_a_pattern_sets_all_parameters_that_it_meets(tmp_path: pathlib.Path) -> None:
    study = channel([Factor("head", "/Case/Pump:*/Head", ["0.5 [bar]"])], FullFactorial(),
                    outputs={"left": "/Case/Pump:left/Head", "heads": "/Case/Pump:*/Head"})
    run_study(study, tmp_path / "out", jobs=1)
    (row,) = table_of(tmp_path / "out")
    assert {name: row[name] for name in row if "ead" in name or name == "left"} == {
        "head": "0.5 [bar]", "left": "0.5 [bar]", "heads /Case/Pump:left/Head": "0.5 [bar]",
        "heads /Case/Pump:right/Head": "0.5 [bar]"}


def test_an_empty_cell_of_a_table_leaves_the_parameter_as_the_model_has_it(tmp_path: pathlib.Path) -> None:
    study = channel([Factor("cells", "/Case/Cells")], Table(["cells"], [["20"], [""]]), outputs=["/Case/Cells"])
    run_study(study, tmp_path / "out", jobs=1)
    assert [(row["cells"], row["/Case/Cells"]) for row in table_of(tmp_path / "out")] == [("20", "20"), ("", "100")]


@pytest.mark.parametrize("models, written", [("sound", 4), ("as asked", 1), ("none", 0)])
def test_the_study_says_which_models_are_written(described: Describe, tmp_path: pathlib.Path, models: str,
                                                 written: int) -> None:
    run_study(read_study(described(CHANNEL + f"Models: {models}\n")), tmp_path / "out", jobs=1)
    assert len(list((tmp_path / "out").glob("models/*/*.tdf"))) == written


def hypercube(number: int, seed: int = 3) -> Study:
    return channel([Factor("cells", "/Case/Cells", Range(10, 1000, whole=True)),
                    Factor("regime", "/Case/Regime", ["Laminar", "Turbulent"]),
                    Factor("head", "/Case/Pump:*/Head", Range(1, 5), units="bar")],
                   LatinHypercube(number), seed=seed, outputs=["/Case/Model"])


@settings(max_examples=12, deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(batch=st.integers(1, 9), parts=st.integers(1, 4), jobs=st.integers(1, 3))
def test_batches_processes_and_parts_have_no_influence(tmp_path_factory: pytest.TempPathFactory, batch: int, parts: int,
                                                       jobs: int) -> None:
    folder = tmp_path_factory.mktemp("same")
    run_study(hypercube(23), folder / "plain", jobs=1)
    for part in range(1, parts + 1):
        outcome = run_study(hypercube(23), folder / "divided", jobs=jobs, batch=batch, part=(part, parts))
    assert outcome.missing == 0
    assert contents(folder / "plain") == contents(folder / "divided")


def test_the_same_seed_gives_the_same_table_and_another_one_does_not(tmp_path: pathlib.Path) -> None:
    for name, seed in (("a", 1), ("b", 1), ("c", 2)):
        run_study(hypercube(10, seed), tmp_path / name, jobs=1)
    assert contents(tmp_path / "a") == contents(tmp_path / "b") != contents(tmp_path / "c")


def test_a_finished_study_makes_nothing_again(tmp_path: pathlib.Path) -> None:
    run_study(hypercube(10), tmp_path, jobs=1)
    times = [path.stat().st_mtime_ns for path in tmp_path.glob("models/*/*.tdf")]
    outcome = run_study(hypercube(10), tmp_path, jobs=1)
    assert (outcome.counts.made, outcome.counts.finished) == (0, 10)
    assert [path.stat().st_mtime_ns for path in tmp_path.glob("models/*/*.tdf")] == times


def journal_lines(folder: pathlib.Path) -> int:
    try:
        return (folder / "journal.jsonl").read_bytes().count(b"\n")
    except FileNotFoundError:
        return 0


@pytest.mark.parametrize("jobs", [1, 2])
def test_a_killed_study_goes_on_and_becomes_the_same(described: Describe, tmp_path: pathlib.Path, jobs: int) -> None:
    description = described("""
Factors:
  cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}
  head: {Parameter: "/Case/Pump:*/Head", Range: [1, 5], Units: bar}
Design: {Latin Hypercube: 4000}
""")
    out = tmp_path / "killed"
    for wanted in (1, 700, 2000):
        process = study_process(description, "--out", out, "--jobs", jobs, "--batch", 10, start_new_session=True)
        while process.poll() is None and journal_lines(out) < wanted:
            time.sleep(0.005)
        assert process.poll() is None, process.communicate()
        process.kill()
        process.communicate()
    before = journal_lines(out)
    status, _, messages = run_command(description, "--out", out, "--jobs", jobs)
    assert status == 0, messages
    assert f"{before:,} of them were finished before." in messages
    run_command(description, "--out", tmp_path / "plain", "--jobs", 2)
    assert contents(out) == contents(tmp_path / "plain")
    # No point was made twice: each has one line.
    assert journal_lines(out) == 4000


@given(cut=st.integers(0, 10_000))
@settings(max_examples=30, deadline=None)
def test_a_journal_that_was_cut_anywhere_is_completed(tmp_path_factory: pytest.TempPathFactory, cut: int) -> None:
    folder = tmp_path_factory.mktemp("cut")
    run_study(hypercube(8), folder, jobs=1)
    whole = contents(folder)
    journal = folder / "journal.jsonl"
    data = journal.read_bytes()
    journal.write_bytes(data[:cut % (len(data) + 1)])
    run_study(hypercube(8), folder, jobs=1)
    assert contents(folder) == whole
    assert sorted(journal.read_bytes().splitlines()) == sorted(data.splitlines())


def test_a_model_that_was_lost_with_the_power_is_written_again(tmp_path: pathlib.Path) -> None:
    run_study(hypercube(5), tmp_path, jobs=1)
    whole = contents(tmp_path)
    first, second = sorted(tmp_path.glob("models/*/*.tdf"))[:2]
    first.unlink()
    second.write_bytes(b"")
    assert run_study(hypercube(5), tmp_path, jobs=1).counts.made == 2
    assert contents(tmp_path) == whole


def test_a_process_that_is_killed_costs_no_point(described: Describe, tmp_path: pathlib.Path) -> None:
    description = described("Factors: {cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}}\n"
                            "Design: {Latin Hypercube: 3000}\n")
    process = study_process(description, "--out", tmp_path / "out", "--jobs", 2, "--batch", 20)
    while process.poll() is None and journal_lines(tmp_path / "out") < 200:
        time.sleep(0.005)
    children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text().split()
    os.kill(int(children[0]), signal.SIGKILL)
    _, messages = process.communicate(timeout=120)
    assert process.returncode == 0, messages
    run_command(description, "--out", tmp_path / "plain", "--jobs", 2)
    assert contents(tmp_path / "out") == contents(tmp_path / "plain")


def test_children_end_with_a_killed_study(described: Describe, tmp_path: pathlib.Path) -> None:
    description = described("Factors: {cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}}\n"
                            "Design: {Latin Hypercube: 100000}\n")
    process = study_process(description, "--out", tmp_path / "out", "--jobs", 2)
    while process.poll() is None and not journal_lines(tmp_path / "out"):
        time.sleep(0.005)
    children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text().split()
    assert len(children) == 2
    process.kill()
    process.communicate()
    until = time.monotonic() + 10
    while any(pathlib.Path(f"/proc/{child}/exe").exists() for child in children) and time.monotonic() < until:
        time.sleep(0.02)
    assert not any(pathlib.Path(f"/proc/{child}/exe").exists() for child in children)


def test_ctrl_c_keeps_what_is_finished_and_says_so(described: Describe, tmp_path: pathlib.Path) -> None:
    description = described("Factors: {cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}}\n"
                            "Design: {Latin Hypercube: 100000}\n")
    process = study_process(description, "--out", tmp_path / "out", "--jobs", 2)
    while process.poll() is None and not journal_lines(tmp_path / "out"):
        time.sleep(0.005)
    process.send_signal(signal.SIGINT)
    _, messages = process.communicate(timeout=60)
    assert (process.returncode, messages) == (
        130, "study: Stopped. The finished points are kept; run the same command again to go on.\n")


def refused(study: Study, folder: str | os.PathLike[str], **options: Any) -> str:
    with pytest.raises(StudyError) as caught:
        run_study(study, folder, jobs=1, **options)
    return str(caught.value)


def test_a_folder_of_another_study_is_refused_with_what_differs(tmp_path: pathlib.Path) -> None:
    run_study(hypercube(4), tmp_path, jobs=1)
    assert refused(hypercube(4, seed=9), tmp_path) == (
        f"{tmp_path} holds another study, with a difference in seed; give another folder, or remove this one to begin "
        "again.")


def test_a_folder_with_other_files_is_refused(tmp_path: pathlib.Path) -> None:
    (tmp_path / "thesis.txt").write_text("precious")
    assert refused(hypercube(4), tmp_path) == (
        f"{tmp_path} is neither empty nor the folder of a study; give another one.")


def test_two_processes_cannot_run_the_same_part(described: Describe, tmp_path: pathlib.Path) -> None:
    description = described("Factors: {cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}}\n"
                            "Design: {Latin Hypercube: 100000}\n")
    process = study_process(description, "--out", tmp_path / "out", "--jobs", 1)
    while process.poll() is None and not journal_lines(tmp_path / "out"):
        time.sleep(0.005)
    assert run_command(description, "--out", tmp_path / "out")[2] == (
        f"study: Another process is running this study: {tmp_path}/out/journal.jsonl is locked.\n")
    process.kill()
    process.communicate()


def test_a_part_says_what_other_parts_have_to_do(described: Describe, tmp_path: pathlib.Path) -> None:
    description = described(CHANNEL)
    assert run_command(description, "--out", tmp_path / "out", "--part", "1/2")[2] == (
        "study: 4 points: 1 sound, 3 with errors, 2 not as asked. 4 points of other parts are not finished, so there is no "
        "table yet.\n")
    assert run_command(description, "--out", tmp_path / "out", "--part", "2/2")[2] == (
        "study: 4 points: 3 sound, 1 with errors, 3 not as asked. "
        f"The table is {tmp_path}/out/table.csv.\n")


def test_parquet_has_the_same_cells_as_csv(tmp_path: pathlib.Path) -> None:
    run_study(hypercube(12), tmp_path, jobs=1)
    assert run_study(hypercube(12), tmp_path, jobs=1, table="parquet").table == str(tmp_path / "table.parquet")
    columns, rows = read_parquet(tmp_path / "table.parquet")
    assert [as_in_csv(row) for row in rows] == table_of(tmp_path)
    assert {name for name, kind, _ in columns if kind == 2} == {
        "point", "refused", "waiting", "adjusted", "converted", "changed", "errors", "warnings"}
    assert {name for name, kind, _ in columns if kind == 0} == {"as asked"}


def as_in_csv(row: dict[str, Any]) -> dict[str, str]:
    return {name: "" if cell is None else ("yes" if cell else "no") if isinstance(cell, bool) else str(cell)
            for name, cell in row.items()}


def test_a_disk_that_is_full_is_reported(described: Describe) -> None:
    if not os.path.exists("/dev/full"):
        pytest.skip("there is no /dev/full")
    assert refused(hypercube(4), "/dev/full").startswith("/dev/full")


def test_the_points_can_be_printed_and_used_as_a_table(described: Describe, tmp_path: pathlib.Path) -> None:
    status, shown, _ = run_command(described(CHANNEL), "--points")
    assert (status, shown.splitlines()[:2]) == (0, ["regime,cells,rough", "Laminar,100,1 [mm]"])
    (tmp_path / "points.csv").write_text(shown)
    again = described("""
Factors: {regime: {Parameter: /Case/Regime}, cells: {Parameter: /Case/Cells}, rough: {Parameter: /Case/Roughness}}
Design: {Table: points.csv}
""", "again.yaml")
    assert run_command(again, "--points") == (0, shown, "")


@pytest.mark.parametrize("arguments, message", [
    ([], "the following arguments are required: STUDY"),
    (["s.yaml"], "give --out FOLDER, or --points to see the design"),
    (["s.yaml", "--out", "o", "--jobs", "0"], "argument --jobs: '0' is not a whole number above 0"),
    (["s.yaml", "--out", "o", "--part", "3/2"], "argument --part: '3/2' is not a part such as 3/16"),
    (["s.yaml", "--out", "o", "--jobs", "2", "--scheduler", "tcp://a"],
     "--jobs is for this machine; with --scheduler the workers decide"),
])
def test_wrong_usage_is_explained(arguments: list[str], message: str) -> None:
    status, _, messages = run_command(*arguments)
    assert status == 2 and messages.endswith(f"error: {message}\n")


def test_mistakes_end_with_status_2_and_are_listed(described: Describe) -> None:
    path = described("Factor: 1\n")
    assert run_command(path, "--out", "o") == (2, "", f"""\
study: {path}:1:1: The study needs the key "Design".
study: {path}:4:1: A study has no key "Factor"; did you mean "Factors"?
""")


def test_a_study_goes_on_from_another_folder(described: Describe, tmp_path: pathlib.Path,
                                             monkeypatch: pytest.MonkeyPatch) -> None:
    """Neither the folder of the caller nor that of the study belongs to the study."""
    monkeypatch.chdir(tmp_path)
    description = described(CHANNEL)
    run_command("study.yaml", "--out", "out")
    (tmp_path / "moved").mkdir()
    description.rename(tmp_path / "moved/study.yaml")
    monkeypatch.chdir("/")
    _, _, messages = run_command(tmp_path / "moved/study.yaml", "--out", tmp_path / "out")
    assert "8 of them were finished before." in messages
