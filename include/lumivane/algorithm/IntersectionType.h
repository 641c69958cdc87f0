#pragma once

namespace Lumivane::Algorithm {

/// How two polygons of the picture meet.
enum class IntersectionType : int {
  NoIntersection = 0,  ///< they neither cross nor contain one another
  EdgesCrossing = 1,   ///< an edge of the first properly crosses an edge of the second
  SecondInFirst = 2,   ///< no crossing, and every point of the second lies in the first
  FirstInSecond = 3,   ///< no crossing, and every point of the first lies in the second
};

}  // namespace Lumivane::Algorithm
