"""Scenes: read from files or made of arrays, and looked at."""

from __future__ import annotations

import itertools
import os
import tempfile
from functools import cached_property
from pathlib import Path
from typing import TYPE_CHECKING, Any, Callable, NamedTuple, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from . import _core
from ._arguments import (
    FloatArray,
    PathLike,
    is_sphere,
    names,
    numbers,
    path_bytes,
    rows_of_three,
    thread_count,
    vector,
    whole_numbers,
)
from ._content import content_name
from ._factors import FaceFactors
from ._map import VisibleMap
from ._shot import Shot
from ._sun import Day, SunHours, Zone, day_of, north_of, steps_of

if TYPE_CHECKING:
    import scipy.sparse

_READY = ".lumiscene"

Progress = Callable[[float], object]
Ragged = tuple[npt.ArrayLike, npt.ArrayLike]


class Finding(NamedTuple):
    """One thing that is wrong or surprising in a scene."""

    severity: str  #: "error": no shot can be made; "warning": it may be wrong or surprise
    code: str  #: the kind, for machines
    object: str  #: the id of the object concerned; empty for the scene as a whole
    region: int  #: the number of the region in its object, from 1; 0 for none
    face: int  #: the number of the face in its object, from 1; 0 for none
    text: str  #: what is wrong
    fix: str  #: what to do about it
    line: str  #: where and what, in one line


def check(path: PathLike) -> list[Finding]:
    """Everything that is wrong or surprising in a file, as `lumivane check` reports it: also what
    only the text of a scene file can have wrong, and files of which no scene can be made."""
    return [Finding(*finding) for finding in _core.check_file(path_bytes(path))]


