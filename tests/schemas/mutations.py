#!/usr/bin/env python3
"""Compares the JSON Schema of rule files with the program on rule files that were changed at random.

    mutations.py ZEV FOLDER [NUMBER [SEED]]

FOLDER is the top of the sources. The files are the sound examples of the rule reference. A change puts another kind of
value, a key or an item where it may not be, or takes one away. The law: if `zev lint` reports a mistake of form, the
schema refuses the file; if the schema refuses it, `zev lint` reports an error.
"""
import copy
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile

import jsonschema
import yaml

import schemas

# Kinds of mistakes that a schema can show; without a reason nothing is accepted.
FORM = schemas.FORM | {"missing-reason"}


def paths(node, path=()):
    """The paths of all values in a document."""
    entries = node.items() if isinstance(node, dict) else enumerate(node) if isinstance(node, list) else ()
    for key, value in entries:
        yield path + (key,)
        yield from paths(value, path + (key,))


def keys(schema):
    """All keys that a schema knows."""
    if isinstance(schema, dict):
        yield from schema.get("properties", {})
    for part in schema.values() if isinstance(schema, dict) else schema if isinstance(schema, list) else ():
        yield from keys(part)


def change(document, known, choose):
    """Changes one value of a document, and says which and how."""
    path = choose.choice(list(paths(document)))
    parent = document
    for key in path[:-1]:
        parent = parent[key]
    last, value = path[-1], parent[path[-1]]
    kind = choose.choice(["nothing", "text", "list", "map", "without", "misspelt", "another key", "another item"])
    if kind == "nothing":
        parent[last] = None
    elif kind == "text":
        parent[last] = choose.choice(["some text", "", "yes", "maybe", "-1", "1.5"])
    elif kind == "list":
        parent[last] = choose.choice([[value], []])
    elif kind == "map":
        parent[last] = choose.choice([{"some": value}, {}])
    elif kind == "without":
        del parent[last]
    elif kind == "misspelt" and isinstance(parent, dict):
        entries = [(key + "x" if key == last else key, one) for key, one in parent.items()]
        parent.clear()
        parent.update(entries)
    elif kind == "another key" and isinstance(value, dict):
        value[choose.choice(known)] = choose.choice(["yes", "1", None, ["a", "b"], {"a": "b"}])
    elif kind == "another item" and isinstance(value, list):
        value.append(choose.choice(["text", None, [], {}, ["a"], {"a": "b"}]))
    return f"{'/'.join(map(str, path))}: {kind}"


def written(document):
    """A document as YAML in block style, with nothing at all where there is no value."""
    text = yaml.dump(document, sort_keys=False, allow_unicode=True, default_flow_style=False, width=1000)
    return re.sub(r"(?<=[:-]) null$", "", text, flags=re.M)


def main():
    zev, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    number, seed = (int(text) for text in (sys.argv[3:] + ["250", "1"][len(sys.argv) - 3:]))
    schema = json.loads((folder / "RuleWorkbench/schemas/rules.schema.json").read_text())
    validator = jsonschema.Draft7Validator(schema)
    known = sorted(set(keys(schema)))
    examples = [yaml.load(text, schemas.Plain)
                for text in schemas.examples((folder / "docs/rule-reference.md").read_text())]
    choose = random.Random(seed)
    faults, refused = 0, 0
    with tempfile.TemporaryDirectory() as place:
        file = pathlib.Path(place) / "changed.rules.yaml"
        for _ in range(number):
            document = copy.deepcopy(choose.choice(examples))
            what = change(document, known, choose)
            text = written(document)
            file.write_text(text)
            done = subprocess.run([zev, "lint", "--rules", file, "--format", "json"], capture_output=True, text=True)
            errors = [one for one in json.loads(done.stdout)["diagnostics"] if one["severity"] == "error"]
            problem = schemas.problems(validator, text)
            refused += problem is not None
            form = [one["message"] for one in errors if one["code"] in FORM]
            if form and not problem:
                faults += 1
                print(f"seed {seed}, {what}: the schema accepts it, and the program does not: {form[0]}\n{text}")
            elif problem and not errors:
                faults += 1
                print(f"seed {seed}, {what}: the program accepts it, and the schema does not: {problem}\n{text}")
    print(f"{number} changed files, {refused} refused by the schema, {faults} faults")
    sys.exit(bool(faults) or not refused)


if __name__ == "__main__":
    main()
