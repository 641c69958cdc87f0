"""When the sun shines."""

import csv
import datetime
import math
import os
import subprocess

import numpy as np
import pytest

import lumivane
from lumivane import _core

if not _core.has_sun:
    pytest.skip("built without libnova", allow_module_level=True)

DELFT = {"latitude": 52.0, "longitude": 4.36, "time_zone": "Europe/Amsterdam"}
EYES = np.array([[-5.3, -1.37, 3.4], [0.0, 0.0, 1.6], [6.0, 1.0, 1.6]])


@pytest.fixture(scope="module")
def open_field():
    """A tile far below the eye: nothing stands in front of the sky."""
    points = [[-1, -1, 0], [1, -1, 0], [1, 1, 0], [-1, 1, 0]]
    return lumivane.Scene.from_arrays(points, [[0, 1, 2, 3]])


# Of the astronomical almanac's formulas in low precision (0.01 degrees between 1950 and 2050).
def sun_at(moment, latitude, longitude):
    """The direction to the sun: x to the east, y to the north, z up."""
    days = moment / 86400.0 - 10957.5
    anomaly = math.radians(357.528 + 0.9856003 * days)
    ecliptic = math.radians(
        280.460 + 0.9856474 * days + 1.915 * math.sin(anomaly) + 0.020 * math.sin(2 * anomaly)
    )
    tilt = math.radians(23.439 - 4e-7 * days)
    right = math.atan2(math.cos(tilt) * math.sin(ecliptic), math.cos(ecliptic))
    declination = math.asin(math.sin(tilt) * math.sin(ecliptic))
    sidereal = math.radians(280.46062 + 360.98564737 * days + longitude)
    hour, phi = sidereal - right, math.radians(latitude)
    return (
        -math.cos(declination) * math.sin(hour),
        math.sin(declination) * math.cos(phi) - math.cos(declination) * math.cos(hour) * math.sin(phi),
        math.sin(declination) * math.sin(phi) + math.cos(declination) * math.cos(hour) * math.cos(phi),
    )  # fmt: skip


def test_an_open_field_has_the_sun_from_its_rise_to_its_set(open_field):
    sun = open_field.sun_hours((0, 0, 5), "2026-01-01", "2026-12-31", **DELFT)
    assert sun.hours.shape == sun.daylight.shape == (1, 365) and len(sun) == 1
    assert np.allclose(sun.hours, sun.daylight, atol=1e-9)
    assert sun.days[0] == np.datetime64("2026-01-01") and sun.days[-1] == np.datetime64("2026-12-31")
    # cos H = -tan(latitude) tan(declination): the declination is +-23.437 degrees at the solstices.
    half = math.degrees(math.acos(-math.tan(math.radians(52)) * math.tan(math.radians(23.437))))
    assert sun.hours.max() == pytest.approx(half / 7.5, abs=0.01)
    assert sun.hours.min() == pytest.approx(24 - half / 7.5, abs=0.01)
    assert abs(int(sun.hours[0].argmax()) - 171) <= 1  # June 21
    assert sun.hours.mean() == pytest.approx(12.0, abs=0.1)  # the Earth is slower in summer
    assert set(sun.spans["object"]) == {0}


def test_between_two_changes_rays_meet_what_the_span_says(street):
    sun = street.sun_hours(EYES, "2026-05-03", **DELFT)
    spans = sun.spans
    assert set(spans["eye"]) == {0, 1, 2} and len(spans) > 20 and set(spans["object"]) != {0}
    for span in spans:
        if span["end"] - span["start"] < 120:
            continue  # less than the rough sun here is off
        middle = (span["start"] + span["end"]) / 2
        direction = sun_at(middle, DELFT["latitude"], DELFT["longitude"])
        seen = street.seen_in(EYES[span["eye"]], [direction])[0]
        assert seen["object"] == span["object"], span


