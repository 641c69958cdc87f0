#include "session/PolygonsOfShot.h"

#include "check/Findings.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Text.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>

// A shot's polygons as arrays that outlive it: every number is checked on the way, since a shot may
// come from a file.
namespace Lumivane::Session {
namespace {

// Of a list of the model; none if the list is missing, or its vector.
template <class List, class Element>
std::vector<Element*> elementsOf(List* list, std::vector<Element*>* (List::*elements)()) {
  const std::vector<Element*>* const found = list == nullptr ? nullptr : (list->*elements)();
  return found == nullptr ? std::vector<Element*>() : *found;
}

std::uint8_t channel(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

std::array<std::uint8_t, 4> channels(const Base::Color& color) {
  return {channel(color.getRed()), channel(color.getGreen()), channel(color.getBlue()),
          channel(color.getAlpha())};
}

class Collector {
 public:
  Collector(Shot::Shot2d& shot, const std::string& sceneName)
      : name(sceneName),
        points(elementsOf(shot.getPoints(), &Geometry::Points2d::getPoints)),
        brushes(elementsOf(shot.getBrushes(), &Base::Brushes::getBrushes)),
        hasBrushes(shot.getBrushes() != nullptr) {
    result.offsets.push_back(0);
    for (const Shot::Object2d* object : elementsOf(shot.getObjects(), &Shot::Objects2d::getObjects))
      result.objectIds.push_back(object == nullptr ? "" : idText(object->getId()));
  }

  void add(const Geometry::Region2d& region, std::size_t position) {
    for (const int number : *region.getPoints()) {
      const Geometry::Point2d& point = element(points, number, "point", position);
      result.points.push_back({point.getX(), point.getY()});
    }
    result.drawnEdges.resize(result.points.size(), 1);
    const std::size_t first = result.offsets.back();
    for (const int edge : *region.getDockingEdges())
      if (Check::isNumberOf(edge, region.getPoints()->size()))
        result.drawnEdges[first + static_cast<std::size_t>(edge) - 1] = 0;
    result.offsets.push_back(result.points.size());
    result.objects.push_back(region.getObjectNumber());
    result.faces.push_back(region.getFaceNumber());
    result.regions.push_back(region.getSourceRegionNumber());
    result.colors.push_back(channels(colorOf(region, position)));
  }

  ShotPolygons take() { return std::move(result); }

 private:
  // By a number from 1.
  template <class Element>
  const Element& element(const std::vector<Element*>& list, int number, const char* what,
                         std::size_t position) const {
    const bool isThere = Check::isNumberOf(number, list.size()) &&
                         list[static_cast<std::size_t>(number) - 1] != nullptr;
    if (!isThere)
      throw Error(name, "region " + std::to_string(position + 1) +
                            " of the shot: " + Check::outOfRange(what, number, list.size()));
    return *list[static_cast<std::size_t>(number) - 1];
  }

  Base::Color colorOf(const Geometry::Region2d& region, std::size_t position) const {
    if (const auto color = region.getOverrideColor()) return *color;
    if (!hasBrushes) return Base::Color();
    return element(brushes, region.getBrushNumber(), "brush", position);
  }

  const std::string& name;
  std::vector<Geometry::Point2d*> points;
  std::vector<Base::Brush*> brushes;
  bool hasBrushes;
  ShotPolygons result;
};

}  // namespace

ShotPolygons polygonsOf(Shot::Shot2d& shot, const std::string& name) {
  Collector collector(shot, name);
  std::size_t position = 0;
  for (const Geometry::Region2d* region :
       elementsOf(shot.getRegions(), &Geometry::Regions2dInDrawingOrder::getRegions)) {
    if (region != nullptr && region->getPoints() != nullptr && region->getDockingEdges() != nullptr)
      collector.add(*region, position);
    ++position;
  }
  return collector.take();
}

}  // namespace Lumivane::Session
