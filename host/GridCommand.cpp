#include "Commands.h"
#include "Csv.h"
#include "ExactGrid.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "ProgressBar.h"
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
#include <lumivane/session/Text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <limits>
#include <optional>
#include <streambuf>
#include <utility>

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
double tidy(double value) {
  const double rounded = std::round(value * 1e9) / 1e9 + 0.0;
  return std::isfinite(rounded) ? rounded : value;
}
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
  if (!std::isfinite(options.height.value_or(0.0))) throw HostError("--height", "is not finite");
  if (!std::isfinite(options.ground)) throw HostError("--ground", "is not finite");
  if (!(box.x.low <= box.x.high)) throw HostError(options.scene, "has no polygon to stand on");
  if (!options.on.empty()) return;
  const double eyes = (std::floor((box.x.high - box.x.low) / options.spacing) + 1.0) *
                      (std::floor((box.y.high - box.y.low) / options.spacing) + 1.0);
  if (!(eyes <= MostEyes))
    throw HostError("--spacing", text(options.spacing) + " makes more than " + text(MostEyes) +
                                     " eyes over the scene");
}

// What became of the places of a grid, for standard error.
struct PlaceCounts {
  size_t all = 0;
  size_t footless = 0;  // nothing is below them
  size_t inside = 0;    // inside a body or under the ground
};

bool isOnSurfaces(const GridOptions& options) {
  return !options.above.empty() || !options.on.empty();
}

// The views from one place, one for each heading.
class ViewMaker {
 public:
  ViewMaker(const GridOptions& theOptions, const SourcedScene& source, const ExactGrid& theExact)
      : options(theOptions), exact(theExact), inside(insideTestOf(source)) {}

  // Whether an eye stands inside a body or under the ground; counts it.
  bool isInside(const Vector& eye) {
    // Eyes on faces stand where the faces are.
    const bool is = inside->isInside(eye) || (options.on.empty() && exact.isUnderGround(eye));
    if (is) ++counts.inside;
    return is;
  }

  void addGround(GridView view) {
    view.isInside = isInside(view.eye);
    if (view.isInside && options.skipInside) return;
    const std::string name = view.name;
    for (const double heading : options.headings) {
      const Look look = lookOf(options.look, heading);
      view.name = name + (options.headings.size() > 1 ? "h" + text(heading) : "");
      view.forward = tidy(look.forward);
      view.up = tidy(look.up);
      views.push_back(view);
    }
  }

  void addFace(GridView view) {
    view.isInside = isInside(view.eye);
    if (!view.isInside || !options.skipInside) views.push_back(std::move(view));
  }

  PlaceCounts counts;
  std::vector<GridView> views;

 private:
  const GridOptions& options;
  const ExactGrid& exact;
  std::unique_ptr<const Check::InsideTest> inside;
};

void addGroundViews(const GridOptions& options, const Box& box, const ExactGrid& exact,
                    ViewMaker& maker) {
  const std::vector<double> columns = places(box.x, options.spacing);
  const std::vector<double> rows = places(box.y, options.spacing);
  const double level = options.groundGiven ? options.ground : box.z.low;
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  for (size_t row = 0; row < rows.size(); ++row) {
    if (show) show(100.0 * static_cast<double>(row) / static_cast<double>(rows.size()));
    for (size_t column = 0; column < columns.size(); ++column) {
      ++maker.counts.all;
      GridView view;
      double z = level;
      if (!options.above.empty()) {
        // At the place that stands in the table.
        const auto foot = exact.footAt(tidy(columns[column]), tidy(rows[row]));
        if (!foot) {
          ++maker.counts.footless;
          continue;
        }
        z = foot->z;
        view.object = foot->object;
        view.face = foot->face;
        view.className = foot->className;
      }
      view.name = "r" + number(row + 1, rows.size()) + "c" + number(column + 1, columns.size());
      view.eye = tidy({columns[column], rows[row], z + options.height.value_or(0.0)});
      view.row = row + 1;
      view.column = column + 1;
      maker.addGround(std::move(view));
    }
  }
}

