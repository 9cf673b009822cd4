"""Descriptions in YAML: what they mean, and how mistakes are reported."""

import pathlib

import pytest

from conftest import MODEL, RULES, Describe
from tarn.study import (Factor, FullFactorial, LatinHypercube, LogNormal, Normal, OneAtATime, Output, Range, Study,
                        StudyError, Triangular, Values, prepare, read_study)


def faults_of(path: pathlib.Path) -> list[str]:
    """The mistakes that are found in a description, without the name of the file."""
    with pytest.raises(StudyError) as caught:
        prepare(read_study(path))
    return [str(fault).replace(f"{path}:", "").strip() for fault in caught.value.faults]


def test_a_description_means_what_it_says(described: Describe) -> None:
    study = read_study(described("""
Seed: 42
Root: /Case
Models: as asked
Factors:
  regime: {Parameter: /Case/Regime, Values: [Laminar, Turbulent], Base: Laminar}
  cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes, Steps: 5}
  rough: {Parameter: /Case/Roughness, Range: [0.1, 10], Logarithmic: yes, Units: mm}
  left: {Parameter: [/Case/Pump:left/Head], Normal: {Mean: 1200, Deviation: 50, Lowest: 0}, Units: Pa}
  right: {Parameter: "/Case/Pump:r*/Head", Log Normal: {Median: 2000, Spread: 0.1}, Units: Pa}
  scheme: {Parameter: /Case/Model, Triangular: {Lowest: 1, Peak: 2, Highest: 4}, Steps: 3}
Design: {Latin Hypercube: 100}
Outputs: {head: /Case/Pump:left/Head}
"""))
    assert study == Study(
        rules=[RULES], model=MODEL, root="/Case", seed=42, models="as asked", design=LatinHypercube(100),
        outputs=[Output("/Case/Pump:left/Head", "head")],
        factors=[
            Factor("regime", "/Case/Regime", Values(["Laminar", "Turbulent"]), base="Laminar"),
            Factor("cells", "/Case/Cells", Range(10, 1000, steps=5, whole=True)),
            Factor("rough", "/Case/Roughness", Range(0.1, 10, logarithmic=True), units="mm"),
            Factor("left", ["/Case/Pump:left/Head"], Normal(1200, 50, lowest=0), units="Pa"),
            Factor("right", "/Case/Pump:r*/Head", LogNormal(2000, 0.1), units="Pa"),
            Factor("scheme", "/Case/Model", Triangular(1, 2, 4, steps=3))])


def test_values_stay_as_they_are_written(described: Describe) -> None:
    study = read_study(described("Factors: {a: {Parameter: /Case/Cells, Values: [yes, 010, 1.50, null]}}\n"
                                 "Design: One at a Time\n"))
    assert study.factors[0].values == Values(["yes", "010", "1.50", "null"])
    assert study.design == OneAtATime()


def test_a_table_can_be_a_file_or_a_list_of_points(described: Describe, tmp_path: pathlib.Path) -> None:
    (tmp_path / "points.csv").write_text("regime,cells\nLaminar,50\n,60\n", encoding="utf-8")
    factors = "Factors: {regime: {Parameter: /Case/Regime}, cells: {Parameter: /Case/Cells}}\n"
    file = read_study(described(factors + "Design: {Table: points.csv}\n"))
    listed = read_study(described(factors + "Design: {Table: [{regime: Laminar, cells: 50}, {cells: 60}]}\n"))
    for study in (file, listed):
        assert [study.points[0], study.points[1]] == [("Laminar", "50"), (None, "60")]


