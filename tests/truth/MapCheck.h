#pragma once

#include "truth/Judge.h"

#include <lumivane/visibility/SceneIndex.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Truth {

/// Directions nearer to an edge of the map than this are not counted, in radians.
constexpr double NoMansLand = 1e-6;

/// A direction in which the map is wrong.
struct WrongLabel {
  Visibility::Vector direction{};
  Visibility::Label truth;
  Visibility::Label map;
  double angleToEdge = 0.0;
};

/// How far the rays that an object got are from what its share promises.
struct ShareDeviation {
  int object = 0;      ///< 0 for the sky
  double share = 0.0;  ///< of the field, by the map
  double by = 0.0;     ///< in standard deviations, signed: above 0 if rays hit more
};

/// What rays say of a map.
struct RayReport {
  std::size_t rays = 0;
  std::vector<WrongLabel> wrong;           ///< farther from an edge than `NoMansLand`
  std::size_t nearEdges = 0;               ///< other labels nearer to an edge, which do not count
  std::size_t wrongDistances = 0;          ///< truth outside the cell's least and greatest distance
  std::vector<ShareDeviation> deviations;  ///< of objects that expect enough rays to say
  double worstShare = 0.0;                 ///< greatest of all objects, in deviations
  double judgeSeconds = 0.0;               ///< processor time of the judge
  double locateSeconds = 0.0;              ///< processor time of finding cells

  std::string text() const;  ///< The wrong labels, for messages of tests.
};

/// Holds a map against random directions of its field.
RayReport checkByRays(const Judge& judge, const Visibility::VisibleMap& map, std::size_t rays,
                      std::uint64_t seed);

/// The expected number of rays from which on an object's deviation is as good as normal.
constexpr double EnoughRays = 25.0;

/// The same for one object, with other rays: all within a cone around what is seen of it, as many
/// as `rays` to the whole field would send there, at most `most`.
ShareDeviation deviationWithin(const Judge& judge, const Visibility::VisibleMap& map, int object,
                               double rays, std::size_t most, std::uint64_t seed);

/// The same against what the index itself says of single directions: how many labels differ farther
/// from an edge than `NoMansLand`.
std::size_t differencesFromSingle(const Visibility::SceneIndex& index,
                                  const Visibility::VisibleMap& map, std::size_t rays,
                                  std::uint64_t seed);

/// Whether a map has the right label in a direction, or the direction is too near an edge to say.
bool checkDirection(const Judge& judge, const Visibility::VisibleMap& map,
                    const Visibility::Vector& direction);

}  // namespace Lumivane::Truth
