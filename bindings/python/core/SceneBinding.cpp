// Scenes: made of files and arrays, looked at from one eye and from many.

#include "Arrays.h"
#include "Factors.h"
#include "ManyEyes.h"
#include "MapBinding.h"
#include "Module.h"
#include "ShotBinding.h"
#include "SunTimes.h"
#include "Waiting.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/session/Faults.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/Text.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

#include <pybind11/functional.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace Lumivane::Python {

// What one direction meets.
struct SeenRow {
  std::int32_t object;
  std::int32_t face;
  std::int32_t region;
  std::int32_t polygon;
  double distance;
};

// One region of a scene: numbers from 1, the class from 0, or -1.
struct RegionRow {
  std::int32_t object;
  std::int32_t face;
  std::int32_t region;
  std::int32_t polygon;
  std::int32_t classNumber;
  std::int32_t cornerCount;
};

namespace {

using ScenePointer = std::shared_ptr<SceneData>;
using Visibility::Vector;

// A look at fewer regions ends sooner than anyone could wait for it, and a thread costs more.
constexpr std::size_t FewRegions = 500;
// To start threads takes longer than to look at fewer than these.
constexpr std::size_t RegionsForThreads = 32;

Importers::ImportOptions importOptions(const std::string& sides, double scale, bool yUp,
                                       bool center, bool allowOutside) {
  Importers::ImportOptions options;
  if (sides == "inside")
    options.sides = Importers::ImportSides::Inside;
  else if (sides == "both")
    options.sides = Importers::ImportSides::Both;
  else if (sides != "outside")
    throw std::invalid_argument("sides: \"" + sides + "\" is none of outside, inside and both");
  options.scale = scale;
  options.yUp = yUp;
  options.center = center;
  options.allowOutside = allowOutside;
  return options;
}

ScenePointer read(const std::vector<std::string>& paths, const std::string& sides, double scale,
                  bool yUp, bool center, bool allowOutside) {
  return SceneData::read(paths, importOptions(sides, scale, yUp, center, allowOutside));
}

ScenePointer ofArrays(const Array<double>& points, const Array<std::int32_t>& corners,
                      const Array<std::int64_t>& offsets, const Array<std::int32_t>& labels,
                      const std::vector<std::string>& ids, const Array<std::int32_t>& classes,
                      const std::vector<std::string>& classNames,
                      const Array<std::int32_t>& places) {
  Visibility::PolygonScene arrays;
  arrays.points = vectorsOf(points);
  arrays.corners = valuesOf(corners);
  for (const std::int64_t offset : valuesOf(offsets))
    arrays.offsets.push_back(static_cast<std::size_t>(offset));
  const std::int32_t* at = labels.data();
  arrays.labels.resize(static_cast<std::size_t>(labels.shape(0)));
  for (Visibility::Label& label : arrays.labels) {
    label = {at[0], at[1], at[2]};
    at += 3;
  }
  arrays.objectIds = ids;
  arrays.classes = valuesOf(classes);
  arrays.classNames = classNames;
  const py::gil_scoped_release released;
  return SceneData::ofArrays(std::move(arrays), valuesOf(places));
}

py::list findings(const std::vector<Check::Finding>& found) {
  py::list result;
  for (const Check::Finding& finding : found)
    result.append(py::make_tuple(finding.severity == Check::Severity::Error ? "error" : "warning",
                                 finding.code, Session::idText(finding.object), finding.region,
                                 finding.face, Session::utf8Text(finding.text), finding.fix,
                                 Session::oneLine(finding.line())));
  return result;
}

py::list check(const ScenePointer& self) {
  std::vector<Check::Finding> found;
  {
    const py::gil_scoped_release released;
    found = self->withScene([](Scene::Scene3D& raw) { return Check::SceneChecker::check(raw); });
  }
  return findings(found);
}

py::list checkFile(const std::string& path) {
  std::vector<Check::Finding> found;
  {
    const py::gil_scoped_release released;
    found = Importers::Importer::isImportable(path)
                ? Check::SceneChecker::check(Importers::Importer::importFile(path).scene.scene())
                : Check::SceneChecker::checkText(Session::readDocument(path));
  }
  return findings(found);
}

// Of the points that polygons use; not numbers if there are none.
py::array bounds(const SceneData& self) {
  constexpr double Infinite = std::numeric_limits<double>::infinity();
  const Visibility::PolygonScene& scene = self.polygons();
  std::vector<Vector> box = {{Infinite, Infinite, Infinite}, {-Infinite, -Infinite, -Infinite}};
  for (const int corner : scene.corners)
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double coordinate = scene.points[static_cast<std::size_t>(corner)][axis];
      box[0][axis] = std::min(box[0][axis], coordinate);
      box[1][axis] = std::max(box[1][axis], coordinate);
    }
  constexpr double None = std::numeric_limits<double>::quiet_NaN();
  if (scene.corners.empty()) box = {{None, None, None}, {None, None, None}};
  return readOnly(box);
}

