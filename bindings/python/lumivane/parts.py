"""Many eyes in parts, which any number of processes make, on one machine or on many.

A plan puts eyes into an order in which neighbours follow each other, and cuts them into parts of
20 to 60 seconds of work. A part is a value that says all that its result depends on; its name is
that of this content. `lumivane.dask` and `lumivane.mpi` spread parts over the processes of a
cluster; job arrays and everything else that starts processes use the files of a folder:

    >>> plan = lumivane.parts.plan(scene, eyes, "sky_view_factor", folder="parts")
    >>> print(plan.write())          # the file of the plan

    python3 -m lumivane.parts parts/NAME.plan.npz 3/64     # the third of 64 processes

    >>> lumivane.parts.read("parts/NAME.plan.npz").result()

A part that is in the folder is not made again, whoever made it. Results are those of
`Scene.shares`, to the last bit.
"""

from __future__ import annotations

import argparse
import json
import os
import sys
import time
from dataclasses import asdict, dataclass
from functools import cached_property
from pathlib import Path
from typing import Any, Callable, Iterable, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from . import _core
from ._arguments import FloatArray, PathLike, is_sphere, names, rows_of_three
from ._content import content_name
from ._curve import curve_order
from ._scene import Scene, as_matrices, check_by, default_columns
from ._scene_files import keep_scene, kept_scene
from ._store import Arrays, Store, write_whole

SECONDS = 40.0  #: of work of one thread that a part should take
LEAST_SECONDS = 20.0  #: below which parts are too many, unless processors would be idle
PARTS_EACH = 4  #: that a processor makes at least, so that all end at about the same time

_SAMPLE_SECONDS = 1.0
_SAMPLE_EYES = 16
_LEAST_SHARE = 16  # of a part that the smallest ones at the end have
_PLAN = ".plan.npz"

Progress = Callable[[float], object]
Chunk = Union[int, str]


@dataclass(frozen=True)
class Wanted:
    """What is asked of each eye, as `Scene.shares` takes it."""

    columns: tuple[str, ...]
    by: str = "object"
    field: str = "hemisphere"
    two_sided: bool = False
    sparse: bool = False


@dataclass(frozen=True, eq=False)
class Part:
    """Some eyes, the scene that they look at, by its name, and what is asked of each."""

    scene: str
    eyes: FloatArray
    forwards: FloatArray
    ups: FloatArray
    wanted: Wanted

    @cached_property
    def name(self) -> str:
        """The name of all that the result depends on."""
        content = (self.scene, self.eyes, self.forwards, self.ups, asdict(self.wanted))
        return _short(content_name("part", _core.__version__, *content))

    def some(self, positions: Union[slice, npt.NDArray[np.intp]]) -> Part:
        """Some of its eyes, by position, as a part of their own."""
        return Part(
            self.scene,
            self.eyes[positions],
            self.forwards if len(self.forwards) == 1 else self.forwards[positions],
            self.ups if len(self.ups) == 1 else self.ups[positions],
            self.wanted,
        )

    def make(self, scene: Scene, threads: int = 1, progress: Optional[Progress] = None) -> Arrays:
        """The result of the part: arrays by name, with a row for each eye."""
        wanted = self.wanted
        result: Arrays = scene._scene.shares(
            self.eyes,
            self.forwards,
            self.ups,
            is_sphere(wanted.field),
            wanted.two_sided,
            list(wanted.columns),
            wanted.by == "class",
            wanted.sparse,
            threads,
            progress,
        )
        return result


