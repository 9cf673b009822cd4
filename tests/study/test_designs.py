"""Which points a design has, and its laws."""

import math
from collections.abc import Callable, Sequence
from typing import Any

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

from tarn.study import (MOST_POINTS, Design, Factor, FullFactorial, LatinHypercube, LogNormal, Normal, OneAtATime, Point,
                        Range, Study, StudyError, Table, Triangular, run_study)

REGIME = Factor("regime", "/Case/Regime", ["Laminar", "Turbulent"])
CELLS = Factor("cells", "/Case/Cells", [100, 200, 300], base=100)


def all_points(design: Design, factors: Sequence[Factor], seed: int = 0) -> list[Point]:
    assert design.faults(factors) == []
    points = design.points(factors, seed)
    return [points[number] for number in range(len(points))]


def numbers(points: Sequence[Point], column: int) -> list[float]:
    return [float(str(point[column]).split(" ")[0]) for point in points]


def test_a_full_factorial_has_every_combination_and_the_last_factor_changes_fastest() -> None:
    assert all_points(FullFactorial(), [REGIME, CELLS]) == [
        ("Laminar", "100"), ("Laminar", "200"), ("Laminar", "300"),
        ("Turbulent", "100"), ("Turbulent", "200"), ("Turbulent", "300")]


def test_one_at_a_time_begins_with_the_base_and_does_not_repeat_it() -> None:
    assert all_points(OneAtATime(), [REGIME, CELLS]) == [
        (None, "100"), ("Laminar", "100"), ("Turbulent", "100"), (None, "200"), (None, "300")]


def test_a_table_gives_its_rows_in_the_order_of_the_factors_and_leaves_empty_cells() -> None:
    regime, cells = Factor("regime", "/Case/Regime"), Factor("length", "/Case/Length", units="mm")
    table = Table(["length", "regime"], [["3", "Laminar"], ["4 [m]", ""]])
    assert all_points(table, [regime, cells]) == [("Laminar", "3 [mm]"), (None, "4 [m]")]


@pytest.mark.parametrize("values, expected", [
    (Range(0, 1, steps=5), ("0", "0.25", "0.5", "0.75", "1")),
    (Range(1, 1000, steps=4, logarithmic=True), ("1", "10", "100", "1000")),
    (Range(3, 6, whole=True), ("3", "4", "5", "6")),
    (Range(0, 10, steps=3, whole=True), ("0", "5", "10")),
    (Range(0.1, 0.3, steps=3), ("0.1", "0.2", "0.3")),
    (Triangular(0, 1, 2, steps=2), ("0.707106781187", "1.29289321881")),
])
def test_ranges_and_distributions_have_evenly_spread_levels(values: Any, expected: Any) -> None:
    assert tuple(values.levels()) == expected


def test_the_levels_of_a_distribution_lie_evenly_in_probability() -> None:
    # The quantiles of the standard normal distribution at 1/6, 1/2 and 5/6.
    low, middle, high = (float(one) for one in Normal(0, 1, steps=3).levels() or ())
    assert [low, middle, high] == pytest.approx([-0.967421566, 0, 0.967421566], abs=1e-9)
    low, middle, high = (float(one) for one in LogNormal(2, 0.5, steps=3).levels() or ())
    assert [low, middle, high] == pytest.approx([2 * math.exp(-0.483710783), 2, 2 * math.exp(0.483710783)])


def test_units_are_added_to_plain_numbers_only() -> None:
    factor = Factor("head", "/Case/Head", [3, "4 [bar]", "1e3"], units="Pa")
    assert factor.levels() == ("3 [Pa]", "4 [bar]", "1e3 [Pa]")


@given(number=st.integers(1, 300), seed=st.integers())
def test_a_latin_hypercube_has_one_point_in_each_stratum_of_each_factor(number: int, seed: int) -> None:
    factors = [Factor("a", "/Case/A", Range(0, 1)), Factor("b", "/Case/B", Range(-3, 5)),
               Factor("c", "/Case/C", Range(1, 100, logarithmic=True)), Factor("d", "/Case/D", Normal(3, 2))]
    points = all_points(LatinHypercube(number), factors, seed)
    from statistics import NormalDist

    probabilities = [numbers(points, 0), [(one + 3) / 8 for one in numbers(points, 1)],
                     [math.log10(one) / 2 for one in numbers(points, 2)],
                     [NormalDist(3, 2).cdf(one) for one in numbers(points, 3)]]
    for column in probabilities:
        # Values are rounded to twelve digits, so one at the edge of its stratum may show on the other side.
        strata = sorted(column)
        for part, one in enumerate(strata):
            assert part / number - 1e-9 <= one <= (part + 1) / number + 1e-9


