#!/usr/bin/env python3
"""Makes the small models that the importers are tested with: tests/data/models.

Usage: make_models.py [FOLDER]

Needs nothing but Python's own library. The same script gives the same bytes everywhere.
"""

import base64
import json
import os
import struct
import sys

# A cube of side 2 around the origin: corners and sides, counter-clockwise as seen from outside.
CORNERS = [(x, y, z) for z in (-1, 1) for y in (-1, 1) for x in (-1, 1)]
SIDES = {
    "bottom": (0, 2, 3, 1), "top": (4, 5, 7, 6), "front": (0, 1, 5, 4),
    "back": (2, 6, 7, 3), "left": (0, 4, 6, 2), "right": (1, 3, 7, 5),
}
TETRAHEDRON = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)]
TETRAHEDRON_SIDES = [(0, 2, 1), (0, 1, 3), (0, 3, 2), (1, 2, 3)]


def triangles(sides):
    for a, b, c, d in sides:
        yield a, b, c
        yield a, c, d


def obj():
    lines = ["# A cube of triangles: its walls in one group, its lid in another", "mtllib cube.mtl"]
    lines += ["v %d %d %d" % corner for corner in CORNERS]
    lines += ["o walls", "usemtl brick"]
    walls = [side for name, side in SIDES.items() if name != "top"]
    lines += ["f %d %d %d" % tuple(i + 1 for i in t) for t in triangles(walls)]
    lines += ["o lid", "usemtl tile"]
    # Numbers from the end, with normals and texture points left out in both ways.
    lines += ["vn 0 0 1"]
    lines += ["f %d//1 %d//1 %d//1" % tuple(i - 8 for i in t) for t in triangles([SIDES["top"]])]
    return "\n".join(lines) + "\n"


MTL = """# Colours of cube.obj
newmtl brick
Kd 0.8 0.4 0.2
d 1
newmtl tile
Kd 0.2 0.4 0.6
Tr 0.5
"""


def stl_text():
    lines = ["solid tetrahedron"]
    for side in TETRAHEDRON_SIDES:
        lines += ["  facet normal 0 0 0", "    outer loop"]
        lines += ["      vertex %g %g %g" % TETRAHEDRON[i] for i in side]
        lines += ["    endloop", "  endfacet"]
    return "\n".join(lines + ["endsolid tetrahedron", ""])


def stl_binary():
    data = b"A tetrahedron".ljust(80, b"\0") + struct.pack("<I", len(TETRAHEDRON_SIDES))
    for side in TETRAHEDRON_SIDES:
        numbers = [0.0] * 3 + [c for i in side for c in TETRAHEDRON[i]]
        data += struct.pack("<12fH", *numbers, 0)
    return data


# A pyramid on a square, its base grey and its sides of two colours.
PYRAMID = [(0, 0, 0), (2, 0, 0), (2, 2, 0), (0, 2, 0), (1, 1, 1.5)]
PYRAMID_SIDES = [((0, 3, 2, 1), (128, 128, 128)), ((0, 1, 4), (200, 60, 40)),
                 ((1, 2, 4), (40, 60, 200)), ((2, 3, 4), (200, 60, 40)), ((3, 0, 4), (40, 60, 200))]


def ply_header(encoding):
    return ("ply\nformat %s 1.0\ncomment a pyramid\nelement vertex 5\nproperty float x\n"
            "property float y\nproperty float z\nelement face 5\n"
            "property list uchar int vertex_indices\nproperty uchar red\nproperty uchar green\n"
            "property uchar blue\nend_header\n" % encoding)


def ply_text():
    text = ply_header("ascii")
    text += "".join("%g %g %g\n" % p for p in PYRAMID)
    for side, colour in PYRAMID_SIDES:
        text += " ".join(str(n) for n in (len(side),) + side + colour) + "\n"
    return text


def ply_binary(encoding, order):
    data = ply_header(encoding).encode()
    for point in PYRAMID:
        data += struct.pack(order + "3f", *point)
    for side, colour in PYRAMID_SIDES:
        data += struct.pack(order + "B%di3B" % len(side), len(side), *side, *colour)
    return data


