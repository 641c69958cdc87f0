#!/usr/bin/env python3
"""What hides the sun when: a fisheye straight up with the sun's path on three days of the year.

    python3 fisheye_sun_path.py SCENE --eye X,Y,Z [--latitude 52] [-o fisheye.png]

y is north. The cells of the map are drawn exactly, by the orthographic projection, in which areas are
view factors. For each point of the path the ray towards the sun says whether it is seen.
"""

import argparse
import math

import matplotlib
import numpy as np

import lumivane

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402

DAYS = {"21 June": 23.44, "21 March": 0.0, "21 December": -23.44}  # the sun's declination, degrees


def sun_directions(latitude, declination, hours):
    """Unit vectors to the sun by the hours of true solar time: x east, y north, z up."""
    phi, delta = math.radians(latitude), math.radians(declination)
    angle = np.radians(15.0 * (hours - 12.0))
    east = -math.cos(delta) * np.sin(angle)
    north = math.cos(phi) * math.sin(delta) - math.sin(phi) * math.cos(delta) * np.cos(angle)
    up = math.sin(phi) * math.sin(delta) + math.cos(phi) * math.cos(delta) * np.cos(angle)
    return np.column_stack([east, north, up])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("scene")
    parser.add_argument("--eye", type=lambda text: tuple(map(float, text.split(","))), required=True)
    parser.add_argument("--latitude", type=float, default=52.0, help="degrees north")
    parser.add_argument("-o", "--out", default="sun-path.png")
    arguments = parser.parse_args()

    scene = lumivane.Scene.read(arguments.scene)
    view = scene.look(arguments.eye, forward=(0, 0, 1), up=(0, 1, 0))
    frame = view.to_geodataframe("fisheye")

    figure, axes = pyplot.subplots(figsize=(6, 6), layout="constrained")
    is_sky = frame["object"] == 0
    frame[~is_sky].plot(ax=axes, column="object", cmap="Greys", edgecolor="black", linewidth=0.2)
    frame[is_sky].plot(ax=axes, color="#bfe3ff")

    right = np.cross(view.forward, view.up)  # of the picture, as the eye looks up
    hours = np.arange(0.0, 24.0, 1 / 60)
    for day, declination in DAYS.items():
        directions = sun_directions(arguments.latitude, declination, hours)
        directions = directions[directions[:, 2] > 0]
        is_seen = scene.seen_in(arguments.eye, directions)["object"] == 0
        x, y = directions @ right, directions @ np.array(view.up)
        axes.scatter(x[is_seen], y[is_seen], s=3, color="#ff9d00")
        axes.scatter(x[~is_seen], y[~is_seen], s=0.5, color="#a04000")
        sun = is_seen.sum() / 60
        axes.annotate(f"{day}: {sun:.1f} h", (x[len(x) // 2], y[len(y) // 2]), color="#602000",
                      ha="center", va="bottom")  # fmt: skip
        print(f"{day}: {sun:.1f} of {len(directions) / 60:.1f} hours of sun")
    axes.set(aspect="equal", title=f"Sky view factor {view.sky_view_factor:.3f}")
    axes.axis("off")
    figure.savefig(arguments.out, dpi=100)


if __name__ == "__main__":
    main()
