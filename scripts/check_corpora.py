#!/usr/bin/env python3
"""Checks that every file of expected results is read by a test.

Usage: scripts/check_corpora.py

Looks at LUMIVANE_VECTORS_DIR if set, else at tests/data/vectors; exits with 1 on a file that no
test registers, on a file of such tests that the program of all of them leaves out, or on an empty
folder.
"""

import os
import re
import sys
from pathlib import Path


def main():
    root = Path(__file__).resolve().parent.parent
    folder = Path(os.environ.get("LUMIVANE_VECTORS_DIR", root / "tests/data/vectors"))
    registered = set()
    listed = (root / "tests/CMakeLists.txt").read_text(encoding="utf-8")
    left_out = []
    for source in (root / "tests").rglob("*.cpp"):
        text = source.read_text(encoding="utf-8")
        name = str(source.relative_to(root / "tests"))
        if "VectorTests" in text and not name.startswith("support/") and f"  {name}\n" not in listed:
            left_out.append(name)
        registered |= set(re.findall(r'VectorTests\s+\w+\s*[({]\s*"(\w+)"', text))
        for argument_list in re.findall(r"//\s*vectors:\s*([\w ,]+)", text):
            registered |= set(re.findall(r"\w+", argument_list))
    files = sorted(path.stem for path in folder.glob("*.json"))
    missing = [name for name in files if name not in registered]
    for name in missing:
        print(f"no test reads {folder / (name + '.json')}")
    for name in left_out:
        print(f"tests/CMakeLists.txt: test_vectors leaves out tests/{name}")
    print(f"vectors: {len(files)} files, {len(missing)} without a test")
    return 1 if missing or left_out or not files else 0


if __name__ == "__main__":
    sys.exit(main())
