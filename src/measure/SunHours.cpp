// Between two crossings of edges of the map nothing changes. So all crossings of a day are gathered
// first, those a little beside an edge included, and then it is asked once between each two of them
// in which cell the sun stands: a crossing more than needed changes nothing, and how edges meet in
// their ends does not matter.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "measure/SkyCells.h"
#include "measure/SunCrossings.h"

#include <lumivane/measure/SunHours.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec3;
using Visibility::VisibleMap;

constexpr double Degree = Kernel::Pi / 180.0;
constexpr double Beside = 1e-7;  // radians along an edge beyond its end
constexpr double Shortest =
    1e-3;  // seconds: what is less lies between two findings of one crossing

// What stands in the way: an object and the class of its surface.
struct Blocker {
  int object = 0;
  int classNumber = -1;
};
bool operator==(const Blocker& a, const Blocker& b) {
  return a.object == b.object && a.classNumber == b.classNumber;
}

std::vector<Blocker> blockersOf(const VisibleMap& map) {
  std::map<std::pair<int, int>, int> classes;
  if (map.names) {
    const auto& regions = map.names->regions;
    for (size_t i = 0; i < regions.size() && i < map.names->classes.size(); ++i)
      if (map.names->classes[i] >= 0)
        classes[{regions[i].object, regions[i].region}] = map.names->classes[i];
  }
  std::vector<Blocker> result;
  result.reserve(map.cells.size());
  for (const VisibleMap::Cell& cell : map.cells) {
    const auto found = classes.find({cell.label.object, cell.label.region});
    result.push_back({cell.label.object, found == classes.end() ? -1 : found->second});
  }
  return result;
}

// An edge at which something changes.
struct Border {
  Vec3 from;
  Vec3 to;
  SunCrossings::Plane plane;
  double lowestSine = 0.0;  // of the declinations on it
  double highestSine = 0.0;
};

class Days {
 public:
  Days(const VisibleMap& map, const SunPath& thePath, const SunHours::Options& options)
      : cells(map),
        blockers(blockersOf(map)),
        path(thePath),
        crossings(thePath),
        lowest(Kernel::sine(options.lowestElevation * Degree)) {
    if (!(options.lowestElevation >= 0.0 && options.lowestElevation <= 90.0))
      throw std::invalid_argument("the lowest elevation is not from 0 to 90 degrees");
    for (const VisibleMap::Edge& edge : map.edges) addBorder(edge);
  }

  std::vector<SunDay> all() const {
    std::vector<SunDay> result;
    const std::int64_t last = dayNumber(path.last());
    const TimeZone& zone = path.place().zone;
    for (std::int64_t day = dayNumber(path.first()); day <= last; ++day) {
      const double from = zone.momentOf(dateOfDay(day));
      const double to = zone.momentOf(dateOfDay(day + 1));
      if (from < to) result.push_back(dayOf(dateOfDay(day), from, to));
    }
    return result;
  }

 private:
  void addBorder(const VisibleMap::Edge& edge) {
    if (edge.left < 0 || edge.right < 0) return;
    if (blockers[static_cast<size_t>(edge.left)] == blockers[static_cast<size_t>(edge.right)])
      return;
    Border border;
    border.from = cells.vertex(edge.from);
    border.to = cells.vertex(edge.to);
    const Vec3 normal = Kernel::cross(border.from, border.to);
    const double length = Kernel::length3(normal);
    if (!(length > 0.0)) return;
    border.plane = crossings.plane((1.0 / length) * normal);
    std::tie(border.lowestSine, border.highestSine) =
        crossings.declinations(border.from, border.to);
    borders.push_back(border);
  }

  SunDay dayOf(const CivilDate& date, double from, double to) const {
    SunDay day;
    day.date = date;
    const SunCrossings::Span whole = crossings.span(from, to);
    std::vector<double> ends(1, whole.from);
    crossings.addRoots(whole, crossings.plane({0.0, 0.0, 1.0}), lowest, ends);
    ends.push_back(whole.to);
    for (size_t i = 1; i < ends.size(); ++i)
      if (isUp(0.5 * (ends[i - 1] + ends[i]))) addSpans(ends[i - 1], ends[i], day.spans);
    return day;
  }

  bool isUp(double moment) const { return crossings.direction(moment).z > lowest; }

  void addSpans(double from, double to, std::vector<SunSpan>& spans) const {
    if (!(to - from > Shortest)) return;
    std::vector<double> moments = crossingsOf(crossings.span(from, to));
    moments.push_back(from);
    moments.push_back(to);
    std::sort(moments.begin(), moments.end());
    double start = from;
    for (const double moment : moments) {
      if (!(moment - start > Shortest)) continue;
      add(start, moment, spans);
      start = moment;
    }
    if (!spans.empty()) spans.back().end = to;
  }

