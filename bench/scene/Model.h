#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Bench {

struct Point {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

/// A plane polygon: numbers of points, from 1, clockwise for the eye that is to see it, since that
/// is the side which a shot keeps.
struct Face {
  std::vector<int> points;
  int brush = 1;
};

struct Thing {
  std::string id;
  std::vector<Face> faces;
};

/// A scene as it stands in a scene file, without the library.
struct Model {
  std::vector<Point> points;
  std::vector<Thing> things;

  /// Keeps a point, rounded to millimetres so that text and model are the same. \return its number
  int add(Point point);
  std::size_t faceCount() const;
};

struct NamedView {
  std::string name;
  Point eye;
  Point forward;
  Point up;
};

struct BenchScene {
  Model model;
  std::vector<NamedView> views;
};

/// The text of the scene's file.
std::string sceneText(const Model& model);

}  // namespace Lumivane::Bench