class Scene:
    """{{SceneIndex}}

    Made by `Scene.read` and `Scene.from_arrays`. Pickles hold the content, not the path, so that
    processes of a pool need no file.
    """

    def __init__(self, scene: _core.Scene, recipe: tuple[Any, ...]) -> None:
        self._scene = scene
        self._recipe = recipe  # of what it was made, for pickles

    @classmethod
    def read(
        cls,
        path: PathLike,
        *others: PathLike,
        sides: str = "outside",
        scale: float = 1.0,
        y_up: bool = False,
        center: bool = False,
        allow_outside: bool = False,
    ) -> "Scene":
        """Reads a scene file (JSON), a mesh (OBJ, STL, PLY, glTF) or a city model (CityJSON).

        Or a scene that is ready (*.lumiscene), as `write` and `lumivane import` write it.

        `others`: more meshes and city models, such as the tiles of a city, that are one scene with
            the first: in one system of coordinates, all turned, scaled and moved alike. An object
            whose name stands in several files gets that of its file in front.

        Classes come from a city model or mesh, and of a scene file from the table NAME.classes.csv
        beside it.

        The options concern meshes and city models alone.
            `sides`: {{ImportOptions.sides}}: "outside" ({{ImportSides.Outside}}),
                "inside" ({{ImportSides.Inside}}) or "both" ({{ImportSides.Both}}).
            `scale`: {{ImportOptions.scale}}
            `y_up`: {{ImportOptions.yUp}}
            `center`: {{ImportOptions.center}}
            `allow_outside`: {{ImportOptions.allowOutside}}

        Raises `Error` if a file cannot be read, with its name and the cause; of several also if one
        is neither mesh nor city model or is named twice, and if two name different coordinate
        reference systems.
        """
        paths = [path_bytes(one) for one in (path, *others)]
        options = (sides, scale, y_up, center, allow_outside)
        scene = _core.Scene.read(paths, *options)
        if others:
            return cls(scene, ("models", _files_of_all(paths), options))
        if os.fsdecode(paths[0]).endswith(_READY):
            return cls(scene, ("ready",))
        if scene.import_report() is None:
            return cls(scene, ("text", paths[0]))
        return cls(scene, ("files", _files_of(paths[0]), options))

    @classmethod
    def from_arrays(
        cls,
        points: npt.ArrayLike,
        polygons: Union[npt.ArrayLike, Ragged],
        labels: Optional[npt.ArrayLike] = None,
        classes: Optional[npt.ArrayLike] = None,
        *,
        winding: str = "ccw",
    ) -> "Scene":
        """Makes a scene of arrays.

        `points`: float, shape (points, 3), {{PolygonScene.points}}.
        `polygons`: positions from 0 in `points`. Either a pair (values, offsets): polygon i has the
            corners values[offsets[i]] up to, but without, values[offsets[i + 1]], and there is one
            offset more than there are polygons. Or an array of shape (polygons, corners), as for
            triangles. Polygons are closed implicitly and filled by the even-odd rule.
        `labels`: for each polygon the id of its object, texts or whole numbers; without them all
            are of one object. Objects are numbered in the order in which they come first.
        `classes`: for each polygon its class (roof, wall ...), texts or whole numbers; "", -1 and
            None stand for none.
        `winding`: "ccw" if polygons are seen from the side from which their corners run against the
            clock, as in meshes; "cw" if with the clock, as in scene files.

        Where polygons lie in one plane, the later one is seen: of two objects that of the later
        object, of one object the later polygon. `VisibleMap.cells` have the position of their
        polygon in what was given here.

        Raises `ValueError` or `TypeError` if arrays do not fit, have the wrong shape or type, or
        hold what is not finite.
        """
        if winding not in ("ccw", "cw"):
            raise ValueError(f'winding: "{winding}" is neither ccw nor cw')
        corners, offsets = _ragged(polygons)
        count = len(offsets) - 1
        numbers_of_objects, ids = _numbered(labels, count, "labels", lambda _: False)
        numbers_of_classes, names_of_classes = _numbered(classes, count, "classes", _is_no_class)
        order = np.argsort(numbers_of_objects, kind="stable")
        corners, offsets = _reordered(corners, offsets, order, winding == "ccw")
        arrays = (
            rows_of_three(points, "points"),
            corners,
            offsets,
            _core_labels(numbers_of_objects[order]),
            ids if labels is not None else ["1"] if count else [],
            numbers_of_classes[order] if classes is not None else np.zeros(0, np.int32),
            names_of_classes if classes is not None else [],
            order.astype(np.int32),
        )
        return cls(_core.Scene.of_arrays(*arrays), ("arrays", arrays))

    def to_arrays(self, winding: str = "ccw") -> tuple[FloatArray, Ragged]:
        """The points, float of shape (points, 3), and the polygons as (values, offsets), in the
        order of `regions`. What `from_arrays` takes, with the same meaning of `winding`."""
        if winding not in ("ccw", "cw"):
            raise ValueError(f'winding: "{winding}" is neither ccw nor cw')
        corners, offsets = self._scene.corners(), self._scene.offsets()
        order = np.arange(len(offsets) - 1)
        return self._scene.points(), _reordered(corners, offsets, order, winding == "ccw")

    def check(self) -> list[Finding]:
        """Everything that would make a shot of the scene fail, be wrong or be surprising.

        `lumivane.check` looks at a file instead, and finds what is wrong with its text, too.
        """
        return [Finding(*finding) for finding in self._scene.check()]

    @cached_property
    def bounds(self) -> FloatArray:
        """The least and greatest coordinates of all polygons: float, shape (2, 3), scene units;
        not numbers if there are none."""
        return self._scene.bounds()

    def write(self, path: PathLike) -> None:
        """Writes the scene, ready to be looked at, into a file (*.lumiscene), whole or not at all.

        `read` maps the file into memory: a scene of a million polygons is there in a fraction of a
        second, and all processes of a machine share one copy of it. Looks have the same results, to
        the last bit. It is a cache, which other versions may refuse: keep what it was made from.

        Raises `ValueError` for a path with another ending, and `Error` if it cannot be written.
        """
        name = path_bytes(path)
        if not os.fsdecode(name).endswith(_READY):
            raise ValueError(f"path: {os.fsdecode(name)} does not end in {_READY}")
        self._scene.write(name, self._name_to_keep(), True)

    def _name_to_keep(self) -> bytes:
        try:
            return self.content_name.encode()
        except TypeError:  # of what cannot be pickled
            return b""

    @cached_property
    def content_name(self) -> str:
        """A name of all that results depend on besides the view: 64 hexadecimal digits, the SHA-256
        of the content. Equal content has equal names, in all processes and on all machines.

        Raises `TypeError` as pickling the scene does."""
        kept = self._scene.content_name()
        if kept:
            return kept.decode()
        kind, *content = self.__reduce__()[1]
        if kind == "text":
            content = content[1:]  # without the path
        return content_name("scene", kind, *content)

    @cached_property
    def objects(self) -> tuple[str, ...]:
        """The ids of the objects, in the scene's order: object n is `objects[n - 1]`."""
        return tuple(self._scene.objects())

    @cached_property
    def classes(self) -> tuple[str, ...]:
        """The names of the classes of polygons: {{PolygonScene.classNames}}."""
        return tuple(self._scene.class_names())

    @cached_property
    def regions(self) -> npt.NDArray[np.void]:
        """The polygons in the scene's order, a structured array.

            `object`, `face`, `region`: {{Label}}
            `polygon`: the position in the arrays of `from_arrays`, or in this one;
            `class`: a position in `classes`; -1 for none;
            `corner_count`: how many corners there are.
        """
        return self._scene.regions()

    @cached_property
    def import_report(self) -> Optional[dict[str, Any]]:
        """What became of a mesh or city model; None for other scenes.

        `format`; `shift`, which was added to every point; `source_polygons` of the file, of which
        `split_polygons` were cut into triangles, `empty_polygons` and `unfilled_polygons` left out;
        `open_bodies`, by id with the count of their open edges; `warnings`.
        """
        return self._scene.import_report()

    def look(
        self,
        eye: npt.ArrayLike,
        forward: npt.ArrayLike = (1.0, 0.0, 0.0),
        up: npt.ArrayLike = (0.0, 0.0, 1.0),
        *,
        field: str = "hemisphere",
        two_sided: bool = False,
        visible_fraction: bool = False,
        threads: int = 0,
        progress: Optional[Progress] = None,
    ) -> VisibleMap:
        """{{SceneIndex.look}}

        `eye`: {{VisibleMap.eye}}, in scene units; it is never moved.
        `forward`: {{LookOptions.forward}}.
        `up`: {{LookOptions.up}}
        `field`: "hemisphere" ({{Field.Hemisphere}}) or "sphere" ({{Field.Sphere}}).
        `two_sided`: {{LookOptions.twoSided}}.
        `visible_fraction`: {{LookOptions.alone}}
        `threads`: {{LookOptions.threads}}
        `progress`: is called with the finished part, from 0 to 1, while the look goes on. What it
            raises ends the look, and so does Ctrl-C.

        Raises `ValueError` for an eye or direction that is not finite, or a forward of zero.
        """
        core_map = self._scene.look(
            vector(eye, "eye"),
            vector(forward, "forward"),
            vector(up, "up"),
            is_sphere(field),
            two_sided,
            visible_fraction,
            threads,
            progress,
        )
        return VisibleMap(core_map)

    def shares(
        self,
        eyes: npt.ArrayLike,
        forward: npt.ArrayLike = (1.0, 0.0, 0.0),
        up: npt.ArrayLike = (0.0, 0.0, 1.0),
        *,
        columns: Union[str, Sequence[str], None] = None,
        by: str = "object",
        field: str = "hemisphere",
        two_sided: bool = False,
        sparse: bool = False,
        threads: int = 0,
        progress: Optional[Progress] = None,
    ) -> dict[str, Any]:
        """What many eyes see, looked at on all processors: a dict with an array for each column.

        `eyes`: float, shape (eyes, 3), scene units.
        `forward`, `up`: one direction for all eyes or one for each: shape (3,) or (eyes, 3).
        `columns`: of objects, float arrays of shape (eyes, objects), 0 for what is not seen:
            "view_factor", "solid_angle", "area", "hemisphere_share", "visible_fraction",
            "min_distance", "max_distance", as `VisibleMap.table` describes them. Of the sky, shape
            (eyes,): "sky_view_factor", "sky_solid_angle", "sky_area", "sky_hemisphere_share".
            Without a choice the view factors of objects and sky, for a sphere the solid angles.
        `by`: "object", or "class" for a column for each of `classes` and a last one for polygons
            of none.
        `sparse`: gives SciPy's `csr_matrix` in place of the arrays of objects. Needs scipy.
        `threads`: how many; 0 for all processors. Results do not depend on it.
        `progress`: is called with the finished part, from 0 to 1, several times a second. What it
            raises ends the work, and so does Ctrl-C, within a fifth of a second.

        Raises `ValueError` for an eye or direction that is not finite, a forward of zero, and for
        columns that there are not.
        """
        check_by(by)
        sphere = is_sphere(field)
        if columns is None:
            columns = default_columns(field)
        rows = rows_of_three(eyes, "eyes")
        result: dict[str, Any] = self._scene.shares(
            rows,
            rows_of_three(forward, "forward"),
            rows_of_three(up, "up"),
            sphere,
            two_sided,
            names(columns),
            by == "class",
            sparse,
            thread_count(threads),
            progress,
        )
        if sparse:
            width = len(self.classes) + 1 if by == "class" else len(self.objects)
            return as_matrices(result, (len(rows), width))
        return result

    def factors(
        self,
        *,
        rows: Optional[npt.ArrayLike] = None,
        tolerance: float = 1e-4,
        most_points: int = 4000,
        two_sided: bool = False,
        reciprocal: bool = False,
        threads: int = 0,
        progress: Optional[Progress] = None,
    ) -> FaceFactors:
        """Integrates the view factors from face to face, as `lumivane factors` does.

        `rows`: positions of elements whose rows are wanted, without repetitions in the result; all
            rows without a choice. Rows do not depend on each other.
        `tolerance`: {{FactorOptions.tolerance}}
        `most_points`: {{FactorOptions.mostPoints}}
        `two_sided`: {{FactorOptions.twoSided}}.
        `reciprocal`: {{makeReciprocal}} Needs all rows.
        `threads`: how many; 0 for all processors. Results do not depend on it.
        `progress`: is called with the finished part, from 0 to 1, several times a second. What it
            raises ends the work, and so does Ctrl-C, within a fifth of a second.

        Raises `ValueError` for a tolerance that is not above 0, for no points, and for rows that
        there are not.
        """
        if reciprocal and rows is not None:
            raise ValueError("reciprocal: all rows are needed; leave out rows")
        if most_points < 0:
            raise ValueError("most_points: the number is negative")
        wanted = None if rows is None else np.unique(whole_numbers(rows, "rows", np.int64))
        parts = self._scene.factors(
            two_sided, tolerance, most_points, wanted, reciprocal, thread_count(threads), progress
        )
        return FaceFactors(parts)

    def sun_hours(
        self,
        eyes: npt.ArrayLike,
        first: Day,
        last: Optional[Day] = None,
        *,
        latitude: float,
        longitude: float,
        time_zone: Zone,
        north: npt.ArrayLike = (0.0, 1.0, 0.0),
        lowest_elevation: float = 0.0,
        two_sided: bool = False,
        threads: int = 0,
        progress: Optional[Progress] = None,
    ) -> SunHours:
        """{{SunHours}}

        `eyes`: float, shape (eyes, 3), scene units; each sees the hemisphere above it.
        `first`, `last`: days from midnight to midnight by the clocks of the place, both included:
            `datetime.date`, "YYYY-MM-DD" or `numpy.datetime64`, 1900 to 2100; one day without
            `last`.
        `latitude`: {{Place.latitude}}.
        `longitude`: {{Place.longitude}}.
        `time_zone`: what the clocks show: a name as "Europe/Amsterdam", a `datetime.tzinfo`, or
            the hours that they are ahead of UTC.
        `north`: {{Place.north}} Or its angle in degrees from x towards y: 90 where y points north.
        `lowest_elevation`: {{SunHours.Options.lowestElevation}}.
        `two_sided`: {{LookOptions.twoSided}}.
        `threads`: how many; 0 for all processors. Results do not depend on it.
        `progress`: is called with the finished part, from 0 to 1, several times a second. What it
            raises ends the work, and so does Ctrl-C, within a fifth of a second.

        Raises `ValueError` for a place, a north, an elevation or days that are none, and `Error`
        if the package was built without libnova, which knows where the sun is.
        """
        start = day_of(first, "first")
        end = start if last is None else day_of(last, "last")
        if end < start:
            raise ValueError(f"last: {end} is before the first day, {start}")
        rows = rows_of_three(eyes, "eyes")
        parts = self._scene.sun_hours(
            rows,
            (start.year, start.month, start.day),
            (end.year, end.month, end.day),
            latitude,
            longitude,
            north_of(north),
            steps_of(time_zone, start, end),
            lowest_elevation,
            two_sided,
            thread_count(threads),
            progress,
        )
        return SunHours(parts, start)

    def seen_in(
        self,
        eye: npt.ArrayLike,
        directions: npt.ArrayLike,
        *,
        two_sided: bool = False,
        threads: int = 0,
    ) -> npt.NDArray[np.void]:
        """{{SceneIndex.seenIn}}

        `directions`: float, shape (directions, 3).

        Returns a structured array, one row for each direction:
            `object`, `face`, `region`, `polygon`: as in `VisibleMap.cells`;
            `distance`: {{Seen.distance}}.
        """
        return self._scene.seen_in(
            vector(eye, "eye"),
            rows_of_three(directions, "directions"),
            two_sided,
            thread_count(threads),
        )

    def shot(
        self,
        eye: npt.ArrayLike,
        forward: npt.ArrayLike = (1.0, 0.0, 0.0),
        up: Optional[npt.ArrayLike] = None,
        *,
        camera: str = "spherical",
        segments: int = 6,
        max_length: float = 0.02,
        merge_distance: float = 0.0,
        eye_clearance: float = 0.01,
        grazing_angle: float = 1.0,
        limit_points: int = 50_000_000,
        limit_memory: int = 2 << 30,
        check: bool = True,
    ) -> Shot:
        """Takes a shot: a picture of whole polygons in drawing order, as `lumivane shot` does.

        `eye`: {{ViewSettings.eye}}; it is moved off a polygon that it stands on.
        `forward`: {{ViewSettings.forward}}.
        `up`: {{ViewSettings.up}}; without it z, and y for a look straight up or down.
        `camera`: "spherical", onto the unit disc, or "normal", onto the square from -1 to 1.
        `segments`: {{ViewSettings.segments}}.
        `max_length`: {{ViewSettings.maxLength}}.
        `merge_distance`: {{ViewSettings.mergeDistance}}
        `eye_clearance`, `grazing_angle`: an eye closer than this to a polygon, in scene units, is
            moved off it, if it looks along the polygon to within this many degrees.
        `limit_points`: {{ViewSettings.limitPoints}}
        `limit_memory`: {{ViewSettings.limitMemory}}
        `check`: whether a scene with errors (see `Scene.check`) is refused.

        Shots of one scene wait for each other, and one under way cannot be stopped. If faces
        overlap in a cycle, the library writes its report "log_sort.txt" into the working folder.

        Raises `Error` if no shot can be made, with the object and region concerned.
        """
        if camera not in ("spherical", "normal"):
            raise ValueError(f'camera: "{camera}" is neither spherical nor normal')
        taken = self._scene.take(
            vector(eye, "eye"),
            vector(forward, "forward"),
            None if up is None else vector(up, "up"),
            camera == "normal",
            segments,
            max_length,
            merge_distance,
            eye_clearance,
            grazing_angle,
            limit_points,
            limit_memory,
            check,
        )
        return Shot(taken)

    def __len__(self) -> int:
        """How many polygons there are."""
        return len(self.regions)

    def __repr__(self) -> str:
        return f"<lumivane.Scene: {len(self.objects)} objects, {len(self)} polygons>"

    def __reduce__(self) -> Any:
        kind, *content = self._recipe
        if kind == "text":
            content = [content[0], self._scene.text(), self._scene.class_table()]
        elif kind == "ready":
            content = [ready_bytes(self._scene, self._scene.content_name(), True)]
        elif kind == "files" and content[0] is None:
            raise TypeError(
                "the scene cannot be pickled: its model reads files outside the model's folder"
            )
        elif kind == "models" and content[0] is None:
            raise TypeError(
                "the scene cannot be pickled: a model reads files outside its folder, or two models"
                " have one name"
            )
        return _unpickled, (kind, *content)


