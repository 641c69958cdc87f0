#pragma once

#include <lumivane/base/Color.h>
#include <lumivane/base/ViewDisplayStyle.h>

#include <optional>
#include <string>

namespace Lumivane::Pictures {

/// Which axes lie under a vector picture.
enum class VectorAxes {
  None,
  OfShot,  ///< those of the projection that made the shot; without a view or camera the radial ones
  Radial,
  Square
};

/// How a shot becomes a vector picture.
struct VectorOptions {
  /// Filled, outline or half transparent; without it as the shot's view says, or filled.
  std::optional<Base::ViewDisplayStyle> style;
  /// Size of the picture in pixels, 1 to `LargestSide` each. The pixel is the unit of the
  /// picture's coordinates and of the pens' widths; printed, 96 of them make an inch.
  int width = 800;
  int height = 800;  ///< likewise
  /// Half the height of the picture in units of the plane. At 1 the disc or square of the shot
  /// just fits, as in the library's PNG; 1.2 leaves room for the ends of the axes.
  double extent = 1.0;
  VectorAxes axes = VectorAxes::None;  ///< whether the axes of the projection are drawn
  /// What lies under everything; without it nothing does, and a PNG is white.
  std::optional<Base::Color> background;
  /// What the picture shows, for its document data; may be empty.
  std::string title;

  static constexpr int LargestSide = 16384;  ///< pixels
};

}  // namespace Lumivane::Pictures
