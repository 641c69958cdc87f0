"""The package as such: types, texts and what it exports."""

import ast
import inspect
import subprocess
import sys
from pathlib import Path

import pytest

import lumivane

PACKAGE = Path(lumivane.__file__).parent


def run(*arguments):
    done = subprocess.run([sys.executable, *arguments], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


# What pybind11 does with all classes. The members of these are compared all the same.
ALLOWED = """
lumivane._core.(Map|Scene|Shot)
lumivane._core.(Map|Scene|Shot).__init__
"""


def test_stubs_say_what_the_module_has(tmp_path):
    pytest.importorskip("mypy")
    (tmp_path / "mypy.ini").write_text("[mypy]\nfollow_imports = silent\nignore_missing_imports = True\n")
    (tmp_path / "allowed").write_text(ALLOWED)
    output = run("-m", "mypy.stubtest", "lumivane._core", "--mypy-config-file", tmp_path / "mypy.ini",
                 "--allowlist", tmp_path / "allowed")  # fmt: skip
    assert "no issues found" in output


def test_types_of_the_package_are_checked(tmp_path):
    pytest.importorskip("mypy")
    user = tmp_path / "user.py"
    user.write_text(
        "import numpy as np\n"
        "import lumivane\n"
        "scene = lumivane.Scene.read('a.json', sides='both')\n"
        "view: lumivane.VisibleMap = scene.look((0, 0, 1.6), forward=np.array([0.0, 0.0, 1.0]))\n"
        "factor: float = view.sky_view_factor\n"
        "names: tuple[str, ...] = scene.objects\n"
        "shot: lumivane.Shot = scene.shot((0, 0, 1))\n"
        "sun = scene.sun_hours((0, 0, 1), '2026-06-21', latitude=52, longitude=4.4, time_zone=2)\n"
        "hours: float = float(sun.hours.sum())\n"
        "factors: lumivane.FaceFactors = scene.factors(rows=[0, 2], tolerance=1e-3)\n"
    )
    wrong = tmp_path / "wrong.py"
    wrong.write_text("import lumivane\nlumivane.Scene.read('a').look((0, 0, 0)).sky_view_factor()\n")
    done = subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--ignore-missing-imports", "--cache-dir",
         tmp_path / "cache", user, wrong,
         *(PACKAGE / f"{name}.py" for name in ("__init__", "dask", "dask_lean", "mpi", "parts"))], capture_output=True, text=True,
    )  # fmt: skip
    assert "wrong.py:2: error: \"float\" not callable" in done.stdout
    assert "Found 1 error in 1 file (checked 7 source files)" in done.stdout, done.stdout


def public(owner):
    for name, member in vars(owner).items():
        if not name.startswith("_"):
            yield name, member


def test_everything_public_is_documented():
    missing = []
    for name in lumivane.__all__:
        member = getattr(lumivane, name)
        if inspect.isclass(member) or inspect.isfunction(member):
            missing += [] if member.__doc__ else [name]
        if member in (lumivane.FaceFactors, lumivane.Scene, lumivane.Shot,
                      lumivane.SunHours, lumivane.VisibleMap):  # fmt: skip
            missing += [f"{name}.{n}" for n, m in public(member) if not inspect.getdoc(m)]
    for name in ("dask", "dask_lean", "mpi", "parts"):
        tree = ast.parse((PACKAGE / f"{name}.py").read_text())
        missing += [] if ast.get_docstring(tree) else [name]
        for node in ast.walk(tree):
            if isinstance(node, ast.ClassDef) and not node.name.startswith("_"):
                missing += undocumented(node, f"{name}.{node.name}.")
        missing += undocumented(tree, f"{name}.")
    assert missing == []


def undocumented(owner, name):
    kinds = (ast.ClassDef, ast.FunctionDef)
    return [name + node.name for node in owner.body if isinstance(node, kinds)
            and not node.name.startswith("_") and not ast.get_docstring(node)]  # fmt: skip


def test_texts_of_headers_are_filled_in():
    for file in PACKAGE.glob("*.py"):
        assert "{{" not in file.read_text()
        assert all(len(line) <= 100 for line in file.read_text().splitlines()), file
    text = inspect.getdoc(lumivane.Scene.look)
    assert "upwards in pictures of the map" in text.lower()
    assert "steradian; the whole hemisphere is 2 pi" in inspect.getdoc(lumivane.VisibleMap.cells)


def test_the_package_is_marked_as_typed_and_has_a_version():
    assert (PACKAGE / "py.typed").exists()
    assert lumivane.__version__.count(".") == 2
    assert lumivane.Error.__module__ == "lumivane"


def test_importing_takes_numpy_and_nothing_else_of_the_optional_packages():
    code = (
        "import sys, lumivane; "
        "print([m for m in ('scipy', 'pandas', 'geopandas', 'xarray', 'shapely', 'distributed', 'mpi4py') if m in sys.modules])"
    )
    assert run("-c", code).strip() == "[]"
