"""Many eyes in parts, which processes make that know of each other only by files."""

import math
import os
import pickle
import signal
import subprocess
import sys
import time

import numpy as np
import pytest

import lumivane
import lumivane.parts
from lumivane._curve import _hilbert, curve_order
from lumivane._store import write_whole

COUNT = 40
EYES = np.column_stack(
    [np.random.default_rng(1).uniform(low, high, COUNT) for low, high in ((-6, 6), (-2, 2), (1, 4))]
)
COLUMNS = ("sky_view_factor", "view_factor", "min_distance")
UP = (0, 0, 1)


def same(one, other):
    """Whether results are equal to the last bit, with their types and the order of columns."""
    assert list(one) == list(other)
    for name, column in one.items():
        if isinstance(column, np.ndarray):
            assert column.dtype == other[name].dtype
            assert np.array_equal(column, other[name]), name
        else:
            assert column.shape == other[name].shape
            for part in ("indptr", "indices", "data"):
                first, second = getattr(column, part), getattr(other[name], part)
                assert first.dtype == second.dtype and np.array_equal(first, second), part
    return True


@pytest.mark.parametrize("chunk", [1, 7, 40, 1000])
@pytest.mark.parametrize("sparse", [False, True])
def test_parts_joined_are_what_one_call_gives(small, tmp_path, chunk, sparse):
    if sparse:
        pytest.importorskip("scipy.sparse")
    plan = lumivane.parts.plan(
        small, EYES, COLUMNS, chunk, forward=UP, sparse=sparse, folder=tmp_path
    )
    assert len(plan) == math.ceil(COUNT / chunk) == len(plan.missing())
    assert plan.make_missing(small) == len(plan)
    assert same(small.shares(EYES, UP, columns=COLUMNS, sparse=sparse), plan.result())


def test_each_eye_keeps_its_own_directions(small, tmp_path):
    angles = np.linspace(0, 6, COUNT)
    forward = np.column_stack([np.cos(angles), np.sin(angles), np.zeros(COUNT)])
    up = np.column_stack([np.zeros(COUNT), 0.1 * np.sin(angles), np.ones(COUNT)])
    how = {"by": "class", "two_sided": True}
    plan = lumivane.parts.plan(
        small, EYES, "solid_angle", 9, forward=forward, up=up, folder=tmp_path, **how
    )
    plan.make_missing(small)
    assert same(small.shares(EYES, forward, up, columns="solid_angle", **how), plan.result())


def test_no_eyes_give_arrays_of_no_rows(small, tmp_path):
    for sparse in (False, True):
        plan = lumivane.parts.plan(small, [], folder=tmp_path, sparse=sparse)
        assert len(plan) == 0
        assert same(small.shares([], sparse=sparse), plan.result())


def test_shares_of_a_plan_make_it_together_and_nothing_twice(small, tmp_path):
    plan = lumivane.parts.plan(small, EYES, chunk=3, folder=tmp_path)
    assert [plan.make_missing(small, (i, 3)) for i in (1, 2, 3)] == [5, 5, 4]
    assert plan.make_missing(small) == 0
    assert same(small.shares(EYES), plan.result())
    with pytest.raises(ValueError, match="share: 4/3 is none: 1/3 to 3/3 are"):
        plan.make_missing(small, (4, 3))


def run_module(*arguments):
    return subprocess.run(
        [sys.executable, "-m", "lumivane.parts", *map(str, arguments)],
        capture_output=True, text=True,
    )  # fmt: skip


def test_processes_that_know_the_file_of_the_plan_make_its_parts(small, tmp_path):
    path = lumivane.parts.plan(small, EYES, COLUMNS, 3, folder=tmp_path).write(small)
    first = run_module(path, "1/2")
    assert (first.returncode, first.stdout) == (0, f"{path}: 7 parts made, 7 of 14 missing\n")
    with pytest.raises(lumivane.Error, match="7 of 14 parts are missing: run it again"):
        lumivane.parts.read(path).result()
    second = run_module(path, "--threads", 2)
    assert (second.returncode, second.stdout) == (0, f"{path}: 7 parts made, 0 of 14 missing\n")
    assert same(small.shares(EYES, columns=COLUMNS), lumivane.parts.read(path).result())


