#include "support/ListPattern.h"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Overlays.h>
#include <lumivane/geometry/Parts.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>

namespace Lumivane::Test {
namespace {

struct Points2dCase {
  static constexpr const char* Name = "Points2d";
  static ListOperations<Geometry::Points2d, Geometry::Point2d> operations() {
    using List = Geometry::Points2d;
    return {&List::getPoints,   &List::setPoints,   &List::getPoint,   &List::addPoint,
            &List::insertPoint, &List::removePoint, &List::removePoint};
  }
};

struct Points3dCase {
  static constexpr const char* Name = "Points3d";
  static ListOperations<Geometry::Points3d, Geometry::Point3d> operations() {
    using List = Geometry::Points3d;
    return {&List::getPoints,   &List::setPoints,   &List::getPoint,   &List::addPoint,
            &List::insertPoint, &List::removePoint, &List::removePoint};
  }
};

struct FacesCase {
  static constexpr const char* Name = "Faces";
  static ListOperations<Geometry::Faces, Geometry::Face> operations() {
    using List = Geometry::Faces;
    return {&List::getFaces,   &List::setFaces,   &List::getFace,   &List::addFace,
            &List::insertFace, &List::removeFace, &List::removeFace};
  }
};

struct Faces2dCase {
  static constexpr const char* Name = "Faces2d";
  static ListOperations<Geometry::Faces2d, Geometry::Face2d> operations() {
    using List = Geometry::Faces2d;
    return {&List::getFaces,   &List::setFaces,   &List::getFace,   &List::addFace,
            &List::insertFace, &List::removeFace, &List::removeFace};
  }
};

struct RegionsCase {
  static constexpr const char* Name = "Regions";
  static ListOperations<Geometry::Regions, Geometry::Region> operations() {
    using List = Geometry::Regions;
    return {&List::getRegions,   &List::setRegions,   &List::getRegion,   &List::addRegion,
            &List::insertRegion, &List::removeRegion, &List::removeRegion};
  }
};

struct Regions2dInDrawingOrderCase {
  static constexpr const char* Name = "Regions2dInDrawingOrder";
  static ListOperations<Geometry::Regions2dInDrawingOrder, Geometry::Region2d> operations() {
    using List = Geometry::Regions2dInDrawingOrder;
    return {&List::getRegions,   &List::setRegions,   &List::getRegion,   &List::addRegion,
            &List::insertRegion, &List::removeRegion, &List::removeRegion};
  }
};

struct PartsCase {
  static constexpr const char* Name = "Parts";
  static ListOperations<Geometry::Parts, Geometry::Part> operations() {
    using List = Geometry::Parts;
    return {&List::getParts,   &List::setParts,   &List::getPart,   &List::addPart,
            &List::insertPart, &List::removePart, &List::removePart};
  }
};

struct OverlaysCase {
  static constexpr const char* Name = "Overlays";
  static ListOperations<Geometry::Overlays, Geometry::Overlay> operations() {
    using List = Geometry::Overlays;
    return {&List::getOverlays,   &List::setOverlays,   &List::getOverlay,   &List::addOverlay,
            &List::insertOverlay, &List::removeOverlay, &List::removeOverlay};
  }
};

using ListsCases = ::testing::Types<Points2dCase, Points3dCase, FacesCase, Faces2dCase, RegionsCase,
                                    Regions2dInDrawingOrderCase, PartsCase, OverlaysCase>;
INSTANTIATE_TYPED_TEST_SUITE_P(Lists, ModelList, ListsCases, CaseNames);

}  // namespace
}  // namespace Lumivane::Test
