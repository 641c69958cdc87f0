#pragma once

#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Test {

/// A scene and the unsorted shot of it, built piece by piece; owns both.
class SortStage {
 public:
  using Polygon = std::vector<std::vector<double>>;

  /// A polygon of the scene with its picture.
  struct Piece {
    Polygon projected;
    Polygon source;
  };

  SortStage() {
    scene.setPoints(new Geometry::Points3d());
    scene.setObjects(new Scene::Objects());
    shot.setPoints(new Geometry::Points2d());
    shot.setRegions(new Geometry::Regions2dInDrawingOrder());
    shot.setObjects(new Shot::Objects2d());
  }
  SortStage(const SortStage&) = delete;
  SortStage& operator=(const SortStage&) = delete;

  Scene::Scene3D scene;
  Shot::Shot2d shot;

  /// An object of the scene and one of the shot, of the same id, without faces.
  Shot::Object2d& addObject(const std::string& id) {
    auto* object = new Scene::Object();
    object->setId(id);
    object->setRegions(new Geometry::Regions());
    scene.getObjects()->addObject(object);
    return addShotObject(id);
  }

  /// An object of the shot alone.
  Shot::Object2d& addShotObject(const std::string& id) {
    auto* object = new Shot::Object2d();
    object->setId(id);
    object->setFaces(new Geometry::Faces2d());
    shot.getObjects()->addObject(object);
    return *object;
  }

  /// A face of the last object; gives its position there.
  Geometry::Face2d& addFace(const std::vector<Piece>& pieces) {
    auto* face = new Geometry::Face2d();
    shot.getObjects()->getObjects()->back()->getFaces()->addFace(face);
    for (const Piece& piece : pieces) addRegion(*face, piece);
    return *face;
  }

  /// A region of the shot, made from a new region of the last object of the scene.
  Geometry::Region2d& addRegion(Geometry::Face2d& face, const Piece& piece) {
    auto* source = new Geometry::Region();
    for (const std::vector<double>& p : piece.source) {
      scene.getPoints()->addPoint(new Geometry::Point3d(p.at(0), p.at(1), p.at(2)));
      source->addPoint(static_cast<int>(scene.getPoints()->getPoints()->size()));
    }
    Geometry::Regions* sources = scene.getObjects()->getObjects()->back()->getRegions();
    sources->addRegion(source);

    auto* region = new Geometry::Region2d();
    region->setSourceRegionNumber(static_cast<int>(sources->getRegions()->size()));
    for (const std::vector<double>& p : piece.projected) {
      shot.getPoints()->addPoint(new Geometry::Point2d(p.at(0), p.at(1)));
      region->addPoint(static_cast<int>(shot.getPoints()->getPoints()->size()));
    }
    shot.getRegions()->addRegion(region);
    const int number = static_cast<int>(shot.getRegions()->getRegions()->size());
    region->setBrushNumber(100 + number);  // by which a test knows it again
    face.addRegion(number);
    return *region;
  }

  /// The brush numbers of the shot's regions, in order.
  std::vector<int> regions() const {
    std::vector<int> numbers;
    for (const Geometry::Region2d* region : *shot.getRegions()->getRegions())
      numbers.push_back(region->getBrushNumber());
    return numbers;
  }

  /// The region numbers of each face of an object, given by its position.
  std::vector<std::vector<int>> faces(int object) const {
    std::vector<std::vector<int>> numbers;
    for (const Geometry::Face2d* face :
         *shot.getObjects()->getObject(object)->getFaces()->getFaces())
      numbers.push_back(*face->getRegions());
    return numbers;
  }

  /// A square facing an eye at the origin, at a distance along x, with its central projection on
  /// x = 1. Bigger distances lie behind.
  static Piece square(double distance, double centreY, double half) {
    Piece piece;
    piece.source = {{distance, centreY - half, -half},
                    {distance, centreY + half, -half},
                    {distance, centreY + half, half},
                    {distance, centreY - half, half}};
    for (const std::vector<double>& p : piece.source)
      piece.projected.push_back({-p[1] / p[0], p[2] / p[0]});
    return piece;
  }
};

}  // namespace Lumivane::Test
