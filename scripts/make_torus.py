#!/usr/bin/env python3
"""Writes a torus as an OBJ mesh, for pictures of smooth meshes.

Usage: scripts/make_torus.py [AROUND] [ACROSS] > torus.obj    (96 and 48 quadrangles)
"""

import math
import sys

around = int(sys.argv[1]) if len(sys.argv) > 1 else 96
across = int(sys.argv[2]) if len(sys.argv) > 2 else 48

for i in range(around):
    for k in range(across):
        turn = 2 * math.pi * i / around
        tube = 2 * math.pi * k / across
        reach = 2 + math.cos(tube)
        print(f"v {reach * math.cos(turn):.9f} {reach * math.sin(turn):.9f} {math.sin(tube):.9f}")
for i in range(around):
    for k in range(across):
        corners = [(i, k), (i + 1, k), (i + 1, k + 1), (i, k + 1)]
        print("f", *(1 + (a % around) * across + b % across for a, b in corners))
