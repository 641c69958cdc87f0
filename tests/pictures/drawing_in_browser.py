#!/usr/bin/env python3
"""A drawing's SVG in headless Chromium beside the same drawing painted by cairo as PNG.

Usage: drawing_in_browser.py PROGRAM SCENES CHROMIUM

Both smooth edges in their own way. But where one of them shows one colour all around a pixel, no
edge is near, and the other must show that colour, too: so a line or a fill that one of them lacks
is noticed, and so is one that only one of them has.
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).parent.parent / "support"))
import png  # noqa: E402

PROGRAM, SCENES, CHROMIUM = sys.argv[1:4]

AROUND = 2  # pixels
SAME = 10  # steps of 255: along seams of one colour Chromium is up to 8 lighter
SIDE = 200  # mm

STREET = ["street.json", "--eye=-5.3,-1.37,3.4", "--fill", "object"]
DRAWINGS = {
    "perspective": [*STREET, "--target", "40,0,8", "--aspect", "1"],
    "parallel": ["small.json", "--parallel", "isometric", "--fill", "shading"],
    "lines alone": ["small.json", "--parallel", "isometric", "--hidden", "dashed"],
    "orthographic": [*STREET, "--projection", "orthographic", "--sky", "#cfe3f5", "--rings", "30"],
    "equisolid": [*STREET, "--projection", "equisolid"],
    "stereographic": [*STREET, "--projection", "stereographic"],
    "orthographic, arcs": [*STREET, "--projection", "orthographic", "--arcs", "exact"],
    "stereographic, arcs": [*STREET, "--projection", "stereographic", "--arcs", "exact"],
    "equirectangular": [*STREET, "--projection", "equirectangular", "--field", "sphere"],
    "cylindrical": [*STREET, "--projection", "cylindrical", "--fov", "90"],
}


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{command[0]}: {done.stderr.decode(errors='replace')}")


def pixels(path):
    picture = png.read(path)
    return np.frombuffer(picture.pixels, np.uint8).reshape(picture.height, picture.width, 3).astype(int)


def far_from_edges(picture):
    """Where all pixels around have the same colour."""
    rows, columns = picture.shape[:2]
    inner = picture[AROUND:rows - AROUND, AROUND:columns - AROUND]
    same = np.ones(inner.shape[:2], bool)
    for y in range(2 * AROUND + 1):
        for x in range(2 * AROUND + 1):
            shifted = picture[y:y + inner.shape[0], x:x + inner.shape[1]]
            same &= np.abs(shifted - inner).max(axis=2) == 0
    return same, inner


def differing(a, b):
    """How many pixels differ where one of both pictures has no edge near, and of how many."""
    rows, columns = min(a.shape[0], b.shape[0]), min(a.shape[1], b.shape[1])
    a, b = a[:rows, :columns], b[:rows, :columns]
    (plain_a, inner_a), (plain_b, inner_b) = far_from_edges(a), far_from_edges(b)
    apart = np.abs(inner_a - inner_b).max(axis=2) > SAME
    plain = plain_a | plain_b
    return int((apart & plain).sum()), int(plain.sum()), apart.size


class DrawingInBrowser(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return Path(self.folder.name) / name

    def screenshot(self, svg, width, height):
        page = self.path("page.html")
        page.write_text('<!doctype html><meta charset="utf-8"><style>html,body{margin:0;'
                        f'background:#fff;overflow:hidden}}svg{{display:block}}</style>{svg}',
                        encoding="utf-8")
        with tempfile.TemporaryDirectory() as profile:
            run(CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                "--no-first-run", "--disable-background-networking", "--disable-component-update",
                "--disable-sync", "--hide-scrollbars", f"--user-data-dir={profile}",
                f"--screenshot={self.path('b.png')}", f"--window-size={width},{height}",
                page.resolve().as_uri())
        return pixels(self.path("b.png"))

    def draw(self, scene, *options):
        run(PROGRAM, "draw", Path(SCENES) / scene, *options, "--page", f"{SIDE}x{SIDE}",
            "--dpi", 96, "--png", self.path("a.png"), "--svg", self.path("a.svg"))
        return pixels(self.path("a.png")), self.path("a.svg").read_text(encoding="utf-8")

    def test_both_show_the_same_away_from_edges(self):
        for name, options in DRAWINGS.items():
            with self.subTest(name):
                drawn, svg = self.draw(*options)
                shown = self.screenshot(svg, drawn.shape[1], drawn.shape[0])
                wrong, plain, count = differing(drawn, shown)
                print(f"{name}: {wrong} of {plain} pixels away from edges differ", flush=True)
                self.assertGreater(plain, 0.5 * count)
                self.assertEqual(0, wrong)

    def test_a_missing_line_and_a_wrong_fill_would_be_noticed(self):
        # Of lines alone: beside fills of two colours a line between them is near an edge anyway.
        drawn, svg = self.draw(*DRAWINGS["lines alone"])
        start = svg.index('<g id="crease"')
        bare = svg[:start] + svg[svg.index("</g>", start) + 4:]
        wrong, _, _ = differing(drawn, self.screenshot(bare, drawn.shape[1], drawn.shape[0]))
        self.assertGreater(wrong, 20)
        drawn, svg = self.draw(*DRAWINGS["parallel"])
        fill = svg[svg.index(' fill="#', svg.index('id="fills"')):].split('"')[1]
        other = svg.replace(f'fill="{fill}"', 'fill="#0f0"')
        wrong, _, _ = differing(drawn, self.screenshot(other, drawn.shape[1], drawn.shape[0]))
        self.assertGreater(wrong, 1000)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
