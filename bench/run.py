#!/usr/bin/env python3
"""Measures whole runs of the program: a scene file read, the shot made and written.

Usage: bench/run.py LABEL [--build DIR] [--program FILE] [--limit SECONDS] [--memory GB]
                          [--only TEXT] [--quick]

Writes bench/results/LABEL.json: for every case the processor time of each stage, wall and processor
time of the process, its peak memory and the size of the shot. Of several runs each figure is the
least one: other programs on the machine can only add to it. A case over the limit is reported as
stopped, and so are the larger ones of its kind, which are not tried.

bench/report.py makes the tables and the picture from these files.
"""

import argparse
import json
import os
import platform
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
STREET_SAMPLE = ["--eye", "-5.3,-1.37,3.4", "--forward", "1,0,0", "--up", "0,0,1"]


def cases():
    """(kind, count, view, camera, segments, max-length), the larger ones of a kind after the smaller.

    A "picture" is a town whose shot is drawn into a PNG file as well.
    """
    everything = [(camera, segments, length) for camera in ("spherical", "normal")
                  for segments in (6, 24) for length in (0, 0.02)]
    for camera, segments, length in everything:
        for count in (50, 200, 1000, 5000, 20000):
            yield "city", count, "air", camera, segments, length
        for count in (5000, 20000):
            yield "sphere", count, "air", camera, segments, length
    for view in ("street", "sky"):
        for length in (0, 0.02):
            for count in (50, 200, 1000, 5000, 12500, 20000):
                yield "city", count, view, "spherical", 6, length
    # 1,000, 10,000 and 50,000 faces.
    for count in (250, 2500, 12500):
        yield "city", count, "air", "spherical", 6, 0
    yield "sample", 1, "street", "spherical", 6, 0.02
    yield "picture", 5000, "air", "spherical", 6, 0


class Scenes:
    """Scene files and their views, made when they are asked for."""

    def __init__(self, generator, folder):
        self.generator, self.folder, self.known = generator, folder, {}

    def get(self, kind, count):
        if kind == "sample":
            return ROOT / "scenes/street.json", {"street": STREET_SAMPLE}, None
        kind = "city" if kind == "picture" else kind
        if (kind, count) not in self.known:
            path = self.folder / f"{kind}{count}.json"
            printed = subprocess.run([self.generator, kind, str(count), "-o", path], check=True,
                                  capture_output=True, text=True).stdout.splitlines()
            words = [line.split() for line in printed]
            self.known[kind, count] = (path, {w[0]: w[1:] for w in words[1:]}, int(words[0][1]))
        return self.known[kind, count]


def limited(memory):
    """Before a run: no more memory than this."""
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (memory, memory))
    return limit


def run_once(command, folder, limit, memory):
    """One run as a process: its figures, or the reason why there are none."""
    start = time.monotonic()
    with open(folder / "output.txt", "w", encoding="utf-8") as output:
        process = subprocess.Popen(command, cwd=folder, stdout=output, stderr=output,
                                   preexec_fn=limited(memory))
        killed = False
        while True:
            pid, status, usage = os.wait4(process.pid, os.WNOHANG)
            if pid:
                break
            if time.monotonic() - start > limit:
                process.kill()
                killed = True
            time.sleep(0.0005 if time.monotonic() - start < 2 else 0.05)
    process.returncode = os.waitstatus_to_exitcode(status)
    wall = time.monotonic() - start
    if killed:
        return {"stopped": f"stopped after {limit:g} s"}
    if process.returncode != 0:
        printed = (folder / "output.txt").read_text(encoding="utf-8")
        if "bad_alloc" not in printed and process.returncode != -9:
            sys.exit(f"run.py: {' '.join(command)} failed with {process.returncode}:\n{printed}")
        return {"stopped": f"stopped: more than {memory / 2**30:.0f} GB"}
    stats = json.loads((folder / "stats.json").read_text(encoding="utf-8"))
    return {"wall": wall, "processor": usage.ru_utime + usage.ru_stime,
            "peak_mb": usage.ru_maxrss / 1024.0, "stages": stats["stages"],
            "faces": stats["faces_drawn"] + stats["faces_hidden"], "drawn": stats["faces_drawn"],
            "points": stats["points"], "png": stats["seconds"]["png"],
            "shot_mb": (folder / "shot.json").stat().st_size / 1e6,
            "cyclic": "cyclic" in (folder / "output.txt").read_text(encoding="utf-8")}


