"""The common part of the tests of studies: small rules, a model, and studies over them."""

import os
import pathlib
import subprocess
import sys
from typing import Any, Protocol

import pytest
from hypothesis import settings

DATA = pathlib.Path(__file__).parent / "data"
RULES, MODEL = str(DATA / "channel.rules.yaml"), str(DATA / "channel.tdf")

# A loaded machine must not fail a test, so no example has a deadline.
settings.register_profile("tests", deadline=None)
settings.load_profile("tests")


class Describe(Protocol):
    """Writes the description of a study, with rules and model already in it, and returns its path."""

    def __call__(self, text: str, name: str = "study.yaml", head: bool = True) -> pathlib.Path: ...


@pytest.fixture
def described(tmp_path: pathlib.Path) -> Describe:
    """A function that writes the description of a study, with rules and model already in it, and returns its path."""

    def write(text: str, name: str = "study.yaml", head: bool = True) -> pathlib.Path:
        path = tmp_path / name
        start = f"Study: 1\nRules: {RULES}\nModel: {MODEL}\n" if head else ""
        path.write_text(start + text, encoding="utf-8")
        return path

    return write


def study_process(*arguments: object, **options: Any) -> subprocess.Popen[str]:
    """A process that runs `python3 -m tarn.study`."""
    environment = dict(os.environ, COLUMNS="100")
    return subprocess.Popen([sys.executable, "-m", "tarn.study", *map(str, arguments)], text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment, **options)


def run_command(*arguments: object) -> tuple[int, str, str]:
    """Runs `python3 -m tarn.study` and returns its status, its output and its messages."""
    process = study_process(*arguments)
    shown, messages = process.communicate(timeout=120)
    return process.returncode, shown, messages
