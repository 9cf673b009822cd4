import pathlib
import pickle
from typing import Any

import pytest
from hypothesis import given
from hypothesis import strategies as st

import tarn
from conftest import FLOW, HEATING

NAMES = st.text("ABxy 0éß", min_size=1, max_size=6).map(str.strip).filter(bool)
VALUES = st.text(st.characters(blacklist_categories=("Cs", "Cc", "Zl", "Zp", "Zs")), max_size=12)


def trees(depth: int = 3) -> Any:
    params = st.dictionaries(NAMES, VALUES, max_size=3)
    if depth == 0:
        return params
    keys = st.one_of(NAMES, st.tuples(NAMES, NAMES).filter(lambda pair: pair[0] != pair[1]).map(":".join))
    objects = st.dictionaries(keys.map("/".__add__), trees(depth - 1), max_size=3)
    return st.tuples(params, objects).map(lambda both: both[0] | both[1])


@given(trees())
def test_dictionaries_survive_the_way_through_text(tree: dict[str, Any]) -> None:
    model = tarn.Model.from_dict(tree)
    assert tarn.Model.from_dict(model.tree).state == model.state
    assert tarn.Model.from_dict(model.state).state == model.state
    assert tarn.Model(model.text).same_as(model)
    assert tarn.Model.from_dict(tarn.Model(model.text).tree).same_as(model)


@pytest.mark.parametrize("file", [FLOW / "models" / "sound.tdf", FLOW / "models" / "faulty.tdf",
                                  HEATING / "models" / "house.tdf"], ids=lambda file: str(file.name))
def test_a_file_is_the_same_as_its_dictionaries(file: pathlib.Path) -> None:
    model = tarn.Model.read(file)
    assert model.content == file.read_bytes()
    assert model.source == model.file == str(file)
    assert tarn.Model.from_dict(model.tree).same_as(model)


def test_an_object_beside_a_parameter_of_its_name_has_a_slash_before_its_key() -> None:
    tree = {"Case": {"Analysis": "Steady", "/Analysis": {"Step": "1"}}}
    model = tarn.Model.from_dict(tree)
    assert model.state == {"/Case": {"Analysis": "Steady"}, "/Case/Analysis": {"Step": "1"}}
    assert model.tree == tree


def test_objects_without_parameters_are_kept() -> None:
    model = tarn.Model.from_dict({"Case": {"Domain:rotor": {}}})
    assert model.state == {"/Case/Domain:rotor": {}}
    assert tarn.Model(model.text).tree == {"Case": {"Domain:rotor": {}}}


def test_parameters_of_the_root_are_kept() -> None:
    model = tarn.Model.from_dict({"Version": "3", "Case": {}})
    assert model.state == {"": {"Version": "3"}, "/Case": {}}
    assert tarn.Model(model.text).tree == {"Version": "3", "Case": {}}


def test_a_parameter_that_is_given_twice_is_an_error() -> None:
    with pytest.raises(ValueError, match="the parameter /Case/Title is given twice"):
        tarn.Model.from_dict({"Case": {"Title": "a"}, "/Case": {"Title": "b"}})


@pytest.mark.parametrize("value", [None, object(), {1, 2}, b"bytes", 3j, [["a"], {}]])
def test_other_values_are_an_error(value: str) -> None:
    with pytest.raises(TypeError):
        tarn.Model.from_dict({"Case": {"Title": value}})


@pytest.mark.parametrize("value", [float("nan"), float("inf"), -float("inf")])
def test_numbers_without_a_text_are_an_error(value: str) -> None:
    with pytest.raises(ValueError):
        tarn.value_text(value)


def test_a_key_that_is_no_text_is_an_error() -> None:
    with pytest.raises(TypeError, match="the key 3 in the object /Case is not a text"):
        tarn.Model.from_dict({"Case": {3: "x"}})


def test_malformed_lines_have_their_positions() -> None:
    model = tarn.Model("/Case/Title = Fan\nCase\n/Case/Domain:\n", source="fan.tdf")
    with pytest.raises(tarn.ModelError) as caught:
        model.state
    assert caught.value.source == "fan.tdf" and caught.value.fault_count == 2
    assert [(fault.line, fault.column) for fault in caught.value.faults] == [(2, 1), (3, 1)]
    assert str(caught.value).splitlines()[0].startswith("fan.tdf:2:1: ")
    again = pickle.loads(pickle.dumps(caught.value))
    assert again.faults == caught.value.faults and str(again) == str(caught.value)


def test_more_than_a_thousand_malformed_lines_are_counted() -> None:
    with pytest.raises(tarn.ModelError) as caught:
        tarn.Model("Case\n" * 1500, source="x").tree
    assert len(caught.value.faults) == 1000 and caught.value.fault_count == 1500
    assert str(caught.value).endswith("x: 500 further malformed lines")


def test_a_file_that_is_missing_is_an_error_of_python(tmp_path: pathlib.Path) -> None:
    with pytest.raises(FileNotFoundError):
        tarn.Model.read(tmp_path / "missing.tdf")


def test_a_value_that_text_cannot_hold_is_an_error() -> None:
    model = tarn.Model.from_dict({"Case": {"Title": "two\nlines"}})
    with pytest.raises(tarn.Error, match="Title"):
        model.text


def test_bytes_that_are_not_utf8_are_kept() -> None:
    raw = b"/Case/Title = K\xfchler\n"
    model = tarn.Model(raw)
    assert model.value("/Case", "Title") == "K\udcfchler"
    assert model.content == raw
    assert tarn.Model.from_dict(model.tree).content == b"Case:\n  Title = K\xfchler\nEND # Case:\n"
    assert "K\ufffdhler" in model._repr_html_()


def test_models_can_be_pickled() -> None:
    text = tarn.Model.read(HEATING / "models" / "house.tdf")
    state = tarn.Model.from_dict(text.tree)
    for model in (text, state):
        again = pickle.loads(pickle.dumps(model))
        assert again == model and again.state == model.state and again.file == model.file


def test_a_state_that_was_taken_can_be_changed_without_harm() -> None:
    model = tarn.Model("/Case/Title = Fan\n")
    model.state["/Case"]["Title"] = "Pump"
    model.tree["Case"]["Title"] = "Pump"
    assert model.value("/Case", "Title") == "Fan"