def _unpickled(kind: str, *content: Any) -> Scene:
    if kind == "text":
        name, text, classes = content
        return Scene(_core.Scene.of_text(text, name, classes), ("text", name))
    if kind == "ready":
        return Scene(scene_of_ready(content[0]), ("ready",))
    if kind == "arrays":
        return Scene(_core.Scene.of_arrays(*content[0]), ("arrays", content[0]))
    files, options = content
    models = files if kind == "models" else [files]
    with tempfile.TemporaryDirectory() as folder:
        for name, text in itertools.chain(*models):
            file = Path(os.path.join(folder, os.fsdecode(name)))
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(text)
        paths = [path_bytes(os.path.join(folder, os.fsdecode(model[0][0]))) for model in models]
        return Scene(_core.Scene.read(paths, *options), (kind, files, options))


def ready_bytes(scene: _core.Scene, content_name: bytes, is_whole: bool) -> bytes:
    """A file of a scene that is ready; not whole, with what looks need alone."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder, "scene" + _READY)
        scene.write(path_bytes(file), content_name, is_whole)
        return file.read_bytes()


def scene_of_ready(content: bytes) -> _core.Scene:
    """The scene of such a file, which is mapped and has no name any more."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder, "scene" + _READY)
        file.write_bytes(content)
        return _core.Scene.read([path_bytes(file)], "outside", 1.0, False, False, False)


