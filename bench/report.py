#!/usr/bin/env python3
"""Turns the measurements into the tables of bench/README.md and the pictures in bench/results.

Usage: bench/report.py

Reads before.json, after.json and, where they are there, kernels.json (bench_kernels) and gain.txt
(bench_gain) in bench/results; writes the part of README.md between its two markers. The pictures
need matplotlib.
"""

import json
import math
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
RESULTS = FOLDER / "results"
BEGIN, END = "<!-- tables: begin -->", "<!-- tables: end -->"
STAGES = ["read", "polygon_data", "clip_and_cull", "projection", "docking", "points",
          "classification", "order", "write"]
SHORT = {"polygon_data": "polygons", "clip_and_cull": "clip, cull", "classification": "classify"}


def load(label):
    path = RESULTS / f"{label}.json"
    return json.loads(path.read_text(encoding="utf-8")) if path.exists() else None


def by_name(measured):
    return {case["name"]: case for case in measured["cases"]} if measured else {}


def seconds(value):
    return f"{value:.3f}" if value < 9.9995 else f"{value:.1f}"


def milliseconds(value):
    return f"{1000 * value:.1f}" if value < 0.1 else f"{1000 * value:.0f}"


def scene_name(case):
    if case["kind"] == "sample":
        return "street sample"
    return ("city" if case["kind"] == "picture" else case["kind"]) + f" {case['count']:,}"


def family_of(case):
    return (case["kind"], case["view"], case["camera"], case["segments"], case["max_length"])


def exponent(points):
    """The slope of a straight line through points on log axes, by least squares."""
    if len(points) < 2:
        return None
    logs = [(math.log(x), math.log(y)) for x, y in points if y > 0]
    if len(logs) < 2:
        return None
    mean_x = sum(x for x, _ in logs) / len(logs)
    mean_y = sum(y for _, y in logs) / len(logs)
    return (sum((x - mean_x) * (y - mean_y) for x, y in logs)
            / sum((x - mean_x) ** 2 for x, _ in logs))


def growth(cases, figure):
    """The exponent over towns of 1,000 boxes and more that came to an end."""
    return exponent([(c["count"], figure(c)) for c in cases
                     if "stopped" not in c and c["count"] >= 1000])


def row(cells):
    return "| " + " | ".join(str(c) for c in cells) + " |"


def table(head, rows, numbers_from=1):
    rule = ["---" if i < numbers_from else "---:" for i in range(len(head))]
    return "\n".join([row(head), row(rule)] + [row(r) for r in rows])


def sort_seconds(case):
    return case["stages"]["classification"] + case["stages"]["order"]


def whole_table(before, after):
    head = ["scene", "view", "camera", "pieces", "limit", "faces", "before s", "after s", "times",
            "before MB", "after MB", "wall after s"]
    rows = []
    for name in list(dict.fromkeys(list(before) + list(after))):
        a, b = before.get(name), after.get(name)
        case = b or a
        told_a = "" if a is None else a.get("stopped") or seconds(a["processor"])
        told_b = "" if b is None else b.get("stopped") or seconds(b["processor"])
        both = a and b and "stopped" not in a and "stopped" not in b
        faces = next((c["faces"] for c in (b, a) if c and "faces" in c), None)
        rows.append([scene_name(case), case["view"],
                     "radial" if case["camera"] == "spherical" else "square", case["segments"],
                     f"{case['max_length']:g}", "" if faces is None else f"{faces:,}",
                     told_a, told_b, f"{a['processor'] / b['processor']:.0f}" if both else "",
                     "" if not a or "stopped" in a else f"{a['peak_mb']:,.0f}",
                     "" if not b or "stopped" in b else f"{b['peak_mb']:,.0f}",
                     "" if not b or "stopped" in b else seconds(b["wall"])])
    return table(head, rows, 3)


