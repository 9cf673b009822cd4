#!/usr/bin/env python3
"""Runs the dialogue of docs/protocol.md against `zev serve` and compares each answer with what the page shows.

    protocol.py [--update] ZEV SOURCE

In blocks of the kind `rpc`, a line `> METHOD PARAMS` is a request, and the line `< ...` below it is the result or the
error of the answer. It may end with `...` where the rest is left out. FOLDER is the folder of the model. Every method has
a call on the page. --update replaces answers that are shown whole.
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

update = "--update" in sys.argv
zev, source = (pathlib.Path(one).resolve() for one in [one for one in sys.argv[1:] if one != "--update"])
page = source / "docs/protocol.md"
lines = page.read_text(encoding="utf-8").split("\n")
called, differing, document, inside = set(), 0, "1", False

with tempfile.TemporaryDirectory() as folder:
    folder = str(pathlib.Path(folder).resolve())
    shutil.copy(source / "examples/flow/models/sound.tdf", folder)
    server = subprocess.Popen([zev, "serve", "--rules", "rules", "--stdio", "--folder", folder, "--recovery",
                               f"{folder}/recovery"], cwd=source / "examples/flow", stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, text=True, encoding="utf-8")

    def ask(method, params):
        request = {"jsonrpc": "2.0", "id": 1, "method": method, "params": params}
        server.stdin.write(json.dumps(request) + "\n")
        server.stdin.flush()
        answer = server.stdout.readline().rstrip("\n").replace(folder, "FOLDER")
        return re.fullmatch(r'\{"jsonrpc":"2.0","id":1,"(?:result|error)":(.*)\}', answer).group(1)

    for number, line in enumerate(lines):
        if line.startswith("```"):
            inside = line == "```rpc"
        if not inside or not line.startswith("> "):
            continue
        method, params = line[2:].split(" ", 1)
        params = json.loads(params)
        if method not in ("hello", "documents", "open", "recover", "discardRecovery"):
            params["document"] = document
        real, shown = ask(method, params), lines[number + 1][2:]
        called.add(method)
        if real == shown or (shown.endswith("...") and real.startswith(shown[:-3])):
            continue
        differing += 1
        print(f"{page}:{number + 2}: shown:\n{shown}\nbut it is:\n{real}\n")
        if update and not shown.endswith("..."):
            lines[number + 1] = f"< {real}"
    known = set(json.loads(ask("hello", {}))["capabilities"]["methods"])
    server.stdin.close()
    server.wait(60)
    server.stdout.close()

if update:
    page.write_text("\n".join(lines), encoding="utf-8")
for method in sorted(known - called):
    print(f"{page}: no call of \"{method}\"")
print(f"{len(called)} methods called, answers that differ: {differing}")
sys.exit(0 if known == called and not differing else 1)
