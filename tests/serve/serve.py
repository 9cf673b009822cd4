#!/usr/bin/env python3
"""`zev serve` end to end: the built program over a pipe and over HTTP, with well-meant and with hostile clients.

    serve.py ZEV SOURCE [MESSAGES...]

ZEV is the program and SOURCE the folder of the project. Every message of these tests is held to the JSON Schema that the
program prints, and so is every message in the files MESSAGES. There, a line with a request is followed by a line with its
answer; the unit tests of the protocol write such files.
"""
import concurrent.futures
import contextlib
import http.client
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.parse

import jsonschema

ZEV, SOURCE = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
MESSAGES = sys.argv[3:]
RULES = str(SOURCE / "examples/flow/rules")
SOUND = SOURCE / "examples/flow/models/sound.tdf"
PATIENCE = 60


def closed(schema):
    """The schema without members that nobody has described."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    made = {key: closed(part) if key not in ("enum", "const", "required") else part for key, part in schema.items()}
    if "properties" in made and made.get("type") == "object":
        made["additionalProperties"] = False
    return made


class Schema:
    def __init__(self):
        text = subprocess.run([ZEV, "schema", "protocol"], capture_output=True, check=True, timeout=PATIENCE).stdout
        self.whole = json.loads(text)
        jsonschema.Draft202012Validator.check_schema(self.whole)
        self.strict = closed(self.whole)
        self.held = 0

    def hold(self, name, record, strict=True):
        """Fails if the record is not what `$defs` says about this name."""
        schema = {"$ref": f"#/$defs/{name}", "$defs": (self.strict if strict else self.whole)["$defs"]}
        jsonschema.Draft202012Validator(schema).validate(record)
        self.held += 1

    def hold_answer(self, request, answer):
        self.hold("response", answer)
        method = request.get("method") if isinstance(request, dict) else None
        if "result" in answer:
            self.hold("request", request, strict=False)
            self.hold(f"params {method}", request.get("params", {}), strict=False)
            self.hold(f"result {method}", answer["result"])

    def hold_event(self, event):
        self.hold(f"event {event['method']}", event["params"])


SCHEMA = Schema()


class Folder:
    """A folder of its own with a copy of the model."""

    def __init__(self):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="serve-"))
        self.models = self.path / "models"
        self.models.mkdir()
        self.model = self.models / "sound.tdf"
        shutil.copy(SOUND, self.model)
        self.recovery = self.path / "recovery"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.path)


class Calls:
    """The calls that pipes and HTTP have in common: `send` takes the text of a message and returns that of the answer."""

    last_id = 0

    def message(self, method, **params):
        Calls.last_id += 1
        return {"jsonrpc": "2.0", "id": Calls.last_id, "method": method, "params": params}

    def answer(self, method, **params):
        request = self.message(method, **params)
        answer = json.loads(self.send(json.dumps(request)))
        SCHEMA.hold_answer(request, answer)
        assert answer["id"] == request["id"], answer
        return answer

    def call(self, method, **params):
        answer = self.answer(method, **params)
        assert "result" in answer, answer
        return answer["result"]

    def error(self, method, **params):
        answer = self.answer(method, **params)
        assert "error" in answer, answer
        return answer["error"]


def title(text):
    return [{"kind": "set-param", "path": "/Case", "name": "Title", "value": text}]


class Pipe(Calls):
    def __init__(self, folder, *options, model=True):
        command = [ZEV, "serve", "--rules", RULES, "--stdio", "--recovery", str(folder.recovery), *options]
        self.process = subprocess.Popen(command + ([str(folder.model)] if model else []), stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def send(self, text):
        self.process.stdin.write((text if isinstance(text, bytes) else text.encode()) + b"\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().decode()

    def end(self):
        """The exit status and what was written to the standard error."""
        if not self.process.stdout.closed:
            self.process.stdin.close()
            self.errors = self.process.stderr.read().decode()
            self.process.stdout.close()
            self.process.stderr.close()
        return self.process.wait(PATIENCE), self.errors

    def __enter__(self):
        return self

    def __exit__(self, kind, *_):
        if kind is not None:
            self.process.kill()
        self.end()


class Web(Calls):
    def __init__(self, folder, *options, model=True, address="0", program=ZEV):
        command = [program, "serve", "--rules", RULES, "--http", address, "--recovery", str(folder.recovery), *options]
        self.process = subprocess.Popen(command + ([str(folder.model)] if model else []), stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.url = self.process.stdout.readline().decode().strip()
        parts = urllib.parse.urlsplit(self.url)
        self.host, self.port = parts.hostname, parts.port
        self.token = urllib.parse.parse_qs(parts.fragment)["token"][0] if parts.fragment else None
        self.local = threading.local()

    def headers(self, **more):
        return {"Authorization": f"Bearer {self.token}", "Content-Type": "application/json", **more}

    def request(self, method, path, body=None, headers=None):
        """The status, the headers and the body, over a new connection."""
        with contextlib.closing(http.client.HTTPConnection(self.host, self.port, timeout=PATIENCE)) as connection:
            connection.request(method, path, body, headers if headers is not None else self.headers())
            response = connection.getresponse()
            return response.status, response.headers, response.read().decode()

    def raw(self, line, *headers, body=b"", ends=False):
        """The answers to a request as it is written here, until the server ends the connection."""
        head = [line, f"Host: {self.host}:{self.port}", f"Authorization: Bearer {self.token}", *headers, "", ""]
        with socket.create_connection((self.host, self.port), timeout=PATIENCE) as connection:
            connection.sendall("\r\n".join(head).encode() + body)
            if ends:
                connection.shutdown(socket.SHUT_WR)
            with connection.makefile("rb") as stream:
                return stream.read().decode()

    def send(self, text):
        status, _, body = self.request("POST", "/rpc", text)
        assert status == 200, (status, body)
        return body

    def end(self, how=signal.SIGTERM):
        self.process.send_signal(how)
        status = self.process.wait(PATIENCE)
        errors = self.process.stderr.read().decode()
        self.process.stdout.close()
        self.process.stderr.close()
        return status, errors

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.returncode is None:
            self.end()


class Events:
    """A stream of events over a plain socket, so that a test can drop it."""

    def __init__(self, web):
        self.socket = socket.create_connection((web.host, web.port), timeout=PATIENCE)
        self.socket.sendall(f"GET /events HTTP/1.1\r\nHost: {web.host}:{web.port}\r\n"
                            f"Authorization: Bearer {web.token}\r\n\r\n".encode())
        self.lines = self.socket.makefile("rb")
        self.status = int(self.lines.readline().split()[1])
        while self.status == 200 and not self.lines.readline().startswith(b": connected"):
            pass

    def next(self):
        for line in self.lines:
            if line.startswith(b"data: "):
                event = json.loads(line[6:])
                SCHEMA.hold_event(event)
                return event
        return None

    def drop(self):
        self.lines.close()
        self.socket.close()


class OverAPipe(unittest.TestCase):
    def test_an_edit_is_answered_with_its_net_effect_and_saved_in_the_file(self):
        with Folder() as folder, Pipe(folder) as pipe:
            hello = pipe.call("hello")
            document = hello["documents"][0]["document"]
            self.assertEqual(hello["protocol"], {"major": 1, "minor": 0})
            self.assertEqual(hello["documents"][0]["root"], "/Case")
            answer = pipe.call("edit", document=document, revision=0, edits=title("a new title"))
            self.assertEqual((answer["revision"], answer["unsaved"]), (1, True))
            self.assertEqual(answer["result"]["effect"]["values"][0]["after"], "a new title")
            saved = pipe.call("save", document=document, revision=1)
            self.assertTrue(saved["saved"])
            self.assertFalse(saved["unsaved"])
            self.assertIn("Title = a new title\n", folder.model.read_text())
            self.assertEqual(pipe.end()[0], 0)
            self.assertEqual(list(folder.recovery.iterdir()), [])

    def test_every_method_is_described_and_answers(self):
        methods = {name[7:] for name in SCHEMA.whole["$defs"] if name.startswith("params ")}
        with Folder() as folder, Pipe(folder) as pipe:
            self.assertEqual(set(pipe.call("hello")["capabilities"]["methods"]), methods)
            document = {"document": "1"}
            turn = [{"kind": "set-param", "path": "/Case/Analysis", "name": "Analysis Type", "value": "Transient"}]
            tried = pipe.call("tryEdits", **document, edits=turn, findings=True)
            self.assertTrue(tried["result"]["applied"])
            self.assertNotIn("step", tried["result"])
            pipe.call("edit", **document, revision=0, edits=turn)
            self.assertEqual(pipe.call("state", **document)["steps"], 1)
            case = {"path": "/Case"}
            analysis = {"path": "/Case/Analysis"}
            self.assertEqual(pipe.call("lookParam", **document, **analysis, name="Analysis Type")["param"]["origin"], "user")
            self.assertEqual(pipe.call("lookObject", **document, **case)["object"]["type"], "Case")
            looked = pipe.call("look", **document, items=[case, {**case, "name": "Title"}, {"path": "/Case/Nothing"}])
            self.assertEqual([bool(one) for one in looked["records"]], [True, True, False])
            self.assertIn("Title", pipe.call("params", **document, **case)["list"])
            self.assertIn({"name": "Analysis Type", "available": True},
                          pipe.call("outline", **document, **analysis)["list"])
            self.assertIn("Domain", [one["type"] for one in pipe.call("childTypes", **document, **case)["list"]])
            self.assertEqual(pipe.call("convert", **document, value="0.025 [m]", units="mm")["value"], "25 [mm]")
            children = pipe.call("children", **document, **case, findings=True, offered=True)
            self.assertEqual(children["list"][0]["path"], "/Case/Analysis")
            self.assertIn("errors", children["list"][0])
            form = pipe.call("form", **document, **analysis, findings=True, limit=3)
            self.assertEqual([one["name"] for one in form["params"]["list"]],
                             pipe.call("params", **document, **analysis, limit=3)["list"])
            values = pipe.call("allowedValues", **document, **analysis, name="Analysis Type")
            self.assertEqual(values["list"], ["Steady", "Transient"])
            self.assertEqual(pipe.call("resolve", **document, text="/Case/Title")["item"], {**case, "name": "Title"})
            self.assertEqual(pipe.call("resolve", **document, text="/Case/Titel")["refused"]["nearest"]["name"], "Title")
            self.assertEqual(pipe.call("find", **document, text="title")["list"][0]["match"], "exact")
            self.assertEqual(pipe.call("own", **document)["total"], 1)
            self.assertGreater(pipe.call("waiting", **document, below="/Case/Analysis")["total"], 0)
            self.assertGreater(pipe.call("differences", **document)["total"], 0)
            self.assertEqual(pipe.call("differences", **document, below="/Case/Anal")["total"], 0)
            self.assertIn({**case, "name": "Flow Regime", "value": "Turbulent"}, pipe.call("result", **document)["list"])
            pipe.call("review", **document)
            why = pipe.call("why", **document, **analysis, name="Length Scale", question="presence", depth=2)
            self.assertEqual(why["proof"]["nodes"][0]["fact"], "not-live")
            how = pipe.call("how", **document, **analysis, name="Length Scale")
            self.assertEqual(how["result"]["answer"], "found")
            self.assertEqual(pipe.call("steps", **document)["total"], 1)
            last = pipe.call("lastResult", **document, list="values", offset=1, limit=1)
            self.assertEqual(last["list"], pipe.call("lastResult", **document)["result"]["effect"]["values"][1:2])
            self.assertNotIn("message", pipe.call("undo", **document, revision=1)["result"])
            self.assertTrue(pipe.call("redo", **document, revision=2)["unsaved"])
            pipe.call("renameFollowed", **document, revision=3, path="/Case/Material:Air", name="Dry Air")
            pipe.call("documents")
            self.assertEqual(pipe.error("close", **document)["code"], -32006)
            pipe.call("close", **document, discard=True)
            again = pipe.call("open", text="/Case/Title = x\n")["document"]
            self.assertFalse(pipe.call("save", document=again)["saved"])
            pipe.call("save", document=again, file="second.tdf")
            self.assertTrue((folder.models / "second.tdf").exists())

    def test_a_batch_of_edits_is_made_as_one_or_not_at_all(self):
        with Folder() as folder, Pipe(folder) as pipe:
            edits = title("first") + [{"kind": "set-param", "path": "/Case", "name": "Flow Regime", "value": "laminar"}]
            answer = pipe.call("edit", document="1", revision=0, edits=edits)
            self.assertFalse(answer["result"]["applied"])
            self.assertEqual(answer["result"]["refused"]["index"], 1)
            self.assertEqual(answer["result"]["refused"]["nearest"]["value"], "Laminar")
            self.assertEqual((answer["revision"], answer["unsaved"]), (0, False))

    def test_input_of_any_kind_gets_an_answer_and_ends_nothing(self):
        deep = "[" * 100_000
        cases = [("nonsense", -32700), (b'{"jsonrpc":"2.0","id":1,"method":"\xff"}', -32700), (deep, -32003),
                 ("[]", -32600), ("3", -32600), ('{"id":1}', -32600), ('{"jsonrpc":"2.0","id":{},"method":"hello"}', -32600),
                 ('{"jsonrpc":"2.0","id":1,"method":"nothing"}', -32601),
                 ('{"jsonrpc":"2.0","id":1,"method":"hello","params":[]}', -32602),
                 ('{"jsonrpc":"2.0","id":1,"method":"state"}', -32602),
                 ('{"jsonrpc":"2.0","id":1,"method":"state","params":{"document":7}}', -32602),
                 ('{"jsonrpc":"2.0","id":1,"method":"state","params":{"document":"7"}}', -32002),
                 ('{"jsonrpc":"2.0","id":1,"method":"edit","params":{"document":"1","revision":-1,"edits":[]}}', -32602),
                 ('{"jsonrpc":"2.0","id":1,"method":"edit","params":{"document":"1","revision":0,"edits":[{}]}}', -32602),
                 ('{"jsonrpc":"2.0","id":1,"method":"edit","params":{"document":"1","revision":9,"edits":[]}}', -32001)]
        with Folder() as folder, Pipe(folder) as pipe:
            for text, code in cases:
                answer = json.loads(pipe.send(text))
                SCHEMA.hold("response", answer)
                self.assertEqual(answer["error"]["code"], code, text[:80])
            self.assertEqual(json.loads(pipe.send(" " * 17_000_000))["error"]["code"], -32003)
            self.assertEqual(pipe.call("state", document="1")["revision"], 0)

    def test_notifications_get_no_answer_and_batches_get_a_list(self):
        with Folder() as folder, Pipe(folder) as pipe:
            note = {"jsonrpc": "2.0", "method": "hello"}
            pipe.process.stdin.write((json.dumps(note) + "\n" + json.dumps([note]) + "\n").encode())
            answers = json.loads(pipe.send(json.dumps([note, pipe.message("hello"), 1, pipe.message("state", document="1")])))
            self.assertEqual([sorted(one) for one in answers],
                             [["id", "jsonrpc", "result"], ["error", "id", "jsonrpc"], ["id", "jsonrpc", "result"]])

    def test_files_outside_the_folders_cannot_be_reached(self):
        with Folder() as folder, Pipe(folder) as pipe:
            (folder.path / "secret.tdf").write_text("/Case/Title = secret\n")
            (folder.models / "out.tdf").symlink_to(folder.path / "secret.tdf")
            (folder.models / "nowhere.tdf").symlink_to(folder.path / "new.tdf")
            os.mkfifo(folder.models / "fifo.tdf")
            for path in ("../secret.tdf", str(folder.path / "secret.tdf"), "out.tdf", "nowhere.tdf", "/etc/passwd",
                         "../models/../secret.tdf", "", "a\0b", "missing/../../secret.tdf"):
                self.assertEqual(pipe.error("open", file=path)["code"], -32004, path)
                if path:
                    self.assertEqual(pipe.error("save", document="1", file=path, overwrite=True)["code"], -32004, path)
            for path in (".", "fifo.tdf"):
                self.assertEqual(pipe.error("open", file=path)["code"], -32007, path)
            self.assertEqual((folder.path / "secret.tdf").read_text(), "/Case/Title = secret\n")
            self.assertFalse((folder.path / "new.tdf").exists())
            self.assertTrue(pipe.call("open", file="./../models/sound.tdf")["wasOpen"])

    def test_a_file_that_became_a_link_is_not_written_through_it(self):
        with Folder() as folder, Pipe(folder) as pipe:
            secret, other = folder.path / "secret.tdf", folder.models / "other.tdf"
            for file in (secret, other):
                file.write_text("/Case/Title = kept\n")
            pipe.call("edit", document="1", revision=0, edits=title("mine"))
            folder.model.unlink()
            for file, code in ((secret, -32004), (other, -32007)):
                folder.model.symlink_to(file)
                for overwrite in (False, True):
                    self.assertEqual(pipe.error("save", document="1", overwrite=overwrite)["code"], code)
                self.assertEqual(file.read_text(), "/Case/Title = kept\n")
                folder.model.unlink()
            self.assertTrue(pipe.call("save", document="1", overwrite=True)["saved"])

    def test_differences_from_the_file_are_gone_when_it_was_saved(self):
        with Folder() as folder, Pipe(folder) as pipe:
            pipe.call("edit", document="1", revision=0, edits=title("mine"))
            changed = [("/Case", "Title")]
            names = lambda **params: [(one["path"], one.get("name")) for one in
                                      pipe.call("differences", document="1", below="/Case", **params)["list"]
                                      if one.get("name") == "Title"]
            self.assertEqual((names(), names(**{"from": "file"})), (changed, changed))
            pipe.call("save", document="1")
            self.assertEqual((names(), names(**{"from": "file"})), (changed, []))
            self.assertEqual(pipe.call("differences", document="1", **{"from": "file"})["total"], 0)
            self.assertEqual(pipe.error("differences", document="1", **{"from": "disk"})["code"], -32602)

    def test_a_file_that_someone_else_has_changed_is_not_replaced_unasked(self):
        with Folder() as folder, Pipe(folder) as pipe:
            pipe.call("edit", document="1", revision=0, edits=title("mine"))
            folder.model.write_text("/Case/Title = theirs\n")
            answer = pipe.call("save", document="1")
            self.assertEqual((answer["saved"], answer["error"]["fault"]), (False, "file-changed"))
            self.assertEqual(folder.model.read_text(), "/Case/Title = theirs\n")
            self.assertTrue(pipe.call("save", document="1", overwrite=True)["saved"])

    def test_a_repeated_edit_with_an_identifier_is_made_once(self):
        with Folder() as folder, Pipe(folder) as pipe:
            first = pipe.call("edit", document="1", revision=0, edits=title("once"), editId="e1")
            again = pipe.call("edit", document="1", revision=0, edits=title("once"), editId="e1")
            self.assertTrue(again.pop("repeated"))
            self.assertEqual(first, again)
            self.assertEqual(pipe.call("state", document="1")["steps"], 1)

    def test_documents_are_limited_and_a_file_is_open_once(self):
        with Folder() as folder, Pipe(folder) as pipe:
            for _ in range(15):
                pipe.call("open", text="/Case/Title = x\n")
            self.assertEqual(pipe.error("open", text="/Case/Title = x\n")["code"], -32003)
            self.assertEqual(pipe.call("open", file="sound.tdf")["document"], "1")
            pipe.call("close", document="2")
            self.assertEqual(pipe.error("state", document="2")["code"], -32002)
            self.assertEqual(pipe.error("open", text="/Case/Title\n")["data"]["fault"], "model-unreadable")


class Recovery(unittest.TestCase):
    def work(self, folder):
        """Leaves unsaved edits behind, with an undone one."""
        pipe = Pipe(folder)
        pipe.call("edit", document="1", revision=0, edits=title("first"))
        pipe.call("save", document="1")
        pipe.call("edit", document="1", revision=1, edits=title("second"))
        pipe.call("edit", document="1", revision=2, edits=title("third"))
        pipe.call("undo", document="1", revision=3)
        return pipe

    def check(self, folder):
        with Pipe(folder) as pipe:
            (left,) = pipe.call("hello")["recoverable"]
            self.assertEqual(left["file"], str(folder.model.resolve()))
            again = pipe.call("recover", recovery=left["recovery"])
            self.assertEqual((again["document"], again["done"], again["entries"]), ("1", 5, 5))
            self.assertEqual((again["unsaved"], again["steps"], again["undoneSteps"]), (True, 2, 1))
            self.assertEqual(pipe.error("edit", document="1", revision=0, edits=title("stale"))["code"], -32001)
            shown = pipe.call("lookParam", document="1", path="/Case", name="Title")["param"]["value"]
            self.assertEqual(shown, "second")
            self.assertEqual(pipe.call("documents")["recoverable"], [])
            redone = pipe.call("redo", document="1", revision=again["revision"])
            self.assertEqual(redone["result"]["effect"]["values"][0]["after"], "third")
            self.assertTrue(pipe.call("save", document="1")["saved"])
            self.assertIn("Title = third\n", folder.model.read_text())
        self.assertEqual(list(folder.recovery.iterdir()), [])

    def test_work_of_a_killed_server_is_made_again_with_its_history(self):
        with Folder() as folder:
            pipe = self.work(folder)
            pipe.process.kill()
            pipe.end()
            self.check(folder)

    def test_signals_end_the_server_cleanly_and_keep_the_work(self):
        for how in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(how), Folder() as folder:
                pipe = self.work(folder)
                pipe.process.send_signal(how)
                self.assertEqual(pipe.process.wait(PATIENCE), 0)
                pipe.end()
                self.check(folder)

    def test_a_file_that_was_cut_off_is_used_up_to_there(self):
        with Folder() as folder:
            pipe = self.work(folder)
            pipe.process.kill()
            pipe.end()
            (file,) = folder.recovery.iterdir()
            with open(file, "ab") as stream:
                stream.write(b'{"edit":[{"kind":"set-par')
            self.check(folder)

    def test_the_start_says_what_was_left_and_it_can_be_discarded(self):
        with Folder() as folder:
            pipe = self.work(folder)
            pipe.process.kill()
            pipe.end()
            with Pipe(folder) as pipe:
                (left,) = pipe.call("hello")["recoverable"]
                pipe.call("discardRecovery", recovery=left["recovery"])
                self.assertEqual(pipe.error("recover", recovery=left["recovery"])["code"], -32008)
                self.assertEqual(pipe.error("recover", recovery="../models/sound")["code"], -32008)
                self.assertIn("unsaved work was left: 3 steps in", pipe.end()[1])
            self.assertEqual(list(folder.recovery.iterdir()), [])

    def test_a_file_in_use_is_not_offered_to_another_server(self):
        with Folder() as folder, self.work(folder), Pipe(folder) as other:
            self.assertEqual(other.call("hello")["recoverable"], [])

    def test_a_disk_that_takes_nothing_is_told_with_every_answer(self):
        with Folder() as folder:
            folder.recovery.write_text("a file where a folder should be")
            with Pipe(folder) as pipe:
                answer = pipe.call("edit", document="1", revision=0, edits=title("x"))
                self.assertTrue(answer["result"]["applied"])
                self.assertIn("cannot be written", answer["recoveryFailure"])


class OverHttp(unittest.TestCase):
    def test_only_requests_with_the_token_and_from_here_are_answered(self):
        with Folder() as folder, Web(folder) as web:
            body = json.dumps(web.message("hello"))
            good = web.headers()
            cases = [({}, 200), ({"Authorization": "Bearer wrong"}, 401), ({"Authorization": ""}, 401),
                     ({"Authorization": f"Bearer {web.token}0"}, 401),
                     ({"Host": "evil.example"}, 421), ({"Host": f"localhost:{web.port}"}, 200),
                     ({"Host": f"127.0.0.1:{web.port + 1}"}, 421),
                     ({"Origin": f"http://127.0.0.1:{web.port}"}, 200), ({"Origin": "http://evil.example"}, 403),
                     ({"Origin": "null"}, 403), ({"Content-Type": "text/plain"}, 415)]
            for headers, status in cases:
                got = web.request("POST", "/rpc", body, {**good, **headers})
                self.assertEqual(got[0], status, headers)
            self.assertEqual(web.request("GET", "/events", headers={})[0], 401)
            self.assertEqual(web.request("GET", "/schema", headers={})[0], 401)
            self.assertEqual(json.loads(web.request("GET", "/schema")[2]), SCHEMA.whole)
            self.assertEqual(web.request("GET", "/nothing")[0], 404)
            # Browsers look for an icon by themselves. An installation without the page has none.
            self.assertIn(web.request("GET", "/favicon.ico", headers={})[0], (200, 204))
            with socket.create_connection(("127.0.0.1", int(web.port))) as twice:
                twice.sendall(f"GET /schema HTTP/1.1\r\nHost: {web.host}:{web.port}\r\nHost: evil.example\r\n"
                              f"Authorization: Bearer {web.token}\r\n\r\n".encode())
                self.assertIn(b" 400 ", twice.recv(1000).split(b"\r\n")[0])

    def test_the_printed_address_gives_a_browser_its_cookie(self):
        with Folder() as folder, Web(folder) as web:
            self.assertEqual(web.url, f"http://127.0.0.1:{web.port}/enter#token={web.token}")
            status, headers, page = web.request("GET", "/enter", headers={})
            self.assertEqual((status, headers["Content-Type"]), (200, "text/html; charset=utf-8"))
            self.assertIn('<script src="/enter.js" defer></script>', page)
            self.assertEqual(page.count("<script"), 1)
            status, headers, script = web.request("GET", "/enter.js", headers={})
            self.assertEqual((status, headers["Content-Type"]), (200, "text/javascript; charset=utf-8"))
            self.assertNotIn(web.token, page + script)
            status, headers, body = web.request("POST", "/enter", headers={"Authorization": f"Bearer {web.token}"})
            self.assertEqual((status, body), (204, ""))
            cookie = headers["Set-Cookie"]
            self.assertIn("HttpOnly", cookie)
            self.assertIn("SameSite=Strict", cookie)
            entered = {"Cookie": "a=b; " + cookie.split(";")[0]}
            self.assertEqual(web.request("GET", "/schema", headers=entered)[0], 200)
            for wrong in ({}, {"Authorization": "Bearer wrong"}):
                status, headers, _ = web.request("POST", "/enter", headers=wrong)
                self.assertEqual((status, headers["Set-Cookie"]), (401, None))
            self.assertEqual(web.request("GET", f"/?token={web.token}", headers={})[0], 401)
            self.assertEqual(web.request("GET", "/enter", headers={"Host": "evil.example"})[0], 421)
            evil = {"Authorization": f"Bearer {web.token}", "Origin": "http://evil.example"}
            self.assertEqual(web.request("POST", "/enter", headers=evil)[0], 403)

    def test_files_of_the_editor_are_served_and_no_others(self):
        with Folder() as folder:
            editor = folder.path / "web"
            (editor / "parts").mkdir(parents=True)
            (editor / "index.html").write_text("<title>editor</title>")
            (editor / "main-3K7QWX2A.js").write_text("main()")
            (editor / "parts/plain.css").write_text("p {}")
            (editor / "notes.cpp").write_text("not for a page")
            (editor / "secret.txt").symlink_to(folder.model)
            with Web(folder, "--web", str(editor)) as web:
                kept, never = "private, max-age=31536000, immutable", "no-store"
                for path, body, kind, keeping in (
                        ("/", "<title>editor</title>", "text/html; charset=utf-8", never),
                        ("/index.html", "<title>editor</title>", "text/html; charset=utf-8", never),
                        ("/main-3K7QWX2A.js", "main()", "text/javascript; charset=utf-8", kept),
                        ("/parts/plain.css", "p {}", "text/css; charset=utf-8", never)):
                    status, headers, got = web.request("GET", path)
                    self.assertEqual((status, got, headers["Content-Type"]), (200, body, kind))
                    self.assertEqual(headers.get_all("Cache-Control"), [keeping], path)
                    self.assertEqual(headers["X-Content-Type-Options"], "nosniff")
                    policy = headers["Content-Security-Policy"]
                    self.assertIn("default-src 'none'", policy)
                    self.assertNotIn("unsafe", policy)
                    self.assertEqual(web.request("GET", path, headers={})[0], 401)
                (editor / "late.js").write_text("late")
                for path in ("/../models/sound.tdf", "/%2e%2e/models/sound.tdf", "//etc/passwd", "/parts", "/parts/",
                             "/notes.cpp", "/secret.txt", "/late.js", "/index.html/", "/index.html%00"):
                    self.assertEqual(web.request("GET", path)[0], 404, path)

    def test_an_installation_without_the_editor_says_how_to_get_it(self):
        with tempfile.TemporaryDirectory() as place, Folder() as folder:
            alone = pathlib.Path(place, "zev")
            shutil.copy(ZEV, alone)
            with Web(folder, program=str(alone)) as web:
                status, headers, sentence = web.request("GET", "/")
                self.assertEqual((status, headers["Content-Type"]), (404, "text/plain; charset=utf-8"))
                self.assertIn("Install nodejs and npm, and build zev again", sentence)
                self.assertEqual(web.request("GET", "/favicon.ico", headers={})[0], 204)
                self.assertEqual(web.call("hello")["name"], "zev")
                self.assertEqual(web.end()[1],
                                 "zev: this installation has no web editor; the address says how to get it\n")

    def test_a_folder_without_a_page_is_no_web_editor(self):
        with Folder() as folder:
            for web, sentence in ((folder.models, "there is no index.html in"), (folder.path / "none", "cannot read the folder")):
                done = subprocess.run([ZEV, "serve", "--rules", RULES, "--no-recovery", "--http", "0", "--web", str(web)],
                                      capture_output=True, text=True, timeout=PATIENCE)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertIn(sentence, done.stderr)

    def test_other_clients_hear_of_an_edit_with_its_effect(self):
        with Folder() as folder, Web(folder) as web:
            document = web.call("hello")["documents"][0]["document"]
            events = Events(web)
            web.call("edit", document=document, revision=0, edits=title("heard"), client="tab 1")
            event = events.next()
            self.assertEqual(event["method"], "changed")
            self.assertEqual((event["params"]["revision"], event["params"]["client"]), (1, "tab 1"))
            self.assertEqual(event["params"]["result"]["effect"]["values"][0]["after"], "heard")
            web.call("save", document=document)
            self.assertEqual(events.next()["params"]["cause"], "save")
            web.call("close", document=document)
            self.assertEqual(events.next()["method"], "closed")
            events.drop()

    def test_of_clients_that_race_on_a_revision_one_wins(self):
        with Folder() as folder, Web(folder) as web:
            document = web.call("hello")["documents"][0]["document"]
            for revision in range(5):
                with concurrent.futures.ThreadPoolExecutor(8) as pool:
                    answers = list(pool.map(lambda number: web.answer("edit", document=document, revision=revision,
                                                                      edits=title(f"{revision} {number}")), range(8)))
                winners = [one for one in answers if "result" in one]
                losers = [one["error"] for one in answers if "error" in one]
                self.assertEqual(len(winners), 1)
                self.assertEqual({(one["code"], one["data"]["revision"]) for one in losers}, {(-32001, revision + 1)})

    def test_clients_that_go_away_in_the_middle_of_a_stream_free_their_place(self):
        with Folder() as folder, Web(folder) as web:
            document = web.call("hello")["documents"][0]["document"]
            streams = [Events(web) for _ in range(128)]
            late = Events(web)
            self.assertEqual(late.status, 503)
            late.drop()
            for stream in streams[1:]:
                stream.drop()
            web.call("edit", document=document, revision=0, edits=title("still heard"))
            self.assertEqual(streams[0].next()["params"]["revision"], 1)
            for attempt in range(PATIENCE):
                again = Events(web)
                if again.status == 200:
                    break
                again.drop()
                threading.Event().wait(0.5)
            self.assertEqual(again.status, 200)
            again.drop()
            streams[0].drop()

    def test_bodies_that_are_too_long_are_refused(self):
        with Folder() as folder, Web(folder) as web:
            with contextlib.closing(http.client.HTTPConnection(web.host, web.port, timeout=PATIENCE)) as connection:
                with contextlib.suppress(BrokenPipeError, ConnectionResetError):
                    connection.request("POST", "/rpc", iter([b" " * 1_000_000] * 20), web.headers(), encode_chunked=True)
                    self.assertEqual(connection.getresponse().status, 413)
            self.assertEqual(web.call("hello")["name"], "zev")

    def test_a_request_that_is_broken_is_refused_and_ends_its_connection(self):
        with Folder() as folder, Web(folder) as web:
            json_type = "Content-Type: application/json"
            call = json.dumps(web.message("hello")).encode()
            post = "POST /rpc HTTP/1.1"
            once = "A request says how long it is once, with a number in Content-Length."
            cases = [
                (post, (json_type, "Content-Length: abc"), call, 400, once),
                (post, (json_type, "Content-Length: -1"), call, 400, once),
                (post, (json_type, "Content-Length: 1e2"), call, 400, once),
                (post, (json_type, "Content-Length: "), call, 411, "A request says how long it is, with Content-Length."),
                (post, (json_type, "Content-Length: " + "9" * 30), call, 400, once),
                (post, (json_type, f"Content-Length: {len(call)}", "Content-Length: 2"), call, 400, once),
                (post, (json_type, f"Content-Length: {len(call)}", "Transfer-Encoding: chunked"), call, 400, once),
                (post, (json_type, "Transfer-Encoding: gzip"), call, 400, once),
                (post, (json_type,), call, 411, "A request says how long it is, with Content-Length."),
                (post, (json_type, "Transfer-Encoding: chunked"), b"zz\r\n" + call, 400,
                 "The request has not come as a whole."),
                (post, ("Content-Type: text/plain", f"Content-Length: {len(call)}"), call, 415,
                 "A request has the type application/json."),
                ("GET /rpc HTTP/1.1", (), b"", 405, "Here a request has the method POST."),
                ("PUT /schema HTTP/1.1", ("Content-Length: 2",), b"{}", 405, "Here a request has the method GET, HEAD."),
                ("DELETE /enter HTTP/1.1", (), b"", 405, "Here a request has the method GET, HEAD, POST."),
                ("POST /nothing HTTP/1.1", ("Content-Length: 2",), b"{}", 404, "There is no such page."),
                ("BREW /rpc HTTP/1.1", (), b"", 400, "This is no request."),
                ("GET /" + "a" * 10_000 + " HTTP/1.1", (), b"", 414, "The address is too long."),
            ]
            for line, headers, body, status, sentence in cases:
                with self.subTest(line=line[:40], headers=headers):
                    answer = web.raw(line, *headers, body=body)
                    self.assertEqual(int(answer.split()[1]), status, answer)
                    self.assertTrue(answer.endswith(f"\r\n\r\n{sentence}\n"), answer)
                    self.assertIn("\r\nConnection: close\r\n", answer)
            self.assertIn("\r\nAllow: POST\r\n", web.raw("GET /rpc HTTP/1.1"))
            # A message that is announced as longer, although its beginning is a message by itself.
            short = web.raw(post, json_type, f"Content-Length: {len(call) + 1}", body=call, ends=True)
            self.assertEqual(int(short.split()[1]), 400)
            self.assertIn("The request has not come as a whole.", short)
            long = web.raw(post, json_type, "Content-Length: 20000000")
            self.assertEqual(int(long.split()[1]), 413)
            self.assertEqual(json.loads(long.split("\r\n\r\n")[1])["error"]["code"], -32003)
            self.assertEqual(web.call("hello")["name"], "zev")

    def test_a_body_that_nobody_reads_is_not_the_next_request(self):
        with Folder() as folder, Web(folder) as web:
            hidden = f"GET /enter HTTP/1.1\r\nHost: {web.host}:{web.port}\r\n\r\n".encode()
            length = f"Content-Length: {len(hidden)}"
            for line, header, status in (("POST /rpc HTTP/1.1", "Origin: http://evil.example", 403),
                                         ("POST /rpc HTTP/1.1", "Content-Type: text/plain", 415),
                                         ("GET /schema HTTP/1.1", "Accept: */*", 200)):
                answer = web.raw(line, header, length, body=hidden)
                self.assertEqual(int(answer.split()[1]), status)
                self.assertEqual(answer.count("HTTP/1.1 "), 1)

    def test_a_signal_ends_the_server_with_its_streams(self):
        with Folder() as folder, Web(folder) as web:
            document = web.call("hello")["documents"][0]["document"]
            web.call("edit", document=document, revision=0, edits=title("unsaved"))
            events = Events(web)
            self.assertEqual(web.end()[0], 0)
            self.assertIsNone(events.next())
            events.drop()
            with Web(folder) as again:
                (left,) = again.call("hello")["recoverable"]
                again.call("recover", recovery=left["recovery"])

    def test_other_addresses_need_a_token_file_that_only_its_owner_can_read(self):
        with Folder() as folder:
            def fails(*options):
                done = subprocess.run([ZEV, "serve", "--rules", RULES, "--no-recovery", *options], capture_output=True,
                                      text=True, timeout=PATIENCE)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                return done.stderr

            self.assertIn("give --token-file FILE", fails("--http", "0.0.0.0:0"))
            self.assertIn("is no address", fails("--http", "port"))
            token = folder.path / "token"
            token.write_text("0123456789abcdef\n")
            token.chmod(0o644)
            self.assertIn("chmod 600", fails("--http", "0", "--token-file", str(token)))
            token.chmod(0o600)
            with Web(folder, "--token-file", str(token)) as web:
                self.assertEqual(web.token, "0123456789abcdef")
                web.call("hello")
            token.write_text("short")
            self.assertIn("holds no token", fails("--http", "0", "--token-file", str(token)))


class TheSchema(unittest.TestCase):
    def test_holds_for_every_message_of_the_unit_tests(self):
        count = 0
        for name in MESSAGES:
            lines = pathlib.Path(name).read_text(encoding="utf-8").splitlines()
            for request, answer in zip(lines[::2], lines[1::2]):
                SCHEMA.hold_answer(json.loads(request), json.loads(answer))
                count += 1
        self.assertEqual(bool(count), bool(MESSAGES))

    def test_refuses_what_nobody_has_described(self):
        good = {"path": "/Case", "reason": "overridden"}
        SCHEMA.hold("waiting", good)
        for bad in ({**good, "new": 1}, {**good, "reason": "x"}, {"path": "/Case"}, {**good, "value": 1}):
            with self.assertRaises(jsonschema.ValidationError):
                SCHEMA.hold("waiting", bad)
        SCHEMA.hold("waiting", {**good, "new": 1}, strict=False)


if __name__ == "__main__":
    done = unittest.main(argv=sys.argv[:1], exit=False, verbosity=1).result
    print(f"{SCHEMA.held} records held to the schema")
    sys.exit(0 if done.wasSuccessful() else 1)
