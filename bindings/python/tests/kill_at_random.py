#!/usr/bin/env python3
"""Kills a random process of a cluster of Dask at a random moment, again and again, and asks for the
same bytes after a restart.

Usage: kill_at_random.py [--rounds 20] [--seed 1] [--eyes 400] [--within SECONDS]

Too long for the tests; to be run by hand, with PYTHONPATH naming the built package and LUMIVANE_ROOT
the project. A round starts a scheduler, two nannies with a worker each and a client, waits for a moment
within the time that the client takes if nobody disturbs it, and kills one of the six with SIGKILL. If
that ends the client, all is started again, with the folder of parts as it is. Exit status 1 if the
result of a round has other bytes than those of one process.
"""

import argparse
import contextlib
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np
from clusters import Cluster, kill

import lumivane

ROOT = Path(os.environ["LUMIVANE_ROOT"])
COLUMNS = ("sky_view_factor", "view_factor", "min_distance")
CLIENT = """
import sys
import numpy as np
import distributed, lumivane, lumivane.dask

client = distributed.Client(scheduler_file=sys.argv[1], timeout=60)
many = lumivane.dask.map_views(client, lumivane.Scene.read(sys.argv[2]), np.load(sys.argv[3]),
                               %r, int(sys.argv[5]), folder=sys.argv[4])
np.savez(sys.argv[6], **many)
""" % (COLUMNS,)


class Round:
    def __init__(self, folder, scene, eyes, chunk):
        self.folder, self.scene, self.eyes, self.chunk = folder, scene, eyes, chunk
        self.starts = 0

    def start(self):
        self.starts += 1
        self.cluster = Cluster(self.folder / f"cluster-{self.starts}", nanny=True)
        self.cluster.client.close()
        self.client = subprocess.Popen(
            [sys.executable, "-c", CLIENT, self.cluster.folder / "scheduler.json", self.scene,
             self.eyes, self.folder / "parts", str(self.chunk), self.folder / "result.npz"],
            stderr=open(self.folder / f"client-{self.starts}.log", "w"),
        )  # fmt: skip

    def processes(self):
        """By name; workers are the children of nannies that listen to their scheduler."""
        found = {"client": self.client.pid, "scheduler": self.cluster.scheduler.pid}
        for i, nanny in enumerate(self.cluster.workers):
            found[f"nanny {i}"] = nanny.pid
            lists = Path(f"/proc/{nanny.pid}/task").glob("*/children")  # one for each thread
            for child in " ".join(file.read_text() for file in lists).split():
                if "spawn_main" in Path(f"/proc/{child}/cmdline").read_text():
                    found[f"worker {i}"] = int(child)
        return found

    def has_ended_well(self, seconds):
        try:
            return self.client.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            return False

    def stop(self):
        kill(self.client)
        self.cluster.close()

    def parts(self):
        return len(list((self.folder / "parts").glob("*.part.npz")))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--rounds", type=int, default=20)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--eyes", type=int, default=400)
    parser.add_argument("--within", type=float, help="seconds; default: as long as it takes once")
    given = parser.parse_args()
    dice = random.Random(given.seed)
    scene = ROOT / "scenes/street.json"

    with tempfile.TemporaryDirectory() as scratch:
        folder = Path(scratch)
        places = np.random.default_rng(given.seed)
        eyes = np.column_stack([places.uniform(low, high, given.eyes)
                                for low, high in ((-6, 6), (-2, 2), (1, 4))])  # fmt: skip
        np.save(folder / "eyes.npy", eyes)
        one = lumivane.Scene.read(scene).shares(eyes, columns=COLUMNS)
        np.savez(folder / "expected.npz", **one)
        expected = (folder / "expected.npz").read_bytes()

        undisturbed = Round(folder / "undisturbed", scene, folder / "eyes.npy", 10)
        undisturbed.start()
        began = time.monotonic()
        assert undisturbed.has_ended_well(600)
        usual = time.monotonic() - began
        undisturbed.stop()
        assert (undisturbed.folder / "result.npz").read_bytes() == expected
        print(f"undisturbed: {usual:.1f} s, {undisturbed.parts()} parts", flush=True)

        faults = 0
        for number in range(given.rounds):
            one = Round(folder / f"round-{number}", scene, folder / "eyes.npy", 10)
            one.start()
            moment = dice.uniform(0, given.within or usual)
            time.sleep(moment)
            victim, pid = dice.choice(sorted(one.processes().items()))
            parts = one.parts()
            if one.client.poll() is not None:
                victim += " (all was done)"
            with contextlib.suppress(ProcessLookupError):  # it has just ended
                os.kill(pid, 9)
            is_over = one.has_ended_well(10 * usual + 60)
            one.stop()
            if not is_over:
                one.start()
                is_over = one.has_ended_well(10 * usual + 60)
                one.stop()
            result = one.folder / "result.npz"
            is_same = is_over and result.read_bytes() == expected
            faults += not is_same
            print(f"{number + 1}: {victim} killed after {moment:.1f} s with {parts} parts, "
                  f"{'started again' if one.starts > 1 else 'went on'}: "
                  f"{'same bytes' if is_same else 'FAULT'}", flush=True)  # fmt: skip
            if is_same:
                shutil.rmtree(one.folder)
            else:
                for log in one.folder.rglob("*.log"):
                    print(log.read_text()[-2000:])
    print(f"{given.rounds - faults} of {given.rounds} rounds with the same bytes")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
