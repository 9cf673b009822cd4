"""The package says what the program says: on random edits of the examples, every answer of `zev --format json` is the
answer of the package."""

import json
import math
import pathlib
import subprocess
from typing import Any

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import tarn
from conftest import FLOW, HEATING
from tarn import Edit, Item

CASES = {"flow": (FLOW / "rules", FLOW / "models" / "sound.tdf"),
         "heating": (HEATING / "rules", HEATING / "models" / "house.tdf")}
RANDOM = settings(max_examples=15, deadline=None, derandomize=True, database=None,
                  suppress_health_check=list(HealthCheck))


def run(zev: str, *arguments: object) -> Any:
    done = subprocess.run([zev, *map(str, arguments)], capture_output=True)
    assert done.returncode in (0, 1), done.stderr.decode()
    return json.loads(done.stdout)


# The forms of the records as the program writes them. This is a second reading, so it shares no code with the package.

def camel(name: str) -> Any:
    first, *rest = name.rstrip("_").split("_")
    return first + "".join(word.capitalize() for word in rest)


def place(one: Any) -> Any:
    return {"file": one.file, "line": one.line, "column": one.column}


def item(one: Any) -> Any:
    return {"path": one.path} | ({} if one.name is None else {"name": one.name})


def edit(one: Any) -> Any:
    form = {"kind": one.kind, "path": one.path}
    if one.kind in ("set-param", "activate-param", "deactivate-param", "duplicate-object", "rename-object"):
        form["name"] = one.name
    if one.kind == "set-param":
        form["value"] = one.value
    return form


def present(form: Any) -> Any:
    return {key: value for key, value in form.items() if value not in (None, (), "", [])}


def waiting(one: Any) -> Any:
    return item(one.item) | ({} if one.value is None else {"value": one.value}) | {"reason": one.reason} | present(
        {"ruleReason": one.rule_reason, "missingObject": one.missing_object})


def optional(one: Any, form: Any) -> Any:
    return None if one is None else form(one)


def without_none(form: Any) -> Any:
    return {key: value for key, value in form.items() if value is not None}


def value_change(one: Any) -> Any:
    return without_none({"path": one.path, "name": one.name, "before": one.before, "after": one.after})


def allowed(one: Any) -> Any:
    form = {}
    if one.has_allowed_values:
        form["allowedValues"] = list(one.allowed_values)
    if one.has_subset:
        form["subsetValues"] = list(one.subset_values)
    return form | {"allowsAnyValue": one.allows_any_value or not one.has_allowed_values}


def bounds(pair: Any) -> Any:
    return present({"lowerBound": pair[0], "upperBound": pair[1]})


def effect(one: Any) -> Any:
    return {
        "values": [value_change(change) for change in one.values],
        "choices": [{"path": change.path, "name": change.name, "before": allowed(change.before),
                     "after": allowed(change.after)} for change in one.choices],
        "bounds": [{"path": change.path, "name": change.name, "before": bounds(change.before),
                    "after": bounds(change.after)} for change in one.bounds],
        "defaults": [present({"path": change.path, "name": change.name, "before": change.before,
                              "after": change.after}) for change in one.defaults],
        "quantities": [present({"path": change.path, "name": change.name, "before": change.before,
                                "after": change.after}) for change in one.quantities],
        "offersGained": [item(offer) for offer in one.offers_gained],
        "offersLost": [item(offer) for offer in one.offers_lost],
        "objectsCreated": list(one.objects_created),
        "objectsDeleted": list(one.objects_deleted),
        "waiting": [item(change.item) | without_none({"before": optional(change.before, waiting),
                                                      "after": optional(change.after, waiting)})
                    for change in one.waiting],
    }


def refused(one: Any) -> Any:
    return {"code": one.code, "index": one.index, "edit": edit(one.edit), "sentence": one.sentence} | without_none(
        {"nearest": optional(one.nearest, edit)}) | present(
            {"possible": list(one.possible), "possibleCount": one.possible_count or None})


