#include "algorithm/Boxes.h"
#include "kernel/Bounds.h"

#include <lumivane/algorithm/Bounds2D.h>

namespace Lumivane::Algorithm {

Bounds2D::Bounds2D() : Bounds2D(toBounds(Kernel::Box{})) {}

Bounds2D::Bounds2D(const std::vector<Bounds2D>& bounds) : Bounds2D() {
  Kernel::Box all;
  for (const Bounds2D& one : bounds) Kernel::take(all, toBox(one));
  *this = toBounds(all);
}

Bounds2D* Bounds2D::getBounds(std::vector<std::vector<double>> points) {
  return new Bounds2D(boundsOf(points));
}

bool Bounds2D::isBoundsIntersected(const Bounds2D& a, const Bounds2D& b) {
  return Kernel::boxesMeet(toBox(a), toBox(b));
}

bool Bounds2D::isDefaultBounds(const Bounds2D& bounds) {
  return Kernel::isDefaultBox(toBox(bounds));
}

}  // namespace Lumivane::Algorithm