  void add(double from, double to, std::vector<SunSpan>& spans) const {
    const int cell = cells.cellAt(crossings.direction(0.5 * (from + to)));
    const Blocker blocker = cell < 0 ? Blocker{} : blockers[static_cast<size_t>(cell)];
    const bool goesOn = !spans.empty() && spans.back().end == from &&
                        Blocker{spans.back().object, spans.back().classNumber} == blocker;
    if (goesOn)
      spans.back().end = to;
    else
      spans.push_back({from, to, blocker.object, blocker.classNumber});
  }

  std::vector<double> crossingsOf(const SunCrossings::Span& span) const {
    std::vector<double> result;
    std::vector<double> roots;
    for (const Border& border : borders) {
      if (border.highestSine < span.lowestSine || border.lowestSine > span.highestSine) continue;
      if (!crossings.mayMeet(span, border.plane, border.from, border.to)) continue;
      roots.clear();
      crossings.addRoots(span, border.plane, 0.0, roots);
      for (const double root : roots)
        if (isOn(border, crossings.direction(root))) result.push_back(root);
    }
    return result;
  }

  static bool isOn(const Border& border, Vec3 direction) {
    const Vec3& normal = border.plane.normal;
    return Kernel::dot(Kernel::cross(normal, border.from), direction) >= -Beside &&
           Kernel::dot(Kernel::cross(border.to, normal), direction) >= -Beside;
  }

  SkyCells cells;
  std::vector<Blocker> blockers;
  const SunPath& path;
  SunCrossings crossings;
  double lowest;  // the sine of an elevation
  std::vector<Border> borders;
};

VisibleMap mapOf(const Visibility::SceneIndex& scene, const Visibility::Vector& eye,
                 const SunPath& path, bool twoSided) {
  Visibility::LookOptions how = lookUpwards(path.place());
  how.twoSided = twoSided;
  return scene.look(eye, how);
}

}  // namespace

double SunDay::litSeconds() const {
  double sum = 0.0;
  for (const SunSpan& span : spans)
    if (span.isLit()) sum += span.seconds();
  return sum;
}

double SunDay::daylightSeconds() const {
  double sum = 0.0;
  for (const SunSpan& span : spans) sum += span.seconds();
  return sum;
}

SunHours::SunHours(const VisibleMap& upwards, const SunPath& path, const Options& options)
    : theDays(Days(upwards, path, options).all()) {}

SunHours::SunHours(const VisibleMap& upwards, const SunPath& path)
    : SunHours(upwards, path, Options()) {}

SunHours::SunHours(const Visibility::SceneIndex& scene, const Visibility::Vector& eye,
                   const SunPath& path, bool twoSided)
    : SunHours(mapOf(scene, eye, path, twoSided), path) {}

std::vector<SunMonth> sunMonths(const std::vector<SunDay>& days) {
  std::vector<SunMonth> result;
  for (const SunDay& day : days) {
    if (result.empty() || result.back().year != day.date.year ||
        result.back().month != day.date.month)
      result.push_back({day.date.year, day.date.month, 0, 0.0, 0.0});
    ++result.back().days;
    result.back().litSeconds += day.litSeconds();
    result.back().daylightSeconds += day.daylightSeconds();
  }
  return result;
}

std::vector<SunMonth> SunHours::months() const { return sunMonths(theDays); }

std::vector<SunShade> SunHours::shades() const { return sunShades(theDays); }

std::vector<SunShade> sunShades(const std::vector<SunDay>& days) {
  std::map<std::pair<int, int>, double> sums;
  for (const SunDay& day : days)
    for (const SunSpan& span : day.spans)
      if (!span.isLit()) sums[{span.object, span.classNumber}] += span.seconds();
  std::vector<SunShade> result;
  result.reserve(sums.size());
  for (const auto& [what, seconds] : sums) result.push_back({what.first, what.second, seconds});
  std::stable_sort(result.begin(), result.end(),
                   [](const SunShade& a, const SunShade& b) { return a.seconds > b.seconds; });
  return result;
}

double SunHours::litSeconds() const {
  double sum = 0.0;
  for (const SunDay& day : theDays) sum += day.litSeconds();
  return sum;
}

double SunHours::daylightSeconds() const {
  double sum = 0.0;
  for (const SunDay& day : theDays) sum += day.daylightSeconds();
  return sum;
}

Visibility::LookOptions lookUpwards(const Place& place) {
  Visibility::LookOptions how;
  how.forward = {0.0, 0.0, 1.0};
  how.up = {place.north[0], place.north[1], 0.0};
  return how;
}

}  // namespace Lumivane::Measure
