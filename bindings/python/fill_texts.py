#!/usr/bin/env python3
"""Copies the files of the Python package and fills in what the library's headers say.

Usage: fill_texts.py --to FOLDER --headers HEADER... --files FILE...

In a file, {{LookOptions.twoSided}} stands for the comment of that member, and {{VisibleMap}} for
that of the class, with the blanks of the line before each line that follows. A name that has no
comment is an error, so that the texts of both languages cannot part.
"""

import argparse
import re
import sys
from pathlib import Path

SCOPE = re.compile(r"^\s*(?:struct|class|enum class)\s+(?:LUMIVANE_\w+\s+)?(\w+)[^;]*\{")
MEMBER = re.compile(r"([A-Za-z_]\w*)\s*(?:\{[^{}]*\}|=[^;,]*)?\s*[;,(]|^\s*(\w+)\s*,?\s*$")
WRAPPED = re.compile(r"(\w+)\s*=\s*$")  # the value and the comment stand in the next line
FUNCTION = re.compile(r"(\w+)\s*\(")
MARK = re.compile(r"^(?P<indent>[ ]*)(?P<before>.*?)\{\{(?P<name>[\w.]+)\}\}(?P<after>.*)$", re.M)


def plain(comment):
    """A comment without Doxygen's marks."""
    text = " ".join(line.strip() for line in comment).strip()
    text = re.sub(r"\s*\\(throws|param|return)\b.*", "", text)
    return re.sub(r"`(\w+)::(\w+)`", r"`\1.\2`", text)


class Header:
    """Comments by name, those of members with the names of the classes around them."""

    def __init__(self, path):
        self.comments, self.scopes, self.pending, self.last = {}, [], [], None
        self.depth = self.member_indent = 0
        for line in path.read_text(encoding="utf-8").splitlines():
            self.read(line)

    def keep(self, name, comment):
        if name and comment:
            full = ".".join([s for s, _ in self.scopes] + [name])
            self.comments.setdefault(full, plain(comment))

    def read(self, line):
        code, _, comment = line.partition("///")
        comment = comment.strip()
        is_trailing = comment.startswith("<")
        if not code.strip():  # a line of comment alone, or none
            if is_trailing:
                self.trail(comment[1:])
            elif comment and self.last is not None and len(code) > self.member_indent + 2:
                self.trail(comment)
            elif "///" in line:
                self.pending.append(comment)
            elif not line.strip():
                self.pending, self.last = [], None
            return
        if self.last is not None and is_trailing and self.name_of(code) is None:
            self.trail(comment[1:])  # of a member whose value is wrapped
            return
        self.last = None
        self.member_indent = len(code) - len(code.lstrip())
        scope = SCOPE.match(code)
        name = scope.group(1) if scope else self.name_of(code)
        if scope:
            self.keep(name, self.pending)
            self.pending = []
        elif name:
            # A comment before a line goes with it even if there is one behind it, too.
            self.keep(name, self.pending + ([comment[1:]] if is_trailing else []))
            if is_trailing or WRAPPED.search(code):
                self.last = ".".join([s for s, _ in self.scopes] + [name])
            self.pending = []
        if scope:
            self.scopes.append((name, self.depth))
        self.depth += code.count("{") - code.count("}")
        while self.scopes and self.depth <= self.scopes[-1][1]:
            self.scopes.pop()

    def trail(self, comment):
        if self.last in self.comments:
            self.comments[self.last] += " " + plain([comment])
        elif self.last is not None:
            self.comments[self.last] = plain([comment])

    @staticmethod
    def name_of(code):
        if re.match(r"\s*(namespace|#|using|friend|public|private|template|\}|//)", code):
            return None
        found = FUNCTION.search(code) or MEMBER.search(code) or WRAPPED.search(code)
        return next((g for g in found.groups() if g), None) if found else None


def comments_of(headers):
    comments = {}
    for header in headers:
        for name, text in Header(header).comments.items():
            comments.setdefault(name, text)
    return comments


def filled(text, comments, path):
    def fill(match):
        if match["name"] not in comments:
            sys.exit(f"{path}: no header has a comment of {match['name']}")
        return wrapped(match, comments[match["name"]])

    while MARK.search(text):
        text = MARK.sub(fill, text)
    return text


def wrapped(match, comment, width=99):
    """The line with the comment in place of the mark, as lines that are not too long. What starts
    with a name goes on further to the right."""
    indent = match["indent"]
    further = indent + "    " if match["before"].startswith("`") else indent
    lines, line = [], indent
    for word in (match["before"] + comment + match["after"]).split():
        if line.strip() and len(line) + 1 + len(word) > width:
            lines.append(line)
            line = further
        line += (" " if line.strip() else "") + word
    return "\n".join(lines + [line])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--to", type=Path, required=True)
    parser.add_argument("--headers", nargs="+", type=Path, required=True)
    parser.add_argument("--files", nargs="+", type=Path, required=True)
    arguments = parser.parse_args()
    comments = comments_of(arguments.headers)
    arguments.to.mkdir(parents=True, exist_ok=True)
    for file in arguments.files:
        text = filled(file.read_text(encoding="utf-8"), comments, file)
        (arguments.to / file.name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
