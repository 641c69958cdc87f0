#pragma once

#include "plain/Geometry.h"

#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// Texts of random scenes that leave nothing out: for comparing two forms of the pipeline.
namespace Lumivane::Plain {

struct Random {
  explicit Random(std::uint64_t seed) : engine(seed) {}

  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(engine); }
  Vector point(double reach) {
    return {between(-reach, reach), between(-reach, reach), between(-reach, reach)};
  }
  Vector axis() {
    Vector result(3, 0.0);
    result[static_cast<std::size_t>(below(3))] = below(2) == 0 ? 1.0 : -1.0;
    return result;
  }

  std::mt19937_64 engine;
};

/// Collects objects, each with faces of one region or more, and writes the scene.
class RandomScene {
 public:
  void beginObject() { objects.push_back({}); }

  void addFace(const std::vector<Matrix>& regions, const std::vector<std::vector<int>>& docking) {
    Object& object = objects.back();
    ++object.faces;
    for (std::size_t i = 0; i < regions.size(); ++i) {
      std::ostringstream text;
      text << "{\"Brush\":1,\"Face\":" << object.faces << ",\"Points\":[";
      for (std::size_t k = 0; k < regions[i].size(); ++k) {
        points.push_back(regions[i][k]);
        text << (k == 0 ? "" : ",") << points.size();
      }
      text << "],\"DockingEdges\":[";
      for (std::size_t k = 0; k < docking[i].size(); ++k)
        text << (k == 0 ? "" : ",") << docking[i][k];
      text << "]}";
      object.regions.push_back(text.str());
    }
  }

  std::string text() const {
    std::ostringstream result;
    result.precision(17);
    result << R"({"Brushes":[[1,2,3,255]],"Pens":[[4,5,6,255,0.5]],"Points":[)";
    for (std::size_t i = 0; i < points.size(); ++i)
      result << (i == 0 ? "" : ",") << '[' << points[i][0] << ',' << points[i][1] << ','
             << points[i][2] << ']';
    result << "],\"Objects\":[";
    for (std::size_t i = 0; i < objects.size(); ++i) {
      result << (i == 0 ? "" : ",") << "{\"Id\":\"object " << i << "\",\"Pen\":1,\"Faces\":[";
      for (int f = 0; f < objects[i].faces; ++f) result << (f == 0 ? "" : ",") << "{}";
      result << "],\"Regions\":[";
      for (std::size_t r = 0; r < objects[i].regions.size(); ++r)
        result << (r == 0 ? "" : ",") << objects[i].regions[r];
      result << "]}";
    }
    result << "]}";
    return result.str();
  }

 private:
  struct Object {
    int faces = 0;
    std::vector<std::string> regions;
  };
  Matrix points;
  std::vector<Object> objects;
};

/// A plane polygon about a centre: a star of random radii, so convex or not, of either turn.
inline Matrix randomPolygon(Random& random, const Vector& centre, const Vector& u,
                            const Vector& v) {
  const int corners = 3 + random.below(5);
  const double sign = random.below(2) == 0 ? 1.0 : -1.0;
  const bool isStar = random.below(3) == 0;
  Matrix polygon;
  for (int k = 0; k < corners; ++k) {
    const double angle = sign * 2.0 * std::acos(-1.0) * k / corners;
    const double radius = isStar ? random.between(0.2, 1.5) : 1.0;
    Vector p = centre;
    for (std::size_t c = 0; c < 3; ++c)
      p[c] += radius * (std::cos(angle) * u[c] + std::sin(angle) * v[c]);
    polygon.push_back(p);
  }
  if (random.below(12) == 0) polygon.push_back(polygon.front());
  return polygon;
}

inline std::vector<int> randomEdges(Random& random, std::size_t corners) {
  std::vector<int> edges;
  if (random.below(3) != 0) return edges;
  for (int e = 1; e <= static_cast<int>(corners); ++e)
    if (random.below(3) == 0) edges.push_back(e);
  return edges;
}

inline std::string scatteredScene(Random& random) {
  RandomScene scene;
  const int objects = 1 + random.below(6);
  for (int o = 0; o < objects; ++o) {
    scene.beginObject();
    const int faces = 1 + random.below(5);
    for (int f = 0; f < faces; ++f) {
      const Vector u = random.point(1.5);
      const Vector v = random.point(1.5);
      std::vector<Matrix> regions;
      std::vector<std::vector<int>> docking;
      const int count = random.below(4) == 0 ? 2 : 1;
      for (int r = 0; r < count; ++r) {
        regions.push_back(randomPolygon(random, random.point(4.0), u, v));
        docking.push_back(randomEdges(random, regions.back().size()));
      }
      scene.addFace(regions, docking);
    }
  }
  return scene.text();
}

/// Rectangles across the axes with whole coordinates.
inline Matrix griddedRectangle(Random& random) {
  const auto axis = static_cast<std::size_t>(random.below(3));
  const double at = random.below(7) - 3;
  const double a0 = random.below(6) - 3;
  const double b0 = random.below(6) - 3;
  const double a1 = a0 + 1 + random.below(3);
  const double b1 = b0 + 1 + random.below(3);
  Matrix corners = {{a0, b0}, {a1, b0}, {a1, b1}, {a0, b1}};
  if (random.below(2) == 0) std::swap(corners[1], corners[3]);
  for (Vector& corner : corners)
    corner.insert(corner.begin() + static_cast<std::ptrdiff_t>(axis), at);
  return corners;
}

inline std::string griddedScene(Random& random) {
  RandomScene scene;
  const int objects = 1 + random.below(5);
  for (int o = 0; o < objects; ++o) {
    scene.beginObject();
    const int faces = 1 + random.below(6);
    for (int f = 0; f < faces; ++f) {
      const Matrix rectangle = griddedRectangle(random);
      scene.addFace({rectangle}, {randomEdges(random, rectangle.size())});
    }
  }
  return scene.text();
}

}  // namespace Lumivane::Plain
