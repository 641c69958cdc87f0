"""Just enough PNG for tests: 8-bit RGB and RGBA pictures in and out, and a comparison."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"

# A pixel counts as different when one of its channels is off by more than this.
CHANNEL_TOLERANCE = 32


class Picture:
    """Rows of RGB bytes."""

    def __init__(self, width, height, pixels):
        assert len(pixels) == width * height * 3
        self.width, self.height, self.pixels = width, height, pixels

    def crop(self, left, top, width, height):
        rows = []
        for y in range(top, top + height):
            start = (y * self.width + left) * 3
            rows.append(self.pixels[start:start + width * 3])
        return Picture(width, height, b"".join(rows))

    def content(self):
        """Left, top, right, bottom of what is not white (right and bottom excluded)."""
        white_row = b"\xff" * (self.width * 3)
        rows = [y for y in range(self.height) if self._row(y) != white_row]
        if not rows:
            return None
        left, right = self.width, 0
        for y in rows:
            row = self._row(y)
            left = min(left, (len(row) - len(row.lstrip(b"\xff"))) // 3)
            right = max(right, (len(row.rstrip(b"\xff")) + 2) // 3)
        return left, rows[0], right, rows[-1] + 1

    def _row(self, y):
        return self.pixels[y * self.width * 3:(y + 1) * self.width * 3]


def different_share(a, b):
    """The share of different pixels; 1 for pictures of different sizes."""
    if (a.width, a.height) != (b.width, b.height):
        return 1.0
    different = {i // 3 for i, (x, y) in enumerate(zip(a.pixels, b.pixels))
                 if x != y and abs(x - y) > CHANNEL_TOLERANCE}
    return len(different) / (a.width * a.height)


def write(path, picture):
    def chunk(name, data):
        return (struct.pack(">I", len(data)) + name + data
                + struct.pack(">I", zlib.crc32(name + data)))
    rows = b"".join(b"\0" + picture._row(y) for y in range(picture.height))
    header = struct.pack(">IIBBBBB", picture.width, picture.height, 8, 2, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(SIGNATURE + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9))
                   + chunk(b"IEND", b""))


def read(path):
    with open(path, "rb") as file:
        data = file.read()
    if not data.startswith(SIGNATURE):
        raise ValueError(f"{path} is no PNG")
    at, compressed, header = len(SIGNATURE), b"", None
    while at < len(data):
        length, name = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if name == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif name == b"IDAT":
            compressed += body
        at += length + 12
    width, height, depth, kind, _, _, interlaced = header
    if depth != 8 or kind not in (2, 6) or interlaced:
        raise ValueError(f"{path}: only 8-bit RGB and RGBA are read")
    channels = 3 if kind == 2 else 4
    rows = _unfiltered(zlib.decompress(compressed), width * channels, height, channels)
    if channels == 4:
        rows = [bytes(v for i, v in enumerate(row) if i % 4 != 3) for row in rows]
    return Picture(width, height, b"".join(rows))


def _unfiltered(raw, stride, height, channels):
    rows, above = [], bytes(stride)
    for y in range(height):
        kind = raw[y * (stride + 1)]
        row = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        if kind:
            for i in range(stride):
                left = row[i - channels] if i >= channels else 0
                corner = above[i - channels] if i >= channels else 0
                row[i] = (row[i] + _predicted(kind, left, above[i], corner)) & 255
        rows.append(bytes(row))
        above = row
    return rows


def _predicted(kind, left, up, corner):
    if kind == 1:
        return left
    if kind == 2:
        return up
    if kind == 3:
        return (left + up) // 2
    estimate = left + up - corner
    return min((left, up, corner), key=lambda v: abs(estimate - v))
