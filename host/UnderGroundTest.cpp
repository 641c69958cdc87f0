// What is under the ground where no ground is modelled is decided by signs that free places do not
// have: to be under a body that is open below, a point half way up to what hangs over it must be
// inside that body. That is so under a house without a floor, and not under a bridge, a canopy or
// eaves.
#include "UnderGroundTest.h"

#include <lumivane/check/InsideTest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

// What has free places under it, though it is no building.
const std::vector<std::string>& bridgeClasses() {
  static const std::vector<std::string> names = {"Bridge", "BridgePart", "BridgeInstallation",
                                                 "BridgeConstructiveElement"};
  return names;
}

// All around, level or a little up, and so close that posts are met: none along an axis or a
// diagonal.
std::vector<Visibility::Vector> directionsAround() {
  constexpr int Count = 180;
  std::vector<Visibility::Vector> result;
  for (int i = 0; i < Count; ++i) {
    const double angle = 2.0 * 3.141592653589793 * (i + 0.37) / Count;
    result.push_back({std::cos(angle), std::sin(angle), i % 2 == 0 ? 0.02 : 0.3});
  }
  return result;
}

// In plan.
struct PlanBox {
  std::array<double, 2> low{std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::infinity()};
  std::array<double, 2> high{-low[0], -low[1]};

  void include(const Visibility::Vector& p) {
    for (std::size_t axis = 0; axis < 2; ++axis) {
      low[axis] = std::min(low[axis], p[axis]);
      high[axis] = std::max(high[axis], p[axis]);
    }
  }
  double width() const { return std::max(high[0] - low[0], high[1] - low[1]); }
  std::array<double, 2> middle() const {
    return {0.5 * (low[0] + high[0]), 0.5 * (low[1] + high[1])};
  }
  bool isWithin(const PlanBox& other, double distance) const {
    for (std::size_t axis = 0; axis < 2; ++axis)
      if (low[axis] > other.high[axis] + distance || high[axis] < other.low[axis] - distance)
        return false;
    return true;
  }
};

// The corners of outline i.
std::vector<Visibility::Vector> cornersOf(const Visibility::PolygonScene& all, std::size_t i) {
  std::vector<Visibility::Vector> result;
  for (std::size_t c = all.offsets[i]; c < all.offsets[i + 1]; ++c)
    result.push_back(all.points[static_cast<std::size_t>(all.corners[c])]);
  return result;
}

}  // namespace

UnderGroundTest::UnderGroundTest(const Visibility::SceneIndex& theIndex)
    : index(theIndex), surfaces(theIndex), search(theIndex, surfaces, "ground", "") {
  lowest = std::numeric_limits<double>::infinity();
  lowestTerrain = lowest;
  const Visibility::PolygonScene& all = surfaces.pieces();
  const std::vector<bool> isOfTerrain = surfaces.areClasses(terrainClasses());
  for (std::size_t i = 0; i < all.labels.size(); ++i) {
    const int number = i < all.classes.size() ? all.classes[i] : -1;
    const bool isTerrain = number >= 0 && isOfTerrain[static_cast<std::size_t>(number)];
    const auto object = static_cast<std::size_t>(std::max(all.labels[i].object, 0));
    if (object >= bottoms.size())
      bottoms.resize(object + 1, std::numeric_limits<double>::infinity());
    for (std::size_t c = all.offsets[i]; c < all.offsets[i + 1]; ++c) {
      const double z = all.points[static_cast<std::size_t>(all.corners[c])][2];
      lowest = std::min(lowest, z);
      bottoms[object] = std::min(bottoms[object], z);
      if (isTerrain) lowestTerrain = std::min(lowestTerrain, z);
    }
  }
}

UnderGroundTest::~UnderGroundTest() = default;

bool UnderGroundTest::isUnder(const Visibility::Vector& eye) const {
  if (!std::isfinite(eye[0]) || !std::isfinite(eye[1]) || !std::isfinite(eye[2])) return false;
  if (const auto ground = search.at(eye[0], eye[1])) {
    if (!search.isBelow(eye, ground->z)) return false;
    const bool isFree =
        surfaces.isOf(ground->label, bridgeClasses()) || seesFrontOf(ground->label.object, eye);
    return !isFree || isBelowAllGround(eye[2]);
  }
  const auto underside = search.lowestUnderside(eye[0], eye[1]);
  if (underside && search.isBelow(eye, underside->z) &&
      surfaces.isOf(underside->label, terrainClasses()))
    return true;
  return isUnderBodyWithoutFloor(eye) || isBelowAllGround(eye[2]);
}

