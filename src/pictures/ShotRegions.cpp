// The regions of a shot as fills and lines, with what is out of range replaced as the windows do
// it, so that a damaged shot file still makes a well-formed picture.

#include "pictures/ShotRegions.h"

#include "kernel/Outline.h"
#include "pictures/Colors.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>

namespace Lumivane::Pictures {
namespace {

// Shots lie within -1 to 1; what a file holds far beyond would overrun the writers' numbers.
constexpr double Farthest = 1000.0;

template <class Element>
bool isNumberOf(int number, const std::vector<Element*>& list) {
  return number >= 1 && static_cast<std::size_t>(number) <= list.size();
}

[[noreturn]] void fail(const VectorPicture::Region& region, const std::string& cause) {
  std::string place = "region " + std::to_string(region.number) + " of the shot";
  if (!region.objectId.empty()) place += " (object \"" + region.objectId + "\")";
  throw std::runtime_error(place + ": " + cause);
}

// The element of a number counted from 1; the default one without a list or where it is null.
template <class Element>
Element elementOfNumber(const std::vector<Element*>* list, int number, const char* kind,
                        const VectorPicture::Region& region) {
  if (list == nullptr) return Element();
  if (!isNumberOf(number, *list)) {
    fail(region, std::string(kind) + " " + std::to_string(number) + ", but there are " +
                     std::to_string(list->size()));
  }
  const Element* element = (*list)[static_cast<std::size_t>(number) - 1];
  return element == nullptr ? Element() : *element;
}

class RegionReader {
 public:
  RegionReader(Shot::Shot2d& shot, const PictureFrame& planeFrame, Base::ViewDisplayStyle style)
      : frame(planeFrame),
        isFilled(style != Base::ViewDisplayStyle::Outline),
        opacityFactor(style == Base::ViewDisplayStyle::HalfTransparent ? 0.5 : 1.0) {
    if (shot.getPoints() != nullptr) points = shot.getPoints()->getPoints();
    if (shot.getBrushes() != nullptr) brushes = shot.getBrushes()->getBrushes();
    if (shot.getPens() != nullptr) pens = shot.getPens()->getPens();
    if (shot.getObjects() != nullptr) objects = shot.getObjects()->getObjects();
  }

  DrawnRegion read(const Geometry::Region2d& source, int number) const {
    DrawnRegion drawn;
    drawn.points = *source.getPoints();
    VectorPicture::Region& region = drawn.region;
    name(region, source, number);
    region.interior.lines = {outline(region, drawn.points)};
    region.interior.closed = true;
    if (isFilled && drawn.points.size() >= 3) region.interior.fill = fillOf(region, source);
    const std::vector<int> none;
    const std::vector<int>* docking = source.getDockingEdges();
    setEdges(region, docking == nullptr ? none : *docking);
    drawn.dockingEdges = positionsOf(docking == nullptr ? none : *docking, drawn.points.size());
    setPen(region, source);
    return drawn;
  }

 private:
  void name(VectorPicture::Region& region, const Geometry::Region2d& source, int number) const {
    region.number = number;
    region.objectNumber = source.getObjectNumber();
    region.faceNumber = source.getFaceNumber();
    region.sourceRegionNumber = source.getSourceRegionNumber();
    if (objects == nullptr || !isNumberOf(region.objectNumber, *objects)) return;
    const Shot::Object2d* object = (*objects)[static_cast<std::size_t>(region.objectNumber) - 1];
    if (object != nullptr) region.objectId = object->getId();
  }

  VectorPicture::Line outline(const VectorPicture::Region& region,
                              const std::vector<int>& numbers) const {
    VectorPicture::Line line;
    line.reserve(numbers.size());
    for (const int number : numbers) {
      const Geometry::Point2d* point = nullptr;
      if (points != nullptr && isNumberOf(number, *points))
        point = (*points)[static_cast<std::size_t>(number) - 1];
      if (point == nullptr) fail(region, "there is no point " + std::to_string(number));
      const Kernel::Vec2 place = {point->getX(), point->getY()};
      if (!std::isfinite(place.x) || !std::isfinite(place.y))
        fail(region, "point " + std::to_string(number) + " is not finite");
      if (std::abs(place.x) > Farthest || std::abs(place.y) > Farthest)
        fail(region, "point " + std::to_string(number) + " lies more than 1000 units away");
      line.push_back(frame.at(place));
    }
    return line;
  }

