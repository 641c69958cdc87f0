#include "visibility/IndexBuilder.h"

#include "visibility/BoxHierarchy.h"
#include "visibility/IndexPieces.h"
#include "visibility/Layers.h"
#include "visibility/SceneArrays.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <utility>

// From arrays to an index: outlines to flat pieces, pieces into the order of the hierarchy's
// leaves, then edges numbered and layers found. Everything is made in the order of the leaves, so
// that what is near in space is near in memory.
namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

void checkOption(double value, const char* name) {
  if (!(value >= 0.0) || std::isinf(value))
    throw std::invalid_argument(std::string(name) + " is below 0 or not finite");
}

std::shared_ptr<const VisibleMap::Names> namesOf(PolygonScene& scene) {
  auto names = std::make_shared<VisibleMap::Names>();
  names->regions = std::move(scene.labels);
  if (names->regions.empty())
    for (std::size_t i = 0; i < outlineCount(scene); ++i)
      names->regions.push_back({1, -1, static_cast<int>(i) + 1});
  names->classes = std::move(scene.classes);
  if (names->classes.empty()) names->classes.assign(names->regions.size(), -1);
  names->classNames = std::move(scene.classNames);
  names->objectIds = std::move(scene.objectIds);
  const auto objects =
      static_cast<std::size_t>(names->regions.empty() ? 0 : names->regions.back().object);
  names->objectIds.resize(std::max(names->objectIds.size(), objects));
  return names;
}

std::vector<FloatBox> boxesOf(const Pieces& pieces) {
  std::vector<FloatBox> boxes;
  boxes.reserve(pieces.count());
  std::vector<Vec3> corners;
  for (std::size_t i = 0; i < pieces.count(); ++i) {
    corners.clear();
    for (auto c = pieces.offsets[i]; c < pieces.offsets[i + 1]; ++c)
      corners.push_back(
          pieces.points[static_cast<std::size_t>(pieces.corners[static_cast<std::size_t>(c)])]);
    boxes.push_back(boxAround(corners.data(), corners.size()));
  }
  return boxes;
}

// Pieces become polygons in the order of the leaves, and their points vertices in the order in
// which polygons use them: what is near in space is near in memory.
class Renumbering {
 public:
  Renumbering(const Pieces& allPieces, IndexState& index)
      : pieces(allPieces), state(index), vertexOf(allPieces.points.size(), -1) {
    reserve();
  }

  void addPolygon(std::size_t piece) {
    for (auto c = pieces.offsets[piece]; c < pieces.offsets[piece + 1]; ++c) {
      const auto corner = static_cast<std::size_t>(c);
      state.cornerVertices.push_back(vertexAt(static_cast<std::size_t>(pieces.corners[corner])));
      state.cornerInner.push_back(pieces.inner[corner]);
    }
    state.cornerOffsets.push_back(static_cast<std::int32_t>(state.cornerVertices.size()));
    state.planes.push_back(pieces.planes[piece]);
    state.sizes.push_back(pieces.sizes[piece]);
    state.regions.push_back(pieces.regions[piece]);
  }

 private:
  void reserve() {
    state.cornerOffsets.reserve(pieces.count() + 1);
    state.cornerOffsets.push_back(0);
    state.cornerVertices.reserve(pieces.corners.size());
    state.cornerInner.reserve(pieces.corners.size());
    state.planes.reserve(pieces.count());
    state.sizes.reserve(pieces.count());
    state.regions.reserve(pieces.count());
    state.vertices.reserve(pieces.points.size());
  }

  std::int32_t vertexAt(std::size_t point) {
    if (vertexOf[point] < 0) {
      vertexOf[point] = static_cast<std::int32_t>(state.vertices.size());
      state.vertices.push_back(pieces.points[point]);
    }
    return vertexOf[point];
  }

  const Pieces& pieces;
  IndexState& state;
  std::vector<std::int32_t> vertexOf;  // of points; -1 for those not met yet
};

// Calls visit(corner, a, b) for the edge of each corner, with its vertices.
template <class Visit>
void forEachCornerEdge(const IndexState& state, Visit visit) {
  for (std::size_t i = 0; i < state.polygonCount(); ++i) {
    const auto begin = static_cast<std::size_t>(state.cornerOffsets[i]);
    const auto end = static_cast<std::size_t>(state.cornerOffsets[i + 1]);
    for (std::size_t c = begin; c < end; ++c)
      visit(c, state.cornerVertices[c], state.cornerVertices[c + 1 < end ? c + 1 : begin]);
  }
}