@pytest.mark.parametrize(
    ("arguments", "text"),
    [
        (["5/4"], "share: 5/4 is none"),
        (["half"], '"half" is no share as 3/64'),
        (["--threads", "0"], "--threads: 0 is not above 0"),
    ],
)
def test_wrong_shares_are_refused(small, tmp_path, arguments, text):
    path = lumivane.parts.plan(small, EYES, chunk=9, folder=tmp_path).write(small)
    done = run_module(path, *arguments)
    assert done.returncode == 1 and text in done.stderr and "Traceback" not in done.stderr


def test_files_that_are_no_plans_are_refused(small, tmp_path):
    plan = lumivane.parts.plan(small, EYES, chunk=9, folder=tmp_path)
    path = plan.write(small)
    with pytest.raises(lumivane.Error, match="this is no plan"):
        lumivane.parts.read(tmp_path / "a.npz")
    with pytest.raises(lumivane.Error, match="the file is gone"):
        lumivane.parts.read(tmp_path / "none.plan.npz")
    with np.load(path) as arrays:
        changed = dict(arrays)
    about = changed["about"].tobytes().replace(lumivane.__version__.encode(), b"0.0.0")
    np.savez(path, **{**changed, "about": np.frombuffer(about, np.uint8)})
    with pytest.raises(lumivane.Error, match="the plan is of version 0.0.0"):
        lumivane.parts.read(path)
    assert "Traceback" not in run_module(tmp_path / "none.plan.npz").stderr


MAKER = """
import sys
import lumivane.parts

def report(part):
    if part > 0.2:
        print("some", flush=True)
        sys.stdin.readline()  # until it is killed

lumivane.parts.read(sys.argv[1]).make_missing(progress=report)
"""


def test_a_process_that_is_killed_leaves_whole_parts_and_another_one_goes_on(street, tmp_path):
    plan = lumivane.parts.plan(street, EYES, chunk=1, folder=tmp_path)
    process = subprocess.Popen(
        [sys.executable, "-c", MAKER, str(plan.write(street))],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
    )  # fmt: skip
    with process.stdin, process.stdout:
        assert process.stdout.readline() == "some\n"
        process.send_signal(signal.SIGKILL)
        process.wait()
    made = {file: file.stat().st_mtime_ns for file in tmp_path.glob("*.part.npz")}
    assert 0 < len(made) < len(plan)
    plan.make_missing(street)
    assert made == {file: file.stat().st_mtime_ns for file in made}
    assert same(street.shares(EYES), plan.result())


@pytest.mark.parametrize("damage", [b"", b"PK", None])
def test_a_damaged_part_is_noticed_and_made_again(small, tmp_path, damage):
    plan = lumivane.parts.plan(small, EYES, chunk=9, folder=tmp_path)
    plan.make_missing(small)
    file = plan.store.path(plan.part_names[2])
    content = bytearray(file.read_bytes())
    with np.load(file) as arrays:
        content[content.index(arrays["view_factor"].tobytes()) + 20] ^= 1
    file.write_bytes(content if damage is None else damage)
    with pytest.raises(lumivane.Error, match="was damaged and has been removed .*: run it again"):
        plan.result()
    assert plan.make_missing(small) == 1
    assert same(small.shares(EYES), plan.result())


def test_what_killed_writers_have_left_is_swept_up_at_the_end(small, tmp_path):
    plan = lumivane.parts.plan(small, EYES, chunk=9, folder=tmp_path)
    plan.make_missing(small)
    left = tmp_path / f".{plan.part_names[0]}.part.npz.host-1-0.unfinished"
    other = tmp_path / ".of-another-plan.part.npz.host-1-0.unfinished"
    left.write_bytes(b"half")
    other.write_bytes(b"half")
    plan.result()
    assert not left.exists() and other.exists()


