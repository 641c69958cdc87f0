#!/usr/bin/python3
"""Hidden lines of a mesh by lumivane beside those by FreeCAD: seconds, and lines against rays.

Usage: compare.py MESH.obj X,Y,Z FREECAD.json [PROGRAM]

X,Y,Z points from the mesh to the viewer, as FreeCAD has it, and FREECAD.json is what project.py has
written for it. Places on edges of the mesh, on those that bend by more than 25 degrees or turn away
from the viewer, are looked at by eight rays close around them: no ray that meets something in front
makes the place visible, eight make it hidden, and places between are left out. A visible place with
no drawn line near it is lost. A place in the middle of a drawn line is wrong if all edges of the
mesh near it are hidden there.
"""

import json
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np

NEAR = 1e-3  # of the mesh's size: how near a line must be, and how far rays are from their place
PLACES = 1500


def read(path):
    points, triangles = [], []
    for line in Path(path).read_text().splitlines():
        words = line.split()
        if words[:1] == ["v"]:
            points.append([float(w) for w in words[1:4]])
        elif words[:1] == ["f"]:
            corners = [int(w.split("/")[0]) - 1 for w in words[1:]]
            triangles += [[corners[0], a, b] for a, b in zip(corners[1:], corners[2:])]
    return np.array(points), np.array(triangles)


def unit(v):
    return np.array(v) / np.linalg.norm(v)


def main_axis(d):
    """The axes that OpenCASCADE gives a plane of which only the normal is said."""
    a, b, c = d
    x, y, z = np.abs(d)
    if y <= x and y <= z:
        across = (-c, 0, a) if x > z else (c, 0, -a)
    elif x <= y and x <= z:
        across = (0, -c, b) if y > z else (0, c, -b)
    else:
        across = (-b, a, 0) if x > y else (b, -a, 0)
    return unit(across), np.cross(d, unit(across))


class Model:
    def __init__(self, path, viewer):
        self.points, self.triangles = read(path)
        self.viewer = unit(viewer)
        self.right = unit(np.cross((0, 0, 1), self.viewer))
        self.up = np.cross(self.viewer, self.right)
        frame = np.column_stack([self.right, self.up, self.viewer])
        self.places = self.points @ frame  # x right, y up, z to the viewer
        self.low, self.high = self.places[:, :2].min(axis=0), self.places[:, :2].max(axis=0)
        self.size = np.linalg.norm(self.high - self.low)
        corners = self.places[self.triangles]
        self.corners = corners
        self.normals = np.cross(corners[:, 1] - corners[:, 0], corners[:, 2] - corners[:, 0])

    def edges(self):
        """Pairs of corners, and whether each bends or turns away."""
        faces = {}
        for number, triangle in enumerate(self.triangles):
            for k in range(3):
                pair = tuple(sorted((triangle[k], triangle[(k + 1) % 3])))
                faces.setdefault(pair, []).append(number)
        pairs, marked = [], []
        length = np.maximum(np.linalg.norm(self.normals, axis=1), 1e-300)
        normals = self.normals / length[:, None]
        for pair, sides in faces.items():
            pairs.append(pair)
            if len(sides) != 2:
                marked.append(True)
                continue
            a, b = normals[sides[0]], normals[sides[1]]
            marked.append(bool(a @ b < np.cos(np.radians(25)) or a[2] * b[2] < -1e-6))
        return np.array(pairs), np.array(marked)

    def nearest(self, places):
        """How far in front the first triangle over each place is."""
        result = np.full(len(places), -np.inf)
        a, b, c = (self.corners[:, k] for k in range(3))
        area = (b[:, 0] - a[:, 0]) * (c[:, 1] - a[:, 1]) - (b[:, 1] - a[:, 1]) * (c[:, 0] - a[:, 0])
        keep = np.abs(area) > 1e-14 * self.size**2
        a, b, c, area = a[keep], b[keep], c[keep], area[keep]
        low = np.minimum(np.minimum(a, b), c)[:, :2]
        high = np.maximum(np.maximum(a, b), c)[:, :2]
        for i, p in enumerate(places):
            near = np.flatnonzero(np.all((low <= p) & (p <= high), axis=1))
            if not len(near):
                continue
            x, y, z, w = a[near], b[near], c[near], area[near]
            v = ((p[0] - x[:, 0]) * (z[:, 1] - x[:, 1]) - (p[1] - x[:, 1]) * (z[:, 0] - x[:, 0])) / w
            u = ((y[:, 0] - x[:, 0]) * (p[1] - x[:, 1]) - (y[:, 1] - x[:, 1]) * (p[0] - x[:, 0])) / w
            inside = (u >= 0) & (v >= 0) & (u + v <= 1)
            if inside.any():
                depth = x[:, 2] + v * (y[:, 2] - x[:, 2]) + u * (z[:, 2] - x[:, 2])
                result[i] = depth[inside].max()
        return result

    def seen(self, places):
        """1 visible, 0 hidden, -1 neither for certain."""
        turns = np.arange(8) * np.pi / 4 + 0.3
        around = NEAR * self.size * np.column_stack([np.cos(turns), np.sin(turns)])
        rays = (places[:, None, :2] + around[None]).reshape(-1, 2)
        front = self.nearest(rays).reshape(-1, 8) - places[:, None, 2]
        hits = (front > 10 * NEAR * self.size).sum(axis=1)
        # Behind something thin all that is in front may be as near as that.
        is_clear = self.nearest(places[:, :2]) - places[:, 2] < 0.1 * NEAR * self.size
        return np.where((hits == 0) & is_clear, 1, np.where(hits == 8, 0, -1))


