"""The example scripts run, and say what they find."""

import importlib.util
import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

EXAMPLES = Path(os.environ["LUMIVANE_ROOT"]) / "examples/python"


def run(name, tmp_path, *arguments):
    pytest.importorskip("matplotlib")
    done = subprocess.run(
        [sys.executable, EXAMPLES / name, *map(str, arguments), "-o", tmp_path / "out.png"],
        capture_output=True, text=True, cwd=tmp_path, env={**os.environ, "MPLCONFIGDIR": str(tmp_path)},
    )  # fmt: skip
    assert done.returncode == 0, done.stderr
    assert (tmp_path / "out.png").read_bytes().startswith(b"\x89PNG")
    return done.stdout


def test_the_map_of_sky_view_factors_leaves_out_the_house(tmp_path, house):
    output = run("sky_view_factor_map.py", tmp_path, EXAMPLES / "../../tests/data/models/house.city.json",
                 "--spacing", "2")  # fmt: skip
    eyes, mean = re.search(r"(\d+) eyes, mean ([0-9.]+)", output).groups()
    size = house.bounds[1] - house.bounds[0]
    assert 5 <= int(eyes) < (size[0] / 2 + 1) * (size[1] / 2 + 1)
    assert 0.3 < float(mean) < 1.0


def test_the_sun_is_seen_longer_in_summer(tmp_path, scenes):
    pytest.importorskip("geopandas")
    output = run("fisheye_sun_path.py", tmp_path, scenes / "street.json", "--eye=-5.3,-1.37,1.6")
    hours = [tuple(map(float, found)) for found in re.findall(r": ([0-9.]+) of ([0-9.]+) hours", output)]
    assert len(hours) == 3
    assert all(0 <= seen <= length for seen, length in hours)
    # The lengths of days at 52 degrees, from sunrise to sunset of the sun's centre.
    assert [length for _, length in hours] == pytest.approx([16.5, 12.0, 7.5], abs=0.15)
    assert hours[0][0] > hours[2][0]


def test_the_sun_stands_in_the_south_at_noon():
    spec = importlib.util.spec_from_file_location("sun", EXAMPLES / "fisheye_sun_path.py")
    pytest.importorskip("matplotlib")
    sun = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(sun)
    import numpy as np

    east, north, up = sun.sun_directions(52.0, 0.0, np.array([6.0, 12.0, 18.0])).T
    assert east == pytest.approx([1, 0, -1], abs=1e-9)
    assert north[1] == pytest.approx(-np.sin(np.radians(52.0)))
    assert up == pytest.approx([0, np.cos(np.radians(52.0)), 0], abs=1e-9)


def test_the_nearest_objects_come_in_order_and_lie_where_the_ray_meets_them(tmp_path, scenes):
    import numpy as np

    import lumivane

    eye = "0.35,2.137,1.6"
    output = run("nearest_objects.py", tmp_path, scenes / "room.json", "--eye", eye, "--count", "6")
    rows = re.findall(r"^(.+): ([0-9.]+) at azimuth (-?\d+), elevation (-?\d+)$", output, re.M)
    assert len({name for name, *_ in rows}) == 6
    distances = [float(distance) for _, distance, *_ in rows]
    assert distances == sorted(distances)
    scene = lumivane.Scene.read(scenes / "room.json")
    cells = scene.look(tuple(map(float, eye.split(","))), field="sphere").cells
    for name, distance, *_ in rows:
        number = scene.objects.index(name) + 1
        least = cells["min_distance"][cells["object"] == number].min()
        assert float(distance) == pytest.approx(least, abs=6e-4)
    spec = importlib.util.spec_from_file_location("nearest", EXAMPLES / "nearest_objects.py")
    nearest = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(nearest)
    view = scene.look(tuple(map(float, eye.split(","))), field="sphere")
    for _, distance, direction in nearest.nearest_objects(scene, view, 6):
        assert np.linalg.norm(direction) == pytest.approx(1)
        assert scene.seen_in(view.eye, direction * 1.0)["distance"][0] >= distance - 1e-9
