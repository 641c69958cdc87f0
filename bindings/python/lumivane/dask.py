"""Many eyes on a cluster of Dask.

    >>> from distributed import Client
    >>> client = Client("tcp://scheduler:8786")
    >>> lumivane.dask.map_views(client, scene, eyes, "sky_view_factor", folder="parts")

Needs distributed, and this package wherever a worker runs. The scene goes to each worker once; with
a folder, workers read it from there. Workers that do nothing else are best started with
`--preload lumivane.dask_lean`.
"""

from __future__ import annotations

import collections
import contextlib
import threading
from typing import Any, Callable, Iterable, Iterator, Optional, Sequence, Union

import distributed
import numpy as np
import numpy.typing as npt

from . import _core, parts
from ._arguments import PathLike
from ._scene import Scene
from ._scene_files import keep_scene, kept_scene, scene_bytes, scene_of_bytes
from ._store import Arrays, Store

_SCENES_KEPT = 2  # by a worker
_LOOK_UP_SECONDS = 1.0  # between two looks at whether the scheduler lives
_SELDOM = 1000.0  # milliseconds between two looks of a worker at itself while it is at work


def map_views(
    client: distributed.Client,
    scene: Scene,
    eyes: npt.ArrayLike,
    columns: Union[str, Sequence[str], None] = None,
    chunk: parts.Chunk = "auto",
    *,
    forward: npt.ArrayLike = (1.0, 0.0, 0.0),
    up: npt.ArrayLike = (0.0, 0.0, 1.0),
    by: str = "object",
    field: str = "hemisphere",
    two_sided: bool = False,
    sparse: bool = False,
    folder: Optional[PathLike] = None,
    progress: Optional[parts.Progress] = None,
) -> dict[str, Any]:
    """What many eyes see, looked at by the workers of a cluster: what `Scene.shares` gives, to the
    last bit.

    `client`: of a cluster whose workers have this package, in the same version.
    `eyes`, `columns`, `forward`, `up`, `by`, `field`, `two_sided`, `sparse`: as of `Scene.shares`.
    `chunk`: how many eyes a task has; "auto" for 20 to 60 seconds of work, as of `parts.plan`.
    `folder`: where workers keep the parts that they have finished, under names of their content;
        all workers and this process see it. The same call takes them up, after whatever has
        ended an earlier one. Without it nothing is kept but in memory.
    `progress`: is called with the finished part, from 0 to 1, after each task. What it raises ends
        the work, and so does Ctrl-C; tasks under way go on to their end.

    Workers may come and go: what one has left unfinished goes to another. Raises `Error` if the
    scheduler is lost, or if workers keep dying of a task, and `ValueError` as `Scene.shares`.
    """
    with client.as_current():
        run = _Run(client, scene, None if folder is None else Store(folder))
        plan = parts.plan(
            scene, eyes, columns, chunk, forward=forward, up=up, by=by, field=field,
            two_sided=two_sided, sparse=sparse, folder=folder, processes=run.slots(), even=False,
            measure=run.seconds_of,
        )  # fmt: skip
        if run.store is not None:
            plan.write(scene)
        made = run.make(plan, progress)
    if run.store is None:
        return plan.join(lambda number: made.pop(number))
    unseen = len(plan.missing())
    if unseen:
        raise _core.Error(
            f"{run.store.folder}: {unseen} of {len(plan)} parts cannot be seen, though workers "
            "have written them: use a folder that all machines share"
        )
    return plan.result()


