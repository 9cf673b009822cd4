#!/usr/bin/env python3
"""The SARIF logs of `zev` follow the standard and say the same as its JSON.

    sarif.py ZEV SOURCE

ZEV is the program and SOURCE the folder of the project. The log of each run below is checked against sarif.schema.json,
which has the part of the standard that the program uses, and compared with the JSON of the same run.
"""
import json
import pathlib
import subprocess
import sys

import jsonschema

ZEV, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])
DATA = SOURCE / "tests" / "end_to_end" / "data"
FLOW = SOURCE / "examples" / "flow"
SCHEMA = json.loads((pathlib.Path(__file__).parent / "sarif.schema.json").read_text())


def run(arguments, form):
    done = subprocess.run([ZEV, *arguments, "--format", form], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          stdin=subprocess.DEVNULL, check=False)
    return done.returncode, done.stdout.decode()


def log_of(arguments):
    """The only run of the log, which the schema allows."""
    status, text = run(arguments, "sarif")
    log = json.loads(text)
    jsonschema.Draft7Validator.check_schema(SCHEMA)
    jsonschema.Draft7Validator(SCHEMA).validate(log)
    (only,) = log["runs"]
    (invocation,) = only["invocations"]
    assert invocation["exitCode"] == status
    assert invocation["executionSuccessful"] == (status != 2)
    known = {rule["id"] for rule in only["tool"]["driver"]["rules"]}
    assert {result["ruleId"] for result in only["results"]} <= known
    return only


def place_of(location):
    region = location["physicalLocation"].get("region", {})
    return region.get("startLine"), region.get("startColumn")


def key_of_result(result):
    return result["ruleId"], result["level"], result["message"]["text"], [place_of(one) for one in result["locations"]]


def validates(rules, *models):
    arguments = ["validate", "--rules", str(rules), *map(str, models)]
    log = log_of(arguments)
    lines = [json.loads(line) for line in run(arguments, "json")[1].splitlines()]
    assert len(lines) == len(models)
    expected, failures = [], []
    for line in lines:
        if "error" in line:
            failures += [fault["message"] for fault in line["malformed"]] or [line["error"]]
            continue
        expected += [(one["code"], one["severity"], one["message"],
                      [(place["line"], place["column"]) for place in one.get("places", [])] or [(None, None)])
                     for one in line["findings"]]
        expected += [("beta-message", "note", one["message"], None) for one in line["beta"]]
    results = [key_of_result(result) for result in log["results"]]
    # The list of beta messages in JSON has no places.
    results = [one if one[1] != "note" else (*one[:3], None) for one in results]
    assert results == expected, (results, expected)
    notifications = log["invocations"][0].get("toolExecutionNotifications", [])
    assert [one["message"]["text"] for one in notifications] == failures, notifications
    return len(expected), len(failures)


def lints(*rules):
    arguments = ["lint", "--rules", *map(str, rules)]
    log = log_of(arguments)
    diagnostics = json.loads(run(arguments, "json")[1])["diagnostics"]
    results = [key_of_result(result) for result in log["results"]]
    expected = [(one["code"], one["severity"], one["message"], [(one.get("line"), one.get("column"))])
                for one in diagnostics]
    assert results == expected, (results, expected)
    return len(expected)


findings, failures = validates(FLOW / "rules", FLOW / "models" / "faulty.tdf", FLOW / "models" / "sound.tdf")
assert (findings, failures) == (24, 0), (findings, failures)
findings, failures = validates(DATA / "flow.rules.yaml", *sorted(DATA.glob("*.tdf")), "no such model.tdf", DATA)
assert findings > 10 and failures >= 3, (findings, failures)
assert validates(DATA / "flow.rules.yaml", DATA / "empty.tdf") == (1, 0)
for case in sorted(DATA.glob("*.rules.yaml")):
    lints(case)
assert lints(DATA / "doubtful.rules.yaml") > 0
assert lints("no-such.rules.yaml") == 1