def stage_table(before, after):
    head = ["scene", "view", "camera", "pieces", "limit", ""] + [SHORT.get(s, s) for s in STAGES] \
        + ["all"]
    rows = []
    for name in list(dict.fromkeys(list(before) + list(after))):
        for label, cases in (("before", before), ("after", after)):
            case = cases.get(name)
            if case is None or "stopped" in case:
                continue
            stages = [case["stages"][s] for s in STAGES]
            rows.append([scene_name(case), case["view"],
                         "radial" if case["camera"] == "spherical" else "square",
                         case["segments"], f"{case['max_length']:g}", label]
                        + [milliseconds(s) for s in stages] + [milliseconds(sum(stages))])
    return table(head, rows, 6)


def families(measured):
    grouped = {}
    for case in measured.values():
        if case["kind"] == "city":
            grouped.setdefault(family_of(case), []).append(case)
    return grouped


def growth_table(before, after):
    head = ["town seen", "camera", "pieces", "limit", "before", "after", "sort before",
            "sort after"]
    rows = []
    shown = lambda value: "" if value is None else f"{value:.2f}"
    old, new = families(before), families(after)
    for family in list(dict.fromkeys(list(old) + list(new))):
        _, view, camera, segments, length = family
        figures = [growth(cases.get(family, []), figure)
                   for figure in (lambda c: c["processor"], sort_seconds) for cases in (old, new)]
        rows.append(["from the air" if view == "air" else f"in the {view}",
                     "radial" if camera == "spherical" else "square", segments, f"{length:g}",
                     *map(shown, figures)])
    return table(head, rows, 2)


def kernel_table(kernels):
    rows = []
    for bench in kernels["benchmarks"]:
        if bench.get("run_type") == "aggregate" or "items_per_second" not in bench \
                and "bytes_per_second" not in bench:
            continue
        if "items_per_second" in bench:
            rate = f"{bench['items_per_second'] / 1e6:,.3g} million/s"
        else:
            rate = f"{bench['bytes_per_second'] / 1e6:,.3g} MB/s"
        rows.append([f"`{bench['name']}`", rate])
    return table(["step", "rate"], rows)


def aims(after):
    """What was aimed at, the aim, what was measured, and whether that is good enough."""
    kernels = load("kernels") or {"benchmarks": []}
    rates = {b["name"]: b.get("items_per_second") for b in kernels["benchmarks"]}
    grouped = {family: growth(cases, lambda c: c["processor"])
               for family, cases in families(after).items()}

    def case(name):
        found = after.get(name)
        return found if found and "stopped" not in found else None

    def add(rows, what, aim, value, shown, at_least=False):
        if value is not None:
            good = value >= aim if at_least else value <= aim
            rows.append([what, ("at least " if at_least else "at most ") + shown(aim), shown(value),
                         "yes" if good else "no"])

    rows = []
    ms = lambda value: milliseconds(value) + " ms"
    mb = lambda value: f"{value:,.0f} MB"
    rate = lambda value: f"{value:,.0f} MB/s"
    times = lambda value: f"{value:.2g} times" if value < 10 else f"{value:.0f} times"
    for count, faces, aim in ((250, "1,000", .003), (2500, "10,000", .045), (5000, "20,000", .085),
                              (12500, "50,000", .220)):
        c = case(f"city {count} air spherical 6 0")
        add(rows, f"sort (classify and order), {faces} faces from the air", aim,
            c and sort_seconds(c), ms)
    c = case("city 12500 street spherical 6 0")
    add(rows, "sort, street of 19,000 faces", .520, c and sort_seconds(c), ms)
    add(rows, "tests of pairs of 18-point polygons", 8e6, rates.get("relation/town/1000"),
        lambda value: f"{value / 1e6:.1f} million/s", True)
    for name, family, aim in (("from the air", ("city", "air", "spherical", 6, 0), 1.15),
                              ("in the street", ("city", "street", "spherical", 6, 0), 1.5)):
        add(rows, f"growth exponent of the whole pipeline {name}", aim, grouped.get(family),
            lambda value: f"{value:.2f}")
    c, limited = (case(f"city 5000 air spherical 6 {length}") for length in ("0", "0.02"))
    add(rows, "city 5,000 from the air, the whole process", .5, c and c["processor"], ms)
    add(rows, "the same with a length limit of 0.02", 3.0,
        c and limited and limited["processor"] / c["processor"], times)
    add(rows, "the same, peak memory", 250, c and c["peak_mb"], mb)
    c = case("city 20000 air spherical 6 0")
    add(rows, "city 20,000, peak memory", 1200, c and c["peak_mb"], mb)
    add(rows, "reading a scene", 50, c and c["scene_mb"] / c["stages"]["read"]
        if c and "scene_mb" in c else None, rate, True)
    add(rows, "writing a shot", 50, c and c["shot_mb"] / c["stages"]["write"], rate, True)
    c = case("sample 1 street spherical 6 0.02")
    add(rows, "street sample with a length limit of 0.02, the whole process", .25,
        c and c["processor"], ms)
    c = case("picture 5000 air spherical 6 0")
    add(rows, "a picture of 20,000 regions (wall time)", 3.0, c and c["png"], ms)
    gain = RESULTS / "gain.txt"
    if gain.exists():
        add(rows, "the reference pipeline in the same run, city 200", 50,
            float(gain.read_text(encoding="utf-8").split()[-1]), times, True)
    return table(["what (processor time)", "aim", "measured", "met"], rows, 1)


