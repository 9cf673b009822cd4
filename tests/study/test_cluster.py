"""Studies on a cluster: a real scheduler and several workers on this machine, some of which are killed."""

import os
import pathlib
import signal
import socket
import subprocess
import sys
import time
from collections.abc import Iterator

import pytest

from conftest import Describe, run_command, study_process
from test_running import contents, journal_lines

pytest.importorskip("distributed")

DESCRIPTION = """
Factors:
  cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}
  regime: {Parameter: /Case/Regime, Values: [Laminar, Turbulent]}
  head: {Parameter: "/Case/Pump:*/Head", Range: [1, 5], Units: bar}
Design: {Latin Hypercube: 3000}
"""


class Cluster:
    """A scheduler and workers, each a process of its own."""

    def __init__(self, folder: pathlib.Path) -> None:
        self.folder = folder
        with socket.socket() as chosen:
            chosen.bind(("127.0.0.1", 0))
            self.port = chosen.getsockname()[1]
        self.address = f"tcp://127.0.0.1:{self.port}"
        self.scheduler: subprocess.Popen[bytes] | None = None
        self.workers: list[subprocess.Popen[bytes]] = []

    def _start(self, module: str, *arguments: str) -> subprocess.Popen[bytes]:
        log = open(self.folder / f"{module}.log", "ab")
        return subprocess.Popen([sys.executable, "-m", f"distributed.cli.{module}", *arguments], cwd=self.folder,
                                stdout=log, stderr=log)

    def start_scheduler(self) -> None:
        self.scheduler = self._start("dask_scheduler", "--host", "127.0.0.1", "--port", str(self.port), "--no-dashboard")

    def stop_scheduler(self) -> None:
        assert self.scheduler is not None
        self.scheduler.kill()
        self.scheduler.wait()

    def start_worker(self) -> None:
        self.workers.append(self._start("dask_worker", self.address, "--nthreads", "1", "--no-nanny", "--no-dashboard",
                                        "--local-directory", str(self.folder)))

    def stop(self) -> None:
        for process in [*self.workers, self.scheduler]:
            if process is not None:
                process.kill()
                process.wait()


@pytest.fixture
def cluster(tmp_path: pathlib.Path) -> Iterator[Cluster]:
    made = Cluster(tmp_path)
    made.start_scheduler()
    made.start_worker()
    made.start_worker()
    yield made
    made.stop()


@pytest.fixture(scope="module")
def plain(tmp_path_factory: pytest.TempPathFactory) -> dict[str, bytes]:
    """The same study, made by one process."""
    folder = tmp_path_factory.mktemp("plain")
    from conftest import MODEL, RULES

    (folder / "study.yaml").write_text(f"Study: 1\nRules: {RULES}\nModel: {MODEL}\n{DESCRIPTION}", encoding="utf-8")
    run_command(folder / "study.yaml", "--out", folder / "out", "--jobs", 1)
    return contents(folder / "out")


def wait_for_lines(process: subprocess.Popen[str], out: pathlib.Path, wanted: int) -> None:
    until = time.monotonic() + 120
    while process.poll() is None and journal_lines(out) < wanted and time.monotonic() < until:
        time.sleep(0.01)
    assert process.poll() is None, process.communicate()
    assert journal_lines(out) >= wanted


def finished(process: subprocess.Popen[str]) -> str:
    _, messages = process.communicate(timeout=150)
    assert process.returncode == 1, messages  # some points have findings
    return messages


