"""Reading files, what is wrong with them, and pickles."""

import json
import multiprocessing
import os
import pickle
import shutil

import numpy as np
import pytest

import lumivane


def test_a_file_that_is_not_there_is_named_with_the_cause(tmp_path):
    with pytest.raises(lumivane.Error, match="no-scene.json: cannot be read: No such file"):
        lumivane.Scene.read(tmp_path / "no-scene.json")


def test_a_file_may_be_named_by_text_bytes_or_path(scenes, tmp_path):
    odd = os.fsencode(tmp_path) + b"/sm\xffll.json"
    shutil.copy(scenes / "small.json", odd)
    for name in (str(scenes / "small.json"), scenes / "small.json", odd):
        assert lumivane.Scene.read(name).objects == ("plate", "block", "pyramid")
    with pytest.raises(TypeError):
        lumivane.Scene.read(17)


def test_a_damaged_file_and_a_wrong_number_are_reported(tmp_path):
    file = tmp_path / "cut.json"
    file.write_text('{"Points": [[0,0')
    with pytest.raises(lumivane.Error, match="cut.json: "):
        lumivane.Scene.read(file)
    file.write_text(
        '{"Points": [[0,0,0]], "Objects": [{"Id": "A", "Regions": [{"Points": [1,2,3]}]}]}'
    )
    with pytest.raises(lumivane.Error, match=r'cut.json: object 1 "A", region 1: point 2'):
        lumivane.Scene.read(file)


def test_an_id_of_any_bytes_is_text(tmp_path):
    file = tmp_path / "odd.json"
    file.write_bytes(b'{"Points": [], "Objects": [{"Id": "a\xffb"}]}')
    assert lumivane.Scene.read(file).objects == ("a\ufffdb",)


def test_findings_of_a_file_say_what_where_and_what_to_do(tmp_path):
    file = tmp_path / "wrong.json"
    file.write_text(
        '{"Points": [[0,0,0]], "Brushes": [[0,0,0,255]], "Pens": [[0,0,0,255,1]], "Objects": '
        '[{"Id": "A", "PartsCount": 1, "Pen": 1, "Faces": [{"Regions": [1], "Normal": [0,0,1]}], '
        '"Parts": [{"Regions": [1]}], "Overlays": [], '
        '"Regions": [{"Brush": 1, "Face": 1, "Points": [1,2,3]}]}]}'
    )
    findings = lumivane.check(file)
    errors = [f for f in findings if f.severity == "error"]
    assert errors[0].object == "A" and errors[0].region == 1
    assert "point 2" in errors[0].text and errors[0].fix
    assert 'object "A", region 1' in errors[0].line


def test_a_good_scene_has_no_findings_and_a_concave_bent_one_has(small):
    assert [f for f in small.check() if f.severity == "error"] == []
    points = [[0, 0, 0], [0, 0, 0], [1, 0, 0], [1, 1, 0.3]]
    codes = [f.code for f in lumivane.Scene.from_arrays(points, [[0, 1, 2, 3]]).check()]
    assert codes


def test_what_became_of_a_model_is_reported(house, small):
    report = house.import_report
    assert report["format"].startswith("CityJSON")
    assert report["source_polygons"] > 5 and len(report["shift"]) == 3
    assert small.import_report is None


TILES = ("tile-west.city.json", "tile-east.city.jsonl")


def test_several_models_are_one_scene_as_the_program_makes_it(models, program, tmp_path):
    files = [models / name for name in TILES]
    town = lumivane.Scene.read(*files)
    assert "tile-west.city.json#ground" in town.objects
    program("import", *files, "-o", tmp_path / "town.lumiscene")
    same = lumivane.Scene.read(tmp_path / "town.lumiscene")
    assert town.objects == same.objects and town.classes == same.classes
    assert np.array_equal(town.shares([(1, -4, 2)])["view_factor"], same.shares([(1, -4, 2)])["view_factor"])
    both = lumivane.Scene.read(*files, sides="both", center=True)
    assert len(both) == 2 * len(town)

    swapped = lumivane.Scene.read(*reversed(files))
    assert swapped.objects != town.objects and set(swapped.objects) == set(town.objects)
    assert swapped.content_name != town.content_name


