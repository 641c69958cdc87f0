#!/usr/bin/python3
"""Hidden lines of meshes by lumivane beside those by FreeCAD, in one run: seconds, and lines
against rays. Writes a table.

Usage: compare.py [--program PROGRAM] [--viewer X,Y,Z] [--limit SECONDS] MESH...

A mesh is an OBJ file, or a scene or city model that lumivane reads, which is cut into triangles
first; both programs are given the same triangles. FreeCAD runs in a process of its own (project.py)
up to the limit. Seconds are those of the processor, so that others at work count little: of
lumivane the whole process, reading and writing included, the least of three; of FreeCAD without
them.

Places on edges of the mesh, on those that bend by more than 25 degrees or turn away from the viewer,
are looked at by eight rays close around them: no ray that meets something in front makes the place
visible, eight make it hidden, and places between are left out. A visible place with no visible line
near it is lost, and so is a hidden place with no line at all. A place in the middle of a visible
line is wrong if all edges of the mesh near it are hidden there.
"""

import argparse
import json
import re
import resource
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
from pathlib import Path

import numpy as np

PLACES = 1500
LINES = ["outline", "silhouette", "crease", "inner"]  # those of edges: FreeCAD has no crossings
FREECAD = "/usr/lib/freecad-python3/lib"
Rounding = 1e-7  # of the mesh's size


# ---- triangles


def clipped(outline):
    """An outline in a plane as triangles: ears in turn, the one with the largest least angle."""
    outline = [p for i, p in enumerate(outline) if p[0] != outline[i - 1][0]]
    if len(outline) < 3:
        return []
    places = np.array([p[1] for p in outline])
    after = np.roll(places, -1, axis=0)
    normal = np.cross(places, after).sum(axis=0)
    axis = int(np.argmax(np.abs(normal)))
    u, v = [(1, 2), (2, 0), (0, 1)][axis]
    flat = places[:, [u, v]] * (1.0 if normal[axis] > 0 else np.array([-1.0, 1.0]))
    left = list(range(len(outline)))

    def turn(a, b, c):
        return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])

    def is_ear(i):
        a, b, c = (left[(i + k) % len(left)] for k in (-1, 0, 1))
        if turn(flat[a], flat[b], flat[c]) <= 0:
            return False
        corners = {outline[k][0] for k in (a, b, c)}
        return not any(
            outline[k][0] not in corners
            and turn(flat[a], flat[b], flat[k]) >= 0
            and turn(flat[b], flat[c], flat[k]) >= 0
            and turn(flat[c], flat[a], flat[k]) >= 0
            for k in left)  # fmt: skip

    triangles = []
    while len(left) > 3:
        ear = next((i for i in range(len(left)) if is_ear(i)), 0)
        a, b, c = (left[(ear + k) % len(left)] for k in (-1, 0, 1))
        triangles.append([outline[a][0], outline[b][0], outline[c][0]])
        del left[ear]
    return [*triangles, [outline[k][0] for k in left]]