// Nobody under the ground sees its front: what hangs over an eye that does is no ground there.
// Terrain that is marked as such is believed.
bool UnderGroundTest::seesFrontOf(int object, const Visibility::Vector& eye) const {
  if (std::isfinite(lowestTerrain)) return false;
  const std::vector<Visibility::Vector> around = directionsAround();
  const std::vector<Visibility::Seen> fronts = index.seenIn(eye, around);
  const std::vector<Visibility::Seen> both = index.seenIn(eye, around, true);
  for (std::size_t i = 0; i < around.size(); ++i)
    if (fronts[i].label.object == object && both[i].label.object == object &&
        both[i].distance == fronts[i].distance)
      return true;
  return false;
}

bool UnderGroundTest::isUnderBodyWithoutFloor(const Visibility::Vector& eye) const {
  const std::optional<GroundSearch::Hit> top = search.backAbove(eye);
  if (!top) return false;
  const int object = top->label.object;
  const double bottom = bottomOf(object);
  return search.isBelow(eye, bottom) && isInBody({eye[0], eye[1], 0.5 * (bottom + top->z)}) &&
         search.isBelow(eye, levelOf(object));
}

double UnderGroundTest::bottomOf(int object) const {
  return bottoms.at(static_cast<std::size_t>(std::max(object, 0)));
}

bool UnderGroundTest::isInBody(const Visibility::Vector& point) const {
  std::call_once(isMade, [this] {
    const Visibility::PolygonScene& all = surfaces.pieces();
    Check::InsideTest::Outlines outlines;
    outlines.points = all.points.data();
    outlines.offsets = all.offsets.data();
    outlines.corners = all.corners.data();
    for (const Visibility::Label& label : all.labels) outlines.objects.push_back(label.object);
    bodies = std::make_unique<const Check::InsideTest>(std::move(outlines));
  });
  return bodies->isInside(point);
}

double UnderGroundTest::levelOf(int object) const {
  const std::lock_guard<std::mutex> lock(levelsMutex);
  const auto found = levels.find(object);
  return found != levels.end() ? found->second
                               : levels.emplace(object, findLevel(object)).first->second;
}

// The lowest ground around an object, a little outside of each corner, or what stands lowest near
// it. All that is of it counts as near, too.
double UnderGroundTest::findLevel(int object) const {
  constexpr double Outside = 1.02;
  const Visibility::PolygonScene& all = surfaces.pieces();
  PlanBox own;
  std::vector<Visibility::Vector> corners;
  for (std::size_t i = 0; i < all.labels.size(); ++i) {
    if (all.labels[i].object != object) continue;
    for (const Visibility::Vector& corner : cornersOf(all, i)) {
      own.include(corner);
      corners.push_back(corner);
    }
  }
  double level = std::numeric_limits<double>::infinity();
  const std::array<double, 2> middle = own.middle();
  for (const Visibility::Vector& corner : corners) {
    const auto ground = search.at(middle[0] + Outside * (corner[0] - middle[0]),
                                  middle[1] + Outside * (corner[1] - middle[1]));
    if (ground) level = std::min(level, ground->z);
  }
  if (std::isfinite(level)) return level;
  for (std::size_t i = 0; i < all.labels.size(); ++i) {
    PlanBox box;
    double bottom = level;
    for (const Visibility::Vector& corner : cornersOf(all, i)) {
      box.include(corner);
      bottom = std::min(bottom, corner[2]);
    }
    if (box.isWithin(own, own.width())) level = std::min(level, bottom);
  }
  return level;
}

// What is ground is known of classes. Without them it would have to be looked for under each
// surface; so there the eye must be lower than all of the scene.
bool UnderGroundTest::isBelowAllGround(double z) const {
  if (std::isfinite(lowestTerrain)) return z < lowestTerrain;
  return z < lowest && hasGround();
}

// Whether any surface is the ground at its middle. Searched for when it is first asked for, since
// few eyes are that low.
bool UnderGroundTest::hasGround() const {
  std::call_once(isSearched, [this] {
    const Visibility::PolygonScene& all = surfaces.pieces();
    for (std::size_t i = 0; i < all.labels.size() && !isGroundFound; ++i) {
      Visibility::Vector middle{};
      for (std::size_t c = all.offsets[i]; c < all.offsets[i + 1]; ++c)
        for (std::size_t axis = 0; axis < 2; ++axis)
          middle[axis] += all.points[static_cast<std::size_t>(all.corners[c])][axis] /
                          static_cast<double>(all.offsets[i + 1] - all.offsets[i]);
      isGroundFound = search.at(middle[0], middle[1]).has_value();
    }
  });
  return isGroundFound;
}

}  // namespace Lumivane::Host
