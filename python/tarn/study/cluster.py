"""Making points on a cluster, with Dask distributed.

Each batch is a task of its own that depends on nothing else, so a worker that is lost, a scheduler that is started
again, and a worker that hangs cost time, and nothing is lost: a batch is finished when its points are in the journal of
this process, and until then it is sent again. Results of a batch that was sent twice are the same, and the journal takes
the first.
"""

from __future__ import annotations

import logging
import pickle
import queue
import threading
import time
import uuid
import zlib
from collections import OrderedDict
from collections.abc import Iterator
from dataclasses import dataclass, field
from typing import Any

from tarn.study.errors import StudyError
from tarn.study.making import VERSION, MadePoint, PointMaker, PreparedStudy
from tarn.study.work import Batch, Work, died

CONNECT_SECONDS = 30.0
"""A study does not begin if no scheduler answers in this time."""

PATIENCE_SECONDS = 600.0
"""A study that has begun waits so long for a scheduler that went away, and then ends. It can be run again."""

LATE_FACTOR, LATE_SECONDS = 5.0, 20.0
"""When nothing else is left to send, a batch is sent again if it takes so many times as long as others, and at least so
many seconds."""

RESULT_SECONDS = 15.0
"""The points of a batch that is finished must arrive in this time; otherwise the batch is sent again. A worker can hang
with the result."""

MOST_ATTEMPTS = 4
"""A batch is under way at most so many times at once."""

MOST_MAKERS = 4
"""A worker keeps the rules and sessions of so many studies."""


@dataclass(frozen=True)
class Reply:
    """The points of a batch, the seconds that they took, and the worker's version of the package."""

    made: list[MadePoint]
    seconds: float
    version: str


_makers = threading.local()


def make_batch(key: str, payload: bytes, batch: Batch) -> Reply:
    """Runs on the workers. The rules are loaded once in each process, and a session is opened once in each thread."""
    known: OrderedDict[str, PointMaker] = _makers.__dict__.setdefault("known", OrderedDict())
    if key not in known:
        known[key] = PointMaker(pickle.loads(zlib.decompress(payload)))
        while len(known) > MOST_MAKERS:
            known.popitem(last=False)
    known.move_to_end(key)
    began = time.monotonic()
    made = [known[key].make(number, point) for number, point in batch]
    return Reply(made, time.monotonic() - began, VERSION)


@dataclass(eq=False)
class _Sent:
    """A batch under way, which may have been sent more than once."""

    batch: Batch
    sent_at: float = 0.0
    futures: list[Any] = field(default_factory=list)


