#include "geometry/Fields.h"

#include <lumivane/geometry/Point3d.h>

namespace Lumivane::Geometry {

double Point3d::Precision = 0.001;

Jzon::Node Point3d::serialize() {
  Jzon::Node node = Jzon::arrayWithRoom(3);
  for (const double coordinate : {x, y, z}) node.add(Jzon::Node(coordinate));
  return node;
}

Base::BaseLibClass* Point3d::deserialize(Jzon::Node node) {
  if (!node.isArray() || node.getCount() != 3) return this;
  readNumberAt(node, 0, x);
  readNumberAt(node, 1, y);
  readNumberAt(node, 2, z);
  return this;
}

}  // namespace Lumivane::Geometry