def test_every_mistake_has_its_place_and_a_near_match(described: Describe) -> None:
    assert faults_of(described("""
Seeds: 4
Factors:
  regime: {Parameter: /Case/Regime, Value: [Laminar]}
  cells: {Parameter: /Case/Cells, Range: [10, many]}
  head: {Parameter: /Case/Pump:left/Head, Range: [5, 3]}
  rough: {Parameter: /Case/Roughness, Values: [1], Range: [1, 2]}
  model: {Values: [SST]}
Design: Latin hypercube
Models: all
""")) == [
        '5:1: A study has no key "Seeds"; did you mean "Seed"?',
        '7:37: Factor "regime" has no key "Value"; did you mean "Values"?',
        "8:47: The end of a range must be a number.",
        "9:50: The range ends at 3, which is not above its start 5.",
        '10:52: Factor "rough" has both "Values" and "Range"; keep one of them.',
        '11:3: Factor "model" needs the key "Parameter".',
        '12:9: There is no design "Latin hypercube"; did you mean "Latin Hypercube"?',
        '13:9: "Models" must be one of sound, as asked, none.']


@pytest.mark.parametrize("text, faults", [
    ("", ["The description is empty."]),
    ("- a\n", ['1:1: A study begins with keys, such as "Study: 1".']),
    ("Study: [1\n", ["2:1: This is not YAML: expected ',' or ']', but got '<stream end>'."]),
    ("Study: 2\nRules: r\nFactors: {a: {Parameter: /A/B, Values: [1]}}\nDesign: Full Factorial\n",
     ['1:8: The form of the description must be 1, as in "Study: 1".']),
    ("Study: 1\nStudy: 1\nRules: r\nFactors: {}\nDesign: Full Factorial\n", ['2:1: The key "Study" is there twice.']),
    ("Study: 1\n", ['1:1: The study needs the key "Rules".', '1:1: The study needs the key "Factors".',
                    '1:1: The study needs the key "Design".']),
    pytest.param("[" * 5000, ["The description is nested too deeply."], id="deep"),
])
def test_a_text_that_is_no_description_is_refused(described: Describe, text: str, faults: list[str]) -> None:
    assert faults_of(described(text, head=False)) == faults


@pytest.mark.parametrize("factor, fault", [
    ("{Parameter: Cells, Values: [1]}", '"Cells" is not the path of a parameter, such as "/Case/Domain:rotor/Motion".'),
    ("{Parameter: /Case/Pump:left/*, Values: [1]}",
     '"/Case/Pump:left/*" has "*" in the name of the parameter; only names of objects can have it.'),
    ("{Parameter: /Case/*/Head, Values: [1]}", '"/Case/*/Head" has "*" in the type of an object; write "TYPE:*".'),
    ("{Parameter: /Case/Cells, Values: []}", '"Values" must not be empty.'),
    ("{Parameter: /Case/Cells, Values: [1, 1]}", 'The value "1" is listed twice.'),
    ("{Parameter: /Case/Cells, Values: [1], Steps: 3}", '"Steps" goes only with a range or a distribution.'),
    ("{Parameter: /Case/Cells, Range: [1 [mm], 3]}", None),
    ("{Parameter: /Case/Cells, Normal: {Mean: 3}}", '"Normal" needs the key "Deviation".'),
    ("{Parameter: /Case/Cells, Values: [1], Logarithmic: yes}", '"Logarithmic" goes only with "Range".'),
    ("{Parameter: /Case/Cells, Normal: {Mean: nan, Deviation: 1}, Steps: 3}", "Mean must be a finite number, not nan."),
    ("{Parameter: /Case/Cells, Range: [1, 9], Steps: 100000000000}", "At most 100,000 steps are possible."),
    ("{Parameter: /Case/Cells, Range: [1, 9], Steps: 3, Digits: two}", '"Digits" must be a whole number.'),
    ("{Parameter: /Case/Cells}", 'Factor "a" has no values.'),
    ("{Parameter: /Case/Cells, Range: [1, 2]}",
     'Factor "a" needs "Steps", the number of its levels, in a full factorial design.'),
    ("{Parameter: /Case/Cels, Values: [1]}", "Did you mean /Case/Cells?"),
    ("{Parameter: /Case/Pump:*/Hed, Values: [1]}",
     'None of the objects that the pattern "/Case/Pump:*/Hed" meets can have a parameter "Hed"; did you mean "Head"?'),
    ("{Parameter: /Case/Valve:*/Head, Values: [1]}", 'The pattern "/Case/Valve:*/Head" meets no object of the base model.'),
])
def test_a_factor_with_a_mistake_is_refused_at_its_line(described: Describe, factor: str, fault: str) -> None:
    (found,) = faults_of(described(f"Factors:\n  a: {factor}\nDesign: Full Factorial\n"))
    assert found.startswith("5:")
    assert fault is None or found.endswith(fault)


