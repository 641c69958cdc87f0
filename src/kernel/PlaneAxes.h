#pragma once

#include "kernel/Vec.h"

#include <array>
#include <cmath>

/// The axes of the two projections in the plane of a shot: what every drawing of them has in
/// common.
namespace Lumivane::Kernel::PlaneAxes {

/// Both axes run from minus this to this.
constexpr double Reach = 1.1;

/// The head of an axis: its middle stands at the axis's end.
constexpr double HeadLength = 0.05;
constexpr double HeadHalfWidth = 0.025;

/// The rings of the radial projection.
constexpr std::array<double, 9> RingRadii = {1.0, 0.88, 0.77, 0.66, 0.55, 0.44, 0.33, 0.22, 0.11};
constexpr int RingSides = 50;

/// The grid of the square projection: from -1 to 1, by so many steps each way.
constexpr int GridSteps = 20;

/// Size of the labels' type in units of the plane.
constexpr double LabelPoints = 20.0;
constexpr double LabelScale = 0.004;

struct Label {
  const char* text;
  Vec2 place;  ///< the lower left corner
};
constexpr std::array<Label, 2> RadialLabels = {{{"u", {1.075, -0.1}}, {"v", {-0.075, 1.05}}}};
constexpr std::array<Label, 2> SquareLabels = {{{"u1", {1.05, -0.1}}, {"v1", {-0.12, 1.05}}}};

/// Red, green, blue and alpha.
using Rgba = std::array<int, 4>;
constexpr Rgba AxisColor = {0, 0, 0, 128};
constexpr Rgba HeadColor = {0, 0, 0, 255};
constexpr Rgba RingColor = {128, 128, 128, 128};
constexpr Rgba GridColor = {128, 128, 128, 10};

/// The opacity of equal layers on one place, each of that opacity.
inline double layeredOpacity(double opacity, int layers) {
  return 1.0 - std::pow(1.0 - opacity, layers);
}

}  // namespace Lumivane::Kernel::PlaneAxes
