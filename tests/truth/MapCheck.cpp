#include "truth/MapCheck.h"

#include "truth/Builder.h"
#include "truth/MapLocator.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <sstream>

namespace Lumivane::Truth {
namespace {

using Visibility::Field;
using Visibility::Label;
using Visibility::Vector;
using Visibility::VisibleMap;

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

/// The share of the field of each object by its number, the sky's first; at least `count` of them.
std::vector<Real> sharesOf(const VisibleMap& map, std::size_t count) {
  std::vector<Real> shares(count);
  const Real field = (map.field == Field::Hemisphere ? 2.0L : 4.0L) * Pi;
  for (const VisibleMap::Cell& cell : map.cells) {
    const auto object = static_cast<std::size_t>(std::max(0, cell.label.object));
    if (object >= shares.size()) shares.resize(object + 1);
    shares[object] += cell.solidAngle / field;
  }
  for (Real& share : shares) share = std::min(1.0L, share);
  return shares;
}

/// Directions within an angle of an axis.
struct Cone {
  LongVector axis;
  Real height = 2.0L;  ///< 1 less the cosine of the angle; 2 for all directions

  Cone() = default;
  /// Around all that is seen of an object; all directions if it is large.
  Cone(const VisibleMap& map, int object) {
    std::vector<LongVector> corners;
    for (std::size_t i = 0; i < map.cells.size(); ++i)
      if (map.cells[i].label.object == object)
        for (const std::vector<int>& ring : map.rings(i))
          for (const int vertex : ring)
            corners.push_back(wide(map.vertices[static_cast<std::size_t>(vertex)]));
    for (const LongVector& corner : corners) axis = axis + corner;
    if (length(axis) < 0.1L * static_cast<Real>(corners.size()) || corners.empty()) return;
    axis = unit(axis);
    Real least = 1.0L;
    for (const LongVector& corner : corners) least = std::min(least, dot(axis, corner));
    // Cells within half a right angle of the axis lie within the cone of their corners.
    if (least > 0.75L) height = 1.0L - least + 1e-12L;
  }
  Real part() const { return 0.5L * height; }  ///< of the sphere

  Vector direction(Random& random) const {
    if (height >= 2.0L) return random.direction();
    const Real rise = 1.0L - height * random.between(0.0, 1.0);
    const Real turn = 2.0L * Pi * random.between(0.0, 1.0);
    const Real out = std::sqrt(std::max(0.0L, 1.0L - rise * rise));
    const LongVector u = anyNormalTo(axis);
    const LongVector v = cross(axis, u);
    return narrow(axis * rise + u * (out * std::cos(turn)) + v * (out * std::sin(turn)));
  }
};

/// Random directions of the map's field.
std::vector<Vector> directionsOf(const VisibleMap& map, std::size_t count, std::uint64_t seed) {
  Random random(seed);
  std::vector<Vector> directions;
  directions.reserve(count);
  const LongVector forward = wide(map.forward);
  while (directions.size() < count) {
    Vector direction = random.direction();
    if (map.field == Field::Hemisphere && dot(wide(direction), forward) < 0.0L)
      direction = {-direction[0], -direction[1], -direction[2]};
    directions.push_back(direction);
  }
  return directions;
}

class RayCheck {
 public:
  RayCheck(const Judge& newJudge, const VisibleMap& newMap)
      : judge(newJudge), map(newMap), locator(newMap) {}

  RayReport run(std::size_t rays, std::uint64_t seed) {
    const std::vector<Vector> directions = directionsOf(map, rays, seed);
    report.rays = rays;
    double start = processorSeconds();
    std::vector<int> cells;
    cells.reserve(rays);
    for (const Vector& direction : directions) cells.push_back(locator.cellOf(direction));
    report.locateSeconds = processorSeconds() - start;
    start = processorSeconds();
    for (std::size_t i = 0; i < rays; ++i) compare(directions[i], cells[i]);
    report.judgeSeconds = processorSeconds() - start;
    findDeviations();
    return report;
  }

 private:
  Label labelOf(int cell) const {
    return cell < 0 ? Label{-1, -1, -1} : map.cells[static_cast<std::size_t>(cell)].label;
  }

  void compare(const Vector& direction, int cell) {
    const Verdict verdict = judge.seen(map.eye, direction, map.twoSided);
    count(verdict.label);
    if (verdict.label == labelOf(cell)) {
      compareDistance(direction, verdict, cell);
      return;
    }
    // Before anything is called wrong, both are asked again in another way.
    const Label truth = judge.seenOfAll(map.eye, direction, map.twoSided).label;
    const Label found = labelOf(locator.cellOfAll(direction));
    if (truth == found) return;
    const double angle = locator.angleToEdge(direction);
    if (angle <= NoMansLand)
      ++report.nearEdges;
    else
      report.wrong.push_back({direction, truth, found, angle});
  }