def test_several_models_are_pickled_with_all_their_files(models, tmp_path):
    for name in (*TILES, "cube.obj", "cube.mtl"):
        (tmp_path / name).write_bytes((models / name).read_bytes())
    town = lumivane.Scene.read(*(tmp_path / name for name in (*TILES, "cube.obj")))
    content = pickle.dumps(town)
    for name in (*TILES, "cube.obj", "cube.mtl"):
        (tmp_path / name).unlink()
    again = pickle.loads(content)
    assert again.objects == town.objects and again.content_name == town.content_name
    eye = (1, -4, 2)
    again.shot(eye).write(tmp_path / "again.json")
    town.shot(eye).write(tmp_path / "town.json")
    assert (tmp_path / "again.json").read_bytes() == (tmp_path / "town.json").read_bytes()
    assert again.look(eye).to_json() == town.look(eye).to_json()


def test_models_of_one_name_keep_their_paths_and_are_not_pickled(models, tmp_path):
    (tmp_path / "other").mkdir()
    shutil.copy(models / "cube.obj", tmp_path / "other")
    shutil.copy(models / "cube.mtl", tmp_path / "other")
    scene = lumivane.Scene.read(models / "cube.obj", tmp_path / "other/cube.obj")
    assert any(name.startswith(str(tmp_path)) for name in scene.objects)
    with pytest.raises(TypeError, match="two models have one name"):
        pickle.dumps(scene)


def test_what_cannot_be_one_of_several_files_is_refused_by_name(models, scenes, tmp_path):
    west = models / TILES[0]
    with pytest.raises(lumivane.Error, match="small.json: is no mesh and no city model, as each"):
        lumivane.Scene.read(west, scenes / "small.json")
    with pytest.raises(lumivane.Error, match="gone.obj: cannot be read"):
        lumivane.Scene.read(west, tmp_path / "gone.obj")
    with pytest.raises(lumivane.Error, match="tile-west.city.json: "):
        lumivane.Scene.read(west, west)
    city = json.loads(west.read_text())
    city["metadata"] = {"referenceSystem": "https://www.opengis.net/def/crs/EPSG/0/25832"}
    (tmp_path / "far.city.json").write_text(json.dumps(city))
    with pytest.raises(lumivane.Error, match=r"(?s)far.city.json: .*25832"):
        lumivane.Scene.read(west, tmp_path / "far.city.json")
    with pytest.raises(TypeError):
        lumivane.Scene.read(west, 17)


def test_options_of_models_are_those_of_the_command_line(models):
    plain = lumivane.Scene.read(models / "cube.obj")
    twice = lumivane.Scene.read(models / "cube.obj", scale=2.0, center=True, sides="both")
    assert len(twice) == 2 * len(plain)
    size = plain.bounds[1] - plain.bounds[0]
    assert np.allclose(twice.bounds, [[-size[0], -size[1], 0], [size[0], size[1], 2 * size[2]]])
    with pytest.raises(ValueError, match="sides"):
        lumivane.Scene.read(models / "cube.obj", sides="upper")


def test_a_pickle_of_a_scene_file_holds_the_content(scenes, tmp_path):
    file = tmp_path / "moved.json"
    shutil.copy(scenes / "street.json", file)
    scene = lumivane.Scene.read(file)
    eye = (-5.3, -1.37, 3.4)
    before, shot = scene.look(eye).to_json(), scene.shot(eye, max_length=0).text()
    file.unlink()
    other = pickle.loads(pickle.dumps(scene))
    assert other.look(eye).to_json() == before
    assert other.shot(eye, max_length=0).text() == shot
    assert other.objects == scene.objects
    third = pickle.loads(pickle.dumps(other))
    assert third.look(eye).to_json() == before


def test_classes_beside_a_scene_file_are_read_and_pickled(scenes, tmp_path):
    file = tmp_path / "classed.json"
    shutil.copy(scenes / "small.json", file)
    table = tmp_path / "classed.classes.csv"
    table.write_text("id,face,class\nplate,,Ground\nblock,,Wall\nblock,5,Roof\n")
    scene = lumivane.Scene.read(file)
    assert scene.classes == ("Ground", "Roof", "Wall")
    file.unlink()
    table.unlink()
    other = pickle.loads(pickle.dumps(scene))
    assert other.classes == scene.classes
    assert (other.regions["class"] == scene.regions["class"]).all()
    eye = (-2.6, 0.35, 1.9)
    assert list(other.look(eye).table("class")["class"]) == ["Ground", "Roof", "Wall", "", ""]


