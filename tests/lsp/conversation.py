"""Holds recorded conversations with the language server.

    conversation.py ZEV RULES CONVERSATION...

A conversation is a text of messages, one a line: "> " before what the editor sends, "< " before what the server answers
until it rests. "$ROOT" is the URI of a folder with a copy of RULES. Lines that begin with "#" are comments. With
TARN_UPDATE_GOLDEN=1 the answers are written into the conversations instead of compared.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


class Server:
    """The server, and the messages that it has sent."""

    def __init__(self, program):
        self.process = subprocess.Popen([program, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def send(self, text):
        body = text.encode()
        self.process.stdin.write(b"Content-Length: %d\r\n\r\n" % len(body) + body)
        self.process.stdin.flush()

    def receive(self):
        length = 0
        while True:
            line = self.process.stdout.readline()
            if not line:
                return None
            if line == b"\r\n":
                break
            name, _, value = line.partition(b":")
            if name.lower() == b"content-length":
                length = int(value)
        return self.process.stdout.read(length).decode()

    def until_rest(self):
        """All messages until the server has answered and rests.

        It answers a request of a method that does not exist at once, and then it publishes. So the answer to the second
        one comes after everything else.
        """
        messages = []
        for turn in ("first", "second"):
            self.send(json.dumps({"jsonrpc": "2.0", "id": "rest-" + turn, "method": "$/rest"}))
            while True:
                message = self.receive()
                if message is None:
                    return messages
                if json.loads(message).get("id") == "rest-" + turn:
                    break
                messages.append(message)
        return messages


def hold(program, rules, conversation, update):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder).resolve() / "plant"
        shutil.copytree(rules, root)
        uri = root.as_uri()
        server = Server(program)
        result = []
        sent = [line for line in conversation.read_text().splitlines() if not line.startswith(("< ", "# ends with "))]
        for line in sent:
            result.append(line)
            if not line.startswith("> "):
                continue
            message = line[2:].replace("$ROOT", uri)
            server.send(message)
            if '"method":"exit"' in message.replace(" ", ""):
                break
            for answer in server.until_rest():
                result.append("< " + answer.replace(uri, "$ROOT"))
        server.process.stdin.close()
        status = server.process.wait(timeout=30)
        version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[1]
        text = "\n".join([*result, f"# ends with {status}", ""])
        text = text.replace(f'"version":"{version}"', '"version":"$VERSION"')
    if update:
        conversation.write_text(text)
        return True
    if text == conversation.read_text():
        return True
    expected = conversation.read_text().splitlines()
    for number, (is_line, was_line) in enumerate(zip(text.splitlines(), expected), 1):
        if is_line != was_line:
            print(f"{conversation}:{number}:\n  expected: {was_line}\n  actual:   {is_line}")
            break
    else:
        print(f"{conversation}: the conversations differ in length")
    return False


def main():
    program, rules, *conversations = sys.argv[1:]
    update = os.environ.get("TARN_UPDATE_GOLDEN") == "1"
    if update and os.environ.get("CI"):
        sys.exit("CI does not update conversations")
    if not conversations:
        sys.exit("no conversation is given")
    results = [hold(program, rules, pathlib.Path(one), update) for one in conversations]
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
