import pathlib
import pickle
from collections.abc import Callable
from typing import Any

import pytest

import tarn
from conftest import FLOW, HEATING
from tarn import Edit, Item


def test_a_slip_is_refused_with_what_would_have_worked(heat_sink: tarn.Session) -> None:
    result = heat_sink.set("Flow Regime", "laminar")
    assert not result.applied and result.step == 0 and len(result.effect) == 0
    assert result.refused is not None
    assert result.refused.code == "value-not-allowed"
    assert result.refused.possible == ("Laminar", "Turbulent")
    assert result.refused.nearest == Edit.set_param("/Case", "Flow Regime", "Laminar")
    with pytest.raises(tarn.EditRefused) as caught:
        result.or_raise()
    assert caught.value.refused is result.refused and str(caught.value) == str(result.refused)


def test_an_edit_says_what_came_and_went(heat_sink: tarn.Session) -> None:
    result = heat_sink.set("Analysis/Analysis Type", "Transient").or_raise()
    changed = {(one.path, one.name): (one.before, one.after) for one in result.effect.values}
    assert changed["/Case/Analysis", "Analysis Type"] == ("Steady", "Transient")
    assert ("/Case/Analysis", "Length Scale") in {(one.item.path, one.item.name) for one in result.effect.waiting}
    assert len(result.effect.sentences) == len(result.effect)
    assert heat_sink.last_result == result and [step.number for step in heat_sink.steps] == [1]


def test_units_are_converted(heat_sink: tarn.Session) -> None:
    heat_sink.set("Analysis/Analysis Type", "Transient").or_raise()
    result = heat_sink.set("Analysis/Time Step", "20 ms").or_raise()
    (conversion,) = result.conversions
    assert (conversion.from_, conversion.to) == ("20 ms", "0.02 [s]")
    assert heat_sink.value("Analysis/Time Step") == "0.02 [s]"


def test_the_nine_kinds(house: tarn.Session) -> None:
    garage = "/Plant/Circuit:garage"
    kinds = [
        house.edit(Edit.add_object(garage)),
        house.edit(Edit.set_param(garage, "Boiler", "main")),
        house.edit(Edit.activate_param("/Plant/Boiler:main", "Pressure Loss")),
        house.edit(Edit.deactivate_param("/Plant/Boiler:main", "Pressure Loss")),
        house.edit(Edit.duplicate_object(garage, "shed")),
        house.edit(Edit.rename_object("/Plant/Circuit:shed", "barn")),
        house.edit(Edit.remove_object("/Plant/Circuit:barn")),
        house.edit(Edit.activate_object(garage)),
        house.edit(Edit.deactivate_object(garage)),
    ]
    assert [one.refused and str(one.refused) for one in kinds] == [None] * 9
    assert [step.edits[0].kind for step in house.steps] == [
        "add-object", "set-param", "activate-param", "deactivate-param", "duplicate-object", "rename-object",
        "remove-object", "activate-object", "deactivate-object"]


def test_verbs_take_paths_as_users_write_them(house: tarn.Session) -> None:
    house.add("Circuit:garage").or_raise()
    house.set("Circuit:garage/Boiler", "main").or_raise()
    house.activate("Boiler:main/Pressure Loss").or_raise()
    house.deactivate("/Plant/Boiler:main/Pressure Loss").or_raise()
    house.duplicate(Item("/Plant/Circuit:garage"), "shed").or_raise()
    house.rename("Circuit:shed", "barn").or_raise()
    house.remove("Circuit:barn").or_raise()
    assert house.children()[-3:] != () and "/Plant/Circuit:garage" in house.children()


def test_several_edits_are_one_step_or_none(house: tarn.Session) -> None:
    wrong = house.edit(Edit.add_object("/Plant/Circuit:garage"), Edit.set_param("/Plant/Circuit:garage", "Boler", "x"))
    assert wrong.refused is not None and wrong.refused.index == 1
    assert "/Plant/Circuit:garage" not in house.children()
    right = house.edit([Edit.add_object("/Plant/Circuit:garage"),
                        Edit.set_param("/Plant/Circuit:garage", "Boiler", "main")])
    assert right.step == 1 and house.value("Circuit:garage/Boiler") == "main"


def test_references_follow_a_renaming(house: tarn.Session) -> None:
    result = house.rename("Boiler:main", "old", follow_references=True).or_raise()
    assert {(one.item.path, one.before, one.after) for one in result.followed} == {
        ("/Plant/Circuit:ground", "main", "old"), ("/Plant/Circuit:upstairs", "main", "old")}