def test_a_pickle_of_a_model_holds_all_its_files(models, tmp_path):
    for name in ("cube.obj", "cube.mtl"):
        shutil.copy(models / name, tmp_path / name)
    scene = lumivane.Scene.read(tmp_path / "cube.obj", scale=3.0)
    eye, forward = (-9, 0.3, 0.7), (1, 0, 0)
    before, shot = scene.look(eye, forward).svg(), scene.shot(eye, forward).text()
    for name in ("cube.obj", "cube.mtl"):
        (tmp_path / name).unlink()
    other = pickle.loads(pickle.dumps(scene))
    assert other.look(eye, forward).svg() == before
    assert other.shot(eye, forward).text() == shot


def test_a_pickle_of_arrays_holds_them():
    points = np.random.default_rng(1).normal(size=(30, 3))
    polygons = np.arange(30).reshape(10, 3)
    labels = list("abcabcabca")
    scene = lumivane.Scene.from_arrays(points, polygons, labels, [0, -1] * 5)
    other = pickle.loads(pickle.dumps(scene))
    assert other.objects == scene.objects == ("a", "b", "c")
    assert other.classes == ("0",)
    assert np.array_equal(other.regions, scene.regions)
    assert other.look((0, 0, 0)).to_json() == scene.look((0, 0, 0)).to_json()


def sky_of(arguments):
    scene, eye = arguments
    return scene.look(eye, (0, 0, 1)).sky_view_factor


@pytest.mark.parametrize("method", ["spawn", "fork"])
def test_processes_of_a_pool_take_scenes(small, method):
    eyes = [(x, 0.3, 1.6) for x in (-1.5, 0.0, 1.5)]
    expected = small.shares(eyes, (0, 0, 1))["sky_view_factor"]
    with multiprocessing.get_context(method).Pool(2) as pool:
        found = pool.map(sky_of, [(small, eye) for eye in eyes])
    assert found == expected.tolist()


def test_maps_and_shots_say_what_to_pickle_in_their_place(small):
    with pytest.raises(TypeError, match="pickle its arrays"):
        pickle.dumps(small.look((-4, 0, 1)))
    with pytest.raises(TypeError, match="pickle its text"):
        pickle.dumps(small.shot((-4, 0, 1)))


def test_a_file_is_written_whole_or_not_at_all(small, tmp_path):
    view = small.look((-4, 0, 1))
    with pytest.raises(lumivane.Error, match="nowhere"):
        view.svg(tmp_path / "nowhere" / "map.svg")
    target = tmp_path / "map.svg"
    target.write_text("before")
    text = view.svg(target)
    assert target.read_text() == text and text.startswith("<?xml")
    assert os.listdir(tmp_path) == ["map.svg"]


def test_the_text_of_a_map_is_json(small):
    assert json.loads(small.look((-4, 0, 1)).to_json())["field"] == "hemisphere"


def test_surfaces_of_a_city_model_have_classes_and_shares_by_them(program, tmp_path, models, house):
    assert {"Roof", "Wall"} <= set(house.classes)
    assert set(house.regions["class"]) <= set(range(-1, len(house.classes)))
    low, high = house.bounds
    eye = [low[0] - 3, (low[1] + high[1]) / 2, low[2] + 1.7]
    view = house.look(eye, (1, 0.1, 0.2))
    rows = view.table("class")
    mine = {row["class"]: row["view_factor"] for row in rows if row["kind"] == "class"}
    assert mine["Wall"] > 0.05
    program(
        "view", models / "house.city.json", "--eye", ",".join(map(repr, map(float, eye))), "--forward",
        "1,0.1,0.2", "--rows", "class", "--shares", tmp_path / "shares.json",
    )  # fmt: skip
    theirs = json.loads((tmp_path / "shares.json").read_text())["rows"]
    assert mine == {
        row.get("class", ""): row["view_factor"] for row in theirs if row["kind"] == "class"
    }
    many = house.shares([eye], (1, 0.1, 0.2), by="class")["view_factor"][0]
    for number, name in enumerate(house.classes):
        assert many[number] == mine.get(name, 0.0)
    assert many.sum() == pytest.approx(view.shares["view_factor"][:-1].sum(), abs=1e-12)
