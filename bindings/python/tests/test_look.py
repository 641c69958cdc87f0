"""Looks from one eye: what is asked for, what is refused, threads, signals and memory."""

import gc
import math
import os
import signal
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import lumivane

EYE = (-5.3, -1.37, 3.4)


def test_a_map_knows_how_it_was_looked_at(square):
    view = square.look((0, 0, 0.5), forward=(2, 0, 0), up=(1, 0, 3), two_sided=True)
    assert view.eye == (0, 0, 0.5) and view.forward == (1, 0, 0) and view.up == (0, 0, 1)
    assert view.field == "hemisphere" and view.two_sided is True
    assert "2 cells of the hemisphere" in repr(view) and len(view) == 2
    sphere = square.look((0, 0, 0), field="sphere")
    assert sphere.field == "sphere" and math.isnan(sphere.sky_view_factor)
    assert sphere.sky_solid_angle == pytest.approx(4 * math.pi - sphere.shares["solid_angle"][0])


def test_cells_edges_and_vertices_fit_each_other(street):
    view = street.look(EYE)
    cells, edges = view.cells, view.edges
    assert cells["solid_angle"].sum() == pytest.approx(2 * math.pi, rel=1e-12)
    assert cells["view_factor"].sum() == pytest.approx(1, rel=1e-12)
    assert np.allclose(np.linalg.norm(view.vertices, axis=1), 1.0)
    assert edges["from"].min() >= 0 and edges["to"].max() < len(view.vertices)
    assert max(edges["left"].max(), edges["right"].max()) == len(cells) - 1
    assert set(edges["kind"]) <= set(range(len(lumivane.EDGE_KINDS)))
    assert cells["ring_count"].sum() == len(view.ring_offsets) - 1
    assert view.ring_offsets[-1] == len(view.ring_vertices) == 2 * len(edges) - np.sum(
        (edges["left"] < 0) | (edges["right"] < 0)
    )
    regions = street.regions
    for cell in cells[:-1]:
        region = regions[cell["polygon"]]
        assert (region["object"], region["region"]) == (cell["object"], cell["region"])


def test_arrays_are_made_once_and_read_only(street):
    view = street.look(EYE)
    for name in ("cells", "edges", "vertices", "shares", "ring_offsets", "ring_vertices"):
        array = getattr(view, name)
        assert array is getattr(view, name)
        with pytest.raises(ValueError, match="read-only"):
            array[0] = array[-1]
    for array in (street.bounds, street.regions):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = array[-1]


def test_arrays_outlive_their_scene(scenes):
    scene = lumivane.Scene.read(scenes / "small.json")
    view = scene.look((-4, 0, 1))
    expected = view.cells.copy()
    cells, svg = view.cells, view.svg()
    del scene
    gc.collect()
    assert view.svg() == svg
    del view
    gc.collect()
    assert np.array_equal(cells, expected)


def test_the_visible_fraction_is_measured_when_it_is_asked_for(street):
    assert np.isnan(street.look(EYE).shares["visible_fraction"]).all()
    fractions = street.look(EYE, visible_fraction=True).shares["visible_fraction"][:-1]
    assert fractions.min() == 0.0 and 0.0 < np.median(fractions[fractions > 0]) <= 1.0


def test_single_directions_meet_what_the_map_shows(street):
    view = street.look(EYE, field="sphere")
    random = np.random.default_rng(7)
    directions = random.normal(size=(20000, 3))
    seen = street.seen_in(EYE, directions)
    share = np.bincount(seen["object"], minlength=len(street.objects) + 1) / len(directions)
    exact = np.zeros(len(share))
    np.add.at(exact, view.cells["object"], view.cells["solid_angle"] / (4 * math.pi))
    deviation = np.sqrt(exact * (1 - exact) / len(directions))
    assert (np.abs(share - exact) <= 5 * deviation + 1e-12).all()
    assert np.array_equal(seen["distance"] == 0, seen["object"] == 0)
    assert np.array_equal(seen["polygon"] == -1, seen["object"] == 0)


@pytest.mark.parametrize(
    ("arguments", "error", "text"),
    [
        ({"eye": (math.nan, 0, 0)}, ValueError, "the eye is not finite"),
        ({"eye": (math.inf, 0, 0)}, ValueError, "the eye is not finite"),
        ({"eye": (0, 0)}, ValueError, r"eye: 3 numbers are needed, but the shape is \(2,\)"),
        ({"eye": 5.0}, ValueError, "eye: 3 numbers"),
        ({"eye": np.zeros((1, 3))}, ValueError, "eye: 3 numbers"),
        ({"eye": []}, ValueError, "eye: 3 numbers"),
        ({"eye": "123"}, TypeError, "eye: real numbers"),
        ({"eye": (1j, 0, 0)}, TypeError, "eye: real numbers"),
        ({"eye": (None, 0, 0)}, TypeError, "eye: real numbers"),
        ({"eye": ((1, 2), 0, 0)}, (TypeError, ValueError), "eye"),
        ({"forward": (0, 0, 0)}, ValueError, "forward is zero"),
        ({"forward": (0, math.nan, 0)}, ValueError, "forward is not finite"),
        ({"up": (0, math.inf, 0)}, ValueError, "up is not finite"),
        ({"field": "disc"}, ValueError, "neither hemisphere nor sphere"),
        ({"threads": -1}, ValueError, "threads is negative"),
        ({"threads": "two"}, TypeError, ""),
    ],
)
def test_a_wrong_view_is_refused(square, arguments, error, text):
    with pytest.raises(error, match=text):
        square.look(**{"eye": (0, 0, 0), **arguments})


