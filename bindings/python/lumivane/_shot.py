"""A shot as values."""

from __future__ import annotations

from functools import cached_property
from typing import Any, Optional

import numpy as np
import numpy.typing as npt

from . import _core
from ._arguments import FloatArray, PathLike, Vector3, path_bytes


class Shot:
    """A shot: the hemisphere as whole polygons in drawing order, on a disc or a square.

    Made by `Scene.shot`. Coordinates of the plane run from -1 to 1, x to the right and y upwards.
    """

    def __init__(self, shot: _core.Shot) -> None:
        self._shot = shot

    @property
    def eye(self) -> Vector3:
        """{{TakenShot.eye}}"""
        return self._shot.eye

    @property
    def is_inside(self) -> bool:
        """{{TakenShot.isInside}}"""
        return self._shot.is_inside

    @property
    def hidden_faces(self) -> int:
        """{{TakenShot.hiddenFaces}}"""
        return self._shot.hidden_faces

    @property
    def has_cycle(self) -> bool:
        """Whether faces overlap in a cycle, each hiding part of the next one, so that no drawing
        order is right for all of them."""
        return self._shot.has_cycle

    @cached_property
    def objects(self) -> tuple[str, ...]:
        """The ids of the shot's objects, which are numbered from 1."""
        return tuple(self._shot.objects())

    @cached_property
    def points(self) -> FloatArray:
        """The corners of all polygons in the plane: float, shape (points, 2)."""
        return self._shot.points()

    @cached_property
    def polygons(self) -> npt.NDArray[np.void]:
        """The polygons in drawing order, a structured array.

        `object`, `face`, `region`, `pen`, `brush`: numbers from 1 of the object in `objects`, of
        face, region, pen and brush in the scene. `first_corner`, `corner_count`: where the
        polygon's corners stand in `corners`.
        """
        return self._shot.polygons()

    @cached_property
    def corners(self) -> npt.NDArray[np.int32]:
        """Positions in `points` of the corners of all polygons, one polygon after the other."""
        return self._shot.corners()

    def polygon(self, number: int) -> FloatArray:
        """The corners of the polygon at a position in `polygons`: float, shape (corners, 2)."""
        row = self.polygons[number]
        first = row["first_corner"]
        return self.points[self.corners[first : first + row["corner_count"]]]

    def __len__(self) -> int:
        """How many polygons there are."""
        return len(self.polygons)

    def text(self) -> bytes:
        """{{TakenShot.text}} The bytes that `write` writes."""
        return self._shot.text()

    def write(self, path: PathLike) -> None:
        """{{TakenShot.write}}"""
        self._shot.write(path_bytes(path))

    def svg(
        self,
        path: Optional[PathLike] = None,
        *,
        width: int = 800,
        height: int = 800,
        title: str = "",
    ) -> str:
        """The picture as SVG, `width` times `height` pixels; written to `path` if there is one."""
        text = self._shot.svg(width, height, title)
        write_text(path, text)
        return text

    def _repr_svg_(self) -> str:
        return self.svg(width=400, height=400)

    def __repr__(self) -> str:
        return f"<lumivane.Shot from {self.eye}: {len(self)} polygons>"

    def __reduce__(self) -> Any:
        raise TypeError("a shot cannot be pickled: pickle its text(), or the scene")


def write_text(path: Optional[PathLike], text: str) -> None:
    """Writes a text as the library does, whole or not at all."""
    if path is not None:
        _core.write_file(path_bytes(path), text.encode())
