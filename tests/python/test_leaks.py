"""Nothing that a session gives out is kept: memory does not grow with the number of rounds."""

import contextlib
import gc
import os
import sys
import tracemalloc
import weakref
from collections.abc import Callable
from typing import Any

import pytest

import tarn
from conftest import HEATING
from tarn import Edit

HOUSE = str(HEATING / "models" / "house.tdf")


def resident() -> int:
    """The resident memory of this process in bytes."""
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def whole_session(rules: tarn.Rules) -> None:
    session = tarn.Session(rules, HOUSE)
    session.set("Boiler:main/Fuel", "Oil").or_raise()
    session.set("Boiler:main/Fuel", "Coal")
    session.what_if(Edit.remove_object("/Plant/Sensor:hall"))
    session.undo()
    session.look("Boiler:main/Rated Power")._repr_html_()
    session.params("Boiler:main")
    session.child_types()
    session.find("power")
    session.why("Boiler:main/Store Volume", depth=2)
    session.eval("count({Circuit:*})")
    session.review()
    session.result().tree
    session.text


def rules_alone(_rules: tarn.Rules) -> None:
    tarn.load_rules(HEATING / "rules")


def refused(wanted: type[Exception], call: Callable[[Any], object]) -> Callable[[tarn.Session], object]:
    def fails(session: tarn.Session) -> None:
        with contextlib.suppress(wanted):
            call(session)
    return fails


OIL = Edit.set_param("/Plant/Boiler:main", "Fuel", "Oil")
CALLS: dict[str, Callable[[Any], object]] = {
    "edit": lambda session: (session.edit(OIL), session.undo()),
    "refusal": lambda session: session.set("Boiler:main/Fuel", "Coal"),
    "what_if": lambda session: session.what_if(OIL),
    "redo": lambda session: (session.edit(OIL), session.undo(), session.redo(), session.undo()),
    "look": lambda session: session.look("Boiler:main/Rated Power"),
    "html": lambda session: session.look("Boiler:main")._repr_html_(),
    "params": lambda session: session.params("Boiler:main"),
    "child_types": lambda session: session.child_types(),
    "find": lambda session: session.find("power"),
    "why": lambda session: session.why("Boiler:main/Store Volume", depth=2),
    "eval": lambda session: session.eval("count({Circuit:*})"),
    "review": lambda session: session.review(),
    "result": lambda session: session.result().tree,
    "text": lambda session: session.text,
    "diff": lambda session: (session.diff(), session.own, session.waiting, session.steps, session.last_result),
    "open": lambda session: tarn.Session(session.rules, HOUSE),
    "model": lambda session: tarn.Model.read(HOUSE).state,
    "judge": lambda session: tarn.Review(session.rules).judge(HOUSE),
    "rule error": refused(tarn.RuleError, lambda session: tarn.parse_rules("Rule Database: 1\nList:\n")),
    "model error": refused(tarn.ModelError, lambda session: tarn.Session(session.rules, tarn.Model("x\n"))),
    "open error": refused(tarn.OpenError, lambda session: tarn.Session(session.rules, root="/Nothing")),
    "unknown item": refused(tarn.UnknownItem, lambda session: session.look("Nothing")),
    "save error": refused(tarn.SaveError, lambda session: session.save("/no/such/folder/x.tdf")),
    "type error": refused(TypeError, lambda session: session._handle.find(3, 4)),
    "lone surrogate": refused(UnicodeError, lambda session: session.find("\ud800")),
}


@pytest.mark.parametrize("name", CALLS)
def test_a_call_leaves_nothing_behind(house: tarn.Session, name: str) -> None:
    call, rounds = CALLS[name], 120
    for _ in range(40):
        call(house)
    gc.collect()
    tracemalloc.start()
    try:
        call(house)
        gc.collect()
        before, _ = tracemalloc.get_traced_memory()
        blocks = sys.getallocatedblocks()
        for _ in range(rounds):
            call(house)
        gc.collect()
        after, _ = tracemalloc.get_traced_memory()
        grown = sys.getallocatedblocks() - blocks
    finally:
        tracemalloc.stop()
    # A reference that is lost in each call would be a block a call, at least. Caches of the interpreter grow by a few.
    assert grown < rounds and after - before < rounds * 100


def test_the_measure_of_leaks_can_fail(house: tarn.Session) -> None:
    kept: list[object] = []
    CALLS["leak"] = lambda session: kept.append(object())
    try:
        with pytest.raises(AssertionError):
            test_a_call_leaves_nothing_behind(house, "leak")
    finally:
        del CALLS["leak"]


@pytest.mark.parametrize("work", [whole_session, rules_alone], ids=lambda work: str(work.__name__))
def test_memory_of_the_library_does_not_grow(heating: tarn.Rules, work: Callable[[tarn.Rules], object]) -> None:
    for _ in range(30):
        work(heating)
    before = resident()
    for _ in range(150):
        work(heating)
    gc.collect()
    # One session takes more than a megabyte, so 150 that were kept would be far beyond this.
    assert resident() - before < 20 << 20


def test_objects_go_with_their_last_reference(heating: tarn.Rules) -> None:
    rules = tarn.load_rules(HEATING / "rules")
    session = tarn.Session(rules, HOUSE)
    gone: list[weakref.ReferenceType[Any]] = [weakref.ref(session), weakref.ref(rules)]
    review = tarn.Review(rules)
    del rules, session
    assert gone[0]() is None and gone[1]() is not None
    assert review.judge(HOUSE).list == ()
    del review
    assert gone[1]() is None


def test_a_session_keeps_its_rules(heating: tarn.Rules) -> None:
    session = tarn.Session(tarn.load_rules(HEATING / "rules"), HOUSE)
    gc.collect()
    assert session.set("Boiler:main/Fuel", "Oil").applied
