"""Running a study: batches of points, made by this process, by several processes, or by a cluster."""

from __future__ import annotations

import ctypes
import multiprocessing
import os
import signal
import time
from collections.abc import Callable, Iterator, Sequence
from concurrent.futures import FIRST_COMPLETED, Future, ProcessPoolExecutor, wait
from concurrent.futures.process import BrokenProcessPool
from dataclasses import dataclass

from tarn._checks import whole
from tarn.study.cluster import ClusterExecutor
from tarn.study.designs import Point
from tarn.study.errors import StudyError
from tarn.study.making import VERSION, MadePoint, PointMaker, PreparedStudy, digest_of, prepare
from tarn.study.storing import Store
from tarn.study.study import Study
from tarn.study.tables import check_format, write_table
from tarn.study.work import MOST_DEATHS, Batch, Executor, Work, died


@dataclass
class Counts:
    """How far a study is. `made` counts the points of this run, everything else those of the whole study or part."""

    total: int
    finished: int = 0
    made: int = 0
    unsound: int = 0
    failed: int = 0
    not_as_asked: int = 0
    seconds: float = 0.0
    note: str = ""
    """The thing that the study is waiting for, such as a scheduler."""

    def add(self, made: MadePoint) -> None:
        self.finished += 1
        self.made += 1
        self.count(made.status, made.as_asked)

    def count(self, status: str, as_asked: bool) -> None:
        self.unsound += status == "unsound"
        self.failed += status == "failed"
        self.not_as_asked += status != "failed" and not as_asked


@dataclass
class Outcome:
    """The result of a run: the counts, and the table, if all points of the study are finished."""

    counts: Counts
    folder: str
    table: str | None
    missing: int = 0
    """The number of points of the whole study that are not finished, because other parts have to make them."""


def run_study(study: Study, folder: str | os.PathLike[str], *, jobs: int | None = None, scheduler: str | None = None,
              batch: int | None = None, part: tuple[int, int] = (1, 1), table: str = "csv",
              progress: Callable[[Counts], None] = lambda counts: None) -> Outcome:
    """Makes all points of a study that are not finished yet, and writes the table.

    `jobs` is the number of processes, by default as many as there are cores; `scheduler` is the address of a scheduler
    of Dask, which replaces them. `part` is (K, N) for the K-th of N parts, each of which can run on another machine in
    the same folder; whoever finishes the last point writes the table. `batch` fixes the size of batches. None of these
    has an influence on the results. `progress` is called about ten times a second.

    Raises `StudyError` for a study or a folder that cannot be used. Finished points stay finished, whatever happens.
    """
    check_format(table)
    if not isinstance(study, Study):
        raise TypeError(f"study must be a tarn.study.Study, not {type(study).__name__}; read_study reads one from a file")
    for what, number in (("jobs", jobs), ("batch", batch)):
        if number is not None:
            whole(number, what, 1)
    if not 1 <= part[0] <= part[1]:
        raise StudyError(f"There is no part {part[0]} of {part[1]}.")
    prepared = prepare(study)
    points = study.points
    with Store(folder, identity_of(study, prepared), len(points), part) as store:
        mine = range(part[0] - 1, len(points), part[1])
        counts = Counts(len(mine), finished=sum(store.done[number] for number in mine))
        for record in store.records() if counts.finished else ():
            if record is not None and record["number"] in mine and store.done[record["number"]]:
                counts.count(record["status"], record["as_asked"])
        began = told = time.monotonic()

        def tell(note: str) -> None:
            counts.note = note
            counts.seconds = time.monotonic() - began
            progress(counts)

        work = Work((number for number in mine if not store.done[number]), points.__getitem__, batch, tell)
        if counts.finished < counts.total:
            executor = executor_for(prepared, jobs, scheduler)
            try:
                tell("")
                for made in executor.run(work):
                    for one in store.add(made):
                        counts.add(one)
                    if time.monotonic() - told > 0.1:
                        told = time.monotonic()
                        tell("")
            finally:
                executor.close()
        tell("")
        missing = 0
        if part[1] > 1:
            missing = sum(record is None for record in store.records())
        written = None if missing else write_table(store, study, prepared, table)
        return Outcome(counts, str(store.folder), written, missing)


