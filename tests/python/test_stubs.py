"""The types of the package: mypy accepts it, and the stub of the compiled module is what the module has."""

import ast
import inspect
import os
import pathlib
import re
import subprocess
import sys
from typing import Any

import pytest

import tarn
from conftest import HOUSE
from tarn import _tarn

PACKAGE = pathlib.Path(tarn.__file__).resolve().parent
STUB = ast.parse((PACKAGE / "_tarn.pyi").read_text())

Signature = tuple[dict[str, tuple[str | None, str | None]], str]
"""The type and the default of each parameter, and the type of the result."""

# How the compiled module names a type in its docstrings, for those that it names. Records and dictionaries are objects
# or dictionaries there.
WRITTEN = {
    "List[": "list[", "Tuple[": "tuple[", "tarn._tarn.": "", "tarn::python::": "",
}


def mypy(*arguments: str) -> subprocess.CompletedProcess[str]:
    """mypy with the settings of the project, which are strict."""
    return subprocess.run([sys.executable, "-m", "mypy", "--config-file", HOUSE / "pyproject.toml", *arguments],
                          capture_output=True, text=True, env=os.environ | {"NO_COLOR": "1"})


def signature(doc: str) -> Signature:
    """The names of the parameters, their types, and the result of a function of the compiled module."""
    match = re.match(r"\w+\((.*)\) -> (.+)$", doc.splitlines()[0])
    assert match, doc
    parameters: dict[str, tuple[str | None, str | None]] = {}
    for part in re.split(r", (?=\w+:)", match[1]) if match[1] else []:
        name, _, kind = part.partition(": ")
        kind, _, default = kind.partition(" = ")
        # A pointer that may be null is not marked there.
        parameters[name] = (plain(kind) + (" | None" if default == "None" else ""), default or None)
    return parameters, plain(match[2])


def plain(kind: str) -> str:
    for old, new in WRITTEN.items():
        kind = kind.replace(old, new)
    optional = re.fullmatch(r"Optional\[(.*)\]", kind)
    return f"{optional[1]} | None" if optional else kind


def functions(body: list[ast.stmt]) -> dict[str, ast.FunctionDef]:
    return {one.name: one for one in body if isinstance(one, ast.FunctionDef)}


def declared(function: ast.FunctionDef) -> Signature:
    """The same of a function of the stub."""
    arguments = function.args.args
    defaults: list[ast.expr | None] = [None] * (len(arguments) - len(function.args.defaults))
    defaults += function.args.defaults
    parameters = {one.arg: (written(one.annotation), written(default)) for one, default in zip(arguments, defaults)}
    return parameters, written(function.returns) or ""


def written(node: ast.expr | None) -> str | None:
    return None if node is None else ast.unparse(node)


def members(namespace: object, of_class: bool) -> set[str]:
    hidden = {"__module__", "__doc__", "__pybind11_module_local_v4_gcc_libstdcpp_cxxabi1017__"}
    return {name for name, value in vars(namespace).items()
            if name not in hidden and (name == "__init__" if of_class and name.startswith("__") else
                                       not name.startswith("__"))}


def same_type(stub: str | None, module: str | None) -> bool:
    """Whether a type of the stub is what the module says. The module knows records only as objects."""
    if module in ("object", "dict", "tuple"):
        return stub not in ("str", "bytes", "int", "bool", "float", "None")
    return stub == module


def compare(where: str, stub: ast.FunctionDef, function: object) -> None:
    given, result = declared(stub)
    found, found_result = signature(inspect.getdoc(function) or "")
    given.pop("self", None)
    found.pop("self", None)
    assert list(given) == list(found), where
    for name, (kind, default) in given.items():
        assert same_type(kind, found[name][0]), f"{where}({name}): {kind} and {found[name][0]}"
        assert default == found[name][1], f"{where}({name})"
    if not where.endswith("__init__"):
        assert same_type(result, found_result), f"{where}: {result} and {found_result}"


def test_the_stub_has_every_name_and_signature_of_the_module_and_no_other() -> None:
    classes = {one.name: one for one in STUB.body if isinstance(one, ast.ClassDef)}
    values = {one.target.id: ast.unparse(one.annotation) for one in STUB.body
              if isinstance(one, ast.AnnAssign) and isinstance(one.target, ast.Name)}
    assert members(_tarn, False) == set(classes) | set(functions(STUB.body)) | set(values)
    assert all(type(getattr(_tarn, name)).__name__ == kind for name, kind in values.items())
    compared = 0
    for name, function in functions(STUB.body).items():
        compare(name, function, getattr(_tarn, name))
        compared += 1
    for name, one in classes.items():
        kind = getattr(_tarn, name)
        # A class that cannot be made from Python has an __init__ of pybind11, which has no signature.
        makers = {"__init__"} if "__init__" not in functions(one.body) else set()
        assert members(kind, True) - makers == set(functions(one.body)), name
        for method, function in functions(one.body).items():
            compare(f"{name}.{method}", function, getattr(kind, method))
            compared += 1
    assert compared > 30


def test_the_check_of_a_signature_can_fail() -> None:
    wrong = functions(ast.parse("def parse_model(source: bytes, content: bytes) -> State: ...").body)["parse_model"]
    with pytest.raises(AssertionError, match="source"):
        compare("parse_model", wrong, _tarn.parse_model)


def test_mypy_accepts_the_package_and_a_program_that_uses_it(tmp_path: pathlib.Path) -> None:
    program = tmp_path / "program.py"
    program.write_text("""\
import tarn

rules: tarn.Rules = tarn.load_rules("rules")
session = tarn.Session(rules, {"Case": {"Title": "Fan"}}, root="/Case")
result: tarn.EditResult = session.set("Speed", 3).or_raise()
edits: tuple[tarn.Edit, ...] = session.how("Speed", 3).ways[0].edits
for one in tarn.review(rules, ["a.tdf"], jobs=2):
    reveal_type(one.findings)
""")
    done = mypy(*map(str, sorted(PACKAGE.rglob("*.py"))), str(program))
    assert done.returncode == 0, done.stdout
    assert 'Revealed type is "Union[tarn.records.Findings, None]"' in done.stdout


@pytest.mark.parametrize("folder", ["python", "study"])
def test_mypy_accepts_the_tests(folder: str) -> None:
    # The folders are checked one by one, because each has a conftest.py.
    files = sorted((HOUSE / "tests" / folder).glob("*.py"))
    done = mypy(*map(str, files))
    assert done.returncode == 0, done.stdout
    assert f"in {len(files)} source files" in done.stdout and "conftest.py" in {one.name for one in files}


def test_mypy_finds_wrong_use(tmp_path: pathlib.Path) -> None:
    program = tmp_path / "program.py"
    program.write_text("import tarn\n\ntarn.load_rules(3)\ntarn.Edit.set_param('/A', 'p')\n"
                       "tarn.review(tarn.load_rules('r'), ['a'], phases='some')\n")
    done = mypy(str(program))
    assert [line.split(":")[1] for line in done.stdout.splitlines() if ": error:" in line] == ["3", "4", "5"], done.stdout