class Plan:
    """Eyes cut into parts. Made by `plan` and `read`."""

    def __init__(
        self, whole: Part, order: npt.NDArray[np.intp], width: int,
        starts: npt.NDArray[np.intp], name: str, folder: Optional[Path],
    ) -> None:  # fmt: skip
        self.whole = whole  #: all eyes in their new order, as one part
        self.order = order  #: where each of them stood in what was given
        self.width = width  #: how many columns a row for all objects or classes has
        self.starts = starts  #: where in the new order each part starts
        self.name = name  #: the name of the content
        self.store = None if folder is None else Store(folder)

    def __len__(self) -> int:
        """How many parts there are."""
        return len(self.starts)

    def __repr__(self) -> str:
        return f"<lumivane.parts.Plan: {len(self.order)} eyes in {len(self)} parts>"

    def span(self, number: int) -> slice:
        """Which eyes of the new order are those of the part at a position."""
        is_last = number + 1 == len(self.starts)
        end = len(self.order) if is_last else int(self.starts[number + 1])
        return slice(int(self.starts[number]), end)

    def part(self, number: int) -> Part:
        """The part at a position."""
        return self.whole.some(self.span(number))

    @cached_property
    def part_names(self) -> list[str]:
        """The names of all parts."""
        return [self.part(i).name for i in range(len(self))]

    def missing(self) -> list[int]:
        """The positions of the parts that are not in the folder; of all without a folder."""
        there = self.store.names() if self.store else set()
        return [i for i, name in enumerate(self.part_names) if name not in there]

    def write(self, scene: Scene) -> Path:
        """Writes the plan and the scene into the folder, unless they are there, for processes that
        know nothing but the file of the plan, which is returned."""
        store = self._needed_store()
        path = Store(store.folder, _PLAN).path(self.name)
        keep_scene(scene, store.folder)
        if not path.exists():
            about = {"version": _core.__version__, "scene": self.whole.scene, "width": self.width,
                     "wanted": asdict(self.whole.wanted)}  # fmt: skip
            arrays: Arrays = {
                "about": np.frombuffer(json.dumps(about).encode(), np.uint8),
                "eyes": self.whole.eyes,
                "forwards": self.whole.forwards,
                "ups": self.whole.ups,
                "order": self.order,
                "starts": self.starts,
            }
            write_whole(path, lambda file: np.savez(file, **arrays))
        return path

    def scene(self) -> Scene:
        """The scene as it was kept in the folder."""
        return kept_scene(self._needed_store().folder, self.whole.scene)

    def make_missing(
        self,
        scene: Optional[Scene] = None,
        share: tuple[int, int] = (1, 1),
        threads: int = 1,
        progress: Optional[Progress] = None,
    ) -> int:
        """Makes the parts of a share (i, k), every k-th from the i-th on, that are not in the
        folder. Returns how many those are."""
        first, count = share
        if not 1 <= first <= count:
            raise ValueError(f"share: {first}/{count} is none: 1/{count} to {count}/{count} are")
        store = self._needed_store()
        mine = [i for i in self.missing() if i % count == first - 1]
        if mine and scene is None:
            scene = self.scene()
        for done, number in enumerate(mine):
            if progress is not None:
                progress(done / len(mine))
            part = self.part(number)
            if not store.path(part.name).exists():  # somebody else may have made it meanwhile
                assert scene is not None
                store.keep(part.name, part.make(scene, threads))
        if progress is not None:
            progress(1.0)
        return len(mine)

    def result(self) -> dict[str, Any]:
        """What `Scene.shares` gives for the eyes in the order in which they were given, of parts
        in the folder. Raises `Error` if some are missing or damaged."""
        store = self._needed_store()
        missing = len(self.missing())
        if missing:
            raise _core.Error(
                f"{store.folder}: {missing} of {len(self)} parts are missing: run it again"
            )
        result = self.join(lambda number: store.load(self.part_names[number]))
        store.sweep(self.part_names)
        return result

    def join(self, load: Callable[[int], Arrays]) -> dict[str, Any]:
        """The result of parts, which are asked for by position, one after the other."""
        wanted = self.whole.wanted
        if not wanted.sparse:
            return self._dense(load, wanted.columns)
        return as_matrices(self._sparse(load, wanted.columns), (len(self.order), self.width))

    def _needed_store(self) -> Store:
        if self.store is None:
            raise ValueError("folder: the plan has none")
        return self.store

    def _dense(self, load: Callable[[int], Arrays], columns: Iterable[str]) -> Arrays:
        count = len(self.order)
        result = {
            name: np.zeros(count if name.startswith("sky_") else (count, self.width))
            for name in columns
        }
        for number in range(len(self)):
            part, places = load(number), self.order[self.span(number)]
            for name, rows in result.items():
                rows[places] = part[name]
        return result

    def _sparse(self, load: Callable[[int], Arrays], columns: Sequence[str]) -> Arrays:
        """The rows of the parts one after the other, then brought into the order of the eyes."""
        count = len(self.order)
        parts = [load(number) for number in range(len(self))]
        result: Arrays = {name: np.zeros(count) for name in columns if name.startswith("sky_")}
        for number, part in enumerate(parts):
            for name in result:
                result[name][self.order[self.span(number)]] = part[name]

        lengths = _joined([np.diff(part["indptr"]) for part in parts], np.int64)
        starts = np.cumsum(lengths) - lengths
        back = np.empty(count, np.intp)  # where each eye stands in the order of the parts
        back[self.order] = np.arange(count)
        indptr = np.zeros(count + 1, np.int64)
        np.cumsum(lengths[back], out=indptr[1:])
        shift = starts[back] - indptr[:-1]
        places = np.arange(indptr[-1]) + np.repeat(shift, lengths[back])

        result["indptr"] = indptr
        result["indices"] = _joined([part["indices"] for part in parts], np.int32)[places]
        for name in columns:
            if name not in result:
                values = _joined([part.pop(name) for part in parts], np.float64)
                result[name] = values[places]
        return result


