#!/usr/bin/env python3
"""Checks every sample and expected document against the schemas, and the schemas against faults.

Usage: schema_test.py ROOT
"""

import json
import sys
from pathlib import Path

from jsonschema import Draft202012Validator

ROOT = Path(sys.argv[1])


def validator(kind):
    schema = json.loads((ROOT / f"docs/schema/{kind}.schema.json").read_text())
    Draft202012Validator.check_schema(schema)
    return Draft202012Validator(schema)


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
