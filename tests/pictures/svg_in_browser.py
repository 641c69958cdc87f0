#!/usr/bin/env python3
"""The SVG of a shot, opened in a browser, shows the picture that the library draws.

Usage: svg_in_browser.py PROGRAM SCENES GOLDEN CHROMIUM    (needs a display for the library)

The library draws through OpenGL without smooth edges, the browser with them, so single pixels on
lines and edges differ. Hence blocks of pixels are compared by their mean colour. Left out are shots
with strongly concave outlines of many points, in which the library's own triangles leave holes.
"""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "support"))
import png  # noqa: E402

PROGRAM, SCENES, GOLDEN, CHROMIUM = sys.argv[1:5]

SIDE = 800
# Two pictures show the same when no larger share of their blocks differs in its mean colour, and
# when their mean colours as a whole agree to within so many steps of 255. A missing line of axes
# exceeds the second, a missing or wrongly coloured region the first.
BLOCK = 4
BLOCK_TOLERANCE = 32
SHARE_OF_BLOCKS_THAT_MAY_DIFFER = 0.003
MEAN_COLOR_TOLERANCE = 0.9
# Lines alone make up an outline picture, and where they run dense, smooth ones look lighter.
OUTLINE_SHARE_OF_BLOCKS_THAT_MAY_DIFFER = 0.012
# Where half transparent regions overlap, the library mixes them regardless of their order.
HALF_MEAN_COLOR_TOLERANCE = 2.0

GOLDEN_SHOTS = ["b02_box_normal", "b04_box_tilted", "d01_city_street", "f01_ring_of_three",
                "k01_crossing", "n01_ball"]
# Faces in pieces: around windows and gables, and cut out of concave outlines.
SHOTS_IN_PIECES = ["i01_window", "i04_gables", "o04_inner_corner_first"]


def run(*command):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{command[0]}: {done.stderr.decode(errors='replace')}")


def screenshot(page, picture, side=SIDE, scale=1):
    with tempfile.TemporaryDirectory() as profile:
        run(CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
            "--no-first-run", "--disable-background-networking", "--disable-component-update",
            "--disable-sync", "--hide-scrollbars", f"--user-data-dir={profile}",
            f"--force-device-scale-factor={scale}", f"--screenshot={picture}",
            f"--window-size={side},{side}", Path(page).resolve().as_uri())
    return png.read(picture)


