"""When the sun shines."""

from __future__ import annotations

import datetime
import math
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from ._arguments import FloatArray, vector

Day = Union[datetime.date, str, np.datetime64]
Zone = Union[str, float, datetime.tzinfo]

_HOUR = 3600.0
_FIRST_YEAR, _LAST_YEAR = 1900, 2100


class SunHours:
    """When the sun shines on eye points, and what stands in front of it otherwise.

    Made by `Scene.sun_hours`. A day is one of the place's calendar.
    """

    def __init__(self, parts: dict[str, Any], first: datetime.date) -> None:
        self._parts = parts
        self._first = first
        for array in parts.values():
            array.setflags(write=False)

    @property
    def days(self) -> npt.NDArray[np.datetime64]:
        """The days, `datetime64[D]`, shape (days,); those that the place's calendar leaves out, as
        2011-12-30 in Apia, are among them, without hours."""
        return np.datetime64(self._first, "D") + np.arange(self._parts["lit"].shape[1])

    @property
    def hours(self) -> FloatArray:
        """For each eye and day how many hours the sun shines on the eye, shape (eyes, days)."""
        result: FloatArray = self._parts["lit"] / _HOUR
        return result

    @property
    def daylight(self) -> FloatArray:
        """For each eye and day how many hours the sun is above the horizon, or above the lowest
        elevation, shape (eyes, days)."""
        result: FloatArray = self._parts["daylight"] / _HOUR
        return result

    @property
    def spans(self) -> npt.NDArray[np.void]:
        """All times in which nothing changes, a structured array, eye after eye, in their order.

        `eye`: a position in what was given;
        `day`: a position in `days`;
        `object`: {{SunSpan.object}};
        `class`: a position in `Scene.classes`; -1 for none;
        `start`: {{SunSpan.start}};
        `end`: likewise. `moments` turns both into `datetime64`.
        """
        result: npt.NDArray[np.void] = self._parts["spans"]
        return result

    @staticmethod
    def moments(seconds: npt.ArrayLike) -> npt.NDArray[np.datetime64]:
        """Seconds since 1970-01-01 00:00 UTC as `datetime64[us]`, UTC."""
        micros = np.rint(np.asarray(seconds, np.float64) * 1e6).astype(np.int64)
        return micros.astype("datetime64[us]")

    def __len__(self) -> int:
        """How many eyes there are."""
        return len(self._parts["lit"])

    def __repr__(self) -> str:
        eyes, days = self._parts["lit"].shape
        return f"<lumivane.SunHours: {eyes} eyes, {days} days>"


def day_of(value: Day, name: str) -> datetime.date:
    """A day as `datetime.date`."""
    if isinstance(value, datetime.datetime):
        raise TypeError(f"{name}: a day is needed, not a time of one: {value!r}")
    if isinstance(value, datetime.date):
        return value
    if not isinstance(value, (str, np.datetime64)):
        raise TypeError(f"{name}: a day is needed, but it is {value!r}")
    try:
        day = datetime.date.fromisoformat(str(value))
    except ValueError:
        raise ValueError(f'{name}: "{value}" is no day YYYY-MM-DD') from None
    return day


def north_of(value: npt.ArrayLike) -> tuple[float, float, float]:
    """The direction to the north: as given, or at an angle in degrees from x towards y."""
    if isinstance(value, (int, float, np.integer, np.floating)) and not isinstance(value, bool):
        if not math.isfinite(value):
            raise ValueError(f"north: the angle is not finite, but {value}")
        angle = math.radians(float(value))
        return (math.cos(angle), math.sin(angle), 0.0)
    return vector(value, "north")


def steps_of(zone: Zone, first: datetime.date, last: datetime.date) -> list[tuple[float, int]]:
    """How far clocks are ahead of UTC, in seconds, and from when on, for all of some days."""
    if isinstance(zone, (int, float)):
        if not -24 < zone < 24:
            raise ValueError(f"time_zone: clocks are less than 24 hours ahead of UTC, not {zone}")
        return [(0.0, round(zone * _HOUR))]
    if isinstance(zone, str):
        import zoneinfo

        try:
            zone = zoneinfo.ZoneInfo(zone)
        except (zoneinfo.ZoneInfoNotFoundError, ValueError, OSError):
            raise ValueError(f'time_zone: there is none called "{zone}"') from None
    if not isinstance(zone, datetime.tzinfo):
        raise TypeError(f"time_zone: a name, hours or a tzinfo is needed, but it is {zone!r}")
    day = 86400
    low = datetime.date(max(_FIRST_YEAR, first.year), 1, 1)
    high = datetime.date(min(_LAST_YEAR, last.year), 12, 31)
    start = (low - datetime.date(1970, 1, 1)).days * day - 2 * day
    end = (high - datetime.date(1970, 1, 1)).days * day + 3 * day
    steps = [(float(start), _offset(zone, start))]
    for moment in range(start, end, day):
        before, after = moment, moment + day
        if _offset(zone, after) == steps[-1][1]:
            continue
        while after - before > 1:
            middle = (before + after) // 2
            if _offset(zone, middle) == steps[-1][1]:
                before = middle
            else:
                after = middle
        steps.append((float(after), _offset(zone, after)))
    return steps


def _offset(zone: datetime.tzinfo, moment: int) -> int:
    utc = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
    local = (utc + datetime.timedelta(seconds=moment)).astimezone(zone)
    offset = local.utcoffset()
    return 0 if offset is None else round(offset.total_seconds())
