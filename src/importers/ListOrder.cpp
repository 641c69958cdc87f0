#include "importers/ListOrder.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec3;

// How near the nearest corner is.
double distanceOf(const SurfaceFace& face, const std::vector<Vec3>& vertices, Vec3 eye) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const SurfaceRegion& region : face.regions)
    for (const int v : region.loop)
      nearest = std::min(nearest, Kernel::distance(vertices[static_cast<size_t>(v)], eye));
  return nearest;
}

// Puts the faces from far to near, and returns how near the nearest is.
double sortFaces(ObjectSurfaces& faces, const std::vector<Vec3>& vertices, Vec3 eye) {
  std::vector<std::pair<double, size_t>> keys;
  for (size_t i = 0; i < faces.size(); ++i)
    keys.emplace_back(-distanceOf(faces[i], vertices, eye), i);
  std::sort(keys.begin(), keys.end());
  ObjectSurfaces sorted;
  for (const auto& [key, index] : keys) sorted.push_back(std::move(faces[index]));
  faces = std::move(sorted);
  return keys.empty() ? 0.0 : -keys.back().first;
}

}  // namespace

std::vector<std::size_t> listOrder(const SourceModel& model, std::vector<ObjectSurfaces>& surfaces,
                                   const std::optional<Vec3>& eye) {
  std::vector<double> distances(surfaces.size(), 0.0);
  if (eye)
    for (size_t i = 0; i < surfaces.size(); ++i)
      distances[i] = sortFaces(surfaces[i], model.vertices, *eye);
  std::vector<std::size_t> order(surfaces.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    const bool first = model.objects[a].isTerrain;
    if (first != model.objects[b].isTerrain) return first;
    return distances[a] > distances[b];
  });
  return order;
}

}  // namespace Lumivane::Importers
