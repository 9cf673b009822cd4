"""The folder of a study: which points are finished, and their models.

A point is finished when its line is in the journal. Its model is written before. A line is written at once, so a
process that is killed leaves at most one incomplete line, at the end. That line is cut off when the study goes on, and
the point is made again: it becomes the same as before, because it depends on its number only.
"""

from __future__ import annotations

import fcntl
import json
import os
import pathlib
import time
from array import array
from collections.abc import Iterable, Iterator
from typing import Any, BinaryIO

from tarn.study.errors import StudyError
from tarn.study.making import MadePoint

FORM = 1
"""The number of the form of the journal. A folder with another form is refused."""

_STUDY = "study.json"
_SYNC_SECONDS = 2.0
_LOCK_SECONDS = 3.0


def model_name(number: int) -> str:
    """The name of the model of a point, seen from the folder of the study. A thousand models share a folder."""
    return f"models/{number // 1000:04d}/{number:07d}.tdf"


class Store:
    """The folder of one study, for one process that makes points. Several parts of a study can share the folder."""

    def __init__(self, folder: str | os.PathLike[str], identity: dict[str, Any], points: int,
                 part: tuple[int, int] = (1, 1)) -> None:
        """Opens the folder of a study, and makes it if it does not exist.

        `identity` says which study this is; a folder of another study is refused with what differs. Raises
        `StudyError`, also while another process makes the same part.
        """
        self.folder = pathlib.Path(folder)
        self.points = points
        self.done = bytearray(points)
        self._synced = time.monotonic()
        self._journal: BinaryIO | None = None
        try:
            self.folder.mkdir(parents=True, exist_ok=True)
            self._claim(identity | {"form": FORM, "points": points})
            # A journal of its own for each way to divide the study, so that no two processes write to one file.
            name = "journal.jsonl" if part[1] == 1 else f"journal-{part[0]}-of-{part[1]}.jsonl"
            self._journal = open(self.folder / name, "ab+")
            self._lock(name)
            self._cut()
            self._read()
        except (FileExistsError, NotADirectoryError):
            raise StudyError(f"{self.folder} is not a folder; give another one.") from None
        except OSError as error:
            raise StudyError(f"{error.filename or self.folder} cannot be used: {error.strerror}.") from None

    def _claim(self, identity: dict[str, Any]) -> None:
        path = self.folder / _STUDY
        if path.exists():
            self._compare(json.loads(path.read_text(encoding="utf-8")), identity)
            return
        if any(self.folder.iterdir()) and not list(self.folder.glob(f"{_STUDY}.*")):
            raise StudyError(f"{self.folder} is neither empty nor the folder of a study; give another one.")
        # The first of several processes wins, with a complete file.
        temporary = self.folder / f"{_STUDY}.{os.uname().nodename}.{os.getpid()}"
        temporary.write_text(json.dumps(identity, indent=2) + "\n", encoding="utf-8")
        try:
            os.link(temporary, path)
        except FileExistsError:
            self._compare(json.loads(path.read_text(encoding="utf-8")), identity)
        finally:
            temporary.unlink()

    def _compare(self, found: dict[str, Any], identity: dict[str, Any]) -> None:
        differing = [key for key in identity if found.get(key) != identity[key]]
        if differing:
            raise StudyError(f"{self.folder} holds another study, with a difference in {', '.join(differing)}; give another "
                             "folder, or remove this one to begin again.")

    def _lock(self, name: str) -> None:
        assert self._journal is not None
        # The children of a process that was killed hold its lock for a moment longer.
        until = time.monotonic() + _LOCK_SECONDS
        while True:
            try:
                return fcntl.flock(self._journal, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                if time.monotonic() > until:
                    raise StudyError(f"Another process is running this study: {self.folder / name} is locked.") from None
                time.sleep(0.05)

    def _cut(self) -> None:
        """Cuts off the line that a killed process left incomplete at the end of the journal."""
        assert self._journal is not None
        good = 0
        self._journal.seek(0)
        for line in self._journal:
            if not line.endswith(b"\n") or _parsed(line) is None:
                break
            good += len(line)
        self._journal.truncate(good)

    def _read(self) -> None:
        for record, _, _ in self._records():
            if self._is_whole(record):
                self.done[record["number"]] = 1

    def _is_whole(self, record: dict[str, Any]) -> bool:
        """Whether the model of a point is still there. It can be lost with the power."""
        size = record.get("model")
        if size is None:
            return True
        try:
            return os.stat(self.folder / model_name(record["number"])).st_size == int(size)
        except FileNotFoundError:
            return False

    def _journals(self) -> list[pathlib.Path]:
        return sorted(self.folder.glob("journal*.jsonl"))

    def _records(self) -> Iterator[tuple[dict[str, Any], int, int]]:
        """Each record of all journals, with the number of its journal and its position in it."""
        for index, path in enumerate(self._journals()):
            position = 0
            with open(path, "rb") as file:
                for line in file:
                    record = _parsed(line) if line.endswith(b"\n") else None
                    if record is None or not 0 <= record["number"] < self.points:
                        break
                    yield record, index, position
                    position += len(line)

    @property
    def finished(self) -> int:
        """The number of finished points."""
        return sum(self.done)

    def add(self, made: Iterable[MadePoint]) -> list[MadePoint]:
        """Writes models and journal of points. Points that are finished already are ignored. Returns the others."""
        assert self._journal is not None
        new = []
        lines = []
        try:
            for point in made:
                if self.done[point.number]:
                    continue
                self.done[point.number] = 1
                new.append(point)
                if point.model is not None:
                    self._write_model(point.number, point.model)
                record = dict(vars(point))
                record["model"] = None if point.model is None else len(point.model)
                lines.append(json.dumps(record, ensure_ascii=True, separators=(",", ":")) + "\n")
            self._journal.write("".join(lines).encode("ascii"))
            self._journal.flush()
            # Only a failing machine needs this, a killed process does not.
            if time.monotonic() - self._synced > _SYNC_SECONDS:
                os.fsync(self._journal.fileno())
                self._synced = time.monotonic()
        except OSError as error:
            raise StudyError(f"{error.filename or self.folder} cannot be written: {error.strerror}. The finished points "
                             "are kept; run the study again to go on.") from None
        return new

    def _write_model(self, number: int, text: bytes) -> None:
        path = self.folder / model_name(number)
        temporary = path.with_suffix(".new")
        try:
            temporary.write_bytes(text)
        except FileNotFoundError:
            path.parent.mkdir(parents=True, exist_ok=True)
            temporary.write_bytes(text)
        os.replace(temporary, path)

    def records(self) -> Iterator[dict[str, Any] | None]:
        """The record of each point by number, None for points that are not finished. Keeps only positions in memory."""
        places = array("q", [-1]) * self.points
        journals = array("i", [0]) * self.points
        for record, index, position in self._records():
            places[record["number"]] = position
            journals[record["number"]] = index
        files = [open(path, "rb") for path in self._journals()]
        try:
            for number in range(self.points):
                if places[number] < 0:
                    yield None
                    continue
                file = files[journals[number]]
                file.seek(places[number])
                yield _parsed(file.readline())
        finally:
            for file in files:
                file.close()

    def close(self) -> None:
        if self._journal is not None:
            try:
                os.fsync(self._journal.fileno())
            finally:
                self._journal.close()
                self._journal = None

    def __enter__(self) -> Store:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def _parsed(line: bytes) -> dict[str, Any] | None:
    try:
        record = json.loads(line)
    except ValueError:
        return None
    return record if isinstance(record, dict) and isinstance(record.get("number"), int) else None
