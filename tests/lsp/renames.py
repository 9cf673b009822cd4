#!/usr/bin/env python3
"""Holds renaming in the editor against what it promises, on the examples.

    renames.py ZEV FOLDER [NUMBER [SEED]]

FOLDER is the top of the sources. The laws: a name that the server changes in rules and tests leaves rules that load, of
which lint says what it said before, and tests with the same verdicts; `zev diff-rules` finds the renaming and nothing
else; and with the old name in place of the new one, all files are as they were.
"""
import json
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

import yaml

from fixes import Editor, offset

NEW = "Renamed Item"
KINDS = {3: "section", 5: "object type", 7: "parameter", 8: "child", 11: "template", 14: "value", 16: "quantity type",
         17: "check", 18: "list", 24: "check of an object"}
RENAMABLE = {"object type", "parameter", "child", "template", "value", "quantity type", "check", "list"}


class Client(Editor):
    def request_or_refusal(self, method, params):
        self.number += 1
        self.server.send(json.dumps({"jsonrpc": "2.0", "id": self.number, "method": method, "params": params}))
        while True:
            message = json.loads(self.server.receive())
            if message.get("id") == self.number:
                return message.get("result"), message.get("error", {}).get("message")


def run(zev, *words):
    return json.loads(subprocess.run([zev, *map(str, words), "--format", "json"], capture_output=True, text=True).stdout)


def verdicts(zev, folder):
    """The verdicts of the tests that have no model in a file of its own: renaming does not change such models."""
    apart = {name for file in (folder / "tests").glob("*.rule-tests.yaml")
             for name, test in yaml.safe_load(file.read_text())["Tests"].items() if isinstance(test.get("Model"), dict)}
    report = run(zev, "test", "--rules", folder / "rules", folder / "tests")
    return [(test["name"], test["passed"]) for test in report["tests"] if test["name"] not in apart]


def lint(zev, folder, old):
    found = run(zev, "lint", "--rules", folder / "rules")["diagnostics"]
    return [(one["code"], one["message"].replace(NEW, old)) for one in found]


def other_differences(zev, before, after, old):
    """The differences that diff-rules finds apart from the new name."""
    came, went, other = [], [], []
    for one in run(zev, "diff-rules", before / "rules", after / "rules")["changes"]:
        name = one["item"] + " " + one["name"].replace(NEW, old)
        if one["change"] == "came":
            came.append(name)
        elif one["change"] == "went":
            went.append(name)
        else:
            other.extend(f"{name}, {a['attribute']}" for a in one.get("attributes", ())
                         if a["after"].replace(NEW, old) != a["before"])
    return sorted(set(came) ^ set(went)) + other


def apply(text, edits):
    for edit in sorted(edits, key=lambda one: (one["range"]["start"]["line"], one["range"]["start"]["character"]), reverse=True):
        begin, end = (offset(text, edit["range"][side]) for side in ("start", "end"))
        text = text[:begin] + edit["newText"] + text[end:]
    return text


def main():
    zev, source = sys.argv[1], pathlib.Path(sys.argv[2])
    number, seed = (int(text) for text in (sys.argv[3:] + ["12", "1"][len(sys.argv) - 3:]))
    choose = random.Random(seed)
    faults, counts = [], {"renamed": 0, "refused": 0, "places": 0}
    with tempfile.TemporaryDirectory() as place:
        for example in ("heating", "flow"):
            before = pathlib.Path(place).resolve() / example
            shutil.copytree(source / "examples" / example, before)
            expected = verdicts(zev, before)
            client = Client(zev)
            known = []
            for file in sorted((before / "rules").glob("*.rules.yaml")):
                client.open(file.as_uri(), file.read_text())
                symbols = client.request("textDocument/documentSymbol", {"textDocument": {"uri": file.as_uri()}})
                known += [(file, one) for one in symbols if KINDS.get(one["kind"]) in RENAMABLE]
            for file, one in choose.sample(known, number):
                # The name is at the end of the first line of the item, before the colon.
                text = file.read_text()
                line = one["location"]["range"]["start"]["line"]
                old = one["name"].rsplit("/", 1)[-1]
                column = re.search(re.escape(old) + r"[\"']?\s*:", text.split("\n")[line])
                if column is None:
                    continue
                result, refusal = client.request_or_refusal("textDocument/rename", {
                    "textDocument": {"uri": file.as_uri()}, "newName": NEW,
                    "position": {"line": line, "character": column.start() + 1}})
                if refusal:
                    counts["refused"] += 1
                    continue
                counts["renamed"] += 1
                what = f"{example}: {KINDS[one['kind']]} {one['name']}"
                after = pathlib.Path(place).resolve() / "renamed" / example
                shutil.rmtree(after.parent, ignore_errors=True)
                shutil.copytree(before, after)
                for uri, edits in result["changes"].items():
                    changed = after / pathlib.Path(uri.removeprefix("file://").replace("%20", " ")).relative_to(before)
                    original = changed.read_text()
                    counts["places"] += len(edits)
                    now = apply(original, edits)
                    changed.write_text(now)
                    if now.replace(NEW, old) != original:
                        faults.append(f"{what}: {changed.name} has other changes, too")
                if lint(zev, after, old) != lint(zev, before, old):
                    faults.append(f"{what}: lint finds something else: {lint(zev, after, old)[:3]}")
                elif problems := other_differences(zev, before, after, old):
                    faults.append(f"{what}: diff-rules finds more than the renaming: {problems[:3]}")
                elif verdicts(zev, after) != expected:
                    failed = [name for name, passed in verdicts(zev, after) if not passed]
                    faults.append(f"{what}: tests fail: {failed[:3]}")
            client.server.process.kill()
            client.server.process.wait()
    print(*faults, sep="\n", end="\n" if faults else "")
    print(", ".join(f"{count} {what}" for what, count in counts.items()) + f", {len(faults)} faults")
    sys.exit(bool(faults) or not counts["renamed"])


if __name__ == "__main__":
    main()
