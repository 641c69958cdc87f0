#include "visibility/BoxHierarchy.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

// A binned build by the surface area heuristic, with a list of tasks in place of calls, so that no
// scene is too deep for the stack. Boxes are rounded outwards to single precision: a ray may test a
// box too many, never one too few.
namespace Lumivane::Visibility {
namespace {

constexpr int MostBins = 16;

// Nodes with few boxes need no more: the bins would be most of the work.
int binsFor(std::size_t boxes) { return boxes <= 16 ? 4 : boxes <= 64 ? 8 : MostBins; }

// From here on nodes are halved: a tree that the heuristic would make deeper gains nothing.
constexpr int DeepestHeuristic = 48;
// A smaller spread of centres is none: its inverse would be beyond a float.
constexpr float LeastSpread = 1e-30F;
constexpr float Infinity = std::numeric_limits<float>::infinity();

// Of four numbers, the last of no meaning, so that all are taken at a time.
struct Bounds {
  float low[4] = {Infinity, Infinity, Infinity, Infinity};
  float high[4] = {-Infinity, -Infinity, -Infinity, -Infinity};

  void add(const float* otherLow, const float* otherHigh) {
    for (int k = 0; k < 4; ++k) {
      low[k] = otherLow[k] < low[k] ? otherLow[k] : low[k];
      high[k] = otherHigh[k] > high[k] ? otherHigh[k] : high[k];
    }
  }
  void add(const Bounds& other) { add(other.low, other.high); }
  // Half of it; in double precision, since squares may be beyond a float.
  double area() const {
    const double x = static_cast<double>(high[0]) - static_cast<double>(low[0]);
    const double y = static_cast<double>(high[1]) - static_cast<double>(low[1]);
    const double z = static_cast<double>(high[2]) - static_cast<double>(low[2]);
    return x * y + y * z + z * x;
  }
};

struct Primitive {
  float low[4];
  float high[4];
  std::int32_t position;

  Primitive(const FloatBox& box, std::int32_t place)
      : low{box.low[0], box.low[1], box.low[2], 0.0F},
        high{box.high[0], box.high[1], box.high[2], 0.0F},
        position(place) {}

  // Twice the centre: comparisons are all that is asked.
  float centre(int axis) const { return low[axis] + high[axis]; }
  void addTo(Bounds& bounds, Bounds& centres) const {
    bounds.add(low, high);
    float middle[4];
    for (int k = 0; k < 4; ++k) middle[k] = centre(k);
    centres.add(middle, middle);
  }
};

struct Task {
  std::size_t node;
  std::size_t begin;
  std::size_t end;
  Bounds centres;
  int depth;
};

struct Split {
  int axis = -1;  // none: all centres are the same
  int bin = 0;    // the first one on the right
  double cost = std::numeric_limits<double>::infinity();
};

// Which bin of an axis a box is in.
struct Binning {
  int bins;
  float low[3];
  float scale[3];

  Binning(const Bounds& centres, std::size_t boxes) : bins(binsFor(boxes)) {
    for (int k = 0; k < 3; ++k) {
      const float spread = centres.high[k] - centres.low[k];
      low[k] = centres.low[k];
      scale[k] = spread > LeastSpread ? static_cast<float>(bins) / spread : 0.0F;
    }
  }
  int binOf(const Primitive& primitive, int axis) const {
    return std::min(static_cast<int>((primitive.centre(axis) - low[axis]) * scale[axis]), bins - 1);
  }
};

struct Bin {
  Bounds bounds;
  int count = 0;
};

Split bestOfAxis(const Bin* bins, int count, int axis) {
  double rightCosts[MostBins] = {};
  Bounds right;
  int boxes = 0;
  for (int bin = count - 1; bin > 0; --bin) {
    right.add(bins[bin].bounds);
    boxes += bins[bin].count;
    rightCosts[bin] = boxes == 0 ? std::numeric_limits<double>::infinity() : right.area() * boxes;
  }
  Split best;
  Bounds left;
  boxes = 0;
  for (int bin = 1; bin < count; ++bin) {
    left.add(bins[bin - 1].bounds);
    boxes += bins[bin - 1].count;
    if (boxes == 0) continue;
    const double cost = left.area() * boxes + rightCosts[bin];
    if (cost < best.cost) best = {axis, bin, cost};
  }
  return best;
}

class Builder {
 public:
  explicit Builder(const std::vector<FloatBox>& boxes) {
    primitives.reserve(boxes.size());
    for (const FloatBox& box : boxes)
      primitives.emplace_back(box, static_cast<std::int32_t>(primitives.size()));
  }

