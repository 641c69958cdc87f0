"""Shots as values."""

import json
import math
import threading

import numpy as np
import pytest

import lumivane

EYE = (-2.6, 0.35, 1.9)
FORWARD = (1, -0.06, -0.45)


def test_a_shot_has_the_values_of_its_file(small):
    shot = small.shot(EYE, FORWARD)
    document = json.loads(shot.text())
    assert len(shot) == len(document["Regions"]) > 3
    assert shot.objects == tuple(item["Id"] for item in document["Objects"])
    assert np.allclose(shot.points, document["Points"], rtol=0, atol=1e-5)
    for row, region in zip(shot.polygons, document["Regions"]):
        first = row["first_corner"]
        corners = shot.corners[first : first + row["corner_count"]] + 1
        assert corners.tolist() == region["Points"]
        assert row["object"] == region["Object"] and row["brush"] == region["Brush"]
        assert row["region"] == region["SourceRegion"] and row["pen"] == region["Pen"]
    assert np.array_equal(shot.polygon(0), shot.points[shot.corners[: len(shot.polygon(0))]])


def test_points_lie_on_the_disc_or_the_square(small):
    disc = small.shot(EYE, FORWARD).points
    assert np.hypot(disc[:, 0], disc[:, 1]).max() <= 1 + 1e-9
    square = small.shot(EYE, FORWARD, camera="normal").points
    assert 0.2 < np.abs(square).max() <= 1 + 1e-9


def test_a_shot_reports_what_happened(small, scenes, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    shot = small.shot(EYE, FORWARD)
    assert shot.eye == EYE and not shot.is_inside and not shot.has_cycle
    assert shot.hidden_faces >= 0 and "polygons" in repr(shot)
    ring = lumivane.Scene.read(scenes / "ring.json")
    assert ring.shot((0, 0, 5), (0, 0, -1)).has_cycle or ring.shot((-5, 0, 0)).has_cycle
    assert small.shot((-0.5, -0.8, 0.5)).is_inside


def test_an_eye_on_a_polygon_is_moved_off_it(small):
    eye = small.shot((0.5, -1.8, 0.001), (1, 0, 0)).eye
    assert eye != (0.5, -1.8, 0.001) and math.dist(eye, (0.5, -1.8, 0.001)) < 0.1
    still = small.shot((0.5, -1.8, 0.001), (1, 0, 0), eye_clearance=0.0).eye
    assert still == (0.5, -1.8, 0.001)


def test_a_look_straight_up_takes_north_as_up(small):
    assert small.shot((0, 0, 3), (0, 0, 1)).text() == small.shot((0, 0, 3), (0, 0, 1), (0, 1, 0)).text()


@pytest.mark.parametrize(
    ("arguments", "error", "text"),
    [
        ({"forward": (0, 0, 0)}, lumivane.Error, "small.json: no shot can be made: "),
        ({"forward": (1, 0, 0), "up": (2, 0, 0)}, lumivane.Error, "no shot can be made"),
        ({"eye": (math.nan, 0, 0)}, lumivane.Error, "no shot can be made"),
        ({"segments": 0}, lumivane.Error, "no shot can be made"),
        ({"limit_points": 5}, lumivane.Error, "no shot can be made"),
        ({"limit_points": -5}, lumivane.Error, "no shot can be made"),
        ({"camera": "fish"}, ValueError, "neither spherical nor normal"),
        ({"eye": (0, 0)}, ValueError, "3 numbers"),
        ({"segments": 1.5}, TypeError, ""),
    ],
)
def test_a_wrong_view_is_refused_and_the_scene_stays_usable(small, arguments, error, text):
    before = small.shot(EYE, FORWARD).text()
    with pytest.raises(error, match=text):
        small.shot(**{"eye": EYE, "forward": FORWARD, **arguments})
    assert small.shot(EYE, FORWARD).text() == before


def test_a_scene_of_arrays_gives_the_shot_of_its_file(square, tmp_path):
    shot = square.shot((0, 0, 0))
    assert len(shot) == 1 and shot.objects == ("1",)
    corners = shot.polygon(0)
    x, y = corners[:, 0], corners[:, 1]
    area = abs(x @ np.roll(y, -1) - y @ np.roll(x, -1)) / 2
    exact = square.look((0, 0, 0)).shares["area"][0]
    assert area == pytest.approx(exact, rel=0.01)
    shot.write(tmp_path / "square.shot.json")
    assert (tmp_path / "square.shot.json").read_bytes() == shot.text()


def test_labels_of_shots_and_maps_of_arrays_agree():
    points = np.array([[3.0, 1, -1], [3, -1, -1], [3, -1, 1], [3, 1, 1]])
    points = np.concatenate([points, points + (0, 2.5, 0), points - (0, 2.5, 0)])
    polygons = np.arange(12).reshape(3, 4)
    scene = lumivane.Scene.from_arrays(points, polygons, ["b", "a", "b"])
    shot, view = scene.shot((0, 0, 0)), scene.look((0, 0, 0))
    rows = {(shot.objects[p["object"] - 1], p["face"], p["region"]) for p in shot.polygons}
    cells = {
        (scene.objects[c["object"] - 1], c["face"], c["region"]) for c in view.cells if c["object"]
    }
    assert rows == cells and len(rows) == 3


def test_shots_of_one_scene_may_be_asked_for_by_several_threads(small):
    expected = small.shot(EYE, FORWARD).text()
    found = []
    threads = [
        threading.Thread(target=lambda: found.append(small.shot(EYE, FORWARD).text()))
        for _ in range(6)
    ]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert found == [expected] * 6


def test_a_shot_outlives_its_scene(scenes):
    scene = lumivane.Scene.read(scenes / "small.json")
    shot = scene.shot(EYE, FORWARD)
    svg = shot.svg()
    del scene
    assert shot.svg() == svg and shot._repr_svg_().startswith("<?xml")
