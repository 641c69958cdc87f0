#include "Commands.h"
#include "Csv.h"
#include "ExactGrid.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "SceneSource.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <limits>
#include <optional>
#include <streambuf>

// Eyes on a grid, as the table that `lumivane batch` reads.
namespace Lumivane::Host {
namespace {

constexpr double MostEyes = 1e7;
constexpr double RadiansPerDegree = 3.141592653589793 / 180.0;

struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void include(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

struct Box {
  Range x, y, z;
};

using Polygon = std::vector<Vector>;

// Without zeros that a sum of rounded terms leaves, such as 6e-17.
double tidy(double value) { return std::round(value * 1e9) / 1e9 + 0.0; }
Vector tidy(const Vector& v) { return {tidy(v[0]), tidy(v[1]), tidy(v[2])}; }

std::string text(double value) {
  char buffer[32];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, tidy(value));
  return {buffer, end.ptr};
}

std::string text(const Vector& v) { return text(v[0]) + "," + text(v[1]) + "," + text(v[2]); }

// The polygons of the scene; numbers that point at nothing are left to the shot to report.
std::vector<Polygon> polygons(Scene::Scene3D& scene) {
  std::vector<Polygon> result;
  if (scene.getPoints() == nullptr || scene.getObjects() == nullptr) return result;
  const auto& points = *scene.getPoints()->getPoints();
  for (const Scene::Object* object : *scene.getObjects()->getObjects()) {
    if (object == nullptr || object->getRegions() == nullptr) continue;
    for (const Geometry::Region* region : *object->getRegions()->getRegions()) {
      Polygon polygon;
      for (const int number : *region->getPoints()) {
        if (number < 1 || static_cast<size_t>(number) > points.size()) continue;
        const Geometry::Point3d& p = *points[static_cast<size_t>(number - 1)];
        polygon.push_back({p.getX(), p.getY(), p.getZ()});
      }
      result.push_back(std::move(polygon));
    }
  }
  return result;
}

Box boundsOf(const std::vector<Polygon>& polygons) {
  Box box;
  for (const Polygon& polygon : polygons) {
    for (const Vector& p : polygon) {
      box.x.include(p[0]);
      box.y.include(p[1]);
      box.z.include(p[2]);
    }
  }
  return box;
}

// As many places, so far apart, as the range holds, the same way from both ends.
std::vector<double> places(const Range& range, double spacing) {
  const double count = std::floor((range.high - range.low) / spacing) + 1.0;
  const double first = 0.5 * (range.low + range.high - (count - 1.0) * spacing);
  std::vector<double> result;
  for (double i = 0.0; i < count; i += 1.0) result.push_back(first + i * spacing);
  return result;
}

struct Look {
  Vector forward, up;
};

Look lookOf(const std::string& name, double headingDegrees) {
  const double radians = headingDegrees * RadiansPerDegree;
  const Vector level = {std::cos(radians), std::sin(radians), 0.0};
  if (name == "horizontal") return {level, {0, 0, 1}};
  return {{0, 0, name == "up" ? 1.0 : -1.0}, level};
}

std::string number(size_t value, size_t largest) {
  std::string digits = std::to_string(value);
  return digits.insert(0, std::to_string(largest).size() - digits.size(), '0');
}

void checkGrid(const GridOptions& options, const Box& box) {
  if (!(options.spacing > 0.0)) throw HostError("--spacing", "must be greater than 0");
  if (!std::isfinite(options.height)) throw HostError("--height", "is not finite");
  if (!std::isfinite(options.ground)) throw HostError("--ground", "is not finite");
  if (!(box.x.low <= box.x.high)) throw HostError(options.scene, "has no polygon to stand on");
  const double eyes = (std::floor((box.x.high - box.x.low) / options.spacing) + 1.0) *
                      (std::floor((box.y.high - box.y.low) / options.spacing) + 1.0);
  if (!(eyes <= MostEyes))
    throw HostError("--spacing", text(options.spacing) + " makes more than " + text(MostEyes) +
                                     " eyes over the scene");
}

std::vector<GridView> viewsOf(const GridOptions& options, Scene::Scene3D& scene, const Box& box) {
  std::optional<Check::InsideTest> inside;
  if (options.skipInside) inside.emplace(scene);
  const std::vector<double> columns = places(box.x, options.spacing);
  const std::vector<double> rows = places(box.y, options.spacing);
  const double z = (options.groundGiven ? options.ground : box.z.low) + options.height;
  std::vector<GridView> views;
  for (size_t row = 0; row < rows.size(); ++row) {
    for (size_t column = 0; column < columns.size(); ++column) {
      const Vector eye = {columns[column], rows[row], z};
      if (inside && inside->isInside(eye)) continue;
      const std::string name =
          "r" + number(row + 1, rows.size()) + "c" + number(column + 1, columns.size());
      for (const double heading : options.headings) {
        const Look look = lookOf(options.look, heading);
        const std::string suffix = options.headings.size() > 1 ? "h" + text(heading) : "";
        views.push_back({name + suffix, tidy(eye), tidy(look.forward), tidy(look.up)});
      }
    }
  }
  return views;
}

std::string table(const std::vector<GridView>& views) {
  std::string result = "name,eye,forward,up\n";
  for (const GridView& view : views)
    result += csvRecord({view.name, text(view.eye), text(view.forward), text(view.up)}) + "\n";
  return result;
}

// While it lives, what is printed on standard output, as of an import, goes to standard error: the
// table alone is to stand on standard output.
class PrintedOnError {
 public:
  PrintedOnError() : before(std::cout.rdbuf(std::cerr.rdbuf())) {}
  PrintedOnError(const PrintedOnError&) = delete;
  PrintedOnError& operator=(const PrintedOnError&) = delete;
  ~PrintedOnError() { std::cout.rdbuf(before); }

 private:
  std::streambuf* before;
};

SourcedScene readScene(const GridOptions& options) {
  ImportSettings import = options.import;
  // The eyes of a scene file stand in the table in the file's coordinates: batch moves both.
  if (isSceneFile(options.scene)) import.center = false;
  if (!options.out.empty()) return loadScene(options.scene, import);
  const PrintedOnError printed;
  return loadScene(options.scene, import);
}

}  // namespace

void runGrid(const GridOptions& options) {
  OutputNames names(sourceFiles(options.scene, options.import));
  names.add(options.out);
  names.add(options.shares);
  const SourcedScene source = readScene(options);
  const Box box = boundsOf(polygons(source.scene.scene()));
  checkGrid(options, box);
  const std::vector<GridView> views = viewsOf(options, source.scene.scene(), box);
  const std::string result = table(views);
  std::string shares;
  if (!options.shares.empty()) shares = exactShares(options, source.scene, views);
  if (options.out.empty())
    std::cout << result;
  else
    Session::writeFile(options.out, result);
  if (!options.shares.empty()) Session::writeFile(options.shares, shares);
}

}  // namespace Lumivane::Host
