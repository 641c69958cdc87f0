#!/usr/bin/env python3
"""Measures many eyes of Python: two plain processes beside a cluster of Dask with two workers, the
planning of a million eyes, one eye over a large scene, and Python beside the command line.

Usage: bench/many_eyes.py [--scene FILE] [--eyes 1000] [--anywhere] [WHAT ...], where WHAT is
cluster, usual, plan, eye, program or call. `cluster` starts scheduler and workers with
lumivane.dask_lean, `usual` without.

With PYTHONPATH naming the built package (build/release/python). The program `lumivane` is taken from
beside it. What is compared runs one after the other; processor time hardly depends on what else a
machine does, time by the clock does.
"""

import argparse
import contextlib
import os
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np

import lumivane
import lumivane.parts

ROOT = Path(__file__).resolve().parent.parent
UP = (0.0, 0.0, 1.0)
PLAIN = """
import sys, numpy as np, lumivane
scene = lumivane.Scene.read(sys.argv[1])
rows = np.load(sys.argv[2])[int(sys.argv[3]) :: 2]
np.savez(sys.argv[4], **scene.shares(rows, (0, 0, 1), columns="sky_view_factor", threads=1))
"""


def eyes_over(scene, count, anywhere=False):
    """At random places, 1.6 above the lowest point, or at any height up to the highest."""
    low, high = scene.bounds
    eyes = np.random.default_rng(1).uniform(low, high, (count, 3))
    if not anywhere:
        eyes[:, 2] = low[2] + 1.6
    return eyes


def processor_seconds(pids):
    """Of processes that live, with their ended children."""
    ticks = 0
    for pid in pids:
        fields = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
        ticks += sum(int(fields[i]) for i in range(11, 15))
    return ticks / os.sysconf("SC_CLK_TCK")


def children_seconds():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def megabytes(pid, scene):
    """The memory of a process besides the pages of a mapped scene: resident, its share of what
    processes have in common (PSS), and what it has alone."""
    sums = dict.fromkeys(("Rss", "Pss", "Private_Clean", "Private_Dirty"), 0)
    is_counted = True
    for line in Path(f"/proc/{pid}/smaps").read_text().splitlines():
        first, *rest = line.split()
        if not first.endswith(":"):
            is_counted = not line.endswith(scene)
        elif is_counted and first[:-1] in sums:
            sums[first[:-1]] += int(rest[0]) / 1024
    return sums["Rss"], sums["Pss"], sums["Private_Clean"] + sums["Private_Dirty"]


def cluster(given, scene, eyes):
    compare(given, eyes, lean=True)


def usual(given, scene, eyes):
    compare(given, eyes, lean=False)


def compare(given, eyes, lean):
    sys.path.insert(0, str(ROOT / "bindings/python/tests"))
    from clusters import Cluster

    import lumivane.dask

    with tempfile.TemporaryDirectory() as scratch, contextlib.ExitStack() as ends:
        np.save(f"{scratch}/eyes.npy", eyes)
        began, used = time.perf_counter(), children_seconds()
        processes = [subprocess.Popen([sys.executable, "-c", PLAIN, given.scene,
                                       f"{scratch}/eyes.npy", str(i), f"{scratch}/{i}.npz"])
                     for i in range(2)]  # fmt: skip
        assert [process.wait() for process in processes] == [0, 0]
        plain, plain_cpu = time.perf_counter() - began, children_seconds() - used
        print(f"two plain processes: {plain:.1f} s, processor {plain_cpu:.1f} s", flush=True)

        running = ends.enter_context(
            contextlib.closing(Cluster(Path(scratch) / "cluster", lean=lean))
        )
        workers = [worker.pid for worker in running.workers]
        scheduler, client = [running.scheduler.pid], [os.getpid()]
        began = time.perf_counter()
        before = [processor_seconds(some) for some in (workers, scheduler, client)]
        parts = []
        many = lumivane.dask.map_views(
            running.client, lumivane.Scene.read(given.scene), eyes, "sky_view_factor", forward=UP,
            folder=f"{scratch}/parts", progress=parts.append,
        )  # fmt: skip
        spread = time.perf_counter() - began
        after = [processor_seconds(some) for some in (workers, scheduler, client)]
        seconds = [end - start for start, end in zip(before, after)]
        count = len(list(Path(scratch, "parts").glob("*.part.npz")))
        memory = [megabytes(pid, ".lumiscene") for pid in workers]
        expected = np.empty(len(eyes))
        for i in range(2):
            expected[i::2] = np.load(f"{scratch}/{i}.npz")["sky_view_factor"]
        assert np.array_equal(many["sky_view_factor"], expected)
        print(f"Dask, two {'lean' if lean else 'usual'} workers: {spread:.1f} s, processor "
              f"{seconds[0]:.1f} s of workers, {seconds[1]:.1f} s of the scheduler and "
              f"{seconds[2]:.1f} s of the client, {count} parts")  # fmt: skip
        for resident, share, alone in memory:
            print(f"a worker besides the mapped scene: {resident:.0f} MB resident, {share:.0f} MB "
                  f"its share (PSS), {alone:.0f} MB its own")  # fmt: skip
        print(f"more than the plain processes: {100 * (spread / plain - 1):.1f} % by the clock, "
              f"{100 * (sum(seconds) / plain_cpu - 1):.1f} % of processor time")  # fmt: skip


