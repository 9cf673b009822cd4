"""Every example in a docstring and in docs/python.md is run."""

import doctest
import importlib
import pathlib
import pkgutil
import re

import pytest

import tarn
from conftest import HOUSE

MODULES = [one.name for one in pkgutil.walk_packages(tarn.__path__, "tarn.")
           if one.name != "tarn._tarn" and not one.name.startswith("tarn.study")]


@pytest.mark.parametrize("name", ["tarn", *MODULES])
def test_examples_of_a_module(name: str, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(HOUSE)
    failed, _ = doctest.testmod(importlib.import_module(name))
    assert failed == 0


def test_there_are_examples() -> None:
    finder = doctest.DocTestFinder(exclude_empty=True)
    assert sum(len(test.examples) for name in MODULES for test in finder.find(importlib.import_module(name))) > 30


def test_examples_of_the_manual(monkeypatch: pytest.MonkeyPatch, tmp_path: pathlib.Path) -> None:
    monkeypatch.chdir(HOUSE)
    manual = HOUSE / "docs" / "python.md"
    failed, tried = doctest.testfile(str(manual), module_relative=False, globs={"tmp": tmp_path})
    assert failed == 0 and tried > 30
    # No example escapes the test: blocks of Python have prompts.
    for block in re.findall(r"```python\n(.*?)```", manual.read_text(), re.DOTALL):
        assert block.startswith(">>> "), block


def test_every_public_name_has_a_docstring() -> None:
    for name in tarn.__all__:
        one = getattr(tarn, name)
        assert one.__doc__ and not one.__doc__.startswith(name + "("), name
        for member, value in vars(one).items() if isinstance(one, type) else ():
            undocumented = member.startswith("_") or not (callable(value) or isinstance(value, (property, classmethod)))
            if not undocumented and not name == "Edit" and one.__module__.startswith("tarn"):
                obvious = {"is_param", "applied", "refused", "effect", "item", "errors", "warnings", "answer", "rules"}
                assert getattr(value, "__doc__", None) or member in obvious, f"{name}.{member}"