def far_from(place, lines):
    a, b = lines[:, :2], lines[:, 2:]
    along = b - a
    square = np.maximum((along**2).sum(axis=1), 1e-300)
    part = np.clip(((place - a) * along).sum(axis=1) / square, 0, 1)
    return np.linalg.norm(place - a - part[:, None] * along, axis=1)


def judge(model, lines, pairs, marked):
    random = np.random.default_rng(5)
    chosen = random.choice(np.flatnonzero(marked), PLACES)
    part = random.uniform(0.1, 0.9, PLACES)[:, None]
    places = model.places[pairs[chosen, 0]] * (1 - part) + model.places[pairs[chosen, 1]] * part
    seen = model.seen(places)
    visible = places[seen == 1]
    lost = sum(far_from(p[:2], lines).min() > NEAR * model.size for p in visible)
    length = np.linalg.norm(lines[:, 2:] - lines[:, :2], axis=1)
    some = random.choice(len(lines), PLACES, p=length / length.sum())
    middles = (lines[some, :2] + lines[some, 2:]) / 2
    ends = np.hstack([model.places[pairs[:, 0]][:, :2], model.places[pairs[:, 1]][:, :2]])
    wrong = judged = 0
    for middle in middles:
        near = np.flatnonzero(far_from(middle, ends) < 0.2 * NEAR * model.size)
        a, b = model.places[pairs[near, 0]], model.places[pairs[near, 1]]
        along = (b - a)[:, :2]
        square = np.maximum((along**2).sum(axis=1), 1e-300)
        at = np.clip(((middle - a[:, :2]) * along).sum(axis=1) / square, 0, 1)
        states = model.seen(a + at[:, None] * (b - a)) if len(near) else np.array([])
        if (states == -1).any():
            continue
        judged += 1
        wrong += not (states == 1).any()
    return {"visible": len(visible), "lost": int(lost), "judged": judged, "wrong": int(wrong)}


def by_program(model, path, program):
    direction = ",".join(f"{-c:.17g}" for c in model.viewer)
    with tempfile.TemporaryDirectory() as folder:
        command = [program, "draw", path, "--parallel", direction, "--two-sided", "--widths",
                   "outline=0.2,silhouette=0.2,crease=0.2,inner=0.2,crossing=0.2", "--width", "2000",
                   "--margin", "0", "--svg", f"{folder}/a.svg"]  # fmt: skip
        seconds = []
        for _ in range(3):
            start = time.perf_counter()
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            seconds.append(time.perf_counter() - start)
        text = Path(folder, "a.svg").read_text(encoding="utf-8")
    lines = []
    for data in re.findall(r' d="([^"]*)"', text):
        for part in data.split("M")[1:]:
            at = np.array([float(w) for w in re.findall(r"-?[\d.]+(?:e-?\d+)?", part)]).reshape(-1, 2)
            lines += [[*a, *b] for a, b in zip(at, at[1:])]
    lines = np.array(lines)
    low = lines.reshape(-1, 2).min(axis=0)
    high = lines.reshape(-1, 2).max(axis=0)
    scale = (model.high - model.low) / (high - low)
    flip = lambda p: np.column_stack([  # noqa: E731
        model.low[0] + (p[:, 0] - low[0]) * scale[0], model.high[1] - (p[:, 1] - low[1]) * scale[1]])
    return min(seconds), np.hstack([flip(lines[:, :2]), flip(lines[:, 2:])])


def by_freecad(model, path):
    document = json.loads(Path(path).read_text())
    lines = np.array([piece for group in document["visible"].values() for piece in group])
    x, y = main_axis(model.viewer)
    turn = np.array([[x @ model.right, x @ model.up], [y @ model.right, y @ model.up]])
    return document, np.hstack([lines[:, :2] @ turn, lines[:, 2:] @ turn])


def main():
    mesh, viewer, freecad = sys.argv[1:4]
    program = sys.argv[4] if len(sys.argv) > 4 else "build/release/host/lumivane"
    model = Model(mesh, [float(w) for w in viewer.split(",")])
    pairs, marked = model.edges()
    document, lines = by_freecad(model, freecad)
    print(f"{mesh}: {len(model.triangles)} triangles")
    print(f"FreeCAD  {document['seconds']:.2f} s, and {document['seconds_shape']:.2f} s for the shape;",
          judge(model, lines, pairs, marked))  # fmt: skip
    seconds, lines = by_program(model, mesh, program)
    print(f"lumivane {seconds:.2f} s, the whole process;", judge(model, lines, pairs, marked))


main()
