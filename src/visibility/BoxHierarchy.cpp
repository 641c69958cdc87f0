#include "visibility/BoxHierarchy.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Lumivane::Visibility {
namespace {

constexpr int Bins = 16;
// From here on nodes are halved: a tree that the heuristic would make deeper gains nothing.
constexpr int DeepestHeuristic = 48;
// A smaller spread of centres is none: its inverse would be beyond a float.
constexpr float LeastSpread = 1e-30F;
constexpr float Infinity = std::numeric_limits<float>::infinity();

struct Bounds {
  float low[3] = {Infinity, Infinity, Infinity};
  float high[3] = {-Infinity, -Infinity, -Infinity};

  void add(const FloatBox& box) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], box.low[k]);
      high[k] = std::max(high[k], box.high[k]);
    }
  }
  void add(const Bounds& other) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], other.low[k]);
      high[k] = std::max(high[k], other.high[k]);
    }
  }
  void addCentre(const FloatBox& box);
  // Half of it; in double precision, since squares may be beyond a float.
  double area() const {
    const double x = static_cast<double>(high[0]) - static_cast<double>(low[0]);
    const double y = static_cast<double>(high[1]) - static_cast<double>(low[1]);
    const double z = static_cast<double>(high[2]) - static_cast<double>(low[2]);
    return x * y + y * z + z * x;
  }
};

// Twice the centre: comparisons are all that is asked.
float centre(const FloatBox& box, int axis) { return box.low[axis] + box.high[axis]; }

void Bounds::addCentre(const FloatBox& box) {
  for (int k = 0; k < 3; ++k) {
    low[k] = std::min(low[k], centre(box, k));
    high[k] = std::max(high[k], centre(box, k));
  }
}

struct Primitive {
  FloatBox box;
  std::int32_t position;
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
  float low[3];
  float scale[3];

  explicit Binning(const Bounds& centres) {
    for (int k = 0; k < 3; ++k) {
      const float spread = centres.high[k] - centres.low[k];
      low[k] = centres.low[k];
      scale[k] = spread > LeastSpread ? static_cast<float>(Bins) / spread : 0.0F;
    }
  }
  int binOf(const FloatBox& box, int axis) const {
    return std::min(static_cast<int>((centre(box, axis) - low[axis]) * scale[axis]), Bins - 1);
  }
};

struct Histogram {
  Bounds bounds[Bins];
  int counts[Bins] = {};
};

Split bestOfAxis(const Histogram& histogram, int axis) {
  double rightCosts[Bins] = {};
  Bounds right;
  int count = 0;
  for (int bin = Bins - 1; bin > 0; --bin) {
    right.add(histogram.bounds[bin]);
    count += histogram.counts[bin];
    rightCosts[bin] = count == 0 ? std::numeric_limits<double>::infinity() : right.area() * count;
  }
  Split best;
  Bounds left;
  count = 0;
  for (int bin = 1; bin < Bins; ++bin) {
    left.add(histogram.bounds[bin - 1]);
    count += histogram.counts[bin - 1];
    if (count == 0) continue;
    const double cost = left.area() * count + rightCosts[bin];
    if (cost < best.cost) best = {axis, bin, cost};
  }
  return best;
}

class Builder {
 public:
  explicit Builder(const std::vector<FloatBox>& boxes) {
    primitives.reserve(boxes.size());
    for (const FloatBox& box : boxes)
      primitives.push_back({box, static_cast<std::int32_t>(primitives.size())});
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
    for (const Primitive& primitive : primitives) {
      bounds.add(primitive.box);
      centres.addCentre(primitive.box);
    }
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
    const Binning binning(task.centres);
    const Split split = task.depth < DeepestHeuristic ? bestSplit(task, binning) : Split{};
    const std::size_t middle =
        split.axis < 0 ? task.begin + count / 2 : partition(task, binning, split);
    addChildren(task, middle);
  }

  Split bestSplit(const Task& task, const Binning& binning) const {
    Histogram histograms[3];
    for (std::size_t i = task.begin; i < task.end; ++i) {
      const FloatBox& box = primitives[i].box;
      for (int axis = 0; axis < 3; ++axis) {
        const int bin = binning.binOf(box, axis);
        histograms[axis].bounds[bin].add(box);
        ++histograms[axis].counts[bin];
      }
    }
    Split best;
    for (int axis = 0; axis < 3; ++axis) {
      if (binning.scale[axis] == 0.0F) continue;
      const Split split = bestOfAxis(histograms[axis], axis);
      if (split.cost < best.cost) best = split;
    }
    return best;
  }

  // Not std::partition, whose order is its own.
  std::size_t partition(const Task& task, const Binning& binning, const Split& split) {
    std::size_t left = task.begin;
    std::size_t right = task.end;
    while (left < right) {
      if (binning.binOf(primitives[left].box, split.axis) < split.bin)
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
    for (std::size_t i = begin; i < end; ++i) {
      bounds.add(primitives[i].box);
      task.centres.addCentre(primitives[i].box);
    }
    addNode(bounds);
    return task;
  }

  std::vector<Primitive> primitives;
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
