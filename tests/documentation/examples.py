#!/usr/bin/env python3
"""Runs the examples of a document and compares what it shows with what comes out.

    examples.py --zev PROGRAM --ask PROGRAM [--in FOLDER] [--update] DOCUMENT

Commands of `console` blocks run in a new, empty folder, or in FOLDER when one is given. The word behind the language
of a fenced block says what it is:

    yaml rules        a whole rule file, flow.rules.yaml, in force until the next one. It has no faults unless a
                      `text lint` comes before that.
    text lint         what `zev lint` prints for the rules in force.
    text model        the model in force until the next one: flow.tdf.
    text findings     what `zev validate` prints for the rules and the model in force; `nothing` for nothing.
    text reviewed     codes and sentences of what `zev validate` finds for the rules and the model in force.
    text asked        lines `question => answer` about the rules and the model in force; see ask.cpp for the questions.
    text expressions  a line `at PATH`, and under it lines `expression => value`, with the rules and the model in
                      force. The form of the value says what the expression is evaluated as: `true` and `false` as a
                      condition, `[a, b]` as a list, anything else as a text, which is in quotes unless it is a
                      number.
    yaml file=NAME, text file=NAME
                      a file of this content, for the commands that follow. The lines of a second block of the same
                      name replace the first.
    console           commands behind `$ `, and what they print. `zev` is found wherever it has been built. Lines
                      behind `ZEV> ` are typed into the command above them, and stand where a terminal shows them. The
                      same holds for what is behind a prompt of `zev edit`, such as `/Case> `, and behind a question
                      that ends with `[y/N] ` or the like; then the command runs on a terminal of its own.
                      A line `...` replaces one or more lines that are left out.

`cpp`, `cmake` and `text form` are not run; protocol.py runs `rpc`. Any other block is an error, so that nothing goes untested by a slip. With
--update the shown output is replaced by the real one; review it as you would review code. A block with lines left out
is for you to edit.
"""
import argparse
import fcntl
import itertools
import json
import os
import pathlib
import pty
import re
import struct
import subprocess
import sys
import tempfile
import termios

FENCE = re.compile(r"^( *)```(.*)$")
PROMPT = "ZEV> "
LEFT_OUT = "..."
# `zev edit` shows this on a terminal before it waits for a line.
EDIT_PROMPT = re.compile(r"(?:/[^>\n]*(?<!-)> |[^\n]*\[y/N[^]\n]*\] )")


class Block:
    def __init__(self, kind, indent, first, lines):
        self.kind, self.indent, self.first, self.lines = kind, indent, first, lines

    @property
    def text(self):
        return "".join(line + "\n" for line in self.lines)


def read_blocks(lines):
    """The fenced blocks of a document, `first` being the index of the first line within the fence."""
    blocks, opened = [], None
    for number, line in enumerate(lines):
        fence = FENCE.match(line)
        if opened is None and fence:
            opened = (fence.group(2).strip(), len(fence.group(1)), number + 1)
        elif opened is not None and fence and not fence.group(2):
            kind, indent, first = opened
            blocks.append(Block(kind, indent, first, [text[indent:] for text in lines[first:number]]))
            opened = None
    if opened is not None:
        sys.exit(f"line {opened[2]}: the block is not closed")
    return blocks


def as_on_a_terminal(output, typed):
    """The output of a program, with the input after its prompts."""
    before, *answers = output.split(PROMPT)
    return before + "".join(f"{PROMPT}{text}\n{answer}"
                            for text, answer in itertools.zip_longest(typed, answers, fillvalue=""))


def shows(block, real):
    """Whether a block shows these lines, all of them but those that a console block leaves out."""
    if block.kind != "console" or LEFT_OUT not in block.lines:
        return block.lines == real
    pattern = "".join(r"(?:.*\n)+?" if line == LEFT_OUT else re.escape(line) + r"\n" for line in block.lines)
    return re.fullmatch(pattern, "".join(line + "\n" for line in real)) is not None


