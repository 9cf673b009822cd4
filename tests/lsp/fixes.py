#!/usr/bin/env python3
"""Holds the fixes of diagnostics against what they promise, through the language server.

    fixes.py ZEV FOLDER

FOLDER is the top of the sources. The cases are the faulty rule files of the rule reference, which has one for every
sentence of a diagnostic, and of the tests of rule files. The laws: a diagnostic that `zev lint` gives a fix has a code
action in the editor, and no other has one; after the edit of the code action the diagnostic is gone.
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from conversation import Server


def examples(document):
    """The rule files of a document that have faults: `text lint` follows them."""
    blocks = re.findall(r"^( *)```([^\n]+)\n(.*?)^ *```$", document, flags=re.M | re.S)
    rules = None
    for indent, kind, text in blocks:
        if kind == "yaml rules":
            rules = re.sub(f"^{indent}", "", text, flags=re.M)
        elif kind == "text lint" and rules is not None:
            yield rules
            rules = None


def cases(text):
    """The cases of a file of the tests of rule files."""
    for part in re.split(r"^#! case ", text, flags=re.M)[1:]:
        _, _, rest = part.partition("\n")
        yield "".join(line + "\n" for line in rest.split("\n") if not line.startswith("#!"))


def offset(text, position):
    """The index of a position, which counts in units of UTF-16."""
    lines = text.split("\n")
    line = lines[position["line"]].encode("utf-16-le")[: 2 * position["character"]].decode("utf-16-le")
    return sum(len(one) + 1 for one in lines[: position["line"]]) + len(line)


class Editor:
    """A client that has one document open at a time."""

    def __init__(self, program):
        self.server = Server(program)
        self.number = 0
        self.request("initialize", {"capabilities": {
            "textDocument": {"publishDiagnostics": {"relatedInformation": True}}}})
        self.notify("initialized", {})

    def notify(self, method, params):
        self.server.send(json.dumps({"jsonrpc": "2.0", "method": method, "params": params}))

    def request(self, method, params):
        self.number += 1
        self.server.send(json.dumps({"jsonrpc": "2.0", "id": self.number, "method": method, "params": params}))
        while True:
            message = json.loads(self.server.receive())
            if message.get("id") == self.number:
                return message["result"]

    def diagnostics(self, uri, known=()):
        """Those that were published last, or `known` if nothing was published."""
        found = known
        for text in self.server.until_rest():
            message = json.loads(text)
            if message.get("method") == "textDocument/publishDiagnostics" and message["params"]["uri"] == uri:
                found = message["params"]["diagnostics"]
        return found

    def open(self, uri, text):
        self.notify("textDocument/didOpen", {"textDocument": {"uri": uri, "languageId": "yaml", "version": 1, "text": text}})
        return self.diagnostics(uri)

    def change(self, uri, version, text, known):
        self.notify("textDocument/didChange", {"textDocument": {"uri": uri, "version": version},
                                               "contentChanges": [{"text": text}]})
        return self.diagnostics(uri, known)

    def close(self, uri):
        self.notify("textDocument/didClose", {"textDocument": {"uri": uri}})
        self.server.until_rest()


def key(one):
    return one["code"], one["message"]


def main():
    zev, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    texts = list(examples((folder / "docs/rule-reference.md").read_text()))
    for file in sorted((folder / "tests/RuleLanguage/cases").glob("*.rules.yaml")):
        texts.extend(cases(file.read_text()))
    editor = Editor(zev)
    counts = {"files": 0, "diagnostics": 0, "fixes": 0}
    faults = []
    with tempfile.TemporaryDirectory() as place:
        for number, text in enumerate(texts):
            if "\0" in text:
                continue
            counts["files"] += 1
            file = pathlib.Path(place).resolve() / str(number) / "flow.rules.yaml"
            file.parent.mkdir()
            file.write_text(text)
            linted = json.loads(subprocess.run([zev, "lint", "--rules", file, "--format", "json"], capture_output=True,
                                               text=True).stdout)["diagnostics"]
            fixable = sorted(key(one) for one in linted if "fix" in one)
            uri = file.as_uri()
            before = editor.open(uri, text)
            fixed, version = [], 1
            for one in before:
                counts["diagnostics"] += 1
                actions = [action for action in editor.request("textDocument/codeAction", {
                    "textDocument": {"uri": uri}, "range": one["range"], "context": {"diagnostics": []}})
                    if key(action["diagnostics"][0]) == key(one) and action["diagnostics"][0]["range"] == one["range"]]
                if not actions:
                    continue
                fixed.append(key(one))
                counts["fixes"] += 1
                edits = actions[0]["edit"]["changes"][uri]
                changed = text
                for edit in edits:
                    begin, end = (offset(text, edit["range"][side]) for side in ("start", "end"))
                    changed = text[:begin] + edit["newText"] + text[end:]
                after = editor.change(uri, version + 1, changed, before)
                if sum(key(other) == key(one) for other in after) >= sum(key(other) == key(one) for other in before):
                    faults.append(f"{actions[0]['title']}: the diagnostic is still there: {one['message']}\n{changed}")
                editor.change(uri, version + 2, text, after)
                version += 2
            if sorted(fixed) != fixable:
                faults.append(f"zev lint gives fixes to {fixable}, the editor to {sorted(fixed)}:\n{text}")
            editor.close(uri)
    print(*faults, sep="\n", end="\n" if faults else "")
    print(", ".join(f"{count} {what}" for what, count in counts.items()) + f", {len(faults)} faults")
    sys.exit(bool(faults) or not all(counts.values()))


if __name__ == "__main__":
    main()
