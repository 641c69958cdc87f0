#include "geometry/Fields.h"

#include <lumivane/geometry/Point2d.h>

namespace Lumivane::Geometry {

double Point2d::Precision = 0.001;

Jzon::Node Point2d::serialize() {
  Jzon::Node node = Jzon::arrayWithRoom(2);
  for (const double coordinate : {x, y}) node.add(Jzon::Node(coordinate));
  return node;
}

Base::BaseLibClass* Point2d::deserialize(Jzon::Node node) {
  if (!node.isArray() || node.getCount() != 2) return this;
  readNumberAt(node, 0, x);
  readNumberAt(node, 1, y);
  return this;
}

}  // namespace Lumivane::Geometry
