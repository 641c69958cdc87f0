"""What pyproject.toml asks for is there: versions, options, targets and components of the build. That
the package works as it would be installed by pip, scripts/check_wheel.sh finds out."""

import os
import re
from pathlib import Path

import pytest

import lumivane

ROOT = Path(os.environ["LUMIVANE_ROOT"])


@pytest.fixture(scope="module")
def project():
    tomllib = pytest.importorskip("tomllib")
    return tomllib.loads((ROOT / "pyproject.toml").read_text())


def test_the_version_is_that_of_the_build(project):
    how = project["tool"]["scikit-build"]["metadata"]["version"]
    assert project["project"]["dynamic"] == ["version"]
    found = re.search(how["regex"], (ROOT / how["input"]).read_text(), re.MULTILINE)
    assert found["value"] == lumivane.__version__


def test_the_metadata_are_valid(project):
    requirements = pytest.importorskip("packaging.requirements")
    about = project["project"]
    assert re.fullmatch("[a-z]+", about["name"]) and about["name"] == lumivane.__name__
    for file in (about["readme"], about["license"]["file"]):
        assert (ROOT / file).is_file()
    further = [one for some in about["optional-dependencies"].values() for one in some]
    for line in (*about["dependencies"], *further, *project["build-system"]["requires"]):
        assert requirements.Requirement(line).name


def test_options_targets_and_components_are_those_of_the_build(project):
    build = project["tool"]["scikit-build"]
    lists = "\n".join(
        file.read_text() for file in (ROOT / "CMakeLists.txt", *(ROOT / "cmake").glob("*.cmake"))
    )
    package = (ROOT / "bindings/python/CMakeLists.txt").read_text()
    for option, value in build["cmake"]["define"].items():
        assert re.search(rf"\b(option|cmake_dependent_option)\({option}\b", lists), option
        assert value in ("ON", "OFF")
    for target in build["build"]["targets"]:
        assert f"add_custom_target({target} " in package
    for component in build["install"]["components"]:
        assert f"COMPONENT {component}" in package