def plan(
    scene: Scene,
    eyes: npt.ArrayLike,
    columns: Union[str, Sequence[str], None] = None,
    chunk: Chunk = "auto",
    *,
    forward: npt.ArrayLike = (1.0, 0.0, 0.0),
    up: npt.ArrayLike = (0.0, 0.0, 1.0),
    by: str = "object",
    field: str = "hemisphere",
    two_sided: bool = False,
    sparse: bool = False,
    folder: Optional[PathLike] = None,
    processes: int = 1,
    even: bool = True,
    measure: Optional[Callable[[Part], float]] = None,
) -> Plan:
    """Cuts eyes into parts.

    `eyes`, `columns`, `forward`, `up`, `by`, `field`, `two_sided`, `sparse`: as of `Scene.shares`.
    `chunk`: how many eyes a part has; "auto" for as many as take 20 to 60 seconds by one thread,
        which a few eyes are looked at for. Where that leaves less than four parts for each process,
        parts are smaller.
    `folder`: where parts are kept. A plan that is in it already, of the same eyes and options, is
        taken as it is, so that its parts are found.
    `processes`: how many will make the parts, about.
    `even`: whether parts of "auto" all have as many eyes, as fixed shares of parts need. If not,
        the last ones are smaller and smaller, so that processes that take the next part when they
        are free all end at about the same time.
    `measure`: what is called with a part of a few eyes, and returns how many seconds it took; by
        default `seconds_of`, in this process.

    Raises `ValueError` as `Scene.shares` does.
    """
    rows = rows_of_three(eyes, "eyes")
    forwards, ups = rows_of_three(forward, "forward"), rows_of_three(up, "up")
    wanted = _wanted(columns, by, field, two_sided, sparse)
    _check(scene, Part("", rows, forwards, ups, wanted))
    if chunk != "auto" and (not isinstance(chunk, (int, np.integer)) or chunk < 1):
        raise ValueError(f'chunk: {chunk!r} is neither "auto" nor a number of eyes')

    order = curve_order(rows)
    whole = Part(scene.content_name, rows, forwards, ups, wanted).some(order)
    name = _short(content_name("plan", whole.name, order, str(chunk), even))
    if folder is not None and (path := Store(folder, _PLAN).path(name)).exists():
        return read(path)
    if chunk == "auto":
        size = _measured(whole, processes, measure or (lambda part: seconds_of(part, scene)))
    else:
        size = int(chunk)
    shrinks = chunk == "auto" and not even
    starts = _starts(len(rows), size, max(1, processes) if shrinks else 0)
    width = len(scene.classes) + 1 if by == "class" else len(scene.objects)
    return Plan(whole, order, width, starts, name, None if folder is None else Store(folder).folder)


def read(path: PathLike) -> Plan:
    """The plan in a file that `Plan.write` has written. Its parts are in the same folder."""
    file = Path(os.fsdecode(path))
    if not file.name.endswith(_PLAN):
        raise _core.Error(f"{file}: this is no plan: its name does not end in {_PLAN}")
    store, name = Store(file.parent, _PLAN), file.name[: -len(_PLAN)]
    arrays = store.load(name)
    about = json.loads(arrays["about"].tobytes())
    if about["version"] != _core.__version__ or "starts" not in arrays:
        raise _core.Error(
            f"{file}: the plan is of version {about['version']}, but this is "
            f"{_core.__version__}: plan it again"
        )
    wanted = about["wanted"]
    wanted["columns"] = tuple(wanted["columns"])
    whole = Part(
        about["scene"], arrays["eyes"], arrays["forwards"], arrays["ups"], Wanted(**wanted)
    )
    return Plan(whole, arrays["order"], about["width"], arrays["starts"], name, store.folder)


