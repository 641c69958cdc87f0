"""Many eyes on the processes of MPI.

    # views.py, run by: mpirun -n 64 python3 views.py
    from mpi4py import MPI
    import lumivane, lumivane.mpi

    is_first = MPI.COMM_WORLD.rank == 0
    scene = lumivane.Scene.read("delft.city.json") if is_first else None
    result = lumivane.mpi.map_views(MPI.COMM_WORLD, scene, eyes if is_first else None)

Needs mpi4py. Every k-th part is of one process: neighbours cost about the same, so all end at about
the same time.
"""

from __future__ import annotations

from typing import Any, Callable, Optional, Sequence, Union

import numpy.typing as npt

from . import parts
from ._arguments import PathLike
from ._scene import Scene
from ._scene_files import scene_bytes, scene_of_bytes

_BLOCK = 1 << 30  # of bytes, since a message of MPI has less than 2^31


def map_views(
    comm: Any,
    scene: Optional[Scene],
    eyes: Optional[npt.ArrayLike],
    columns: Union[str, Sequence[str], None] = None,
    chunk: parts.Chunk = "auto",
    *,
    folder: Optional[PathLike] = None,
    threads: int = 1,
    **options: Any,
) -> Optional[dict[str, Any]]:
    """What many eyes see, looked at by all processes of a communicator: what `Scene.shares` gives,
    to the last bit, in process 0, and None in the others. All processes call it.

    `comm`: as `mpi4py.MPI.COMM_WORLD`.
    `scene`, `eyes`: those of process 0 are taken; the others may give None.
    `columns`, `options`: as of `Scene.shares`: forward, up, by, field, two_sided, sparse.
    `chunk`: as of `parts.plan`.
    `folder`: where finished parts are kept, under names of their content; all processes see it.
        The same call takes them up, after whatever has ended an earlier one.
    `threads`: how many each process has.

    Raises in all processes what is raised in one.
    """
    is_first = comm.rank == 0
    options.update(folder=folder, processes=comm.size)
    plan = _of_first(comm, lambda: _planned(scene, eyes, columns, chunk, **options))
    own = scene if is_first else None
    if plan.store is not None:
        share = (comm.rank + 1, comm.size)
        _agree(comm, _caught(lambda: plan.make_missing(own, share, threads)))
        whole: Optional[dict[str, Any]] = _at_first(comm, plan.result)
        return whole

    content = _blocks(comm, b"" if own is None else scene_bytes(own))

    def make() -> dict[int, Any]:
        ready = scene_of_bytes(content) if own is None else own
        mine = range(comm.rank, len(plan), comm.size)
        return {number: plan.part(number).make(ready, threads) for number in mine}

    mine = _agree(comm, _caught(make))
    gathered = comm.gather(mine)
    joined: Optional[dict[str, Any]] = _at_first(
        comm, lambda: plan.join(lambda i: gathered[i % comm.size].pop(i))
    )
    return joined


def _planned(scene: Optional[Scene], eyes: Any, *rest: Any, **options: Any) -> parts.Plan:
    if scene is None or eyes is None:
        raise ValueError("scene, eyes: process 0 must give them")
    plan = parts.plan(scene, eyes, *rest, **options)
    if plan.store is not None:
        plan.write(scene)
    return plan


def _caught(work: Callable[[], Any]) -> Union[Any, Exception]:
    try:
        return work()
    except Exception as error:
        return error


def _of_first(comm: Any, work: Callable[[], Any]) -> Any:
    """The value of process 0, or what was raised there."""
    value = comm.bcast(_caught(work) if comm.rank == 0 else None)
    if isinstance(value, Exception):
        raise value
    return value


def _agree(comm: Any, value: Any) -> Any:
    """The value, unless one of the processes has raised something."""
    failed = [f for f in comm.allgather(value if isinstance(value, Exception) else None) if f]
    if failed:
        raise failed[0]
    return value


def _at_first(comm: Any, work: Callable[[], Any]) -> Any:
    outcome = _caught(work) if comm.rank == 0 else None
    _agree(comm, outcome)
    return outcome


def _blocks(comm: Any, content: bytes) -> bytes:
    """The bytes of process 0, in blocks."""
    length = comm.bcast(len(content))
    blocks = [comm.bcast(content[i : i + _BLOCK]) for i in range(0, length, _BLOCK)]
    return b"".join(blocks)
