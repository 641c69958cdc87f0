#pragma once

namespace Lumivane::Base {

/// How a shot is drawn; making a shot ignores it.
enum class ViewDisplayStyle : int {
  Filled = 0,           ///< filled polygons and their lines
  Outline = 1,          ///< without the filled polygons
  HalfTransparent = 2,  ///< the filled polygons with half their opacity
};

}  // namespace Lumivane::Base
