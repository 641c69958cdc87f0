#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

namespace Lumivane::Algorithm {

void ProjectedPolygonData::setPoints(Points* value) {
  points = value;
  if (value != nullptr && !value->empty()) bounds = Bounds2D::getBounds(*value);
}

}  // namespace Lumivane::Algorithm
