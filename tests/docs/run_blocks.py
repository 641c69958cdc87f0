#!/usr/bin/env python3
"""Runs the code blocks of a document, so that what a reader copies works.

Usage: run_blocks.py ROOT DOCUMENT --programs FOLDER --compiler CXX --flags "FLAGS"

All blocks of a document share one scratch folder, which holds scenes/ and tests/data/, and they run
in order, so that a block may use what an earlier one made. By its first line a block is

    ```sh     run by bash, stopped at the first failure, with our programs in PATH
    ```cpp    compiled with warnings as errors: a program, or lines of a function
    ```json   parsed; after <!-- schema: scene -->, shot or map also checked against it
    ```csv    checked for rows of one length; after <!-- file: NAME --> kept for later blocks
    ```python run by one interpreter for the whole document, where --python names the built package
    ```text   anything that is not to be run

A comment before a block may say otherwise:

    <!-- stands in: FILE -->      the block's lines stand in FILE, which is built or run elsewhere
    <!-- only parsed: REASON -->  a sh block that cannot run here; bash reads it
    <!-- runs with: NAME, ... --> a block that runs where there are these programs, or modules that the
                                  interpreter of --python finds, else it is only parsed
    <!-- file: NAME -->           the block is kept under this name in the scratch folder; if it is
                                  sh or python, later blocks run it
"""

import argparse
import csv
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

FENCE = re.compile(r"^(?:<!-- (?P<key>[a-z ]+): (?P<value>[^\n]+?) -->\n+)?"
                   r"^```(?P<language>[^\n]*)\n(?P<body>.*?)^```$", re.M | re.S)


class Fault(Exception):
    pass


def run(command, folder, environment, text=None):
    done = subprocess.run(command, cwd=folder, env=environment, input=text, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=900)
    if done.returncode != 0:
        raise Fault(f"ended with {done.returncode}:\n{done.stdout[-4000:]}")


# Runs what comes in, each block with its length before it, in one namespace.
PYTHON = """
import os, sys, traceback
answers = os.fdopen(os.dup(2), "wb")
os.dup2(1, 2)  # what a block prints is no answer
names = {"__name__": "__main__"}
while True:
    length = sys.stdin.buffer.readline()
    if not length:
        break
    block = sys.stdin.buffer.read(int(length)).decode()
    try:
        exec(compile(block, "block", "exec"), names)
        answer = ""
    except BaseException:
        answer = traceback.format_exc()
    answers.write(b"%d\\n%s" % (len(answer.encode()), answer.encode()))
    answers.flush()
"""


class Document:
    def __init__(self, arguments, folder):
        self.root, self.folder, self.arguments = arguments.root, folder, arguments
        self.environment = dict(os.environ)
        programs = ":".join(str(Path(p).resolve()) for p in arguments.programs)
        self.environment["PATH"] = programs + ":" + self.environment["PATH"]
        if arguments.python:
            self.environment["PYTHONPATH"] = str(arguments.python.resolve())
        self.interpreter = None
        (folder / "bin").mkdir()  # so that sh blocks take the interpreter that has the package
        (folder / "bin/python3").symlink_to(sys.executable)
        self.environment["PATH"] = f"{folder}/bin:" + self.environment["PATH"]
        for name in ("scenes", "tests", "examples", "docs", "scripts"):
            (folder / name).symlink_to(self.root / name)

    def is_there(self, name):
        if shutil.which(name):
            return True
        command = [sys.executable, "-c", f"import {name}"]
        return self.arguments.python is not None and subprocess.run(
            command, env=self.environment, capture_output=True).returncode == 0

    def is_only_parsed(self, key, value):
        return key in ("only parsed", "file") or (
            key == "runs with" and not all(self.is_there(name) for name in value.split(", ")))

    def sh(self, body, key, value):
        if self.is_only_parsed(key, value):
            run(["bash", "-n"], self.folder, self.environment, body)
        else:
            run(["bash", "-euo", "pipefail"], self.folder, self.environment, body)

    def python(self, body, key, value):
        if not self.arguments.python or self.is_only_parsed(key, value):
            compile(body, "block", "exec")
            return
        if self.interpreter is None:
            self.interpreter = subprocess.Popen(
                [sys.executable, "-c", PYTHON], cwd=self.folder, stdin=subprocess.PIPE,
                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                env=self.environment)
        block = body.encode()
        self.interpreter.stdin.write(b"%d\n%s" % (len(block), block))
        self.interpreter.stdin.flush()
        length = self.interpreter.stderr.readline()
        answer = self.interpreter.stderr.read(int(length or 0)).decode()
        if answer or not length:
            raise Fault(answer[-4000:] or "the interpreter has ended")

    def end(self):
        if self.interpreter is not None:
            self.interpreter.stdin.close()
            self.interpreter.wait()

    def cpp(self, body, key, value):
        if "int main" not in body:
            body = "#include <lumivane/lumivane.h>\nvoid block() {\n" + body + "}\n"
        file = self.folder / "block.cpp"
        file.write_text(body)
        run([self.arguments.compiler, "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Werror",
             "-Wno-unused", "-Wno-delete-non-virtual-dtor", *shlex.split(self.arguments.flags), str(file)],
            self.folder, self.environment)

    def json(self, body, key, value):
        document = json.loads(body)
        if key == "schema":
            from jsonschema import Draft202012Validator
            schema = json.loads((self.root / f"docs/schema/{value}.schema.json").read_text())
            Draft202012Validator(schema).validate(document)

    def csv(self, body, key, value):
        rows = list(csv.reader(body.splitlines()))
        if len({len(row) for row in rows}) != 1:
            raise Fault("rows of different lengths")

    def text(self, body, key, value):
        pass

    def block(self, language, body, key, value):
        if key == "stands in":
            if body.strip() not in (self.root / value).read_text():
                raise Fault(f"{value} does not hold these lines")
            return
        if key == "file":
            (self.folder / value).write_text(body)
        known = {"sh": self.sh, "cpp": self.cpp, "json": self.json, "csv": self.csv,
                 "python": self.python, "text": self.text}
        if language not in known:
            raise Fault(f'"{language}" is no language that can be checked')
        known[language](body, key, value)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=Path)
    parser.add_argument("document", type=Path)
    parser.add_argument("--programs", nargs="+", default=[])
    parser.add_argument("--python", type=Path, help="where the Python package has been built")
    parser.add_argument("--compiler", default="c++")
    parser.add_argument("--flags", default="")
    arguments = parser.parse_args()
    arguments.root = arguments.root.resolve()

    text = arguments.document.read_text()
    faults = count = 0
    with tempfile.TemporaryDirectory() as scratch:
        document = Document(arguments, Path(scratch))
        for match in FENCE.finditer(text):
            count += 1
            line = text.count("\n", 0, match.start("body"))
            try:
                document.block(match["language"].strip(), match["body"], match["key"],
                               match["value"])
            except (Fault, ValueError, OSError, subprocess.TimeoutExpired) as fault:
                faults += 1
                print(f"{arguments.document}:{line}: {fault}")
            except Exception as fault:  # a schema's
                faults += 1
                print(f"{arguments.document}:{line}: {type(fault).__name__}: {str(fault)[:400]}")
        document.end()
    fences = len(re.findall(r"^ *```", text, re.M))
    if fences != 2 * count:
        faults += 1
        print(f"{arguments.document}: {fences} fence lines, but {count} blocks were understood")
    print(f"{arguments.document.name}: {count} blocks")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
