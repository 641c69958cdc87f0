#!/usr/bin/env python3
"""Makes the sample scenes: scenes/room.json, scenes/street.json, scenes/small.json, and those that
explain one thing each in docs/concepts.md: scenes/winding.json, scenes/docking.json, scenes/ring.json.

Usage: make_scenes.py [FOLDER]      (the folder is scenes/ beside this script by default)

Needs nothing but Python's own library. The same script gives the same bytes everywhere.

A shot keeps a polygon whose points run clockwise as the eye sees them, so every polygon here is
made with the direction it is to be seen from, and wound for it. Lengths are metres, z is up.
"""

import json
import os
import random
import sys


def minus(a, b):
    return tuple(p - q for p, q in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot(a, b):
    return sum(p * q for p, q in zip(a, b))


def number(value):
    """A number as it reads best: 6 digits at most, no trailing zeros."""
    text = "%.6g" % value
    return "0" if text == "-0" else text


class Object:
    """One object: faces of one or more polygons, numbered as they come."""

    def __init__(self, scene, name, pen):
        self.scene, self.name, self.pen = scene, name, pen
        self.regions = []  # (brush number, face number, point numbers, docking edges)
        self.faces = []  # (region numbers, normal)

    def face(self, brush, seen_from, *polygons):
        """One face of plane polygons that are seen from the side to which seen_from points."""
        numbers, normal = [], None
        for polygon in polygons:
            turned = cross(minus(polygon[1], polygon[0]), minus(polygon[2], polygon[0]))
            if dot(turned, seen_from) > 0:
                polygon, turned = list(reversed(polygon)), minus((0, 0, 0), turned)
            length = dot(turned, turned) ** 0.5
            normal = tuple(c / length for c in turned)
            points = [self.scene.point(p) for p in polygon]
            self.regions.append((self.scene.brush(brush), len(self.faces) + 1, points, []))
            numbers.append(len(self.regions))
        self.faces.append((numbers, normal))

    def dock(self):
        """Marks the edges that two polygons of one face share, so that no line is drawn there."""
        for _, face, points, docking in self.regions:
            others = {(p[i - 1], p[i]) for _, f, p, _ in self.regions if f == face
                      for i in range(len(p))}
            docking += [i + 1 for i in range(len(points))
                        if (points[(i + 1) % len(points)], points[i]) in others]

    def box(self, x, y, z, brush, sides="xXyYzZ", inside=False, brushes=None):
        """The sides of a box: x is the one at its smaller x, X the one at its larger x, and so on.

        inside: the sides are seen from inside. brushes: side to brush, where not `brush`.
        """
        ends = {"x": x, "y": y, "z": z}
        for side in sides:
            axis = side.lower()
            at = ends[axis][1 if side.isupper() else 0]
            (a0, a1), (b0, b1) = (ends[other] for other in "xyz" if other != axis)
            corners = [(a0, b0), (a1, b0), (a1, b1), (a0, b1)]
            place = "xyz".index(axis)
            polygon = [c[:place] + (at,) + c[place:] for c in corners]
            out = [0, 0, 0]
            out[place] = 1 if side.isupper() != inside else -1
            self.face((brushes or {}).get(side, brush), out, polygon)


class SceneMaker:
    """Collects points, brushes and pens without doubles, and writes the scene."""

    def __init__(self, brushes, pens):
        self.brushes, self.pens = brushes, pens
        self.points, self.numbers, self.objects = [], {}, []

    def point(self, p):
        text = "[%s]" % ",".join(number(c) for c in p)
        if text not in self.numbers:
            self.points.append(text)
            self.numbers[text] = len(self.points)
        return self.numbers[text]

    def brush(self, name):
        return list(self.brushes).index(name) + 1

    def object(self, name, pen="line"):
        made = Object(self, name, list(self.pens).index(pen) + 1)
        self.objects.append(made)
        return made

    def text(self):
        def rows(items, count):
            lines = [",".join(items[i:i + count]) for i in range(0, len(items), count)]
            return "[\n  " + ",\n  ".join(lines) + "\n]"

        def listed(values):
            return "[%s]" % ",".join(str(v) for v in values)

        def object_text(o):
            faces = ['{"Regions":%s,"Normal":[%s]}' % (listed(r), ",".join(map(number, n)))
                     for r, n in o.faces]
            regions = ['{"Brush":%d,"Face":%d,"Points":%s%s}' %
                       (b, f, listed(p), ',"DockingEdges":' + listed(d) if d else "")
                       for b, f, p, d in o.regions]
            return ('{"Id":%s,"PartsCount":1,"Pen":%d,\n  "Faces":[%s],\n  "Parts":[{"Regions":%s}],'
                    '\n  "Regions":[%s],\n  "Overlays":[]}' %
                    (json.dumps(o.name), o.pen, ",\n    ".join(faces),
                     listed(range(1, len(regions) + 1)), ",\n    ".join(regions)))

        names = [o.name for o in self.objects]
        assert len(set(names)) == len(names), "two objects of one name"
        return ("{\n\"Brushes\": %s,\n\"Pens\": %s,\n\"Points\": %s,\n\"Objects\": [\n%s\n],\n"
                "\"Properties\": [],\n\"Scales\": []\n}\n" %
                (rows([listed(b) for b in self.brushes.values()], 4),
                 rows([listed(p) for p in self.pens.values()], 4),
                 rows(self.points, 6),
                 ",\n".join(object_text(o) for o in self.objects if o.regions)))


def small():
    """A plate with a block and a pyramid on it."""
    scene = SceneMaker({"plate": (222, 214, 196, 255), "block": (92, 128, 176, 255),
                        "top": (140, 172, 212, 255), "roof": (190, 92, 70, 255)},
                       {"line": (40, 40, 40, 255, 1)})
    scene.object("plate").face("plate", (0, 0, 1), [(-2, -2, 0), (2, -2, 0), (2, 2, 0), (-2, 2, 0)])
    scene.object("block").box((-1, 0), (-1.5, 0), (0, 1), "block", "xXyYZ", brushes={"Z": "top"})
    pyramid(scene.object("pyramid"), (0.4, 1.6), (0.3, 1.5), 0, 1.3, "roof")
    return scene.text()


EXPLAINING = ({"ground": (226, 222, 210, 255), "block": (92, 128, 176, 255),
               "side": (120, 152, 196, 255), "panel": (214, 140, 70, 255),
               "second": (120, 160, 90, 255), "third": (180, 84, 92, 255)},
              {"line": (40, 40, 40, 255, 2)})


def winding():
    """Two panels before two blocks: only the left one is wound to be seen from the left end of x."""
    scene = SceneMaker(*EXPLAINING)
    scene.object("ground").face("ground", (0, 0, 1),
                                [(-2, -4, 0), (4, -4, 0), (4, 4, 0), (-2, 4, 0)])
    for name, y, seen_from in (("seen", 1.6, -1), ("not seen", -1.6, 1)):
        scene.object("block behind the panel " + name).box(
            (1, 2), (y - 0.5, y + 0.5), (0, 1), "block", "xXyYZ", brushes={"Z": "side"})
        scene.object("panel " + name).face(
            "panel", (seen_from, 0, 0),
            [(-0.5, y - 1, 0), (-0.5, y + 1, 0), (-0.5, y + 1, 1.6), (-0.5, y - 1, 1.6)])
    return scene.text()


def docking():
    """A wall around a window twice: as one face of four polygons, and as four faces."""
    scene = SceneMaker(*EXPLAINING)
    for name, y, one in (("one face", 1.7, True), ("four faces", -1.7, False)):
        outer = [(0, y - 1.4, -1.2), (0, y + 1.4, -1.2), (0, y + 1.4, 1.2), (0, y - 1.4, 1.2)]
        inner = [(0, y - 0.6, -0.5), (0, y + 0.6, -0.5), (0, y + 0.6, 0.5), (0, y - 0.6, 0.5)]
        pieces = [(outer[i], outer[(i + 1) % 4], inner[(i + 1) % 4], inner[i]) for i in range(4)]
        wall = scene.object(name)
        for group in ([pieces] if one else [[piece] for piece in pieces]):
            wall.face("panel", (-1, 0, 0), *group)
        wall.dock()
    return scene.text()


def ring():
    """Three bars, each over the next one: no order of whole bars is right."""
    scene = SceneMaker(*EXPLAINING)
    twist = 0.09  # turns each bar so that the next one lies wholly on one side of its plane
    corners = [(0.0, 1.2), (-1.05, -0.6), (1.05, -0.6)]
    for i, (name, brush) in enumerate((("first", "panel"), ("second", "second"), ("third", "third"))):
        (y0, z0), (y1, z1) = corners[i], corners[(i + 1) % 3]
        along = (y1 - y0, z1 - z0)
        length = (along[0] ** 2 + along[1] ** 2) ** 0.5
        u = (along[0] / length, along[1] / length)
        v = (-u[1] * 0.22, u[0] * 0.22)
        y0, z0, y1, z1 = y0 - u[0] * 0.6, z0 - u[1] * 0.6, y1 + u[0] * 0.6, z1 + u[1] * 0.6
        scene.object(name).face(brush, (-1, 0, 0), [
            (-0.46 - twist, y0 + v[0], z0 + v[1]), (-0.46 + twist, y0 - v[0], z0 - v[1]),
            (0.46 + twist, y1 - v[0], z1 - v[1]), (0.46 - twist, y1 + v[0], z1 + v[1])])
    return scene.text()


def pyramid(thing, x, y, z, top, brush):
    (x0, x1), (y0, y1) = x, y
    tip = ((x0 + x1) / 2, (y0 + y1) / 2, top)
    corners = [(x0, y0, z), (x1, y0, z), (x1, y1, z), (x0, y1, z)]
    for a, b, out in zip(corners, corners[1:] + corners[:1],
                         [(0, -1, 1), (1, 0, 1), (0, 1, 1), (-1, 0, 1)]):
        thing.face(brush, out, [a, b, tip])


def room():
    """A living room of 6.4 by 4.8 by 2.7 metres, seen from inside."""
    scene = SceneMaker({
        "floor": (196, 160, 116, 255), "board": (184, 147, 104, 255),
        "ceiling": (247, 245, 240, 255), "wall": (226, 220, 204, 255),
        "wall2": (214, 206, 188, 255), "wall3": (203, 214, 208, 255),
        "rug": (150, 60, 58, 255), "rug2": (208, 176, 128, 255),
        "wood": (134, 88, 52, 255), "wood2": (112, 72, 42, 255), "wood3": (156, 106, 66, 255),
        "sofa": (66, 98, 116, 255), "sofa2": (82, 118, 138, 255), "cushion": (222, 170, 74, 255),
        "white": (250, 250, 248, 255), "sky": (160, 200, 232, 255), "green": (84, 132, 80, 255),
        "pot": (176, 96, 66, 255), "lamp": (250, 226, 160, 255), "metal": (70, 72, 76, 255),
        "red": (186, 62, 52, 255), "blue": (62, 92, 158, 255), "yellow": (220, 182, 70, 255),
        "screen": (34, 38, 46, 255), "door": (172, 128, 88, 255)},
        {"line": (46, 40, 34, 255, 1), "fine": (70, 62, 54, 255, 0.5)})
    width, depth, height = 6.4, 4.8, 2.7

    shell = scene.object("shell")
    for i in range(8):
        for k in range(4):
            x, y = (1.6 * k, 1.6 * (k + 1)), (0.6 * i, 0.6 * (i + 1))
            shell.box(x, y, (0, 0), "board" if (i + k) % 2 else "floor", "z", inside=True)
    shell.box((0, width), (0, depth), (0, height), "wall", "xXyYZ", inside=True,
              brushes={"X": "wall3", "x": "wall3", "y": "wall2", "Z": "ceiling"})

    rug = scene.object("rug", "fine")
    rug.face("rug", (0, 0, 1), rectangle_z((2.3, 4.7), (1.2, 3.1), 0.01))
    rug.face("rug2", (0, 0, 1), rectangle_z((2.5, 4.5), (1.4, 2.9), 0.015))
    rug.face("rug", (0, 0, 1), rectangle_z((2.8, 4.2), (1.7, 2.6), 0.02))

    window(scene.object("window east", "fine"), width, (1.2, 3.6), (0.9, 2.3), 4)
    door(scene.object("door", "fine"), depth)
    pictures(scene, depth)

    sofa(scene.object("sofa"))
    table(scene.object("coffee table"), (2.95, 4.05), (1.85, 2.5), 0.42, 0.06, "wood3", "wood")
    cup = scene.object("bowl", "fine")
    cup.box((3.4, 3.62), (2.08, 2.3), (0.42, 0.52), "yellow", "xXyYZ", brushes={"Z": "red"})

    table(scene.object("dining table"), (4.75, 5.85), (3.3, 4.3), 0.76, 0.07, "wood", "wood2")
    chair(scene.object("chair one"), 4.15, 3.6, "x")
    chair(scene.object("chair two"), 5.05, 2.72, "y")
    vase = scene.object("vase", "fine")
    vase.box((5.22, 5.38), (3.72, 3.88), (0.76, 1.0), "blue", "xXyYZ")

    shelf(scene.object("book case"))
    sideboard(scene)
    plant(scene.object("plant", "fine"), 5.95, 0.42)
    floor_lamp(scene.object("floor lamp", "fine"), 0.9, 4.35)
    hanging_lamp(scene.object("hanging lamp", "fine"), 5.3, 3.8, height)
    return scene.text()


def rectangle_z(x, y, z):
    return [(x[0], y[0], z), (x[1], y[0], z), (x[1], y[1], z), (x[0], y[1], z)]


def rectangle_x(x, y, z):
    return [(x, y[0], z[0]), (x, y[1], z[0]), (x, y[1], z[1]), (x, y[0], z[1])]


def rectangle_y(x, y, z):
    return [(x[0], y, z[0]), (x[1], y, z[0]), (x[1], y, z[1]), (x[0], y, z[1])]


def window(thing, x, y, z, panes):
    """A window in the wall at x, seen from smaller x, with panes in two rows."""
    out = (-1, 0, 0)
    thing.face("white", out, rectangle_x(x - 0.02, (y[0] - 0.1, y[1] + 0.1), (z[0] - 0.1, z[1] + 0.1)))
    bar, cell = 0.06, (y[1] - y[0]) / panes
    for row in ((z[0], z[0] + 0.9), (z[0] + 0.96, z[1])):
        glass = [rectangle_x(x - 0.03, (y[0] + cell * i + bar / 2, y[0] + cell * (i + 1) - bar / 2), row)
                 for i in range(panes)]
        thing.face("sky", out, *glass)
    thing.box((x - 0.26, x - 0.03), (y[0] - 0.16, y[1] + 0.16), (z[0] - 0.16, z[0] - 0.11), "white", "xyYzZ")


def door(thing, y):
    out = (0, -1, 0)
    thing.face("white", out, rectangle_y((1.5, 2.6), y - 0.02, (0, 2.15)))
    thing.face("door", out, rectangle_y((1.6, 2.5), y - 0.03, (0, 2.05)))
    for z in ((0.2, 0.95), (1.1, 1.9)):
        thing.face("wood3", out, rectangle_y((1.75, 2.35), y - 0.035, z))
    thing.box((2.38, 2.46), (y - 0.09, y - 0.04), (1.0, 1.04), "metal", "xXyzZ")


def pictures(scene, depth):
    for i, (x, w, h, colours) in enumerate([(3.1, 0.9, 0.7, ("sky", "green")),
                                            (4.3, 0.6, 0.8, ("yellow", "red"))]):
        thing = scene.object("picture %d" % (i + 1), "fine")
        out, z = (0, -1, 0), 1.35
        thing.face("wood2", out, rectangle_y((x, x + w), depth - 0.02, (z, z + h)))
        thing.face("white", out, rectangle_y((x + .05, x + w - .05), depth - 0.03, (z + .05, z + h - .05)))
        thing.face(colours[0], out, rectangle_y((x + .12, x + w - .12), depth - 0.04, (z + .3, z + h - .12)))
        thing.face(colours[1], out, rectangle_y((x + .12, x + w - .12), depth - 0.04, (z + .12, z + .3)))


def sofa(thing):
    x, y = (2.4, 4.6), (0.15, 1.0)
    thing.box((x[0] + .2, x[1] - .2), (y[0], y[0] + .25), (0.4, 0.88), "sofa", "xXYZ")
    thing.box((x[0] + .2, x[1] - .2), (y[0] + .25, y[1]), (0.1, 0.42), "sofa2", "YZ")
    thing.box((x[0], x[0] + .2), y, (0.1, 0.62), "sofa", "xXYZ")
    thing.box((x[1] - .2, x[1]), y, (0.1, 0.62), "sofa", "xXYZ")
    thing.box((2.75, 3.15), (0.42, 0.56), (0.43, 0.78), "cushion", "xXYZ")
    thing.box((3.85, 4.25), (0.42, 0.56), (0.43, 0.78), "red", "xXYZ")


def table(thing, x, y, top, thick, brush, legs):
    for lx in (x[0] + .05, x[1] - .12):
        for ly in (y[0] + .05, y[1] - .12):
            thing.box((lx, lx + .07), (ly, ly + .07), (0, top - thick), legs, "xXyY")
    thing.box(x, y, (top - thick, top), brush)


def chair(thing, x, y, back):
    size, seat, thick = 0.42, 0.46, 0.05
    for lx in (x, x + size - .05):
        for ly in (y, y + size - .05):
            thing.box((lx, lx + .05), (ly, ly + .05), (0, seat - thick), "wood2", "xXyY")
    thing.box((x, x + size), (y, y + size), (seat - thick, seat), "wood3")
    if back == "x":
        thing.box((x, x + .05), (y, y + size), (seat, 0.95), "wood3", "xXyYZ")
    else:
        thing.box((x, x + size), (y, y + .05), (seat, 0.95), "wood3", "xXyYZ")


def shelf(thing):
    """Against the wall y = 0: back, sides and boards first, then the books on each board."""
    x, y, top = (0.5, 1.9), (0, 0.32), 2.1
    thing.face("wood2", (0, 1, 0), rectangle_y(x, 0.01, (0, top)))
    boards = [0.06, 0.56, 1.06, 1.56, top]
    thing.box((x[0], x[0] + .04), (0.01, y[1]), (0, top), "wood", "xXY")
    thing.box((x[1] - .04, x[1]), (0.01, y[1]), (0, top), "wood", "xXY")
    colours = ["red", "blue", "yellow", "green", "white", "sofa", "cushion", "pot"]
    rng = random.Random(7)
    for z in boards:
        thing.box((x[0] + .04, x[1] - .04), (0.01, y[1]), (z - .04, z), "wood3", "YZ" if z < 1.6 else "YzZ")
    for z in boards[:-1]:
        at = x[0] + .06
        while at < x[1] - .3:
            w, h = rng.uniform(.05, .09), rng.uniform(.26, .4)
            thing.box((at, at + w), (0.05, 0.26), (z, z + h), rng.choice(colours), "xXYZ")
            at += w + .004


def sideboard(scene):
    """Under the window: a low cupboard with four doors, a screen on it."""
    thing = scene.object("sideboard")
    x, y = (5.9, 6.38), (1.3, 2.5)
    thing.box(x, y, (0.08, 0.62), "wood", "xyYZ", brushes={"Z": "wood3"})
    for i in range(3):
        a = y[0] + .03 + .385 * i
        thing.face("wood3", (-1, 0, 0), rectangle_x(5.89, (a, a + .365), (.11, .59)))
    screen = scene.object("screen")
    screen.box((6.06, 6.1), (1.5, 2.3), (0.66, 1.12), "screen", "xyYZ")
    screen.face("blue", (-1, 0, 0), rectangle_x(6.05, (1.53, 2.27), (.69, 1.09)))


def plant(thing, x, y):
    thing.box((x - .14, x + .14), (y - .14, y + .14), (0, 0.34), "pot", "xXyYZ", brushes={"Z": "wood2"})
    for i, (r, low, high) in enumerate([(.34, .42, .8), (.27, .8, 1.14), (.18, 1.14, 1.5)]):
        pyramid(thing, (x - r, x + r), (y - r, y + r), low, high, "green")


def floor_lamp(thing, x, y):
    thing.box((x - .15, x + .15), (y - .15, y + .15), (0, 0.04), "metal", "xXyYZ")
    thing.box((x - .02, x + .02), (y - .02, y + .02), (0.04, 1.4), "metal", "xXyY")
    frustum(thing, x, y, (1.4, .24), (1.75, .14), "lamp")


def hanging_lamp(thing, x, y, height):
    thing.box((x - .01, x + .01), (y - .01, y + .01), (2.1, height), "metal", "xXyY")
    frustum(thing, x, y, (1.85, .26), (2.1, .08), "lamp")


def frustum(thing, x, y, low, high, brush):
    (z0, r0), (z1, r1) = low, high
    for out, a, b in [((0, -1, 0), (-1, -1), (1, -1)), ((1, 0, 0), (1, -1), (1, 1)),
                      ((0, 1, 0), (1, 1), (-1, 1)), ((-1, 0, 0), (-1, 1), (-1, -1))]:
        thing.face(brush, out, [(x + a[0] * r0, y + a[1] * r0, z0), (x + b[0] * r0, y + b[1] * r0, z0),
                                (x + b[0] * r1, y + b[1] * r1, z1), (x + a[0] * r1, y + a[1] * r1, z1)])


def street():
    """A street along x, 14 metres from house to house, 30 houses on each side."""
    scene = SceneMaker({
        "asphalt": (96, 98, 102, 255), "mark": (236, 236, 228, 255), "pavement": (182, 178, 170, 255),
        "kerb": (150, 148, 142, 255), "sky": (176, 208, 236, 255),
        "brick": (178, 98, 74, 255), "brick2": (150, 84, 66, 255), "plaster": (232, 214, 178, 255),
        "plaster2": (214, 196, 166, 255), "stone": (196, 198, 196, 255), "stone2": (168, 172, 174, 255),
        "blue": (150, 172, 190, 255), "blue2": (126, 148, 168, 255), "rose": (222, 178, 166, 255),
        "rose2": (198, 152, 140, 255), "glass": (64, 84, 104, 255), "glass2": (112, 142, 166, 255),
        "shop": (52, 60, 62, 255), "awning": (184, 48, 44, 255), "awning2": (44, 106, 84, 255),
        "roof": (134, 62, 48, 255), "roof2": (86, 88, 96, 255), "trunk": (104, 78, 56, 255),
        "leaf": (92, 138, 74, 255), "car": (176, 40, 40, 255), "car2": (40, 74, 132, 255),
        "car3": (228, 228, 224, 255), "metal": (60, 62, 66, 255), "tyre": (30, 30, 32, 255)},
        {"line": (40, 40, 44, 255, 1), "fine": (70, 72, 76, 255, 0.5)})
    rng = random.Random(11)
    road(scene)
    for side, name in ((1, "left"), (-1, "right")):
        floors = [rng.choice([2, 3, 3, 4, 4, 5, 6, 7, 9]) for _ in range(30)]
        x = -24.0
        for i, count in enumerate(floors):
            width = round(rng.uniform(8, 13), 1)
            lower = [floors[k] if 0 <= k < 30 else 0 for k in (i - 1, i + 1)]
            house(scene, rng, "%s %02d" % (name, i + 1), side, (x, x + width), i, count, lower)
            x += width
    for i, x in enumerate(range(8, 80, 12)):
        for side, name in ((1, "left"), (-1, "right")):
            tree(scene.object("tree %s %d" % (name, i + 1), "fine"), x + side * 2.5, side * 5.1)
    for i, (x, side) in enumerate([(6.5, -1), (13, 1), (19, -1), (25, -1), (32, 1), (46, -1), (53, 1)]):
        car(scene.object("car %d" % (i + 1), "fine"), x, side, ("car", "car2", "car3")[i % 3])
    return scene.text()


def road(scene):
    """Carriageway and pavements in pieces of 8 metres: a long piece close to the eye would need a
    fine splitting over its whole length."""
    lane, marks = scene.object("carriageway", "fine"), scene.object("marks", "fine")
    paths = scene.object("pavements", "fine")
    for k in range(-3, 38):
        x = (8.0 * k, 8.0 * k + 8)
        lane.face("asphalt", (0, 0, 1), rectangle_z(x, (-4.2, 4.2), 0))
        if x[0] < 150:
            marks.face("mark", (0, 0, 1), rectangle_z((x[0] + 2.5, x[0] + 5.5), (-.09, .09), 0.01))
        for side in (1, -1):
            paths.face("kerb", (0, -side, 0), rectangle_y(x, 4.2 * side, (0, 0.14)))
            paths.face("pavement", (0, 0, 1), rectangle_z(x, sorted((4.2 * side, 7 * side)), 0.14))


WALLS = [("brick", "brick2"), ("plaster", "plaster2"), ("stone", "stone2"), ("blue", "blue2"),
         ("rose", "rose2")]


def roof_height(floors):
    return round(1.04 + 3.1 * floors, 2)


def house(scene, rng, name, side, x, index, floors, neighbours):
    """One house: front, what its side walls show above the neighbours, storeys of windows, a shop,
    a flat or a pitched roof."""
    x0, x1 = x
    base, top = 0.14, roof_height(floors)
    wall, shade = WALLS[(index * 3 + (0 if side > 0 else 2) + rng.randrange(2)) % 5]
    front, back = 7.0 * side, 19.0 * side
    out = (0, -side, 0)
    thing = scene.object("house " + name)
    thing.face(wall, out, rectangle_y((x0, x1), front, (base, top)))
    for at, outward, neighbour in ((x0, -1, neighbours[0]), (x1, 1, neighbours[1])):
        low = roof_height(neighbour) if neighbour else base
        if low < top:
            thing.face(shade, (outward, 0, 0), rectangle_x(at, sorted((front, back)), (low, top)))
    if floors < 6 and rng.random() < 0.55 and x0 < 150:
        pitched_roof(thing, rng, x0, x1, front, back, top, shade)
    windows(thing, rng, x0, x1, front - .04 * side, out, base, floors, 3.1)
    shop(thing, rng, x0, x1, front, side, base)


def pitched_roof(thing, rng, x0, x1, front, back, top, shade):
    ridge = (front + back) / 2
    up = top + rng.uniform(2.5, 4)
    side = 1 if front > 0 else -1
    brush = rng.choice(["roof", "roof2"])
    thing.face(brush, (0, -side, 1), [(x0, front, top), (x1, front, top), (x1, ridge, up), (x0, ridge, up)])
    for x, out in ((x0, -1), (x1, 1)):
        thing.face(shade, (out, 0, 0), [(x, front, top), (x, back, top), (x, ridge, up)])


def windows(thing, rng, x0, x1, y, out, base, floors, storey):
    """One face a storey. Near houses have single windows, far ones a band."""
    near = -16 < x0 < 60
    glass = rng.choice(["glass", "glass2"])
    count = max(2, int((x1 - x0) / 2.6)) if near else 1
    cell = (x1 - x0 - 1) / count
    share = 0.58 if near else 0.94
    for floor in range(1, floors):
        z = base + 0.5 + floor * storey + 0.9
        panes = []
        for i in range(count):
            a = x0 + .5 + cell * i + cell * (1 - share) / 2
            panes.append(rectangle_y((a, a + cell * share), y, (z, z + 1.5)))
        thing.face(glass, out, *panes)


def shop(thing, rng, x0, x1, front, side, base):
    out, y = (0, -side, 0), front - .04 * side
    thing.face("shop", out, rectangle_y((x0 + .6, x1 - 2.6), y, (base + .5, base + 2.6)))
    thing.face("trunk", out, rectangle_y((x1 - 2, x1 - .9), y, (base, base + 2.4)))
    if -16 < x0 < 90 and rng.random() < 0.6:
        brush = rng.choice(["awning", "awning2"])
        a, b, z = x0 + .5, x1 - 2.5, base + 2.7
        edge = front - .9 * side
        slope = [(a, front - .05 * side, z + .5), (b, front - .05 * side, z + .5), (b, edge, z), (a, edge, z)]
        thing.face(brush, (0, -side, 3), slope)
        thing.face(brush, (0, side, -3), slope)
        thing.face("mark", out, rectangle_y((a, b), edge - .01 * side, (z - .25, z)))


def tree(thing, x, y):
    thing.box((x - .14, x + .14), (y - .14, y + .14), (0.14, 2.4), "trunk", "xXyY")
    low, middle, high, r = 2.4, 3.6, 6.0, 0.95
    ring = [(x - r, y - r, middle), (x + r, y - r, middle), (x + r, y + r, middle), (x - r, y + r, middle)]
    for a, b, (ox, oy) in zip(ring, ring[1:] + ring[:1], [(0, -1), (1, 0), (0, 1), (-1, 0)]):
        thing.face("leaf", (ox, oy, .5), [a, b, (x, y, high)])
        thing.face("leaf", (ox, oy, -.5), [a, b, (x, y, low)])


def car(thing, x, side, brush):
    y = sorted((2.0 * side, 3.8 * side))
    thing.box((x, x + 4.2), y, (0.3, 0.85), brush, "xXyYZ")
    thing.box((x + .9, x + 3.5), (y[0] + .12, y[1] - .12), (0.85, 1.4), "glass2", "xXyYZ", brushes={"Z": brush})
    for wx in (x + .55, x + 2.95):
        for wy, sides in ((y[0], "xXy"), (y[1] - .2, "xXY")):
            thing.box((wx, wx + .65), (wy, wy + .2), (0, 0.3), "tyre", sides)


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "scenes")
    for name, maker in (("small", small), ("room", room), ("street", street),
                        ("winding", winding), ("docking", docking), ("ring", ring)):
        text = maker()
        json.loads(text)
        with open(os.path.join(folder, name + ".json"), "w", encoding="ascii", newline="\n") as file:
            file.write(text)


if __name__ == "__main__":
    main()
