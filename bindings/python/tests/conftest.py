"""What the tests share: sample scenes, small shapes, and the command line."""

import os
import subprocess
from pathlib import Path

import numpy as np
import pytest

import lumivane

ROOT = Path(os.environ["LUMIVANE_ROOT"])
PROGRAM = os.environ.get("LUMIVANE_PROGRAM", "")


@pytest.fixture(scope="session")
def scenes():
    return ROOT / "scenes"


@pytest.fixture(scope="session")
def models():
    return ROOT / "tests/data/models"


@pytest.fixture(scope="session")
def street(scenes):
    return lumivane.Scene.read(scenes / "street.json")


@pytest.fixture(scope="session")
def small(scenes):
    return lumivane.Scene.read(scenes / "small.json")


@pytest.fixture(scope="session")
def house(models):
    return lumivane.Scene.read(models / "house.city.json")


@pytest.fixture
def program():
    """Runs the command line, which must end with one of some statuses."""
    if not PROGRAM:
        pytest.skip("the program is not built")

    def run(*arguments, statuses=(0,)):
        done = subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True)
        assert done.returncode in statuses, done.stderr
        return done.stdout

    return run


# A square 3 units in front of an eye at the origin that looks along x. As the eye sees the corners,
# y to the left and z up, they run against the clock.
SQUARE_POINTS = np.array([[3.0, 1, -1], [3, -1, -1], [3, -1, 1], [3, 1, 1]])
SQUARE = np.array([[0, 1, 2, 3]])


@pytest.fixture
def square():
    return lumivane.Scene.from_arrays(SQUARE_POINTS, SQUARE)
