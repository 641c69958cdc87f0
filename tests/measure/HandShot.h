#pragma once

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Test {

using Outline = std::vector<std::pair<double, double>>;

inline Outline box(double x0, double y0, double x1, double y1) {
  return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

/// A shot made by hand: one object to begin with, each region a face of its own.
class HandShot {
 public:
  HandShot() {
    shot.setPoints(new Geometry::Points2d());
    shot.setRegions(new Geometry::Regions2dInDrawingOrder());
    shot.setObjects(new Shot::Objects2d());
    addObject("first");
  }

  void addObject(const std::string& id) {
    auto* object = new Shot::Object2d();
    object->setId(id);
    shot.getObjects()->addObject(object);
  }

  void add(const Outline& outline, int object = 1) {
    auto* region = new Geometry::Region2d();
    for (const auto& [x, y] : outline) {
      shot.getPoints()->addPoint(new Geometry::Point2d(x, y));
      region->addPoint(static_cast<int>(shot.getPoints()->getPoints()->size()));
    }
    shot.getRegions()->addRegion(region);
    region->setObjectNumber(object);
    region->setFaceNumber(static_cast<int>(shot.getRegions()->getRegions()->size()));
    region->setSourceRegionNumber(1);
  }

  Measure::VisibleShares round() const { return {shot, Algorithm::ProjectionType::Radial}; }
  Measure::VisibleShares square() const { return {shot, Algorithm::ProjectionType::Square}; }

  Shot::Shot2d shot;
};

}  // namespace Lumivane::Test