  void compareDistance(const Vector& direction, const Verdict& verdict, int number) {
    const VisibleMap::Cell& cell = map.cells[static_cast<std::size_t>(number)];
    const double room = 1e-9 * verdict.distance;
    if (verdict.distance >= cell.minDistance - room && verdict.distance <= cell.maxDistance + room)
      return;
    if (locator.angleToEdge(direction) > NoMansLand) ++report.wrongDistances;
  }

  void count(const Label& label) {
    const auto object = static_cast<std::size_t>(label.object);
    if (object >= counts.size()) counts.resize(object + 1);
    ++counts[object];
  }

  void findDeviations() {
    const std::vector<Real> shares = sharesOf(map, counts.size());
    counts.resize(shares.size());
    const auto rays = static_cast<Real>(report.rays);
    for (std::size_t object = 0; object < shares.size(); ++object) {
      const Real share = shares[object];
      const Real expected = rays * share;
      // Where few rays are expected, the deviation is that of one ray at least.
      const Real deviation = std::sqrt(std::max(expected * (1.0L - share), 1.0L));
      const auto by =
          static_cast<double>((static_cast<Real>(counts[object]) - expected) / deviation);
      report.worstShare = std::max(report.worstShare, std::fabs(by));
      if (expected >= EnoughRays && rays - expected >= EnoughRays)
        report.deviations.push_back({static_cast<int>(object), static_cast<double>(share), by});
    }
  }

  const Judge& judge;
  const VisibleMap& map;
  MapLocator locator;
  RayReport report;
  std::vector<std::size_t> counts;
};

std::ostream& operator<<(std::ostream& out, const Label& label) {
  return out << label.object << '/' << label.face << '/' << label.region;
}

}  // namespace

std::string RayReport::text() const {
  std::ostringstream out;
  out.precision(17);
  out << wrong.size() << " of " << rays << " rays are wrong\n";
  for (std::size_t i = 0; i < std::min<std::size_t>(wrong.size(), 5); ++i) {
    const WrongLabel& one = wrong[i];
    out << "  " << one.direction[0] << ',' << one.direction[1] << ',' << one.direction[2]
        << " sees " << one.truth << ", the map has " << one.map << ", " << one.angleToEdge
        << " rad from an edge\n";
  }
  return out.str();
}

RayReport checkByRays(const Judge& judge, const VisibleMap& map, std::size_t rays,
                      std::uint64_t seed) {
  return RayCheck(judge, map).run(rays, seed);
}

ShareDeviation deviationWithin(const Judge& judge, const VisibleMap& map, int object, double rays,
                               std::size_t most, std::uint64_t seed) {
  const auto number = static_cast<std::size_t>(object);
  const Real share = sharesOf(map, number + 1)[number];
  const bool half = map.field == Field::Hemisphere;
  const Real inSphere = half ? 0.5L * share : share;
  Cone cone(map, object);
  if (inSphere > cone.part()) cone = Cone();  // all but what is in it
  const Real part = inSphere / cone.part();   // of the cone's directions
  const Real wanted = rays * (half ? 2.0L : 1.0L) * cone.part();
  const auto count = static_cast<std::size_t>(
      std::clamp(wanted, std::min(1e5L, static_cast<Real>(most)), static_cast<Real>(most)));
  Random random(seed);
  std::size_t hits = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Vector direction = cone.direction(random);
    if (half && dot(wide(direction), wide(map.forward)) < 0.0L) continue;
    if (judge.seen(map.eye, direction, map.twoSided).label.object == object) ++hits;
  }
  const Real expected = part * static_cast<Real>(count);
  const Real deviation = std::sqrt(std::max(expected * (1.0L - part), 1.0L));
  return {object, static_cast<double>(share),
          static_cast<double>((static_cast<Real>(hits) - expected) / deviation)};
}

std::size_t differencesFromSingle(const Visibility::SceneIndex& index, const VisibleMap& map,
                                  std::size_t rays, std::uint64_t seed) {
  const MapLocator locator(map);
  const std::vector<Vector> directions = directionsOf(map, rays, seed);
  const auto seen = index.seenIn(map.eye, directions, map.twoSided);
  std::size_t differences = 0;
  for (std::size_t i = 0; i < rays; ++i) {
    const int cell = locator.cellOf(directions[i]);
    const bool isSame =
        cell >= 0 && map.cells[static_cast<std::size_t>(cell)].label == seen[i].label;
    if (!isSame && locator.angleToEdge(directions[i]) > NoMansLand) ++differences;
  }
  return differences;
}

bool checkDirection(const Judge& judge, const VisibleMap& map, const Vector& direction) {
  const MapLocator locator(map);
  const int cell = locator.cellOfAll(direction);
  const Label truth = judge.seenOfAll(map.eye, direction, map.twoSided).label;
  if (cell >= 0 && map.cells[static_cast<std::size_t>(cell)].label == truth) return true;
  return locator.angleToEdge(direction) <= NoMansLand;
}

}  // namespace Lumivane::Truth