def identity_of(study: Study, prepared: PreparedStudy) -> dict[str, str | int]:
    """The identity of a study, in parts that a message can name."""
    return {"version": VERSION, "rules": prepared.rules_digest, "model": digest_of(prepared.model.content),
            "root": study.root or "", "models": study.models, "parameters": prepared.digest,
            "factors": digest_of(study.factors), "design": digest_of(study.design), "seed": study.seed,
            "outputs": digest_of(study.columns)}


def executor_for(prepared: PreparedStudy, jobs: int | None, scheduler: str | None) -> Executor:
    if scheduler is not None:
        return ClusterExecutor(prepared, scheduler)
    number = jobs or len(os.sched_getaffinity(0))
    if number == 1:
        return ThisProcess(prepared)
    return Processes(prepared, number)


class ThisProcess:
    """Makes points in this process."""

    def __init__(self, prepared: PreparedStudy) -> None:
        self.maker = PointMaker(prepared)

    def run(self, work: Work) -> Iterator[list[MadePoint]]:
        while batch := work.next():
            began = time.monotonic()
            yield [self.maker.make(number, point) for number, point in batch]
            work.took(batch, time.monotonic() - began)

    def close(self) -> None:
        pass


_maker: PointMaker | None = None


def _begin(prepared: PreparedStudy) -> None:
    """The start of a process that makes points. Its parent alone answers Ctrl-C, and it ends with its parent."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, signal.SIG_DFL)
    death_signal = 1
    ctypes.CDLL(None).prctl(death_signal, signal.SIGKILL)
    global _maker
    _maker = PointMaker(prepared)


def _make(batch: Batch) -> tuple[list[MadePoint], float]:
    assert _maker is not None
    began = time.monotonic()
    made = [_maker.make(number, point) for number, point in batch]
    return made, time.monotonic() - began


class Processes:
    """Makes points in several processes of this machine. One that dies costs nothing but time."""

    def __init__(self, prepared: PreparedStudy, number: int) -> None:
        self.prepared, self.number = prepared, number
        self.pool = self._new_pool()

    def _new_pool(self) -> ProcessPoolExecutor:
        return ProcessPoolExecutor(self.number, multiprocessing.get_context("fork"), _begin, (self.prepared,))

    def run(self, work: Work) -> Iterator[list[MadePoint]]:
        running: dict[Future[tuple[list[MadePoint], float]], Batch] = {}
        while True:
            try:
                while len(running) < 2 * self.number and (batch := work.next()):
                    self._submit(batch, running, work)
                if not running:
                    return
                for future in wait(running, return_when=FIRST_COMPLETED).done:
                    made, seconds = future.result()
                    work.took(running.pop(future), seconds)
                    yield made
            except BrokenProcessPool:
                finished = [future for future in running if future.done() and not future.exception()]
                for future in finished:
                    yield future.result()[0]
                    del running[future]
                yield from self._one_by_one([one for batch in running.values() for one in batch])
                running.clear()

    def _submit(self, batch: Batch, running: dict[Future[tuple[list[MadePoint], float]], Batch], work: Work) -> None:
        try:
            running[self.pool.submit(_make, batch)] = batch
        except BrokenProcessPool:
            work.again(batch)
            raise

    def _one_by_one(self, points: Sequence[tuple[int, Point]]) -> Iterator[list[MadePoint]]:
        """Makes points that were under way when a process died, so that the one that kills processes is found."""
        self._replace_pool()
        for number, point in points:
            for _ in range(MOST_DEATHS):
                try:
                    yield self.pool.submit(_make, [(number, point)]).result()[0]
                    break
                except BrokenProcessPool:
                    self._replace_pool()
            else:
                yield [died(number)]

    def _replace_pool(self) -> None:
        self.pool.shutdown(wait=False, cancel_futures=True)
        self.pool = self._new_pool()

    def close(self) -> None:
        self.pool.shutdown(wait=True, cancel_futures=True)
