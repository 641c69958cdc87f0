// A shot as arrays, text and pictures.

#include "ShotBinding.h"

#include "Arrays.h"
#include "Module.h"

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/Text.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

namespace py = pybind11;

namespace Lumivane::Python {

// A polygon of a shot: numbers from 1 as in the shot, and where its corners stand.
struct PolygonRow {
  std::int32_t object;
  std::int32_t face;
  std::int32_t region;
  std::int32_t pen;
  std::int32_t brush;
  std::int64_t firstCorner;
  std::int64_t cornerCount;
};

namespace {

py::array points(const Shot& self) {
  std::vector<double> values;
  Geometry::Points2d* const list = self.taken->shot().getPoints();
  if (list != nullptr)
    for (const Geometry::Point2d* point : *list->getPoints()) {
      values.push_back(point->getX());
      values.push_back(point->getY());
    }
  return readOnly(values).attr("reshape")(-1, 2);
}

template <class Visit>
void forEachPolygon(const Shot& self, const Visit& visit) {
  Geometry::Regions2dInDrawingOrder* const list = self.taken->shot().getRegions();
  if (list == nullptr) return;
  for (const Geometry::Region2d* region : *list->getRegions()) visit(*region);
}

py::array polygons(const Shot& self) {
  std::vector<PolygonRow> rows;
  std::int64_t first = 0;
  forEachPolygon(self, [&](const Geometry::Region2d& region) {
    const auto count = static_cast<std::int64_t>(region.getPoints()->size());
    rows.push_back({region.getObjectNumber(), region.getFaceNumber(),
                    region.getSourceRegionNumber(), region.getPenNumber(), region.getBrushNumber(),
                    first, count});
    first += count;
  });
  return readOnly(rows);
}

// Positions in the points, of all polygons.
py::array corners(const Shot& self) {
  std::vector<std::int32_t> values;
  forEachPolygon(self, [&](const Geometry::Region2d& region) {
    for (const int number : *region.getPoints()) values.push_back(number - 1);
  });
  return readOnly(values);
}

std::vector<std::string> objects(const Shot& self) {
  std::vector<std::string> ids;
  Lumivane::Shot::Objects2d* const list = self.taken->shot().getObjects();
  if (list != nullptr)
    for (const Lumivane::Shot::Object2d* object : *list->getObjects())
      ids.push_back(Session::idText(object->getId()));
  return ids;
}

std::string svg(const Shot& self, int width, int height, const std::string& title) {
  const std::lock_guard<std::mutex> lock(self.scene->sessionMutex());
  Pictures::VectorOptions options;
  options.width = width;
  options.height = height;
  options.title = title;
  return Pictures::SvgWriter::write(Pictures::VectorPicture(self.taken->shot(), options));
}

py::bytes text(const Shot& self) {
  std::string bytes;
  {
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(self.scene->sessionMutex());
    bytes = self.taken->text();
  }
  return bytes;
}

void write(const Shot& self, const std::string& path) {
  const std::lock_guard<std::mutex> lock(self.scene->sessionMutex());
  self.taken->write(path);
}

}  // namespace

void bindShot(py::module_& module) {
  PYBIND11_NUMPY_DTYPE_EX(PolygonRow, object, "object", face, "face", region, "region", pen, "pen",
                          brush, "brush", firstCorner, "first_corner", cornerCount, "corner_count");
  const py::call_guard<py::gil_scoped_release> unlocked;
  py::class_<Shot>(module, "Shot")
      .def_property_readonly("eye", [](const Shot& self) { return tupleOf(self.taken->eye()); })
      .def_property_readonly("is_inside", [](const Shot& self) { return self.taken->isInside(); })
      .def_property_readonly("has_cycle", [](const Shot& self) { return self.taken->hasCycle(); })
      .def_property_readonly("hidden_faces",
                             [](const Shot& self) { return self.taken->hiddenFaces(); })
      .def("points", &points)
      .def("polygons", &polygons)
      .def("corners", &corners)
      .def("objects", &objects)
      .def("text", &text)
      .def("write", &write, py::arg("path"), unlocked)
      .def("svg", &svg, py::arg("width"), py::arg("height"), py::arg("title"), unlocked);
}

}  // namespace Lumivane::Python
