#pragma once

#include "GroundSearch.h"
#include "SceneSurfaces.h"

#include <lumivane/visibility/SceneIndex.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Lumivane::Check {
class InsideTest;
}

namespace Lumivane::Host {

/// Whether eyes are under the ground of a scene, as `ground` of `GroundSearch` finds it: from there
/// it is seen from behind, and so not at all. A deck of a bridge is no ground, nor is a surface
/// above an eye that sees the front of the same object, as one under the eaves of a house does. At
/// a place without ground an eye is under it
/// - if the lowest surface there is terrain above the eye that looks down, as the ground surface of
///   a house does,
/// - if a body without a floor stands straight above it, and the eye is lower than that body and
///   the ground around it, or, without such ground, all that stands as near to it as it is wide,
/// - or if it is lower than all ground of the scene.
class UnderGroundTest {
 public:
  /// The index is borrowed.
  explicit UnderGroundTest(const Visibility::SceneIndex& theIndex);
  ~UnderGroundTest();
  UnderGroundTest(const UnderGroundTest&) = delete;
  UnderGroundTest& operator=(const UnderGroundTest&) = delete;
  /// Any number of threads may ask.
  bool isUnder(const Visibility::Vector& eye) const;

 private:
  bool seesFrontOf(int object, const Visibility::Vector& eye) const;
  bool isUnderBodyWithoutFloor(const Visibility::Vector& eye) const;
  bool isBelowAllGround(double z) const;
  bool hasGround() const;
  bool isInBody(const Visibility::Vector& point) const;
  double bottomOf(int object) const;
  double levelOf(int object) const;
  double findLevel(int object) const;

  const Visibility::SceneIndex& index;
  SceneSurfaces surfaces;
  GroundSearch search;
  double lowestTerrain = 0.0;  // of what is terrain by its class; infinite without any
  double lowest = 0.0;         // of the scene; infinite without points
  mutable std::once_flag isSearched;
  mutable bool isGroundFound = false;
  mutable std::once_flag isMade;
  mutable std::unique_ptr<const Check::InsideTest> bodies;
  std::vector<double> bottoms;  // the lowest corner of each object
  mutable std::mutex levelsMutex;
  mutable std::map<int, double> levels;  // that objects stand on, of those that were asked for
};

}  // namespace Lumivane::Host