def machine_text(measured):
    m = measured["machine"]
    return f"{m['processor']}, {m['cores']} cores, {m['memory_gb']} GB; {m['system']}; {m['compiler']}" \
        + (f"; load {measured['load'][1]:g}" if "load" in measured else "")


def sections(before, after, parts):
    text = []
    for label, measured in (("Before", before), ("After", after)):
        if measured:
            text.append(f"{label}: commit `{measured['commit']}`; {machine_text(measured)}.")
    if after:
        text.append("## Aims\n\n" + aims(parts[1]))
    text.append("## Whole runs\n\n" + whole_table(*parts))
    text.append("## Growth\n\nThe exponent of N in a fit of the time over towns of 1,000 boxes "
                "and more, as far as they came to an end.\n\n" + growth_table(*parts))
    text.append("## Stages\n\nProcessor time in milliseconds.\n\n" + stage_table(*parts))
    if (RESULTS / "gain.txt").exists():
        text.append("## The reference pipeline in the same run\n\n```text\n"
                    + (RESULTS / "gain.txt").read_text(encoding="utf-8").strip() + "\n```")
    kernels = load("kernels")
    if kernels:
        text.append("## Single steps\n\n" + kernel_table(kernels))
    return "\n\n".join(text)


def draw(parts, path):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot as plt
    figure, axes = plt.subplots(figsize=(8, 5.2), dpi=110)
    styles = {("city", "air"): ("o", "town from the air"), ("city", "street"): ("s", "in the street"),
              ("city", "sky"): ("^", "sky"), ("sphere", "air"): ("D", "ball")}
    for cases, colour, label in ((parts[0], "#b0453a", "before"), (parts[1], "#2f6f9f", "after")):
        for (kind, view), (marker, name) in styles.items():
            points = sorted((c["faces"], c["processor"]) for c in cases.values()
                            if "stopped" not in c and (c["kind"], c["view"]) == (kind, view)
                            and family_of(c)[2:] == ("spherical", 6, 0))
            if points:
                axes.plot(*zip(*points), marker=marker, color=colour, lw=1.2, ms=5,
                          label=f"{name}, {label}")
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.set_xlabel("faces in the picture that turn to the eye")
    axes.set_ylabel("processor seconds of the whole process")
    axes.set_title("A shot, from scene file to shot file (radial, 6 pieces an edge, no length limit)",
                   fontsize=10)
    axes.grid(True, which="both", lw=0.3, color="#bbbbbb")
    axes.legend(fontsize=8, frameon=False)
    figure.tight_layout()
    figure.savefig(path)


def main():
    before, after = load("before"), load("after")
    if before is None and after is None:
        sys.exit("report.py: bench/results holds neither before.json nor after.json")
    parts = by_name(before), by_name(after)
    readme = FOLDER / "README.md"
    text = readme.read_text(encoding="utf-8")
    head, rest = text.split(BEGIN, 1)
    tail = rest.split(END, 1)[1]
    readme.write_text(head + BEGIN + "\n\n" + sections(before, after, parts) + "\n\n" + END + tail,
                      encoding="utf-8")
    draw(parts, RESULTS / "growth.png")


if __name__ == "__main__":
    main()