std::vector<std::string> objects(const SceneData& self) {
  std::vector<std::string> ids;
  for (const std::string& id : self.names().objectIds) ids.push_back(Session::idText(id));
  return ids;
}

std::vector<std::string> classNames(const SceneData& self) {
  std::vector<std::string> names;
  for (const std::string& name : self.names().classNames) names.push_back(Session::utf8Text(name));
  return names;
}

py::array regions(const SceneData& self) {
  const Visibility::PolygonScene& scene = self.polygons();
  const Visibility::VisibleMap::Names& names = self.names();
  std::vector<RegionRow> rows;
  for (std::size_t i = 0; i < names.regions.size(); ++i) {
    const Visibility::Label& label = names.regions[i];
    rows.push_back({label.object, label.face, label.region, self.placeOf(label),
                    i < names.classes.size() ? names.classes[i] : -1,
                    static_cast<std::int32_t>(scene.offsets[i + 1] - scene.offsets[i])});
  }
  return readOnly(rows);
}

py::array offsets(const SceneData& self) {
  std::vector<std::int64_t> values;
  for (const std::size_t offset : self.polygons().offsets)
    values.push_back(static_cast<std::int64_t>(offset));
  return readOnly(values);
}

Visibility::LookOptions lookOptions(bool isSphere, bool twoSided) {
  Visibility::LookOptions options;
  options.field = isSphere ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
  options.twoSided = twoSided;
  return options;
}

std::unique_ptr<Map> look(const ScenePointer& self, const Vector& eye, const Vector& forward,
                          const Vector& up, bool isSphere, bool twoSided, bool alone, int threads,
                          const py::object& progress) {
  Visibility::LookOptions options = lookOptions(isSphere, twoSided);
  options.forward = forward;
  options.up = up;
  options.alone = alone;
  const bool isTiny = self->index().regionCount() < RegionsForThreads;
  options.threads = threads == 0 && isTiny ? 1 : threads;
  auto map = std::make_unique<Map>();
  map->scene = self;
  if (progress.is_none() && self->index().regionCount() < FewRegions) {
    const py::gil_scoped_release released;
    map->map = self->index().look(eye, options);
    return map;
  }
  std::atomic<bool> cancelled{false};
  std::atomic<double> done{0.0};
  options.cancelled = &cancelled;
  options.progress = [&done](double part) { done = part; };
  const auto report = [&] {
    if (!progress.is_none()) progress(done.load());
  };
  report();
  runInterruptibly(
      cancelled, [&] { map->map = self->index().look(eye, options); }, report);
  report();
  return map;
}

py::dict shares(const SceneData& self, const Array<double>& eyes, const Array<double>& forwards,
                const Array<double>& ups, bool isSphere, bool twoSided,
                const std::vector<std::string>& columns, bool byClass, bool sparse, int threads,
                const py::object& progress) {
  ManyEyes many;
  many.eyes = vectorsOf(eyes);
  many.forwards = vectorsOf(forwards);
  many.ups = vectorsOf(ups);
  many.look = lookOptions(isSphere, twoSided);
  many.columns = columns;
  many.byClass = byClass;
  many.sparse = sparse;
  many.threads = threads;
  return sharesOf(self, many, progress);
}

py::dict factors(const SceneData& self, bool twoSided, double tolerance, std::size_t mostPoints,
                 const std::optional<Array<std::int64_t>>& rows, bool isReciprocal, int threads,
                 const py::object& progress) {
  WantedFactors wanted;
  wanted.how.twoSided = twoSided;
  wanted.how.tolerance = tolerance;
  wanted.how.mostPoints = mostPoints;
  if (rows) wanted.rows = valuesOf(*rows);
  wanted.isReciprocal = isReciprocal;
  wanted.threads = threads;
  return factorsOf(self, wanted, progress);
}