def test_hours_are_sums_of_spans(street):
    sun = street.sun_hours(EYES, "2026-03-20", "2026-03-22", **DELFT)
    spans = sun.spans
    for eye in range(len(EYES)):
        for day in range(3):
            mine = spans[(spans["eye"] == eye) & (spans["day"] == day)]
            lengths = mine["end"] - mine["start"]
            assert np.all(lengths > 0) and np.all(mine["end"][:-1] <= mine["start"][1:] + 1e-3)
            assert lengths.sum() == pytest.approx(3600 * sun.daylight[eye, day], abs=0.05)
            assert lengths[mine["object"] == 0].sum() == pytest.approx(3600 * sun.hours[eye, day], abs=0.05)
    moments = sun.moments(spans["start"])
    assert moments.dtype == np.dtype("datetime64[us]")
    assert np.all(moments.astype("datetime64[D]") >= np.datetime64("2026-03-20"))


def test_a_roof_takes_the_sun_and_its_class_says_so():
    roof = [[-50, -50, 3], [-50, 50, 3], [50, 50, 3], [50, -50, 3]]
    scene = lumivane.Scene.from_arrays(roof, [[0, 1, 2, 3]], labels=["roof"], classes=["Roof"])
    sun = scene.sun_hours((0, 0, 0), "2026-06-21", **DELFT)
    assert 0 < sun.hours[0, 0] < 2  # low at the horizon
    shaded = sun.spans[sun.spans["object"] == 1]
    assert len(shaded) == 1 and scene.classes[shaded["class"][0]] == "Roof"
    assert np.all(sun.spans["class"][sun.spans["object"] == 0] == -1)


def test_north_turns_the_sun(street):
    turned = street.sun_hours(EYES, "2026-05-03", north=(1, 0, 0), **DELFT)
    same = street.sun_hours(EYES, "2026-05-03", north=(0, 2.5, 7), **DELFT)
    by_angle = street.sun_hours(EYES, "2026-05-03", north=0, **DELFT)
    assert np.array_equal(by_angle.spans, turned.spans)
    assert np.allclose(street.sun_hours(EYES, "2026-05-03", north=90.0, **DELFT).hours, same.hours)
    usual = street.sun_hours(EYES, "2026-05-03", **DELFT)
    assert np.array_equal(same.hours, usual.hours)
    assert not np.allclose(turned.hours, usual.hours, atol=0.1)
    assert np.allclose(turned.daylight, usual.daylight, atol=1e-6)


def test_a_lowest_elevation_shortens_the_day(open_field):
    long, short = (open_field.sun_hours((0, 0, 5), "2026-06-21", lowest_elevation=e, **DELFT)
                   for e in (0, 10))  # fmt: skip
    assert short.daylight[0, 0] < long.daylight[0, 0] - 2


def test_time_zones_are_names_hours_and_objects(open_field):
    zoneinfo = pytest.importorskip("zoneinfo")
    place = {"latitude": 52.0, "longitude": 4.36}
    zones = ["Europe/Amsterdam", zoneinfo.ZoneInfo("Europe/Amsterdam"), 1, 2.0,
             datetime.timezone(datetime.timedelta(hours=2))]  # fmt: skip
    suns = [open_field.sun_hours((0, 0, 5), "2026-06-21", time_zone=z, **place) for z in zones]
    for sun in suns[1:]:  # which midnight a day begins at does not matter to its only span
        assert np.allclose(sun.spans["start"], suns[0].spans["start"], atol=1.0)
    # Clocks that go forward on March 29 make a day of 23 hours: noon is an hour later by them.
    sun = open_field.sun_hours((0, 0, 5), "2026-03-28", "2026-03-30", time_zone="Europe/Amsterdam", **place)
    assert len(sun.spans) == 3 and sun.hours.shape == (1, 3)


def test_many_eyes_have_the_values_of_each_alone_from_any_number_of_threads(street):
    many = street.sun_hours(EYES, "2026-05-03", "2026-05-05", threads=3, **DELFT)
    for i, eye in enumerate(EYES):
        one = street.sun_hours(eye, "2026-05-03", datetime.date(2026, 5, 5), threads=1, **DELFT)
        assert np.array_equal(one.hours[0], many.hours[i])
        mine = many.spans[many.spans["eye"] == i]
        for name in ("day", "object", "class", "start", "end"):
            assert np.array_equal(one.spans[name], mine[name])