class ClusterExecutor:
    """Makes points on the workers of a scheduler."""

    def __init__(self, prepared: PreparedStudy, address: str) -> None:
        try:
            import distributed
        except ImportError:
            raise StudyError("A scheduler needs the Python package distributed. Install the Debian package "
                             "python3-distributed.") from None
        self.distributed: Any = distributed
        # This module has sentences for a lost scheduler; those of the package are about its own inner life.
        for name in ("distributed.client", "distributed.comm", "distributed.core"):
            logging.getLogger(name).setLevel(logging.CRITICAL)
        self.address = address
        self.key = prepared.digest
        self.payload = zlib.compress(pickle.dumps(prepared))
        self.client: Any = None
        self.arrived: queue.SimpleQueue[Any] = queue.SimpleQueue()
        if not self._connect(CONNECT_SECONDS):
            raise StudyError(f"No scheduler answers at {address}. Start one, for instance with dask-scheduler.")

    # The connection

    def _connect(self, seconds: float) -> bool:
        try:
            self.client = self.distributed.Client(self.address, timeout=seconds, set_as_default=False)
        except (OSError, TimeoutError, ValueError):
            self.client = None
            return False
        return True

    def _disconnect(self) -> None:
        client, self.client = self.client, None
        if client is not None:
            try:
                client.close(timeout=2)
            except Exception:  # noqa: BLE001  whatever is wrong with a lost connection, it is given up
                pass

    def _threads(self) -> int | None:
        """The number of threads of all workers. None if the scheduler is away."""
        try:
            return sum(int(one["nthreads"]) for one in self.client.scheduler_info()["workers"].values())
        except Exception:  # noqa: BLE001  a lost connection shows itself by errors of many kinds
            self._disconnect()
            return None

    def _is_connected(self) -> bool:
        return self.client is not None and self.client.status == "running"

    def _reconnect(self, work: Work) -> None:
        """Waits for the scheduler."""
        self._disconnect()
        until = time.monotonic() + PATIENCE_SECONDS
        while time.monotonic() < until:
            work.note("waiting for the scheduler")
            if self._connect(2.0):
                return
            time.sleep(0.5)
        raise StudyError(f"The scheduler at {self.address} went away and did not come back in "
                         f"{PATIENCE_SECONDS / 60:.0f} minutes. The finished points are kept; run the study again to go on.")

    # The points

    def run(self, work: Work) -> Iterator[list[MadePoint]]:
        under_way: list[_Sent] = []
        mean_seconds = 0.0
        while True:
            if not self._is_connected():
                # No result of the batches that were under way can come any more.
                for sent in under_way:
                    work.again(sent.batch)
                under_way.clear()
                self._reconnect(work)
            threads = self._threads()
            if threads is None:
                continue
            if not threads:
                work.note("waiting for workers")
            all_sent = False
            while len(under_way) < 2 * threads and not all_sent:
                batch = work.next()
                if batch is None:
                    all_sent = True
                else:
                    under_way.append(_Sent(batch))
                    self._send(under_way[-1])
            if not under_way and threads:
                return
            for sent, reply in self._replies(under_way, work):
                self._check(reply)
                work.took(sent.batch, reply.seconds)
                mean_seconds = 0.9 * mean_seconds + 0.1 * reply.seconds if mean_seconds else reply.seconds
                yield reply.made
            yield from self._dead(under_way, work)
            if all_sent:
                self._send_late(under_way, mean_seconds)

    def _send(self, sent: _Sent) -> None:
        sent.sent_at = time.monotonic()
        # A key of its own for each attempt; the same key would only ask for the same attempt again.
        try:
            future = self.client.submit(make_batch, self.key, self.payload, sent.batch, key=f"tarn-study-{uuid.uuid4()}",
                                        pure=False)
            future.add_done_callback(self.arrived.put)
        except Exception:  # noqa: BLE001  as in `_threads`; the batch is sent again with all others
            return self._disconnect()
        sent.futures.append(future)

    def _send_late(self, under_way: list[_Sent], mean_seconds: float) -> None:
        """Sends batches again whose worker hangs, now that others have nothing to do."""
        limit = max(LATE_SECONDS, LATE_FACTOR * mean_seconds)
        for sent in under_way:
            if len(sent.futures) < MOST_ATTEMPTS and time.monotonic() - sent.sent_at > limit:
                self._send(sent)

    def _replies(self, under_way: list[_Sent], work: Work) -> Iterator[tuple[_Sent, Reply]]:
        """The batches that have come, after waiting for one for a short time."""
        try:
            self.arrived.get(timeout=0.2)
            while True:
                self.arrived.get_nowait()
        except queue.Empty:
            pass
        for sent in list(under_way):
            for future in sent.futures:
                if future.status == "finished":
                    try:
                        reply = future.result(timeout=RESULT_SECONDS)
                    except Exception:  # noqa: BLE001  the result was lost on its way; it is made again
                        under_way.remove(sent)
                        work.again(sent.batch)
                        break
                    under_way.remove(sent)
                    yield sent, reply
                    break

    def _dead(self, under_way: list[_Sent], work: Work) -> Iterator[list[MadePoint]]:
        """Looks after batches without a result: lost ones are sent again, and those that kill workers are divided."""
        for sent in list(under_way):
            states = {future.status for future in sent.futures}
            if "pending" in states or "finished" in states:
                continue
            under_way.remove(sent)
            failed = next((future for future in sent.futures if future.status == "error"), None)
            if failed is None:  # cancelled or lost, with the scheduler or the connection
                work.again(sent.batch)
                continue
            error = failed.exception()
            if not isinstance(error, self.distributed.scheduler.KilledWorker):
                raise StudyError(_explained(error))
            if len(sent.batch) == 1:
                yield [died(sent.batch[0][0])]
            else:
                for one in sent.batch:
                    work.again([one])

    def _check(self, reply: Reply) -> None:
        if reply.version != VERSION:
            raise StudyError(f"A worker has version {reply.version} of tarn, and this program has version {VERSION}. "
                             "Points of different versions do not belong in one table.")

    def close(self) -> None:
        self._disconnect()


def _explained(error: BaseException) -> str:
    if isinstance(error, ModuleNotFoundError) or "No module named" in str(error):
        return (f"A worker cannot make points: {error}. The workers need the Python package tarn, as this program has it: "
                "install python3-tarn there, or set PYTHONPATH before the workers start.")
    return f"A worker could not make points: {type(error).__name__}: {error}"
