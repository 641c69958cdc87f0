"""Scenes that are ready, in files that are mapped into memory."""

import pickle

import numpy as np
import pytest

import lumivane
import lumivane.parts
from lumivane._scene_files import keep_scene, kept_scene, scene_bytes, scene_of_bytes

EYE = (-5.3, -1.37, 3.4)


@pytest.fixture
def arrays():
    points = np.array([[3, 1, -1], [3, -1, -1], [3, -1, 1], [3, 1, 1], [2, 0.2, 0], [2, -0.2, 0], [2, 0, 0.3]])
    return lumivane.Scene.from_arrays(
        points, ([4, 5, 6, 0, 1, 2, 3], [0, 3, 7]), labels=["b", "a"], classes=["", "wall"]
    )


@pytest.fixture(params=["small", "street", "house", "arrays"])
def scene(request):
    return request.getfixturevalue(request.param)


def again(scene, folder):
    scene.write(folder / "scene.lumiscene")
    return lumivane.Scene.read(folder / "scene.lumiscene")


def test_a_ready_scene_is_the_scene_that_was_written(scene, tmp_path):
    ready = again(scene, tmp_path)
    assert ready.objects == scene.objects and ready.classes == scene.classes
    assert np.array_equal(ready.bounds, scene.bounds)
    assert np.array_equal(ready.regions, scene.regions)
    assert ready.content_name == scene.content_name
    points, (values, offsets) = scene.to_arrays()
    ready_points, (ready_values, ready_offsets) = ready.to_arrays()
    assert np.array_equal(points, ready_points)
    assert np.array_equal(values, ready_values) and np.array_equal(offsets, ready_offsets)


def test_looks_at_a_ready_scene_have_the_same_bits(scene, tmp_path):
    ready = again(scene, tmp_path)
    for how in ({}, {"field": "sphere", "two_sided": True}):
        one, other = scene.look((0.1, 0.2, 1.1), **how), ready.look((0.1, 0.2, 1.1), **how)
        assert one.to_json() == other.to_json()
        assert np.array_equal(one.cells, other.cells)
        assert one.svg() == other.svg() if not scene.import_report else True
    eyes = np.random.default_rng(1).uniform(-2, 2, (20, 3))
    many, others = scene.shares(eyes, by="class"), ready.shares(eyes, by="class")
    assert all(np.array_equal(many[name], others[name]) for name in many)
    assert np.array_equal(scene.seen_in(EYE, eyes), ready.seen_in(EYE, eyes))


def test_a_ready_scene_has_shots_and_checks(small, tmp_path):
    ready = again(small, tmp_path)
    assert ready.shot((-2.6, 0.35, 1.9)).text() == small.shot((-2.6, 0.35, 1.9)).text()
    assert ready.check() == small.check()


def test_a_ready_scene_is_pickled_and_written_again(scene, tmp_path):
    ready = again(scene, tmp_path)
    (tmp_path / "scene.lumiscene").unlink()  # it stays mapped
    copy = pickle.loads(pickle.dumps(ready))
    twice = again(copy, tmp_path)
    for one in (copy, twice):
        assert one.content_name == scene.content_name
        assert np.array_equal(one.regions, scene.regions)
        assert one.look((0, 0, 1)).to_json() == scene.look((0, 0, 1)).to_json()


def test_scenes_that_go_to_workers_hold_what_looks_need_alone(scene, tmp_path):
    path = keep_scene(scene, tmp_path)
    assert path.name == scene.content_name + ".lumiscene"
    for light in (kept_scene(tmp_path, scene.content_name), scene_of_bytes(scene_bytes(scene))):
        assert light.objects == scene.objects and light.content_name == scene.content_name
        assert light.look((0, 0, 1)).to_json() == scene.look((0, 0, 1)).to_json()
        for wanted in (lambda: light.bounds, lambda: light.shot((0, 0, 1)), light.check):
            with pytest.raises(lumivane.Error, match="holds only what looks need.*: read the scene itself"):
                wanted()
        light.look((0, 0, 1)).svg()
        assert pickle.loads(pickle.dumps(light)).content_name == scene.content_name


def test_files_that_are_no_ready_scenes_are_refused(small, tmp_path):
    with pytest.raises(ValueError, match="does not end in .lumiscene"):
        small.write(tmp_path / "scene.json")
    with pytest.raises(lumivane.Error):
        small.write(tmp_path / "none" / "scene.lumiscene")
    file = tmp_path / "scene.lumiscene"
    with pytest.raises(lumivane.Error, match="scene.lumiscene: "):
        lumivane.Scene.read(file)
    small.write(file)
    content = bytearray(file.read_bytes())
    content[len(content) // 3] ^= 1
    file.write_bytes(content)
    with pytest.raises(lumivane.Error, match="scene.lumiscene: "):
        lumivane.Scene.read(file)


def test_scenes_made_ready_go_between_the_program_and_python(program, small, scenes, tmp_path):
    view = ["--eye", "-2.6,0.35,1.9", "--forward", "0,0,1"]
    program("import", scenes / "small.json", "-o", tmp_path / "program.lumiscene")
    ready = lumivane.Scene.read(tmp_path / "program.lumiscene")
    one, other = (s.look((-2.6, 0.35, 1.9), (0, 0, 1)) for s in (small, ready))
    assert one.to_json() == other.to_json()
    assert ready.shot((-2.6, 0.35, 1.9)).text() == small.shot((-2.6, 0.35, 1.9)).text()

    small.write(tmp_path / "python.lumiscene")
    for scene in (scenes / "small.json", tmp_path / "python.lumiscene"):
        program("view", scene, *view, "--shares", tmp_path / f"{scene.stem}.csv")
    assert (tmp_path / "python.csv").read_bytes() == (tmp_path / "small.csv").read_bytes()
