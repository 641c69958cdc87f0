#include "kernel/RayTree.h"

#include <cmath>
#include <utility>

// Boxes sorted along a Z-order curve in space (G. M. Morton, 1966), groups of four, and above them
// nodes of eight, level by level, as in BoxTree. What decides is rounded in one direction alone:
// the difference to the origin, which keeps the order of numbers, then the float below or above.
namespace Lumivane::Kernel {
namespace {

constexpr double CurveCells = 1 << 20;  // along each axis

// The low 20 bits of a number, with two zeros between any two.
std::uint64_t spread(std::uint64_t bits) {
  bits = (bits | (bits << 32U)) & 0x001F00000000FFFFU;
  bits = (bits | (bits << 16U)) & 0x001F0000FF0000FFU;
  bits = (bits | (bits << 8U)) & 0x100F00F00F00F00FU;
  bits = (bits | (bits << 4U)) & 0x10C30C30C30C30C3U;
  return (bits | (bits << 2U)) & 0x1249249249249249U;
}

// Where on the curve a box stands is a matter of speed alone, so single precision will do.
struct Middle {
  float x, y, z;
};

Middle middleOf(const SpaceBox& box, Vec3 origin) {
  const Vec3 middle = 0.5 * ((box.low - origin) + (box.high - origin));
  return {static_cast<float>(middle.x), static_cast<float>(middle.y), static_cast<float>(middle.z)};
}

std::uint64_t cellOf(float value, double low, double high) {
  const double cell = (static_cast<double>(value) - low) / (high - low) * CurveCells;
  return cell > 0.0 ? static_cast<std::uint64_t>(std::min(cell, CurveCells - 1.0)) : 0U;
}

bool isEmpty(const SpaceBox& box) { return !(box.low.x <= box.high.x); }

constexpr float Infinite = std::numeric_limits<float>::infinity();

float below(double value) { return std::nextafterf(static_cast<float>(value), -Infinite); }

float above(double value) { return std::nextafterf(static_cast<float>(value), Infinite); }

}  // namespace

RayTree::RayTree(std::size_t count, const std::function<SpaceBox(std::size_t)>& boxAt) {
  order = alongCurve(count, boxAt);
  if (order.empty()) return;
  addGroups(boxAt);
  while (nodes.size() - levels.back() > 1) addLevel(levels.back(), nodes.size() - levels.back());
}

std::vector<std::uint32_t> RayTree::alongCurve(std::size_t count,
                                               const std::function<SpaceBox(std::size_t)>& boxAt) {
  std::vector<Middle> middles;
  std::vector<std::uint32_t> positions;
  middles.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const SpaceBox box = boxAt(i);
    if (isEmpty(box)) continue;
    if (positions.empty()) origin = 0.5 * box.low + 0.5 * box.high;
    take(all, box);
    positions.push_back(static_cast<std::uint32_t>(i));
    middles.push_back(middleOf(box, origin));
  }
  const Vec3 low = all.low - origin;
  const Vec3 high = all.high - origin;
  std::vector<std::pair<std::uint64_t, std::uint32_t>> keys;
  keys.reserve(positions.size());
  for (std::size_t k = 0; k < positions.size(); ++k)
    keys.emplace_back(spread(cellOf(middles[k].x, low.x, high.x)) |
                          (spread(cellOf(middles[k].y, low.y, high.y)) << 1U) |
                          (spread(cellOf(middles[k].z, low.z, high.z)) << 2U),
                      positions[k]);
  std::sort(keys.begin(), keys.end());
  for (std::size_t k = 0; k < keys.size(); ++k) positions[k] = keys[k].second;
  return positions;
}

// Lanes that nothing is set in are empty, so that no ray comes in.
void RayTree::addLane(std::size_t lane, const SpaceBox& box) {
  if (lane == 0) {
    nodes.emplace_back();
    for (std::size_t axis = 0; axis < 3; ++axis) {
      std::fill_n(nodes.back().low[axis], Lanes, Infinite);
      std::fill_n(nodes.back().high[axis], Lanes, -Infinite);
    }
  }
  const double low[3] = {box.low.x, box.low.y, box.low.z};
  const double high[3] = {box.high.x, box.high.y, box.high.z};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    nodes.back().low[axis][lane] = below(low[axis]);
    nodes.back().high[axis][lane] = above(high[axis]);
  }
}

void RayTree::addGroups(const std::function<SpaceBox(std::size_t)>& boxAt) {
  levels.push_back(0);
  const std::size_t groups = (order.size() + GroupSize - 1) / GroupSize;
  nodes.reserve(groups / (Lanes - 1) + MostLevels);
  for (std::size_t group = 0; group < groups; ++group) {
    SpaceBox box;
    for (std::size_t k = group * GroupSize; k < groupEnd(group); ++k) take(box, boxAt(order[k]));
    addLane(group % Lanes, {box.low - origin, box.high - origin});
  }
}

// One lane for each of `count` nodes from `first` on.
void RayTree::addLevel(std::size_t first, std::size_t count) {
  levels.push_back(nodes.size());
  for (std::size_t k = 0; k < count; ++k) {
    const Node child = nodes[first + k];
    SpaceBox box;
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      take(box, {{child.low[0][lane], child.low[1][lane], child.low[2][lane]},
                 {child.high[0][lane], child.high[1][lane], child.high[2][lane]}});
    addLane(k % Lanes, box);
  }
}

void RayTree::findAbove(const Node& node, const double (&point)[3], bool (&isWanted)[Lanes]) {
  for (std::size_t lane = 0; lane < Lanes; ++lane)
    isWanted[lane] = (static_cast<double>(node.low[0][lane]) <= point[0]) &
                     (static_cast<double>(node.high[0][lane]) >= point[0]) &
                     (static_cast<double>(node.low[1][lane]) <= point[1]) &
                     (static_cast<double>(node.high[1][lane]) >= point[1]) &
                     (static_cast<double>(node.high[2][lane]) >= point[2]);
}

// Between which distances the line is in each box: first the nearer, then the farther of each pair
// of sides (T. L. Kay, J. T. Kajiya, Ray Tracing Complex Scenes, 1986).
void RayTree::findAlong(const Node& node, const Line& line, double (&in)[Lanes],
                        double (&out)[Lanes]) {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  std::fill_n(in, Lanes, 0.0);
  std::fill_n(out, Lanes, infinite);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double slope = line.direction[axis];
    const double from = line.from[axis];
    if (slope == 0.0) {
      for (std::size_t lane = 0; lane < Lanes; ++lane) {
        const bool isBetween = (static_cast<double>(node.low[axis][lane]) - line.margin <= from) &
                               (static_cast<double>(node.high[axis][lane]) + line.margin >= from);
        out[lane] = isBetween ? out[lane] : -infinite;
      }
      continue;
    }
    const float* const near = slope > 0.0 ? node.low[axis] : node.high[axis];
    const float* const far = slope > 0.0 ? node.high[axis] : node.low[axis];
    const double margin = slope > 0.0 ? line.margin : -line.margin;
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
      in[lane] = std::max(in[lane], (static_cast<double>(near[lane]) - margin - from) / slope);
      out[lane] = std::min(out[lane], (static_cast<double>(far[lane]) + margin - from) / slope);
    }
  }
}

}  // namespace Lumivane::Kernel
