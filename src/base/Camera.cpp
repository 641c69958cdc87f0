#include "base/SerializeOrNull.h"

#include <lumivane/base/Camera.h>
#include <lumivane/base/Color.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/utils/Aliases.h>

#include <memory>
#include <string>

namespace Lumivane::Base {
namespace {

using Utils::Aliases;

// The old object is not freed: a caller may hold it.
template <class T>
void replaceIfPresent(T*& field, const Jzon::Node& node, const std::string& key) {
  if (!node.has(key)) return;
  auto made = std::make_unique<T>();
  made->deserialize(node.get(key));
  field = made.release();
}

}  // namespace

Camera::Camera()
    : Position(new Geometry::Point3d(0, 0, 0)),
      Direction(new Geometry::Vector3d(1, 0, 0)),
      ViewUp(new Geometry::Vector3d(0, 0, 1)),
      InteriorColor(new Color(64, 64, 64, 255)) {}

Camera::~Camera() {
  delete Position;
  delete Direction;
  delete ViewUp;
  delete InteriorColor;
  Position = nullptr;
  Direction = nullptr;
  ViewUp = nullptr;
  InteriorColor = nullptr;
}

Jzon::Node Camera::serialize() {
  Jzon::Node node = Jzon::object();
  node.add(Aliases::POSITION, serializeOrNull(Position));
  node.add(Aliases::DIRECTION, serializeOrNull(Direction));
  node.add(Aliases::VIEW_UP, serializeOrNull(ViewUp));
  node.add(Aliases::INTERIOR_COLOR, serializeOrNull(InteriorColor));
  node.add(Aliases::D1, Jzon::Node(D1));
  node.add(Aliases::D2, Jzon::Node(D2));
  return node;
}

BaseLibClass* Camera::deserialize(Jzon::Node node) {
  if (!node.isObject()) return this;
  replaceIfPresent(Position, node, Aliases::POSITION);
  replaceIfPresent(Direction, node, Aliases::DIRECTION);
  replaceIfPresent(ViewUp, node, Aliases::VIEW_UP);
  replaceIfPresent(InteriorColor, node, Aliases::INTERIOR_COLOR);
  // Deliberate: no test of the type, so that a text becomes 0.
  if (node.has(Aliases::D1)) D1 = node.get(Aliases::D1).toDouble(0.0);
  if (node.has(Aliases::D2)) D2 = node.get(Aliases::D2).toDouble(0.0);
  return this;
}

}  // namespace Lumivane::Base
