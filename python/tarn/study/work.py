"""The points of a study that are still to be made, in batches, and what can make them."""

from __future__ import annotations

from collections import deque
from collections.abc import Callable, Iterator
from dataclasses import dataclass, field
from typing import Protocol

from tarn.study.designs import Point
from tarn.study.making import MadePoint

Batch = list[tuple[int, Point]]

MOST_IN_A_BATCH = 1000
BATCH_SECONDS = 2.0
"""Batches grow until one takes about so long. This is what a killed process has to make again at most."""

MOST_DEATHS = 3
"""A point during which so many processes died is given up and has the status "failed"."""


class Executor(Protocol):
    """Something that makes points."""

    def run(self, work: Work) -> Iterator[list[MadePoint]]:
        """Takes batches until there are no more, and yields points in any order. A point may come twice."""

    def close(self) -> None: ...


@dataclass
class Work:
    """The points that are still to be made, in batches whose size follows from the time that points take."""

    numbers: Iterator[int]
    point: Callable[[int], Point]
    fixed: int | None = None
    note: Callable[[str], None] = field(default=lambda text: None)
    _size: int = 1
    _again: deque[Batch] = field(default_factory=deque)

    def next(self) -> Batch | None:
        """The next batch; None if there is none at present."""
        if self._again:
            return self._again.popleft()
        batch = []
        for number in self.numbers:
            batch.append((number, self.point(number)))
            if len(batch) >= (self.fixed or self._size):
                break
        return batch or None

    def again(self, batch: Batch) -> None:
        """Takes a batch back that was lost."""
        self._again.append(batch)

    def took(self, batch: Batch, seconds: float) -> None:
        """Learns from the time that a batch took."""
        wanted = int(len(batch) * BATCH_SECONDS / max(seconds, 1e-6))
        self._size = max(1, min(wanted, 4 * self._size, MOST_IN_A_BATCH))


def died(number: int) -> MadePoint:
    return MadePoint(number, reasons=[f"{MOST_DEATHS} processes died while they made this point"])
