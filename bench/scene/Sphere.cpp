#include "scene/Sphere.h"

#include <cmath>
#include <stdexcept>

namespace Lumivane::Bench {
namespace {

constexpr double Radius = 10.0;

/// A ball of b bands and c columns has 2 c (b - 1) triangles.
struct Mesh {
  int bands;
  int columns;
};

Mesh meshOf(int triangles) {
  const int half = triangles / 2;
  int inner = static_cast<int>(std::sqrt(static_cast<double>(half)));
  while (inner > 1 && half % inner != 0) --inner;
  if (triangles % 2 != 0 || inner < 1 || half / inner < 3)
    throw std::invalid_argument("no ball has " + std::to_string(triangles) + " triangles");
  return {inner + 1, half / inner};
}

/// Circle k of latitude, from 0 at the south pole.
std::vector<int> circle(Model& model, Mesh mesh, int k) {
  const double pi = std::acos(-1.0);
  if (k == 0 || k == mesh.bands)
    return std::vector<int>(static_cast<std::size_t>(mesh.columns),
                            model.add({0.0, 0.0, k == 0 ? -Radius : Radius}));
  std::vector<int> result;
  const double latitude = pi * k / mesh.bands - pi / 2.0;
  for (int i = 0; i < mesh.columns; ++i) {
    const double longitude = 2.0 * pi * i / mesh.columns;
    result.push_back(model.add({Radius * std::cos(latitude) * std::cos(longitude),
                                Radius * std::cos(latitude) * std::sin(longitude),
                                Radius * std::sin(latitude)}));
  }
  return result;
}

void addTriangle(Thing& thing, int a, int b, int c) {
  if (a != b && b != c && c != a) thing.faces.push_back({{a, b, c}, 2});
}

}  // namespace

BenchScene sphere(int triangles) {
  const Mesh mesh = meshOf(triangles);
  BenchScene result;
  result.model.things.push_back({"ball", {}});
  std::vector<int> low = circle(result.model, mesh, 0);
  for (int k = 1; k <= mesh.bands; ++k) {
    std::vector<int> high = circle(result.model, mesh, k);
    for (std::size_t i = 0; i < low.size(); ++i) {
      const std::size_t next = (i + 1) % low.size();
      addTriangle(result.model.things.back(), low[i], high[i], high[next]);
      addTriangle(result.model.things.back(), low[i], high[next], low[next]);
    }
    low = std::move(high);
  }
  result.views = {{"air", {-26.0, -13.0, 7.5}, {26.0, 13.0, -7.5}, {0, 0, 1}}};
  return result;
}

}  // namespace Lumivane::Bench