def test_a_trial_changes_nothing(house: tarn.Session) -> None:
    before = house.result()
    tried = house.what_if(Edit.set_param("/Plant/Boiler:main", "Fuel", "Oil"))
    assert tried.applied and tried.result.step == 0
    assert house.steps == () and house.result().same_as(before)
    done = house.set("Boiler:main/Fuel", "Oil")
    assert done.effect == tried.effect and done.made == tried.result.made


def test_a_trial_says_which_findings_would_come_and_go(house: tarn.Session) -> None:
    tried = house.what_if(Edit.set_param("/Plant/Boiler:main", "Flow Temperature", "120 [degC]"))
    assert [one.code for one in tried.findings_gained] == ["above-upper-bound"]
    assert house.what_if(Edit.set_param("/Plant/Boiler:main", "Flow Temperature", "120 [degC]"),
                         findings=False).findings_gained == ()
    house.set("Boiler:main/Flow Temperature", "120 [degC]").or_raise()
    assert {one.code for one in house.review()} == {"above-upper-bound"}


def test_undo_and_redo_are_exact(house: tarn.Session) -> None:
    before = house.result()
    done = house.set("Boiler:main/Fuel", "Oil").or_raise()
    after = house.result()
    back = house.undo()
    assert back is not None and house.result().same_as(before) and house.undone_steps == 1
    assert {(one.before, one.after) for one in back.effect.values} == {
        (one.after, one.before) for one in done.effect.values}
    again = house.redo()
    assert again is not None and again.effect == done.effect and house.result().same_as(after)
    assert house.redo() is None


def test_undo_without_a_step_is_none(house: tarn.Session) -> None:
    assert house.undo() is None and house.last_result is None


def test_looking(house: tarn.Session) -> None:
    power = house.look("Boiler:main/Rated Power")
    assert isinstance(power, tarn.ParamRecord)
    assert (power.type, power.value, power.origin, power.present) == ("Real", "14 [kW]", "model", True)
    assert power.available and power.units and power.rule and power.rule.file.endswith("20-boiler.rules.yaml")
    boiler = house.object("Boiler:main")
    assert (boiler.type, boiler.name, boiler.in_model, boiler.singleton) == ("Boiler", "main", True, False)
    assert house.object().path == house.root == "/Plant"
    assert [one.name for one in house.params("Boiler:main")] == list(house.param_names("Boiler:main"))
    assert {one.type for one in house.child_types()} >= {"Boiler", "Circuit", "Sensor", "Controller"}


def test_a_value_out_of_its_bounds_says_so(house: tarn.Session) -> None:
    assert house.param("Boiler:main/Rated Power").out_of_bounds == ""
    assert house.set("Boiler:main/Rated Power", "0 [kW]").applied
    power = house.param("Boiler:main/Rated Power")
    assert power.out_of_bounds == "is equal to its lower bound 0 [kW], but must be above it"
    assert str(power).endswith(" It is equal to its lower bound 0 [kW], but must be above it.")
    assert "but must be above it" in power._repr_html_()


def test_a_name_that_many_objects_have_is_proposed_in_the_first_twenty() -> None:
    rules = tarn.parse_rules("Rule Database: 1\nPertinent Roots: [Plant]\nObjects:\n  /Plant:\n    Children:\n"
                             "      Pipe: {Coupled: yes}\n  /Plant/Pipe:\n    Parameters:\n"
                             "      Bore: {Parameter Type: Real}\n")
    session = tarn.Session(rules, {"Plant": {f"Pipe:{number}": {} for number in range(101, 131)}})
    refused = session.set("/Plant/Bore", "1").refused
    assert refused is not None
    assert refused.possible == tuple(f"/Plant/Pipe:{number}/Bore" for number in range(101, 121))
    assert refused.possible_count == 30


def test_the_choices_of_a_parameter(house: tarn.Session) -> None:
    fuel = house.param("Boiler:main/Fuel")
    assert fuel.allowed.allowed_values == fuel.allowed.on_offer == ("Gas", "Oil", "Pellets", "Electricity")


def test_an_unknown_item_names_what_was_probably_meant(house: tarn.Session) -> None:
    with pytest.raises(tarn.UnknownItem) as caught:
        house.look("Boiler:main/Rated Powr")
    assert caught.value.nearest == Item("/Plant/Boiler:main", "Rated Power")
    assert "Did you mean /Plant/Boiler:main/Rated Power?" in str(caught.value)
    assert isinstance(caught.value, LookupError)


