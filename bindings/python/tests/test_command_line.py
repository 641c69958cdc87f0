"""Values are equal to the command line's, to the last bit."""

import csv
import json

import numpy as np
import pytest

import lumivane

EYE = (-5.3, -1.37, 3.4)
EYE_TEXT = "-5.3,-1.37,3.4"


def shares_of(program, tmp_path, scene, *options):
    program("view", scene, *options, "--shares", tmp_path / "shares.json")
    return json.loads((tmp_path / "shares.json").read_text())


def assert_equal_rows(table, rows):
    assert len(table) == len(rows) > 1
    for mine, theirs in zip(table, rows):
        for name, value in theirs.items():
            assert mine[name] == value, (name, mine, theirs)


@pytest.mark.parametrize("depth", ["total", "class", "object", "face", "region"])
def test_shares_of_a_scene_file_are_those_of_the_program(program, tmp_path, scenes, street, depth):
    found = shares_of(
        program, tmp_path, scenes / "street.json", "--eye", EYE_TEXT, "--rows", depth
    )
    table = street.look(EYE, visible_fraction=True).table(depth)
    assert_equal_rows(table, found["rows"])


def test_shares_of_a_sphere_are_those_of_the_program(program, tmp_path, scenes, small):
    options = ("--eye", "-2.6,0.35,1.9", "--field", "sphere", "--two-sided")
    found = shares_of(program, tmp_path, scenes / "small.json", *options)
    view = small.look((-2.6, 0.35, 1.9), field="sphere", two_sided=True, visible_fraction=True)
    assert_equal_rows(view.shares, found["rows"])
    assert np.all(np.isnan(view.shares["view_factor"]))


def test_shares_of_a_city_model_are_those_of_the_program(program, tmp_path, models, house):
    low, high = house.bounds
    eye = [low[0] - 3, (low[1] + high[1]) / 2, low[2] + 1.7]
    text = ",".join(map(repr, map(float, eye)))
    options = ("--eye", text, "--forward", "1,0.1,0.2", "--up", "0,1,0")
    found = shares_of(program, tmp_path, models / "house.city.json", *options)
    view = house.look(eye, (1, 0.1, 0.2), (0, 1, 0), visible_fraction=True)
    assert_equal_rows(view.shares, found["rows"])
    assert view.shares["view_factor"][:-1].max() > 0


def test_the_map_as_a_file_has_the_bytes_of_the_program(program, tmp_path, scenes, street):
    program("view", scenes / "street.json", "--eye", EYE_TEXT, "--map", tmp_path / "map.json")
    view = street.look(EYE)
    assert view.to_json() == (tmp_path / "map.json").read_text()
    document = json.loads(view.to_json())
    assert len(document["cells"]) == len(view) > 100
    for mine, theirs in zip(view.cells, document["cells"]):
        assert mine["solid_angle"] == theirs["solid_angle"]
        assert mine["max_distance"] == theirs["max_distance"]
    assert np.array_equal(view.vertices, document["vertices"])
    for mine, theirs in zip(view.edges, document["edges"]):
        assert [mine["from"], mine["to"]] == theirs["vertices"]
        assert [mine["left"], mine["right"]] == theirs["cells"]
        assert lumivane.EDGE_KINDS[mine["kind"]] == theirs["kind"]
    for i in (0, len(view) // 2, len(view) - 1):
        assert [ring.tolist() for ring in view.rings(i)] == document["cells"][i]["rings"]


@pytest.mark.parametrize("projection", ["fisheye", "equirectangular"])
def test_a_picture_of_a_map_has_the_bytes_of_the_program(
    program, tmp_path, scenes, small, projection
):
    program(
        "view", scenes / "small.json", "--eye", "-2.6,0.35,1.9", "--field", "sphere",
        "--projection", projection, "--svg", tmp_path / "map.svg",
    )  # fmt: skip
    view = small.look((-2.6, 0.35, 1.9), field="sphere")
    text = view.svg(tmp_path / "mine.svg", projection=projection, title="small.json")
    assert text == (tmp_path / "map.svg").read_text()
    assert (tmp_path / "mine.svg").read_text() == text


@pytest.mark.parametrize("camera", ["spherical", "normal"])
def test_a_shot_has_the_bytes_of_the_program(program, tmp_path, scenes, street, camera):
    program(
        "shot", scenes / "street.json", "--eye", EYE_TEXT, "--camera", camera, "--max-length",
        "0.05", "-o", tmp_path / "shot.json", "--svg", tmp_path / "shot.svg",
    )  # fmt: skip
    shot = street.shot(EYE, camera=camera, max_length=0.05)
    assert shot.text() == (tmp_path / "shot.json").read_bytes()
    shot.write(tmp_path / "mine.json")
    assert (tmp_path / "mine.json").read_bytes() == shot.text()
    assert shot.svg(title="street.json") == (tmp_path / "shot.svg").read_text()


def test_a_shot_of_a_model_has_its_objects_in_the_order_for_the_eye_as_the_programs_has(
    program, tmp_path, models
):
    scene = lumivane.Scene.read(models / "boxes.gltf")
    for eye in [(-9.0, 0.3, 0.7), (9.0, 0.3, 0.7)]:
        text = ",".join(map(str, eye))
        forward = (-eye[0], 0.0, 0.0)
        program(
            "shot", models / "boxes.gltf", "--eye", text, "--forward",
            ",".join(map(str, forward)), "-o", tmp_path / "shot.json",
        )  # fmt: skip
        assert scene.shot(eye, forward).text() == (tmp_path / "shot.json").read_bytes()


def test_many_eyes_have_the_numbers_of_a_grid(program, tmp_path, scenes, small):
    program(
        "grid", scenes / "small.json", "--spacing", "0.7", "--height", "1.6", "-o",
        tmp_path / "views.csv", "--shares", tmp_path / "shares.csv", "--rows", "object",
    )  # fmt: skip
    with open(tmp_path / "views.csv", newline="") as file:
        views = list(csv.DictReader(file))
    vectors = {k: [[float(x) for x in v[k].split(",")] for v in views] for k in ("eye", "forward", "up")}
    columns = ("view_factor", "solid_angle", "visible_fraction", "max_distance", "sky_view_factor")
    mine = small.shares(vectors["eye"], vectors["forward"], vectors["up"], columns=columns)
    with open(tmp_path / "shares.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    per_eye = len(small.objects) + 1
    assert len(rows) == per_eye * len(views) > 100
    for number, row in enumerate(rows):
        eye, place = divmod(number, per_eye)
        if row["kind"] == "sky":
            assert mine["sky_view_factor"][eye] == float(row["view_factor"])
            continue
        for name in columns[:-1]:
            assert mine[name][eye, place] == float(row[name] or 0.0), (name, row)


@pytest.mark.parametrize("file", ["room.json", "ring.json", "wrong.json", "house.city.json"])
def test_findings_are_those_of_the_program(program, tmp_path, models, scenes, file):
    (tmp_path / "wrong.json").write_text('{"Points": [[0,0,0]], "Objects": [{"Id": 1}, null]}')
    path = next(f / file for f in (tmp_path, scenes, models) if (f / file).exists())
    theirs = json.loads(program("check", "--json", path, statuses=(0, 1, 2)))["findings"]
    mine = lumivane.check(path)
    names = ("severity", "code", "object", "region", "face", "text")
    assert [[getattr(f, n) for n in names] for f in mine] == [[f[n] for n in names] for f in theirs]
    assert mine or file != "wrong.json"
