"""Scenes on their way to other processes: as bytes, and as files named by their content."""

from __future__ import annotations

import pickle
from pathlib import Path

from . import _core
from ._arguments import PathLike
from ._scene import Scene
from ._store import Store, write_whole

_ENDING = ".scene.pickle"


def scene_bytes(scene: Scene) -> bytes:
    """The content of a scene."""
    return pickle.dumps(scene, protocol=4)


def scene_of_bytes(content: bytes) -> Scene:
    """The scene of such bytes."""
    scene = pickle.loads(content)
    assert isinstance(scene, Scene)
    return scene


def keep_scene(scene: Scene, folder: PathLike) -> Path:
    """Writes a scene into a folder under the name of its content, unless it is there."""
    path = Store(folder, _ENDING).path(scene.content_name)
    if not path.exists():
        content = scene_bytes(scene)
        write_whole(path, lambda file: file.write(content))
    return path


def kept_scene(folder: PathLike, name: str) -> Scene:
    """The scene of a name in a folder."""
    path = Store(folder, _ENDING).path(name)
    try:
        return scene_of_bytes(path.read_bytes())
    except FileNotFoundError:
        raise _core.Error(f"{path}: the file of the scene is gone: plan it again") from None