  BoxHierarchy take() {
    if (!primitives.empty()) build();
    result.order.reserve(primitives.size());
    for (const Primitive& primitive : primitives) result.order.push_back(primitive.position);
    return std::move(result);
  }

 private:
  void build() {
    result.nodes.reserve(primitives.size());
    Bounds bounds;
    Bounds centres;
    for (const Primitive& primitive : primitives) primitive.addTo(bounds, centres);
    addNode(bounds);
    tasks.push_back({0, 0, primitives.size(), centres, 1});
    while (!tasks.empty()) {
      const Task task = tasks.back();
      tasks.pop_back();
      divide(task);
    }
  }

  void addNode(const Bounds& bounds) {
    BoxNode node{};
    std::copy(bounds.low, bounds.low + 3, node.low);
    std::copy(bounds.high, bounds.high + 3, node.high);
    result.nodes.push_back(node);
  }

  void divide(const Task& task) {
    const std::size_t count = task.end - task.begin;
    if (count <= BoxHierarchy::LeafSize) {
      result.nodes[task.node].first = static_cast<std::int32_t>(task.begin);
      result.nodes[task.node].count = static_cast<std::int32_t>(count);
      return;
    }
    const Binning binning(task.centres, count);
    const Split split = task.depth < DeepestHeuristic ? bestSplit(task, binning) : Split{};
    const std::size_t middle =
        split.axis < 0 ? task.begin + count / 2 : partition(task, binning, split);
    addChildren(task, middle);
  }

  Split bestSplit(const Task& task, const Binning& binning) {
    std::fill(histogram, histogram + 3 * binning.bins, Bin{});
    for (std::size_t i = task.begin; i < task.end; ++i) {
      const Primitive& primitive = primitives[i];
      for (int axis = 0; axis < 3; ++axis) {
        Bin& bin = histogram[axis * binning.bins + binning.binOf(primitive, axis)];
        bin.bounds.add(primitive.low, primitive.high);
        ++bin.count;
      }
    }
    Split best;
    for (int axis = 0; axis < 3; ++axis) {
      if (binning.scale[axis] == 0.0F) continue;
      const Split split = bestOfAxis(histogram + axis * binning.bins, binning.bins, axis);
      if (split.cost < best.cost) best = split;
    }
    return best;
  }

  // Not std::partition, whose order is its own.
  std::size_t partition(const Task& task, const Binning& binning, const Split& split) {
    std::size_t left = task.begin;
    std::size_t right = task.end;
    while (left < right) {
      if (binning.binOf(primitives[left], split.axis) < split.bin)
        ++left;
      else
        std::swap(primitives[left], primitives[--right]);
    }
    return left;
  }

  void addChildren(const Task& task, std::size_t middle) {
    const std::size_t first = result.nodes.size();
    result.nodes[task.node].first = static_cast<std::int32_t>(first);
    result.nodes[task.node].count = 0;
    const Task left = child(task, first, task.begin, middle);
    const Task right = child(task, first + 1, middle, task.end);
    tasks.push_back(right);
    tasks.push_back(left);
  }

  Task child(const Task& parent, std::size_t node, std::size_t begin, std::size_t end) {
    Bounds bounds;
    Task task{node, begin, end, {}, parent.depth + 1};
    for (std::size_t i = begin; i < end; ++i) primitives[i].addTo(bounds, task.centres);
    addNode(bounds);
    return task;
  }

  std::vector<Primitive> primitives;
  Bin histogram[3 * MostBins];  // of the node at hand
  std::vector<Task> tasks;
  BoxHierarchy result;
};

float roundedDown(double value) {
  const auto nearest = static_cast<float>(value);
  return static_cast<double>(nearest) > value ? std::nextafter(nearest, -Infinity) : nearest;
}

float roundedUp(double value) {
  const auto nearest = static_cast<float>(value);
  return static_cast<double>(nearest) < value ? std::nextafter(nearest, Infinity) : nearest;
}

}  // namespace

FloatBox boxAround(const Kernel::Vec3* points, std::size_t count) {
  Kernel::Vec3 low = points[0];
  Kernel::Vec3 high = points[0];
  for (std::size_t i = 1; i < count; ++i) {
    const Kernel::Vec3 point = points[i];
    low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
  }
  return {{roundedDown(low.x), roundedDown(low.y), roundedDown(low.z)},
          {roundedUp(high.x), roundedUp(high.y), roundedUp(high.z)}};
}

BoxHierarchy makeHierarchy(const std::vector<FloatBox>& boxes) { return Builder(boxes).take(); }

}  // namespace Lumivane::Visibility
