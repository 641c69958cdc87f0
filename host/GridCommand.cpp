#include "Commands.h"
#include "Csv.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "SceneSource.h"

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
#include <streambuf>

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
std::string text(double value) {
  const double tidy = std::round(value * 1e9) / 1e9 + 0.0;
  char buffer[32];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, tidy);
  return {buffer, end.ptr};
}

std::string text(const Vector& v) { return text(v[0]) + "," + text(v[1]) + "," + text(v[2]); }

// The polygons of the scene; numbers that point at nothing are left to the shot to tell of.
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

// Twice the area that the polygon covers of the ground, positive if it runs counterclockwise as
// seen from above.
double twiceGroundArea(const Polygon& polygon) {
  double sum = 0.0;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const Vector& a = polygon[i];
    const Vector& b = polygon[(i + 1) % polygon.size()];
    sum += a[0] * b[1] - a[1] * b[0];
  }
  return sum;
}

bool coversGround(const Polygon& polygon, double x, double y) {
  bool inside = false;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const Vector& a = polygon[i];
    const Vector& b = polygon[(i + 1) % polygon.size()];
    if ((a[1] <= y) == (b[1] <= y)) continue;
    if (a[0] + (b[0] - a[0]) * ((y - a[1]) / (b[1] - a[1])) > x) inside = !inside;
  }
  return inside;
}

// The polygon's plane as z over the ground: through the mean of its points, with Newell's normal.
double heightAt(const Polygon& polygon, double x, double y) {
  Vector normal{};
  Vector mean{};
  for (size_t i = 0; i < polygon.size(); ++i) {
    const Vector& a = polygon[i];
    const Vector& b = polygon[(i + 1) % polygon.size()];
    for (size_t k = 0; k < 3; ++k) {
      const size_t l = (k + 1) % 3;
      const size_t m = (k + 2) % 3;
      normal[k] += (a[l] - b[l]) * (a[m] + b[m]);
      mean[k] += a[k] / static_cast<double>(polygon.size());
    }
  }
  return mean[2] - (normal[0] * (x - mean[0]) + normal[1] * (y - mean[1])) / normal[2];
}

// Whether an eye looking up sees a polygon's back first: then it stands inside a body. A polygon
// is seen where its points run clockwise, from below that is as seen from above counterclockwise.
class Inside {
 public:
  explicit Inside(const std::vector<Polygon>& all) {
    for (const Polygon& polygon : all)
      if (std::abs(twiceGroundArea(polygon)) > 0.0)
        flats.push_back({&polygon, boundsOf({polygon}), twiceGroundArea(polygon) < 0.0});
  }
  explicit Inside(std::vector<Polygon>&&) = delete;  // the polygons are looked at in place

  bool contains(const Vector& eye) const {
    double nearest = std::numeric_limits<double>::infinity();
    bool isBack = false;
    for (const Flat& flat : flats) {
      const Box& box = flat.box;
      if (eye[0] < box.x.low || eye[0] > box.x.high || eye[1] < box.y.low || eye[1] > box.y.high ||
          box.z.high < eye[2])
        continue;
      if (!coversGround(*flat.polygon, eye[0], eye[1])) continue;
      const double z = heightAt(*flat.polygon, eye[0], eye[1]);
      if (z <= eye[2] || z >= nearest) continue;
      nearest = z;
      isBack = flat.isBackFromBelow;
    }
    return isBack;
  }

 private:
  struct Flat {
    const Polygon* polygon;
    Box box;
    bool isBackFromBelow;
  };
  std::vector<Flat> flats;
};

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

std::string table(const GridOptions& options, const std::vector<Polygon>& all, const Box& box) {
  const std::vector<Polygon> none;
  const Inside inside(options.skipInside ? all : none);
  const std::vector<double> columns = places(box.x, options.spacing);
  const std::vector<double> rows = places(box.y, options.spacing);
  const double z = (options.groundGiven ? options.ground : box.z.low) + options.height;
  std::string result = "name,eye,forward,up\n";
  for (size_t row = 0; row < rows.size(); ++row) {
    for (size_t column = 0; column < columns.size(); ++column) {
      const Vector eye = {columns[column], rows[row], z};
      if (inside.contains(eye)) continue;
      const std::string name =
          "r" + number(row + 1, rows.size()) + "c" + number(column + 1, columns.size());
      for (const double heading : options.headings) {
        const Look look = lookOf(options.look, heading);
        const std::string suffix = options.headings.size() > 1 ? "h" + text(heading) : "";
        result += csvRecord({name + suffix, text(eye), text(look.forward), text(look.up)}) + "\n";
      }
    }
  }
  return result;
}

// While it lives, what is told on standard output, as of an import, goes to standard error: the
// table alone is to stand on standard output.
class ToldOnError {
 public:
  ToldOnError() : before(std::cout.rdbuf(std::cerr.rdbuf())) {}
  ToldOnError(const ToldOnError&) = delete;
  ToldOnError& operator=(const ToldOnError&) = delete;
  ~ToldOnError() { std::cout.rdbuf(before); }

 private:
  std::streambuf* before;
};

SourcedScene readScene(const GridOptions& options) {
  if (!options.out.empty()) return loadScene(options.scene, options.import);
  const ToldOnError told;
  return loadScene(options.scene, options.import);
}

}  // namespace

void runGrid(const GridOptions& options) {
  OutputNames(sourceFiles(options.scene)).add(options.out);
  const SourcedScene source = readScene(options);
  const std::vector<Polygon> all = polygons(source.scene.scene());
  const Box box = boundsOf(all);
  checkGrid(options, box);
  const std::string result = table(options, all, box);
  if (options.out.empty())
    std::cout << result;
  else
    Session::writeFile(options.out, result);
}

}  // namespace Lumivane::Host
