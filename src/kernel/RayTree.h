#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

/// Which of many boxes in space a ray may meet, without asking them all.
namespace Lumivane::Kernel {

/// A box along the axes. Made empty.
struct SpaceBox {
  Vec3 low{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
           std::numeric_limits<double>::infinity()};
  Vec3 high = -low;
};

/// What is not a number is not taken in.
inline void take(SpaceBox& box, const SpaceBox& other) {
  box.low = {std::min(box.low.x, other.low.x), std::min(box.low.y, other.low.y),
             std::min(box.low.z, other.low.z)};
  box.high = {std::max(box.high.x, other.high.x), std::max(box.high.y, other.high.y),
              std::max(box.high.z, other.high.z)};
}

inline void take(SpaceBox& box, Vec3 point) { take(box, SpaceBox{point, point}); }

/// A tree of boxes in space, for rays. Boxes are kept in single precision, rounded outwards, and by
/// small groups, so a box of the tree has a few bytes; who is visited may therefore not be met, but
/// whoever is met is visited.
///
/// It may be asked by any number of threads at a time.
class RayTree {
 public:
  static constexpr std::size_t Lanes = 8;  ///< children of a node

  /// No boxes.
  RayTree() = default;
  /// \param boxAt  gives the box of each position below `count`, of finite numbers up to 1e30; it
  ///               is asked for several times. One that is empty is never visited.
  RayTree(std::size_t count, const std::function<SpaceBox(std::size_t)>& boxAt);

  /// Around all boxes; empty without any.
  const SpaceBox& bounds() const { return all; }

  /// Calls visit(position) for each box over or around a point: all whose x and y hold the point's,
  /// sides included, and which reach at least up to it.
  template <class Visit>
  void visitAbove(Vec3 point, const Visit& visit) const;

  /// Calls visit(position) for each box within `margin` of the ray from + t * direction, t >= 0,
  /// roughly from near to far.
  ///
  /// \param margin  above 0, and more than rounding makes of the coordinates
  /// \param visit   returns up to which t boxes are still wanted from then on
  template <class Visit>
  void visitAlong(Vec3 from, Vec3 direction, double margin, const Visit& visit) const;

 private:
  static constexpr std::size_t GroupSize = 4;
  static constexpr std::size_t MostLevels = 12;

  struct Node {
    float low[3][Lanes], high[3][Lanes];
  };
  struct Place {
    std::size_t level, index;
    double from;  // where a ray comes in
  };
  struct Line {
    double from[3], direction[3], margin;
  };

  std::vector<std::uint32_t> alongCurve(std::size_t count,
                                        const std::function<SpaceBox(std::size_t)>& boxAt);
  void addLane(std::size_t lane, const SpaceBox& box);
  void addGroups(const std::function<SpaceBox(std::size_t)>& boxAt);
  void addLevel(std::size_t first, std::size_t count);
  static void findAbove(const Node& node, const double (&point)[3], bool (&isWanted)[Lanes]);
  static void findAlong(const Node& node, const Line& line, double (&in)[Lanes],
                        double (&out)[Lanes]);

  std::size_t groupEnd(std::size_t group) const {
    return std::min((group + 1) * GroupSize, order.size());
  }

  SpaceBox all;
  Vec3 origin;                       // of the boxes in nodes
  std::vector<std::uint32_t> order;  // positions, neighbours in space next to each other
  std::vector<Node> nodes;           // level by level, those of groups first
  std::vector<std::size_t> levels;   // where each level starts
};

template <class Visit>
void RayTree::visitAbove(Vec3 point, const Visit& visit) const {
  if (nodes.empty()) return;
  const double at[3] = {point.x - origin.x, point.y - origin.y, point.z - origin.z};
  Place places[MostLevels * Lanes];
  std::size_t open = 0;
  places[open++] = {levels.size() - 1, 0, 0.0};
  while (open != 0) {
    const Place place = places[--open];
    bool isWanted[Lanes];
    findAbove(nodes[levels[place.level] + place.index], at, isWanted);
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
      if (!isWanted[lane]) continue;
      const std::size_t child = place.index * Lanes + lane;
      if (place.level != 0)
        places[open++] = {place.level - 1, child, 0.0};
      else
        for (std::size_t k = child * GroupSize; k < groupEnd(child); ++k) visit(order[k]);
    }
  }
}

template <class Visit>
void RayTree::visitAlong(Vec3 from, Vec3 direction, double margin, const Visit& visit) const {
  if (nodes.empty()) return;
  const Line line{{from.x - origin.x, from.y - origin.y, from.z - origin.z},
                  {direction.x, direction.y, direction.z},
                  margin};
  double limit = std::numeric_limits<double>::infinity();
  Place places[MostLevels * Lanes];
  std::size_t open = 0;
  places[open++] = {levels.size() - 1, 0, 0.0};
  while (open != 0) {
    const Place place = places[--open];
    if (place.from > limit) continue;
    double in[Lanes];
    double out[Lanes];
    findAlong(nodes[levels[place.level] + place.index], line, in, out);
    const std::size_t firstOpen = open;
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
      if (!(in[lane] <= out[lane]) || in[lane] > limit) continue;
      const std::size_t child = place.index * Lanes + lane;
      if (place.level == 0) {
        for (std::size_t k = child * GroupSize; k < groupEnd(child); ++k) limit = visit(order[k]);
        continue;
      }
      // The nearest child is to be the last of the open places.
      std::size_t k = open++;
      for (; k > firstOpen && places[k - 1].from < in[lane]; --k) places[k] = places[k - 1];
      places[k] = {place.level - 1, child, in[lane]};
    }
  }
}

}  // namespace Lumivane::Kernel
