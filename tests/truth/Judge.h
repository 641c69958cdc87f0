#pragma once

#include "truth/Pieces.h"

#include <lumivane/visibility/PolygonScene.h>

#include <array>
#include <cstddef>
#include <vector>

namespace Lumivane::Truth {

/// What the judge says of a direction.
struct Verdict {
  Visibility::Label label;  ///< 0, 0, 0 for the sky
  double distance = 0.0;    ///< along the direction; 0 for the sky
  int outline = -1;         ///< position in the scene's outlines; -1 for the sky
};

/// Says what single directions meet, by rays: the truth that maps are held against. It shares no
/// code with the engine and stays simple: parities of arcs, planes in wide arithmetic, and a tree
/// of boxes to be quick.
class Judge {
 public:
  explicit Judge(Visibility::PolygonScene newScene, const Tolerances& tolerances = {});

  /// What is seen, found with the tree.
  Verdict seen(const Visibility::Vector& eye, const Visibility::Vector& direction,
               bool twoSided = false) const;
  /// The same without the tree, from all pieces.
  Verdict seenOfAll(const Visibility::Vector& eye, const Visibility::Vector& direction,
                    bool twoSided = false) const;

  const Visibility::PolygonScene& scene() const { return theScene; }
  const Pieces& pieces() const { return thePieces; }

 private:
  struct Box {
    std::array<double, 3> low{};
    std::array<double, 3> high{};
  };
  struct Node {
    Box box;
    int first = 0;  ///< left child, or first place in `order` for a leaf
    int count = 0;  ///< pieces of a leaf; 0 for an inner node, whose children are neighbours
  };
  struct Ray;
  struct Hit;

  void build();
  void split(std::size_t node, std::size_t from, std::size_t to);
  Box boxOf(const Piece& piece) const;
  Real farthestCorner(const Piece& piece, const Ray& ray) const;
  bool meets(const Piece& piece, const Ray& ray, Real& distance) const;
  bool contains(const Piece& piece, const LongVector& normal, const Ray& ray) const;
  template <class Visit>
  void walk(const Ray& ray, const Real& limit, Visit visit) const;
  Verdict verdictOf(const Hit& hit) const;

  Visibility::PolygonScene theScene;
  Pieces thePieces;
  std::vector<std::size_t> layerSizes;
  std::vector<Box> boxes;
  std::vector<int> order;
  std::vector<Node> nodes;
};

}  // namespace Lumivane::Truth
