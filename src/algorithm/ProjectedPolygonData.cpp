#include "algorithm/Boxes.h"

#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

namespace Lumivane::Algorithm {

void ProjectedPolygonData::setPoints(Points* value) {
  points = value;
  if (value != nullptr && !value->empty()) bounds = new Bounds2D(boundsOf(*value));
}

}  // namespace Lumivane::Algorithm
