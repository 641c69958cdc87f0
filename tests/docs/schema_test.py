#!/usr/bin/env python3
"""Checks every sample and expected document against the schemas, and the schemas against faults.

Usage: schema_test.py ROOT [PROGRAM]

With the program lumivane the maps that it writes are checked, too.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

from jsonschema import Draft202012Validator

ROOT = Path(sys.argv[1])


def validator(kind):
    schema = json.loads((ROOT / f"docs/schema/{kind}.schema.json").read_text())
    Draft202012Validator.check_schema(schema)
    return Draft202012Validator(schema)


# What looks differ in: fields, classes, regions of no face, holes, nothing at all to see.
VIEWS = [
    ["scenes/street.json", "--eye=-5.3,-1.37,3.4"],
    ["scenes/room.json", "--eye=0.35,2.137,1.6", "--field", "sphere", "--two-sided"],
    ["scenes/docking.json", "--eye=-3,0.2,0.3"],
    ["tests/data/models/house.city.json", "--eye=-8.3,-15.1,7.7", "--forward=0.5,1,-0.3"],
    ["scenes/small.json", "--eye=0,0,-9", "--forward=0,0,-1"],
    ["scenes/small.json", "--eye=0,0,-9e9", "--field", "sphere"],
]


def written_maps(program):
    with tempfile.TemporaryDirectory() as folder:
        for number, view in enumerate(VIEWS):
            path = Path(folder) / f"{number} {Path(view[0]).name}"
            subprocess.run([program, "view", *view, "--map", path], cwd=ROOT, check=True,
                           stdout=subprocess.DEVNULL)
            yield path


def documents(kind):
    if kind == "map":
        return sorted((ROOT / "tests/data/maps").glob("*.map.json"))
    found = sorted((ROOT / "tests/data/golden").glob(f"*.{kind}.json"))
    if kind == "scene":
        found += sorted((ROOT / "scenes").glob("*.json"))
    return found


def faults_found(check, document, path):
    return [f"{path.name}: {'/'.join(map(str, e.absolute_path))}: {e.message[:120]}"
            for e in check.iter_errors(document)]


# No shot can be made of these, and the schema says why.
REFUSED = {"p05_faceless.scene.json"}

# Each breaks a good document in one place; a schema that lets it pass checks nothing.
BROKEN = {
    "scene": [
        lambda d: d.pop("Points"),
        lambda d: d["Points"][0].pop(),
        lambda d: d["Points"][0].__setitem__(0, "1"),
        lambda d: d["Objects"][0].pop("Id"),
        lambda d: d["Objects"][0]["Regions"][0]["Points"].__setitem__(0, 0),
        lambda d: d["Objects"][0]["Regions"][0].pop("Face"),
        lambda d: d["Brushes"][0].__setitem__(0, 256),
        lambda d: d["Pens"][0].__setitem__(4, -1),
        lambda d: d["Objects"][0]["Faces"].__setitem__(0, []),
    ],
    "shot": [
        lambda d: d.pop("Regions"),
        lambda d: d["Points"][0].append(0),
        lambda d: d["Points"][0].__setitem__(0, 1.5),
        lambda d: d["Regions"][0].pop("Object"),
        lambda d: d["Regions"][0]["Points"].__setitem__(0, 0),
        lambda d: d["Objects"][0].pop("Faces"),
        lambda d: d["Brushes"][0].__setitem__(0, -1),
    ],
    "map": [
        lambda d: d.pop("version"),
        lambda d: d.__setitem__("field", "disc"),
        lambda d: d["eye"].pop(),
        lambda d: d["vertices"][0].__setitem__(0, 1.5),
        lambda d: d["cells"][0].pop("solid_angle"),
        lambda d: d["cells"][0].__setitem__("object", -1),
        lambda d: d["cells"][0]["rings"][0].__setitem__(0, -1),
        lambda d: d["cells"][0]["rings"][0].__setitem__(slice(2, None), []),
        lambda d: d["edges"][0]["cells"].pop(),
        lambda d: d["edges"][0].__setitem__("kind", "hem"),
    ],
}

LEAST = {"scene": 50, "shot": 50, "map": 1}
GOOD = {"scene": "golden/b01_box.scene.json", "shot": "golden/b01_box.shot.json",
        "map": "maps/square.map.json"}


def main():
    faults = []
    for kind in ("scene", "shot", "map"):
        check = validator(kind)
        paths = documents(kind)
        if len(paths) < LEAST[kind]:
            faults.append(f"only {len(paths)} {kind} documents were found")
        for path in paths:
            found = faults_found(check, json.loads(path.read_text()), path)
            if path.name not in REFUSED:
                faults += found
            elif not found:
                faults.append(f"{path.name} should be refused")
        if kind == "map" and len(sys.argv) > 2 and sys.argv[2]:
            for path in written_maps(sys.argv[2]):
                faults += faults_found(check, json.loads(path.read_text()), path)
            print(f"map: {len(VIEWS)} written ones")
        good = ROOT / "tests/data" / GOOD[kind]
        for number, breaks in enumerate(BROKEN[kind]):
            document = json.loads(good.read_text())
            breaks(document)
            if not faults_found(check, document, good):
                faults.append(f"the {kind} schema lets broken document {number} pass")
        print(f"{kind}: {len(paths)} documents, {len(BROKEN[kind])} broken ones")
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