def block_means(picture):
    """For each block, the sums of its red, green and blue."""
    across, down = picture.width // BLOCK, picture.height // BLOCK
    sums = [[0, 0, 0] for _ in range(across * down)]
    for y in range(down * BLOCK):
        row = picture.pixels[y * picture.width * 3:(y + 1) * picture.width * 3]
        first = (y // BLOCK) * across
        for channel in range(3):
            values = row[channel::3]
            for x in range(across):
                sums[first + x][channel] += sum(values[x * BLOCK:(x + 1) * BLOCK])
    return sums


def differences(a, b):
    """The share of different blocks, and the greatest difference of the mean colours."""
    assert (a.width, a.height) == (b.width, b.height)
    blocks_a, blocks_b = block_means(a), block_means(b)
    limit = BLOCK_TOLERANCE * BLOCK * BLOCK
    different = sum(any(abs(x - y) > limit for x, y in zip(p, q))
                    for p, q in zip(blocks_a, blocks_b))
    pixels = a.width * a.height
    mean = max(abs(sum(p[c] for p in blocks_a) - sum(q[c] for q in blocks_b)) / pixels
               for c in range(3))
    return different / len(blocks_a), mean


def golden_view(name):
    view = json.loads((Path(GOLDEN) / f"{name}.view.json").read_text(encoding="utf-8"))
    vector = lambda key: ",".join(repr(float(v)) for v in view[key])  # noqa: E731
    return [Path(GOLDEN) / f"{name}.scene.json", "--camera", view["camera"],
            f"--eye={vector('eye')}", f"--forward={vector('forward')}", f"--up={vector('up')}",
            "--segments", view["sn"], "--max-length", view["sl"],
            "--d1", view["d1"], "--d2", view["d2"]]


def sample_views():
    for line in (Path(SCENES) / "views.txt").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            name, scene, camera, eye, forward = line.split()
            yield name, [Path(SCENES) / scene, "--camera", camera, f"--eye={eye}",
                         f"--forward={forward}"]


class SvgInBrowser(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return Path(self.folder.name) / name

    def draw(self, name, view, style="filled"):
        """The picture of the library and that of the browser."""
        run(PROGRAM, "shot", *view, "--style", style, "--size", f"{SIDE}x{SIDE}",
            "--png", self.path("a.png"), "--svg", self.path("a.svg"), "--axes")
        shown = screenshot(self.path("a.svg"), self.path("b.png"))
        drawn = png.read(self.path("a.png"))
        share, mean = differences(drawn, shown)
        print(f"{name} {style}: {share:.4%} of the blocks, mean colour {mean:.2f}", flush=True)
        return share, mean

    def test_sample_scenes_look_as_the_library_draws_them(self):
        for name, view in sample_views():
            with self.subTest(name):
                share, mean = self.draw(name, view)
                self.assertLessEqual(share, SHARE_OF_BLOCKS_THAT_MAY_DIFFER)
                self.assertLessEqual(mean, MEAN_COLOR_TOLERANCE)

    def test_known_shots_look_as_the_library_draws_them(self):
        for name in GOLDEN_SHOTS:
            with self.subTest(name):
                share, mean = self.draw(name, golden_view(name))
                self.assertLessEqual(share, SHARE_OF_BLOCKS_THAT_MAY_DIFFER)
                self.assertLessEqual(mean, MEAN_COLOR_TOLERANCE)

    def test_outlines_look_as_the_library_draws_them(self):
        for name, view in sample_views():
            if name.endswith("spherical"):
                with self.subTest(name):
                    share, mean = self.draw(name, view, "outline")
                    self.assertLessEqual(share, OUTLINE_SHARE_OF_BLOCKS_THAT_MAY_DIFFER)
                    self.assertLessEqual(mean, MEAN_COLOR_TOLERANCE)

    def test_half_transparent_shots_look_as_the_library_draws_them(self):
        for name, view in sample_views():
            if name.startswith("small"):
                with self.subTest(name):
                    share, mean = self.draw(name, view, "half")
                    self.assertLessEqual(share, SHARE_OF_BLOCKS_THAT_MAY_DIFFER)
                    self.assertLessEqual(mean, HALF_MEAN_COLOR_TOLERANCE)

    def test_missing_axes_and_wrong_colors_would_be_noticed(self):
        view = dict(sample_views())["small-spherical"]
        run(PROGRAM, "shot", *view, "--png", self.path("a.png"), "--svg", self.path("bare.svg"))
        run(PROGRAM, "shot", *view, "--svg", self.path("full.svg"), "--axes")
        drawn = png.read(self.path("a.png"))
        _, mean = differences(drawn, screenshot(self.path("bare.svg"), self.path("b.png")))
        self.assertGreater(mean, MEAN_COLOR_TOLERANCE)
        text = self.path("full.svg").read_text(encoding="utf-8")
        region = text[text.rindex("data-region"):]
        fill = region[region.index('fill="'):].split('"')[1]
        self.path("other.svg").write_text(text.replace(fill, "#0f0"), encoding="utf-8")
        share, _ = differences(drawn, screenshot(self.path("other.svg"), self.path("b.png")))
        self.assertGreater(share, SHARE_OF_BLOCKS_THAT_MAY_DIFFER)


class SeamsInBrowser(unittest.TestCase):
    """At eight times the size nothing of the background is seen between the pieces of a face."""

    SIDE, SCALE = 160, 8  # windows much smaller than this stay empty

    def seen_through(self, svg, points, folder):
        """How many of the places differ between a black and a white background."""
        pictures = []
        for color in ("#000", "#fff"):
            page = Path(folder) / "page.html"
            page.write_text(f'<!doctype html><meta charset="utf-8"><style>html,body{{margin:0;'
                            f'background:{color}}}svg{{display:block}}</style>{svg}',
                            encoding="utf-8")
            pictures.append(screenshot(page, Path(folder) / "page.png", self.SIDE, self.SCALE))
        black, white = pictures
        count = 0
        for x, y in points:
            at = 3 * (int(y) * black.width + int(x))
            count += black.pixels[at:at + 3] != white.pixels[at:at + 3]
        return count

    def docking_points(self, shot):
        """Points along the inner four fifths of each docking edge, in pixels of the screenshot."""
        half = self.SIDE * self.SCALE / 2
        for region in shot["Regions"]:
            numbers = region.get("Points", [])
            for edge in set(region.get("DockingEdges", [])):
                a = shot["Points"][numbers[edge - 1] - 1]
                b = shot["Points"][numbers[edge % len(numbers)] - 1]
                for step in range(1, 10):
                    x, y = (a[i] + (b[i] - a[i]) * step / 10 for i in range(2))
                    # Along rows and columns of pixels no seam would show.
                    if x * x + y * y < 0.95 and min(abs(a[0] - b[0]), abs(a[1] - b[1])) > 1e-4:
                        yield half * (1 + x), half * (1 - y)

    def test_no_background_is_seen_along_docking_edges(self):
        for name in SHOTS_IN_PIECES:
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                run(PROGRAM, "shot", *golden_view(name), "-o", f"{folder}/shot.json",
                    "--svg", f"{folder}/a.svg", "--size", f"{self.SIDE}x{self.SIDE}")
                shot = json.loads(Path(folder, "shot.json").read_text(encoding="utf-8"))
                svg = Path(folder, "a.svg").read_text(encoding="utf-8").split("?>", 1)[1]
                points = list(self.docking_points(shot))
                self.assertGreater(len(points), 50)
                self.assertEqual(0, self.seen_through(svg, points, folder))
                bare = "\n".join(line for line in svg.splitlines() if 'class="ground' not in line)
                self.assertNotEqual(bare, svg)
                self.assertGreater(self.seen_through(bare, points, folder), len(points) // 10,
                                   "seams would not be noticed")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