@given(number=st.integers(1, 200), seed=st.integers(), count=st.integers(1, 7))
def test_a_latin_hypercube_uses_listed_values_equally_often(number: int, seed: int, count: int) -> None:
    values = [f"v{index}" for index in range(count)]
    points = all_points(LatinHypercube(number), [Factor("a", "/Case/A", values)], seed)
    often = [sum(point == (value,) for point in points) for value in values]
    assert sum(often) == number and max(often) - min(often) <= 1


@given(number=st.integers(2, 100), seed=st.integers())
def test_the_same_seed_gives_the_same_points_and_another_seed_other_points(number: int, seed: int) -> None:
    factors = [Factor("a", "/Case/A", Range(0, 1)), CELLS]
    points = all_points(LatinHypercube(number), factors, seed)
    assert points == all_points(LatinHypercube(number), factors, seed)
    assert points != all_points(LatinHypercube(number), factors, seed + 1)


def test_a_hypercube_stays_the_same_from_release_to_release() -> None:
    factors = [Factor("a", "/Case/A", Range(0, 1)), Factor("b", "/Case/B", ["x", "y"])]
    assert all_points(LatinHypercube(3), factors, 7) == [
        ("0.83565168317", "y"), ("0.1618174431", "x"), ("0.376303706237", "y")]


@given(seed=st.integers())
def test_a_factor_has_the_same_values_whatever_other_factors_there_are(seed: int) -> None:
    a, b = Factor("a", "/Case/A", Range(0, 1)), Factor("b", "/Case/B", Range(0, 1))
    together = all_points(LatinHypercube(10), [a, b], seed)
    assert [point[1:] for point in together] == all_points(LatinHypercube(10), [b], seed)


@settings(max_examples=50)
@given(sizes=st.lists(st.integers(1, 6), min_size=1, max_size=4))
def test_a_full_factorial_has_each_combination_once(sizes: list[int]) -> None:
    factors = [Factor(f"f{index}", f"/Case/F{index}", [str(one) for one in range(size)])
               for index, size in enumerate(sizes)]
    points = all_points(FullFactorial(), factors)
    assert len(set(points)) == len(points) == math.prod(sizes)


@given(low=st.floats(-1e6, 1e6), width=st.floats(1e-3, 1e6), share=st.floats(0, 1, exclude_max=True))
def test_values_stay_within_their_range(low: float, width: float, share: float) -> None:
    sources: list[Range | Normal | Triangular] = [
        Range(low, low + width), Normal(low, width, lowest=low - width, highest=low + width),
        Triangular(low, low + width / 3, low + width)]
    for values in sources:
        lowest, highest = (low - width, low + width) if isinstance(values, Normal) else (low, low + width)
        slack = 1e-9 * max(1, abs(low), width)
        assert lowest - slack <= float(values.at(0, 1, share)) <= highest + slack


@pytest.mark.parametrize("values, message", [
    (Range(2, 1), "The range ends at 1, which is not above its start 2."),
    (Range(0, math.inf), "The ends of a range must be finite numbers."),
    (Range(0, 10, logarithmic=True), "A logarithmic range must lie above 0."),
    (Range(0, 2.5, whole=True), "A range of whole numbers must start and end at whole numbers."),
    (Range(0, 1, steps=1), "A range needs at least 2 steps."),
    (Range(0, 2, steps=9, whole=True), "There are fewer than 9 whole numbers in the range."),
    (Normal(0, 0), "The deviation must be above 0."),
    (Normal(0, 1, lowest=3, highest=2), "The highest value 2 is not above the lowest 3."),
    (Normal(0, 1, lowest=50), "The distribution has nearly no values between its lowest and its highest value."),
    (LogNormal(-1, 1), "The median must be above 0."),
    (Normal(math.nan, 1), "Mean must be a finite number, not nan."),
    (Normal(0, 1, lowest=math.inf), "Lowest must be a finite number, not inf."),
    (LogNormal(1, math.inf), "Spread must be a finite number, not inf."),
    (LogNormal(3, 1e300), "The values of the distribution are too large."),
    (Triangular(0, 1, math.nan), "Highest must be a finite number, not nan."),
    (Triangular(-1e300, 0, 1e300), "The values of the distribution are too large."),
    (Range(-1e308, 1e308), "The range is too wide."),
    (Range(0, 1, steps=10**11), "At most 100,000 steps are possible."),
    (Range(0, 1, steps=2.5), "The number of steps must be a whole number, not 2.5."),  # type: ignore[arg-type]
    (Triangular(0, 3, 2), "The lowest value, the peak and the highest value must be in this order."),
])
def test_values_that_make_no_sense_are_refused(values: Any, message: str) -> None:
    assert values.fault() == message


