#include "kernel/BoxTree.h"

#include <algorithm>
#include <limits>
#include <utility>

// Boxes sorted along a Z-order curve (G. M. Morton, 1966), and above them nodes of eight, level by
// level: a tree without pointers, quick to make, which is all that one shot needs. Eight boxes are
// compared at a time.
namespace Lumivane::Kernel {
namespace {

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double CurveCells = 65536.0;  // along each axis

// The low 16 bits of a number, with a zero between any two.
std::uint32_t spread(std::uint32_t bits) {
  bits = (bits | (bits << 8U)) & 0x00FF00FFU;
  bits = (bits | (bits << 4U)) & 0x0F0F0F0FU;
  bits = (bits | (bits << 2U)) & 0x33333333U;
  return (bits | (bits << 1U)) & 0x55555555U;
}

// The cell of the middle of [low, high] among the cells of [first, last]. What is no number counts
// as the first: where a box stands on the curve is a matter of speed alone.
std::uint32_t cellOf(double low, double high, double first, double last) {
  const double cell = ((low - first) + (high - first)) * 0.5 / (last - first) * CurveCells;
  return cell > 0.0 ? static_cast<std::uint32_t>(std::min(cell, CurveCells - 1.0)) : 0U;
}

// Positions in the order of the curve.
std::vector<std::uint32_t> alongCurve(const std::vector<Box>& boxes) {
  Box all;
  for (const Box& box : boxes) take(all, box);
  std::vector<std::pair<std::uint32_t, std::uint32_t>> keys;
  keys.reserve(boxes.size());
  for (const Box& box : boxes) {
    const std::uint32_t x = cellOf(box.xMin, box.xMax, all.xMin, all.xMax);
    const std::uint32_t y = cellOf(box.yMin, box.yMax, all.yMin, all.yMax);
    keys.emplace_back(spread(x) | (spread(y) << 1U), static_cast<std::uint32_t>(keys.size()));
  }
  std::sort(keys.begin(), keys.end());
  std::vector<std::uint32_t> positions;
  positions.reserve(keys.size());
  for (const auto& key : keys) positions.push_back(key.second);
  return positions;
}

}  // namespace

BoxTree::Node BoxTree::emptyNode() {
  Node node;
  for (std::size_t lane = 0; lane < Lanes; ++lane)
    setLane(node, lane, {NotANumber, NotANumber, NotANumber, NotANumber},
            std::numeric_limits<std::uint32_t>::max());
  return node;
}

void BoxTree::setLane(Node& node, std::size_t lane, const Box& box, std::uint32_t lowest) {
  node.xMin[lane] = box.xMin;
  node.xMax[lane] = box.xMax;
  node.yMin[lane] = box.yMin;
  node.yMax[lane] = box.yMax;
  node.lowest[lane] = lowest;
}

BoxTree::BoxTree(const std::vector<Box>& boxes) {
  if (boxes.empty()) return;
  addLeaves(boxes);
  while (nodes.size() - levels.back() > 1) addLevel(levels.back(), nodes.size() - levels.back());
}

void BoxTree::addLeaves(const std::vector<Box>& boxes) {
  levels.push_back(0);
  const std::vector<std::uint32_t> positions = alongCurve(boxes);
  nodes.reserve(padded(boxes.size()) / (Lanes - 1) + Lanes);
  for (std::size_t k = 0; k < positions.size(); ++k) {
    if (k % Lanes == 0) nodes.push_back(emptyNode());
    setLane(nodes.back(), k % Lanes, boxes[positions[k]], positions[k]);
  }
}

// One lane for each of `count` nodes from `first` on.
void BoxTree::addLevel(std::size_t first, std::size_t count) {
  levels.push_back(nodes.size());
  for (std::size_t k = 0; k < count; ++k) {
    if (k % Lanes == 0) nodes.push_back(emptyNode());
    const Node child = nodes[first + k];
    Box box;
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      take(box, Box{child.xMin[lane], child.xMax[lane], child.yMin[lane], child.yMax[lane]});
    setLane(nodes.back(), k % Lanes, box, *std::min_element(child.lowest, child.lowest + Lanes));
  }
}

// Depth first; the places to come back to are at most Lanes a level. A box is wanted if it passes
// the test, which holds for every box around one that passes it.
template <class IsWanted>
inline std::size_t BoxTree::walk(std::uint32_t limit, std::uint32_t* found,
                                 IsWanted isWanted) const {
  constexpr std::size_t MostLevels = 12;  // 8^11 is more than positions can number
  struct Place {
    std::size_t level, index;
  };
  Place places[MostLevels * Lanes];
  std::size_t open = 0;
  places[open++] = {levels.size() - 1, 0};
  std::size_t count = 0;
  while (open != 0) {
    const Place place = places[--open];
    const Node& node = nodes[levels[place.level] + place.index];
    std::int64_t wanted[Lanes];
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      wanted[lane] =
          isWanted({node.xMin[lane], node.xMax[lane], node.yMin[lane], node.yMax[lane]}) ? 1 : 0;
    // Without branches: each lane is written down, and kept only if it counts.
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
      const std::size_t isKept =
          static_cast<std::size_t>(wanted[lane]) & (node.lowest[lane] < limit);
      if (place.level == 0) {
        found[count] = node.lowest[lane];
        count += isKept;
      } else {
        places[open] = {place.level - 1, place.index * Lanes + lane};
        open += isKept;
      }
    }
  }
  return count;
}

LUMIVANE_LANES std::size_t BoxTree::walkMeeting(const Box& box, std::uint32_t limit,
                                                std::uint32_t* found) const {
  return walk(limit, found, [&box](const Box& other) { return boxesMeet(box, other); });
}

LUMIVANE_LANES std::size_t BoxTree::walkEnclosing(const Box& box, std::uint32_t* found) const {
  return walk(std::numeric_limits<std::uint32_t>::max(), found, [&box](const Box& other) {
    return (other.xMin <= box.xMin) & (other.xMax >= box.xMax) & (other.yMin <= box.yMin) &
           (other.yMax > box.yMax);
  });
}

std::size_t BoxTree::findMeeting(const Box& box, std::uint32_t limit, std::uint32_t* found) const {
  if (nodes.empty()) return 0;
  const std::size_t count = walkMeeting(box, limit, found);
  std::sort(found, found + count);
  return count;
}

std::size_t BoxTree::findEnclosing(const Box& box, std::uint32_t* found) const {
  return nodes.empty() ? 0 : walkEnclosing(box, found);
}

}  // namespace Lumivane::Kernel
