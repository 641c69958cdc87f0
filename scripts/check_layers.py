#!/usr/bin/env python3
"""Checks the architecture: which folder may include which, and that the tree keeps its promises.

Usage: scripts/check_layers.py [ROOT]

Prints one line per fault, with file, line and the allowed list, and exits with 1 if there is any.
"""

import re
import sys
from pathlib import Path

# A room may include itself and every room that its arrows reach.
ARROWS = {
    "cmd": [],
    "utils": ["cmd"],
    "jzon": [],
    "base": ["jzon", "utils"],
    "geometry": ["base"],
    "scene": ["geometry"],
    "shot": ["geometry"],
    "algorithm": ["scene", "shot"],
    "io": ["scene", "shot"],
    "view": ["algorithm", "io"],
    "check": ["algorithm", "io"],
    "session": ["check"],
    "visibility": ["session"],
    "measure": ["visibility"],
    "importers": ["session"],
    "pictures": ["measure"],
}
# Rooms of the components beside the core: their headers are not in the umbrella.
COMPONENTS = ["measure", "visibility", "importers", "pictures"]
PUBLIC_ROOMS = list(ARROWS)

# Two classes of base own points, so these two bodies may look up to geometry.
EXTRA = {
    "src/base/Camera.cpp": ["geometry"],
    "src/base/ViewOrientation3D.cpp": ["geometry"],
}

# The only public headers that include VTK; elsewhere a forward declaration does.
VTK_HEADERS = re.compile(
    r"include/lumivane/(utils/VtkUtils|scene/Object|algorithm/ShotCreator|view/\w+)\.h$")

OPENS_NAMESPACE = re.compile(r"^namespace (Lumivane|Jzon)")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


# What runs when a shot is made knows the values of the interface, and not who calls it.
PIPELINE = "src/algorithm/pipeline"
ABOVE_PIPELINE = re.compile(
    r"algorithm/(?!pipeline/)\w+\.h$|lumivane/algorithm/(ShotCreator|DepthSort\w*|Graph)\.h$")


def reachable(room):
    found, waiting = {room}, [room]
    while waiting:
        for below in ARROWS[waiting.pop()]:
            if below not in found:
                found.add(below)
                waiting.append(below)
    return found


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def target_room(name):
    """The room of an include of ours, or None for a foreign one."""
    match = re.match(r"lumivane/(\w+)/", name) or re.match(r"(\w+)/", name)
    if match and (match.group(1) in ARROWS or match.group(1) in ("kernel", "bridge")):
        return match.group(1)
    return None


def is_vtk(name):
    return name.startswith("vtk") and name.endswith(".h")


class Faults:
    def __init__(self, root):
        self.root, self.count = root, 0

    def add(self, path, number, text):
        self.count += 1
        print(f"{path.relative_to(self.root)}:{number}: {text}")


def check_room_file(faults, root, path, room, public):
    name = str(path.relative_to(root))
    allowed = reachable(room) | set(EXTRA.get(name, []))
    for number, _, included in includes(path):
        target = target_room(included)
        if target == "kernel" and public:
            faults.add(path, number, "a public header never includes the kernel")
        elif target == "bridge":
            faults.add(path, number, "nobody includes bridge")
        elif target in ARROWS and target not in allowed:
            faults.add(path, number,
                       f"{room} must not include {target}; allowed: {', '.join(sorted(allowed))}")
        if public and is_vtk(included) and not VTK_HEADERS.search(name):
            faults.add(path, number, "VTK in a public header outside the listed ones; "
                                     "declare the class forward")


def check_pipeline(faults, path):
    for number, _, included in includes(path):
        above = ABOVE_PIPELINE.match(included)
        if above and not included.startswith("lumivane/algorithm/") or (
                above and above.group(1)):
            faults.add(path, number, f"the pipeline does not know {included}, which calls it")


def check_bodies(faults, root):
    """A body has the name of its header, or that of the class of which it is a chapter."""
    headers = {path.stem for folder in ("src", "include") for path in (root / folder).rglob("*.h")}
    for path in sorted((root / PIPELINE).glob("*.cpp")):
        if path.stem not in headers:
            faults.add(path, 1, "no header has this body's name")


def check_kernel(faults, path):
    for number, _, included in includes(path):
        own = included.startswith("kernel/")
        std = re.fullmatch(r"[a-z_]+", included) is not None
        if not own and not std:
            faults.add(path, number, f"the kernel includes std only, not {included}")


def check_host(faults, path):
    for number, kind, included in includes(path):
        if included.startswith(("kernel/", "bridge/")) or (
                kind == '"' and target_room(included) is not None):
            faults.add(path, number, "programs and bindings use public headers only")


def check_umbrella(faults, root):
    umbrella = root / "include/lumivane/lumivane.h"
    if not umbrella.exists():
        faults.add(umbrella, 1, "the umbrella header is missing")
        return
    named = {included for _, _, included in includes(umbrella)}
    for header in sorted((root / "include").rglob("*.h")):
        name = str(header.relative_to(root / "include"))
        component = header.parent.name in COMPONENTS
        if header != umbrella and not component and name not in named:
            faults.add(umbrella, 1, f"does not include <{name}>")


def check_lists(faults, root):
    for listing in root.rglob("CMakeLists.txt"):
        if "build" in listing.relative_to(root).parts:
            continue
        for number, line in enumerate(listing.read_text(encoding="utf-8").splitlines(), 1):
            if re.search(r"file\s*\(\s*GLOB", line, re.I):
                faults.add(listing, number, "sources are listed, not globbed")


def check_openings(faults, root):
    """A long body opens with a comment: how it works, and why so."""
    for folder in ("src", "host", "bindings"):
        for path in sorted((root / folder).rglob("*.cpp")):
            lines = path.read_text(encoding="utf-8").splitlines()
            if len(lines) <= 100:
                continue
            starts = (n for n, line in enumerate(lines) if OPENS_NAMESPACE.match(line))
            head = lines[: next(starts, len(lines))]
            if not any(line.startswith("// ") for line in head):
                faults.add(path, 1, "over 100 lines, but no opening comment says how it works")


def check_pages(faults, root):
    """Every page of docs/ has its code blocks tested."""
    listing = root / "tests/docs/CMakeLists.txt"
    for page in sorted((root / "docs").glob("*.md")):
        if f"docs/{page.name}\n" not in listing.read_text(encoding="utf-8"):
            faults.add(page, 1, "tests/docs/CMakeLists.txt does not list this page")


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent.parent).resolve()
    faults = Faults(root)
    for room in PUBLIC_ROOMS:
        for path in sorted((root / "include/lumivane" / room).glob("*.h")):
            check_room_file(faults, root, path, room, public=True)
        for path in sorted((root / "src" / room).rglob("*")):
            if path.suffix in (".h", ".cpp", ".ipp"):
                check_room_file(faults, root, path, room, public=False)
    for path in sorted((root / PIPELINE).iterdir()):
        check_pipeline(faults, path)
    check_bodies(faults, root)
    for path in sorted((root / "src/kernel").rglob("*")):
        if path.suffix in (".h", ".cpp"):
            check_kernel(faults, path)
    for folder in ("host", "examples", "bindings"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                check_host(faults, path)
    check_umbrella(faults, root)
    check_lists(faults, root)
    check_openings(faults, root)
    check_pages(faults, root)
    print(f"layers: {faults.count} fault{'' if faults.count == 1 else 's'}")
    return 1 if faults.count else 0


if __name__ == "__main__":
    sys.exit(main())