def gltf_parts():
    """Document and data of two boxes: one opaque, one see-through, turned and moved. y is up."""
    points = [(x, z, -y) for x, y, z in CORNERS]
    data = b"".join(struct.pack("<3f", *p) for p in points)
    indices = [i for t in triangles(SIDES.values()) for i in t]
    data += struct.pack("<%dH" % len(indices), *indices)
    document = {
        "asset": {"version": "2.0"},
        "scene": 0,
        "scenes": [{"nodes": [0]}],
        "nodes": [
            {"name": "house", "mesh": 0, "children": [1]},
            {"name": "annex", "mesh": 1, "translation": [4, 0, 0], "scale": [1, 0.5, 1]},
        ],
        "meshes": [
            {"name": "box", "primitives": [
                {"attributes": {"POSITION": 0}, "indices": 1, "material": 0}]},
            {"name": "glass box", "primitives": [
                {"attributes": {"POSITION": 0}, "indices": 1, "material": 1}]},
        ],
        "materials": [
            {"name": "plaster",
             "pbrMetallicRoughness": {"baseColorFactor": [1, 0.5, 0.2, 1]}},
            {"name": "glass", "alphaMode": "BLEND",
             "pbrMetallicRoughness": {"baseColorFactor": [0, 0, 1, 0.4]}},
        ],
        "accessors": [
            {"bufferView": 0, "componentType": 5126, "count": 8, "type": "VEC3",
             "min": [-1, -1, -1], "max": [1, 1, 1]},
            {"bufferView": 1, "componentType": 5123, "count": 36, "type": "SCALAR"},
        ],
        "bufferViews": [
            {"buffer": 0, "byteOffset": 0, "byteLength": 96},
            {"buffer": 0, "byteOffset": 96, "byteLength": 72},
        ],
        "buffers": [{"byteLength": len(data)}],
    }
    return document, data


def gltf():
    document, data = gltf_parts()
    document["buffers"][0]["uri"] = ("data:application/octet-stream;base64,"
                                     + base64.b64encode(data).decode())
    return json.dumps(document, indent=1) + "\n"


def glb():
    document, data = gltf_parts()
    text = json.dumps(document).encode()
    text += b" " * (-len(text) % 4)
    data += b"\0" * (-len(data) % 4)
    chunks = struct.pack("<I4s", len(text), b"JSON") + text
    chunks += struct.pack("<I4s", len(data), b"BIN\0") + data
    return struct.pack("<4sII", b"glTF", 2, 12 + len(chunks)) + chunks


class City:
    """Vertices of a city model in millimetres, each kept once."""

    def __init__(self):
        self.vertices = []

    def ring(self, *points):
        return [self.number(p) for p in points]

    def number(self, point):
        scaled = [round(c * 1000) for c in point]
        if scaled not in self.vertices:
            self.vertices.append(scaled)
        return self.vertices.index(scaled)


