#pragma once

#include "kernel/Vec.h"

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace Lumivane::Test {

using Outline3d = std::vector<Kernel::Vec3>;

/// Outlines such as roofs have them (L, U, stars, rounded convex ones), turned anyhow and moved,
/// their corners off one plane by noise of a random size, which is often 0.
class NoisyOutlines {
 public:
  explicit NoisyOutlines(std::uint64_t seed) : random(seed) {}

  Outline3d next() {
    std::vector<Kernel::Vec2> flat = shape();
    std::rotate(flat.begin(), flat.begin() + static_cast<long>(random() % flat.size()), flat.end());
    static const double noises[] = {0.0, 1e-6, 1e-5, 1e-4, 4e-4, 1e-3, 1e-2, 0.1};
    const double noise = noises[random() % 8];
    const Kernel::Vec3 x = direction();
    const Kernel::Vec3 y = Kernel::normalise(Kernel::cross(x, direction())).direction;
    const Kernel::Vec3 z = Kernel::cross(x, y);
    const Kernel::Vec3 origin{300.0 * sided(), 300.0 * sided(), 20.0 * sided()};
    Outline3d outline;
    for (const Kernel::Vec2 p : flat)
      outline.push_back(origin + p.x * x + p.y * y + (noise * sided()) * z);
    return outline;
  }

 private:
  double sided() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random); }
  double within(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  }

  Kernel::Vec3 direction() {
    Kernel::Vec3 v;
    do {
      v = {sided(), sided(), sided()};
    } while (Kernel::length3(v) < 0.1);
    return Kernel::normalise(v).direction;
  }

  std::vector<Kernel::Vec2> shape() {
    const double w = within(5, 12), h = within(5, 12);
    const double x = w * within(0.2, 0.8), y = h * within(0.2, 0.8);
    switch (random() % 4) {
      case 0:
        return {{0, 0}, {w, 0}, {w, y}, {x, y}, {x, h}, {0, h}};
      case 1:
        return {{0, 0}, {w, 0}, {w, h}, {x, h}, {x, y}, {x * 0.6, y}, {x * 0.6, h}, {0, h}};
      default: {
        const bool isStar = random() % 2 == 0;
        const size_t count = 5 + random() % 8;
        std::vector<Kernel::Vec2> round;
        for (size_t i = 0; i < count; ++i) {
          const double angle =
              6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
          const double radius = isStar ? within(1.0, 5.0) : 5.0;
          round.push_back({radius * std::cos(angle), radius * std::sin(angle)});
        }
        return round;
      }
    }
  }

  std::mt19937_64 random;
};

/// Half the area vector of an outline: a shot keeps it where this points away from the eye.
inline Kernel::Vec3 areaVectorOf(const Outline3d& outline) {
  Kernel::Vec3 sum;
  for (size_t i = 1; i + 1 < outline.size(); ++i)
    sum = sum + Kernel::cross(outline[i] - outline[0], outline[i + 1] - outline[0]);
  return 0.5 * sum;
}

/// An eye in front of an outline, on the side from which it is seen, that looks at its middle.
inline Session::ViewSettings eyeInFrontOf(const Outline3d& outline, double distance) {
  Kernel::Vec3 middle;
  for (const Kernel::Vec3& corner : outline)
    middle = middle + (1.0 / static_cast<double>(outline.size())) * corner;
  const Kernel::Vec3 forward = Kernel::normalise(areaVectorOf(outline)).direction;
  const Kernel::Vec3 axis =
      std::abs(forward.z) < 0.9 ? Kernel::Vec3{0, 0, 1} : Kernel::Vec3{1, 0, 0};
  const Kernel::Vec3 right = Kernel::normalise(Kernel::cross(axis, forward)).direction;
  const Kernel::Vec3 up = Kernel::cross(forward, right);
  const Kernel::Vec3 eye = middle - distance * forward;
  Session::ViewSettings settings;
  settings.eye = {eye.x, eye.y, eye.z};
  settings.forward = {forward.x, forward.y, forward.z};
  settings.up = {up.x, up.y, up.z};
  return settings;
}

/// The area in a shot of all its regions.
inline double shownArea(const Session::TakenShot& shot) {
  double area = 0.0;
  const auto& points = *shot.shot().getPoints()->getPoints();
  for (const Geometry::Region2d* const region : *shot.shot().getRegions()->getRegions()) {
    const std::vector<int>& numbers = *region->getPoints();
    double sum = 0.0;
    for (size_t i = 0; i < numbers.size(); ++i) {
      const Geometry::Point2d& a = *points[static_cast<size_t>(numbers[i]) - 1];
      const Geometry::Point2d& b =
          *points[static_cast<size_t>(numbers[(i + 1) % numbers.size()]) - 1];
      sum += a.getX() * b.getY() - b.getX() * a.getY();
    }
    area += std::abs(sum) / 2.0;
  }
  return area;
}

/// The area of an outline in the round picture of an eye, from its own edges.
inline double pictureArea(const Outline3d& outline, const Session::ViewSettings& view) {
  const Kernel::Vec3 eye{view.eye[0], view.eye[1], view.eye[2]};
  const Kernel::Vec3 forward{view.forward[0], view.forward[1], view.forward[2]};
  const Kernel::Vec3 up{view.up[0], view.up[1], view.up[2]};
  const Kernel::Vec3 right = Kernel::cross(up, forward);
  std::vector<Kernel::Vec2> places;
  constexpr int Steps = 200;
  for (size_t i = 0; i < outline.size(); ++i)
    for (int k = 0; k < Steps; ++k) {
      const Kernel::Vec3 edge = outline[(i + 1) % outline.size()] - outline[i];
      const Kernel::Vec3 d =
          Kernel::normalise(outline[i] + (static_cast<double>(k) / Steps) * edge - eye).direction;
      places.push_back({Kernel::dot(d, right), Kernel::dot(d, up)});
    }
  double sum = 0.0;
  for (size_t i = 0; i < places.size(); ++i) {
    const Kernel::Vec2 a = places[i], b = places[(i + 1) % places.size()];
    sum += a.x * b.y - b.x * a.y;
  }
  return std::abs(sum) / 2.0;
}

}  // namespace Lumivane::Test