def impatient(change: str, *arguments: str | pathlib.Path) -> subprocess.Popen[str]:
    """The command with other limits of time."""
    program = f"import sys, tarn.study.cluster as c; c.{change}; from tarn.study.command import main; sys.exit(main())"
    return subprocess.Popen([sys.executable, "-c", program, *arguments], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def test_workers_make_the_same_table_and_models_as_one_process(described: Describe, tmp_path: pathlib.Path,
                                                               cluster: Cluster, plain: dict[str, bytes]) -> None:
    process = study_process(described(DESCRIPTION), "--out", tmp_path / "out", "--scheduler", cluster.address)
    finished(process)
    assert contents(tmp_path / "out") == plain


def test_a_killed_worker_costs_no_point(described: Describe, tmp_path: pathlib.Path, cluster: Cluster,
                                        plain: dict[str, bytes]) -> None:
    process = study_process(described(DESCRIPTION), "--out", tmp_path / "out", "--scheduler", cluster.address,
                            "--batch", 20)
    wait_for_lines(process, tmp_path / "out", 200)
    cluster.workers[0].kill()
    finished(process)
    assert contents(tmp_path / "out") == plain


def test_a_worker_that_hangs_costs_no_point(described: Describe, tmp_path: pathlib.Path, cluster: Cluster,
                                            plain: dict[str, bytes]) -> None:
    # Normally a batch is sent again after twenty seconds, and its result may take fifteen.
    process = impatient("LATE_SECONDS = c.RESULT_SECONDS = 1", described(DESCRIPTION), "--out", tmp_path / "out",
                        "--scheduler", cluster.address, "--batch", "20")
    wait_for_lines(process, tmp_path / "out", 200)
    cluster.workers[0].send_signal(signal.SIGSTOP)
    finished(process)
    cluster.workers[0].send_signal(signal.SIGCONT)
    assert contents(tmp_path / "out") == plain


def test_a_scheduler_that_is_started_again_costs_no_point(described: Describe, tmp_path: pathlib.Path, cluster: Cluster,
                                                          plain: dict[str, bytes]) -> None:
    process = study_process(described(DESCRIPTION), "--out", tmp_path / "out", "--scheduler", cluster.address,
                            "--batch", 20)
    wait_for_lines(process, tmp_path / "out", 200)
    before = journal_lines(tmp_path / "out")
    cluster.stop_scheduler()
    cluster.start_scheduler()
    cluster.start_worker()  # workers end with their scheduler
    cluster.start_worker()
    finished(process)
    assert before < 3000
    assert contents(tmp_path / "out") == plain
    assert journal_lines(tmp_path / "out") == 3000


def test_a_study_that_is_killed_goes_on_on_the_cluster(described: Describe, tmp_path: pathlib.Path, cluster: Cluster,
                                                       plain: dict[str, bytes]) -> None:
    description = described(DESCRIPTION)
    process = study_process(description, "--out", tmp_path / "out", "--scheduler", cluster.address,
                            "--batch", 20)
    wait_for_lines(process, tmp_path / "out", 500)
    process.kill()
    process.communicate()
    finished(study_process(description, "--out", tmp_path / "out", "--scheduler", cluster.address))
    assert contents(tmp_path / "out") == plain
    assert journal_lines(tmp_path / "out") == 3000


def test_workers_without_the_package_are_reported(described: Describe, tmp_path: pathlib.Path) -> None:
    made = Cluster(tmp_path)
    made.start_scheduler()
    kept = os.environ.pop("PYTHONPATH", None)
    try:
        made.start_worker()
    finally:
        if kept is not None:
            os.environ["PYTHONPATH"] = kept
    try:
        status, _, messages = run_command(described(DESCRIPTION), "--out", tmp_path / "out",
                                          "--scheduler", made.address)
    finally:
        made.stop()
    assert status == 2
    assert "A worker cannot make points: No module named 'tarn'" in messages


def test_a_scheduler_that_does_not_answer_is_reported(described: Describe, tmp_path: pathlib.Path) -> None:
    process = impatient("CONNECT_SECONDS = 1", described(DESCRIPTION), "--out", tmp_path / "out", "--scheduler",
                        "tcp://127.0.0.1:1")
    _, messages = process.communicate(timeout=60)
    assert (process.returncode, messages) == (
        2, "study: No scheduler answers at tcp://127.0.0.1:1. Start one, for instance with dask-scheduler.\n")