def least(runs):
    """Figure by figure the least one."""
    best = dict(runs[0])
    for run in runs[1:]:
        for key in ("wall", "processor", "peak_mb", "png"):
            best[key] = min(best[key], run[key])
        best["stages"] = {k: min(v, run["stages"][k]) for k, v in best["stages"].items()}
    best["runs"] = len(runs)
    return best


def measure(command, folder, arguments):
    runs, budget = [], 1 if arguments.quick else 5
    while len(runs) < budget:
        run = run_once(command, folder, arguments.limit, arguments.memory * 2**30)
        if "stopped" in run:
            return run
        runs.append(run)
        budget = min(budget, 5 if run["wall"] < 2 else 3 if run["wall"] < 6 else 1)
    return least(runs)


def machine():
    def printed(command):
        try:
            return subprocess.run(command, capture_output=True, text=True, check=True).stdout
        except (OSError, subprocess.CalledProcessError):
            return ""
    model = next((line.split(":", 1)[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8")
                  if line.startswith("model name")), platform.machine())
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    return {"processor": model, "cores": os.cpu_count(), "memory_gb": round(memory),
            "system": platform.system() + " " + platform.release().split("-")[0],
            "compiler": (printed(["c++", "--version"]).splitlines() or [""])[0]}


def commit_of(build):
    printed = subprocess.run(["git", "-C", build, "log", "-1", "--format=%h %s"], capture_output=True,
                          text=True, check=False)
    return printed.stdout.strip()


def arguments_of():
    parser = argparse.ArgumentParser(description="Measures whole runs; see the head of this file.")
    parser.add_argument("label")
    parser.add_argument("--build", type=Path, default=ROOT / "build/release",
                        help="where the program and the generator were built")
    parser.add_argument("--program", type=Path, help="another program lumivane to measure")
    parser.add_argument("--limit", type=float, default=150, help="seconds for a run")
    parser.add_argument("--memory", type=float, default=12, help="GB for a run")
    parser.add_argument("--only", default="", help="only cases whose name holds this text")
    parser.add_argument("--quick", action="store_true", help="one run a case")
    return parser.parse_args()


def main():
    arguments = arguments_of()
    arguments.memory = int(arguments.memory)
    program = (arguments.program or arguments.build / "host/lumivane").resolve()
    target = ROOT / "bench/results" / f"{arguments.label}.json"
    result = {"label": arguments.label, "commit": commit_of(program.parent), "machine": machine(),
              "cases": []}
    if arguments.only and target.exists():
        result["cases"] = json.loads(target.read_text(encoding="utf-8"))["cases"]
    known = {case["name"]: case for case in result["cases"]}
    stopped = {}
    os.environ["VTK_SMP_MAX_THREADS"] = "1"
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        scenes = Scenes((arguments.build / "bench/bench_scene").resolve(), folder)
        for kind, count, view, camera, segments, length in cases():
            family = (kind, view, camera, segments, length)
            case_name = f"{kind} {count} {view} {camera} {segments} {length:g}"
            if arguments.only not in case_name:
                continue
            path, views, polygons = scenes.get(kind, count)
            command = [program, "shot", path, *views[view], "--camera", camera,
                       "--segments", str(segments), "--max-length", str(length),
                       "-o", "shot.json", "--stats", "stats.json"]
            if kind == "picture":
                command = ["xvfb-run", "-a"] + command + ["--png", "shot.png"]
            figures = {"stopped": stopped[family]} if family in stopped else \
                measure([str(c) for c in command], folder, arguments)
            if "stopped" in figures:
                stopped[family] = figures["stopped"]
            known[case_name] = {"name": case_name, "kind": kind, "count": count, "view": view,
                                "camera": camera, "segments": segments, "max_length": length,
                                "polygons": polygons, "scene_mb": path.stat().st_size / 1e6,
                                **figures}
            printed = figures.get("stopped") or f"{figures['processor']:.3f} s, {figures['peak_mb']:.0f} MB"
            print(f"{case_name}: {printed}", flush=True)
            result["cases"] = list(known.values())
            result["load"] = [round(load, 1) for load in os.getloadavg()]
            target.write_text(json.dumps(result, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    sys.exit(main())
