// Who is hidden, and how many pairs may overlap at most.
//
// A face is hidden if the cell of any pair that it is in says so. A cell depends on its two faces
// alone, so the question can be asked face by face, in any order, and has its answer with the first
// cell that says yes. Only the pairs that can say yes need a test. For them each piece of the
// hidden face has all its points in one piece of the other (see containsAll and isRightOfEdge):
//
// - A point counts as inside only if some edge spans its height, the lower end included and the
//   upper one excluded. So the hidden face does not begin below the other one, and ends below where
//   that ends. No rounding is in it: heights are only compared.
// - It must lie right of the crossings with an odd number of edges. An even number of edges of a
//   closed ring spans a height, so it lies right of one of them at least, and left of another. As
//   computed, a crossing is fl(fl(fl(dx * dy) / dyEdge) + x), with |dy| <= |dyEdge| since the edge
//   spans the height, and since rounding keeps order |fl(dx * dy)| <= |fl(dx * dyEdge)|. So it lies
//   between the ends of the edge but for a few roundings, of at most 2^-40 for coordinates up to
//   2^10, and for what dx * dyEdge loses below the smallest normal number, 2^-1075 / |dyEdge| at
//   most. If heights are 0 or at least 2^-900, two that differ do so by 2^-952 at least, and that
//   loss is below 2^-120. With a margin of 2^-30 the box of the other face encloses the hidden one.
//   Outlines that are not like that, or have a coordinate that is not finite, ask for no enclosing
//   along x at all.
//
// So a tree of boxes, asked which of them enclose the face's, finds all faces that could hide it.
// Where nearly everything is hidden those are a sixth of the faces that the box meets, and one of
// the first of them does hide it. Hidden faces are among them, since they hide others all the same.

#include "kernel/HiderSearch.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Kernel {
namespace {

constexpr double Margin = 0x1p-30;
constexpr double LargestCoordinate = 0x1p10;
constexpr double LeastHeight = 0x1p-900;

bool isTameRing(const Ring& ring) {
  for (std::size_t k = 0; k < ring.count; ++k) {
    const double height = std::abs(ring.y[k]);
    // What is no number fails every comparison.
    const bool isOrdinary = std::abs(ring.x[k]) <= LargestCoordinate &&
                            height <= LargestCoordinate && (height == 0.0 || height >= LeastHeight);
    if (!isOrdinary) return false;
  }
  return true;
}

bool areTame(const Rings& rings) {
  for (std::size_t k = 0; k < rings.size(); ++k)
    if (!isTameRing(rings[k])) return false;
  return true;
}

// How many of the ascending values lie below each of others, all together.
std::uint64_t countBelow(const std::vector<double>& ascending, const std::vector<double>& others) {
  std::uint64_t count = 0;
  for (const double value : others)
    count += static_cast<std::uint64_t>(
        std::lower_bound(ascending.begin(), ascending.end(), value) - ascending.begin());
  return count;
}

// How many values of a known list have been added, up to each one: P. M. Fenwick's sums (1994).
class RankSums {
 public:
  explicit RankSums(const std::vector<double>& values) : ascending(values) {
    std::sort(ascending.begin(), ascending.end());
    sums.assign(ascending.size() + 1, 0);
  }

  void add(double value) {
    for (std::size_t rank = below(value) + 1; rank < sums.size(); rank += rank & (~rank + 1))
      ++sums[rank];
    ++added;
  }

  std::uint64_t addedBelow(double value) const { return upTo(below(value)); }
  std::uint64_t addedAbove(double value) const {
    const auto end = std::upper_bound(ascending.begin(), ascending.end(), value);
    return added - upTo(static_cast<std::size_t>(end - ascending.begin()));
  }

 private:
  std::size_t below(double value) const {
    return static_cast<std::size_t>(std::lower_bound(ascending.begin(), ascending.end(), value) -
                                    ascending.begin());
  }
  std::uint64_t upTo(std::size_t rank) const {
    std::uint64_t sum = 0;
    for (; rank != 0; rank &= rank - 1) sum += sums[rank];
    return sum;
  }

