"""Small deliberate changes to one source file: what a test that is worth something must notice."""

import re
from dataclasses import dataclass

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}

# A whole statement on one line that is a call: `foo(a, b);`, `a->b(c);`, with or without a result.
CALL = re.compile(r"^\s+(?:[\w:.*\[\]]+(?:->|\.))*\w+\([^;{}]*\);(?:\s*//.*)?$")
TOKEN = re.compile(r'"(?:\\.|[^"\\])*"|//.*|(?<![\w.])\d+(?![\w.])|(?<=\s)(?:<=|>=|==|!=|<|>)(?=\s)'
                   r"|(?<=\s)(?:&&|\|\||[|&+-])(?=\s)|\+\+|--|(?<=[(\s])!(?=\w)|\bTRUE\b|\bFALSE\b")
SWAPS = {"&&": "||", "||": "&&", "|": "&", "&": "|", "+": "-", "-": "+", "++": "--", "--": "++",
         "!": "", "TRUE": "FALSE", "FALSE": "TRUE"}

# What keeps a tree's deletion inside of the tree is never changed: a program that climbs to ".."
# deletes whatever it can reach, and so the desk on which it runs.
UNTOUCHABLE = ("isSelfOrParent", 'strcmp(name, ".', "join(work, base, entry", "makeBase", "base->text",
               "cutInto")


@dataclass(frozen=True)
class Change:
    path: str
    line: int  # from 1
    what: str
    before: str
    after: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.what}: {self.before.strip()} => {self.after.strip()}"


def changes_of(path, text):
    """All changes to a file, in the order of its lines."""
    lines = text.split("\n")
    found = []
    for index, line in enumerate(lines):
        if is_code(line):
            found += swaps_in(path, index, line)
            found += call_changes(path, index, lines)
    return found


def is_code(line):
    bare = line.strip()
    if any(text in line for text in UNTOUCHABLE):
        return False
    return bare and not bare.startswith(("//", "#", "static_assert", "template", "using ", "typedef"))


def swaps_in(path, index, line):
    for token in TOKEN.finditer(line):
        replaced = swap(token.group())
        if replaced is not None:
            after = line[:token.start()] + replaced[1] + line[token.end():]
            yield Change(path, index + 1, replaced[0], line, after)


def swap(token):
    if token in COMPARISONS:
        return "swapped comparison", COMPARISONS[token]
    if token in SWAPS:
        return "inverted operator or flag", SWAPS[token]
    if token.isdigit():
        return "off-by-one constant", str(int(token) + 1)
    return None


def call_changes(path, index, lines):
    line = lines[index]
    if not CALL.match(line) or line.lstrip().startswith("return"):
        return
    indent = line[:len(line) - len(line.lstrip())]
    yield Change(path, index + 1, "dropped call", line, indent + ";")
    if index + 1 < len(lines) and CALL.match(lines[index + 1]):
        following = lines[index + 1]
        if following.startswith(indent) and following != line:
            yield Change(path, index + 1, "exchanged order of two calls",
                         line + "\n" + following, following + "\n" + line)