def city():
    """A house of 6 x 4 x 3 m with a gable roof and a window in its front, a road, two lamps."""
    model = City()
    a, b, c, d = (0, 0, 0), (6, 0, 0), (6, 4, 0), (0, 4, 0)
    e, f, g, h = (0, 0, 3), (6, 0, 3), (6, 4, 3), (0, 4, 3)
    left, right = (0, 2, 4.5), (6, 2, 4.5)
    window = [(2, 0, 1), (2, 0, 2), (4, 0, 2), (4, 0, 1)]
    ring = model.ring
    shell = [
        [ring(a, d, c, b)],
        [ring(a, b, f, e), ring(*window)],
        [ring(b, c, g, right, f)],
        [ring(c, d, h, g)],
        [ring(d, a, e, left, h)],
        [ring(e, f, right, left)],
        [ring(g, h, left, right)],
        [ring(*reversed(window))],
    ]
    block = [[ring(a, d, c, b)], [ring(e, f, g, h)], [ring(a, b, f, e)], [ring(b, c, g, f)],
             [ring(c, d, h, g)], [ring(d, a, e, h)]]
    house = {
        "type": "Building",
        "geometry": [
            {"type": "Solid", "lod": "1.2", "boundaries": [block]},
            {"type": "Solid", "lod": "2.2", "boundaries": [shell], "semantics": {
                "surfaces": [{"type": "GroundSurface"}, {"type": "WallSurface"},
                             {"type": "RoofSurface"}, {"type": "Window", "parent": 1}],
                "values": [[0, 1, 1, 1, 1, 2, 2, 3]]}},
        ],
    }
    road = {"type": "Road", "geometry": [{
        "type": "MultiSurface", "lod": "1",
        "boundaries": [[ring((-4, -6, 0), (4, -6, 0), (4, -2, 0))],
                       [ring((-4, -6, 0), (4, -2, 0), (-4, -2, 0))],
                       [ring((4, -6, 0), (10, -6, 0), (10, -2, 0), (4, -2, 0))]]}]}
    shed = {"type": "+Shed", "geometry": [{
        "type": "MultiSurface", "lod": "1",
        "boundaries": [[ring((8, 0, 0), (10, 0, 0), (10, 0, 2), (8, 0, 2))]],
        "material": {"paint": {"value": 0}}}]}

    def lamp(x):
        return {"type": "CityFurniture", "geometry": [{
            "type": "GeometryInstance", "template": 0, "boundaries": [model.number((x, -1, 0))],
            "transformationMatrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}]}

    objects = {"house": house, "road": road, "shed": shed, "lamp west": lamp(-2),
               "lamp east": lamp(8), "street": {"type": "CityObjectGroup", "children": ["road"]},
               "tree": {"type": "SolitaryVegetationObject", "geometry": [
                   {"type": "MultiPoint", "lod": "0", "boundaries": [model.number((-3, 2, 0))]}]}}
    return json.dumps({
        "type": "CityJSON", "version": "2.0",
        "transform": {"scale": [0.001, 0.001, 0.001], "translate": [84600.0, 447400.0, 1.0]},
        "CityObjects": objects,
        "vertices": model.vertices,
        "appearance": {"materials": [{"name": "paint", "diffuseColor": [0.0, 0.6, 0.4],
                                      "transparency": 0.2}]},
        "geometry-templates": {
            "templates": [{"type": "MultiSurface", "lod": "1", "boundaries": [
                [[0, 1, 3]], [[1, 2, 3]], [[2, 0, 3]]]}],
            "vertices-templates": [[0, 0, 0], [0.2, 0, 0], [0.1, 0.2, 0], [0.1, 0.1, 2]]},
    }, indent=1) + "\n"


# The head of both tiles of a town, whose coordinates are centimetres in a national grid.
TILE = {
    "type": "CityJSON", "version": "2.0",
    "metadata": {"referenceSystem": "https://www.opengis.net/def/crs/EPSG/0/7415"},
    "transform": {"scale": [0.01, 0.01, 0.01], "translate": [84600.0, 447400.0, 0.0]},
}


def block(x, y, width, depth, height):
    """A building without a roof of its own, and its vertices."""
    ring = [(x, y), (x + width, y), (x + width, y + depth), (x, y + depth)]
    shell = [[[0, 3, 2, 1]], [[4, 5, 6, 7]]]
    shell += [[[i, (i + 1) % 4, (i + 1) % 4 + 4, i + 4]] for i in range(4)]
    kinds = ["GroundSurface", "RoofSurface", "WallSurface"]
    building = {"type": "Building", "geometry": [{
        "type": "Solid", "lod": "1", "boundaries": [shell],
        "semantics": {"surfaces": [{"type": kind} for kind in kinds],
                      "values": [[0, 1, 2, 2, 2, 2]]}}]}
    return building, [[*corner, z] for z in (0, height) for corner in ring]


def land(x, first):
    """The ground of a tile, whose vertices are numbered from the first."""
    square = [first, first + 1, first + 2, first + 3]
    ground = {"type": "LandUse", "geometry": [
        {"type": "MultiSurface", "lod": "1", "boundaries": [[square]]}]}
    return ground, [[x, 0, 0], [x + 2000, 0, 0], [x + 2000, 2000, 0], [x, 2000, 0]]


def compact(document):
    return json.dumps(document, separators=(",", ":")) + "\n"


def western_tile():
    tower, corners = block(500, 500, 800, 900, 1800)
    ground, more = land(0, len(corners))
    return compact({**TILE, "CityObjects": {"tower": tower, "ground": ground},
                    "vertices": corners + more})


def eastern_tile():
    """A sequence: the head, then a feature a line. Its ground has the name of the other tile's."""
    lines = [{**TILE, "CityObjects": {}, "vertices": []}]
    for name, (thing, vertices) in {"hall": block(2600, 700, 900, 700, 1200),
                                    "ground": land(2000, 0)}.items():
        lines.append({"type": "CityJSONFeature", "id": name, "CityObjects": {name: thing},
                      "vertices": vertices})
    return "".join(compact(line) for line in lines)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "tests/data/models")
    os.makedirs(folder, exist_ok=True)
    files = {
        "cube.obj": obj(), "cube.mtl": MTL,
        "tetrahedron.stl": stl_text(), "tetrahedron-binary.stl": stl_binary(),
        "pyramid.ply": ply_text(),
        "pyramid-little.ply": ply_binary("binary_little_endian", "<"),
        "pyramid-big.ply": ply_binary("binary_big_endian", ">"),
        "boxes.gltf": gltf(), "boxes.glb": glb(),
        "house.city.json": city(),
        "tile-west.city.json": western_tile(), "tile-east.city.jsonl": eastern_tile(),
    }
    for name, content in files.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())


if __name__ == "__main__":
    main()
