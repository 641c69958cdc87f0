"""What users give, checked and converted: the module beneath takes plain numbers and arrays."""

from __future__ import annotations

import os
from typing import Any, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

FloatArray = npt.NDArray[np.float64]
Vector3 = Tuple[float, float, float]
PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

FIELDS = ("hemisphere", "sphere")


def vector(value: npt.ArrayLike, name: str) -> Vector3:
    """Three numbers; whether they are finite is checked by the library."""
    # The usual cases first: they are much quicker than an array.
    if isinstance(value, (tuple, list)) and len(value) == 3:
        try:
            x, y, z = value
            return (x.__float__(), y.__float__(), z.__float__())
        except (AttributeError, TypeError):
            pass
    array = numbers(value, name)
    if array.shape != (3,):
        raise ValueError(f"{name}: 3 numbers are needed, but the shape is {array.shape}")
    return (float(array[0]), float(array[1]), float(array[2]))


def numbers(value: npt.ArrayLike, name: str) -> FloatArray:
    """An array of C order with real numbers of 64 bits, a copy only where needed."""
    try:
        array = np.asarray(value)
    except ValueError as error:  # rows of different lengths
        raise ValueError(f"{name}: {error}") from None
    if array.size == 0 and array.dtype == np.float64:
        return np.ascontiguousarray(array)
    if array.dtype.kind not in "iufb":
        raise TypeError(f"{name}: real numbers are needed, but the type is {array.dtype}")
    return np.ascontiguousarray(array, dtype=np.float64)


def rows_of_three(value: npt.ArrayLike, name: str) -> FloatArray:
    """An array of shape (n, 3); one vector is n = 1, and an empty list n = 0."""
    array = numbers(value, name)
    if array.shape == (3,) or array.shape == (0,):
        return array.reshape(-1, 3)
    if array.ndim != 2 or array.shape[1] != 3:
        raise ValueError(f"{name}: the shape must be (n, 3), but is {array.shape}")
    return array


def whole_numbers(value: npt.ArrayLike, name: str, kind: Any) -> npt.NDArray[Any]:
    """A flat array of whole numbers that fit into `kind`."""
    try:
        array = np.asarray(value)
    except ValueError as error:
        raise ValueError(f"{name}: {error}") from None
    if array.ndim != 1:
        raise ValueError(f"{name}: the shape must be (n,), but is {array.shape}")
    if array.size == 0:
        return np.zeros(0, dtype=kind)
    if array.dtype.kind not in "iu":
        raise TypeError(f"{name}: whole numbers are needed, but the type is {array.dtype}")
    limits = np.iinfo(kind)
    if array.min() < limits.min or array.max() > limits.max:
        raise ValueError(f"{name}: a number is out of range")
    return np.ascontiguousarray(array, dtype=kind)


def is_sphere(field: str) -> bool:
    """Whether the name of a field is that of the sphere."""
    if field not in FIELDS:
        raise ValueError(f'field: "{field}" is neither hemisphere nor sphere')
    return field == "sphere"


def thread_count(threads: int) -> int:
    """How many threads: not negative."""
    if threads < 0:
        raise ValueError("threads: the number is negative")
    return threads


def path_bytes(path: PathLike) -> bytes:
    """The bytes of a file's name, which need not be text."""
    return os.fsencode(path)


def names(columns: Union[str, Sequence[str]]) -> list[str]:
    """One name or several, as a list without repetitions."""
    given = [columns] if isinstance(columns, str) else list(columns)
    for column in given:
        if not isinstance(column, str):
            raise TypeError(f"columns: names are needed, but one is {column!r}")
    return list(dict.fromkeys(given))