def plan(given, scene, eyes):
    with tempfile.TemporaryDirectory() as scratch:
        np.save(f"{scratch}/eyes.npy", eyes_over(scene, 1_000_000))
        began = time.perf_counter()
        table = np.load(f"{scratch}/eyes.npy")
        planned = lumivane.parts.plan(
            scene, table, "sky_view_factor", forward=UP, folder=scratch,
            measure=lambda part: 0.1 * len(part.eyes),
        )  # fmt: skip
        planned.write(scene)
        count = len(planned.missing())
        print(f"1,000,000 eyes read, ordered, cut into {count} parts and written: "
              f"{time.perf_counter() - began:.1f} s")  # fmt: skip


def eye(given, scene, eyes):
    part = lumivane.parts.Part(scene.content_name, eyes, np.array([UP]), np.array([UP]),
                               lumivane.parts.Wanted(("sky_view_factor",)))  # fmt: skip
    part.make(scene)
    used = time.process_time()
    part.make(scene)
    each = (time.process_time() - used) / len(eyes)
    print(f"one eye over {len(scene)} polygons: {each:.3f} s of processor time, mean of {len(eyes)}; "
          f"a million: {each * 1e6 / 3600:.0f} hours")  # fmt: skip


def program(given, scene, eyes):
    """The same eyes by `lumivane grid`, as much of it as is there."""
    lumivane_program = Path(lumivane.__file__).parents[2] / "host/lumivane"
    with tempfile.TemporaryDirectory() as scratch:
        low, high = scene.bounds
        spacing = float(np.sqrt((high - low)[:2].prod() / len(eyes)))
        used = children_seconds()
        subprocess.run([lumivane_program, "grid", given.scene, "--spacing", str(spacing), "--height",
                        "1.6", "-o", f"{scratch}/views.csv", "--shares", f"{scratch}/shares.csv",
                        "--rows", "total"], check=True, stdout=subprocess.DEVNULL)  # fmt: skip
        by_program = children_seconds() - used
        import csv

        with open(f"{scratch}/views.csv", newline="") as file:
            rows = [[float(x) for x in row["eye"].split(",")] for row in csv.DictReader(file)]
        used = time.process_time()
        again = lumivane.Scene.read(given.scene)
        again.shares(rows, UP, columns=("sky_view_factor", "sky_solid_angle"))
        by_python = time.process_time() - used
    print(f"{len(rows)} eyes: {by_program:.2f} s of processor time by the program, "
          f"{by_python:.2f} s from Python ({100 * (by_python / by_program - 1):+.1f} %)")  # fmt: skip


def call(given, scene, eyes):
    """What a look of Python costs besides the look: the least scene, best of many."""
    points = [[3, 1, -1], [3, -1, -1], [3, -1, 1], [3, 1, 1]]
    square = lumivane.Scene.from_arrays(points, [[0, 1, 2, 3]])
    rows = np.zeros((2000, 3))

    def best(work, count):
        return min(_timed(work) for _ in range(30)) / count * 1e6

    def looks():
        for _ in range(200):
            square.look((0.0, 0.0, 0.0))

    one = best(looks, 200)
    bare = best(lambda: square.shares(rows, columns="sky_view_factor", threads=1), len(rows))
    print(f"one look at one polygon: {one:.1f} microseconds; one of many, made without the "
          f"interpreter: {bare:.1f}; so a call costs about {one - bare:.1f}")  # fmt: skip


def _timed(work):
    began = time.process_time()
    work()
    return time.process_time() - began


def main():
    what = {"cluster": cluster, "usual": usual, "plan": plan, "eye": eye, "program": program,
            "call": call}  # fmt: skip
    parser = argparse.ArgumentParser()
    parser.add_argument("--scene", default=str(ROOT / "scenes/models/delft.city.json"))
    parser.add_argument("--eyes", type=int, default=1000)
    parser.add_argument("--anywhere", action="store_true", help="at any height, not near the ground")
    parser.add_argument("what", nargs="*", default=[], choices=[*what, []])
    given = parser.parse_args()
    # Workers start in other folders: a relative path of the package would not reach them.
    os.environ["PYTHONPATH"] = str(Path(lumivane.__file__).resolve().parents[1])
    scene = lumivane.Scene.read(given.scene)
    eyes = eyes_over(scene, given.eyes, given.anywhere)
    for name in given.what or what:
        what[name](given, scene, eyes)


if __name__ == "__main__":
    main()
