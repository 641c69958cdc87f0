"""Scenes of arrays, good and hostile ones."""

import math

import numpy as np
import pytest

import lumivane
from conftest import SQUARE, SQUARE_POINTS

RAGGED = (np.array([0, 1, 2, 3, 4, 5, 6]), np.array([0, 4, 7]))
POINTS = np.array(
    [[3.0, 1, -1], [3, -1, -1], [3, -1, 1], [3, 1, 1], [2, 0.1, 0], [2, -0.1, 0], [2, 0, 0.1]]
)


def test_a_square_has_the_view_factor_of_the_closed_form(square):
    shares = square.look((0, 0, 0)).shares
    a = 1.0 / 3.0
    expected = 4 / math.pi * (a / math.sqrt(1 + a * a)) * math.atan(a / math.sqrt(1 + a * a))
    assert shares["view_factor"][0] == pytest.approx(expected, rel=1e-14)
    assert shares["id"].tolist() == ["1", ""]
    assert shares["kind"].tolist() == ["object", "sky"]
    assert shares["view_factor"].sum() == pytest.approx(1.0, rel=1e-14)


def test_the_winding_says_which_side_is_seen():
    eye = (0, 0, 0)
    skies = {
        winding: lumivane.Scene.from_arrays(SQUARE_POINTS, SQUARE, winding=winding)
        .look(eye)
        .sky_view_factor
        for winding in ("ccw", "cw")
    }
    assert skies["ccw"] < 1.0 and skies["cw"] == 1.0
    with pytest.raises(ValueError, match="winding"):
        lumivane.Scene.from_arrays(SQUARE_POINTS, SQUARE, winding="left")


def test_ragged_polygons_are_values_and_offsets():
    scene = lumivane.Scene.from_arrays(POINTS, RAGGED)
    assert scene.regions["corner_count"].tolist() == [4, 3]
    assert scene.bounds.tolist() == [[2, -1, -1], [3, 1, 1]]
    assert len(scene) == 2


@pytest.mark.parametrize("winding", ["ccw", "cw"])
def test_arrays_come_back_as_they_went_in(winding):
    scene = lumivane.Scene.from_arrays(POINTS, RAGGED, winding=winding)
    points, (values, offsets) = scene.to_arrays(winding)
    assert np.array_equal(points, POINTS)
    assert np.array_equal(values, RAGGED[0]) and np.array_equal(offsets, RAGGED[1])
    again = lumivane.Scene.from_arrays(points, (values, offsets), winding=winding)
    assert again.look((0, 0, 0)).to_json() == scene.look((0, 0, 0)).to_json()


def test_labels_group_polygons_and_cells_keep_their_positions():
    points = np.concatenate([SQUARE_POINTS + (0, 4.0 * i, 0) for i in range(4)])
    polygons = np.concatenate([SQUARE + 4 * i for i in range(4)])
    scene = lumivane.Scene.from_arrays(points, polygons, ["b", "a", "b", "c"])
    assert scene.objects == ("b", "a", "c")
    assert scene.regions["polygon"].tolist() == [0, 2, 1, 3]
    assert scene.regions["object"].tolist() == [1, 1, 2, 3]
    assert scene.regions["region"].tolist() == [1, 2, 1, 1]
    cells = scene.look((0, 0, 0), two_sided=True).cells
    seen = {cell["polygon"]: scene.objects[cell["object"] - 1] for cell in cells if cell["object"]}
    assert seen == {0: "b", 1: "a", 2: "b", 3: "c"}
    assert cells["polygon"][-1] == -1 and cells["object"][-1] == 0


def test_labels_may_be_whole_numbers(square):
    scene = lumivane.Scene.from_arrays(POINTS, RAGGED, np.array([700, 3], np.uint16))
    assert scene.objects == ("700", "3")


def test_classes_are_summed_and_none_comes_last():
    points = np.concatenate([SQUARE_POINTS + (0, 4.0 * i, 0) for i in range(3)])
    polygons = np.concatenate([SQUARE + 4 * i for i in range(3)])
    scene = lumivane.Scene.from_arrays(points, polygons, classes=["wall", "", "roof"])
    assert scene.classes == ("wall", "roof")
    table = scene.look((0, 0, 0)).table("class")
    assert table["class"].tolist()[:2] == ["wall", "roof"]
    many = scene.shares([(0, 0, 0)], by="class", columns="solid_angle")["solid_angle"]
    assert many.shape == (1, 3)
    assert many[0].tolist() == table["solid_angle"][:3].tolist()
    assert (many > 0).all()


def test_arrays_of_other_types_and_layouts_give_the_same_map():
    scene = lumivane.Scene.from_arrays(POINTS, RAGGED)
    expected = scene.look((0, 0, 0)).to_json()
    read_only = POINTS.copy()
    read_only.flags.writeable = False
    strided = np.zeros((14, 6))[::2, ::2]
    strided[...] = POINTS
    for points in (read_only, strided, np.asfortranarray(POINTS), POINTS.tolist(),
                   POINTS.astype(">f8"), POINTS.astype(np.longdouble)):  # fmt: skip
        made = lumivane.Scene.from_arrays(points, RAGGED)
        assert made.look((0, 0, 0)).to_json() == expected
    for kind in (np.uint8, np.int16, ">i4", np.uint64):
        values = np.repeat(RAGGED[0].astype(kind), 2)[::2]
        made = lumivane.Scene.from_arrays(POINTS, (values, RAGGED[1].tolist()))
        assert made.look((0, 0, 0)).to_json() == expected


