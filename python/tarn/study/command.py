"""The command line of studies: `zev study` and `python3 -m tarn.study`."""

from __future__ import annotations

import argparse
import csv
import os
import re
import signal
import sys
from collections.abc import Sequence

from tarn.study.description import read_study
from tarn.study.errors import StudyError
from tarn.study.making import prepare
from tarn.study.running import Counts, Outcome, run_study
from tarn.study.study import Study
from tarn.study.tables import FORMATS

NOTHING_FOUND, FINDINGS, FAILED, INTERRUPTED = 0, 1, 2, 130


def parser() -> argparse.ArgumentParser:
    program = os.environ.get("TARN_STUDY_PROGRAM", "python3 -m tarn.study")
    made = argparse.ArgumentParser(
        prog=program, formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Makes the points of a study: variants of one model, each made by edits that the rules keep legal, and\n"
                    "reviewed. Writes models and a table. A study that was stopped goes on where it was.",
        epilog="Exit status: 0 all points are sound and as asked, 1 some are not, 2 wrong usage or something that could\n"
               "not be read, 130 stopped by Ctrl-C.")
    made.add_argument("study", metavar="STUDY", help="description of the study, in YAML")
    made.add_argument("--out", metavar="FOLDER", help="folder for the models, the journal and the table")
    made.add_argument("--points", action="store_true", help="only print the points of the design, as CSV")
    made.add_argument("--format", choices=FORMATS, default=FORMATS[0], help="form of the table (default: csv)")
    made.add_argument("--jobs", type=_number, metavar="N", help="number of processes (default: one for each core)")
    made.add_argument("--scheduler", metavar="ADDRESS", help="make the points on the workers of this scheduler of Dask")
    made.add_argument("--part", type=_part, default=(1, 1), metavar="K/N",
                      help="make only the K-th of N parts; the parts can run on several machines in the same folder")
    made.add_argument("--batch", type=_number, metavar="N",
                      help="number of points that are sent to a process at once (default: what takes about two seconds)")
    made.add_argument("--quiet", action="store_true", help="show no progress and no summary")
    return made


def _number(text: str) -> int:
    if not re.fullmatch(r"[0-9]{1,9}", text) or int(text) < 1:
        raise argparse.ArgumentTypeError(f"'{text}' is not a whole number above 0")
    return int(text)


def _part(text: str) -> tuple[int, int]:
    match = re.fullmatch(r"([0-9]{1,9})/([0-9]{1,9})", text)
    if not match or not 1 <= int(match[1]) <= int(match[2]):
        raise argparse.ArgumentTypeError(f"'{text}' is not a part such as 3/16")
    return int(match[1]), int(match[2])


def main(arguments: Sequence[str] | None = None) -> int:
    options = parser()
    given = options.parse_args(arguments)
    if given.out is None and not given.points:
        options.error("give --out FOLDER, or --points to see the design")
    if given.scheduler is not None and given.jobs is not None:
        options.error("--jobs is for this machine; with --scheduler the workers decide")
    # A batch system ends a job by this signal. The points that are finished stay so in any case.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(128 + signal.SIGTERM))
    try:
        study = read_study(given.study)
        if given.points:
            print_points(study)
            return NOTHING_FOUND
        return _run(study, given)
    except StudyError as error:
        for fault in error.faults:
            print(f"study: {fault}", file=sys.stderr)
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
    except MemoryError:
        print("study: There is not enough memory.", file=sys.stderr)
    return FAILED


def _run(study: Study, given: argparse.Namespace) -> int:
    progress = Progress() if not given.quiet and sys.stderr.isatty() else None
    try:
        outcome = run_study(study, given.out, jobs=given.jobs, scheduler=given.scheduler, batch=given.batch,
                            part=given.part, table=given.format, progress=progress or (lambda counts: None))
    except KeyboardInterrupt:
        if progress:
            progress.clear()
        print("study: Stopped. The finished points are kept; run the same command again to go on.", file=sys.stderr)
        return INTERRUPTED
    finally:
        if progress:
            progress.clear()
    if not given.quiet:
        print(f"study: {summary(outcome)}", file=sys.stderr)
    counts = outcome.counts
    return FINDINGS if counts.unsound or counts.failed or counts.not_as_asked else NOTHING_FOUND


def summary(outcome: Outcome) -> str:
    counts = outcome.counts
    sound = counts.finished - counts.unsound - counts.failed
    parts = [f"{counts.finished:,} {'point' if counts.finished == 1 else 'points'}", f"{sound:,} sound"]
    parts += [f"{number:,} {what}" for number, what in (
        (counts.unsound, "with errors"), (counts.failed, "failed"), (counts.not_as_asked, "not as asked")) if number]
    text = f"{parts[0]}: {', '.join(parts[1:])}."
    if counts.made < counts.finished:
        text += f" {counts.finished - counts.made:,} of them were finished before."
    if outcome.table:
        return f"{text} The table is {outcome.table}."
    return f"{text} {outcome.missing:,} points of other parts are not finished, so there is no table yet."


def print_points(study: Study) -> None:
    """The design as CSV, which a study can take as its table. The base model is read, so patterns are checked."""
    prepare(study)
    writer = csv.writer(sys.stdout, lineterminator="\n")
    writer.writerow([factor.name for factor in study.factors])
    for number in range(len(study.points)):
        writer.writerow(["" if value is None else value for value in study.points[number]])
    sys.stdout.flush()


class Progress:
    """One line on a terminal that says how far a study is."""

    def __init__(self) -> None:
        self.shown = False

    def __call__(self, counts: Counts) -> None:
        self.shown = True
        sys.stderr.write(f"\r\033[K{progress_line(counts)}")
        sys.stderr.flush()

    def clear(self) -> None:
        if self.shown:
            sys.stderr.write("\r\033[K")
            sys.stderr.flush()
            self.shown = False


def progress_line(counts: Counts) -> str:
    line = f"{counts.finished:,} of {counts.total:,} points"
    if counts.unsound + counts.failed:
        line += f", {counts.unsound + counts.failed:,} with errors"
    if counts.made and counts.seconds > 1:
        speed = counts.made / counts.seconds
        left = (counts.total - counts.finished) / speed
        line += f", {speed:,.0f} a second, {duration(left)} left"
    return f"{line}, {counts.note}" if counts.note else line


def duration(seconds: float) -> str:
    if seconds < 100:
        return f"{seconds:.0f} s"
    if seconds < 6000:
        return f"{seconds / 60:.0f} min"
    return f"{seconds / 3600:.1f} h"
