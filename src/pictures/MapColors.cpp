// Where maps take their colours from: brushes and pens of the scene, or the numbers of objects, or
// the names of classes. A list by object and region is made once, since every cell asks for its
// colour.

#include "pictures/ClassColor.h"
#include "pictures/Colors.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/visibility/VisibleMap.h>

#include <algorithm>
#include <cmath>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Pen = VectorPicture::Pen;

constexpr Color Black = {0, 0, 0, 1.0};
constexpr Color Sky = {255, 255, 255, 1.0};

Color opaque(const Base::Color& source) {
  Color color = toColor(source);
  color.opacity = 1.0;
  return color;
}

// The element of a number counted from 1; null if there is none.
template <class Element>
const Element* elementAt(const std::vector<Element*>* list, int number) {
  if (list == nullptr || number < 1 || static_cast<std::size_t>(number) > list->size())
    return nullptr;
  return (*list)[static_cast<std::size_t>(number) - 1];
}

std::optional<Pen> penOf(const Base::Pen* pen) {
  if (pen == nullptr) return Pen{Black, 1.0};
  if (!(std::isfinite(pen->getWidth()) && pen->getWidth() > 0.0)) return {};
  return Pen{opaque(*pen), pen->getWidth()};
}

// Hues that follow each other by the golden section are far apart, however many there are.
Color colorOfNumber(int number) {
  constexpr double Golden = 0.6180339887498949;
  const double hue = 6.0 * std::fmod(number * Golden, 1.0);
  const auto channel = [hue](double shift) {
    const double at = std::fmod(hue + shift, 6.0);
    const double full = std::clamp(std::abs(at - 3.0) - 1.0, 0.0, 1.0);
    return static_cast<int>(std::lround(120.0 + 120.0 * full));
  };
  return {channel(0.0), channel(4.0), channel(2.0), 1.0};
}

}  // namespace

MapColors::MapColors() = default;

MapColors::MapColors(const Scene::Scene3D& scene) : isByObject(false) {
  const auto* const brushes =
      scene.getBrushes() == nullptr ? nullptr : scene.getBrushes()->getBrushes();
  const auto* const penList = scene.getPens() == nullptr ? nullptr : scene.getPens()->getPens();
  if (scene.getObjects() == nullptr) return;
  for (const Scene::Object* object : *scene.getObjects()->getObjects()) {
    fills.emplace_back();
    pens.push_back(penOf(object == nullptr ? nullptr : elementAt(penList, object->getPenNumber())));
    if (object == nullptr || object->getRegions() == nullptr) continue;
    for (const Geometry::Region* region : *object->getRegions()->getRegions()) {
      const Base::Brush* brush =
          region == nullptr ? nullptr : elementAt(brushes, region->getBrushNumber());
      fills.back().push_back(brush == nullptr ? Black : opaque(*brush));
    }
  }
}

MapColors MapColors::byClass(const Visibility::VisibleMap& map) {
  MapColors result;
  result.isByObject = false;
  if (map.names == nullptr) return result;
  for (std::size_t i = 0; i < map.names->regions.size(); ++i) {
    const Visibility::Label& label = map.names->regions[i];
    const int number = i < map.names->classes.size() ? map.names->classes[i] : -1;
    const auto object = static_cast<std::size_t>(label.object);
    const auto region = static_cast<std::size_t>(label.region);
    if (result.fills.size() < object) result.fills.resize(object);
    if (result.fills[object - 1].size() < region)
      result.fills[object - 1].resize(region, classColor(""));
    result.fills[object - 1][region - 1] =
        classColor(number < 0 ? "" : map.names->classNames[static_cast<std::size_t>(number)]);
  }
  return result;
}

Color MapColors::fill(const Visibility::Label& label) const {
  if (label.object <= 0) return Sky;
  if (isByObject) return colorOfNumber(label.object);
  const auto object = static_cast<std::size_t>(label.object) - 1;
  const auto region = static_cast<std::size_t>(label.region) - 1;
  if (object >= fills.size() || region >= fills[object].size()) return Black;
  return fills[object][region];
}

std::optional<Pen> MapColors::pen(const Visibility::Label& label) const {
  if (label.object <= 0) return {};
  const auto object = static_cast<std::size_t>(label.object) - 1;
  if (isByObject || object >= pens.size()) return Pen{Black, 1.0};
  return pens[object];
}

}  // namespace Lumivane::Pictures
