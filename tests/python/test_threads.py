"""Several threads at work. Threads of Python run in turns, except where the interpreter lock is released."""

import threading
import time
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from typing import Any

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
