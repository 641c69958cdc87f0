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
}


def main():
    faults = []
    for kind in ("scene", "shot"):
        check = validator(kind)
        paths = documents(kind)
        if len(paths) < 50:
            faults.append(f"only {len(paths)} {kind} documents were found")
        for path in paths:
            found = faults_found(check, json.loads(path.read_text()), path)
            if path.name not in REFUSED:
                faults += found
            elif not found:
                faults.append(f"{path.name} should be refused")
        good = ROOT / f"tests/data/golden/b01_box.{kind}.json"
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
