#!/usr/bin/env python3
"""A map of sky view factors over a city model: one exact look straight up from each point of a grid.

    python3 sky_view_factor_map.py MODEL [--spacing 5] [--height 1.7] [--area X0,Y0,X1,Y1] [-o map.png]

Eyes inside buildings are left out: where the ray straight down from far above meets a roof higher
than the eye. Lengths are those of the model, mostly metres.
"""

import argparse
import sys

import matplotlib
import numpy as np

import lumivane

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402


def ground_heights(scene, x, y):
    """The height of what lies highest at each point, and of the lowest of the scene elsewhere."""
    low, high = scene.bounds
    above = high[2] + 10.0
    heights = np.full(x.shape, low[2])
    for at in np.ndindex(x.shape):
        seen = scene.seen_in((x[at], y[at], above), [(0, 0, -1)])[0]
        if seen["object"]:
            heights[at] = above - seen["distance"]
    return heights


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("model", help="a city model or any other scene")
    parser.add_argument("--spacing", type=float, default=5.0, help="of the grid")
    parser.add_argument("--height", type=float, default=1.7, help="of the eyes above the ground")
    parser.add_argument("--area", help="X0,Y0,X1,Y1: the part to map; without it the whole model")
    parser.add_argument("-o", "--out", default="sky-view-factors.png")
    arguments = parser.parse_args()

    scene = lumivane.Scene.read(arguments.model)
    west, south, east, north = (
        map(float, arguments.area.split(",")) if arguments.area else scene.bounds[:, :2].ravel()
    )
    step = arguments.spacing
    x, y = np.meshgrid(np.arange(west, east, step), np.arange(south, north, step))
    top = ground_heights(scene, x, y)
    ground = np.percentile(top, 5)
    is_outside = top < ground + arguments.height
    eyes = np.column_stack([x[is_outside], y[is_outside], np.full(is_outside.sum(), ground)])
    eyes[:, 2] += arguments.height

    factors = np.full(x.shape, np.nan)
    factors[is_outside] = scene.shares(
        eyes,
        forward=(0, 0, 1),
        columns="sky_view_factor",
        progress=lambda part: print(f"\r{part:4.0%}", end="", file=sys.stderr),
    )["sky_view_factor"]

    figure, axes = pyplot.subplots(figsize=(7, 6), layout="constrained")
    image = axes.pcolormesh(x, y, factors, vmin=0, vmax=1, cmap="magma")
    axes.set(aspect="equal", xlabel="x", ylabel="y", title="Sky view factor, exact at each point")
    axes.set_facecolor("#c8c8c8")
    figure.colorbar(image)
    figure.savefig(arguments.out, dpi=100)
    print(f"\r{len(eyes)} eyes, mean {np.nanmean(factors):.3f}: {arguments.out}")


if __name__ == "__main__":
    main()
