"""Factors: what a study varies, and the values that it gives them.

A factor sets one parameter, or several parameters to the same value. Its values are listed, in a range, or follow a
distribution. Each kind of values answers two questions: a value out of one of equally probable parts, which a Latin
hypercube asks, and evenly spread levels, which the other designs ask.
"""

from __future__ import annotations

import math
import numbers
import re
from collections.abc import Sequence
from dataclasses import dataclass, field
from statistics import NormalDist
from typing import Protocol, cast

from tarn.model import ParamValue, value_text
from tarn.study.errors import Fault, Place, StudyError

NUMBER = re.compile(r"[+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?")
SIGNIFICANT_DIGITS = 12


def number_text(number: float, digits: int = SIGNIFICANT_DIGITS) -> str:
    """A number with up to so many significant digits."""
    text = format(number, f".{digits}g")
    return "0" if text == "-0" else text


def _nth(number: int, part: int, parts: int) -> int:
    """Which of a number of values a part takes: the one at the middle of the part. So no value is taken more than once
    more often than another one."""
    return (2 * part + 1) * number // (2 * parts)


def _share(part: int, parts: int, within: float) -> float:
    """The probability at a place within a part. Rounding does not lead into the next part."""
    return min((part + within) / parts, math.nextafter((part + 1) / parts, 0))


MOST_LEVELS = 100_000
"""A factor with more levels is refused; a Latin hypercube does not need levels."""


def _fault_of_numbers(**given: object) -> str:
    """The mistake in the numbers of a range or a distribution, as a sentence. None is a number that is not given."""
    for name, value in given.items():
        if value is not None and (not isinstance(value, numbers.Real) or not math.isfinite(value)):
            return f"{name.capitalize()} must be a finite number, not {value!r}."
    return ""


def _fault_of_steps(steps: object, what: str) -> str:
    if steps is None:
        return ""
    if not isinstance(steps, int) or isinstance(steps, bool):
        return f"The number of steps must be a whole number, not {steps!r}."
    if steps < 2:
        return f"A {what} needs at least 2 steps."
    return f"At most {MOST_LEVELS:,} steps are possible." if steps > MOST_LEVELS else ""


class ValueSource(Protocol):
    """The values of a factor."""

    def at(self, part: int, parts: int, within: float) -> str:
        """A value out of one of equally probable parts of all values; 0 <= within < 1 says where in the part."""

    def levels(self) -> Sequence[str] | None:
        """The values for designs with fixed levels. None if the number of levels is not known."""

    def fault(self) -> str:
        """The mistake in the description, as a sentence. Empty when there is no mistake."""


@dataclass(frozen=True)
class Values:
    """Listed values. In a Latin hypercube each is as frequent as the others."""

    values: Sequence[str]

    def __post_init__(self) -> None:
        object.__setattr__(self, "values", tuple(value_text(value) for value in self.values))

    def at(self, part: int, parts: int, within: float) -> str:
        return self.values[_nth(len(self.values), part, parts)]

    def levels(self) -> Sequence[str]:
        return self.values

    def fault(self) -> str:
        if not self.values:
            return "There are no values."
        repeated = sorted({value for value in self.values if self.values.count(value) > 1})
        return f"The value \"{repeated[0]}\" is listed twice." if repeated else ""


