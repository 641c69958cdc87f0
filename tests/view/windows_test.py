#!/usr/bin/env python3
"""Opens the library's windows on a display and uses them as a person would.

    windows_test.py SHOW_WINDOWS DATA_FOLDER

SHOW_WINDOWS is the program that opens them, DATA_FOLDER is tests/data. Needs a display of its own
(see with_display.sh), xdotool, xwininfo and xprop. A missing baseline picture, like one that
differs, fails, and the picture is left in the working folder as NAME.candidate.png.
"""

import ctypes
import os
import re
import subprocess
import sys
import threading
import time
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "support"))
import png  # noqa: E402

# Seconds until a window must have come, changed or gone; generous for sanitizers.
PATIENCE = 60.0

# Two screenshots look the same when no larger share of their pixels is different: text and edges
# of another OpenGL stay below it, a missing ring or label does not.
SHARE_THAT_MAY_DIFFER = 0.002

# The same for a picture that was moved by whole pixels: its lines may land half a pixel aside.
SHARE_THAT_MAY_DIFFER_MOVED = 0.02

SCENE_TITLE = "Сцена 3d"
SHOT_TITLE = "Снимок 2d"

# The eye from which the room's shots were made.
EYE = "-3.5,0.2,1.6"

SHOW_WINDOWS = DATA = ""


class XClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong),
                ("message_type", ctypes.c_ulong), ("format", ctypes.c_int),
                ("data", ctypes.c_long * 5)]


class XEvent(ctypes.Union):
    _fields_ = [("message", XClientMessage), ("space", ctypes.c_long * 24)]


class XImage(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int),
                ("unit", ctypes.c_int), ("bit_order", ctypes.c_int), ("pad", ctypes.c_int),
                ("depth", ctypes.c_int), ("bytes_per_line", ctypes.c_int),
                ("bits_per_pixel", ctypes.c_int)]


class Display:
    """The few calls for which there is no program: closing a window politely, and its picture."""

    def __init__(self):
        self.x = ctypes.CDLL("libX11.so.6")
        for name, result, arguments in (
                ("XOpenDisplay", ctypes.c_void_p, [ctypes.c_char_p]),
                ("XDefaultRootWindow", ctypes.c_ulong, [ctypes.c_void_p]),
                ("XInternAtom", ctypes.c_ulong, [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]),
                ("XSendEvent", ctypes.c_int, [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int,
                                              ctypes.c_long, ctypes.POINTER(XEvent)]),
                ("XSync", ctypes.c_int, [ctypes.c_void_p, ctypes.c_int]),
                ("XDestroyImage", ctypes.c_int, [ctypes.POINTER(XImage)]),
                ("XGetImage", ctypes.POINTER(XImage),
                 [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                  ctypes.c_uint, ctypes.c_ulong, ctypes.c_int])):
            function = getattr(self.x, name)
            function.restype, function.argtypes = result, arguments
        self.display = self.x.XOpenDisplay(None)
        if not self.display:
            raise RuntimeError("no display")
        self.root = self.x.XDefaultRootWindow(self.display)

    def press_close_button(self, window):
        """What a window manager sends when somebody presses the close button."""
        event = XEvent()
        event.message.type = 33  # ClientMessage
        event.message.window = window
        event.message.message_type = self.x.XInternAtom(self.display, b"WM_PROTOCOLS", 0)
        event.message.format = 32
        event.message.data[0] = self.x.XInternAtom(self.display, b"WM_DELETE_WINDOW", 0)
        self.x.XSendEvent(self.display, window, 0, 0, ctypes.byref(event))
        self.x.XSync(self.display, 0)

    def screenshot(self, left, top, width, height):
        image = self.x.XGetImage(self.display, self.root, left, top, width, height,
                                 ctypes.c_ulong(-1).value, 2)  # all planes, ZPixmap
        if not image:
            raise RuntimeError("no screenshot")
        try:
            line = image.contents.bytes_per_line
            assert image.contents.bits_per_pixel == 32
            raw = ctypes.string_at(image.contents.data, line * height)
        finally:
            self.x.XDestroyImage(image)
        pixels = bytearray(width * height * 3)
        for y in range(height):
            row = raw[y * line:y * line + width * 4]
            start = y * width * 3
            for channel in range(3):  # the server keeps blue, green, red, nothing
                pixels[start + channel:start + width * 3:3] = row[2 - channel::4]
        return png.Picture(width, height, bytes(pixels))


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          encoding="utf-8", timeout=PATIENCE, check=False).stdout


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def open_windows():
    """The windows on the display: id by title."""
    found = re.findall(r'^ +(0x[0-9a-f]+) "(.*?)": \(', output("xwininfo", "-root", "-tree"), re.M)
    return {title: int(window, 16) for window, title in found}