  std::vector<double> ascending;
  std::vector<std::uint32_t> sums;
  std::uint64_t added = 0;
};

std::vector<double> sidesOfBoxes(const std::vector<Box>& boxes, double Box::*side) {
  std::vector<double> values;
  values.reserve(boxes.size());
  for (const Box& box : boxes) values.push_back(box.*side);
  return values;
}

std::uint64_t pairCount(std::uint64_t count) { return count < 2 ? 0 : count * (count - 1) / 2; }

// The pairs of which one box ends before the other begins, along one axis.
std::uint64_t pairsApart(const std::vector<Box>& boxes, double Box::*low, double Box::*high) {
  std::vector<double> ends = sidesOfBoxes(boxes, high);
  std::sort(ends.begin(), ends.end());
  return countBelow(ends, sidesOfBoxes(boxes, low));
}

// The pairs that are apart along both axes: each box against those that end left of it.
std::uint64_t pairsApartTwice(const std::vector<Box>& boxes) {
  std::vector<Box> byStart(boxes);
  std::vector<Box> byEnd(boxes);
  std::sort(byStart.begin(), byStart.end(),
            [](const Box& a, const Box& b) { return a.xMin < b.xMin; });
  std::sort(byEnd.begin(), byEnd.end(), [](const Box& a, const Box& b) { return a.xMax < b.xMax; });
  RankSums tops(sidesOfBoxes(boxes, &Box::yMax));
  RankSums bottoms(sidesOfBoxes(boxes, &Box::yMin));
  std::uint64_t count = 0;
  std::size_t ended = 0;
  for (const Box& box : byStart) {
    for (; ended < byEnd.size() && byEnd[ended].xMax < box.xMin; ++ended) {
      tops.add(byEnd[ended].yMax);
      bottoms.add(byEnd[ended].yMin);
    }
    count += tops.addedBelow(box.yMin) + bottoms.addedAbove(box.yMax);
  }
  return count;
}

}  // namespace

bool isHiddenBy(const FaceShapes& shapes, std::size_t face, std::size_t other, PairScan& scan) {
  return face > other ? classifyPair(shapes, face, other, scan).cell == Cell::FirstHidden
                      : classifyPair(shapes, other, face, scan).cell == Cell::SecondHidden;
}

HiderSearch::HiderSearch(const FaceShapes& faceShapes, const std::vector<Box>& boxesOfFaces,
                         const BoxTree& treeOfBoxes)
    : shapes(&faceShapes),
      boxes(&boxesOfFaces),
      tree(&treeOfBoxes),
      isTame(areTame(faceShapes.outlines)) {}

std::uint32_t HiderSearch::hiderOf(std::uint32_t face, PairScan& scan, std::uint32_t* found) const {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  Box box = (*boxes)[face];
  box.xMin = isTame ? box.xMin + Margin : infinite;
  box.xMax = isTame ? box.xMax - Margin : -infinite;
  const std::size_t count = tree->findEnclosing(box, found);
  for (std::size_t k = 0; k < count; ++k)
    if (found[k] != face && isHiddenBy(*shapes, face, found[k], scan)) return found[k];
  return None;
}

// All pairs but those that are apart along an axis, each counted once.
std::uint64_t mostMeetingPairs(const std::vector<Box>& boxes) {
  std::vector<Box> real;
  real.reserve(boxes.size());
  for (const Box& box : boxes) {
    if (!boxesMeet(box, box) && (box.xMin > box.xMax || box.yMin > box.yMax))
      return pairCount(boxes.size());
    if (boxesMeet(box, box)) real.push_back(box);
  }
  return pairCount(real.size()) - pairsApart(real, &Box::xMin, &Box::xMax) -
         pairsApart(real, &Box::yMin, &Box::yMax) + pairsApartTwice(real);
}

}  // namespace Lumivane::Kernel