def test_hours_are_those_of_the_program(program, tmp_path, scenes, street):
    if " sun" not in subprocess.run([os.environ["LUMIVANE_PROGRAM"], "--help"], capture_output=True,
                                    text=True).stdout:  # fmt: skip
        pytest.skip("the program has no sun hours")
    program(
        "sun", scenes / "street.json", "--eye=-5.3,-1.37,3.4", "--latitude", 52, "--longitude",
        4.36, "--time-zone", "Europe/Amsterdam", "--north", 90, "--from", "2026-05-03", "--to",
        "2026-05-05", "--days", tmp_path / "days.csv", "--intervals", tmp_path / "spans.csv",
    )  # fmt: skip
    sun = street.sun_hours(EYES[0], "2026-05-03", "2026-05-05", **DELFT)
    with open(tmp_path / "days.csv", newline="") as file:
        days = list(csv.DictReader(file))
    assert [row["date"] for row in days] == [str(day) for day in sun.days]
    for row, hours, daylight in zip(days, sun.hours[0], sun.daylight[0]):
        assert float(row["sun_hours"]) == pytest.approx(hours, abs=1e-8)
        assert float(row["daylight_hours"]) == pytest.approx(daylight, abs=1e-8)
    with open(tmp_path / "spans.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    assert len(rows) == len(sun.spans)
    for row, span in zip(rows, sun.spans):
        start = datetime.datetime.fromisoformat(row["start"].split(".")[0] + row["start"][-6:])
        assert start.timestamp() == pytest.approx(span["start"], abs=1.01)
        assert (row["state"] == "sun") == (span["object"] == 0)
        assert int(row["object"] or 0) == span["object"]


def test_no_eyes_have_no_hours(street):
    sun = street.sun_hours(np.zeros((0, 3)), "2026-05-03", **DELFT)
    assert sun.hours.shape == (0, 1) and len(sun.spans) == 0


def test_progress_rises_to_one_and_what_it_raises_ends_the_work(street):
    parts = []
    street.sun_hours(np.tile(EYES, (5, 1)), "2026-05-03", progress=parts.append, **DELFT)
    assert parts == sorted(parts) and parts[0] == 0.0 and parts[-1] == 1.0

    def stop(part):
        raise LookupError("enough")

    with pytest.raises(LookupError, match="enough"):
        street.sun_hours(np.tile(EYES, (500, 1)), "2026-01-01", "2026-12-31", progress=stop, **DELFT)


@pytest.mark.parametrize(
    ("arguments", "error", "text"),
    [
        ({"latitude": 91}, ValueError, "latitude"),
        ({"longitude": math.nan}, ValueError, "longitude"),
        ({"north": (0, 0, 1)}, ValueError, "north"),
        ({"north": float("nan")}, ValueError, "north: the angle is not finite"),
        ({"first": "2026-02-30"}, ValueError, 'first: "2026-02-30" is no day'),
        ({"first": 20260503}, TypeError, "first: a day is needed"),
        ({"first": datetime.datetime(2026, 5, 3)}, TypeError, "first: a day is needed"),
        ({"last": "2026-05-02"}, ValueError, "last: 2026-05-02 is before the first day"),
        ({"first": "1800-05-03"}, ValueError, "1900"),
        ({"time_zone": "Europe/Nowhere"}, ValueError, 'there is none called "Europe/Nowhere"'),
        ({"time_zone": 25}, ValueError, "time_zone: clocks are less than 24 hours"),
        ({"time_zone": None}, TypeError, "time_zone: a name"),
        ({"lowest_elevation": 100}, ValueError, "elevation"),
        ({"eyes": np.zeros((2, 2))}, ValueError, r"eyes: the shape must be \(n, 3\)"),
        ({"eyes": (0, 0, math.nan)}, ValueError, "the eye is not finite"),
        ({"threads": -1}, ValueError, "threads: the number is negative"),
    ],
)
def test_wrong_arguments_are_refused(street, arguments, error, text):
    with pytest.raises(error, match=text):
        street.sun_hours(**{"eyes": EYES, "first": "2026-05-03", **DELFT, **arguments})
