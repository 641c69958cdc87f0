#include "visibility/IndexCheck.h"

#include "visibility/BoxHierarchy.h"
#include "visibility/SceneArrays.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// An index from a file is looked over once, so that looks need not. Hashes find what happened to a
// file by chance; this is for the rest. Each array is passed over once, in its order, so that a
// million polygons take some milliseconds.
namespace Lumivane::Visibility {
namespace {

using Numbers = IndexArray<std::int32_t>;

bool isUsable(double value) { return std::abs(value) <= LargestCoordinate; }

// All without a way out, so that compilers do several at a time.
template <class Items, class Test>
bool hold(const Items& items, Test test) {
  bool all = true;
  for (const auto& item : items) all = all & test(item);
  return all;
}

bool areBelow(const Numbers& numbers, std::size_t limit) {
  return hold(numbers, [limit](std::int32_t number) {
    return number >= 0 && static_cast<std::size_t>(number) < limit;
  });
}

// Offsets into `last` elements that rise by at least `least`.
bool areOffsets(const Numbers& offsets, std::size_t last, std::int64_t least) {
  if (offsets.empty() || offsets.front() != 0 || offsets.back() < 0 ||
      static_cast<std::size_t>(offsets.back()) != last)
    return false;
  bool all = true;
  for (std::size_t i = 1; i < offsets.size(); ++i)
    all = all & (offsets[i - 1] + least <= offsets[i]);
  return all;
}

bool isUsable(const Kernel::Vec3& v) { return isUsable(v.x) && isUsable(v.y) && isUsable(v.z); }

bool areUsable(const IndexArray<ScenePlane>& planes) {
  return hold(planes, [](const ScenePlane& plane) {
    return isUsable(plane.normal) && isUsable(plane.point);
  });
}

bool arePolygons(const IndexState& state) {
  const std::size_t count = state.polygonCount();
  const std::size_t corners = state.cornerVertices.size();
  return state.cornerOffsets.size() == count + 1 && areOffsets(state.cornerOffsets, corners, 3) &&
         state.cornerEdges.size() == corners && state.cornerInner.size() == corners &&
         state.sizes.size() == count && state.regions.size() == count &&
         state.layers.size() == count && state.edgeVertices.size() % 2 == 0 &&
         areBelow(state.cornerVertices, state.vertices.size()) &&
         areBelow(state.cornerEdges, state.edgeVertices.size() / 2) &&
         areBelow(state.edgeVertices, state.vertices.size()) &&
         areBelow(state.layers, state.layerPlanes.size());
}

bool areCoordinates(const IndexState& state) {
  return hold(state.vertices, [](const Kernel::Vec3& v) { return isUsable(v); }) &&
         areUsable(state.planes) && areUsable(state.layerPlanes) &&
         hold(state.sizes, [](double size) { return size >= 0.0 && std::isfinite(size); });
}

// Every node but the root has one parent, which stands before it, and every polygon is in one leaf.
class TreeCheck {
 public:
  explicit TreeCheck(const IndexState& index)
      : state(index), depths(index.nodes.size(), 0), isInLeaf(index.polygonCount(), false) {}

  bool isTree() {
    if (state.nodes.empty()) return state.polygonCount() == 0;
    depths[0] = 1;
    for (std::size_t i = 0; i < state.nodes.size(); ++i)
      if (!takes(i)) return false;
    return covered == state.polygonCount();
  }

 private:
  bool takes(std::size_t i) {
    const BoxNode& node = state.nodes[i];
    if (depths[i] == 0 || node.first < 0 || node.count < 0 || !hasBox(node)) return false;
    const auto first = static_cast<std::size_t>(node.first);
    return node.isLeaf() ? takesLeaf(first, static_cast<std::size_t>(node.count))
                         : takesChildren(i, first);
  }

  bool takesChildren(std::size_t parent, std::size_t first) {
    if (first <= parent || first + 1 >= depths.size() || depths[parent] >= BoxHierarchy::MostDepth)
      return false;
    for (const std::size_t child : {first, first + 1}) {
      if (depths[child] != 0) return false;
      depths[child] = static_cast<std::uint8_t>(depths[parent] + 1);
    }
    return true;
  }

  bool takesLeaf(std::size_t first, std::size_t count) {
    if (count > isInLeaf.size() || first > isInLeaf.size() - count) return false;
    for (std::size_t i = first; i < first + count; ++i) {
      if (isInLeaf[i] != 0) return false;
      isInLeaf[i] = 1;
    }
    covered += count;
    return true;
  }

  static bool hasBox(const BoxNode& node) {
    bool all = true;
    for (int k = 0; k < 3; ++k)
      all = all && std::isfinite(node.low[k]) && std::isfinite(node.high[k]) &&
            node.low[k] <= node.high[k];
    return all;
  }

  const IndexState& state;
  std::vector<std::uint8_t> depths;    // of nodes, from 1; 0 for those without a parent yet
  std::vector<std::uint8_t> isInLeaf;  // of polygons
  std::size_t covered = 0;             // polygons in leaves
};

// As in arrays that an index is made from: by object, then by region.
bool doRise(const std::vector<Label>& labels) {
  bool all = true;
  for (std::size_t i = 1; i < labels.size(); ++i)
    all = all && std::pair(labels[i - 1].object, labels[i - 1].region) <
                     std::pair(labels[i].object, labels[i].region);
  return all;
}

bool areNames(const VisibleMap::Names& names) {
  const auto classCount = static_cast<long long>(names.classNames.size());
  const bool areClasses =
      names.classes.size() == names.regions.size() &&
      hold(names.classes, [classCount](int number) { return number >= -1 && number < classCount; });
  const std::size_t objects = names.objectIds.size();
  return areClasses && doRise(names.regions) && hold(names.regions, [objects](const Label& label) {
           return label.object >= 1 && static_cast<std::size_t>(label.object) <= objects &&
                  label.region >= 1 && (label.face >= 1 || label.face == -1);
         });
}

bool areObjects(const IndexState& state) {
  return state.objectOffsets.size() == state.names->objectIds.size() + 1 &&
         areOffsets(state.objectOffsets, state.objectPolygons.size(), 0) &&
         state.objectPolygons.size() == state.polygonCount() &&
         areBelow(state.objectPolygons, state.polygonCount());
}

}  // namespace

std::string indexFault(const IndexState& state) {
  if (!arePolygons(state)) return "its polygons do not fit each other";
  if (!areCoordinates(state)) return "it has a coordinate that is not finite or beyond 1e30";
  if (!areNames(*state.names)) return "its labels or classes do not fit its objects";
  if (!areBelow(state.regions, state.names->regions.size()))
    return "a polygon is of no region of the scene";
  if (!areObjects(state)) return "its objects do not fit its polygons";
  if (!TreeCheck(state).isTree()) return "its hierarchy of boxes is no tree";
  return "";
}

}  // namespace Lumivane::Visibility
