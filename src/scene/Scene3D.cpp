#include "geometry/Fields.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Properties.h>
#include <lumivane/base/Scales.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Scene {

using Utils::Aliases;

Scene3D::~Scene3D() {
  delete brushes;
  delete pens;
  delete points;
  delete objects;
  delete properties;
  delete scales;
}

Jzon::Node Scene3D::serialize() {
  Jzon::Node node = Jzon::object();
  Geometry::writeList(node, Aliases::BRUSHES, brushes);
  Geometry::writeList(node, Aliases::PENS, pens);
  Geometry::writeList(node, Aliases::POINTS, points);
  Geometry::writeList(node, Aliases::OBJECTS, objects);
  Geometry::writeList(node, Aliases::PROPERTIES, properties);
  Geometry::writeList(node, Aliases::SCALES, scales);
  return node;
}

Base::BaseLibClass* Scene3D::deserialize(Jzon::Node node) {
  Geometry::readPresentList(node, Aliases::BRUSHES, brushes);
  Geometry::readPresentList(node, Aliases::PENS, pens);
  Geometry::readPresentList(node, Aliases::POINTS, points);
  Geometry::readPresentList(node, Aliases::OBJECTS, objects);
  Geometry::readPresentList(node, Aliases::PROPERTIES, properties);
  Geometry::readPresentList(node, Aliases::SCALES, scales);
  return this;
}

}  // namespace Lumivane::Scene
