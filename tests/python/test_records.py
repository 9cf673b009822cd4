import dataclasses
import html.parser
import pickle
from collections.abc import Iterator
from typing import Any

import pytest

import tarn
from tarn import Edit, Item, records

RECORDS = [value for name in records.__all__
           if isinstance(value := getattr(records, name), type) and dataclasses.is_dataclass(value)]


class Tags(html.parser.HTMLParser):
    """The tags and the texts of a table."""

    def __init__(self, text: str) -> None:
        super().__init__()
        self.tags: set[str] = set()
        self.texts: list[str] = []
        self.open: list[str] = []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag: str, attributes: Any) -> None:
        self.tags.add(tag)
        self.open.append(tag)

    def handle_endtag(self, tag: str) -> None:
        assert self.open.pop() == tag

    def handle_data(self, data: str) -> None:
        self.texts.append(data)


def every_record(flow: tarn.Rules, heating: tarn.Rules) -> Iterator[object]:
    """At least one record of each kind, as sessions make them."""
    session = tarn.Session(heating, {"Plant": {"Boiler:main": {"Fuel": "Gas", "Rated Power": "20 [kW]"}}})
    yield session.edit(Edit.set_param("/Plant/Boiler:main", "Rated Power", "18000 [W]"))
    yield session.set("Boiler:main/Rated Power", "1 MW")
    yield session.set("Boiler:main/Fuel", "Coal")
    yield session.edit(Edit.add_object("/Plant/Circuit:a"), Edit.set_param("/Plant/Circuit:a", "Boiler", "main"))
    yield session.rename("Boiler:main", "old", follow_references=True)
    yield session.set("Boiler:old/Fuel", "Oil")
    yield session.set("Boiler:old/Condensing", "no")
    yield session.what_if(Edit.set_param("/Plant/Boiler:old", "Flow Temperature", "120 [degC]"))
    yield from (session.steps, session.own, session.waiting, session.diff(), session.find("boiler"), session.review())
    yield from (session.params("Boiler:old"), session.child_types(), session.object())
    yield session.why("Boiler:old/Gas Pressure", depth=3)
    yield session.why("Boiler:old/Chimney", depth=3)
    yield session.how("Boiler:old/Gas Pressure")
    yield session.eval("count({Circuit:*}) > 1").explanation
    sink = tarn.Session(flow, "examples/flow/models/sound.tdf")
    yield sink.set("Analysis/Analysis Type", "Transient")
    yield sink.set("Flow Regime", "Laminar")
    yield tarn.Review(flow).judge("examples/flow/models/faulty.tdf")
    with pytest.raises(tarn.RuleError) as caught:
        tarn.parse_rules("Rule Database: 1\nObject:\nObjects:\n  /A:\n  /A:\n")
    yield caught.value.diagnostics
    yield tarn.lint_text("Rule Database: 1\nObjects:\n  /A:\n    Parameters:\n      B:\n        Parameter Type: Real\n"
                         "        Available: exist(${C})\n")
    with pytest.raises(tarn.ModelError) as malformed:
        tarn.Model("x\n").state
    yield malformed.value.faults


def parts(value: object) -> Iterator[object]:
    """A value with everything in it."""
    yield value
    if isinstance(value, tuple):
        for one in value:
            yield from parts(one)
    elif dataclasses.is_dataclass(value):
        for field in dataclasses.fields(value):
            yield from parts(getattr(value, field.name))


@pytest.fixture(scope="module")
def made(flow: tarn.Rules, heating: tarn.Rules) -> dict[type, Any]:
    """All records of the examples, by class."""
    found: dict[type, Any] = {}
    for value in every_record(flow, heating):
        for part in parts(value):
            if dataclasses.is_dataclass(part):
                found.setdefault(type(part), []).append(part)
    return found


def test_every_class_of_records_is_made_by_the_examples(made: Any) -> None:
    assert {one.__name__ for one in RECORDS} - {one.__name__ for one in made} == set()