def test_the_arrays_given_are_neither_kept_nor_changed():
    points, values = POINTS.copy(), RAGGED[0].copy()
    scene = lumivane.Scene.from_arrays(points, (values, RAGGED[1]))
    before = scene.look((0, 0, 0)).to_json()
    assert np.array_equal(points, POINTS) and np.array_equal(values, RAGGED[0])
    points[:] = 7.0
    values[:] = 0
    assert scene.look((0, 0, 0)).to_json() == before


def test_a_scene_of_nothing_is_all_sky():
    for polygons in ([], np.zeros((0, 3), int), ([], [0]), (np.zeros(0, int), np.zeros(1, int))):
        scene = lumivane.Scene.from_arrays(np.zeros((0, 3)), polygons)
        assert len(scene) == 0 and scene.objects == ()
        assert np.isnan(scene.bounds).all()
        view = scene.look((1, 2, 3))
        assert view.sky_view_factor == pytest.approx(1.0) and len(view) == 1
        assert scene.shares([(0, 0, 0)])["view_factor"].shape == (1, 0)
        assert scene.shares(np.zeros((0, 3)))["view_factor"].shape == (0, 0)
        assert len(scene.seen_in((0, 0, 0), np.zeros((0, 3)))) == 0
    assert len(lumivane.Scene.from_arrays([], []).look((0, 0, 0))) == 1


@pytest.mark.parametrize(
    ("points", "error", "text"),
    [
        (np.zeros((7, 2)), ValueError, r"points: the shape must be \(n, 3\), but is \(7, 2\)"),
        (np.zeros(7), ValueError, "points: the shape"),
        (np.zeros((7, 3, 1)), ValueError, "points: the shape"),
        (np.array([["a"] * 3] * 7), TypeError, "points: real numbers are needed"),
        (np.zeros((7, 3), complex), TypeError, "points: real numbers"),
        (np.array([[None] * 3] * 7), TypeError, "points: real numbers"),
        (np.full((7, 3), np.nan), ValueError, "point at position 0 has a coordinate that is not"),
        (np.full((7, 3), np.inf), ValueError, "not finite"),
        (np.full((7, 3), 1e31), ValueError, "beyond 1e30"),
        ([[1, 2, 3], [4, 5]], ValueError, "points"),
        (POINTS[:3], ValueError, "a corner points at no point"),
    ],
)
def test_wrong_points_are_refused(points, error, text):
    with pytest.raises(error, match=text):
        lumivane.Scene.from_arrays(points, RAGGED)


@pytest.mark.parametrize(
    ("polygons", "error", "text"),
    [
        (([0, 1, 2], [0, 4]), ValueError, "offsets must rise from 0"),
        (([0, 1, 2], [1, 3]), ValueError, "offsets must rise from 0"),
        (([0, 1, 2], [0, 3, 2, 3]), ValueError, "offsets must rise from 0"),
        (([0, 1, 2], []), ValueError, "one more than there are polygons"),
        (([0, 1, -1], [0, 3]), ValueError, "a corner points at no point"),
        (([0, 1, 7], [0, 3]), ValueError, "a corner points at no point"),
        (([0, 1, 2**40], [0, 3]), ValueError, "out of range"),
        (([0.0, 1.0, 2.0], [0, 3]), TypeError, "whole numbers are needed"),
        (([0, 1, 2], [0.0, 3.0]), TypeError, "whole numbers are needed"),
        (([[0, 1, 2]], [0, 3]), ValueError, "the shape must be"),
        (np.array([[0.5, 1, 2]]), TypeError, "whole numbers are needed"),
        (np.array([0, 1, 2]), ValueError, r"a pair \(values, offsets\)"),
        (np.zeros((1, 3, 3), int), ValueError, r"a pair \(values, offsets\)"),
    ],
)
def test_wrong_polygons_are_refused(polygons, error, text):
    with pytest.raises(error, match=text):
        lumivane.Scene.from_arrays(POINTS, polygons)


def test_models_keep_what_their_surfaces_are(house):
    assert house.classes == (
        "CityFurniture", "Ground", "Road", "Roof", "Shed", "Wall", "Window")
    roofs = house.regions["class"] == house.classes.index("Roof")
    assert {house.objects[i - 1] for i in house.regions["object"][roofs]} == {"house"}


@pytest.mark.parametrize("name", ["labels", "classes"])
@pytest.mark.parametrize(
    ("values", "error"),
    [(["a"], ValueError), ([["a", "b"]], ValueError), ([1.5, 2.5], TypeError),
     ([(), {}], (TypeError, ValueError)), ([True, False], TypeError)],
)  # fmt: skip
def test_wrong_labels_and_classes_are_refused(name, values, error):
    with pytest.raises(error, match=name):
        lumivane.Scene.from_arrays(POINTS, RAGGED, **{name: values})


def test_random_arrays_are_refused_or_looked_at(capfd):
    """Whatever numbers come in, there is a scene or an exception of the documented kinds."""
    random = np.random.default_rng(18)
    made = refused = 0
    for _ in range(400):
        count = int(random.integers(0, 12))
        points = random.normal(size=(count, 3))
        if count and random.random() < 0.2:
            points[random.integers(count), random.integers(3)] = random.choice(
                [np.nan, np.inf, -np.inf, 1e308, 1e-308, 0.0]
            )
        values = random.integers(-1 if random.random() < 0.2 else 0, max(1, count), size=12)
        cuts = np.sort(random.integers(0, 13, size=3))
        offsets = np.concatenate(([0], cuts, [12])) if random.random() < 0.8 else cuts
        try:
            scene = lumivane.Scene.from_arrays(points, (values, offsets))
        except (ValueError, TypeError):
            refused += 1
            continue
        made += 1
        view = scene.look(random.normal(size=3))
        assert view.shares["solid_angle"].sum() == pytest.approx(2 * math.pi, rel=1e-9)
    assert made > 50 and refused > 50
    assert capfd.readouterr() == ("", "")