Measure::CivilDate dateOf(const std::array<int, 3>& parts) {
  return {parts[0], parts[1], parts[2]};
}

py::dict sunHours(const SceneData& self, const Array<double>& eyes, const std::array<int, 3>& first,
                  const std::array<int, 3>& last, double latitude, double longitude,
                  const Vector& north, const std::vector<std::pair<double, int>>& zone,
                  double lowestElevation, bool twoSided, int threads, const py::object& progress) {
  WantedSun wanted;
  wanted.eyes = vectorsOf(eyes);
  wanted.place.latitude = latitude;
  wanted.place.longitude = longitude;
  wanted.place.north = north;
  std::vector<Measure::TimeZone::Step> steps;
  steps.reserve(zone.size());
  for (const std::pair<double, int>& step : zone) steps.push_back({step.first, step.second});
  wanted.place.zone = Measure::TimeZone(std::move(steps));
  wanted.first = dateOf(first);
  wanted.last = dateOf(last);
  wanted.lowestElevation = lowestElevation;
  wanted.twoSided = twoSided;
  wanted.threads = threads;
  return sunHoursOf(self, wanted, progress);
}

py::array seenIn(const SceneData& self, const Vector& eye, const Array<double>& directions,
                 bool twoSided, int threads) {
  constexpr std::size_t Block = 1024;  // a cancelled call ends after those under way
  const std::vector<Vector> all = vectorsOf(directions);
  std::vector<SeenRow> rows(all.size());
  std::atomic<bool> cancelled{false};
  const auto lookInto = [&](std::size_t block) {
    const auto first = static_cast<std::ptrdiff_t>(block * Block);
    const auto last = std::min(first + static_cast<std::ptrdiff_t>(Block),
                               static_cast<std::ptrdiff_t>(all.size()));
    const std::vector<Vector> some(all.begin() + first, all.begin() + last);
    auto row = rows.begin() + first;
    for (const Visibility::Seen& seen : self.index().seenIn(eye, some, twoSided))
      *row++ = {seen.label.object, seen.label.face, seen.label.region, self.placeOf(seen.label),
                seen.distance};
  };
  self.index().seenIn(eye, {}, twoSided);  // so that a wrong eye fails without directions, too
  runInterruptibly(
      cancelled, [&] { forEach((all.size() + Block - 1) / Block, threads, cancelled, lookInto); });
  return readOnly(rows);
}

std::unique_ptr<Shot> take(const ScenePointer& self, const Vector& eye, const Vector& forward,
                           const std::optional<Vector>& up, bool isNormal, int segments,
                           double maxLength, double mergeDistance, double d1, double d2,
                           std::int64_t limitPoints, std::int64_t limitMemory, bool checkScene) {
  Session::ViewSettings view;
  view.eye = eye;
  view.forward = forward;
  view.up = up ? *up : Session::usualUp(forward);
  view.camera = isNormal ? Base::ViewCameraKind::Normal : Base::ViewCameraKind::Spherical;
  view.segments = segments;
  view.maxLength = maxLength;
  view.mergeDistance = mergeDistance;
  view.d1 = d1;
  view.d2 = d2;
  view.limitPoints = limitPoints;
  view.limitMemory = limitMemory;
  view.checkScene = checkScene;
  return std::make_unique<Shot>(Shot{self, self->take(view)});
}

py::object importReport(const SceneData& self) {
  const auto& report = self.importReport();
  if (!report) return py::none();
  py::dict result;
  result["format"] = report->format;
  result["shift"] = tupleOf(report->shift);
  result["source_polygons"] = report->sourcePolygons;
  result["split_polygons"] = report->splitPolygons;
  result["empty_polygons"] = report->emptyPolygons;
  result["unfilled_polygons"] = report->unfilledPolygons;
  py::dict bodies;
  for (const Importers::OpenBody& body : report->openBodies)
    bodies[py::str(Session::idText(body.object))] = body.openEdges;
  result["open_bodies"] = bodies;
  py::list warnings;
  for (const std::string& warning : report->warnings) warnings.append(Session::oneLine(warning));
  result["warnings"] = warnings;
  return std::move(result);
}

