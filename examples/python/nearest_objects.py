#!/usr/bin/env python3
"""What a robot sees next to it: the nearest visible objects, how far and in which direction.

    python3 nearest_objects.py SCENE --eye X,Y,Z [--count 5] [-o nearest.png]

No ray is cast at random: the thin leg of a table counts as well as a wall, and distances are exact.
"""

import argparse

import matplotlib
import numpy as np

import lumivane

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402


def nearest_point(scene, view, cell):
    """The direction of the point of a cell that is nearest to the eye: straight to the polygon's
    plane, if that is in the cell, and on the cell's border otherwise."""
    eye = np.array(view.eye)
    points, (values, offsets) = scene.to_arrays()
    row = np.flatnonzero(scene.regions["polygon"] == view.cells["polygon"][cell])[0]
    corners = points[values[offsets[row] : offsets[row + 1]]]
    normal = np.cross(corners, np.roll(corners, -1, axis=0)).sum(axis=0)
    normal *= np.sign((corners[0] - eye) @ normal) / np.linalg.norm(normal)
    straight = scene.seen_in(eye, normal)[0]
    if straight["polygon"] == view.cells["polygon"][cell]:
        return normal
    steps = np.linspace(0, 1, 32)[:, None]
    border = [
        start * (1 - steps) + end * steps
        for ring in map(view.vertices.__getitem__, view.rings(cell))
        for start, end in zip(ring, np.roll(ring, -1, axis=0))
    ]
    directions = np.concatenate(border)
    directions /= np.linalg.norm(directions, axis=1, keepdims=True)
    return directions[np.argmax(directions @ normal)]


def nearest_objects(scene, view, count):
    """Number, least distance and direction of the nearest objects of a map."""
    order = np.argsort(view.cells["min_distance"], kind="stable")
    order = order[view.cells["object"][order] > 0]
    _, first = np.unique(view.cells["object"][order], return_index=True)
    for cell in order[np.sort(first)[:count]]:
        row = view.cells[cell]
        yield row["object"], row["min_distance"], nearest_point(scene, view, cell)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("scene")
    parser.add_argument("--eye", type=lambda text: tuple(map(float, text.split(","))), required=True)
    parser.add_argument("--count", type=int, default=5)
    parser.add_argument("-o", "--out", default="nearest.png")
    arguments = parser.parse_args()

    scene = lumivane.Scene.read(arguments.scene)
    view = scene.look(arguments.eye, field="sphere")
    eye = np.array(view.eye)

    figure, axes = pyplot.subplots(figsize=(7, 6), layout="constrained")
    points, (values, offsets) = scene.to_arrays()
    for first, last in zip(offsets[:-1], offsets[1:]):
        outline = points[values[first:last]]
        axes.fill(outline[:, 0], outline[:, 1], facecolor="#00000008", edgecolor="#00000030", lw=0.5)
    axes.plot(*eye[:2], "o", color="#d03000", markersize=9)
    for number, distance, direction in nearest_objects(scene, view, arguments.count):
        name = scene.objects[number - 1]
        azimuth = np.degrees(np.arctan2(direction[1], direction[0]))
        elevation = np.degrees(np.arcsin(direction[2]))
        print(f"{name}: {distance:.3f} at azimuth {azimuth:.0f}, elevation {elevation:.0f}")
        end = eye + distance * direction
        axes.plot([eye[0], end[0]], [eye[1], end[1]], color="#d03000", lw=1)
        axes.annotate(f"{name} {distance:.2f}", end[:2], color="#802000", fontsize=9)
    axes.set(aspect="equal", xlabel="x", ylabel="y", title="Nearest visible objects, from above")
    figure.savefig(arguments.out, dpi=100)


if __name__ == "__main__":
    main()