def test_a_description_that_cannot_be_read_is_named_once(tmp_path: pathlib.Path) -> None:
    with pytest.raises(StudyError) as caught:
        read_study(tmp_path / "none.yaml")
    assert str(caught.value) == f"{tmp_path}/none.yaml cannot be read: No such file or directory."


def test_two_factors_cannot_set_one_parameter(described: Describe) -> None:
    assert faults_of(described("""
Factors:
  all: {Parameter: /Case/Pump:*/Head, Values: [1]}
  left: {Parameter: /Case/Pump:left/Head, Values: [2]}
Design: Full Factorial
""")) == ['7:3: Both factor "all" and factor "left" set /Case/Pump:left/Head.']


def test_names_of_columns_are_not_taken_twice(described: Describe) -> None:
    assert faults_of(described("""
Factors:
  status: {Parameter: /Case/Cells, Values: [10]}
  head: {Parameter: /Case/Pump:left/Head, Values: [10]}
Design: Full Factorial
Outputs: {head: /Case/Pump:left/Head}
""")) == ['6:3: The table has a column "status" of its own; choose another name.',
          '9:17: The name "head" is there twice.']


def test_mistakes_in_a_table_have_the_line_of_the_table(described: Describe, tmp_path: pathlib.Path) -> None:
    table = tmp_path / "points.csv"
    table.write_text("cells\n50\n60,70\n", encoding="utf-8")
    assert faults_of(described("Factors: {cells: {Parameter: /Case/Cells}}\nDesign: {Table: points.csv}\n")) == [
        f"{table}:3: Row 2 of the table has 2 cells instead of 1."]


def test_files_that_cannot_be_read_are_named(described: Describe, tmp_path: pathlib.Path) -> None:
    factors = "Factors: {cells: {Parameter: /Case/Cells}}\n"
    assert faults_of(described(factors + "Design: {Table: none.csv}\n")) == [
        f"5:17: {tmp_path}/none.csv cannot be read: No such file or directory."]
    text = f"Study: 1\nRules: {RULES}\nModel: none.tdf\nFactors: {{a: {{Parameter: /Case/Cells, Values: [10]}}}}\n"
    assert faults_of(described(text + "Design: Full Factorial\n", head=False)) == [
        f"1:1: {tmp_path}/none.tdf cannot be read: No such file or directory."]
    with pytest.raises(StudyError, match="gone.yaml cannot be read: No such file or directory."):
        read_study(tmp_path / "gone.yaml")


def test_rules_with_errors_are_shown(described: Describe, tmp_path: pathlib.Path) -> None:
    (tmp_path / "bad.rules.yaml").write_text("Rule Database: 1\nObject:\n", encoding="utf-8")
    text = "Study: 1\nRules: bad.rules.yaml\nFactors: {a: {Parameter: /Case/Cells, Values: [10]}}\n"
    (fault,) = faults_of(described(text + "Design: Full Factorial\n", head=False))
    assert fault.startswith(f"{tmp_path}/bad.rules.yaml:2:1: error: unknown key 'Object'")


def test_a_study_in_python_is_checked_like_one_in_yaml() -> None:
    study = Study(rules=RULES, model=MODEL, factors=[Factor("a", "/Case/Cels", [10])], design=FullFactorial())
    with pytest.raises(StudyError, match="Did you mean /Case/Cells?"):
        prepare(study)