def _files_of(path: bytes) -> Optional[list[tuple[bytes, bytes]]]:
    """The files of a model with their names below its folder; None if one lies elsewhere."""
    folder = os.path.dirname(os.path.abspath(path))
    found = []
    for file in _core.input_files(path):
        name = os.path.relpath(os.path.abspath(file), folder)
        if name.split(os.sep.encode())[0] == b"..":
            return None
        found.append((name, Path(os.fsdecode(file)).read_bytes()))
    return found


def _files_of_all(paths: list[bytes]) -> Optional[list[list[tuple[bytes, bytes]]]]:
    """The files of several models, each below a folder of its own; None if one lies elsewhere, or
    where it is their paths that distinguish two models."""
    if len({os.path.basename(path) for path in paths}) < len(paths):
        return None
    models = []
    for number, path in enumerate(paths):
        files = _files_of(path)
        if files is None:
            return None
        folder = b"%d" % number
        models.append([(os.path.join(folder, name), text) for name, text in files])
    return models


def _ragged(polygons: Any) -> tuple[npt.NDArray[np.int32], npt.NDArray[np.int64]]:
    """Polygons as corners and offsets."""
    if isinstance(polygons, tuple) and len(polygons) == 2:
        corners = whole_numbers(polygons[0], "polygons: values", np.int32)
        offsets = whole_numbers(polygons[1], "polygons: offsets", np.int64)
        if len(offsets) == 0:
            raise ValueError("polygons: offsets: there must be one more than there are polygons")
        if offsets[0] != 0 or offsets[-1] != len(corners) or np.any(np.diff(offsets) < 0):
            raise ValueError(
                f"polygons: offsets must rise from 0 to the number of values, {len(corners)}"
            )
        return corners, offsets
    try:
        array = np.asarray(polygons)
    except ValueError as error:
        raise ValueError(f"polygons: {error}") from None
    if array.size == 0:
        return np.zeros(0, np.int32), np.zeros(1, np.int64)
    if array.ndim != 2:
        raise ValueError(
            "polygons: a pair (values, offsets) or an array of shape (polygons, corners) is "
            f"needed, but the shape is {array.shape}"
        )
    corners = whole_numbers(array.ravel(), "polygons", np.int32)
    return corners, np.arange(0, array.size + 1, array.shape[1], dtype=np.int64)