@pytest.mark.parametrize("kind", RECORDS, ids=lambda kind: str(kind.__name__))
def test_records_are_values(made: Any, kind: Any) -> None:
    for record in made[kind][:20]:
        again = pickle.loads(pickle.dumps(record))
        assert again == record and hash(again) == hash(record) and str(again) == str(record)
        assert dataclasses.replace(record) == record
        assert dataclasses.asdict(record).keys() == {field.name for field in dataclasses.fields(kind)}
        assert (str(record) or kind is records.Effect) and repr(record).startswith(kind.__name__ + "(")
        with pytest.raises(dataclasses.FrozenInstanceError):
            setattr(record, dataclasses.fields(kind)[0].name, "other")
        with pytest.raises((AttributeError, TypeError)):
            record.something_else = 1


def test_sentences_are_those_of_the_library(house: tarn.Session) -> None:
    result = house.set("Boiler:main/Rated Power", "18000 [W]")
    assert str(result) == "Done as step 1: 1 value changed."
    assert str(result.effect.values[0]) == \
        '/Plant/Boiler:main/Rated Power changed from "14 [kW]" to "18000 [W]".'
    assert result.effect.sentences == (str(result.effect.values[0]),)


def test_tables_of_looks_and_findings_are_whole_html(made: Any) -> None:
    shown = 0
    for kind, records_of_kind in made.items():
        for record in records_of_kind[:10]:
            if hasattr(record, "_repr_html_"):
                shown += 1
                tags = Tags(record._repr_html_())
                assert tags.open == [] and tags.tags <= {"table", "caption", "thead", "tbody", "tr", "th", "td"}
    assert shown > 10


EVIL = "<script>alert('x')</script>&\"\udcff"


def test_texts_of_models_and_rules_cannot_become_tags() -> None:
    rules = tarn.parse_rules(
        "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n      Title:\n"
        "        Description: <b>bold</b>\n        Required: yes\n        Parameter Type: String\n"
        "        Ordered Allowed String List: [<i>Fan</i>, Pump]\n", source="<u>.rules.yaml")
    model = tarn.Model.from_dict({"Case": {"Title": EVIL, "<img src=x>": "y"}})
    session = tarn.Session(rules, model)
    found = tarn.Review(rules).judge(model)
    reviewed = next(tarn.review(rules, [model]))
    tried = session.what_if(Edit.set_param("/Case", "Title", "Pump"))
    for shown in (session.look("Title"), session.object(), found, tried, tried.result, reviewed, model,
                  session.child_types() or model, session.eval("${Title} == '<b>'")):
        if not hasattr(shown, "_repr_html_"):
            continue
        tags = Tags(shown._repr_html_())
        assert tags.tags <= {"table", "caption", "thead", "tbody", "tr", "th", "td"}
        shown._repr_html_().encode()
    assert "<i>Fan</i>, Pump" in Tags(session.look("Title")._repr_html_()).texts


def test_items_have_one_text() -> None:
    assert [str(Item("")), str(Item("", "Version")), str(Item("/Case")), str(Item("/Case", "Title"))] == \
        ["/", "/Version", "/Case", "/Case/Title"]


def test_each_kind_of_edit_has_its_sentence() -> None:
    edits = [Edit.set_param("/A", "p", "1"), Edit.activate_param("/A", "p"), Edit.deactivate_param("/A", "p"),
             Edit.activate_object("/A"), Edit.deactivate_object("/A"), Edit.add_object("/A:b"),
             Edit.remove_object("/A:b"), Edit.duplicate_object("/A:b", "c"), Edit.rename_object("/A:b", "c")]
    assert [str(edit) for edit in edits] == [
        'set /A/p to "1"', "switch on /A/p", "switch off /A/p", "switch on /A", "switch off /A", "add /A:b",
        "remove /A:b", 'copy /A:b to the name "c"', 'rename /A:b to "c"']