def as_mesh(path, program, folder):
    """An OBJ file of the triangles of what lumivane reads."""
    if path.suffix == ".obj":
        return path
    scene_file = folder / "scene.json"
    subprocess.run([program, "import", path, "-o", scene_file], check=True, capture_output=True)
    scene = json.loads(scene_file.read_text(encoding="utf-8"))
    points = scene["Points"]
    lines = [f"v {x!r} {y!r} {z!r}" for x, y, z in points]
    for item in scene["Objects"]:
        for region in item["Regions"]:
            outline = [(n, np.array(points[n - 1])) for n in region["Points"]]
            lines += [f"f {a} {b} {c}" for a, b, c in clipped(outline)]
    mesh = folder / f"{path.name.split('.')[0]}.obj"
    mesh.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return mesh


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
        # How near a line must be, and how far rays are from their place; part of the size.
        self.near = 1e-3 if len(self.triangles) < 20000 else 1e-4
        corners = self.places[self.triangles]
        self.corners = corners
        self.normals = np.cross(corners[:, 1] - corners[:, 0], corners[:, 2] - corners[:, 0])

    def edges(self):
        """Pairs of corners, and whether each bends or turns away.

        Edges of one triangle do; of more than two it depends on which are seen, and none is asked.
        """
        faces = {}
        for number, triangle in enumerate(self.triangles):
            for k in range(3):
                a, b = triangle[k], triangle[(k + 1) % 3]
                faces.setdefault((min(a, b), max(a, b)), []).append((number, a < b))
        pairs, marked = [], []
        length = np.maximum(np.linalg.norm(self.normals, axis=1), 1e-300)
        normals = self.normals / length[:, None]
        for pair, sides in faces.items():
            pairs.append(pair)
            if len(sides) != 2:
                marked.append(len(sides) == 1)
                continue
            (a, forward), (b, also_forward) = sides
            sign = -1.0 if forward == also_forward else 1.0
            bend = sign * (normals[a] @ normals[b])
            marked.append(bool(bend < np.cos(np.radians(25))
                               or sign * normals[a][2] * normals[b][2] < -1e-6))  # fmt: skip
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
        around = self.near * self.size * np.column_stack([np.cos(turns), np.sin(turns)])
        rays = (places[:, None, :2] + around[None]).reshape(-1, 2)
        front = self.nearest(rays).reshape(-1, 8) - places[:, None, 2]
        hits = (front > 10 * self.near * self.size).sum(axis=1)
        # Behind something thin all that is in front may be as near as that.
        is_clear = self.nearest(places[:, :2]) - places[:, 2] < Rounding * self.size
        return np.where((hits == 0) & is_clear, 1, np.where(hits == 8, 0, -1))


def far_from(place, lines):
    a, b = lines[:, :2], lines[:, 2:]
    along = b - a
    square = np.maximum((along**2).sum(axis=1), 1e-300)
    part = np.clip(((place - a) * along).sum(axis=1) / square, 0, 1)
    return np.linalg.norm(place - a - part[:, None] * along, axis=1)


def judge(model, visible, hidden, pairs, marked):
    """Lines lost and wrong, each with how many places were asked."""
    random = np.random.default_rng(5)
    chosen = random.choice(np.flatnonzero(marked), PLACES)
    part = random.uniform(0.1, 0.9, PLACES)[:, None]
    places = model.places[pairs[chosen, 0]] * (1 - part) + model.places[pairs[chosen, 1]] * part
    seen = model.seen(places)
    near = model.near * model.size
    clear, covered = places[seen == 1], places[seen == 0]
    lost = sum(far_from(p[:2], visible).min() > near for p in clear)
    everything = np.vstack([visible, hidden])
    lost_hidden = sum(far_from(p[:2], everything).min() > near for p in covered)
    length = np.linalg.norm(visible[:, 2:] - visible[:, :2], axis=1)
    some = random.choice(len(visible), PLACES, p=length / length.sum())
    middles = (visible[some, :2] + visible[some, 2:]) / 2
    ends = np.hstack([model.places[pairs[:, 0]][:, :2], model.places[pairs[:, 1]][:, :2]])
    wrong = judged = 0
    for middle in middles:
        close = np.flatnonzero(far_from(middle, ends) < 0.2 * near)
        a, b = model.places[pairs[close, 0]], model.places[pairs[close, 1]]
        along = (b - a)[:, :2]
        square = np.maximum((along**2).sum(axis=1), 1e-300)
        at = np.clip(((middle - a[:, :2]) * along).sum(axis=1) / square, 0, 1)
        states = model.seen(a + at[:, None] * (b - a)) if len(close) else np.array([])
        if (states == -1).any():
            continue
        judged += 1
        wrong += not (states == 1).any()
    return [f"{lost} of {len(clear)}", f"{lost_hidden} of {len(covered)}", f"{wrong} of {judged}"]


# ---- the two programs


