#pragma once

#include "pictures/DrawingPlane.h"

#include <vector>

namespace Lumivane::Pictures {

/// A place within an area, and how far it is from the border.
struct InnerPlace {
  Kernel::Vec2 place;
  double distance = 0.0;
};

/// The pole of inaccessibility of an area: the place within that is farthest from its border, to
/// within a distance. Squares are halved as long as one may hold a better place, the most promising
/// first (V. Agafonkin, A new algorithm for finding a visual center of a polygon, 2016).
///
/// \param lines  closed; the area is their even-odd sum
InnerPlace poleOfInaccessibility(const std::vector<PlaneLine>& lines, double precision);

/// Of the even-odd sum, if the lines do not cross.
double areaOf(const std::vector<PlaneLine>& lines);

}  // namespace Lumivane::Pictures