  VectorPicture::Color fillOf(const VectorPicture::Region& region,
                              const Geometry::Region2d& source) const {
    if (const auto override = source.getOverrideColor()) return toColor(*override, opacityFactor);
    return toColor(elementOfNumber(brushes, source.getBrushNumber(), "brush", region),
                   opacityFactor);
  }

  // In ascending order, each once.
  static std::vector<std::size_t> positionsOf(const std::vector<int>& edges, std::size_t count) {
    std::set<std::size_t> positions;
    for (const int edge : edges)
      if (edge >= 1 && static_cast<std::size_t>(edge) <= count)
        positions.insert(static_cast<std::size_t>(edge) - 1);
    return {positions.begin(), positions.end()};
  }

  // The library's chains start and end at the first point: there they are joined to one line.
  static void setEdges(VectorPicture::Region& region, const std::vector<int>& dockingEdges) {
    const VectorPicture::Line& outline = region.interior.lines.front();
    std::vector<Kernel::Chain> chains = Kernel::outlineChains(outline.size(), dockingEdges);
    if (chains.empty()) return;
    if (chains.size() == 1) {
      Kernel::Chain& only = chains.front();
      region.edges.closed = only.front() == only.back();
      if (region.edges.closed) only.pop_back();
    } else if (chains.front().front() == 0 && chains.back().back() == 0) {
      chains.back().pop_back();
      chains.front().insert(chains.front().begin(), chains.back().begin(), chains.back().end());
      chains.pop_back();
    }
    for (const Kernel::Chain& chain : chains) {
      VectorPicture::Line line;
      for (const std::size_t position : chain) line.push_back(outline[position]);
      region.edges.lines.push_back(std::move(line));
    }
  }

  void setPen(VectorPicture::Region& region, const Geometry::Region2d& source) const {
    const Base::Pen pen = elementOfNumber(pens, source.getPenNumber(), "pen", region);
    if (!std::isfinite(pen.getWidth()) || pen.getWidth() < 0.0) {
      fail(region, "the width of pen " + std::to_string(source.getPenNumber()) +
                       " is negative or not finite");
    }
    if (pen.getWidth() == 0.0)
      region.edges.lines.clear();
    else
      region.edges.pen = VectorPicture::Pen{toColor(pen), pen.getWidth()};
  }

  const PictureFrame& frame;
  bool isFilled;
  double opacityFactor;
  const std::vector<Geometry::Point2d*>* points = nullptr;
  const std::vector<Base::Brush*>* brushes = nullptr;
  const std::vector<Base::Pen*>* pens = nullptr;
  const std::vector<Shot::Object2d*>* objects = nullptr;
};

}  // namespace

std::vector<DrawnRegion> drawnRegions(Shot::Shot2d& shot, const PictureFrame& frame,
                                      Base::ViewDisplayStyle style) {
  std::vector<DrawnRegion> result;
  if (shot.getRegions() == nullptr || shot.getRegions()->getRegions() == nullptr) return result;
  if (shot.getPoints() == nullptr || shot.getPoints()->getPoints() == nullptr) return result;
  if (shot.getPoints()->getPoints()->empty()) return result;
  const RegionReader reader(shot, frame, style);
  int number = 0;
  for (const Geometry::Region2d* region : *shot.getRegions()->getRegions()) {
    ++number;
    if (region == nullptr || region->getPoints() == nullptr) continue;
    if (region->getPoints()->size() >= 2) result.push_back(reader.read(*region, number));
  }
  return result;
}

}  // namespace Lumivane::Pictures
