#!/usr/bin/env python3
"""Removes hidden lines of a mesh by FreeCAD, and writes what it gives.

Usage: project.py MESH.obj X,Y,Z OUT.json    with a Python that finds FreeCAD's modules

The mesh becomes a shell of planar faces, as FreeCAD's own conversion of meshes makes it; then its
TechDraw workbench projects it along X,Y,Z. Written are seconds of the processor for both, and the
visible and hidden lines as pieces in the plane of projection, whose axes are those of the mesh's
corners there.
"""

import json
import sys
import time

import FreeCAD
import Mesh
import Part
import TechDraw


def pieces(shape):
    found = []
    for edge in shape.Edges:
        points = edge.discretize(2) if edge.Curve.TypeId == "Part::GeomLine" else edge.discretize(16)
        found += [[a.x, a.y, b.x, b.y] for a, b in zip(points, points[1:])]
    return found


def main():
    path, direction, out = sys.argv[1:4]
    mesh = Mesh.Mesh(path)
    start = time.process_time()
    shape = Part.Shape()
    shape.makeShapeFromMesh(mesh.Topology, 1e-9)
    made = time.process_time()
    groups = TechDraw.projectEx(shape, FreeCAD.Vector(*map(float, direction.split(","))))
    done = time.process_time()
    names = ["sharp", "smooth", "seam", "outline", "iso"]
    with open(out, "w", encoding="utf-8") as file:
        json.dump({"faces": len(shape.Faces), "seconds_shape": made - start, "seconds": done - made,
                   "visible": {name: pieces(group) for name, group in zip(names, groups[:5])},
                   "hidden": {name: pieces(group) for name, group in zip(names, groups[5:])}}, file)


main()
