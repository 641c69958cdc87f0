// Pieces are taken from the largest to the smallest, so that a layer is led by the one with the
// widest tolerance. Layers are looked up by the direction of their normal and then by their offset;
// slivers, whose normal says little, are compared with all.

#include "truth/Layers.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;

constexpr Real CellSize = 1e-5L;  ///< of the grid of normals
/// A member this near its leader's plane, by its own size, adds nothing to the closure.
constexpr Real Tight = 1e-10L;

using CellKey = std::array<int, 3>;

CellKey cellOf(const LongVector& normal) {
  const auto grid = [](Real value) { return static_cast<int>(std::lround(value / CellSize)); };
  return {grid(normal.x), grid(normal.y), grid(normal.z)};
}

class LayerFinder {
 public:
  LayerFinder(const PolygonScene& newScene, const Tolerances& newTolerances,
              std::vector<Piece>& newPieces)
      : scene(newScene), tolerances(newTolerances), pieces(newPieces), parent(pieces.size()) {
    std::iota(parent.begin(), parent.end(), std::size_t{0});
  }

  std::size_t find() {
    centre();
    for (const std::size_t piece : bySize()) place(piece);
    return number();
  }

 private:
  struct Layer {
    std::vector<std::size_t> members;  ///< the leader, and those that are not tight to it
  };

  void centre() {
    if (pieces.empty()) return;
    for (const Piece& piece : pieces) middle = middle + piece.middle;
    middle = middle * (1.0L / static_cast<Real>(pieces.size()));
    for (const Piece& piece : pieces)
      radius = std::max(radius, length(piece.middle - middle) + piece.size);
  }

  std::vector<std::size_t> bySize() const {
    std::vector<std::size_t> order(pieces.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
      return pieces[a].size > pieces[b].size;
    });
    return order;
  }

  Real farthest(const Piece& of, const Piece& plane) const {
    Real most = 0.0L;
    for (const int corner : of.corners) {
      const LongVector point = wide(scene.points[static_cast<std::size_t>(corner)]);
      most = std::max(most, std::fabs(dot(point - plane.middle, plane.normal)));
    }
    return most;
  }
  bool within(std::size_t a, std::size_t b, Real distance) const {
    return std::fabs(dot(pieces[b].middle - pieces[a].middle, pieces[a].normal)) <= distance &&
           farthest(pieces[b], pieces[a]) <= distance && farthest(pieces[a], pieces[b]) <= distance;
  }
  bool related(std::size_t a, std::size_t b) const {
    return within(a, b, tolerances.coplanar * std::max(pieces[a].size, pieces[b].size));
  }

  std::size_t root(std::size_t i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
  }

  /// Joins the piece to the layer if it belongs to it.
  bool offer(std::size_t piece, Layer& layer) {
    for (const std::size_t member : layer.members) {
      if (!related(piece, member)) continue;
      parent[root(piece)] = root(member);
      if (!within(piece, layer.members.front(), Tight * pieces[piece].size))
        layer.members.push_back(piece);
      return true;
    }
    return false;
  }

  void place(std::size_t piece) {
    bool found = false;
    if (pieces[piece].sliver && pieces.size() < 100000) {
      for (Layer& layer : layers) found = offer(piece, layer) || found;
    } else {
      found = offerNear(piece, pieces[piece].normal);
      found = offerNear(piece, pieces[piece].normal * -1.0L) || found;
      for (const std::size_t layer : sliverLayers) found = offer(piece, layers[layer]) || found;
    }
    if (!found) open(piece);
  }

  bool offerNear(std::size_t piece, const LongVector& normal) {
    bool found = false;
    const CellKey key = cellOf(normal);
    for (int i = -1; i <= 1; ++i)
      for (int j = -1; j <= 1; ++j)
        for (int k = -1; k <= 1; ++k)
          found = offerCell(piece, {key[0] + i, key[1] + j, key[2] + k}) || found;
    return found;
  }
  bool offerCell(std::size_t piece, const CellKey& key) {
    const auto cell = cells.find(key);
    if (cell == cells.end()) return false;
    const Real offset = offsetIn(key, piece);
    const Real window = 4.0L * CellSize * radius;
    bool found = false;
    for (auto entry = cell->second.lower_bound(offset - window);
         entry != cell->second.end() && entry->first <= offset + window; ++entry)
      found = offer(piece, layers[entry->second]) || found;
    return found;
  }
  Real offsetIn(const CellKey& key, std::size_t piece) const {
    const LongVector axis{CellSize * static_cast<Real>(key[0]),
                          CellSize * static_cast<Real>(key[1]),
                          CellSize * static_cast<Real>(key[2])};
    return dot(pieces[piece].middle - middle, axis);
  }
  void open(std::size_t piece) {
    layers.push_back({{piece}});
    const CellKey key = cellOf(pieces[piece].normal);
    cells[key].emplace(offsetIn(key, piece), layers.size() - 1);
    if (pieces[piece].sliver) sliverLayers.push_back(layers.size() - 1);
  }

  /// Numbers the closures; what has drifted off the plane of its first member starts another.
  std::size_t number() {
    std::map<std::size_t, std::vector<std::size_t>> groups;
    for (std::size_t i = 0; i < pieces.size(); ++i) groups[root(i)].push_back(i);
    int next = 0;
    std::size_t shared = 0;
    for (auto& [leader, members] : groups) {
      while (!members.empty()) {
        const Piece& first = pieces[members.front()];
        std::vector<std::size_t> drifted;
        std::size_t kept = 0;
        for (const std::size_t member : members) {
          if (farthest(pieces[member], first) > tolerances.drift * pieces[member].size &&
              member != members.front()) {
            drifted.push_back(member);
          } else {
            pieces[member].layer = next;
            ++kept;
          }
        }
        if (kept > 1) ++shared;
        ++next;
        members = drifted;
      }
    }
    return shared;
  }

  const PolygonScene& scene;
  const Tolerances& tolerances;
  std::vector<Piece>& pieces;
  std::vector<std::size_t> parent;
  std::vector<Layer> layers;
  std::vector<std::size_t> sliverLayers;
  std::map<CellKey, std::multimap<Real, std::size_t>> cells;
  LongVector middle;
  Real radius = 0.0L;
};

}  // namespace

std::size_t findLayers(const PolygonScene& scene, const Tolerances& tolerances,
                       std::vector<Piece>& pieces) {
  return LayerFinder(scene, tolerances, pieces).find();
}

}  // namespace Lumivane::Truth