def seconds_of(part: Part, scene: Scene) -> float:
    """How long one thread takes for a part, by the clock; if that is long, by its first eyes."""
    began = time.perf_counter()
    spent = 0.0
    for i in range(len(part.eyes)):
        part.some(np.array([i])).make(scene)
        spent = time.perf_counter() - began
        if spent > _SAMPLE_SECONDS:
            return spent / (i + 1) * len(part.eyes)
    return spent


def share_of(text: str) -> tuple[int, int]:
    """The numbers of "3/64"."""
    try:
        first, count = (int(number) for number in text.split("/"))
    except ValueError:
        raise ValueError(f'"{text}" is no share as 3/64') from None
    return first, count


def _wanted(
    columns: Union[str, Sequence[str], None], by: str, field: str, two_sided: bool, sparse: bool
) -> Wanted:
    chosen = default_columns(field) if columns is None else columns
    return Wanted(tuple(names(chosen)), by, field, bool(two_sided), bool(sparse))


def _check(scene: Scene, all_eyes: Part) -> None:
    """Raises what `Scene.shares` would, of options and of the first eye that is wrong."""
    check_by(all_eyes.wanted.by)
    count = len(all_eyes.eyes)
    for directions, name in ((all_eyes.forwards, "forward"), (all_eyes.ups, "up")):
        if len(directions) not in (1, count):
            raise ValueError(f"{name}: there must be one for all eyes or one for each")
    Part(
        "", all_eyes.eyes[:0], all_eyes.forwards[:1], all_eyes.ups[:1], all_eyes.wanted
    ).make(scene)  # fmt: skip
    is_good = np.isfinite(all_eyes.eyes).all(axis=1)
    is_good &= np.isfinite(all_eyes.forwards).all(axis=1) & all_eyes.forwards.any(axis=1)
    is_good &= np.isfinite(all_eyes.ups).all(axis=1)
    one = np.flatnonzero(~is_good)[:1]
    if len(one):
        all_eyes.some(one).make(scene)


def _measured(whole: Part, processes: int, seconds: Callable[[Part], float]) -> int:
    """How many eyes a part should have."""
    count = len(whole.eyes)
    most = max(1, -(-count // (PARTS_EACH * max(1, processes))))
    sample = min(_SAMPLE_EYES, count // 50)  # so that looking at them takes a small part of all
    if sample == 0:
        return most
    # The golden section spreads any number of them well, if it ends early, too.
    positions = (np.arange(sample) * 0.6180339887498949 % 1.0 * count).astype(np.intp)
    each = max(seconds(whole.some(positions)) / sample, 1e-9)
    if each * most < LEAST_SECONDS:
        return most
    return max(1, round(SECONDS / each))


def _starts(count: int, size: int, processes: int) -> npt.NDArray[np.intp]:
    """Where parts of a size start; for some processes, with half of a fair share of what is left
    as soon as that is less (guided self-scheduling: C. Polychronopoulos, D. Kuck, 1987)."""
    if processes == 0:
        return np.arange(0, count, size, dtype=np.intp)
    starts, start = [], 0
    while start < count:
        starts.append(start)
        half = -(-(count - start) // (2 * processes))
        start += max(1, size // _LEAST_SHARE, min(size, half))
    return np.array(starts, np.intp)


def _joined(arrays: list[npt.NDArray[Any]], kind: Any) -> npt.NDArray[Any]:
    return np.concatenate(arrays) if arrays else np.zeros(0, kind)


def _short(name: str) -> str:
    return name[:32]


def main(arguments: Optional[Sequence[str]] = None) -> int:
    """Makes the missing parts of a plan, or a share of them; for programs that start processes."""
    parser = argparse.ArgumentParser(
        prog="python3 -m lumivane.parts",
        description="Makes the parts of a plan that are not in its folder yet.",
    )
    parser.add_argument("plan", help="the file that Plan.write has written")
    parser.add_argument(
        "share", nargs="?", default="1/1",
        help="3/64: every 64th part from the third on; without it all parts",
    )  # fmt: skip
    parser.add_argument("--threads", type=int, default=1, help="how many look at once; default 1")
    given = parser.parse_args(arguments)
    try:
        if given.threads < 1:
            raise ValueError(f"--threads: {given.threads} is not above 0")
        work = read(given.plan)
        made = work.make_missing(None, share_of(given.share), given.threads)
        print(f"{given.plan}: {made} parts made, {len(work.missing())} of {len(work)} missing")
    except (_core.Error, ValueError, OSError) as error:
        print(f"lumivane.parts: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
