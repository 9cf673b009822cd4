import itertools
import pathlib
import pickle
import threading
from collections.abc import Iterator
from typing import Any

import pytest

import tarn
from conftest import FLOW, HEATING

MODELS = [str(FLOW / "models" / name) for name in ("sound.tdf", "faulty.tdf", "early.tdf")]


def test_findings_have_their_places_in_the_text(flow: tarn.Rules) -> None:
    found = tarn.Review(flow).judge(MODELS[1])
    assert found.errors and all(one.places for one in found if one.code != "global-check-failed")
    assert {one.places[0].file for one in found if one.places} == {MODELS[1]}


def test_a_model_without_text_has_the_same_findings_without_places(flow: tarn.Rules) -> None:
    model = tarn.Model.read(MODELS[1])
    text = tarn.Review(flow).judge(model)
    state = tarn.Review(flow).judge(model.tree)
    repeated = {"repeated-parameter", "conflicting-values"}
    assert [one.message for one in state] == [one.message for one in text if one.code not in repeated]
    assert not any(one.places for one in state)


def test_options_choose_what_is_judged(flow: tarn.Rules) -> None:
    whole = tarn.Review(flow).judge(MODELS[1])
    part = tarn.Review(flow, roots=["/Case/Output"], phases="dependency").judge(MODELS[1])
    assert 0 < len(part) < len(whole)
    assert {one.kind for one in tarn.Review(flow, only_validator=True).judge(MODELS[1])} <= {"dependency", "global"}
    missing = tarn.Review(flow, roots=["/Case/Domain:nowhere"]).judge(MODELS[0])
    assert missing.missing_roots == ("/Case/Domain:nowhere",) and len(missing) == 0
    with pytest.raises(ValueError, match="phases is"):
        tarn.Review(flow, phases="some")  # type: ignore[arg-type]


def test_a_session_reviews_its_result(heat_sink: tarn.Session) -> None:
    assert len(heat_sink.review()) == 0
    heat_sink.set("Maximum Speed", "-1 [m s^-1]").or_raise()
    assert "below-lower-bound" in {one.code for one in heat_sink.review() if one.name == "Maximum Speed"}


@pytest.mark.parametrize("jobs", [1, 2, 7, None])
def test_results_are_in_the_order_of_the_models(flow: tarn.Rules, jobs: int) -> None:
    models = [MODELS[i % 3] for i in range(40)]
    results = list(tarn.review(flow, models, jobs=jobs))
    assert [one.model for one in results] == models
    for i in range(3):
        alone = tarn.Review(flow).judge(MODELS[i])
        assert all(one.findings == alone for one in results[i::3])


def test_a_model_that_cannot_be_judged_does_not_stop_the_others(flow: tarn.Rules, tmp_path: pathlib.Path) -> None:
    broken = tmp_path / "broken.tdf"
    broken.write_text("Case\n")
    models: list[Any] = [MODELS[0], tmp_path / "missing.tdf", broken, {"Case": {"Title": "Fan"}},
                         tarn.Model("x\n", source="x")]
    results = list(tarn.review(flow, models, jobs=2))
    assert [type(one.error) for one in results] == [
        type(None), FileNotFoundError, tarn.ModelError, type(None), tarn.ModelError]
    assert [one.ok for one in results] == [True, False, False, False, False]
    assert [one.model for one in results] == [MODELS[0], str(tmp_path / "missing.tdf"), str(broken), "<dictionary>",
                                              "x"]


def test_models_are_taken_only_a_few_ahead(flow: tarn.Rules) -> None:
    taken = itertools.count()
    results = tarn.review(flow, (MODELS[next(taken) % 3] for _ in itertools.repeat(None)), jobs=2)
    assert [next(results).model for _ in range(10)] == [MODELS[i % 3] for i in range(10)]
    results.close()
    assert next(taken) < 10 + 4 * 2 + 2


def test_the_iterable_of_models_runs_in_the_thread_that_asks(flow: tarn.Rules) -> None:
    threads = set()

    def models() -> Iterator[str]:
        for _ in range(20):
            threads.add(threading.current_thread())
            yield MODELS[0]

    list(tarn.review(flow, models(), jobs=3))
    assert threads == {threading.current_thread()}


def test_no_thread_is_left_over(flow: tarn.Rules) -> None:
    before = threading.active_count()
    results = tarn.review(flow, MODELS * 10, jobs=4)
    next(results)
    results.close()
    assert threading.active_count() == before


def test_an_error_of_the_iterable_is_that_of_the_caller(flow: tarn.Rules) -> None:
    def models() -> Iterator[str]:
        yield MODELS[0]
        raise RuntimeError("no more")

    with pytest.raises(RuntimeError, match="no more"):
        list(tarn.review(flow, models()))


def test_jobs_must_be_positive(flow: tarn.Rules) -> None:
    with pytest.raises(ValueError, match="jobs is 0"):
        tarn.review(flow, MODELS, jobs=0)


def test_a_review_can_be_pickled(heating: tarn.Rules) -> None:
    judge = tarn.Review(heating, roots=["/Plant"], phases="global")
    again = pickle.loads(pickle.dumps(judge))
    file = HEATING / "models" / "office.tdf"
    assert again.judge(file) == judge.judge(file)
