"""Several threads at work. Threads of Python run in turns, except where the interpreter lock is released."""

import multiprocessing
import signal
import subprocess
import sys
import threading
import time
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from typing import Any

import pytest

import tarn
from conftest import FLOW, HEATING
from tarn import Edit


def together(count: int, work: Callable[[int], object]) -> list[Any]:
    """The results of `work(i)` on so many threads, which all begin at the same time."""
    barrier = threading.Barrier(count)

    def run(i: int) -> Any:
        barrier.wait()
        return work(i)

    with ThreadPoolExecutor(count) as pool:
        return list(pool.map(run, range(count)))


def test_one_session_serves_several_threads(house: tarn.Session) -> None:
    def work(i: int) -> Any:
        for round_ in range(20):
            name = f"c{i}-{round_}"
            house.edit(Edit.add_object(f"/Plant/Circuit:{name}"),
                       Edit.set_param(f"/Plant/Circuit:{name}", "Boiler", "main")).or_raise()
            assert house.value(f"Circuit:{name}/Boiler") == "main"
            house.what_if(Edit.remove_object(f"/Plant/Circuit:{name}"))
            house.review()
        return True

    assert together(4, work) == [True] * 4
    assert len(house.steps) == 80
    assert len([one for one in house.children() if one.startswith("/Plant/Circuit:c")]) == 80


def test_one_rule_base_serves_sessions_of_several_threads(heating: tarn.Rules) -> None:
    def work(i: int) -> Any:
        session = tarn.Session(heating, HEATING / "models" / "house.tdf")
        session.set("Boiler:main/Fuel", ["Gas", "Oil", "Pellets", "Electricity"][i]).or_raise()
        return session.text

    parallel = together(4, work)
    assert parallel == [work(i) for i in range(4)]


def test_the_interpreter_goes_on_while_the_library_works(flow: tarn.Rules) -> None:
    # One thread evaluates a slow question; this thread counts meanwhile. It could not while the lock is held.
    big = tarn.Model.from_dict({"Case": {f"Domain:d{i}": {"Location": f"L{i}"} for i in range(3000)}})
    review = tarn.Review(flow)
    done = threading.Event()
    longest = []

    def work() -> None:
        begun = time.perf_counter()
        review._reviewer.judge_text("big", big.content)
        longest.append(time.perf_counter() - begun)
        done.set()

    content = big.content
    assert content
    thread = threading.Thread(target=work)
    ticks = 0
    thread.start()
    while not done.is_set():
        ticks += 1
        time.sleep(0.001)
    thread.join()
    # Without the lock this loop would run a handful of times only, before and after the call.
    assert longest[0] > 0.05 and ticks > 10


def test_threads_that_wait_for_a_session_do_not_stop_others(house: tarn.Session) -> None:
    busy = threading.Event()
    stop = threading.Event()

    def hold() -> None:
        while not stop.is_set():
            house.review()
            house.what_if(Edit.set_param("/Plant/Boiler:main", "Fuel", "Oil"))
            busy.set()

    threads = [threading.Thread(target=hold) for _ in range(3)]
    for thread in threads:
        thread.start()
    busy.wait(60)
    begun = time.perf_counter()
    assert sum(range(1000)) == 499500
    stop.set()
    for thread in threads:
        thread.join(60)
    assert not any(thread.is_alive() for thread in threads) and time.perf_counter() - begun < 60


def test_exceptions_reach_the_thread_that_asked(flow: tarn.Rules) -> None:
    def work(i: int) -> Any:
        try:
            tarn.parse_rules(f"Rule Database: 1\nObjects{i}:\n")
        except tarn.RuleError as error:
            return error.diagnostics[0].message
        return None

    assert [f"'Objects{i}'" in message for i, message in enumerate(together(8, work))] == [True] * 8
    assert tarn.Review(flow).judge(FLOW / "models" / "sound.tdf").list == ()


SEARCH = """
import signal, sys, tarn
session = tarn.Session(tarn.load_rules("examples/flow/rules"), "examples/flow/models/sound.tdf")
def search():
    # No way exists, and the bounds are so wide that the search would take very long.
    return session.how("Run/Partition Weights", max_edits=20, max_candidates=10**6, max_trials=10**12, max_seconds=600)
"""


def interrupted(program: str) -> tuple[int, str, str]:
    """Runs a program that searches, and sends it a signal while it does. Returns its status, output and messages."""
    process = subprocess.Popen([sys.executable, "-c", SEARCH + program], text=True, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
    assert process.stdout is not None and process.stdout.readline() == "searching\n"
    time.sleep(0.3)
    process.send_signal(signal.SIGINT)
    shown, messages = process.communicate(timeout=30)
    return process.returncode, shown, messages


def test_ctrl_c_ends_a_search_and_leaves_the_session_as_it_was() -> None:
    assert interrupted("""
before = session.result()
print("searching", flush=True)
try:
    search()
except KeyboardInterrupt:
    print("interrupted", session.result().same_as(before), session.set("Flow Regime", "Laminar").applied)
""") == (0, "interrupted True True\n", "")


def test_a_handler_that_raises_nothing_lets_the_search_go_on() -> None:
    assert interrupted("""
def handle(number, frame):
    print("handled", flush=True)
signal.signal(signal.SIGINT, handle)
print("searching", flush=True)
found = session.how("Run/Partition Weights", max_edits=20, max_candidates=10**6, max_trials=10**12, max_seconds=3)
print(found.answer, found.stopped_by_time)
""") == (0, "handled\nnot-found True\n", "")


def test_a_handler_cannot_use_the_session_that_searches() -> None:
    assert interrupted("""
def handle(number, frame):
    session.root
signal.signal(signal.SIGINT, handle)
print("searching", flush=True)
try:
    search()
except RuntimeError as error:
    print(error)
print(session.root)
""") == (0, "the handler of a signal cannot use a session that was interrupted by the signal\n/Case\n", "")


def test_ctrl_c_ends_a_review_of_endless_models() -> None:
    status, _, messages = interrupted("""
import itertools
print("searching", flush=True)
for one in tarn.review(session.rules, itertools.repeat("examples/flow/models/faulty.tdf"), jobs=2):
    pass
""")
    assert status == -signal.SIGINT and messages.endswith("KeyboardInterrupt\n")


@pytest.mark.parametrize("first", ["", "import tarn"], ids=["alone", "beside the main one"])
def test_a_subinterpreter_is_refused(first: str) -> None:
    done = subprocess.run([sys.executable, "-c", f"""
import _xxsubinterpreters as interpreters
{first}
try:
    interpreters.run_string(interpreters.create(), "import tarn")
except interpreters.RunFailedError as error:
    print(error)
"""], capture_output=True, text=True, timeout=60)
    assert done.stdout == ("<class 'ImportError'>: the package tarn cannot be used in a subinterpreter; use a process or a "
                           "thread\n"), done.stderr


def test_a_child_after_fork_uses_what_its_parent_has_opened(house: tarn.Session) -> None:
    def child() -> None:
        assert house.set("Boiler:main/Fuel", "Oil").applied and house.review() is not None
        assert house.how("Boiler:main/Gas Pressure").answer == "found"

    process = multiprocessing.get_context("fork").Process(target=child)
    process.start()
    process.join(60)
    assert process.exitcode == 0
    assert house.value("Boiler:main/Fuel") == "Gas"