@pytest.mark.parametrize("item", [Item("/Plant/Boiler:man"), Item("/Plant", "Nothing"), Item("/Plant", "Boiler:main"),
                                  Item("no path"), Item("/Plant/Building"), Item(""), Item("", "Building")])
def test_an_item_that_is_not_there_is_unknown(house: tarn.Session, item: str) -> None:
    with pytest.raises(tarn.UnknownItem):
        house.look(item)


def test_a_parameter_is_no_object_and_an_object_no_parameter(house: tarn.Session) -> None:
    with pytest.raises(TypeError, match="/Plant/Boiler:main is an object, not a parameter"):
        house.param("Boiler:main")
    with pytest.raises(TypeError, match="/Plant/Boiler:main/Fuel is a parameter, not an object"):
        house.object("Boiler:main/Fuel")
    with pytest.raises(ValueError):
        house.why("Boiler:main", "Gas")


def test_find(house: tarn.Session) -> None:
    found = house.find("rated pow")
    assert found[0].item == Item("/Plant/Boiler:main", "Rated Power") and found[0].match == "prefix"
    assert len(house.find("e", most=3)) == 3


def test_own_waiting_and_differences(house: tarn.Session) -> None:
    house.set("Boiler:main/Fuel", "Oil").or_raise()
    assert [(one.item.name, one.value, one.step, one.in_force) for one in house.own] == [("Fuel", "Oil", 1, True)]
    assert Item("/Plant/Boiler:main", "Gas Pressure") in {one.item for one in house.waiting}
    (fuel,) = [one for one in house.diff() if one.item.name == "Fuel"]
    assert (fuel.in_model, fuel.now) == ("Gas", "Oil")


def test_why(house: tarn.Session) -> None:
    proof = house.why("Boiler:main/Store Volume")
    assert (proof.question, proof.fact) == ("value", "not-live") or proof.fact == "not-available"
    assert str(proof).startswith("/Plant/Boiler:main/Store Volume is absent")
    allowed = house.why("Boiler:main/Fuel", "Coal")
    assert (allowed.question, allowed.fact) == ("allowed", "not-in-list")
    assert allowed.answer.needed == ("Gas", "Oil", "Pellets", "Electricity")
    assert house.why("Boiler:main/Fuel", "Gas").question == "value"
    assert house.why("Boiler:other").question == "presence"
    house.set("Boiler:main/Fuel", "Oil").or_raise()
    assert house.why("Boiler:main/Store Volume", question="last-edit").fact == "changed-by-rules"
    with pytest.raises(ValueError, match="question is"):
        house.why("Boiler:main/Fuel", question="whether")  # type: ignore[arg-type]


def test_how(house: tarn.Session) -> None:
    found = house.how("Boiler:main/Store Volume")
    assert found.answer == "found"
    way = found.ways[0]
    assert house.edit(way.edits).or_raise().effect == way.result.effect
    assert house.look("Boiler:main/Store Volume").present
    assert house.how("Boiler:main/Store Volume").answer == "already-so"
    assert house.how("Boiler:main/Fuel", "Coal").answer == "impossible"
    with pytest.raises(ValueError):
        house.how("Boiler:main/Fuel", "Oil", max_seconds=float("nan"))


def test_eval(house: tarn.Session) -> None:
    assert house.eval("count({/Plant/Circuit:*}) == 2").value is True
    assert house.eval("${Fuel}", at="Boiler:main").value == "Gas"
    assert house.eval("{/Plant/Circuit:*}").value == ("/Plant/Circuit:ground", "/Plant/Circuit:upstairs")
    parts = house.eval("count({/Plant/Circuit:*}) > 1 and exists({Controller})").explanation.nodes
    assert parts[0].operation == "and" and parts[0].result.value is True
    with pytest.raises(tarn.RuleError) as caught:
        house.eval("cont({Circuit:*})")
    assert (caught.value.diagnostics[0].line, caught.value.diagnostics[0].column) == (1, 1)


