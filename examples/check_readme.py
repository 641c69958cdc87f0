#!/usr/bin/env python3
"""Fails unless README.md shows the program of FirstShot.cpp, line by line."""

import pathlib
import sys

here = pathlib.Path(__file__).resolve().parent
program = (here / "FirstShot.cpp").read_text().strip()
readme = (here.parent / "README.md").read_text()
sys.exit(0 if "```cpp\n" + program + "\n```" in readme else "README.md shows another program")
