import pathlib
import pickle
from collections.abc import Callable
from typing import Any

import pytest

import tarn
from conftest import FLOW, HEATING

PUMP = """\
Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Speed:
        Required: yes
        Parameter Type: Real
"""


def test_a_folder_means_its_rule_files_by_name() -> None:
    rules = tarn.load_rules(HEATING / "rules")
    names = [name.rpartition("/")[2] for name, _ in rules.sources]
    assert names == ["10-plant.rules.yaml", "20-boiler.rules.yaml", "30-circuit.rules.yaml", "40-control.rules.yaml"]
    assert rules.sources[0][1] == (HEATING / "rules" / "10-plant.rules.yaml").read_bytes()


def test_several_texts_are_one_rule_base() -> None:
    more = "Rule Database: 1\nObjects:\n  /Pump:\n    Parameters:\n      Head:\n        Parameter Type: Real\n"
    rules = tarn.parse_rules({"pump.rules.yaml": PUMP, "head.rules.yaml": more})
    session = tarn.Session(rules, {"Pump": {"Speed": 50}})
    assert session.param_names() == ("Speed", "Head")


def test_errors_have_the_position_of_each_problem() -> None:
    with pytest.raises(tarn.RuleError) as caught:
        tarn.parse_rules({"a.rules.yaml": PUMP.replace("Real", "Reel"), "b.rules.yaml": "Rule Database: 1\nList:\n"})
    first, second = caught.value.diagnostics
    assert (first.source, first.line, first.column, first.severity) == ("a.rules.yaml", 8, 25, "error")
    assert (second.source, second.line, second.column, second.code) == ("b.rules.yaml", 2, 1, "unknown-key")
    assert str(caught.value) == (f"{first}\n{second}")
    assert "^~~~" in str(first)


def test_a_file_that_cannot_be_read_is_a_rule_error_beside_those_of_other_files(tmp_path: pathlib.Path) -> None:
    broken = tmp_path / "broken.rules.yaml"
    broken.write_text("Rule Database: 1\nList:\n")
    with pytest.raises(tarn.RuleError) as caught:
        tarn.load_rules(tmp_path / "missing.rules.yaml", broken)
    assert [one.code for one in caught.value.diagnostics] == ["unreadable-file", "unknown-key"]


def test_no_files_and_no_texts_are_errors() -> None:
    loads: list[Callable[[], object]] = [tarn.load_rules, lambda: tarn.parse_rules({})]
    for load in loads:
        with pytest.raises(tarn.RuleError) as caught:
            load()
        assert [one.code for one in caught.value.diagnostics] == ["no-rule-files"]


def test_rules_are_pickled_by_their_text(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "pump.rules.yaml"
    file.write_text(PUMP)
    rules = tarn.load_rules(file)
    pickled = pickle.dumps(rules)
    file.unlink()
    assert PUMP.encode() in pickled
    again = pickle.loads(pickled)
    assert again == rules and again.digest == rules.digest
    assert tarn.Session(again, {"Pump": {"Speed": 50}}).look("Speed").rule == tarn.Place(str(file), 6, 7)


def test_a_process_parses_equal_pickled_rules_once(flow: tarn.Rules) -> None:
    pickled = pickle.dumps(flow)
    first = pickle.loads(pickled)
    assert pickle.loads(pickled) is first


def test_rules_compare_by_their_texts(flow: tarn.Rules, heating: tarn.Rules) -> None:
    assert flow == tarn.load_rules(FLOW / "rules") and hash(flow) == hash(tarn.load_rules(FLOW / "rules"))
    assert flow != heating


def test_lint_finds_what_is_doubtful() -> None:
    text = PUMP + "        Available: ${Speed} == 'fast'\n"
    found = tarn.lint_text(text, "pump.rules.yaml")
    assert [(one.source, one.line, one.column, one.severity) for one in found] == [
        ("pump.rules.yaml", 9, 20, "warning"), ("pump.rules.yaml", 9, 32, "warning")]
    assert tarn.lint_rules(HEATING / "rules") == ()


def test_an_error_can_be_pickled() -> None:
    with pytest.raises(tarn.RuleError) as caught:
        tarn.parse_rules("Rule Database: 1\nList:\n")
    again = pickle.loads(pickle.dumps(caught.value))
    assert again.diagnostics == caught.value.diagnostics and str(again) == str(caught.value)


@pytest.mark.parametrize("wrong", [3, None, b"Rule Database: 1", "\ud800"])
def test_a_path_that_is_no_text_is_an_error_of_python(wrong: Any) -> None:
    with pytest.raises((TypeError, ValueError)):
        tarn.load_rules(wrong)
