#include "check/FarCoordinates.h"

#include "kernel/Vec.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

// Coordinates far from the origin have few bits left for what is small. The loss is computed from
// the scene's extent and place before a shot is taken, since afterwards it looks like a fault of
// the picture.
namespace Lumivane::Check {
namespace {

using Kernel::Vec3;

// Half of the last of the 24 bits of a number just below a power of two.
constexpr double RoundingShare = 0x1p-24;

std::string lengthText(double length) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", length);
  return text;
}

// Corners that happen to be exact in single precision do not save the points that a shot puts
// between them, but a little more can be borne then.
constexpr double BorneByExactCorners = 10.0;

struct Reach {
  double largest = 0.0;   // coordinate, of any sign
  double shortest = 0.0;  // edge; 0 if there is none
  double rounded = 0.0;   // the most by which a coordinate is rounded

  // By how much single precision rounds at most where the region lies.
  double rounding() const { return largest * RoundingShare; }
  // The share of the shortest edge that rounding takes.
  double loss() const {
    if (!(shortest > 0.0)) return 0.0;
    return std::max(rounded, rounding() / BorneByExactCorners) / shortest;
  }
};

void takeCoordinate(Reach& reach, double value) {
  if (!(std::abs(value) <= reach.largest)) reach.largest = std::abs(value);  // keeps no number
  reach.rounded =
      std::max(reach.rounded, std::abs(value - static_cast<double>(static_cast<float>(value))));
}

// Edges that count as too short anyway, and are reported as such, say nothing about the distance.
void takeEdge(Reach& reach, Vec3 a, Vec3 b) {
  const double length = Kernel::distance(a, b);
  if (length < SceneChecker::ShortestEdge) return;
  if (reach.shortest == 0.0 || length < reach.shortest) reach.shortest = length;
}

// The corners are gathered in a list that is kept for its memory.
Reach reachOf(const Geometry::Region& region, const Geometry::Points3d::Vector& points,
              std::vector<Vec3>& corners) {
  Reach reach;
  corners.clear();
  for (const int number : itemsOf(region.getPoints())) {
    if (!isNumberOf(number, points.size())) continue;
    const Geometry::Point3d* const point = points[static_cast<size_t>(number) - 1];
    if (point == nullptr) continue;
    corners.push_back({point->getX(), point->getY(), point->getZ()});
    for (const double value : {point->getX(), point->getY(), point->getZ()})
      takeCoordinate(reach, value);
  }
  for (size_t i = 0; i < corners.size(); ++i)
    takeEdge(reach, corners[i], corners[(i + 1) % corners.size()]);
  return reach;
}

}  // namespace

std::optional<Finding> findFarCoordinates(Scene::Scene3D& scene) {
  if (scene.getObjects() == nullptr || scene.getPoints() == nullptr) return std::nullopt;
  const auto& points = itemsOf(scene.getPoints()->getPoints());
  size_t regionCount = 0;
  size_t farCount = 0;
  Reach worst;
  std::vector<Vec3> corners;
  Finding finding{Severity::Warning,
                  "far-coordinates",
                  "",
                  0,
                  0,
                  "",
                  "move the scene near the origin; lumivane shot --center moves scene and eye"};
  for (const Scene::Object* const object : itemsOf(scene.getObjects()->getObjects())) {
    if (object == nullptr || object->getRegions() == nullptr) continue;
    const auto& regions = itemsOf(object->getRegions()->getRegions());
    for (size_t r = 0; r < regions.size(); ++r) {
      if (regions[r] == nullptr) continue;
      ++regionCount;
      const Reach reach = reachOf(*regions[r], points, corners);
      if (!(reach.largest <= SceneChecker::LargestCoordinate)) continue;  // an error
      if (!(reach.loss() > SceneChecker::Rounding)) continue;
      ++farCount;
      if (!(reach.loss() > worst.loss())) continue;
      worst = reach;
      finding.object = object->getId();
      finding.region = static_cast<int>(r + 1);
    }
  }
  if (farCount == 0) return std::nullopt;
  finding.text = "its corners lie up to " + lengthText(worst.largest) +
                 " from the origin, where single precision, in which polygons are computed, rounds "
                 "by up to " +
                 lengthText(worst.rounding()) + "; its shortest edge is " +
                 lengthText(worst.shortest) + "; " + std::to_string(farCount) + " of " +
                 std::to_string(regionCount) + " regions lie too far";
  return finding;
}

}  // namespace Lumivane::Check
