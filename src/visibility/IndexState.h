#pragma once

#include "kernel/Vec.h"
#include "visibility/IndexArray.h"

#include <lumivane/visibility/SceneIndex.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

namespace Lumivane::Visibility {

/// A node of the bounding volume hierarchy. Children stand side by side.
struct BoxNode {
  float low[3];   ///< rounded down
  float high[3];  ///< rounded up
  /// Inner node: the position of the first child, the second follows it. Leaf: the first polygon.
  std::int32_t first;
  std::int32_t count;  ///< of polygons in a leaf; 0 for an inner node

  bool isLeaf() const { return count > 0; }
};

/// A plane n.x = n.point, seen from the side to which -n points (corners run clockwise there).
struct ScenePlane {
  Kernel::Vec3 normal;  ///< unit vector, Newell's
  Kernel::Vec3 point;   ///< the mean of the corners
};

/// What every look at a scene asks. Polygons are the flat pieces: regions, or the triangles of
/// regions that are not flat. They are numbered in the order of the hierarchy's leaves.
struct IndexState {
  IndexArray<Kernel::Vec3> vertices;  ///< points that polygons use, equal ones once

  IndexArray<std::int32_t>
      cornerOffsets;  ///< of polygon i in the two below; one more than polygons
  IndexArray<std::int32_t> cornerVertices;  ///< positions in `vertices`
  /// The edge that starts at the corner: edges between the same two vertices have one number.
  IndexArray<std::int32_t> cornerEdges;
  /// The edge that starts at the corner is a docking edge, or a diagonal of a region that was cut.
  IndexArray<std::uint8_t> cornerInner;

  IndexArray<ScenePlane> planes;     ///< of polygon i
  IndexArray<double> sizes;          ///< of polygon i: greatest distance between two corners
  IndexArray<std::int32_t> regions;  ///< of polygon i: position in `names->regions`
  IndexArray<std::int32_t> layers;   ///< of polygon i: position in `layerPlanes`
  IndexArray<ScenePlane>
      layerPlanes;  ///< the plane of the layer's first region, by which depth is compared
  IndexArray<std::int32_t> edgeVertices;  ///< two for each edge, the lower vertex first

  IndexArray<BoxNode> nodes;  ///< the first is the root; empty if there are no polygons

  /// For each object (number - 1) its polygons in ascending order:
  /// objectPolygons[objectOffsets[i]]...
  IndexArray<std::int32_t> objectOffsets;
  IndexArray<std::int32_t> objectPolygons;

  std::shared_ptr<const VisibleMap::Names> names;  ///< labels of regions in the scene's order
  std::size_t droppedRegions = 0;
  std::size_t triangulatedRegions = 0;
  std::size_t layersOfSeveral = 0;

  std::shared_ptr<const void> file;  ///< keeps borrowed arrays in memory; null if there are none

  std::size_t polygonCount() const { return planes.size(); }
};

/// Calls visit(name, array) for each array of a state: all that a file of the scene holds of it.
/// What is added here, or changed in its meaning, raises `SceneFile::Version`.
template <class State, class Visit>
void forEachArray(State& state, Visit visit) {
  visit("vertices", state.vertices);
  visit("corner_offsets", state.cornerOffsets);
  visit("corner_vertices", state.cornerVertices);
  visit("corner_edges", state.cornerEdges);
  visit("corner_inner", state.cornerInner);
  visit("planes", state.planes);
  visit("sizes", state.sizes);
  visit("regions", state.regions);
  visit("layers", state.layers);
  visit("layer_planes", state.layerPlanes);
  visit("edge_vertices", state.edgeVertices);
  visit("nodes", state.nodes);
  visit("object_offsets", state.objectOffsets);
  visit("object_polygons", state.objectPolygons);
}

}  // namespace Lumivane::Visibility