class Examples:
    def __init__(self, zev, ask, folder):
        self.zev, self.ask, self.folder = zev, ask, pathlib.Path(folder)
        self.rules = self.model = None
        self.lint_shown = True
        self.answered = 0
        self.environment = dict(os.environ, LC_ALL="C.UTF-8")
        self.environment["PATH"] = f"{os.path.dirname(zev)}:{os.environ['PATH']}"

    def run(self, command, text=None):
        # The program `timeout` ends all that a command has started, where subprocess would end the shell alone.
        words = ["/bin/sh", "-c", command] if isinstance(command, str) else command
        done = subprocess.run(["timeout", "120", *words], input=text, cwd=self.folder, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode == 124:
            sys.exit(f"{words[-1]}: has not ended in two minutes")
        return done

    def dialogue(self, command, typed):
        """Returns what a terminal shows when a person types these lines, each when the program waits for one."""
        ours, theirs = pty.openpty()
        rows, columns = 24, 120
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        # The program ends, whatever happens, and this side with it.
        process = subprocess.Popen(["timeout", "120", "/bin/sh", "-c", command], cwd=self.folder, stdin=theirs,
                                   stdout=theirs, stderr=theirs, start_new_session=True,
                                   env=dict(self.environment, TERM="dumb", HOME=str(self.folder)))
        os.close(theirs)
        shown, waiting = b"", list(typed)
        while True:
            try:
                read = os.read(ours, 65536)
            except OSError:  # the other side is closed
                break
            if not read:
                break
            shown += read
            last = shown.rsplit(b"\n", 1)[-1].decode(errors="replace")
            if EDIT_PROMPT.fullmatch(last):
                os.write(ours, (waiting.pop(0) + "\n").encode() if waiting else b"\x04")
        process.wait()
        os.close(ours)
        return shown.decode().replace("\r\n", "\n")

    def fault(self, block, message):
        sys.exit(f"line {block.first}: {message}")

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def output(self, block, command):
        done = self.run(command)
        if done.returncode not in (0, 1):
            self.fault(block, f"{' '.join(command)} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
        self.answered += 1
        return done.stdout.splitlines()

    def lint(self, block):
        # The blocks are short, so most names in them have no use.
        command = [self.zev, "lint", "--rules", "flow.rules.yaml", "--severity", "unused-name=off"]
        return self.output(block, command)

    def reviewed(self, block):
        (line,) = self.output(block, [self.zev, "validate", "--rules", "flow.rules.yaml", "--format", "json", "flow.tdf"])
        found = json.loads(line)
        return [f"{one['code']}: {one['message']}" for one in found["findings"]] + [
            f"beta-message: {one['message']}" for one in found["beta"]]

    def questions(self, block, questions, extra_rules=()):
        done = self.run([self.ask, "flow.tdf", "flow.rules.yaml", *extra_rules], "".join(q + "\n" for q in questions))
        if done.returncode != 0:
            self.fault(block, done.stderr)
        self.answered += len(questions)
        return done.stdout.splitlines()

    def asked(self, block):
        questions = [line.split("=>")[0].rstrip() for line in block.lines]
        answers = self.questions(block, questions)
        width = max(map(len, questions))
        return [f"{q.ljust(width)} => {a}".rstrip() for q, a in zip(questions, answers)]

    def expressions(self, block):
        at = re.fullmatch(r"at (\S.*)", block.lines[0])
        if not at:
            self.fault(block, "the first line is not `at PATH`")
        rows = [re.split(r"\s+=>\s?", line, maxsplit=1) for line in block.lines[1:]]
        if any(len(row) != 2 for row in rows):
            self.fault(block, "a line is not `expression => value`")
        kinds, questions = [], []
        yaml = {"list": "Lists:\n", "check": "Checks:\n", "text": "Objects:\n  /Texts:\n    Parameters:\n"}
        for number, (expression, value) in enumerate(rows):
            kind = "check" if value in ("true", "false") else "list" if value.startswith("[") else "text"
            name = f"example {number}"
            quoted = expression.replace("'", "''")
            if kind == "text":
                yaml[kind] += f"      {name}: {{Parameter Type: String, Default Value: '= {quoted}'}}\n"
            else:
                yaml[kind] += f"  {name}: '{'= ' if kind == 'list' else ''}{quoted}'\n"
            kinds.append(kind)
            questions.append(f"{kind} {name} at {at.group(1)}")
        self.write("examples.yaml", "Rule Database: 1\n" + "".join(yaml[kind] for kind in sorted(set(kinds))))
        answers = self.questions(block, questions, ["examples.yaml"])
        width = max(len(row[0]) for row in rows)
        shown = [block.lines[0]]
        for (expression, value), kind, answer in zip(rows, kinds, answers):
            if kind == "text" and not re.fullmatch(r"-?\d[\d.e+-]*", answer):
                answer = f"'{answer}'"
            shown.append(f"{expression.ljust(width)} => {answer}")
        return shown

    def console(self, block):
        shown = []
        for number, line in enumerate(block.lines):
            if not line.startswith("$ "):
                continue
            below = list(itertools.takewhile(lambda text: not text.startswith("$ "), block.lines[number + 1:]))
            prompts = [EDIT_PROMPT.match(text) for text in below]
            if any(prompts):
                answers = [text[prompt.end():] for text, prompt in zip(below, prompts) if prompt]
                self.answered += 1
                shown += [line, *self.dialogue(line[2:], answers).splitlines()]
                continue
            typed = [text[len(PROMPT):] for text in below if text.startswith(PROMPT)]
            done = self.run(line[2:] + " 2>&1", "".join(text + "\n" for text in typed) if typed else None)
            self.answered += 1
            shown += [line, *(as_on_a_terminal(done.stdout, typed) if typed else done.stdout).splitlines()]
        return shown

    def real(self, block):
        """The lines that the block ought to have; None for a block that shows no output."""
        kind = block.kind
        if kind == "yaml rules":
            self.end_of_rules()
            self.rules, self.lint_shown = block, False
            self.write("flow.rules.yaml", block.text)
        elif kind == "text lint":
            self.lint_shown = True
            return self.lint(block)
        elif kind == "text model":
            self.model = block
            self.write("flow.tdf", block.text)
        elif kind == "text findings":
            found = self.output(block, [self.zev, "validate", "--rules", "flow.rules.yaml", "flow.tdf"])
            return found or ["nothing"]
        elif kind == "text reviewed":
            return self.reviewed(block)
        elif kind == "text asked":
            return self.asked(block)
        elif kind == "text expressions":
            return self.expressions(block)
        elif kind == "console":
            return self.console(block)
        elif " file=" in kind:
            self.write(kind.split("file=")[1], block.text)
        elif kind not in ("cpp", "cmake", "text form", "rpc"):
            self.fault(block, f"what is a block of the kind '{kind}'?")
        return None

    def end_of_rules(self):
        """Rules that are shown without faults have none."""
        if not self.lint_shown:
            found = self.lint(self.rules)
            if found:
                self.fault(self.rules, "these rules are shown as if nothing were wrong with them:\n" + "\n".join(found))
        self.lint_shown = True


def main():
    options = argparse.ArgumentParser()
    options.add_argument("--zev", required=True)
    options.add_argument("--ask", required=True)
    options.add_argument("--in", dest="folder")
    options.add_argument("--update", action="store_true")
    options.add_argument("document", type=pathlib.Path)
    given = options.parse_args()
    if given.update and os.environ.get("CI"):
        sys.exit("--update is for people, who then look at what has changed")

    lines = given.document.read_text(encoding="utf-8").split("\n")
    replaced, differing = [], 0
    with tempfile.TemporaryDirectory() as fresh:
        examples = Examples(os.path.abspath(given.zev), os.path.abspath(given.ask), given.folder or fresh)
        for block in read_blocks(lines):
            real = examples.real(block)
            if real is None or shows(block, real):
                continue
            differing += 1
            if LEFT_OUT not in block.lines:
                replaced.append((block, real))
            print(f"{given.document}:{block.first}: shown:", *block.lines, "but it is:", *real, "", sep="\n")
        examples.end_of_rules()

    if given.update:
        for block, real in reversed(replaced):
            indent = " " * block.indent
            lines[block.first:block.first + len(block.lines)] = [indent + line if line else "" for line in real]
        given.document.write_text("\n".join(lines), encoding="utf-8")
    print(f"{given.document.name}: {examples.answered} examples, blocks that differ: {differing}")
    open_ends = differing - len(replaced) if given.update else differing
    sys.exit(0 if examples.answered and not open_ends else 1)


if __name__ == "__main__":
    main()
