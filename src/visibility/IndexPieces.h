#pragma once

#include "kernel/Vec.h"
#include "visibility/IndexState.h"

#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Visibility {

/// The flat pieces of all regions of a scene, in the scene's order: what an index is sorted from.
struct Pieces {
  std::vector<Kernel::Vec3> points;      ///< equal ones once; some may be in no piece
  std::vector<std::int32_t> offsets{0};  ///< of piece i in the two below
  std::vector<std::int32_t> corners;     ///< positions in `points`
  std::vector<std::uint8_t> inner;       ///< whether the edge that starts there is inner
  std::vector<ScenePlane> planes;        ///< of piece i
  std::vector<double> sizes;             ///< of piece i
  std::vector<std::int32_t> regions;     ///< of piece i: position of its outline
  std::size_t droppedRegions = 0;        ///< that have no normal
  std::size_t triangulatedRegions = 0;   ///< that are not flat

  std::size_t count() const { return planes.size(); }
  std::size_t cornerCount(std::size_t piece) const {
    return static_cast<std::size_t>(offsets[piece + 1] - offsets[piece]);
  }
};

/// Takes a scene's outlines to pieces: repeated corners are left out, outlines without a normal
/// dropped, and those that are not flat cut into triangles, so that every piece is flat.
Pieces makePieces(const PolygonScene& scene, const IndexOptions& options);

}  // namespace Lumivane::Visibility