def edit_result(one: Any) -> Any:
    form = {"applied": one.applied}
    if one.refused is not None:
        form["refused"] = refused(one.refused)
    else:
        if one.step:
            form["step"] = one.step
        form["made"] = [edit(made) for made in one.made]
        form |= present({
            "conversions": [{"index": c.index} | item(c.item) | {"from": c.from_, "to": c.to}
                            for c in one.conversions],
            "followed": [item(f.item) | {"before": f.before, "after": f.after} for f in one.followed]})
        form["effect"] = effect(one.effect)
    return form | {"message": str(one)}


def finding(one: Any) -> Any:
    expected: dict[str, Any] = {}
    if one.expected.allowed:
        expected["allowed"] = list(one.expected.allowed[:100])
        if len(one.expected.allowed) > 100:
            expected["allowedCount"] = len(one.expected.allowed)
    for name in ("lower_bound", "upper_bound", "minimum_count", "maximum_count", "pattern", "near_match"):
        if getattr(one.expected, name) is not None:
            expected[camel(name)] = getattr(one.expected, name)
    for name in ("lower_bound_excluded", "upper_bound_excluded"):
        if getattr(one.expected, name):
            expected[camel(name)] = True
    if one.expected.units:
        expected["units"] = list(one.expected.units)
    if one.expected.value is not None:
        expected["remedy"] = one.expected.value
    return without_none({"code": one.code, "severity": one.severity, "path": one.path, "name": one.name,
                         "type": one.type, "check": one.check, "value": one.value, "wrong": list(one.wrong) or None,
                         "expected": expected or None, "places": [place(at) for at in one.places] or None,
                         "rule": optional(one.rule, place), "message": one.message})


def model_read(one: Any) -> Any:
    kinds: dict[str, dict[str, Any]] = {"value": {"name": one.name}, "presence": {"name": one.name},
             "children-of-type": {"childrenOfType": one.name}, "children": {"children": True},
             "parameter-names": {"parameterNames": True}, "object": {}}
    form = {"path": one.object} | kinds[one.kind]
    form["isPresent"] = one.is_present
    if one.kind == "value" and one.is_present:
        form["value"] = one.value
    form |= present({"items": list(one.items)})
    return form | ({"itemCount": one.item_count} if one.item_count > len(one.items) else {})


def explanation(one: Any, index: int = 0) -> Any:
    if not one.nodes:
        return None
    node = one.nodes[index]
    form = {"text": node.text, "operation": node.operation} | present({"name": node.name})
    value = node.result.value
    form["value"] = list(value) if isinstance(value, tuple) else value
    if isinstance(value, tuple) and node.result.item_count > len(value):
        form["itemCount"] = node.result.item_count
    form["context"] = node.context
    if node.also_fails:
        form["alsoFails"] = True
    if node.total:
        form |= {"total": node.total, "agreeing": node.agreeing}
    if node.is_cut_short:
        form["isCutShort"] = True
    if node.reads:
        form["reads"] = [model_read(one.reads[read]) for read in node.reads]
    if node.children:
        form["parts"] = [explanation(one, child) for child in node.children]
    return form


def proof_read(one: Any) -> Any:
    form = model_read(one.read)
    if one.origin != "none":
        form["origin"] = one.origin
    if one.step:
        form["step"] = one.step
    form |= without_none({"place": optional(one.place, place)})
    if one.is_old:
        form |= {"isOld": True} | without_none({"valueNow": one.value_now})
    return form | without_none({"node": one.node})


def proof_rule(one: Any) -> Any:
    form = {"attribute": one.attribute} | present({"text": one.text})
    form |= without_none({"place": optional(one.place, place)})
    return form | {"explanation": explanation(one.explanation), "reads": [proof_read(read) for read in one.reads]}


def proof(one: Any) -> Any:
    nodes = []
    for node in one.nodes:
        form = item(node.item) | {"fact": node.fact} | present({"value": node.value})
        if node.step:
            form["step"] = node.step
        form |= present({"contextParam": node.context_param, "needed": list(node.needed), "reason": node.reason})
        form |= without_none({"place": optional(node.place, place)})
        form |= present({"rules": [proof_rule(rule) for rule in node.rules]})
        form |= without_none({"before": node.before, "after": node.after})
        if node.is_outdated:
            form["isOutdated"] = True
        nodes.append(form | present({"children": list(node.children)}))
    return {"question": one.question} | ({"hidden": one.hidden} if one.hidden else {}) | {"nodes": nodes}