def processor_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def pieces_of(root, layers):
    lines = []
    for layer in layers:
        for path in root.iterfind(f".//*[@id='{layer}']//*[@d]"):
            for part in path.get("d").split("M")[1:]:
                at = np.array([float(w) for w in re.findall(r"-?[\d.]+(?:e-?\d+)?", part)])
                at = at.reshape(-1, 2)
                lines += [[*a, *b] for a, b in zip(at, at[1:])]
    return np.array(lines).reshape(-1, 4)


def by_program(model, path, program, folder):
    direction = ",".join(f"{-c:.17g}" for c in model.viewer)
    picture = folder / "lumivane.svg"
    # As it is timed: with the lines that a drawing has.
    command = [program, "draw", path, "--parallel", direction, "--two-sided", "--hidden", "dashed",
               "--width", "2000", "--margin", "0", "--svg", picture]  # fmt: skip
    seconds = []
    for _ in range(3):
        start = processor_seconds()
        subprocess.run(command, check=True, capture_output=True)
        seconds.append(processor_seconds() - start)
    root = xml.etree.ElementTree.parse(picture).getroot()
    visible, hidden = pieces_of(root, LINES), pieces_of(root, ["hidden"])
    ends = visible.reshape(-1, 2)
    low, high = ends.min(axis=0), ends.max(axis=0)
    scale = (model.high - model.low) / (high - low)

    def placed(p):
        return np.column_stack([model.low[0] + (p[:, 0] - low[0]) * scale[0],
                                model.high[1] - (p[:, 1] - low[1]) * scale[1]])  # fmt: skip

    lines = [np.hstack([placed(some[:, :2]), placed(some[:, 2:])]) for some in (visible, hidden)]
    return f"{min(seconds):.2f}", *lines


def by_freecad(model, path, viewer, limit, folder):
    """Seconds as a text, and the lines; none if it is not done in time."""
    out = folder / "freecad.json"
    script = Path(__file__).with_name("project.py")
    command = ["/usr/bin/python3", script, path, viewer, out]
    try:
        subprocess.run(command, check=True, timeout=limit, env={"PYTHONPATH": FREECAD},
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)  # fmt: skip
    except subprocess.TimeoutExpired:
        return f"not done in {limit:.0f}", None, None
    document = json.loads(out.read_text(encoding="utf-8"))
    x, y = main_axis(model.viewer)
    turn = np.array([[x @ model.right, x @ model.up], [y @ model.right, y @ model.up]])

    def lines_of(kind):
        lines = np.array([piece for group in document[kind].values() for piece in group])
        lines = lines.reshape(-1, 4)
        return np.hstack([lines[:, :2] @ turn, lines[:, 2:] @ turn])

    text = f"{document['seconds']:.2f}, and {document['seconds_shape']:.2f} for the shape"
    return text, lines_of("visible"), lines_of("hidden")


def row(cells):
    print("| " + " | ".join(cells) + " |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", default="build/release/host/lumivane")
    parser.add_argument("--viewer", default="1,2,-1.4", help="points from the mesh to the viewer")
    parser.add_argument("--limit", type=float, default=600.0, help="seconds that FreeCAD may take")
    parser.add_argument("meshes", nargs="+", type=Path)
    arguments = parser.parse_args()
    row(["Mesh", "", "Seconds", "Lost, visible", "Lost, hidden", "Wrong"])
    row(["---"] * 6)
    for source in arguments.meshes:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            mesh = as_mesh(source, arguments.program, folder)
            model = Model(mesh, [float(w) for w in arguments.viewer.split(",")])
            pairs, marked = model.edges()
            runs = [("lumivane", by_program(model, mesh, arguments.program, folder)),
                    ("FreeCAD", by_freecad(model, mesh, arguments.viewer, arguments.limit, folder))]
            title = f"{source.name.split('.')[0]}, {len(model.triangles):,} triangles"
            for who, (seconds, visible, hidden) in runs:
                judged = (["-"] * 3 if visible is None
                          else judge(model, visible, hidden, pairs, marked))  # fmt: skip
                row([title, who, seconds, *judged])
                title = ""


main()
