#pragma once

#include "kernel/Vec.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/ViewSettings.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Lumivane::Fuzz {

/// Keeps shots of any scene small. Two things that the library promises cost what a scene asks for,
/// and with the sanitizers a hundred times as much: the depth sort looks at every pair of edges
/// where faces overlap, and an edge close to the eye is split until each piece is short on the
/// picture.
class BoundedShots {
 public:
  BoundedShots(Scene::Scene3D& scene, const Session::ViewSettings& settings) : view(settings) {
    eye = {view.eye[0], view.eye[1], view.eye[2]};
    if (scene.getObjects() == nullptr || scene.getPoints() == nullptr) return;
    points = scene.getPoints()->getPoints();
    for (auto* const object : *scene.getObjects()->getObjects())
      if (object->getRegions() != nullptr)
        for (auto* const region : *object->getRegions()->getRegions()) add(*region->getPoints());
  }

  bool arePossible() const { return corners <= MostCorners; }

  /// The settings, without a limit of length where the limit would make too many pieces.
  Session::ViewSettings settings() const {
    Session::ViewSettings result = view;
    if (!(pieces <= MostPieces)) result.maxLength = 0.0;
    return result;
  }

 private:
  static constexpr std::size_t MostCorners = 400;
  static constexpr double MostPieces = 8000.0;

  // All edges of a polygon are split into the same number of pieces.
  void add(const std::vector<int>& numbers) {
    corners += numbers.size();
    double most = 1.0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const int start = numbers[i], end = numbers[(i + 1) % numbers.size()];
      if (isThere(start) && isThere(end)) most = std::max(most, piecesOf(start, end));
    }
    pieces += most * static_cast<double>(numbers.size());
  }

  bool isThere(int number) const {
    return number >= 1 && static_cast<std::size_t>(number) <= points->size();
  }

  Kernel::Vec3 at(int number) const {
    const auto& point = *(*points)[static_cast<std::size_t>(number) - 1];
    return {point.getX(), point.getY(), point.getZ()};
  }

  // As many as have the length that the limit allows at the edge's nearest point to the eye.
  double piecesOf(int start, int end) const {
    const Kernel::Vec3 a = at(start), edge = at(end) - a, toEye = eye - a;
    const double along = Kernel::dot(edge, toEye) / Kernel::dot(edge, edge);
    const Kernel::Vec3 nearest = a + std::clamp(along, 0.0, 1.0) * edge;
    return Kernel::length3(edge) / (view.maxLength * Kernel::distance(nearest, eye));
  }

  Session::ViewSettings view;
  Kernel::Vec3 eye;
  const Geometry::Points3d::Vector* points = nullptr;
  std::size_t corners = 0;
  double pieces = 0.0;
};

}  // namespace Lumivane::Fuzz
