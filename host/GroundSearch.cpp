// Vertical lines meet surfaces one by one: each search begins a little behind what was met before.
// The index answers with what is seen along a line, so surfaces are met from the side that is seen.
#include "GroundSearch.h"

#include "HostError.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Lumivane::Host {
namespace {

std::vector<std::string> classesOf(const std::string& above) {
  if (above == "surface" || above == "ground") return {};
  if (above == "terrain") return terrainClasses();
  return {above};
}

}  // namespace

GroundSearch::GroundSearch(const Visibility::SceneIndex& theIndex, const SceneSurfaces& theSurfaces,
                           const std::string& above, const std::string& scene)
    : index(theIndex),
      surfaces(theSurfaces),
      isGround(above == "ground"),
      classes(classesOf(above)) {
  if (!classes.empty() && !surfaces.hasAny(classes))
    throw HostError("--above", "no surface of " + scene + " is of the " +
                                   (above == "terrain" ? above : "class \"" + above + "\"") + ": " +
                                   surfaces.classList() + "; surface and ground need none");
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -lowest;
  double largest = 1.0;
  for (const Visibility::Vector& p : surfaces.pieces().points) {
    lowest = std::min(lowest, p[2]);
    highest = std::max(highest, p[2]);
    for (const double value : p) largest = std::max(largest, std::abs(value));
  }
  if (!(lowest <= highest)) lowest = highest = 0.0;
  const double margin = 1.0 + (highest - lowest);
  low = lowest - margin;
  high = highest + margin;
  step = 1e-9 * largest;
}

std::optional<GroundSearch::Hit> GroundSearch::at(double x, double y) const {
  if (isGround) return ground(x, y);
  std::optional<Hit> hit = next(x, y, high, -1.0);
  while (hit && !classes.empty() && !surfaces.isOf(hit->label, classes))
    hit = next(x, y, hit->z - step, -1.0);
  return hit;
}

std::optional<GroundSearch::Hit> GroundSearch::backAbove(const Visibility::Vector& point) const {
  const double x = point[0];
  const double y = point[1];
  std::optional<Hit> lowest;
  for (std::optional<Hit> hit = next(x, y, high, -1.0); hit && isBelow(point, hit->z);
       hit = next(x, y, hit->z - step, -1.0))
    lowest = hit;
  const std::optional<Hit> front = next(x, y, point[2], 1.0);
  return lowest && front && front->z <= lowest->z + step ? std::nullopt : lowest;
}

// The first surface from a height on that looks back: one seen from above on the way down, one seen
// from below on the way up.
std::optional<GroundSearch::Hit> GroundSearch::next(double x, double y, double from,
                                                    double upwards) const {
  const Visibility::Seen seen = index.seenIn({x, y, from}, {{0.0, 0.0, upwards}}).front();
  const double z = from + upwards * seen.distance;
  // A surface on edge, met along it, has no depth of its own.
  if (seen.label.object == 0 || !(z > low && z < high)) return std::nullopt;
  return Hit{z, seen.label};
}

std::optional<GroundSearch::Hit> GroundSearch::ground(double x, double y) const {
  std::optional<Hit> lowest;
  for (std::optional<Hit> hit = next(x, y, high, -1.0); hit; hit = next(x, y, hit->z - step, -1.0))
    if (!surfaces.isOf(hit->label, builtClasses()) && !hasUnderside(x, y, *hit)) lowest = hit;
  return lowest;
}

// Whether a surface of the same object looks down from below it: then both close a body, as a roof
// and the floor of its house do.
bool GroundSearch::hasUnderside(double x, double y, const Hit& top) const {
  for (std::optional<Hit> hit = next(x, y, low, 1.0); hit && hit->z < top.z - step;
       hit = next(x, y, hit->z + step, 1.0))
    if (hit->label.object == top.label.object) return true;
  return false;
}

}  // namespace Lumivane::Host
