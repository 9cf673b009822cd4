"""The job script of the documentation, run by Slurm on one node: this machine."""

import os
import pathlib
import shutil
import socket
import subprocess
import sys
import time
from collections.abc import Iterator

import pytest

from conftest import Describe, run_command
from test_running import contents

DOCUMENT = pathlib.Path(__file__).parents[2] / "docs/studies.md"

pytestmark = pytest.mark.skipif(os.geteuid() != 0 or not all(map(shutil.which, ("slurmctld", "slurmd", "sbatch"))),
                                reason="needs root and the Debian package slurm-wlm")


def free_port() -> int:
    with socket.socket() as chosen:
        chosen.bind(("127.0.0.1", 0))
        return int(chosen.getsockname()[1])


@pytest.fixture(scope="module")
def slurm(tmp_path_factory: pytest.TempPathFactory) -> Iterator[dict[str, str]]:
    """Slurm for this machine alone, beside one that may be running. Gives the environment for its commands."""
    folder = tmp_path_factory.mktemp("slurm")
    name = socket.gethostname().split(".")[0]
    for part in ("state", "spool"):
        (folder / part).mkdir()
    (folder / "slurm.conf").write_text(f"""\
ClusterName=test
SlurmctldHost={name}(127.0.0.1)
SlurmUser=root
AuthType=auth/none
CredType=cred/none
SlurmctldPort={free_port()}
SlurmdPort={free_port()}
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SwitchType=switch/none
MpiDefault=none
ReturnToService=2
NodeName={name} NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=main Nodes=ALL Default=YES MaxTime=INFINITE State=UP
""", encoding="utf-8")
    environment = dict(os.environ, SLURM_CONF=str(folder / "slurm.conf"))
    with open(folder / "log", "wb") as log:
        daemons = [subprocess.Popen([daemon, "-D"], env=environment, stdout=log, stderr=log)
                   for daemon in ("slurmctld", "slurmd")]
    try:
        until = time.monotonic() + 30
        while time.monotonic() < until:
            shown = subprocess.run(["sinfo", "--noheader", "--format=%T"], env=environment, capture_output=True, text=True,
                                   check=False)
            if shown.stdout.strip() == "idle":
                break
            time.sleep(0.2)
        else:
            pytest.fail(f"Slurm does not start:\n{(folder / 'log').read_text()}")
        yield environment
    finally:
        for daemon in reversed(daemons):
            daemon.terminate()
            daemon.wait(timeout=20)


def script_of_the_documentation(name: str) -> str:
    """The job script that the documentation shows under this name."""
    text = DOCUMENT.read_text(encoding="utf-8")
    begin = text.index(f"```text file={name}\n") + len(f"```text file={name}\n")
    return text[begin:text.index("\n```", begin) + 1]


def submit(slurm: dict[str, str], folder: pathlib.Path, script: str) -> str:
    (folder / script).write_text(script_of_the_documentation(script), encoding="utf-8")
    # On a real cluster python3 is the one that has the package. Here it may be another one than the first on the path.
    path = f"{pathlib.Path(sys.executable).parent}:{os.environ['PATH']}"
    done = subprocess.run(["sbatch", "--wait", script], cwd=folder, env=dict(slurm, PATH=path), capture_output=True,
                          text=True, timeout=150, check=False)
    logs = "".join(f"{path.name}:\n{path.read_text()}" for path in sorted(folder.glob("slurm-*.out")))
    return done.stderr + logs


@pytest.mark.parametrize("script", ["array.sh", "cluster.sh"])
def test_a_job_makes_the_same_as_one_process(slurm: dict[str, str], described: Describe, tmp_path: pathlib.Path,
                                             script: str) -> None:
    description = described("""
Factors:
  cells: {Parameter: /Case/Cells, Range: [10, 1000], Whole Numbers: yes}
  head: {Parameter: "/Case/Pump:*/Head", Range: [1, 5], Units: bar}
Design: {Latin Hypercube: 500}
""")
    shown = submit(slurm, tmp_path, script)
    assert (tmp_path / "results/table.csv").exists(), shown
    run_command(description, "--out", tmp_path / "plain", "--jobs", 1)
    assert contents(tmp_path / "results") == contents(tmp_path / "plain")
