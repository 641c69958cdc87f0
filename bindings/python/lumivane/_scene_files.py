"""Scenes on their way to other processes: as bytes, and as files named by their content. They are
ready to be looked at, and hold what looks need alone."""

from __future__ import annotations

from pathlib import Path

from . import _core
from ._arguments import PathLike, path_bytes
from ._scene import Scene, ready_bytes, scene_of_ready
from ._store import Store

_ENDING = ".lumiscene"


def scene_bytes(scene: Scene) -> bytes:
    """The content of a scene."""
    return ready_bytes(scene._scene, scene.content_name.encode(), False)


def scene_of_bytes(content: bytes) -> Scene:
    """The scene of such bytes."""
    return Scene(scene_of_ready(content), ("ready",))


def keep_scene(scene: Scene, folder: PathLike) -> Path:
    """Writes a scene into a folder under the name of its content, unless it is there."""
    path = Store(folder, _ENDING).path(scene.content_name)
    if not path.exists():
        path.parent.mkdir(parents=True, exist_ok=True)
        scene._scene.write(path_bytes(path), scene.content_name.encode(), False)
    return path


def kept_scene(folder: PathLike, name: str) -> Scene:
    """The scene of a name in a folder, mapped from there."""
    return Scene.read(Store(folder, _ENDING).path(name))
