#include "geometry/Fields.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Property.h>
#include <lumivane/base/Scale.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Shot {

using Utils::Aliases;

Shot2d::~Shot2d() {
  delete brushes;
  delete pens;
  delete points;
  delete objects;
  delete regions;
  delete scale;
  delete property;
}

Jzon::Node Shot2d::serialize() {
  Jzon::Node node = Jzon::object();
  Geometry::writeList(node, Aliases::BRUSHES, brushes);
  Geometry::writeList(node, Aliases::PENS, pens);
  Geometry::writeList(node, Aliases::POINTS, points);
  Geometry::writeList(node, Aliases::REGIONS, regions);
  Geometry::writeList(node, Aliases::OBJECTS, objects);
  return node;
}

Base::BaseLibClass* Shot2d::deserialize(Jzon::Node node) {
  Geometry::readPresentList(node, Aliases::BRUSHES, brushes);
  Geometry::readPresentList(node, Aliases::PENS, pens);
  Geometry::readPresentList(node, Aliases::POINTS, points);
  Geometry::readPresentList(node, Aliases::REGIONS, regions);
  Geometry::readPresentList(node, Aliases::OBJECTS, objects);
  return this;
}

}  // namespace Lumivane::Shot