py::bytes classTable(const ScenePointer& self) { return self->classTable(); }

py::bytes text(const ScenePointer& self) {
  std::string bytes;
  {
    const py::gil_scoped_release released;
    bytes =
        self->withScene([](Scene::Scene3D& raw) { return Importers::Importer::sceneText(raw); });
  }
  return bytes;
}

void bindRows(py::module_& module) {
  PYBIND11_NUMPY_DTYPE_EX(SeenRow, object, "object", face, "face", region, "region", polygon,
                          "polygon", distance, "distance");
  PYBIND11_NUMPY_DTYPE_EX(RegionRow, object, "object", face, "face", region, "region", polygon,
                          "polygon", classNumber, "class", cornerCount, "corner_count");
  module.def("check_file", &checkFile, py::arg("path"));
  module.def(
      "input_files",
      [](const std::string& path) {
        py::list files;
        for (const std::string& file : Importers::Importer::inputFiles(path))
          files.append(py::bytes(file));
        return files;
      },
      py::arg("path"));
  module.def(
      "write_file",
      [](const std::string& path, const std::string& text) { Session::writeFile(path, text); },
      py::arg("path"), py::arg("text"), py::call_guard<py::gil_scoped_release>());
}

}  // namespace

void bindScene(py::module_& module) {
  const py::call_guard<py::gil_scoped_release> unlocked;
  bindRows(module);
  py::class_<SceneData, ScenePointer>(module, "Scene")
      .def_static("read", &read, py::arg("paths"), py::arg("sides"), py::arg("scale"),
                  py::arg("y_up"), py::arg("center"), py::arg("allow_outside"), unlocked)
      .def_static("of_text", &SceneData::ofText, py::arg("text"), py::arg("name"),
                  py::arg("classes"), unlocked)
      .def_static("of_arrays", &ofArrays, py::arg("points"), py::arg("corners"), py::arg("offsets"),
                  py::arg("labels"), py::arg("ids"), py::arg("classes"), py::arg("class_names"),
                  py::arg("places"))
      .def("check", &check)
      .def("bounds", &bounds)
      .def("objects", &objects)
      .def("class_names", &classNames)
      .def("regions", &regions)
      .def("points", [](const SceneData& self) { return readOnly(self.polygons().points); })
      .def("corners", [](const SceneData& self) { return readOnly(self.polygons().corners); })
      .def("offsets", &offsets)
      .def("import_report", &importReport)
      .def("text", &text)
      .def("class_table", &classTable)
      .def("content_name", [](const SceneData& self) { return py::bytes(self.contentName()); })
      .def("write", &SceneData::write, py::arg("path"), py::arg("content_name"),
           py::arg("is_whole"), unlocked)
      .def("look", &look, py::arg("eye"), py::arg("forward"), py::arg("up"), py::arg("is_sphere"),
           py::arg("two_sided"), py::arg("alone"), py::arg("threads"), py::arg("progress"))
      .def("shares", &shares, py::arg("eyes"), py::arg("forwards"), py::arg("ups"),
           py::arg("is_sphere"), py::arg("two_sided"), py::arg("columns"), py::arg("by_class"),
           py::arg("sparse"), py::arg("threads"), py::arg("progress"))
      .def("factors", &factors, py::arg("two_sided"), py::arg("tolerance"), py::arg("most_points"),
           py::arg("rows"), py::arg("reciprocal"), py::arg("threads"), py::arg("progress"))
      .def("sun_hours", &sunHours, py::arg("eyes"), py::arg("first"), py::arg("last"),
           py::arg("latitude"), py::arg("longitude"), py::arg("north"), py::arg("zone"),
           py::arg("lowest_elevation"), py::arg("two_sided"), py::arg("threads"),
           py::arg("progress"))
      .def("seen_in", &seenIn, py::arg("eye"), py::arg("directions"), py::arg("two_sided"),
           py::arg("threads"))
      .def("take", &take, py::arg("eye"), py::arg("forward"), py::arg("up"), py::arg("is_normal"),
           py::arg("segments"), py::arg("max_length"), py::arg("merge_distance"), py::arg("d1"),
           py::arg("d2"), py::arg("limit_points"), py::arg("limit_memory"), py::arg("check_scene"),
           unlocked);
}

}  // namespace Lumivane::Python
