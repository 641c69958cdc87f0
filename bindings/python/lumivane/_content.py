"""Names of content: equal for equal content, whatever process or machine makes them."""

from __future__ import annotations

import hashlib
from typing import Any

import numpy as np


def content_name(*values: Any) -> str:
    """The SHA-256 of values in hexadecimal digits: of texts, bytes, numbers, None, arrays, and
    tuples, lists and dicts of them. Pickles are no help here, for equal values may have several."""
    digest = hashlib.sha256()
    for value in values:
        _feed(digest, value)
    return digest.hexdigest()


def _feed(digest: Any, value: Any) -> None:
    if isinstance(value, np.ndarray):
        _head(digest, f"array {value.dtype.str} {value.shape}")
        digest.update(np.ascontiguousarray(value).data)
    elif isinstance(value, bytes):
        _head(digest, f"bytes {len(value)}")
        digest.update(value)
    elif isinstance(value, str):
        text = value.encode("utf-8", "surrogateescape")
        _head(digest, f"text {len(text)}")
        digest.update(text)
    elif isinstance(value, (tuple, list)):
        _head(digest, f"list {len(value)}")
        for item in value:
            _feed(digest, item)
    elif isinstance(value, dict):
        _feed(digest, sorted(value.items()))
    elif value is None or isinstance(value, (bool, int, float)):
        _head(digest, f"{type(value).__name__} {value!r}")
    else:
        raise TypeError(f"the content of {type(value).__name__} has no name")


def _head(digest: Any, text: str) -> None:
    digest.update(text.encode() + b"\n")
