#include "scene/City.h"

#include <array>
#include <cmath>
#include <random>

namespace Lumivane::Bench {
namespace {

constexpr double LotSize = 24.0;
constexpr double EyeHeight = 1.7;

/// The same numbers everywhere, which the distributions of the standard library do not promise.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine(seed) {}
  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(engine() >> 11U) * 0x1.0p-53);
  }

 private:
  std::mt19937_64 engine;
};

int lotsPerSide(int boxes) {
  int side = 1;
  while (side * side < boxes) ++side;
  return side;
}

void addGround(Model& model, int side) {
  for (int row = 0; row <= side; ++row)
    for (int column = 0; column <= side; ++column)
      model.add({LotSize * column, LotSize * row, 0.0});
  model.things.push_back({"ground", {}});
  const auto corner = [side](int row, int column) { return row * (side + 1) + column + 1; };
  for (int row = 0; row < side; ++row)
    for (int column = 0; column < side; ++column)
      model.things.back().faces.push_back({{corner(row, column), corner(row + 1, column),
                                            corner(row + 1, column + 1), corner(row, column + 1)},
                                           1});
}

/// Sides of 6 to 12 metres: whatever its turn, a box stays 3 metres off the edges of its lot.
void addBox(Model& model, Random& random, Point centre, int number) {
  const double width = random.between(6.0, 12.0);
  const double depth = random.between(6.0, 12.0);
  const double height = random.between(6.0, 40.0);
  const double turn = random.between(0.0, std::acos(-1.0));
  const double c = std::cos(turn);
  const double s = std::sin(turn);

  std::array<int, 4> foot{};
  std::array<int, 4> top{};
  for (std::size_t i = 0; i < 4; ++i) {
    const double u = (i == 1 || i == 2 ? 0.5 : -0.5) * width;
    const double v = (i >= 2 ? 0.5 : -0.5) * depth;
    const Point corner{centre.x + c * u - s * v, centre.y + s * u + c * v, 0.0};
    foot[i] = model.add(corner);
    top[i] = model.add({corner.x, corner.y, height});
  }
  model.things.push_back({"box " + std::to_string(number), {}});
  std::vector<Face>& faces = model.things.back().faces;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t next = (i + 1) % 4;
    faces.push_back({{foot[i], top[i], top[next], foot[next]}, i % 2 == 0 ? 2 : 3});
  }
  faces.push_back({{top[0], top[3], top[2], top[1]}, 4});
}

std::vector<NamedView> viewsOf(int side) {
  const double size = LotSize * side;
  const double middle = LotSize * (side / 2) + 0.7;
  const Point walker{middle, middle, EyeHeight};
  return {{"air", {-0.2 * size, -0.15 * size, 0.5 * size + 40.0}, {0.7, 0.65, -0.5}, {0, 0, 1}},
          {"street", walker, {1, 0, 0}, {0, 0, 1}},
          {"sky", walker, {0, 0, 1}, {1, 0, 0}}};
}

}  // namespace

BenchScene city(int boxes, std::uint64_t seed) {
  BenchScene result;
  const int side = lotsPerSide(boxes);
  addGround(result.model, side);
  Random random(seed);
  for (int i = 0; i < boxes; ++i) {
    const Point centre{LotSize * (i % side + 0.5), LotSize * (i / side + 0.5), 0.0};
    addBox(result.model, random, centre, i + 1);
  }
  result.views = viewsOf(side);
  return result;
}

}  // namespace Lumivane::Bench
