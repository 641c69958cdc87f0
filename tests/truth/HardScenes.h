#pragma once

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/PolygonScene.h>

#include <cstddef>
#include <string>

namespace Lumivane::Truth {

/// A scene that is likely to break an exact engine, and how to look at it.
struct HardScene {
  std::string name;
  Visibility::PolygonScene scene;
  Visibility::Vector eye{0.0, 0.0, 0.0};
  Visibility::LookOptions options;
  /// Who knows what is seen: the judge, or, where the definition leaves something open, single
  /// directions of the index itself, or nobody: then only the map's own account is asked for.
  enum class Truth { Judge, Single, Nobody };
  Truth truth = Truth::Judge;
};

constexpr std::size_t HardSceneCount = 200;
/// Number i is of kind i % HardKinds.
constexpr std::size_t HardKinds = 20;

/// Number 0 to 199, the same on every machine: overlapping, coplanar, interpenetrating, thin,
/// cyclic and far polygons, eyes on vertices and edges, in planes and inside bodies. Higher numbers
/// are turned boxes far from the origin, whose corners and planes nearly meet.
HardScene hardScene(std::size_t number);

}  // namespace Lumivane::Truth