def faults(design: Design, factors: Sequence[Factor]) -> list[str]:
    return [str(fault) for fault in design.faults(factors)]


def test_a_design_with_too_many_points_is_refused_with_the_limit() -> None:
    many = [Factor(f"f{index}", f"/Case/F{index}", Range(0, 1, steps=1000)) for index in range(3)]
    assert faults(FullFactorial(), many) == [
        "The design has 1,000,000,000 points, and at most 10,000,000 are possible. Use fewer levels or factors, or a Latin "
        "hypercube."]
    assert faults(LatinHypercube(MOST_POINTS + 1), [REGIME]) == [
        "The design has 10,000,001 points, and at most 10,000,000 are possible."]


@pytest.mark.parametrize("make, message", [
    (lambda: Factor(3, "/A/b"), "the name of a factor must be a text, not int"),  # type: ignore[arg-type]
    (lambda: Factor("f", 3), 'the parameters of factor "f" must be a path or a list of paths'),  # type: ignore[arg-type]
    (lambda: Factor("f", "/A/b", 5),  # type: ignore[arg-type]
     'the values of factor "f" must be a list, a range or a distribution, not int'),
    (lambda: Factor("f", "/A/b", ["x"], digits=0), 'Factor "f" has 0 digits; give 1 to 12.'),
    (lambda: study(seed="x"), "seed must be a whole number, not str"),
    (lambda: study(design=FullFactorial),
     "design must be a design, such as FullFactorial() or LatinHypercube(100), not <class "
     "'tarn.study.designs.FullFactorial'>"),
    (lambda: study(factors={"f": "/A/b"}), "a factor must be a tarn.study.Factor, not str"),
    (lambda: study(outputs=[3]), "an output must be the path of a parameter, not int"),
    (lambda: run_study("s.yaml", "out"),  # type: ignore[arg-type]
     "study must be a tarn.study.Study, not str; read_study reads one from a file"),
    (lambda: run_study(study(), "out", jobs=0), "jobs is 0; give at least 1"),
    (lambda: run_study(study(), "out", batch=-1), "batch is -1; give at least 1"),
])
def test_an_argument_of_the_wrong_kind_is_named(make: Callable[[], object], message: str) -> None:
    with pytest.raises((TypeError, ValueError, StudyError)) as caught:
        make()
    assert str(caught.value) == message


def study(**changed: Any) -> Study:
    arguments: dict[str, Any] = {"rules": "rules", "model": None, "factors": [REGIME], "design": FullFactorial()}
    return Study(**(arguments | changed))


def test_a_factor_without_levels_is_named() -> None:
    open_range = Factor("head", "/Case/Head", Range(0, 1))
    assert faults(FullFactorial(), [open_range]) == [
        'Factor "head" needs "Steps", the number of its levels, in a full factorial design.']
    assert faults(LatinHypercube(3), [Factor("head", "/Case/Head")]) == ['Factor "head" has no values.']


def test_a_table_that_does_not_fit_its_factors_is_refused() -> None:
    factors = [Factor("regime", "/Case/Regime"), CELLS]
    assert faults(Table(["Regime", "cells", "cells"], [["a", "b"]]), factors) == [
        'The column "Regime" has the name of no factor; did you mean "regime"?',
        'The column "cells" is there twice.',
        'The table has no column "regime".',
        'Factor "cells" has values of its own, but the points come from a table.',
        "Row 1 of the table has 2 cells instead of 3."]