@dataclass(frozen=True)
class Range:
    """Numbers from `lowest` to `highest`, evenly distributed, or evenly on a logarithmic scale.

    `steps` is the number of levels, both ends included; a Latin hypercube does not need it. With `whole`, only whole
    numbers are used.
    """

    lowest: float
    highest: float
    steps: int | None = None
    logarithmic: bool = False
    whole: bool = False

    def at(self, part: int, parts: int, within: float) -> str:
        if self.whole:
            return str(int(self.lowest) + _nth(int(self.highest) - int(self.lowest) + 1, part, parts))
        return number_text(self._between(_share(part, parts, within)))

    def _between(self, share: float) -> float:
        if self.logarithmic:
            return float(self.lowest * (self.highest / self.lowest) ** share)
        return self.lowest + (self.highest - self.lowest) * share

    def levels(self) -> Sequence[str] | None:
        if self.steps is None:
            if self.whole:
                return range_texts(int(self.lowest), int(self.highest))
            return None
        if self.whole:
            width = int(self.highest) - int(self.lowest)
            return tuple(str(int(self.lowest) + width * step // (self.steps - 1)) for step in range(self.steps))
        ends = {0: self.lowest, self.steps - 1: self.highest}
        return tuple(number_text(ends.get(step, self._between(step / (self.steps - 1)))) for step in range(self.steps))

    def fault(self) -> str:
        if _fault_of_numbers(lowest=self.lowest, highest=self.highest):
            return "The ends of a range must be finite numbers."
        if not math.isfinite(self.highest - self.lowest):
            return "The range is too wide."
        if self.lowest >= self.highest:
            return f"The range ends at {number_text(self.highest)}, which is not above its start {number_text(self.lowest)}."
        if self.logarithmic and self.lowest <= 0:
            return "A logarithmic range must lie above 0."
        if self.whole and (self.lowest != int(self.lowest) or self.highest != int(self.highest)):
            return "A range of whole numbers must start and end at whole numbers."
        if self.whole and self.logarithmic:
            return "A range cannot be both logarithmic and of whole numbers."
        if fault := _fault_of_steps(self.steps, "range"):
            return fault
        if self.whole and self.steps is not None and self.steps > self.highest - self.lowest + 1:
            return f"There are fewer than {self.steps} whole numbers in the range."
        return ""


def range_texts(lowest: int, highest: int) -> Sequence[str]:
    return tuple(str(number) for number in range(lowest, highest + 1)) if highest - lowest < MOST_LEVELS else ()


@dataclass(frozen=True)
class _Distribution:
    """The common part of distributions: they can be cut off at both ends, and their levels are evenly spread quantiles."""

    lowest: float | None = field(default=None, kw_only=True)
    highest: float | None = field(default=None, kw_only=True)
    steps: int | None = field(default=None, kw_only=True)

    def quantile(self, probability: float) -> float:
        raise NotImplementedError

    def share_below(self, value: float) -> float:
        raise NotImplementedError

    def at(self, part: int, parts: int, within: float) -> str:
        return self._value(_share(part, parts, within))

    def _value(self, probability: float) -> str:
        first = 0.0 if self.lowest is None else self.share_below(self.lowest)
        last = 1.0 if self.highest is None else self.share_below(self.highest)
        share = first + (last - first) * probability
        # Both ends of a distribution can be infinite.
        value = self.quantile(min(max(share, 1e-12), 1 - 1e-12))
        if self.lowest is not None:
            value = max(value, self.lowest)
        if self.highest is not None:
            value = min(value, self.highest)
        return number_text(value)

    def levels(self) -> Sequence[str] | None:
        if self.steps is None:
            return None
        return tuple(self.at(step, self.steps, 0.5) for step in range(self.steps))

    def fault(self) -> str:
        """The mistake in what all distributions have. The numbers of each must be right already."""
        if fault := _fault_of_numbers(lowest=self.lowest, highest=self.highest):
            return fault
        if self.lowest is not None and self.highest is not None and self.lowest >= self.highest:
            return f"The highest value {number_text(self.highest)} is not above the lowest {number_text(self.lowest)}."
        if fault := _fault_of_steps(self.steps, "distribution"):
            return fault
        first = 0.0 if self.lowest is None else self.share_below(self.lowest)
        last = 1.0 if self.highest is None else self.share_below(self.highest)
        if last - first < 1e-9:
            return "The distribution has nearly no values between its lowest and its highest value."
        try:
            ends = [float(self._value(0.0)), float(self._value(1.0))]
        except OverflowError:
            ends = [math.inf]
        return "" if all(map(math.isfinite, ends)) else "The values of the distribution are too large."


@dataclass(frozen=True)
class Normal(_Distribution):
    """A normal distribution, cut off at `lowest` and `highest` if these are given."""

    mean: float
    deviation: float

    def quantile(self, probability: float) -> float:
        return NormalDist(self.mean, self.deviation).inv_cdf(probability)

    def share_below(self, value: float) -> float:
        return NormalDist(self.mean, self.deviation).cdf(value)

    def fault(self) -> str:
        if fault := _fault_of_numbers(mean=self.mean, deviation=self.deviation):
            return fault
        return super().fault() if self.deviation > 0 else "The deviation must be above 0."


@dataclass(frozen=True)
class LogNormal(_Distribution):
    """A value whose logarithm is normally distributed around that of `median`; `spread` is the deviation of the
    natural logarithm."""

    median: float
    spread: float

    def quantile(self, probability: float) -> float:
        return math.exp(NormalDist(math.log(self.median), self.spread).inv_cdf(probability))

    def share_below(self, value: float) -> float:
        return NormalDist(math.log(self.median), self.spread).cdf(math.log(value)) if value > 0 else 0.0

    def fault(self) -> str:
        if fault := _fault_of_numbers(median=self.median, spread=self.spread):
            return fault
        if self.median <= 0:
            return "The median must be above 0."
        return super().fault() if self.spread > 0 else "The spread must be above 0."


@dataclass(frozen=True)
class Triangular:
    """A triangular distribution between `lowest` and `highest` with its peak at `peak`."""

    lowest: float
    peak: float
    highest: float
    steps: int | None = None

    def at(self, part: int, parts: int, within: float) -> str:
        probability = _share(part, parts, within)
        width, rise, fall = self.highest - self.lowest, self.peak - self.lowest, self.highest - self.peak
        if probability * width < rise:
            value = self.lowest + math.sqrt(probability * width * rise)
        else:
            value = self.highest - math.sqrt((1 - probability) * width * fall)
        return number_text(value)

    def levels(self) -> Sequence[str] | None:
        if self.steps is None:
            return None
        return tuple(self.at(step, self.steps, 0.5) for step in range(self.steps))

    def fault(self) -> str:
        if fault := _fault_of_numbers(lowest=self.lowest, peak=self.peak, highest=self.highest):
            return fault
        if not self.lowest <= self.peak <= self.highest or self.lowest >= self.highest:
            return "The lowest value, the peak and the highest value must be in this order."
        width = float(self.highest - self.lowest)
        if not math.isfinite(width * width):
            return "The values of the distribution are too large."
        return _fault_of_steps(self.steps, "distribution")


@dataclass(frozen=True)
class Factor:
    """One thing that a study varies.

    `parameters` are paths of parameters, such as ``/Plant/Boiler:main/Rated Power``, or patterns that have ``*`` in
    names of objects, such as ``/Plant/Circuit:*/Pump/Head``. All of them get the same value. `units` are added to
    values that are plain numbers. Numbers of ranges and distributions are rounded to `digits` significant digits. `base`
    is the value while other factors of a one-at-a-time design vary; without it
    the parameter is left as the model has it.
    """

    name: str
    parameters: Sequence[str] | str
    values: ValueSource | Sequence[object] | None = None
    units: str = ""
    base: ParamValue | None = None
    digits: int = SIGNIFICANT_DIGITS
    place: Place = field(default=Place(), compare=False, repr=False)

    def __post_init__(self) -> None:
        if not isinstance(self.name, str):
            raise TypeError(f"the name of a factor must be a text, not {type(self.name).__name__}")
        given = self.parameters
        paths = (given,) if isinstance(given, str) else tuple(given) if isinstance(given, Sequence) else (given,)
        if not all(isinstance(path, str) for path in paths):
            raise TypeError(f'the parameters of factor "{self.name}" must be a path or a list of paths')
        object.__setattr__(self, "parameters", paths)
        if isinstance(self.values, Sequence):
            if isinstance(self.values, str):
                raise StudyError([Fault(f'The values of factor "{self.name}" are one text; give a list.', self.place)])
            object.__setattr__(self, "values", Values([value_text(value) for value in self.values]))
        elif self.values is not None and not hasattr(self.values, "fault"):
            raise TypeError(f'the values of factor "{self.name}" must be a list, a range or a distribution, not '
                            f"{type(self.values).__name__}")
        if not isinstance(self.digits, int) or not 1 <= self.digits <= SIGNIFICANT_DIGITS:
            raise StudyError([Fault(f'Factor "{self.name}" has {self.digits} digits; give 1 to {SIGNIFICANT_DIGITS}.',
                                    self.place)])
        if self.base is not None:
            object.__setattr__(self, "base", value_text(self.base))

    def text(self, value: str) -> str:
        """The value as it is set: a plain number gets the units of the factor."""
        return f"{value} [{self.units}]" if self.units and NUMBER.fullmatch(value.strip()) else value

    def levels(self) -> Sequence[str] | None:
        """The values of designs with fixed levels, with units. None if their number is not known."""
        found = self.source().levels()
        return None if found is None else tuple(self.text(self._rounded(value)) for value in found)

    def at(self, part: int, parts: int, within: float) -> str:
        """The value that `ValueSource.at` gives, with units."""
        return self.text(self._rounded(self.source().at(part, parts, within)))

    def _rounded(self, value: str) -> str:
        return value if isinstance(self.values, Values) else number_text(float(value), self.digits)

    def source(self) -> ValueSource:
        assert self.values is not None, "designs ask only factors with values"
        return cast(ValueSource, self.values)
