"""The visibility map as arrays."""

from __future__ import annotations

import math
from functools import cached_property
from typing import TYPE_CHECKING, Any, Iterator, Optional

import numpy as np
import numpy.typing as npt

from . import _core
from ._arguments import FloatArray, PathLike, Vector3
from ._shot import write_text

if TYPE_CHECKING:
    import geopandas
    import xarray

#: What the edges of a map are, by their number `kind`.
EDGE_KINDS = ("silhouette", "crease", "inner", "crossing", "field")

_TABLE_TYPES = {
    "kind": "U6",
    "object": np.int32,
    "id": object,
    "face": np.int32,
    "region": np.int32,
    "source_region": np.int32,
    "area": np.float64,
    "view_factor": np.float64,
    "solid_angle": np.float64,
    "hemisphere_share": np.float64,
    "class": object,
    "visible_fraction": np.float64,
    "min_distance": np.float64,
    "max_distance": np.float64,
}
_TABLE = np.dtype(list(_TABLE_TYPES.items()))


class VisibleMap:
    """{{VisibleMap}}

    Made by `Scene.look`. All arrays are read-only and made when they are first asked for.
    """

    def __init__(self, core_map: _core.Map) -> None:
        self._map = core_map

    @property
    def eye(self) -> Vector3:
        """{{VisibleMap.eye}}: x, y, z in scene units."""
        return self._map.eye

    @property
    def forward(self) -> Vector3:
        """The middle of the hemisphere: {{VisibleMap.forward}}."""
        return self._map.forward

    @property
    def up(self) -> Vector3:
        """Upwards in pictures: {{VisibleMap.up}}."""
        return self._map.up

    @property
    def field(self) -> str:
        """"hemisphere" or "sphere": {{VisibleMap.field}}."""
        return "sphere" if self._map.is_sphere else "hemisphere"

    @property
    def two_sided(self) -> bool:
        """{{VisibleMap.twoSided}}"""
        return self._map.two_sided

    @property
    def sky_view_factor(self) -> float:
        """The view factor of the sky: {{ViewShare.viewFactor}}. With `forward` straight up it is
        the sky view factor of urban climate. Not a number for a sphere."""
        return math.nan if self._map.is_sphere else self._map.sky_view_factor

    @property
    def sky_solid_angle(self) -> float:
        """The solid angle of the sky in steradian: {{MapShares.sky}}"""
        return self._map.sky_solid_angle

    @cached_property
    def shares(self) -> npt.NDArray[np.void]:
        """How much of the view each object takes, in the scene's order, and last the sky: the
        table of `table("object")`."""
        return self.table("object")

    def table(self, rows: str = "object") -> npt.NDArray[np.void]:
        """The table of shares that `lumivane view --shares` writes, as a structured array.

        `rows` says how deep it goes. The sky is always last.
            "total": {{ShareDepth.Total}};
            "class": {{ShareDepth.Class}};
            "object": {{ShareDepth.Object}};
            "face": {{ShareDepth.Face}};
            "region": {{ShareDepth.Region}}.

        The columns:
            `kind`: {{ShareRow.kind}};
            `object`: {{ShareRow.object}};
            `id`: its id;
            `face`: {{ShareRow.face}};
            `region`: {{ShareRow.region}};
            `source_region`: {{ShareRow.sourceRegion}};
            `area`: on the orthographic fisheye's disc, whose whole is pi;
            `view_factor`: {{ViewShare.viewFactor}};
            `solid_angle`: {{ViewShare.solidAngle}};
            `hemisphere_share`: the solid angle by that of the hemisphere;
            `class`: {{ShareRow.className}};
            `visible_fraction`: the part that is seen of what the object would take if nothing
                stood in front of it, 0 to 1;
            `min_distance`: {{ViewShare.minDistance}};
            `max_distance`: {{ViewShare.maxDistance}}.

        What only a hemisphere has is not a number for a sphere, and a visible fraction is not a
        number unless `look` was asked for it.
        """
        columns = self._map.table(rows)
        result = np.empty(len(columns["object"]), dtype=_TABLE)
        for name in _TABLE_TYPES:
            result[name] = columns[name]
        result.flags.writeable = False
        return result

    @cached_property
    def cells(self) -> npt.NDArray[np.void]:
        """The cells of the map, {{VisibleMap.cells}}: a structured array.

            `object`, `face`, `region`: {{Label}}
            `polygon`: the position in the arrays of `Scene.from_arrays`, or of the region among all
                of the scene; -1 for the sky;
            `solid_angle`: {{VisibleMap.Cell.solidAngle}};
            `view_factor`: {{VisibleMap.Cell.viewFactor}};
            `min_distance`: {{VisibleMap.Cell.minDistance}};
            `max_distance`: {{VisibleMap.Cell.maxDistance}};
            `first_ring`: {{VisibleMap.Cell.firstRing}};
            `ring_count`: {{VisibleMap.Cell.ringCount}}.
        """
        return self._map.cells()

    @cached_property
    def edges(self) -> npt.NDArray[np.void]:
        """{{VisibleMap.Edge}} A structured array, {{VisibleMap.edges}}.

            `from`, `to`: positions in `vertices`;
            `left`: {{VisibleMap.Edge.left}};
            `right`: {{VisibleMap.Edge.right}};
            `kind`: a position in `EDGE_KINDS`. Silhouette: {{VisibleMap.EdgeKind.Silhouette}}.
                Crease: {{VisibleMap.EdgeKind.Crease}}. Inner: {{VisibleMap.EdgeKind.Inner}}.
                Crossing: {{VisibleMap.EdgeKind.Crossing}}. Field: {{VisibleMap.EdgeKind.Field}}.
        """
        return self._map.edges()

    @cached_property
    def vertices(self) -> FloatArray:
        """The ends of the edges, {{VisibleMap.vertices}}: float, shape (vertices, 3)."""
        return self._map.vertices()

    @cached_property
    def ring_offsets(self) -> npt.NDArray[np.int64]:
        """Where the rings stand in `ring_vertices`: ring r from [r] up to, but without, [r + 1]."""
        return self._map.ring_offsets()

    @cached_property
    def ring_vertices(self) -> npt.NDArray[np.int32]:
        """Positions in `vertices` of the {{VisibleMap.ringVertices}}."""
        return self._map.ring_vertices()

    def rings(self, cell: int) -> list[npt.NDArray[np.int32]]:
        """{{VisibleMap.rings}} Positions in `vertices`."""
        row = self.cells[cell]
        first = int(row["first_ring"])
        offsets = self.ring_offsets
        return [
            self.ring_vertices[offsets[ring] : offsets[ring + 1]]
            for ring in range(first, first + int(row["ring_count"]))
        ]

    def __len__(self) -> int:
        """How many cells there are."""
        return self._map.cell_count

    def svg(
        self,
        path: Optional[PathLike] = None,
        *,
        projection: str = "fisheye",
        width: Optional[int] = None,
        height: int = 800,
        color_by: str = "brush",
        lines: bool = True,
        title: str = "",
    ) -> str:
        """The map as an SVG picture; written to `path` if there is one.

        `projection`, as on the command line, is "fisheye" (areas are view factors), "equidistant"
        or "equirectangular", `width` and `height` are pixels, `color_by` is "brush" (the scene's
        colours, if it has any) or "object", and `lines` says whether edges are drawn.
        """
        if width is None:
            width = 2 * height if self._is_wide(projection) else height
        text = self._map.svg(projection, width, height, color_by, lines, title)
        write_text(path, text)
        return text

    def _is_wide(self, projection: str) -> bool:
        return self._map.is_sphere and projection == "equirectangular"

    def _repr_svg_(self) -> str:
        return self.svg(height=400)

    def to_json(self) -> str:
        """The map as the text that `lumivane view --map` writes."""
        return self._map.json()

    def outlines(
        self, projection: str = "fisheye", tolerance: float = 1e-3
    ) -> Iterator[tuple[int, FloatArray]]:
        """The outlines of the cells in the plane of a projection: for each ring the position of
        its cell and its corners, float, shape (corners, 2).

        In the fisheyes the hemisphere is the unit disc; in "equirectangular" x is the azimuth to
        the right and y the elevation, both in degrees. Outer rings run against the clock, holes
        with it. Arcs become chords that are off them by at most `tolerance` of the plane's units.
        """
        if not tolerance > 0.0:
            raise ValueError("tolerance: it must be greater than 0")
        unit = 90.0 if projection == "equirectangular" else 1.0
        # A tenth of a pixel is what pictures are off by.
        height = int(min(8192.0, max(16.0, math.ceil(0.2 * unit / tolerance))))
        width = 2 * height if self._is_wide(projection) else height
        for cell, corners in self._map.outlines(projection, width, height):
            plane = np.empty_like(corners)
            plane[:, 0] = (corners[:, 0] - width / 2) * (2 * unit / height)
            plane[:, 1] = (height / 2 - corners[:, 1]) * (2 * unit / height)
            yield cell, plane

    def to_geodataframe(
        self, projection: str = "fisheye", tolerance: float = 1e-3
    ) -> "geopandas.GeoDataFrame":
        """The cells as polygons of a plane (see `outlines`), one row for each that it shows, with
        the columns of `cells`, `id` and `cell`, the position in `cells`. Needs geopandas."""
        import geopandas
        from shapely.geometry import MultiPolygon, Polygon

        rings: dict[int, list[FloatArray]] = {}
        for cell, corners in self.outlines(projection, tolerance):
            if len(corners) >= 3:
                rings.setdefault(cell, []).append(corners)
        shown = np.array(sorted(rings), dtype=np.int64)
        columns: dict[str, Any] = {"cell": shown}
        for name in ("object", "face", "region", "polygon", "solid_angle", "view_factor",
                     "min_distance", "max_distance"):  # fmt: skip
            columns[name] = self.cells[name][shown]
        ids = np.append(self.shares["id"][:-1], "")  # at -1 that of the sky
        columns["id"] = ids[columns["object"] - 1]
        shapes = [_shape(rings[cell], Polygon, MultiPolygon) for cell in shown]
        return geopandas.GeoDataFrame(columns, geometry=shapes)

    def to_xarray(self) -> "xarray.Dataset":
        """The shares of the objects as a dataset along `object`, whose coordinates are the ids;
        what concerns the whole map stands in its attributes. Needs xarray."""
        import xarray

        objects = self.shares[:-1]
        names = ("area", "view_factor", "solid_angle", "hemisphere_share", "visible_fraction",
                 "min_distance", "max_distance")  # fmt: skip
        return xarray.Dataset(
            {name: ("object", objects[name].copy()) for name in names},
            coords={"object": list(objects["id"])},
            attrs={
                "eye": list(self.eye),
                "forward": list(self.forward),
                "up": list(self.up),
                "field": self.field,
                "sky_view_factor": self.sky_view_factor,
                "sky_solid_angle": self.sky_solid_angle,
            },
        )

    def __repr__(self) -> str:
        return f"<lumivane.VisibleMap from {self.eye}: {len(self)} cells of the {self.field}>"

    def __reduce__(self) -> Any:
        raise TypeError("a map cannot be pickled: pickle its arrays, or the scene and look again")


def _area(corners: FloatArray) -> float:
    x, y = corners[:, 0], corners[:, 1]
    return float(0.5 * (x @ np.roll(y, -1) - y @ np.roll(x, -1)))


def _shape(rings: list[FloatArray], polygon: Any, multi_polygon: Any) -> Any:
    """The polygon of a cell's rings: outer ones run against the clock, and a hole lies in the
    smallest of them around it."""
    outer = sorted((ring for ring in rings if _area(ring) > 0.0), key=_area)
    if not outer:  # a sliver that rounding has turned round
        return polygon(max(rings, key=lambda ring: abs(_area(ring))))
    holes: list[list[FloatArray]] = [[] for _ in outer]
    shells = [polygon(ring) for ring in outer]
    for ring in rings:
        if _area(ring) >= 0.0:
            continue
        inside = polygon(ring).representative_point()
        around = [i for i, shell in enumerate(shells) if shell.contains(inside)]
        holes[around[0] if around else -1].append(ring)
    pieces = [polygon(ring, inner) for ring, inner in zip(outer, holes)]
    return pieces[0] if len(pieces) == 1 else multi_polygon(pieces)
