"""Maps as pictures and as data of other packages."""

import math
import xml.etree.ElementTree as ElementTree

import numpy as np
import pytest

import lumivane

EYE = (-5.3, -1.37, 3.4)


def test_a_picture_is_svg_of_the_size_asked_for(street):
    view = street.look(EYE)
    root = ElementTree.fromstring(view.svg(width=300, height=200).encode())
    assert root.get("width") == "300" and root.get("height") == "200"
    assert ElementTree.fromstring(view._repr_svg_().encode()).get("height") == "400"
    wide = street.look(EYE, field="sphere").svg(projection="equirectangular", height=100)
    assert ElementTree.fromstring(wide.encode()).get("width") == "200"


def test_choices_of_a_picture_are_checked(street):
    view = street.look(EYE)
    with pytest.raises(ValueError, match='projection: there is none called "globe"'):
        view.svg(projection="globe")
    with pytest.raises(ValueError, match="color_by"):
        view.svg(color_by="age")
    for size in (0, -5, 10**6):
        with pytest.raises(ValueError):
            view.svg(width=size)
    assert view.svg(color_by="object") != view.svg() != view.svg(lines=False)


def test_outlines_on_the_disc_have_the_view_factors_as_areas(street):
    geopandas = pytest.importorskip("geopandas")
    view = street.look(EYE)
    frame = view.to_geodataframe(tolerance=1e-4)
    assert isinstance(frame, geopandas.GeoDataFrame) and len(frame) > 100
    assert frame.geometry.is_valid.mean() > 0.98  # slivers may touch themselves
    assert np.allclose(frame.area / math.pi, frame.view_factor, rtol=0, atol=3e-4)
    assert frame.area.sum() / math.pi == pytest.approx(1.0, abs=2e-3)
    ids = [street.objects[n - 1] if n else "" for n in frame.object]
    assert ids == frame["id"].tolist()


def test_outlines_of_a_sphere_fill_the_rectangle_of_degrees(street):
    pytest.importorskip("geopandas")
    frame = street.look(EYE, field="sphere").to_geodataframe("equirectangular", 0.05)
    low_x, low_y, high_x, high_y = frame.total_bounds
    assert [low_x, low_y, high_x, high_y] == pytest.approx([-180, -90, 180, 90], abs=0.1)
    assert frame.area.sum() == pytest.approx(360 * 180, rel=2e-3)


def test_all_fisheyes_fill_the_unit_disc(square):
    pytest.importorskip("geopandas")
    exact = square.look((0, 0, 0))
    areas = {}
    for projection in ("fisheye", "equidistant"):
        frame = exact.to_geodataframe(projection, 1e-4)
        assert frame.area.sum() == pytest.approx(math.pi, rel=1e-3)
        assert frame.total_bounds == pytest.approx([-1, -1, 1, 1], abs=1e-3)
        areas[projection] = frame.area[0]
    # A square around forward: what lies in the middle is smaller where distances are kept.
    assert 0.3 < areas["equidistant"] / areas["fisheye"] < 0.6


def test_a_hole_belongs_to_the_ring_around_it(square):
    pytest.importorskip("geopandas")
    frame = square.look((0, 0, 0)).to_geodataframe(tolerance=1e-4)
    sky = frame[frame.object == 0].geometry.iloc[0]
    assert len(sky.interiors) == 1 and sky.area == pytest.approx(math.pi * frame.view_factor[1], abs=1e-3)
    with pytest.raises(ValueError, match="tolerance"):
        square.look((0, 0, 0)).to_geodataframe(tolerance=0)


def test_shares_are_a_dataset_along_the_objects(street):
    pytest.importorskip("xarray")
    view = street.look(EYE)
    dataset = view.to_xarray()
    assert dataset.sizes == {"object": len(street.objects)}
    assert np.array_equal(dataset["view_factor"], view.shares["view_factor"][:-1])
    assert dataset.attrs["sky_view_factor"] == view.sky_view_factor
    assert dataset["view_factor"].sum() + view.sky_view_factor == pytest.approx(1)
    name = street.objects[int(np.argmax(view.shares["view_factor"][:-1]))]
    assert float(dataset["view_factor"].sel(object=name)) == view.shares["view_factor"][:-1].max()


def test_tables_go_into_pandas(street):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame(street.look(EYE).shares)
    assert frame.view_factor.sum() == pytest.approx(1) and frame.kind.iloc[-1] == "sky"
