#pragma once

#include "support/ShotScene.h"

#include <memory>
#include <string>
#include <vector>

/// Scenes whose view factors are known: see docs/view-factors.md for formulas and sources.
///
/// The eye stands in the origin and z is forward, but in the tilted case.
namespace Lumivane::Test {

struct ClosedForm {
  std::string name;    ///< of the scene and, where it has several, the object
  std::string object;  ///< id of the object that is looked at
  double viewFactor;   ///< of the closed form
  double ofPolygons;   ///< of the polygons that stand for it, by Lambert's sum
};

struct ClosedFormScene {
  std::string name;
  std::vector<std::pair<std::string, PolygonPoints>> polygons;  ///< objects of one region each
  Coordinates forward;
  std::vector<ClosedForm> expected;
};

std::vector<ClosedFormScene> closedFormScenes();

/// The scene with all polygons wound so that an eye in the origin keeps them.
std::unique_ptr<ShotScene> build(const ClosedFormScene& form);

/// J. H. Lambert's sum: the view factor from an element at the origin, facing `forward` (of length
/// 1), to a polygon wholly in front of it.
double lambertSum(const PolygonPoints& polygon, const Coordinates& forward);

/// Sets the limit on the length of pieces, in the picture, up to the object's end.
class PieceLength {
 public:
  explicit PieceLength(double length);
  PieceLength(const PieceLength&) = delete;
  PieceLength& operator=(const PieceLength&) = delete;
  ~PieceLength();

 private:
  double before;
};

/// Sets the distance of points that become one, up to the object's end.
class MergeDistance {
 public:
  explicit MergeDistance(double distance);
  MergeDistance(const MergeDistance&) = delete;
  MergeDistance& operator=(const MergeDistance&) = delete;
  ~MergeDistance();

 private:
  double before;
};

}  // namespace Lumivane::Test
