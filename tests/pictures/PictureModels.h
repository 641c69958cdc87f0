#pragma once

#include "view/Models.h"

#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>

#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Test {

/// A shot whose regions belong to objects and share points. Brushes: 1 red, 2 half transparent
/// green, 3 opaque blue. Pens: 1 black of width 2, 2 blue of width 3.5, 3 of width 0.
struct PiecesModel : ShotModel {
  PiecesModel() {
    shot->getBrushes()->addBrush(new Base::Brush(0, 0, 255, 255));
    shot->getPens()->addPen(new Base::Pen(0, 0, 0, 255, 0.0));
    shot->setObjects(new Shot::Objects2d);
  }

  void addObject(const std::string& id) const {
    auto* object = new Shot::Object2d;
    object->setId(id);
    shot->getObjects()->addObject(object);
  }

  void addPoints(const std::vector<std::array<double, 2>>& points) const {
    for (const auto& point : points)
      shot->getPoints()->addPoint(new Geometry::Point2d(point[0], point[1]));
  }

  /// A region of face 1 of object 1 over points that are there.
  Geometry::Region2d* addPiece(int brush, int pen, const std::vector<int>& points,
                               const std::vector<int>& dockingEdges) const {
    auto* region = new Geometry::Region2d;
    region->setObjectNumber(1);
    region->setFaceNumber(1);
    region->setSourceRegionNumber(1);
    region->setBrushNumber(brush);
    region->setPenNumber(pen);
    for (const int point : points) region->addPoint(point);
    for (const int edge : dockingEdges) region->addDockingEdge(edge);
    shot->getRegions()->addRegion(region);
    return region;
  }
};

/// A rectangle in four pieces around an inner point off the middle: slanted docking edges.
struct FourPieces : PiecesModel {
  explicit FourPieces(int brush = 1, int pen = 3, bool docked = true) {
    addObject("A");
    addPoints({{-0.8, -0.7}, {0.9, -0.6}, {0.7, 0.8}, {-0.6, 0.75}, {0.13, -0.07}});
    for (int i = 1; i <= 4; ++i)
      addPiece(brush, pen, {i, i % 4 + 1, 5}, docked ? std::vector<int>{2, 3} : std::vector<int>());
  }
};

}  // namespace Lumivane::Test
