#pragma once

#include <lumivane/export.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Check {

/// Looks whether a point lies inside a body of a scene, from where a shot shows nothing of use: the
/// body is seen from behind, so that it is not drawn, and what is visible is what would be without
/// it.
///
/// A point is inside if a ray straight up, and most of fourteen rays all around, meet the back of a
/// polygon first. So a body may be open below, as houses of city models often are, and an eye under
/// a lone surface is inside nothing. A polygon that has another one on its back, as of a two-sided
/// model, counts as seen from its front. Where objects touch, as houses of a row do, the fourteen
/// rays may be those of the object whose back is straight above alone.
class LUMIVANE_EXPORT InsideTest {
 public:
  /// Copies the polygons of the scene, those in front of nobody included. Numbers that point at
  /// nothing are passed over.
  explicit InsideTest(Scene::Scene3D& scene);

  /// Polygons as plain arrays: corner k of polygon i is points[corners[offsets[i] + k]].
  struct Outlines {
    const std::array<double, 3>* points = nullptr;  ///< borrowed
    const std::size_t* offsets = nullptr;           ///< borrowed; one more than polygons
    const int* corners = nullptr;                   ///< borrowed; positions from 0 in `points`
    std::vector<int> objects;                       ///< of polygon i, from 1
    std::shared_ptr<const void> owner;              ///< of what is borrowed; may be null
  };
  /// The same of arrays, which answers as for the scene of these polygons, and copies nothing. The
  /// numbers must point at what is there.
  explicit InsideTest(Outlines outlines);

  InsideTest(const InsideTest&) = delete;
  InsideTest& operator=(const InsideTest&) = delete;
  ~InsideTest();

  /// Whether a point, in scene units, is inside. The first few points are compared with all
  /// polygons; then a tree of some 12 bytes a polygon is made, by which a point takes microseconds.
  /// May be called by several threads at a time.
  bool isInside(const std::array<double, 3>& point) const;

 private:
  class Polygons;

  std::unique_ptr<const Polygons> polygons;
};

}  // namespace Lumivane::Check