def how(one: Any) -> Any:
    form = {"answer": one.answer, "ways": []}
    for way in one.ways:
        shape = {"edits": [edit(made) for made in way.edits], "effect": effect(way.result.effect),
                 "lost": [value_change(lost) for lost in way.lost]}
        shape |= present({"findingsGained": [finding(gained) for gained in way.findings_gained]})
        form["ways"].append(shape | ({"atNextEdit": True} if way.at_next_edit else {}))
    form |= {"trials": one.trials, "completedEdits": one.completed_edits}
    if one.stopped_by_time:
        form["stoppedByTime"] = True
    form |= without_none({"refused": optional(one.refused, refused), "blocking": optional(one.blocking, proof)})
    return form | present({"freeParams": [item(free) for free in one.free_params]})


def same(first: Any, second: Any) -> None:
    """Whether two forms are equal, where numbers of different types may be."""
    if isinstance(first, dict) and isinstance(second, dict):
        assert first.keys() == second.keys()
        for key in first:
            same(first[key], second[key])
    elif isinstance(first, list) and isinstance(second, list):
        assert len(first) == len(second)
        for one, other in zip(first, second):
            same(one, other)
    elif isinstance(first, float) and isinstance(second, (int, float)):
        assert math.isclose(first, second, rel_tol=1e-15)
    else:
        assert first == second


# Random edits of the examples

WORDS = ["", "x", "yes", "no", "12", "-1", "1e400", "3 [m]", "25 mm", "0.5 [s]", "70 [degC]", "main", "Oil", "Transient",
         "Laminar", "Air", "a,b", "ä"]
SESSIONS = {}


def opened(case: str) -> Any:
    """The session of a case. Nothing changes it: `what_if` takes back what it does."""
    if case not in SESSIONS:
        rules, model = CASES[case]
        SESSIONS[case] = tarn.Session(tarn.load_rules(rules), model)
    return SESSIONS[case]


def objects(session: tarn.Session) -> Any:
    found, todo = [], [session.root]
    while todo:
        path = todo.pop()
        found.append(path)
        todo += session.children(path)
    return sorted(found)


@st.composite
def params(draw: Any, case: str) -> Any:
    session = opened(case)
    path = draw(st.sampled_from(objects(session)))
    names = session.param_names(path)
    name = draw(st.sampled_from(names)) if names else "Title"
    if draw(st.integers(0, 9)) == 0:
        name = name[:-1] or "x"
    return Item(path, name)


@st.composite
def set_params(draw: Any, case: str) -> Any:
    session = opened(case)
    param = draw(params(case))
    values = list(WORDS)
    try:
        values += session.param(param).allowed.on_offer
    except tarn.UnknownItem:
        pass
    return Edit.set_param(param.path, param.name, draw(st.sampled_from(values)))


@st.composite
def object_edits(draw: Any, case: str) -> Any:
    path = draw(st.sampled_from(objects(opened(case))))
    name = draw(st.sampled_from(["new", "main", "x y", ""]))
    kind = draw(st.sampled_from(["add", "remove", "copy", "rename"]))
    if kind == "add":
        types = [one.type for one in opened(case).child_types(path)] or ["Domain"]
        return Edit.add_object(f"{path}/{draw(st.sampled_from(types))}:{name or 'new'}")
    if kind == "remove":
        return Edit.remove_object(path)
    return Edit.duplicate_object(path, name) if kind == "copy" else Edit.rename_object(path, name)


def edits_of(case: str) -> Any:
    return st.lists(st.one_of(set_params(case), object_edits(case)), min_size=1, max_size=4)


def arguments(edits: list[tarn.Edit]) -> Any:
    """The edits as `zev edit` takes them."""
    for one in edits:
        if one.kind == "set-param":
            yield from ("--set", f"{one.path}/{one.name}={one.value}")
        elif one.kind in ("add-object", "remove-object"):
            yield from ("--" + one.kind.removesuffix("-object"), one.path)
        else:
            yield from ("--copy" if one.kind == "duplicate-object" else "--rename", one.path, one.name)


