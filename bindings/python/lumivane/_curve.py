"""The order of points along a space-filling curve, so that neighbours come one after the other."""

from __future__ import annotations

import numpy as np
import numpy.typing as npt

from ._arguments import FloatArray

_BITS = 20  # of each axis: three of them fit into 64


def curve_order(points: FloatArray) -> npt.NDArray[np.intp]:
    """Positions of points, shape (n, 3), in the order of Hilbert's curve through the cube around
    them; equal points stay in their order."""
    if len(points) == 0:
        return np.zeros(0, np.intp)
    low = points.min(axis=0)
    # Halves first, since the difference of two finite numbers need not be finite.
    reach = float((points / 2 - low / 2).max())
    cells = 2.0**_BITS - 1
    scale = cells / reach if reach > 0 else 0.0
    if not np.isfinite(scale):
        scale = 0.0
    places = np.minimum((points / 2 - low / 2) * scale, cells).astype(np.uint64)
    return np.argsort(_hilbert(places), kind="stable")


def _hilbert(places: npt.NDArray[np.uint64]) -> npt.NDArray[np.uint64]:
    """The distance along the curve of each cell, by J. Skilling, "Programming the Hilbert Curve"
    (2004), for all cells at once."""
    one = np.uint64(1)
    axes = [places[:, i].copy() for i in range(3)]
    for bit in range(_BITS - 1, 0, -1):
        half = one << np.uint64(bit)
        below = half - one
        for i in range(3):
            is_upper = (axes[i] & half) != 0
            swapped = np.where(is_upper, 0, (axes[0] ^ axes[i]) & below).astype(np.uint64)
            axes[0] ^= np.where(is_upper, below, swapped)
            axes[i] ^= swapped
    for i in (1, 2):
        axes[i] ^= axes[i - 1]
    turned = np.zeros_like(axes[0])
    for bit in range(_BITS - 1, 0, -1):
        half = one << np.uint64(bit)
        turned ^= np.where((axes[2] & half) != 0, half - one, 0).astype(np.uint64)
    distance = np.zeros_like(axes[0])
    for axis in axes:
        axis ^= turned
    for bit in range(_BITS - 1, -1, -1):
        for axis in axes:
            distance = (distance << one) | ((axis >> np.uint64(bit)) & one)
    return distance