def test_a_file_that_cannot_be_written_whole_leaves_nothing(tmp_path):
    def write(file):
        file.write(b"half")
        raise RuntimeError("no more")

    with pytest.raises(RuntimeError, match="no more"):
        write_whole(tmp_path / "parts" / "name", write)
    assert list((tmp_path / "parts").iterdir()) == []


def test_parts_are_named_by_all_that_their_result_depends_on(small, street):
    def names(scene=small, eyes=EYES, columns="area", **how):
        return lumivane.parts.plan(scene, eyes, columns, 9, **how).part_names

    other_eyes = EYES.copy()
    other_eyes[0] += 1e-9
    several = [names(), names(street), names(columns="view_factor"), names(two_sided=True),
               names(forward=UP), names(up=(0, 1, 0.1)), names(by="class"), names(sparse=True)]
    assert len({name for one in several for name in one}) == len(several) * len(several[0])
    assert len(set(names()) & set(names(eyes=other_eyes))) < len(names())
    assert names() == names(pickle.loads(pickle.dumps(small)))


def test_a_plan_of_the_same_content_in_a_folder_is_taken_up(small, tmp_path):
    calls = []

    def measure(part):
        calls.append(len(part.eyes))
        return 40.0 * len(calls)

    eyes = np.tile(EYES, (10, 1))
    first = lumivane.parts.plan(small, eyes, folder=tmp_path, measure=measure)
    first.write(small)
    second = lumivane.parts.plan(small, eyes, folder=tmp_path, measure=measure)
    assert second.part_names == first.part_names and len(calls) == 1


@pytest.mark.parametrize(
    ("seconds_each", "count", "processes", "expected"),
    [
        (1.0, 100_000, 2, 40),  # 40 seconds
        (0.01, 100_000, 2, 4000),
        (1.0, 400, 8, 13),  # a quarter of what each of 8 processes has
        (100.0, 400, 2, 1),  # an eye is never divided
        (1e-9, 100_000, 1, 25_000),
    ],
)
def test_parts_take_20_to_60_seconds_unless_processes_would_be_idle(
    small, seconds_each, count, processes, expected
):
    eyes = np.random.default_rng(2).uniform(-3, 3, (count, 3))
    plan = lumivane.parts.plan(
        small, eyes, processes=processes, measure=lambda part: seconds_each * len(part.eyes)
    )
    sizes = [plan.span(i).stop - plan.span(i).start for i in range(len(plan))]
    assert set(sizes[:-1]) <= {expected} and sizes[-1] <= expected and sum(sizes) == count


def test_parts_that_are_not_even_shrink_at_the_end_alone(small, tmp_path):
    eyes = np.random.default_rng(2).uniform(-3, 3, (10_000, 3))
    plan = lumivane.parts.plan(
        small, eyes, processes=3, even=False, folder=tmp_path, measure=lambda part: len(part.eyes)
    )
    sizes = [plan.span(i).stop - plan.span(i).start for i in range(len(plan))]
    assert sizes == sorted(sizes, reverse=True) and sum(sizes) == len(eyes)
    assert sizes[0] == 40 and sizes.count(40) > 200 and sizes[-3:] == [2, 2, 2]
    # What is left never is more than a few parts for each process.
    assert all(size <= 40 and left < 3 * 2 * (size + 1)
               for size, left in zip(sizes, np.cumsum(sizes[::-1])[::-1]) if size < 40)  # fmt: skip
    read = lumivane.parts.read(plan.write(small))
    assert [read.span(i) for i in range(len(read))] == [plan.span(i) for i in range(len(plan))]
    same_size = lumivane.parts.plan(small, eyes, chunk=77, processes=3, even=False)
    assert {same_size.span(i).stop - same_size.span(i).start for i in range(9)} == {77}
    assert same_size.name != lumivane.parts.plan(small, eyes, chunk=77).name


def test_measuring_looks_at_a_few_eyes_that_are_spread_over_all(small):
    sampled = []

    def measure(part):
        sampled.append(part.eyes)
        return 1.0

    eyes = np.random.default_rng(3).uniform(-3, 3, (10_000, 3))
    lumivane.parts.plan(small, eyes, measure=measure)
    lumivane.parts.plan(small, eyes[:500], measure=measure)
    lumivane.parts.plan(small, eyes[:40], measure=measure)
    assert [len(sample) for sample in sampled] == [16, 10]
    assert (np.ptp(sampled[0], axis=0) > 4).all()