void addFaceViews(const ExactGrid& exact, ViewMaker& maker) {
  const std::vector<FacePlace> found = exact.facePlaces();
  size_t place = 0;
  for (size_t i = 0; i < found.size(); ++i) {
    const FacePlace& at = found[i];
    const bool isSameFace =
        i > 0 && found[i - 1].objectNumber == at.objectNumber && found[i - 1].face == at.face;
    place = isSameFace ? place + 1 : 1;
    GridView view;
    view.name = "o" + std::to_string(at.objectNumber) + "f" + std::to_string(std::max(at.face, 0)) +
                "p" + std::to_string(place);
    view.eye = tidy(at.eye);
    view.forward = tidy(at.forward);
    view.up = tidy(at.up);
    view.object = at.object;
    view.face = at.face;
    view.className = at.className;
    ++maker.counts.all;
    maker.addFace(std::move(view));
  }
}

void report(const GridOptions& options, const PlaceCounts& counts) {
  const std::string all = " of " + std::to_string(counts.all) + " places ";
  if (counts.footless > 0)
    std::cerr << "lumivane: " << counts.footless << all << "have nothing below them (--above "
              << options.above << ") and are left out\n";
  if (counts.inside > 0)
    std::cerr << "lumivane: " << counts.inside << all << "are inside a body or under the ground"
              << (options.skipInside ? " and are left out\n"
                                     : ": 1 in the column inside; --skip-inside leaves them out\n");
}

std::string textCell(const std::string& text, const GridOptions& options) {
  return options.csvSafe ? Session::csvSafe(text) : text;
}

std::string table(const GridOptions& options, const std::vector<GridView>& views) {
  const bool isOnFaces = !options.on.empty();
  const bool hasObjects = isOnSurfaces(options);
  std::string result = "name,eye,forward,up";
  result += isOnFaces ? "" : ",row,column,cell";
  result += hasObjects ? ",inside,object,face,class\n" : ",inside\n";
  for (const GridView& view : views) {
    std::vector<std::string> fields = {view.name, text(view.eye), text(view.forward),
                                       text(view.up)};
    if (!isOnFaces) {
      fields.push_back(std::to_string(view.row));
      fields.push_back(std::to_string(view.column));
      fields.push_back(text(options.spacing));
    }
    fields.push_back(view.isInside ? "1" : "0");
    if (hasObjects) {
      fields.push_back(textCell(view.object, options));
      fields.push_back(view.face > 0 ? std::to_string(view.face) : "");
      fields.push_back(textCell(Session::utf8Text(view.className), options));
    }
    result += csvRecord(fields) + "\n";
  }
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
  if (!options.height && options.on.empty())
    throw ArgumentError("--height", "is needed, but for eyes on faces (--on)");
  OutputNames names(sourceFiles(options.scene, options.import));
  names.add("--output", options.out);
  names.add("--shares", options.shares);
  if (!options.shares.empty()) names.add("the journal", options.shares + ".rows");
  const SourcedScene source = readScene(options);
  const Box box = boundsOf(polygons(source.scene().scene()));
  checkGrid(options, box);
  ExactGrid exact(options, source);
  ViewMaker maker(options, source, exact);
  if (options.on.empty())
    addGroundViews(options, box, exact, maker);
  else
    addFaceViews(exact, maker);
  if (maker.views.empty()) {
    report(options, maker.counts);
    throw HostError(options.scene,
                    std::string("no eye is left: every place is without a surface below, or inside "
                                "a body") +
                        (maker.counts.footless > 0
                             ? "; --ground Z puts eyes over one level, --above surface over roofs, "
                               "too"
                             : ""));
  }
  const std::string result = table(options, maker.views);
  std::string shares;
  if (!options.shares.empty()) shares = exact.shares(maker.views);
  if (options.out.empty())
    std::cout << result;
  else
    Session::writeFile(options.out, result);
  if (!options.shares.empty()) {
    Session::writeFile(options.shares, shares);
    exact.removeJournal();
  }
  // Last, since after an error there is no table that this could be about.
  report(options, maker.counts);
}

}  // namespace Lumivane::Host
