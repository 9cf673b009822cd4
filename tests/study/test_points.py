"""The laws of studies: a point is what a session edited by hand becomes, and nothing about how a study runs matters."""

import pathlib
import random
import time
from typing import Any

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import tarn
from conftest import MODEL, RULES, Describe, run_command, study_process
from tarn.study import Factor, LatinHypercube, Range, Study, Table, run_study
from test_running import contents, hypercube, journal_lines, table_of

HEATING = pathlib.Path(__file__).resolve().parents[2] / "examples" / "heating"

# For each set-up: rules, model, and parameters with values, of which some can never be, or only together with others.
CHANNEL = (RULES, MODEL, {
    "/Case/Regime": ["Laminar", "Turbulent", "laminar"],
    "/Case/Model": ["None", "SST", "K Epsilon"],
    "/Case/Roughness": ["1 [mm]", "-1 [m]", "rough"],
    "/Case/Cells": ["10", "500", "5000", "many"],
    "/Case/Pump:*/Head": ["0.5 [bar]", "100", "3 [kg]"],
})
HOUSE = (str(HEATING / "rules"), str(HEATING / "models" / "house.tdf"), {
    "/Plant/Boiler:main/Fuel": ["Gas", "Oil", "Pellets", "Electricity", "Coal"],
    "/Plant/Boiler:main/Gas Pressure": ["18 [mbar]", "25 [mbar]"],
    "/Plant/Boiler:main/Rated Power": ["9 [kW]", "60000 [W]", "18"],
    "/Plant/Boiler:main/Condensing": ["yes", "no"],
    "/Plant/Building": ["House", "Office"],
    "/Plant/Circuit:ground/Emitters": ["Floor", "Radiators"],
    "/Plant/Circuit:*/Flow Temperature": ["30 [degC]", "55 [degC]", "120 [degC]"],
    "/Plant/Circuit:*/Pump/Head": ["0.2 [bar]", "0.6 [bar]"],
})


@st.composite
def studies(draw: Any) -> tuple[Study, list[list[str | None]]]:
    """A study over some parameters in any order, and the values of its points."""
    rules, model, values = draw(st.sampled_from([CHANNEL, HOUSE]))
    paths = draw(st.lists(st.sampled_from(list(values)), min_size=1, unique=True))
    row = st.tuples(*(st.none() | st.sampled_from(values[path]) for path in paths)).map(list)
    rows = draw(st.lists(row, min_size=1, max_size=4))
    names = [f"f{index}" for index in range(len(paths))]
    factors = [Factor(name, path) for name, path in zip(names, paths)]
    return Study(rules=rules, model=model, factors=factors, design=Table(names, rows)), rows


def by_hand(study: Study, values: list[str | None]) -> tuple[tarn.Session, int, int]:
    """A session in which somebody sets one value after the other, and tries those again that were refused before. Also
    the number of values that stay refused, and of those that wait."""
    session = tarn.Session(tarn.load_rules(*study.rule_paths), study.model)
    asked = []
    for factor, value in zip(study.factors, values):
        for path in factor.parameters:
            objects, _, name = path.rpartition("/")
            kind = objects.partition(":*")
            met = [path] if not kind[1] else [
                f"{child}{kind[2]}/{name}" for child in session.children() if child.startswith(kind[0] + ":")]
            asked += [(one, value) for one in met if value is not None]
    left = asked
    while True:
        refused = [(path, value) for path, value in left if not session.set(path, value).applied]
        if len(refused) in (0, len(left)):
            break
        left = refused
    waiting = sum(session.param(path).waiting is not None for path, value in asked if (path, value) not in refused)
    return session, len(refused), waiting


@settings(max_examples=60, deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
@given(made=studies())
def test_a_point_is_what_a_session_edited_by_hand_becomes(tmp_path_factory: pytest.TempPathFactory,
                                                        made: tuple[Study, list[list[str | None]]]) -> None:
    study, values = made
    folder = tmp_path_factory.mktemp("law")
    run_study(study, folder, jobs=1)
    for row, one in zip(table_of(folder), values, strict=True):
        session, refused, waiting = by_hand(study, one)
        review = session.review()
        assert (row["errors"], row["warnings"]) == (str(len(review.errors)), str(len(review.warnings)))
        assert (row["status"] == "sound") == (not review.errors)
        assert (row["refused"], row["waiting"]) == (str(refused), str(waiting))
        if row["status"] == "sound":
            assert (folder / row["model file"]).read_text(encoding="utf-8") == session.text
        else:
            assert not row["model file"]


# The seed is so long that hypothesis drops some of its own examples as too large. That says nothing about studies.
@settings(max_examples=15, deadline=None,
          suppress_health_check=[HealthCheck.function_scoped_fixture, HealthCheck.data_too_large])
@given(number=st.integers(1, 60), seed=st.integers(0, 2**70), batch=st.integers(1, 70) | st.none(), parts=st.integers(1, 5),
       jobs=st.integers(1, 4))
def test_the_seed_alone_decides(tmp_path_factory: pytest.TempPathFactory, number: int, seed: int, batch: int | None,
                                parts: int, jobs: int) -> None:
    folder = tmp_path_factory.mktemp("seed")
    run_study(hypercube(number, seed), folder / "plain", jobs=1)
    for part in range(1, parts + 1):
        run_study(hypercube(number, seed), folder / "divided", jobs=jobs, batch=batch, part=(part, parts))
    assert contents(folder / "plain") == contents(folder / "divided")


def test_a_factor_has_the_same_values_whatever_else_varies(tmp_path: pathlib.Path) -> None:
    cells = Factor("cells", "/Case/Cells", Range(10, 1000, whole=True))
    regime = Factor("regime", "/Case/Regime", ["Laminar", "Turbulent"])
    for name, factors in (("alone", [cells]), ("both", [regime, cells])):
        study = Study(rules=RULES, model=MODEL, factors=factors, design=LatinHypercube(40), seed=5)
        run_study(study, tmp_path / name, jobs=1)
    alone, both = (table_of(tmp_path / name) for name in ("alone", "both"))
    assert [row["cells"] for row in alone] == [row["cells"] for row in both]


@pytest.mark.parametrize("jobs", [1, 3])
def test_kills_at_random_moments_lose_and_repeat_nothing(described: Describe, tmp_path: pathlib.Path,
                                                         jobs: int) -> None:
    points = 1500
    description = described(f"""
Factors:
  cells: {{Parameter: /Case/Cells, Range: [10, 1200], Whole Numbers: yes}}
  regime: {{Parameter: /Case/Regime, Values: [Laminar, Turbulent]}}
  head: {{Parameter: "/Case/Pump:*/Head", Range: [1, 5], Units: bar}}
Design: {{Latin Hypercube: {points}}}
""")
    run_command(description, "--out", tmp_path / "plain", "--jobs", 1)
    out, moments = tmp_path / "out", random.Random(jobs)
    for _ in range(6):
        process = study_process(description, "--out", out, "--jobs", jobs, "--batch", moments.randint(1, 40))
        wanted = journal_lines(out) + moments.randint(0, points // 10)
        while process.poll() is None and journal_lines(out) < wanted:
            pass
        time.sleep(moments.random() * 0.02)
        process.kill()
        process.communicate()
    assert 0 < journal_lines(out)
    run_command(description, "--out", out, "--jobs", jobs)
    assert contents(out) == contents(tmp_path / "plain")
    assert journal_lines(out) == points
