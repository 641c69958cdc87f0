// A visibility map as arrays. Each array is made when it is asked for; the package keeps it.

#include "MapBinding.h"

#include "Arrays.h"
#include "Module.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/Text.h>
#include <lumivane/visibility/MapText.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

#include <pybind11/stl.h>

namespace py = pybind11;

namespace Lumivane::Python {

// The rows of arrays: plain members in the order of the names that Python shows.
struct CellRow {
  std::int32_t object;
  std::int32_t face;
  std::int32_t region;
  std::int32_t polygon;
  double solidAngle;
  double viewFactor;
  double minDistance;
  double maxDistance;
  std::int64_t firstRing;
  std::int64_t ringCount;
};

struct EdgeRow {
  std::int32_t from;
  std::int32_t to;
  std::int32_t left;
  std::int32_t right;
  std::int32_t kind;
};

namespace {

using Visibility::ShareDepth;
using Visibility::ShareRow;
using Visibility::VisibleMap;

py::array cellRows(const Map& self) {
  std::vector<CellRow> rows;
  rows.reserve(self.map.cells.size());
  for (const VisibleMap::Cell& cell : self.map.cells)
    rows.push_back({cell.label.object, cell.label.face, cell.label.region,
                    self.scene->placeOf(cell.label), cell.solidAngle, cell.viewFactor,
                    cell.minDistance, cell.maxDistance, static_cast<std::int64_t>(cell.firstRing),
                    static_cast<std::int64_t>(cell.ringCount)});
  return readOnly(rows);
}

py::array edgeRows(const Map& self) {
  std::vector<EdgeRow> rows;
  rows.reserve(self.map.edges.size());
  for (const VisibleMap::Edge& edge : self.map.edges)
    rows.push_back(
        {edge.from, edge.to, edge.left, edge.right, static_cast<std::int32_t>(edge.kind)});
  return readOnly(rows);
}

py::array ringOffsets(const Map& self) {
  std::vector<std::int64_t> offsets;
  offsets.reserve(self.map.ringOffsets.size());
  for (const std::size_t offset : self.map.ringOffsets)
    offsets.push_back(static_cast<std::int64_t>(offset));
  return readOnly(offsets);
}

template <class Value>
py::list column(const std::vector<ShareRow>& rows, const Value& value) {
  py::list list(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) list[i] = value(rows[i]);
  return list;
}

template <class Value>
py::array numbers(const std::vector<ShareRow>& rows, const Value& value) {
  std::vector<decltype(value(rows[0]))> values;
  values.reserve(rows.size());
  for (const ShareRow& row : rows) values.push_back(value(row));
  return readOnly(values);
}

ShareDepth depthOf(const std::string& rows) {
  if (rows == "total") return ShareDepth::Total;
  if (rows == "class") return ShareDepth::Class;
  if (rows == "object") return ShareDepth::Object;
  if (rows == "face") return ShareDepth::Face;
  if (rows == "region") return ShareDepth::Region;
  throw std::invalid_argument("rows: \"" + rows +
                              "\" is none of total, class, object, face and region");
}

// The columns of a table of shares. What a row does not have is 0, an empty text or not a number.
py::dict table(Map& self, const std::string& depth) {
  constexpr double None = std::numeric_limits<double>::quiet_NaN();
  const bool isSphere = self.map.field == Visibility::Field::Sphere;
  const std::vector<ShareRow> rows = shareRows(self.map, self.shares(), depthOf(depth));
  const auto ofHemisphere = [&](double value) { return isSphere ? None : value; };
  py::dict result;
  result["kind"] = column(rows, [](const ShareRow& row) { return row.kind; });
  result["object"] = numbers(rows, [](const ShareRow& row) { return row.object; });
  result["id"] = column(rows, [](const ShareRow& row) { return row.id; });
  result["face"] = numbers(rows, [](const ShareRow& row) { return row.face; });
  result["region"] = numbers(rows, [](const ShareRow& row) { return row.region; });
  result["source_region"] = numbers(rows, [](const ShareRow& row) { return row.sourceRegion; });
  result["area"] =
      numbers(rows, [&](const ShareRow& row) { return ofHemisphere(row.share.area()); });
  result["view_factor"] =
      numbers(rows, [&](const ShareRow& row) { return ofHemisphere(row.share.viewFactor); });
  result["solid_angle"] = numbers(rows, [](const ShareRow& row) { return row.share.solidAngle; });
  result["hemisphere_share"] =
      numbers(rows, [&](const ShareRow& row) { return ofHemisphere(row.share.hemisphereShare()); });
  result["class"] = column(rows, [](const ShareRow& row) { return row.className; });
  result["visible_fraction"] =
      numbers(rows, [&](const ShareRow& row) { return row.visibleFraction.value_or(None); });
  result["min_distance"] = numbers(rows, [](const ShareRow& row) { return row.share.minDistance; });
  result["max_distance"] = numbers(rows, [](const ShareRow& row) { return row.share.maxDistance; });
  return result;
}

Pictures::MapPictureOptions pictureOptions(const std::string& projection, int width, int height) {
  Pictures::MapPictureOptions options;
  options.width = width;
  options.height = height;
  for (const Pictures::MapProjectionName& entry : Pictures::mapProjections())
    if (projection == entry.name) {
      options.projection = entry.projection;
      return options;
    }
  throw std::invalid_argument("projection: there is none called \"" + projection + "\"");
}

Pictures::MapColors colorsOf(SceneData& scene, const std::string& colorBy) {
  if (colorBy == "object" || scene.isOfArrays()) return Pictures::MapColors();
  if (colorBy != "brush")
    throw std::invalid_argument("color_by: \"" + colorBy + "\" is neither brush nor object");
  return scene.withScene([](const Scene::Scene3D& raw) { return Pictures::MapColors(raw); });
}

std::string svg(const Map& self, const std::string& projection, int width, int height,
                const std::string& colorBy, bool lines, const std::string& title) {
  Pictures::MapPictureOptions options = pictureOptions(projection, width, height);
  options.lines = lines;
  options.title = title;
  const Pictures::MapColors colors = colorsOf(*self.scene, colorBy);
  return Pictures::SvgWriter::write(Pictures::VectorPicture(self.map, colors, options));
}

// The outlines of all cells in pixels of a picture: the cell of each, and its corners.
py::list outlines(const Map& self, const std::string& projection, int width, int height) {
  std::optional<Pictures::VectorPicture> picture;
  {
    const py::gil_scoped_release released;
    Pictures::MapPictureOptions options = pictureOptions(projection, width, height);
    options.lines = false;
    picture.emplace(self.map, Pictures::MapColors(), options);
  }
  py::list result;
  for (const Pictures::VectorPicture::Surface& surface : picture->surfaces())
    for (const Pictures::VectorPicture::Region& region : surface.regions)
      for (const Pictures::VectorPicture::Line& line : region.interior.lines) {
        Array<double> corners({line.size(), std::size_t{2}});
        double* at = corners.mutable_data();
        for (const Pictures::VectorPicture::Point& point : line) {
          *at++ = point.x;
          *at++ = point.y;
        }
        result.append(py::make_tuple(region.number - 1, std::move(corners)));
      }
  return result;
}

std::string json(const Map& self) { return Visibility::MapText::mapJson(self.map); }

}  // namespace

void bindMap(py::module_& module) {
  PYBIND11_NUMPY_DTYPE_EX(CellRow, object, "object", face, "face", region, "region", polygon,
                          "polygon", solidAngle, "solid_angle", viewFactor, "view_factor",
                          minDistance, "min_distance", maxDistance, "max_distance", firstRing,
                          "first_ring", ringCount, "ring_count");
  PYBIND11_NUMPY_DTYPE_EX(EdgeRow, from, "from", to, "to", left, "left", right, "right", kind,
                          "kind");
  const py::call_guard<py::gil_scoped_release> unlocked;
  py::class_<Map>(module, "Map")
      .def_property_readonly("eye", [](const Map& self) { return tupleOf(self.map.eye); })
      .def_property_readonly("forward", [](const Map& self) { return tupleOf(self.map.forward); })
      .def_property_readonly("up", [](const Map& self) { return tupleOf(self.map.up); })
      .def_property_readonly(
          "is_sphere", [](const Map& self) { return self.map.field == Visibility::Field::Sphere; })
      .def_property_readonly("two_sided", [](const Map& self) { return self.map.twoSided; })
      .def_property_readonly("cell_count", [](const Map& self) { return self.map.cells.size(); })
      .def_property_readonly("sky_view_factor",
                             [](Map& self) { return self.shares().sky().viewFactor; })
      .def_property_readonly("sky_solid_angle",
                             [](Map& self) { return self.shares().sky().solidAngle; })
      .def("vertices", [](const Map& self) { return readOnly(self.map.vertices); })
      .def("cells", &cellRows)
      .def("edges", &edgeRows)
      .def("ring_offsets", &ringOffsets)
      .def("ring_vertices", [](const Map& self) { return readOnly(self.map.ringVertices); })
      .def("table", &table, py::arg("rows"))
      .def("svg", &svg, py::arg("projection"), py::arg("width"), py::arg("height"),
           py::arg("color_by"), py::arg("lines"), py::arg("title"), unlocked)
      .def("outlines", &outlines, py::arg("projection"), py::arg("width"), py::arg("height"))
      .def("json", &json, unlocked);
}

}  // namespace Lumivane::Python
