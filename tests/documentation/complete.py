#!/usr/bin/env python3
"""Sees that the rule reference leaves nothing out: complete.py SOURCE_FOLDER

Every key of a rule file and every sentence of a diagnostic in the sources of the rule language must be in
docs/rule-reference.md, where another test checks that its example is right. So a new key or sentence needs an example.
The sources are searched as text: keys in the tables whose rows begin `{"Name", `, sentences in all literals that
contain a blank. A test of the rule language compares the tables of functions.
"""
import pathlib
import re
import sys

# Sentences that an example cannot show on every machine, or only with a gigabyte.
NOT_SHOWN = {
    "it cannot be opened", "it cannot be read to its end", "it is larger than ", "the text is larger than ",
    "no rule file is given", "no text of a rule file is given", "the file has more than ", " YAML nodes; divide it into several files",
    "the templates that objects use have more than ", " YAML nodes, counted once for each use", "... uses ",
    # Only with a long pattern, or without the definitions of units.
    "it is longer than ", " bytes", "as a map of unit to factor",
    "the units library cannot read its definitions of units; install udunits2 whole, or write the conversions ",
    # Only in the C++ interface.
    '" is not a path pattern: ', "the severity of '", "' cannot be changed: it keeps rules from being loaded",
    # A hint for a message of the YAML library, and messages that are guards against what does not happen.
    "did not find expected <document start>", "found undefined alias", "the expression ends too early",
    # Messages of the YAML library, by which the mistake is found, and what is said when none is.
    "mapping values are not allowed in this context", "did not find expected key", "did not find expected ','",
    "did not find expected '-' indicator", "could not find expected ':'", "found unexpected end of stream",
    "found character that cannot start any token", "found unknown escape character", "found a tab character",
    "block sequence entries are not allowed in this context", "while scanning a simple key",
    "; check the indentation, and put quotes around a value that begins with a quote, '{', '[' or '*', or that ",
    "contains ': ' or ' #'", ", and here also around one with '[', '{' or ','",
    # Pieces of sentences that are divided between two lines of the sources.
    "this is not YAML: a value that begins with '!' is a tag for YAML; write 'not' for the operator, and put ",
    "a value that begins with '!' is a tag for YAML; write 'not' for the operator, and put quotes around a text ",
    "around a text that begins with '!'", "that begins with '!'",
    "this line is left from a merge; keep one of the two versions, and remove the lines that begin ",
    "with '<<<<<<<', '=======' and '>>>>>>>'", "Key: value",
    # The work of the YAML library when it met an error.
    "while parsing a flow", "while parsing a block", "while scanning a quoted scalar",
    "'\\' must be followed by a character", "... calls ",
    # A part of the key by which warnings with one cause are joined, which is never printed.
    " of parameters",
}

TABLE_ROW = re.compile(r'^\s*\{"([^"\\]+)", (?:\d|\w+Key::)', re.MULTILINE)
# Another test compares the table of functions with the reference.
FUNCTION_TEXT = re.compile(r'\.(?:signature|help) = (?:"[^"]*"\s*)+|^constexpr std::string_view \w+ = "[^"]*";', re.MULTILINE)
# The words of other languages, each row with what serves their purpose.
FOREIGN_WORDS = re.compile(r'^(\s*)\{"[a-z0-9 ]+",', re.MULTILINE)
ATTRIBUTE = re.compile(r'inline constexpr std::string_view \w+ = "([^"]+)"')
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')


def code(path):
    text = path.read_text(encoding="utf-8")
    return "\n".join(line for line in text.split("\n") if not re.match(r"\s*(//|#include)", line))


def main():
    root = pathlib.Path(sys.argv[1])
    reference = (root / "docs/rule-reference.md").read_text(encoding="utf-8")
    # The words for rules are no diagnostics.
    sources = sorted(path for path in (root / "RuleLanguage/src").glob("*/*.cpp") if path.name != "Words.cpp")
    sources += sorted((root / "PhysicsInterfaces/src/paths").glob("PathPattern*.cpp"))
    texts = {path: FUNCTION_TEXT.sub("", code(path)) for path in sources}
    habits = root / "RuleLanguage/src/expression/Habits.cpp"
    texts[habits] = FOREIGN_WORDS.sub(r"\1{", texts[habits])

    names = set(ATTRIBUTE.findall(code(root / "PhysicsInterfaces/include/tarn/RuleAttributes.h")))
    sentences = set()
    for text in texts.values():
        names.update(TABLE_ROW.findall(text))
        for literal in LITERAL.findall(text):
            literal = literal.replace('\\"', '"').replace("\\\\", "\\")
            if " " in literal.strip() and "\\" not in literal.replace("'\\", ""):
                sentences.add(literal)

    missing = sorted(name for name in names if f"`{name}" not in reference and f"### {name}\n" not in reference)
    missing += sorted(sentence for sentence in sentences - NOT_SHOWN if sentence not in reference)
    for one in missing:
        print(f"docs/rule-reference.md lacks: {one}")
    print(f"{len(names)} keys, {len(sentences)} sentences, {len(missing)} missing")
    sys.exit(1 if missing or len(names) < 40 or len(sentences) < 100 else 0)


if __name__ == "__main__":
    main()