def test_how_long_a_part_takes_is_measured(small):
    part = lumivane.parts.plan(small, EYES, chunk=40).part(0)
    began = time.perf_counter()
    seconds = lumivane.parts.seconds_of(part, small)
    assert 0 < seconds <= time.perf_counter() - began


@pytest.mark.parametrize(
    ("arguments", "text"),
    [
        ({"chunk": 0}, "chunk: 0 is neither"),
        ({"chunk": "all"}, "chunk: 'all' is neither"),
        ({"columns": "colour"}, 'there is none called "colour"'),
        ({"by": "face"}, "by: "),
        ({"field": "disc"}, "field: "),
        ({"forward": np.ones((3, 3))}, "forward: there must be one for all eyes or one for each"),
        ({"up": np.ones((2, 3))}, "up: there must be one"),
        ({"forward": (0, 0, 0)}, "forward is zero"),
        ({"eyes": np.full((3, 3), math.nan)}, "the eye is not finite"),
        ({"eyes": np.zeros((3, 2))}, "eyes: the shape"),
        ({"field": "sphere", "columns": "view_factor"}, "a sphere has no view_factor"),
    ],
)
def test_wrong_arguments_are_refused_before_anything_is_made(small, arguments, text):
    with pytest.raises(ValueError, match=text):
        lumivane.parts.plan(small, **{"eyes": EYES, **arguments})


def test_the_curve_goes_through_every_cell_and_from_neighbour_to_neighbour(monkeypatch):
    monkeypatch.setattr("lumivane._curve._BITS", 3)
    axes = np.meshgrid(*[np.arange(8, dtype=np.uint64)] * 3, indexing="ij")
    cells = np.stack(axes, -1).reshape(-1, 3)
    distance = _hilbert(cells)
    assert sorted(distance) == list(range(512))
    steps = np.abs(np.diff(cells[np.argsort(distance)].astype(int), axis=0))
    assert (steps.sum(axis=1) == 1).all()


@pytest.mark.parametrize(
    "points",
    [
        np.zeros((5, 3)),
        np.zeros((0, 3)),
        np.array([[1e308, 0, 0], [-1e308, 0, 0], [0, 0, 5e-324]]),
        np.array([[0, 0, 5e-324], [0, 0, 0]]),
        np.random.default_rng(4).normal(size=(1000, 3)) * (1, 1, 0),
    ],
)
def test_any_finite_points_have_an_order(points):
    with np.errstate(all="raise", under="ignore"):
        order = curve_order(points)
    assert sorted(order) == list(range(len(points)))


def test_neighbours_in_the_order_are_near_each_other():
    points = np.random.default_rng(5).random((4096, 3))
    ordered = points[curve_order(points)]
    steps = np.linalg.norm(np.diff(ordered, axis=0), axis=1)
    assert steps.mean() < 0.1 < np.linalg.norm(np.diff(points, axis=0), axis=1).mean() / 4


def test_content_has_one_name_in_all_processes(small, house, square, scenes, models):
    code = (
        "import sys, lumivane, numpy as np; "
        "print(lumivane.Scene.read(sys.argv[1]).content_name); "
        "print(lumivane.Scene.read(sys.argv[2]).content_name)"
    )
    printed = subprocess.run(
        [sys.executable, "-c", code, scenes / "small.json", models / "house.city.json"],
        capture_output=True, text=True, check=True, env={**os.environ, "PYTHONHASHSEED": "1"},
    ).stdout.split()  # fmt: skip
    assert printed == [small.content_name, house.content_name]
    for scene in (small, house, square):
        assert pickle.loads(pickle.dumps(scene)).content_name == scene.content_name
    assert len({small.content_name, house.content_name, square.content_name}) == 3
    assert lumivane.Scene.read(scenes / "small.json").content_name == small.content_name
