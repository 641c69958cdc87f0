#include "kernel/ColorScale.h"

#include <lumivane/base/Scale.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/utils/Aliases.h>

#include <utility>

namespace Lumivane::Base {
namespace {

using Items = std::map<double, Color>;

Color mixed(const Color& lower, const Color& upper, double ratio) {
  using Kernel::mixedChannel;
  return {mixedChannel(lower.getRed(), upper.getRed(), ratio),
          mixedChannel(lower.getGreen(), upper.getGreen(), ratio),
          mixedChannel(lower.getBlue(), upper.getBlue(), ratio),
          mixedChannel(lower.getAlpha(), upper.getAlpha(), ratio)};
}

bool isItem(const Jzon::Node& entry) {
  if (!entry.isArray() || entry.getCount() != 4 || !entry.get(std::size_t{0}).isNumber())
    return false;
  for (std::size_t i = 1; i < 4; ++i)
    if (!entry.get(i).isInteger()) return false;
  return true;
}

}  // namespace

Scale::Scale() : items(new Items()) {}

Scale::~Scale() {
  delete items;
  items = nullptr;
}

void Scale::setName(std::string value) { name = std::move(value); }

void Scale::addItem(double value, int red, int green, int blue) {
  items->emplace(value, Color(red, green, blue, 255));  // leaves a stop that is there
}

Color Scale::getColor(double value) {
  const Items::value_type* lower = nullptr;
  for (const Items::value_type& item : *items) {
    if (value > item.first) {
      lower = &item;
    } else if (item.first == value) {
      return item.second;
    } else if (item.first > value) {
      if (lower == nullptr) return item.second;
      return mixed(lower->second, item.second, value / item.first);
    }
  }
  return lower != nullptr ? lower->second : Color(0, 0, 0, 0);
}

Jzon::Node Scale::serialize() {
  Jzon::Node array = Jzon::array();
  for (const auto& [value, color] : *items) {
    Jzon::Node entry = Jzon::array();
    entry.add(Jzon::Node(value));
    for (const int channel : {color.getRed(), color.getGreen(), color.getBlue()})
      entry.add(Jzon::Node(channel));
    array.add(entry);
  }
  Jzon::Node node = Jzon::object();
  node.add(Utils::Aliases::NAME, Jzon::Node(name));
  node.add(Utils::Aliases::ITEMS, array);
  return node;
}

BaseLibClass* Scale::deserialize(Jzon::Node node) {
  if (!node.isObject()) return this;
  if (node.has(Utils::Aliases::NAME)) name = node.get(Utils::Aliases::NAME).toString("");
  const Jzon::Node array = node.get(Utils::Aliases::ITEMS);
  if (!array.isArray()) return this;
  for (std::size_t i = 0; i < array.getCount(); ++i) {
    const Jzon::Node entry = array.get(i);
    if (!isItem(entry)) continue;
    addItem(entry.get(std::size_t{0}).toDouble(0.0), entry.get(std::size_t{1}).toInt(0),
            entry.get(std::size_t{2}).toInt(0), entry.get(std::size_t{3}).toInt(0));
  }
  return this;
}

}  // namespace Lumivane::Base
