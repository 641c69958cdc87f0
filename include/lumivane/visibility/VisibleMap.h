#pragma once

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/export.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Visibility {

/// The exact partition of all directions of a field into what is seen from one eye point: cells,
/// bounded by arcs of great circles. A plain value: it refers to nothing of the scene.
///
/// Numbers of vertices and cells are positions from 0. Cells are the maximal connected sets of
/// directions in which one region, or the sky, is seen.
struct LUMIVANE_VISIBILITY_EXPORT VisibleMap {
  /// What an edge of the map is.
  enum class EdgeKind {
    Silhouette,  ///< the nearer cell's surface ends here; the other cell lies behind it
    Crease,      ///< an edge that the two regions share
    Inner,       ///< a docking edge, or an edge between two regions of one face
    Crossing,    ///< where two regions run through each other
    Field        ///< the end of the field
  };

  /// One connected set of directions in which one region, or the sky, is seen.
  struct Cell {
    Label label;               ///< 0, 0, 0 for the sky
    double solidAngle = 0.0;   ///< steradian; the whole hemisphere is 2 pi
    double viewFactor = 0.0;   ///< share of the hemisphere weighted by the cosine to forward; 0 for
                               ///< a field that is a sphere
    double minDistance = 0.0;  ///< from the eye, in scene units; 0 for the sky
    double maxDistance = 0.0;  ///< from the eye, in scene units; 0 for the sky
    std::size_t firstRing = 0;  ///< position in `ringOffsets`; the first ring is the outer one
    std::size_t ringCount = 0;  ///< outer ring and holes; 0 if the cell is the whole sphere
  };

  /// An arc of a great circle, less than half of it, between two cells.
  struct Edge {
    int from = 0;    ///< vertex
    int to = 0;      ///< vertex
    int left = -1;   ///< cell on the left as the eye sees it; -1 outside the field
    int right = -1;  ///< cell on the right; -1 outside the field
    EdgeKind kind = EdgeKind::Silhouette;  ///< what it is
  };

  /// What the map knows of the scene's objects and classes; shared by all maps of an index.
  struct Names {
    std::vector<std::string> objectIds;   ///< of object i + 1
    std::vector<std::string> classNames;  ///< as `PolygonScene::classNames`
    std::vector<Label> regions;           ///< all regions of the scene, in its order
    std::vector<int> classes;             ///< of each of `regions`; a position in classNames or -1
  };

  Vector eye{0.0, 0.0, 0.0};        ///< where the eye stands
  Vector forward{1.0, 0.0, 0.0};    ///< unit vector
  Vector up{0.0, 0.0, 1.0};         ///< unit vector, at right angles to forward
  Field field = Field::Hemisphere;  ///< which directions the map holds
  bool twoSided = false;            ///< whether polygons were seen from behind, too

  std::vector<Vector> vertices;  ///< unit vectors in the scene's axes
  std::vector<Cell> cells;       ///< by object, region, then by place; the sky last
  std::vector<std::size_t>
      ringOffsets;  ///< ring r: ringVertices[ringOffsets[r]] up to ringOffsets[r + 1]
  std::vector<int>
      ringVertices;           ///< vertices of the rings, the cell on their left as the eye sees it
  std::vector<Edge> edges;    ///< every edge once
  std::vector<double> alone;  ///< solid angle of object i + 1 if nothing stood in front of it;
                              ///< empty unless asked for
  /// For each of `edges` the edge of the scene that it is a part of, a position in
  /// `SceneIndex::edges()`; -1 for crossings and the end of the field. Empty unless asked for.
  std::vector<int> edgeSources;
  std::shared_ptr<const Names> names;  ///< never null for a map that `look` has made

  /// The vertices of the rings of one cell; the first ring is the outer one.
  std::vector<std::vector<int>> rings(std::size_t cell) const;
  /// The solid angle of the whole field: 2 pi or 4 pi.
  double fieldSolidAngle() const;
};

}  // namespace Lumivane::Visibility