def geometry(window):
    """Left, top, width, height on the screen."""
    text = output("xwininfo", "-id", hex(window))
    return tuple(int(re.search(label + r": +(-?\d+)", text).group(1))
                 for label in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))


def mouse_drag(button, start, offset):
    x, y = start
    subprocess.run(["xdotool", "mousemove", str(x), str(y)], check=True, timeout=PATIENCE)
    subprocess.run(["xdotool", "mousedown", str(button)], check=True, timeout=PATIENCE)
    for step in range(1, 6):
        subprocess.run(["xdotool", "mousemove", str(x + offset[0] * step // 5),
                        str(y + offset[1] * step // 5)], check=True, timeout=PATIENCE)
        time.sleep(0.05)
    subprocess.run(["xdotool", "mouseup", str(button)], check=True, timeout=PATIENCE)


class WindowsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = Display()

    def open(self, *arguments):
        """Starts the program; its standard output is collected in self.lines."""
        self.process = subprocess.Popen([SHOW_WINDOWS, *arguments], stdout=subprocess.PIPE,
                                        encoding="utf-8")
        self.lines = []
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout))
        self.reader.start()
        self.addCleanup(self.stop)

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.reader.join()
        self.process.stdout.close()

    def window(self, title):
        def find():
            if self.process.poll() is not None:
                raise AssertionError(f"the program ended with {self.process.returncode}")
            return open_windows().get(title)
        return wait_for(f"the window {title}", find)

    def picture(self, window):
        """The window's picture, once it has stopped changing."""
        last, since, end = None, 0.0, time.monotonic() + PATIENCE
        while time.monotonic() < end:
            now = self.display.screenshot(*geometry(window))
            if last is None or now.pixels != last.pixels:
                last, since = now, time.monotonic()
            elif time.monotonic() - since > 0.5:
                return now
            time.sleep(0.1)
        raise AssertionError("the picture does not come to rest")

    def assert_looks_like(self, name, picture):
        path = os.path.join(DATA, "pictures", name + ".png")
        share = (png.different_share(png.read(path), picture) if os.path.exists(path) else None)
        if share is None or share > SHARE_THAT_MAY_DIFFER:
            candidate = os.path.abspath(name + ".candidate.png")
            png.write(candidate, picture)
            reason = "there is none" if share is None else f"a share of {share:.4f} differs"
            self.fail(f"baseline {path}: {reason}; the picture is left in {candidate}")

    def assert_gone(self, title):
        wait_for(f"the end of {title}", lambda: title not in open_windows())

    def assert_returned(self, calls=1):
        self.assertEqual(0, self.process.wait(PATIENCE))
        wait_for("the output", lambda: len([1 for line in self.lines
                                            if line == "returned\n"]) == calls)

    def file(self, name):
        return os.path.join(DATA, "golden", name)

    def open_room(self, camera="spherical"):
        name = "e01_furniture" if camera == "spherical" else "e02_furniture_normal"
        self.open("models", self.file(name + ".scene.json"), self.file(name + ".shot.json"),
                  EYE, camera)
        return self.window(SCENE_TITLE), self.window(SHOT_TITLE)

    def test_windows_have_their_title_size_and_place(self):
        scene, shot = self.open_room()
        self.assertEqual((0, 0, 600, 500), geometry(scene))
        self.assertEqual((615, 0, 600, 500), geometry(shot))
        for window, title in ((scene, SCENE_TITLE), (shot, SHOT_TITLE)):
            self.assertEqual(title, output("xdotool", "getwindowname", str(window)).strip())
            self.assertIn("WM_DELETE_WINDOW", output("xprop", "-id", hex(window), "WM_PROTOCOLS"))

    def test_windows_look_like_the_room_and_its_shot(self):
        scene, shot = self.open_room()
        with self.subTest("scene"):
            self.assert_looks_like("window_scene", self.picture(scene))
        with self.subTest("shot"):
            self.assert_looks_like("window_shot", self.picture(shot))

    def test_normal_camera_shows_the_grid(self):
        _, shot = self.open_room("normal")
        self.assert_looks_like("window_shot_normal", self.picture(shot))

    def test_left_and_middle_drag_pan_the_flat_view_and_do_not_rotate_it(self):
        _, shot = self.open_room()
        left, top, width, height = geometry(shot)
        for button in (1, 2):
            before = self.picture(shot)
            mouse_drag(button, (left + 300, top + 250), (60, -40))
            wait_for("a change", lambda: self.picture(shot).pixels != before.pixels)
            after = self.picture(shot)
            kept_before = before.crop(0, 40, width - 60, height - 40)
            kept_after = after.crop(60, 0, width - 60, height - 40)
            self.assertLess(png.different_share(kept_before, kept_after),
                            SHARE_THAT_MAY_DIFFER_MOVED)

    def test_right_drag_zooms_the_flat_view(self):
        _, shot = self.open_room()
        left, top, _, _ = geometry(shot)
        before = self.picture(shot).content()
        mouse_drag(3, (left + 300, top + 200), (0, 120))
        wait_for("a change", lambda: self.picture(shot).content() != before)
        after = self.picture(shot).content()
        width, height = before[2] - before[0], before[3] - before[1]
        factor = (after[2] - after[0]) / width
        self.assertLess(factor, 0.9)
        self.assertAlmostEqual(factor, (after[3] - after[1]) / height, delta=0.03)

    def test_left_drag_turns_the_scene(self):
        scene, _ = self.open_room()
        before = self.picture(scene)
        mouse_drag(1, (300, 250), (60, 0))
        wait_for("a change", lambda: self.picture(scene).pixels != before.pixels)
        moved = png.different_share(before.crop(0, 0, 540, 500),
                                    self.picture(scene).crop(60, 0, 540, 500))
        self.assertGreater(moved, SHARE_THAT_MAY_DIFFER_MOVED)

    def test_close_buttons_end_the_call_scene_first(self):
        scene, shot = self.open_room()
        self.display.press_close_button(scene)
        self.assert_gone(SCENE_TITLE)
        self.assertIsNone(self.process.poll())
        self.assertNotIn("returned\n", self.lines)
        self.display.press_close_button(shot)
        self.assert_returned()

    def test_close_buttons_end_the_call_shot_first(self):
        scene, shot = self.open_room()
        self.display.press_close_button(shot)
        self.assert_gone(SHOT_TITLE)
        self.assertIsNone(self.process.poll())
        self.display.press_close_button(scene)
        self.assert_returned()

    def test_keys_end_the_call(self):
        self.open_room()
        for place, key in (((300, 250), "q"), ((900, 250), "e")):
            subprocess.run(["xdotool", "mousemove", str(place[0]), str(place[1])], check=True,
                           timeout=PATIENCE)
            subprocess.run(["xdotool", "key", key], check=True, timeout=PATIENCE,
                           stderr=subprocess.DEVNULL)
        self.assert_returned()

    def test_files_are_shown_with_rings(self):
        self.open("files", self.file("e01_furniture.scene.json"),
                  self.file("e01_furniture.shot.json"))
        scene, shot = self.window(SCENE_TITLE), self.window(SHOT_TITLE)
        self.assert_looks_like("window_shot", self.picture(shot))  # as with a spherical camera
        self.display.press_close_button(scene)
        self.display.press_close_button(shot)
        self.assert_returned()

    def test_scene_alone(self):
        self.open("scene", self.file("e01_furniture.scene.json"))
        scene = self.window(SCENE_TITLE)
        self.assertNotIn(SHOT_TITLE, open_windows())
        self.display.press_close_button(scene)
        self.assert_returned()

    def test_shot_alone(self):
        self.open("shot", self.file("e01_furniture.shot.json"))
        shot = self.window(SHOT_TITLE)
        self.assertEqual((615, 0, 600, 500), geometry(shot))
        self.assertNotIn(SCENE_TITLE, open_windows())
        self.display.press_close_button(shot)
        self.assert_returned()

    def test_debug_window_opens_twice(self):
        self.open("debug")
        for _ in range(2):
            window = self.window("Debug Window")
            self.assertEqual((0, 0, 800, 600), geometry(window))
            self.assert_looks_like("window_debug", self.picture(window))
            self.display.press_close_button(window)
            self.assert_gone("Debug Window")
        self.assert_returned(calls=2)


if __name__ == "__main__":
    SHOW_WINDOWS, DATA = (os.path.abspath(path) for path in sys.argv[1:3])
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