@pytest.mark.parametrize("case", CASES)
def test_edits_and_trials(zev: str, case: str, tmp_path: pathlib.Path) -> None:
    rules, model = CASES[case]

    @RANDOM
    @given(edits_of(case))
    def holds(edits: list[tarn.Edit]) -> None:
        out = tmp_path / "out.tdf"
        out.unlink(missing_ok=True)
        session = tarn.Session(opened(case).rules, model)
        tried = session.what_if(edits)
        made = session.edit(edits)
        answer = run(zev, "edit", "--rules", rules, model, *arguments(edits), "--out", out, "--format", "json")
        form = edit_result(made)
        same({key: answer[key] for key in form}, form)
        assert answer["root"] == session.root and answer.keys() - form.keys() <= {
            "schema", "model", "root", "command", "written", "notSaved"}
        if made.applied:
            assert out.read_bytes() == session.text.encode()
        trial = run(zev, "edit", "--rules", rules, model, *arguments(edits), "--dry-run", "--format", "json")
        assert trial["applied"] == tried.applied
        if tried.applied:
            same(trial["findingsGained"], [finding(one) for one in tried.findings_gained])
            same(trial["findingsLost"], [finding(one) for one in tried.findings_lost])
            same(trial["effect"], effect(tried.effect))

    holds()


@pytest.mark.parametrize("case", CASES)
def test_reviews_of_edited_models(zev: str, case: str, tmp_path: pathlib.Path) -> None:
    rules, model = CASES[case]
    review = tarn.Review(opened(case).rules)

    @RANDOM
    @given(st.lists(set_params(case), min_size=1, max_size=6))
    def holds(edits: list[tarn.Edit]) -> None:
        # Values are put into the model as they are, so much of it is wrong.
        state = tarn.Model.read(model).state
        for one in edits:
            state.setdefault(one.path, {})[one.name] = one.value
        file = tmp_path / "model.tdf"
        file.write_bytes(tarn.Model.from_dict(state).content)
        answer = run(zev, "validate", "--rules", rules, "--format", "json", file)
        findings = review.judge(file)
        assert answer["status"] == findings.status and answer["model"] == str(file)
        same(answer["findings"], [finding(one) for one in findings])
        same(answer["beta"], [{"path": one.path, "message": one.message} for one in findings.beta])

    holds()


@pytest.mark.parametrize("case", CASES)
def test_why(zev: str, case: str) -> None:
    rules, model = CASES[case]

    @RANDOM
    @given(set_params(case), st.booleans(), st.integers(1, 3))
    def holds(edit_: tarn.Edit, with_value: bool, depth: int) -> None:
        session = opened(case)
        asked = f"{edit_.path}/{edit_.name}" + (f"={edit_.value}" if with_value else "")
        answer = run(zev, "why", "--rules", rules, model, asked, "--depth", depth, "--format", "json")
        try:
            mine = session.why(f"{edit_.path}/{edit_.name}", edit_.value if with_value else None, depth=depth)
        except tarn.UnknownItem as error:
            assert answer["refused"] == {"code": error.refused.code, "sentence": error.refused.sentence}
            return
        except ValueError:
            pytest.fail("an item with a value is a parameter")
        same(answer["proof"], proof(mine))

    holds()


@pytest.mark.parametrize("case", CASES)
def test_how(zev: str, case: str) -> None:
    rules, model = CASES[case]

    @settings(RANDOM, max_examples=6)
    @given(set_params(case), st.booleans())
    def holds(edit_: tarn.Edit, with_value: bool) -> None:
        asked = f"{edit_.path}/{edit_.name}" + (f"={edit_.value}" if with_value else "")
        answer = run(zev, "how", "--rules", rules, model, asked, "--format", "json")
        try:
            mine = opened(case).how(f"{edit_.path}/{edit_.name}", edit_.value if with_value else None)
        except tarn.UnknownItem as error:
            assert answer["refused"] == {"code": error.refused.code, "sentence": error.refused.sentence}
            return
        for way in answer["ways"]:
            del way["command"]
        form = how(mine)
        same({key: answer[key] for key in form}, form)

    holds()
