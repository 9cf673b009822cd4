#!/usr/bin/env python3
"""Holds the JSON Schemas of rule files and of tests of rules against the program and the repository.

    schemas.py FOLDER

FOLDER is the top of the sources. The schemas must accept every file of the repository that the program reads, have
exactly the keys that the program knows, and refuse the cases in which the program reports a mistake of form.
"""
import json
import pathlib
import re
import sys

import jsonschema
import yaml

# Mistakes that a schema can show: wrong keys, kinds and words. Names and expressions are for `zev lint`.
FORM = {"unknown-key", "missing-key", "wrong-kind", "not-yes-or-no", "unknown-parameter-type", "unknown-level",
        "missing-version", "unknown-version", "invalid-type-path", "no-units"}
# Cases about something that no schema sees.
BEYOND = re.compile(r"alias|anchor|'<<'|a key must be|template|expression that begins|wrong operand", re.I)
KEY_TABLE = re.compile(r"constexpr auto (\w+Keys) =\s*std::to_array<Key<\w+>>\(\{(.*?)\}\);", re.S)


class Texts(yaml.SafeLoader):
    """YAML 1.2 as editors read it: numbers and truth values, but no dates; keys are texts."""

    def construct_mapping(self, node, deep=False):
        entries = {}
        for key, value in node.value:  # of two with the same key the program reads the first
            entries.setdefault(self.construct_scalar(key), self.construct_object(value, deep=True))
        return entries


class Plain(Texts):
    """The same with every value as text, as the program reads it; nothing at all stays nothing."""


for loader in (Texts, Plain):
    loader.yaml_implicit_resolvers = {
        first: [(tag, pattern) for tag, pattern in pairs
                if tag in ("tag:yaml.org,2002:null",) or (loader is Texts and tag in (
                    "tag:yaml.org,2002:int", "tag:yaml.org,2002:float", "tag:yaml.org,2002:bool"))]
        for first, pairs in yaml.SafeLoader.yaml_implicit_resolvers.items()}
    loader.add_constructor("tag:yaml.org,2002:map", lambda self, node: self.construct_mapping(node))


def problems(validator, text):
    """The first problem of a text in either reading, or None."""
    for loader in (Texts, Plain):
        error = jsonschema.exceptions.best_match(validator.iter_errors(yaml.load(text, loader)))
        if error is not None:
            return f"{'/'.join(map(str, error.absolute_path))}: {error.message[:200]}"
    return None


def cases(text):
    """The cases of a file of the tests of rule files: name, text, and the codes that the program reports as errors."""
    for part in re.split(r"^#! case ", text, flags=re.M)[1:]:
        name, _, rest = part.partition("\n")
        codes = set(re.findall(r"^#! error \S+ ([a-z-]+)", rest, flags=re.M))
        messages = " ".join(re.findall(r"^#! error (.*)", rest, flags=re.M))
        body = "".join(line + "\n" for line in rest.split("\n") if not line.startswith("#!"))
        yield name, body, codes, messages


def examples(document):
    """The rule files in a document that have no faults: no `text lint` follows them."""
    blocks = re.findall(r"^ *```([^\n]+)\n(.*?)^ *```$", document, flags=re.M | re.S)
    for i, (kind, text) in enumerate(blocks):
        if kind == "yaml rules" and not any(other == "text lint" for other, _ in blocks[i + 1:i + 2]):
            yield text


def keys_of_program(folder):
    """The tables of keys in the sources, by the name of the table."""
    attributes = dict(re.findall(r'constexpr std::string_view (\w+) = "([^"]*)"',
                                 (folder / "PhysicsInterfaces/include/tarn/RuleAttributes.h").read_text()))
    tables = {}
    for source in sorted(folder.glob("Rule*/src/*/*.cpp")):
        for table, body in KEY_TABLE.findall(source.read_text()):
            keys = set(re.findall(r'\{"([^"]+)"', body)) | {attributes[name] for name in
                                                           re.findall(r"\{attributes::(\w+)", body)}
            tables[f"{source.parent.name}/{table}"] = keys
    return tables


def main():
    folder = pathlib.Path(sys.argv[1])
    schemas = folder / "RuleWorkbench/schemas"
    documents = {name: json.loads((schemas / f"{name}.schema.json").read_text()) for name in ("rules", "rule-tests")}
    for document in documents.values():
        jsonschema.Draft7Validator.check_schema(document)
    validators = {name: jsonschema.Draft7Validator(document) for name, document in documents.items()}
    faults = []
    counts = {"files": 0, "examples": 0, "sound cases": 0, "refused cases": 0, "tables": 0}

    for name, pattern in (("rules", "*.rules.yaml"), ("rule-tests", "*.rule-tests.yaml")):
        for file in sorted(folder.glob(f"examples/**/{pattern}")) + sorted(folder.glob(f"benchmarks/**/{pattern}")):
            counts["files"] += 1
            if problem := problems(validators[name], file.read_text()):
                faults.append(f"{file}: the schema refuses it: {problem}")

    for text in examples((folder / "docs/rule-reference.md").read_text()):
        counts["examples"] += 1
        if problem := problems(validators["rules"], text):
            faults.append(f"the schema refuses an example of the rule reference: {problem}\n{text}")

    for file in sorted(folder.glob("tests/end_to_end/*/*.rule-tests.yaml")):
        counts["files"] += 1
        problem = problems(validators["rule-tests"], file.read_text())
        if bool(problem) != file.name.startswith("broken"):
            faults.append(f"{file}: {problem or 'the schema accepts it, and the program does not'}")

    for file in sorted((folder / "tests/RuleLanguage/cases").glob("*.rules.yaml")):
        for case, text, codes, messages in cases(file.read_text()):
            try:
                problem = problems(validators["rules"], text)
            except (yaml.YAMLError, TypeError):
                continue  # not YAML at all
            if not codes & FORM and not BEYOND.search(messages):
                counts["sound cases"] += 1
                if problem:
                    faults.append(f"{file}: {case}: the schema refuses it: {problem}")
            elif codes & FORM and not BEYOND.search(messages):
                counts["refused cases"] += 1
                if not problem:
                    faults.append(f"{file}: {case}: the schema accepts it, and the program does not: {codes & FORM}")

    definitions = documents["rules"]["definitions"]
    tests = documents["rule-tests"]["definitions"]
    in_schema = {
        "loading/fileKeys": documents["rules"], "loading/globalKeys": definitions["globalCheck"],
        "loading/objectKeys": definitions["object"], "loading/paramKeys": definitions["parameter"],
        "loading/childKeys": definitions["child"], "loading/checkKeys": definitions["objectCheck"],
        "loading/guardKeys": definitions["guardedText"], "loading/unitsKeys": definitions["quantityType"],
        "tests/fileKeys": documents["rule-tests"], "tests/testKeys": tests["test"], "tests/stepKeys": tests["step"],
        "tests/expectKeys": tests["expect"], "tests/evaluateKeys": tests["evaluation"]}
    for table, keys in keys_of_program(folder).items():
        counts["tables"] += 1
        if table not in in_schema:
            if table not in ("loading/conversionKeys", "tests/modelKeys"):
                faults.append(f"the schema of {table} is not known; add it here")
            continue
        known = set(in_schema[table]["properties"])
        if known != keys:
            faults.append(f"{table}: only the program knows {sorted(keys - known)}, only the schema {sorted(known - keys)}")

    print(*faults, sep="\n", end="\n" if faults else "")
    print(", ".join(f"{count} {what}" for what, count in counts.items()) + f", {len(faults)} faults")
    sys.exit(bool(faults) or not all(counts.values()))


if __name__ == "__main__":
    main()
