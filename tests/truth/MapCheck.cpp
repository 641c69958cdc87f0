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

class RayCheck {
 public:
  RayCheck(const Judge& newJudge, const VisibleMap& newMap)
      : judge(newJudge), map(newMap), locator(newMap) {}

  RayReport run(std::size_t rays, std::uint64_t seed) {
    const std::vector<Vector> directions = directionsOf(rays, seed);
    report.rays = rays;
    double start = processorSeconds();
    std::vector<int> cells;
    cells.reserve(rays);
    for (const Vector& direction : directions) cells.push_back(locator.cellOf(direction));
    report.locateSeconds = processorSeconds() - start;
    start = processorSeconds();
    for (std::size_t i = 0; i < rays; ++i) compare(directions[i], cells[i]);
    report.judgeSeconds = processorSeconds() - start;
    findWorstShare();
    return report;
  }

 private:
  std::vector<Vector> directionsOf(std::size_t count, std::uint64_t seed) const {
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

  void findWorstShare() {
    std::vector<Real> shares(counts.size());
    for (const VisibleMap::Cell& cell : map.cells) {
      const auto object = static_cast<std::size_t>(std::max(0, cell.label.object));
      if (object >= shares.size()) shares.resize(object + 1);
      shares[object] += cell.solidAngle;
    }
    counts.resize(shares.size());
    const Real field = (map.field == Field::Hemisphere ? 2.0L : 4.0L) * Pi;
    const auto rays = static_cast<Real>(report.rays);
    for (std::size_t object = 0; object < shares.size(); ++object) {
      const Real share = std::min(1.0L, shares[object] / field);
      const Real missed = static_cast<Real>(counts[object]) - rays * share;
      // Where few rays are expected, the deviation is that of one ray at least.
      const Real deviation = std::sqrt(std::max(rays * share * (1.0L - share), 1.0L));
      const auto by = static_cast<double>(std::fabs(missed) / deviation);
      if (by <= report.worstShare) continue;
      report.worstShare = by;
      report.worstObject = std::to_string(object);
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

bool checkDirection(const Judge& judge, const VisibleMap& map, const Vector& direction) {
  const MapLocator locator(map);
  const int cell = locator.cellOfAll(direction);
  const Label truth = judge.seenOfAll(map.eye, direction, map.twoSided).label;
  if (cell >= 0 && map.cells[static_cast<std::size_t>(cell)].label == truth) return true;
  return locator.angleToEdge(direction) <= NoMansLand;
}

}  // namespace Lumivane::Truth