// Edges are numbered by their lower vertex, then in the order in which polygons use them.
class EdgeNumbers {
 public:
  explicit EdgeNumbers(IndexState& index) : state(index) {
    countEdges();
    fillEdges();
    const std::vector<std::int32_t> numbers = compact();
    for (std::int32_t& edge : state.cornerEdges) edge = numbers[static_cast<std::size_t>(edge)];
  }

 private:
  // Room for all edges of each lower vertex.
  void countEdges() {
    starts.assign(state.vertices.size() + 1, 0);
    forEachCornerEdge(state, [this](std::size_t, std::int32_t a, std::int32_t b) {
      ++starts[static_cast<std::size_t>(std::min(a, b)) + 1];
    });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
  }

  void fillEdges() {
    used.assign(state.vertices.size(), 0);
    others.resize(state.cornerVertices.size());
    state.cornerEdges.resize(state.cornerVertices.size());
    forEachCornerEdge(state, [this](std::size_t corner, std::int32_t a, std::int32_t b) {
      state.cornerEdges[corner] = placeOf(static_cast<std::size_t>(std::min(a, b)), std::max(a, b));
    });
  }

  std::int32_t placeOf(std::size_t lower, std::int32_t higher) {
    const auto first = static_cast<std::size_t>(starts[lower]);
    std::size_t place = first;
    const std::size_t end = first + static_cast<std::size_t>(used[lower]);
    while (place < end && others[place] != higher) ++place;
    if (place == end) {
      others[place] = higher;
      ++used[lower];
    }
    return static_cast<std::int32_t>(place);
  }

  std::vector<std::int32_t> compact() {
    std::vector<std::int32_t> numbers(others.size(), -1);
    for (std::size_t lower = 0; lower < used.size(); ++lower) {
      for (std::int32_t k = 0; k < used[lower]; ++k) {
        const auto place = static_cast<std::size_t>(starts[lower]) + static_cast<std::size_t>(k);
        numbers[place] = static_cast<std::int32_t>(state.edgeVertices.size() / 2);
        state.edgeVertices.push_back(static_cast<std::int32_t>(lower));
        state.edgeVertices.push_back(others[place]);
      }
    }
    return numbers;
  }

  IndexState& state;
  std::vector<std::int32_t> starts;  // of each lower vertex among `others`
  std::vector<std::int32_t> used;    // of that room
  std::vector<std::int32_t> others;  // higher vertices
};

void listObjects(IndexState& state) {
  const std::vector<Label>& labels = state.names->regions;
  const auto objectOf = [&](std::int32_t region) {
    return static_cast<std::size_t>(labels[static_cast<std::size_t>(region)].object) - 1;
  };
  std::vector<std::int32_t> offsets(state.names->objectIds.size() + 1, 0);
  for (const std::int32_t region : state.regions) ++offsets[objectOf(region) + 1];
  std::partial_sum(offsets.begin(), offsets.end(), offsets.begin());
  std::vector<std::int32_t> next(offsets.begin(), offsets.end() - 1);
  state.objectOffsets = std::move(offsets);
  state.objectPolygons.resize(state.polygonCount());
  for (std::size_t i = 0; i < state.polygonCount(); ++i)
    state.objectPolygons[static_cast<std::size_t>(next[objectOf(state.regions[i])]++)] =
        static_cast<std::int32_t>(i);
}

}  // namespace

void buildIndex(PolygonScene scene, const IndexOptions& options, IndexState& state) {
  checkOption(options.flatness, "flatness");
  checkOption(options.coplanar, "coplanar");
  const Pieces pieces = makePieces(scene, options);
  state.droppedRegions = pieces.droppedRegions;
  state.triangulatedRegions = pieces.triangulatedRegions;
  state.names = namesOf(scene);

  BoxHierarchy hierarchy = makeHierarchy(boxesOf(pieces));
  state.nodes = std::move(hierarchy.nodes);
  Renumbering renumbering(pieces, state);
  for (const std::int32_t piece : hierarchy.order)
    renumbering.addPolygon(static_cast<std::size_t>(piece));
  const EdgeNumbers edges(state);
  findLayers(options.coplanar, state);
  listObjects(state);
}

}  // namespace Lumivane::Visibility