def _is_no_class(value: Any) -> bool:
    return value is None or value == "" or (not isinstance(value, str) and value == -1)


def _numbered(
    values: Any, count: int, name: str, is_none: Callable[[Any], bool]
) -> tuple[npt.NDArray[np.int32], list[str]]:
    """The number from 0 of each value in the order of first appearance, and all of them as text;
    -1 for what stands for none."""
    if values is None:
        return np.zeros(count, np.int32), []
    try:
        array = np.asarray(values)
    except ValueError as error:
        raise ValueError(f"{name}: {error}") from None
    if array.shape != (count,):
        raise ValueError(f"{name}: the shape must be ({count},), but is {array.shape}")
    if array.dtype.kind not in "iuUO":
        raise TypeError(f"{name}: texts or whole numbers are needed, but the type is {array.dtype}")
    positions: dict[Any, int] = {}
    result = np.empty(count, np.int32)
    for i, value in enumerate(array.tolist()):
        if is_none(value):
            result[i] = -1
        elif isinstance(value, (str, int)):
            result[i] = positions.setdefault(value, len(positions))
        else:
            raise TypeError(f"{name}: {value!r} is neither a text nor a whole number")
    return result, [str(value) for value in positions]


def _core_labels(objects: npt.NDArray[np.int32]) -> npt.NDArray[np.int32]:
    """Object, face and region of polygons that are sorted by object: the regions of an object are
    counted from 1, and each is a face of its own."""
    labels = np.empty((len(objects), 3), np.int32)
    labels[:, 0] = objects + 1
    position = np.arange(len(objects))
    starts = np.concatenate(([True], objects[1:] != objects[:-1])) if len(objects) else objects > 0
    within = position - np.maximum.accumulate(np.where(starts, position, 0))
    labels[:, 1] = labels[:, 2] = within + 1
    return labels