@pytest.mark.parametrize(
    "eye",
    [
        np.array([1, 0, 0]),
        np.array([1, 0, 0], np.float32),
        np.array([1.0, 9, 0, 9, 0, 9])[::2],
        np.array([1.0, 0, 0], ">f8"),
        [1, np.float64(0), True * 0],
        (np.int8(1), 0, 0),
    ],
)
def test_an_eye_may_be_any_three_numbers(square, eye):
    assert square.look(eye).to_json() == square.look((1.0, 0.0, 0.0)).to_json()


def test_wrong_rows_and_directions_are_refused(square):
    view = square.look((0, 0, 0))
    with pytest.raises(ValueError, match='rows: "objects" is none of'):
        view.table("objects")
    with pytest.raises(ValueError, match=r"directions: the shape must be \(n, 3\)"):
        square.seen_in((0, 0, 0), np.zeros((3, 2)))
    with pytest.raises(ValueError, match="zero"):
        square.seen_in((0, 0, 0), np.zeros((3, 3)))
    with pytest.raises(ValueError, match="the eye is not finite"):
        square.seen_in((0, 0, math.nan), np.zeros((0, 3)))
    with pytest.raises(IndexError):
        view.rings(2)


def test_threads_look_at_one_scene_at_once(street):
    eyes = [(x, -1.37, 3.4) for x in np.linspace(-6, 6, 12)]
    expected = [street.look(eye, threads=1).to_json() for eye in eyes]
    with ThreadPoolExecutor(6) as pool:
        for threads in (1, 2, 0):
            found = pool.map(lambda e, n=threads: street.look(e, threads=n).to_json(), eyes)
            assert list(found) == expected


def test_one_map_may_be_asked_by_several_threads(street):
    view, plain = street.look(EYE), street.look(EYE)
    with ThreadPoolExecutor(8) as pool:
        found = list(pool.map(lambda _: (view.svg(), view.shares["solid_angle"].sum()), range(16)))
    assert set(found) == {(plain.svg(), plain.shares["solid_angle"].sum())}


def test_other_threads_go_on_while_the_library_works(street):
    """While a long look goes on, Python code in another thread counts."""
    counted, over = [0], threading.Event()

    def count():
        while not over.is_set():
            counted[0] += 1
            time.sleep(0)

    thread = threading.Thread(target=count)
    thread.start()
    try:
        before = counted[0]
        street.shares(np.tile(EYE, (60, 1)))
        assert counted[0] > before + 100
    finally:
        over.set()
        thread.join()


def test_progress_rises_to_one_and_what_it_raises_ends_the_look(street):
    parts = []
    street.look(EYE, progress=parts.append)
    assert parts == sorted(parts) and parts[0] == 0.0 and parts[-1] == 1.0

    def fail(part):
        raise LookupError(f"enough at {part}")

    with pytest.raises(LookupError, match="enough at 0.0"):
        street.look(EYE, progress=fail)


class Interrupted(Exception):
    pass


def test_a_signal_ends_a_long_look_soon():
    """A scene whose look takes many seconds ends soon after a signal's handler has raised."""
    random = np.random.default_rng(3)
    count = 60000
    middles = random.normal(size=(count, 1, 3))
    middles *= (5 + random.random((count, 1, 1))) / np.linalg.norm(middles, axis=2, keepdims=True)
    points = (middles + random.normal(scale=0.3, size=(count, 3, 3))).reshape(-1, 3)
    scene = lumivane.Scene.from_arrays(points, np.arange(3 * count).reshape(-1, 3))
    raised = []

    def handler(*_):
        raised.append(time.monotonic())
        raise Interrupted

    before = signal.signal(signal.SIGALRM, handler)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.3)
        with pytest.raises(Interrupted):
            scene.look((0, 0, 0), field="sphere", two_sided=True, visible_fraction=True)
        # Generous, for machines with much to do; test_many_eyes looks at the fifth of a second.
        assert time.monotonic() - raised[0] < 5.0
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)


def resident_bytes():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")


def test_memory_stays_flat_over_a_thousand_looks(small):
    def use(count):
        for i in range(count):
            view = small.look((-2.6 + 0.001 * (i % 50), 0.35, 1.9), (1, 0, -0.4), field="sphere")
            view.cells, view.edges, view.vertices, view.shares
            view.svg(), view.to_json()
            small.seen_in(view.eye, view.vertices)
        gc.collect()

    use(200)
    before = resident_bytes()
    use(1000)
    # The texts of one look alone take 20 kB: had each look kept them, 20 MB were there.
    assert resident_bytes() - before < 4e6


def test_errors_leak_nothing(square):
    def fail(count):
        for _ in range(count):
            with pytest.raises(ValueError):
                square.look((math.nan, 0, 0))
            with pytest.raises(lumivane.Error):
                lumivane.Scene.read("/nowhere/at/all.json")
        gc.collect()

    fail(300)
    before = resident_bytes()
    fail(3000)
    assert resident_bytes() - before < 4e6


def test_nothing_is_printed(capfd, scenes, models, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)  # a cyclic overlap writes a report
    for file in (scenes / "ring.json", models / "house.city.json", models / "cube.obj"):
        scene = lumivane.Scene.read(file)
        scene.check()
        scene.look((-4, 0.3, 0.7)).svg()
        scene.shares([(-4, 0.3, 0.7)], sparse=False)
        scene.shot((-4, 0.3, 0.7)).svg()
    assert capfd.readouterr() == ("", "")
