#include <lumivane/base/Pen.h>
#include <lumivane/jzon/Node.h>

#include <stdexcept>

namespace Lumivane::Base {

Pen::Pen() = default;

Pen::Pen(int r, int g, int b, int a, double w) : Color(r, g, b, a), width(w) {}

void Pen::setWidth(double value) {
  if (0.0 > value) throw std::runtime_error("pen width < 0");  // not a number passes
  width = value;
}

Jzon::Node Pen::serialize() {
  Jzon::Node node = Color::serialize();
  node.add(Jzon::Node(width));
  return node;
}

BaseLibClass* Pen::deserialize(Jzon::Node node) {
  if (!node.isArray() || node.getCount() != 5) return this;
  readComponents(node);
  const Jzon::Node element = node.get(4);
  if (element.isNumber()) setWidth(element.toDouble(0.0));
  return this;
}

}  // namespace Lumivane::Base
