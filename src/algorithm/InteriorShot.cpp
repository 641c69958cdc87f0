#include "algorithm/InteriorShot.h"

#include "algorithm/pipeline/RegionProjector.h"
#include "base/Indices.h"
#include "kernel/Angle.h"
#include "kernel/Vec.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Camera.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace Lumivane::Algorithm {

using Geometry::Face2d;
using Geometry::Faces2d;
using Geometry::Point2d;
using Geometry::Region2d;

namespace {

// The whole picture area: the rim of the disc, or the square.
std::vector<Kernel::Vec2> pictureBoundary(ProjectionType type) {
  // A type that projects nothing has the square, too.
  switch (actingType(type).value_or(ProjectionType::Square)) {
    case ProjectionType::Square:
      return {{-1.0, 1.0}, {1.0, 1.0}, {1.0, -1.0}, {-1.0, -1.0}};
    case ProjectionType::Radial:
      break;
  }
  std::vector<Kernel::Vec2> rim;
  for (int degrees = 0; degrees < 360; degrees += 6) {
    const double angle = Kernel::toRadians(degrees);
    rim.push_back({std::cos(angle), std::sin(angle)});
  }
  return rim;
}

void setInteriorColour(Shot::Shot2d& shot, Base::Camera* camera) {
  const Base::Color* colour = camera == nullptr ? nullptr : camera->getInteriorColor();
  shot.setBrushes(new Base::Brushes());
  shot.getBrushes()->addBrush(colour == nullptr
                                  ? new Base::Brush(64, 64, 64, 255)
                                  : new Base::Brush(colour->getRed(), colour->getGreen(),
                                                    colour->getBlue(), colour->getAlpha()));
  shot.setPens(new Base::Pens());
  shot.getPens()->addPen(new Base::Pen());
}

// The one region of an interior shot, in the one face of the camera's object.
void addInteriorRegion(Shot::Shot2d& shot, Faces2d& faces2d, int objectNumber,
                       ProjectionType type) {
  auto* region2d = new Region2d();
  shot.getRegions()->addRegion(region2d);
  region2d->setObjectNumber(objectNumber);
  region2d->setPenNumber(1);
  region2d->setBrushNumber(1);
  region2d->setFaceNumber(1);
  for (const Kernel::Vec2& point : pictureBoundary(type)) {
    shot.getPoints()->addPoint(new Point2d(point.x, point.y));
    region2d->addPoint(static_cast<int>(region2d->getPoints()->size()) + 1);
  }
  faces2d.addFace(new Face2d());
  faces2d.getFace(0)->addRegion(1);
}

}  // namespace

UnfinishedShot buildInteriorShot(Base::View* view, Scene::Objects* objects,
                                 const Scene::Object* cameraObject, Base::Camera* camera,
                                 ProjectionType type) {
  UnfinishedShot shot = newShot(view);
  setInteriorColour(*shot, camera);
  const std::size_t count = Base::countOf(objects->getObjects());
  for (std::size_t i = 0; i < count; ++i) {
    const Scene::Object* object = (*objects->getObjects())[i];
    Faces2d& faces2d = addObject(*shot, *object);
    if (object == cameraObject) addInteriorRegion(*shot, faces2d, static_cast<int>(i) + 1, type);
  }
  return shot;
}

}  // namespace Lumivane::Algorithm