def _reordered(
    corners: npt.NDArray[np.int32],
    offsets: npt.NDArray[np.int64],
    order: npt.NDArray[np.intp],
    is_turned: bool,
) -> tuple[npt.NDArray[np.int32], npt.NDArray[np.int64]]:
    """The polygons in another order, with their corners turned round or not."""
    lengths = np.diff(offsets)[order]
    ends = np.concatenate(([0], np.cumsum(lengths)))
    within = np.arange(ends[-1]) - np.repeat(ends[:-1], lengths)
    if is_turned:
        within = np.repeat(lengths, lengths) - 1 - within
    return corners[np.repeat(offsets[:-1][order], lengths) + within], ends


def check_by(by: str) -> None:
    """Raises `ValueError` for what columns cannot be of."""
    if by not in ("object", "class"):
        raise ValueError(f'by: "{by}" is neither object nor class')


def default_columns(field: str) -> tuple[str, str]:
    """What `Scene.shares` gives without a choice."""
    measure = "solid_angle" if is_sphere(field) else "view_factor"
    return (measure, "sky_" + measure)


def as_matrices(columns: dict[str, Any], shape: tuple[int, int]) -> dict[str, Any]:
    """The columns of objects as matrices, which share their structure."""
    import scipy.sparse

    indptr, indices = columns.pop("indptr"), columns.pop("indices")
    return {
        name: values
        if name.startswith("sky_")
        else scipy.sparse.csr_matrix((values, indices, indptr), shape=shape)
        for name, values in columns.items()
    }