def test_saving_keeps_every_other_byte(flow: tarn.Rules, tmp_path: pathlib.Path) -> None:
    file = tmp_path / "sink.tdf"
    before = (FLOW / "models" / "sound.tdf").read_bytes().replace(b"\n", b"\r\n")
    file.write_bytes(before)
    session = tarn.Session(flow, file)
    session.set("Maximum Speed", "40 [m s^-1]").or_raise()
    expected = session.text.encode()
    assert session.save() == str(file)
    after = file.read_bytes()
    assert after == expected
    changed = [(a, b) for a, b in zip(before.splitlines(), after.splitlines()) if a != b]
    assert changed[0] == (b"  Maximum Speed = 50 [m s^-1]", b"  Maximum Speed = 40 [m s^-1]")
    assert after.count(b"\r\n") == after.count(b"\n")


def test_saving_does_not_replace_what_someone_else_has_written(heating: tarn.Rules, tmp_path: pathlib.Path) -> None:
    file = tmp_path / "house.tdf"
    file.write_bytes((HEATING / "models" / "house.tdf").read_bytes())
    session = tarn.Session(heating, file)
    session.set("Boiler:main/Fuel", "Oil").or_raise()
    file.write_text("# someone else\n")
    with pytest.raises(tarn.SaveError) as caught:
        session.save()
    assert caught.value.fault == "file-changed" and file.read_text() == "# someone else\n"
    other = tmp_path / "oil.tdf"
    assert session.save(other) == str(other)
    session.undo()
    assert session.save() == str(other)
    assert session.save(file, overwrite=True) == str(file)


def test_saving_where_nothing_can_be_written(house: tarn.Session, tmp_path: pathlib.Path) -> None:
    with pytest.raises(tarn.SaveError) as caught:
        house.save(tmp_path / "no folder" / "x.tdf")
    assert caught.value.fault == "write-failed"


def test_a_model_without_a_file_needs_a_name_to_be_saved(heating: tarn.Rules, tmp_path: pathlib.Path) -> None:
    session = tarn.Session(heating, {"Plant": {}})
    with pytest.raises(tarn.SaveError) as caught:
        session.save()
    assert caught.value.fault == "no-file"
    saved = session.save(tmp_path / "new.tdf")
    assert tarn.Model.read(saved).same_as(session.result())
    assert session.save() == saved


def test_models_of_every_form_open_the_same(heating: tarn.Rules) -> None:
    text = tarn.Model.read(HEATING / "models" / "house.tdf")
    models: list[tarn.Model | str | dict[str, Any]] = [
        text, str(text.file), tarn.Model(text.content), text.tree, text.state, tarn.Model.from_dict(text.tree)]
    sessions = [tarn.Session(heating, model) for model in models]
    assert all(one.result().same_as(sessions[0].result()) for one in sessions)


def test_an_empty_session_begins_with_what_the_rules_want(heating: tarn.Rules) -> None:
    session = tarn.Session(heating)
    assert session.root == "/Plant" and session.object().present


def test_malformed_text_cannot_be_opened(heating: tarn.Rules) -> None:
    with pytest.raises(tarn.ModelError) as caught:
        tarn.Session(heating, tarn.Model("Plant\n", source="house.tdf"))
    assert caught.value.source == "house.tdf"


def test_a_root_that_cannot_be_edited_is_an_error(heating: tarn.Rules) -> None:
    with pytest.raises(tarn.OpenError) as caught:
        tarn.Session(heating, root="/Plnt")
    assert caught.value.fault == "root-unknown" and caught.value.candidates == ("/Plant",)
    again = pickle.loads(pickle.dumps(caught.value))
    assert (again.fault, again.candidates, str(again)) == (caught.value.fault, ("/Plant",), str(caught.value))


def test_several_roots_are_an_error(heating: tarn.Rules) -> None:
    with pytest.raises(tarn.OpenError) as caught:
        tarn.Session(heating, {"Plant:a": {}, "Plant:b": {}})
    assert caught.value.fault == "several-roots" and set(caught.value.candidates) == {"/Plant:a", "/Plant:b"}


def test_a_session_cannot_be_pickled(house: tarn.Session) -> None:
    with pytest.raises(TypeError, match="cannot be pickled"):
        pickle.dumps(house)


@pytest.mark.parametrize("call", [
    lambda one: one.edit("set"),
    lambda one: one.edit(3),
    lambda one: one.edit([None]),
    lambda one: one.set("Boiler:main/Fuel", None),
    lambda one: one.set(Item("/Plant"), "x"),
    lambda one: one.add(Item("/Plant", "Building")),
    lambda one: one.look(3),
    lambda one: one.edit(Edit("set-parameter", "/Plant", "Building", "x")),  # type: ignore[arg-type]
    lambda one: one.find("x", most=-1),
    lambda one: one.why("Boiler:main/Fuel", depth="deep"),
])
def test_arguments_of_another_kind_are_errors_of_python(house: tarn.Session, call: Callable[[Any], object]) -> None:
    with pytest.raises((TypeError, ValueError, AttributeError)):
        call(house)
    assert house.steps == ()