class _Run:
    """The client's side: tasks are handed out as workers get free, and the scene with them."""

    def __init__(self, client: distributed.Client, scene: Scene, store: Optional[Store]) -> None:
        self.client, self.scene, self.store = client, scene, store
        self.folder = None if store is None else str(store.folder)
        self.content: Optional[bytes] = None  # of the scene, when it has been asked for
        if store is None:
            self.send(w for w, has in self.ask(client.run, _has, scene.content_name).items()
                      if not has)  # fmt: skip
        else:
            keep_scene(scene, store.folder)

    def ask(self, request: Callable[..., Any], *arguments: Any, **options: Any) -> Any:
        """What the scheduler answers."""
        try:
            if self.client.status != "running":
                raise OSError("the connection is closed")
            return request(*arguments, **options)
        except distributed.TimeoutError:  # an OSError, too, since Python 3.11
            raise
        except (OSError, distributed.CancelledError) as error:
            raise self.lost(error) from error

    def lost(self, error: Optional[BaseException] = None) -> _core.Error:
        kept = "nothing is kept without a folder" if self.store is None else (
            f"finished parts are in {self.store.folder}: run it again")  # fmt: skip
        return _core.Error(f"the scheduler is lost ({error or 'no answer'}); {kept}")

    def slots(self) -> int:
        """How many tasks run at once."""
        threads: dict[str, int] = self.ask(self.client.nthreads)
        return max(1, sum(threads.values()))

    def send(self, addresses: Iterable[str]) -> None:
        """The scene, to workers that have none. Those that have died since do not matter."""
        lacking = sorted(addresses)
        if lacking:
            self.content = self.content or scene_bytes(self.scene)
            self.ask(self.client.run, _receive, self.scene.content_name, self.content,
                     workers=lacking, on_error="ignore")  # fmt: skip

    def submit(self, work: Callable[..., Any], part: parts.Part) -> Any:
        return self.ask(
            self.client.submit, work, part, self.folder, _core.__version__, pure=False
        )

    def seconds_of(self, part: parts.Part) -> float:
        """How long a part takes one thread, found out by all workers together."""
        count = min(self.slots(), len(part.eyes))
        waiting = [part.some(np.arange(i, len(part.eyes), count)) for i in range(count)]
        running: dict[Any, parts.Part] = {}
        seconds = 0.0
        while waiting or running:
            while waiting:
                some = waiting.pop()
                running[self.submit(_seconds, some)] = some
            lacking = set()
            for task in self.finished(set(running)):
                some, outcome = running.pop(task), self.outcome(task)
                if isinstance(outcome, _Lacking):
                    lacking.add(outcome.worker)
                    waiting.append(some)
                else:
                    seconds += outcome
            self.send(lacking)
        return seconds

    def make(self, plan: parts.Plan, progress: Optional[parts.Progress]) -> dict[int, Arrays]:
        """Has all parts made that are not there; those that are not kept in the folder are
        returned."""
        waiting = collections.deque(plan.missing())
        running: dict[Any, int] = {}
        made: dict[int, Arrays] = {}
        count, left = len(plan), len(waiting)
        while waiting or running:
            if progress is not None:
                progress((count - left) / count)
            most = 2 * self.slots() + 2  # so that none waits for the next one
            while waiting and len(running) < most:
                number = waiting.popleft()
                running[self.submit(_make, plan.part(number))] = number
            lacking = set()
            for task in self.finished(set(running)):
                number, outcome = running.pop(task), self.outcome(task)
                if isinstance(outcome, _Lacking):
                    lacking.add(outcome.worker)
                    waiting.appendleft(number)
                    continue
                left -= 1
                if outcome is not None:
                    made[number] = outcome
            self.send(lacking)
        if progress is not None:
            progress(1.0)
        return made

    def finished(self, tasks: set[Any]) -> set[Any]:
        """Those that have ended, one at least."""
        while True:
            try:
                ended: set[Any] = self.ask(
                    distributed.wait, tasks, _LOOK_UP_SECONDS, return_when="FIRST_COMPLETED"
                ).done
                return ended
            except distributed.TimeoutError:
                continue

    def outcome(self, task: Any) -> Any:
        try:
            return self.ask(task.result)
        except distributed.KilledWorker as error:
            raise _core.Error(
                f"several workers have died of one task, perhaps for want of memory: {error}"
            ) from error


class _Lacking:
    """The answer of a worker that has no such scene."""

    def __init__(self) -> None:
        self.worker = distributed.get_worker().address


# What runs in workers. Scenes are kept from call to call, the last ones used.
_lock = threading.Lock()
_contents: dict[str, bytes] = {}
_scenes: dict[str, Scene] = {}


def _receive(name: str, content: bytes) -> None:
    _contents[name] = content


def _has(name: str) -> bool:
    return name in _scenes or name in _contents


def _scene_of(name: str, folder: Optional[str]) -> Optional[Scene]:
    with _lock:
        scene = _scenes.pop(name, None)
        if scene is None and folder is not None:
            scene = kept_scene(folder, name)
        elif scene is None and name in _contents:
            scene = scene_of_bytes(_contents.pop(name))
        if scene is not None:
            _scenes[name] = scene  # now the last
            for other in list(_scenes)[:-_SCENES_KEPT]:
                del _scenes[other]
        return scene


_disturbances = threading.Lock()
_usual: dict[Any, float] = {}  # of what a worker does regularly, while it does it seldom
_at_work = 0


@contextlib.contextmanager
def _undisturbed() -> Iterator[None]:
    """Lets a worker seldom sample stacks and watch its event loop. Usually it does so a hundred and
    fifty times a second, to find the same look each time."""
    global _at_work
    regular = distributed.get_worker().periodic_callbacks
    with _disturbances:
        _at_work += 1
        for name in ("profile", "tick"):
            if name in regular and regular[name] not in _usual:
                _usual[regular[name]] = regular[name].callback_time
                regular[name].callback_time = max(_SELDOM, regular[name].callback_time)
    try:
        yield
    finally:
        with _disturbances:
            _at_work -= 1
            while not _at_work and _usual:
                callback, milliseconds = _usual.popitem()
                callback.callback_time = milliseconds


def _check_version(version: str) -> None:
    if version != _core.__version__:
        raise _core.Error(
            f"the worker {distributed.get_worker().address} has lumivane {_core.__version__}, but "
            f"the client {version}: use one version"
        )


def _seconds(
    part: parts.Part, folder: Optional[str], version: str
) -> Union[float, _Lacking]:  # fmt: skip
    _check_version(version)
    scene = _scene_of(part.scene, folder)
    return _Lacking() if scene is None else parts.seconds_of(part, scene)


def _make(
    part: parts.Part, folder: Optional[str], version: str
) -> Union[Arrays, _Lacking, None]:  # fmt: skip
    _check_version(version)
    store = None if folder is None else Store(folder)
    if store is not None and store.path(part.name).exists():
        return None
    scene = _scene_of(part.scene, folder)
    if scene is None:
        return _Lacking()
    with _undisturbed():
        result = part.make(scene)
    if store is None:
        return result
    store.keep(part.name, result)
    return None
