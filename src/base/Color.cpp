#include "base/Indices.h"
#include "jzon/Building.h"

#include <lumivane/base/Color.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {
namespace {

// Deliberate: the text is the literal advanced by the value, not joined with it.
int checkedComponent(int value, std::string_view literal) {
  if (value < 0 || value > 255) throw std::out_of_range(literalFrom(literal, value));
  return value;
}

}  // namespace

Color::Color() = default;

Color::Color(int r, int g, int b, int a) : red(r), green(g), blue(b), alpha(a) {}

void Color::setRed(int value) { red = checkedComponent(value, "red component = "); }
void Color::setGreen(int value) { green = checkedComponent(value, "green component = "); }
void Color::setBlue(int value) { blue = checkedComponent(value, "blue component = "); }
void Color::setAlpha(int value) { alpha = checkedComponent(value, "alpha component = "); }

Jzon::Node Color::serialize() {
  Jzon::Node node = Jzon::arrayWithRoom(5);  // a pen adds its width
  for (const int component : {red, green, blue, alpha}) node.add(Jzon::Node(component));
  return node;
}

BaseLibClass* Color::deserialize(Jzon::Node node) {
  if (node.isArray() && node.getCount() == 4) readComponents(node);
  return this;
}

void Color::readComponents(const Jzon::Node& node) {
  using Setter = void (Color::*)(int);
  const Setter setters[] = {&Color::setRed, &Color::setGreen, &Color::setBlue, &Color::setAlpha};
  std::size_t i = 0;
  for (const Setter setter : setters) {
    const Jzon::Node component = node.get(i++);
    if (component.isNumber()) (this->*setter)(component.toInt(0));
  }
}

}  // namespace Lumivane::Base