def test_texts_with_unusual_characters_are_refused_or_kept_but_never_crash(house: tarn.Session) -> None:
    for text in ("\0", "\udcff", "\n", "😀", "", "/", "//", ":", "a" * 100_000):
        house.set("Boiler:main/Serial Number", text)
        house.add(text)
        house.set(text, "x")
        house.find(text)
    assert house.result().state


WRONG: list[tuple[Callable[[Any], object], str]] = [
    (lambda one: one.set(3, "x"), "an item must be a path or a tarn.Item, not int"),
    (lambda one: one.look(None), "an item must be a path or a tarn.Item, not NoneType"),
    (lambda one: one.edit(3), "an edit must be a tarn.Edit, not int"),
    (lambda one: one.rename("Boiler:main", 3), "new_name must be a text, not int"),
    (lambda one: one.find(b"x"), "text must be a text, not bytes"),
    (lambda one: one.why("Boiler:main/Fuel", depth=-1), "depth is -1; give at least 0"),
    (lambda one: one.why("Boiler:main/Fuel", depth=10**30), "depth is too large"),
    (lambda one: one.how("Boiler:main/Fuel", "Oil", max_edits=1.5), "max_edits must be a whole number, not float"),
    (lambda one: one.how("Boiler:main/Fuel", "Oil", max_ways=0), "max_ways is 0; give at least 1"),
    (lambda one: one.how("Boiler:main/Fuel", "Oil", max_seconds=-1), "max_seconds must be from 0 to 1e9"),
    (lambda one: one.eval(3), "an expression must be a text, not int"),
    (lambda one: one.eval("1", at="Boiler:old"), "the model has no object /Plant/Boiler:old"),
    (lambda one: tarn.Session("rules", {}),  # type: ignore[arg-type]
     "rules must be a tarn.Rules, which load_rules makes, not str"),
    (lambda one: tarn.Session(one.rules, 3),  # type: ignore[arg-type]
     "a model must be a tarn.Model, the name of a file, or a dictionary, not int"),
    (lambda one: tarn.Session(one.rules, {}, root=3), "root must be a text, not int"),  # type: ignore[arg-type]
    (lambda one: tarn.Model(3), "a text must be str or bytes, not int"),  # type: ignore[arg-type]
    (lambda one: tarn.Model.from_dict([]), "a model must be a dictionary, not list"),  # type: ignore[arg-type]
    (lambda one: tarn.parse_rules(3), "a text must be str or bytes, not int"),  # type: ignore[arg-type]
    (lambda one: tarn.Review("rules"),  # type: ignore[arg-type]
     "rules must be a tarn.Rules, which load_rules makes, not str"),
    # These would be taken as lists of letters.
    (lambda one: tarn.Review(one.rules, roots="/Plant"), "roots must be a list, not one text; write ['/Plant']"),
    (lambda one: tarn.review(one.rules, "a.tdf"), "models must be a list, not one text; write ['a.tdf']"),
    (lambda one: tarn.review(one.rules, {}), "models must be a list of models, not one dictionary"),
    (lambda one: tarn.review(one.rules, [], jobs="2"), "jobs must be a whole number, not str"),  # type: ignore[arg-type]
    (lambda one: tarn.review(one.rules, [], client="tcp://a"), "client must be a Client of Dask distributed, not str"),
]


@pytest.mark.parametrize("call, message", WRONG)
def test_an_argument_of_the_wrong_kind_is_named(house: tarn.Session, call: Callable[[Any], object],
                                                message: str) -> None:
    with pytest.raises((TypeError, ValueError)) as caught:
        call(house)
    assert str(caught.value) == message and house.steps == ()


def test_an_expression_can_start_at_any_object_of_the_model(house: tarn.Session) -> None:
    assert house.eval("${Fuel}", at="Boiler:main").value == "Gas"
    assert house.eval("${Fuel}", at=Item("/Plant/Boiler:main")).value == "Gas"
    outside = tarn.Session(house.rules, house.model, root="/Plant/Circuit:ground")
    assert outside.eval("${Fuel}", at="/Plant/Boiler:main").value == "Gas"
