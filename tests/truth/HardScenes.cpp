#include "truth/HardScenes.h"

#include "truth/Builder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;
using Visibility::Vector;

Vector plus(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vector times(const Vector& a, double factor) {
  return {a[0] * factor, a[1] * factor, a[2] * factor};
}

/// A place that is not too near the eye.
Vector somewhere(Random& random) {
  for (;;) {
    const Vector place = random.inBall(10.0);
    if (length(wide(place)) > 2.0L) return place;
  }
}

/// A triangle to hexagon in any plane, or a star with corners that turn inwards.
Outline anyOutline(Random& random, double radius) {
  const Vector centre = somewhere(random);
  const Vector axis = random.direction();
  const int corners = 3 + random.below(4);
  if (random.below(3) > 0)
    return regularPolygon(centre, axis, radius, corners, random.between(0, 6));
  const Outline outer = regularPolygon(centre, axis, radius, corners);
  const Outline inner = regularPolygon(centre, axis, radius * random.between(0.2, 0.9), corners,
                                       static_cast<double>(Pi) / corners);
  Outline star;
  for (std::size_t i = 0; i < outer.size(); ++i) {
    star.push_back(outer[i]);
    star.push_back(inner[i]);
  }
  return star;
}

void overlapping(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 40; ++i)
    builder.object().addFacing(anyOutline(random, random.between(0.3, 4.0)), result.eye);
  result.scene = builder.scene();
}

void interpenetrating(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Vector middle = times(random.direction(), 5.0);
  for (int i = 0; i < 14; ++i)
    builder.object().addFacing(regularPolygon(plus(middle, random.inBall(0.7)), random.direction(),
                                              3.0, 3 + random.below(5), random.between(0, 6)),
                               result.eye);
  for (int i = 0; i < 4; ++i) {
    const Vector low = plus(middle, random.inBall(2.0));
    builder.object().addBox(low, plus(low, {1.5, 2.0, 1.0}));
  }
  result.scene = builder.scene();
}

/// Planes with pictures painted on pictures, of several objects, in any order.
void coplanarStack(Random& random, HardScene& result) {
  SceneBuilder builder;
  std::vector<std::pair<Vector, Vector>> planes;
  for (int i = 0; i < 4; ++i) planes.emplace_back(somewhere(random), random.direction());
  for (int i = 0; i < 40; ++i) {
    const auto& [centre, axis] = planes[static_cast<std::size_t>(random.below(4))];
    const LongVector u = anyNormalTo(unit(wide(axis)));
    const LongVector v = cross(unit(wide(axis)), u);
    const Vector place =
        narrow(wide(centre) + u * random.between(-2, 2) + v * random.between(-2, 2));
    if (random.below(2) == 0) builder.object();
    builder.addFacing(regularPolygon(place, axis, random.between(0.3, 2.5), 3 + random.below(6),
                                     random.between(0, 6)),
                      result.eye);
  }
  result.scene = builder.scene();
}

void slivers(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 30; ++i) {
    const Vector from = somewhere(random);
    const Vector to = somewhere(random);
    const double width = std::pow(10.0, random.between(-9.0, -1.0));
    builder.object().addFacing({from, to, plus(to, times(random.direction(), width))}, result.eye);
  }
  for (int i = 0; i < 8; ++i)
    builder.object().addFacing(anyOutline(random, random.between(1.0, 4.0)), result.eye);
  result.scene = builder.scene();
}

/// Long strips or triangles in a circle, each over the next.
void cyclic(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int ring = 0; ring < 4; ++ring) {
    const Vector axis = random.direction();
    const LongVector n = wide(axis);
    const LongVector u = anyNormalTo(n);
    const LongVector v = cross(n, u);
    const int members = 3 + random.below(3);
    for (int i = 0; i < members; ++i) {
      const auto at = [&](double angle, double radius, double height) {
        const double turn = angle + 2.0 * static_cast<double>(Pi) * i / members;
        return narrow(n * (5.0 + ring + height) + u * (radius * std::cos(turn)) +
                      v * (radius * std::sin(turn)));
      };
      const double tilt = random.between(0.2, 0.6);
      builder.object().addFacing({at(-1.25, 2.5, -tilt), at(1.25, 2.5, tilt), at(1.1, 1.9, tilt)},
                                 result.eye);
    }
  }
  result.scene = builder.scene();
}

/// A ball of triangles that share their edges.
void addBall(SceneBuilder& builder, const Vector& centre, double radius, int rows, bool inside) {
  std::vector<Vector> points{plus(centre, {0, 0, radius}), plus(centre, {0, 0, -radius})};
  const int columns = 2 * rows;
  for (int row = 1; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      const double polar = static_cast<double>(Pi) * row / rows;
      const double turn = 2.0 * static_cast<double>(Pi) * column / columns;
      points.push_back(
          plus(centre, {radius * std::sin(polar) * std::cos(turn),
                        radius * std::sin(polar) * std::sin(turn), radius * std::cos(polar)}));
    }
  const auto at = [&](int row, int column) {
    return 2 + (row - 1) * columns + (column + columns) % columns;
  };
  std::vector<std::vector<int>> outlines;
  for (int column = 0; column < columns; ++column) {
    outlines.push_back({0, at(1, column + 1), at(1, column)});
    outlines.push_back({1, at(rows - 1, column), at(rows - 1, column + 1)});
    for (int row = 1; row + 1 < rows; ++row) {
      outlines.push_back({at(row, column), at(row, column + 1), at(row + 1, column)});
      outlines.push_back({at(row, column + 1), at(row + 1, column + 1), at(row + 1, column)});
    }
  }
  if (inside)
    for (auto& outline : outlines) std::reverse(outline.begin(), outline.end());
  builder.addMesh(points, outlines);
}

void addTorus(SceneBuilder& builder, const Vector& centre, double wideRadius, double thin,
              int rows) {
  std::vector<Vector> points;
  for (int i = 0; i < 2 * rows; ++i)
    for (int k = 0; k < rows; ++k) {
      const double around = static_cast<double>(Pi) * i / rows;
      const double across = 2.0 * static_cast<double>(Pi) * k / rows;
      const double radius = wideRadius + thin * std::cos(across);
      points.push_back(plus(
          centre, {radius * std::cos(around), radius * std::sin(around), thin * std::sin(across)}));
    }
  const auto at = [&](int i, int k) { return (i % (2 * rows)) * rows + k % rows; };
  std::vector<std::vector<int>> outlines;
  for (int i = 0; i < 2 * rows; ++i)
    for (int k = 0; k < rows; ++k) {
      outlines.push_back({at(i, k), at(i, k + 1), at(i + 1, k)});
      outlines.push_back({at(i + 1, k), at(i, k + 1), at(i + 1, k + 1)});
    }
  builder.addMesh(points, outlines);
}

void closedMeshes(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBall(builder.object(), times(random.direction(), 5.0), 1.5, 7, false);
  addTorus(builder.object(), times(random.direction(), 5.0), 2.0, 0.6, 9);
  addBall(builder.object(), random.inBall(0.5), 20.0, 6, true);
  result.scene = builder.scene();
  const Rotation turn(random);
  result.scene = moved(result.scene, turn);
}

Vector cornerOfAny(const PolygonScene& scene, Random& random) {
  return scene
      .points[static_cast<std::size_t>(random.below(static_cast<int>(scene.points.size())))];
}

void eyeOnVertex(Random& random, HardScene& result) {
  closedMeshes(random, result);
  result.eye = cornerOfAny(result.scene, random);
}

Vector grid(Random& random, int most) {
  const auto one = [&] { return static_cast<double>(random.below(2 * most + 1) - most); };
  return {one(), one(), one()};
}

/// Boxes on a grid of whole numbers, which touch, overlap and share planes.
void addBoxes(SceneBuilder& builder, Random& random, int count) {
  for (int i = 0; i < count; ++i) {
    const Vector low = grid(random, 4);
    const Vector size{1.0 + random.below(3), 1.0 + random.below(3), 1.0 + random.below(3)};
    builder.object().addBox(low, plus(low, size));
  }
}

void eyeOnEdge(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBoxes(builder, random, 10);
  result.scene = builder.scene();
  const int outline = random.below(static_cast<int>(result.scene.labels.size()));
  const Outline corners = outlineOf(result.scene, static_cast<std::size_t>(outline));
  result.eye = times(plus(corners[0], corners[1]), 0.5);
}

/// An eye in the planes of many sides, and now and then on one.
void eyeInPlane(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBoxes(builder, random, 14);
  result.scene = builder.scene();
  result.eye = grid(random, 4);
  if (random.below(2) == 0) result.eye[2] += 0.375;
  if (random.below(2) == 0) result.eye[1] += 0.25;
}

void touchingBoxes(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBoxes(builder, random, 25);
  result.eye = {0.31, -0.27, 0.11};
  result.scene = builder.scene();
  turnPerhaps(random, result.scene, result.eye);
}

void eyeInsideBody(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBall(builder.object(), {0, 0, 0}, 0.5, 5, random.below(2) == 0);
  builder.object().addBox({-1, -1, -1}, {1, 1.5, 1.25});
  for (int i = 0; i < 15; ++i)
    builder.object().addFacing(anyOutline(random, random.between(0.5, 3.0)), result.eye);
  addBall(builder.object(), {0, 0, 0}, 12.0, 6, true);
  result.scene = builder.scene();
  result.eye = random.inBall(0.2);
}

void farAway(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 30; ++i) {
    Outline outline = anyOutline(random, random.between(0.3, 4.0));
    const double factor = random.below(3) == 0 ? 1.0 : random.between(0.9e6, 1.1e6);
    for (Vector& corner : outline) corner = times(corner, factor);
    builder.object().addFacing(outline, result.eye);
  }
  const Vector middle = times(random.direction(), 1e6);
  for (int i = 0; i < 10; ++i)
    builder.object().addFacing(regularPolygon(plus(middle, random.inBall(3.0)), random.direction(),
                                              random.between(0.5, 4.0), 3 + random.below(4)),
                               result.eye);
  result.scene = builder.scene();
}

void selfCrossing(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 14; ++i) {
    const int corners = 5 + 2 * random.below(3);
    const Outline circle = regularPolygon(somewhere(random), random.direction(),
                                          random.between(1.0, 4.0), corners, random.between(0, 6));
    Outline star;
    for (int k = 0; k < corners; ++k)
      star.push_back(circle[static_cast<std::size_t>(2 * k % corners)]);
    builder.object().addFacing(star, result.eye);
  }
  for (int i = 0; i < 6; ++i) {
    // Two loops of unequal size that meet between their corners.
    const LongVector n = wide(random.direction());
    const LongVector u = anyNormalTo(n);
    const LongVector v = cross(n, u);
    const LongVector at = wide(somewhere(random));
    builder.object().addFacing({narrow(at), narrow(at + u * 2.0L + v * 1.5L), narrow(at + v * 1.5L),
                                narrow(at + u * 1.3L - v * 0.4L)},
                               result.eye);
  }
  result.scene = builder.scene();
}

/// A frame as one outline: the outer ring, a bridge, the hole, and back.
void addFrame(Random& random, HardScene& result, PolygonScene& scene, int object) {
  const Vector centre = somewhere(random);
  const Vector axis = random.direction();
  const double radius = random.between(1.0, 3.5);
  const int corners = 4 + random.below(4);
  SceneBuilder one;
  Outline outer = regularPolygon(centre, axis, radius, corners);
  Outline inner = regularPolygon(centre, axis, radius * 0.5, corners);
  Real volume = determinant(fromEye(outer[0], result.eye), fromEye(outer[1], result.eye),
                            fromEye(outer[2], result.eye));
  if (volume < 0.0L) std::reverse(outer.begin(), outer.end());
  if (volume < 0.0L) std::reverse(inner.begin(), inner.end());
  std::reverse(inner.begin() + 1, inner.end());
  const auto bridge = static_cast<std::size_t>(corners);
  const int first = static_cast<int>(scene.points.size());
  scene.points.insert(scene.points.end(), outer.begin(), outer.end());
  scene.points.insert(scene.points.end(), inner.begin(), inner.end());
  const std::size_t begin = scene.corners.size();
  for (int i = 0; i <= corners; ++i) scene.corners.push_back(first + i % corners);
  for (int i = 0; i <= corners; ++i) scene.corners.push_back(first + corners + i % corners);
  scene.docking.resize(scene.corners.size());
  scene.docking[begin + bridge] = 1;
  scene.docking.back() = 1;
  scene.offsets.push_back(scene.corners.size());
  scene.labels.push_back({object, 1, 1});
}

void bridgedHoles(Random& random, HardScene& result) {
  PolygonScene scene{{}, {0}, {}, {}, {}, {}, {}, {}};
  for (int i = 1; i <= 20; ++i) addFrame(random, result, scene, i);
  result.scene = scene;
}

/// Walls whose neighbours are divided otherwise: corners in the middle of edges.
void tJunctions(Random& random, HardScene& result) {
  SceneBuilder builder;
  builder.object();
  for (int floor = 0; floor < 4; ++floor) {
    double from = -4.0;
    while (from < 4.0) {
      const double to = std::min(4.0, from + random.between(0.3, 2.0));
      const double y = 3.0 + 0.05 * random.below(2);
      builder.addFacing({{from, y, floor - 2.0},
                         {to, y, floor - 2.0},
                         {to, y, floor - 1.0},
                         {from, y, floor - 1.0}},
                        result.eye);
      from = to;
    }
  }
  builder.object();
  for (int i = 0; i < 5; ++i)
    builder.addFacing({{-4.0 + 1.6 * i, 3.0, -2.0},
                       {-4.0 + 1.6 * (i + 1), 3.0, -2.0},
                       {-4.0 + 1.6 * (i + 1), 0.5, -2.0},
                       {-4.0 + 1.6 * i, 0.5, -2.0}},
                      result.eye);
  result.scene = builder.scene();
  if (random.below(2) == 0) result.scene = moved(result.scene, Rotation(random));
}

/// A room seen from its middle: its edges are the diagonals of a cube about the eye.
void cubicRoom(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBall(builder.object(), {2.0, 0.0, 0.0}, 1.0, 4, false);
  const double size = 3.0 + random.below(3);
  const std::array<Vector, 8> corner{{{-size, -size, -size},
                                      {size, -size, -size},
                                      {-size, size, -size},
                                      {size, size, -size},
                                      {-size, -size, size},
                                      {size, -size, size},
                                      {-size, size, size},
                                      {size, size, size}}};
  builder.object();
  for (const auto& side : std::vector<std::array<std::size_t, 4>>{
           {0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1}, {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}})
    builder.addFacing({corner[side[0]], corner[side[1]], corner[side[2]], corner[side[3]]},
                      result.eye);
  // Pictures on the walls whose corners lie on the diagonals, too.
  builder.object().addFacing({{size, -1, -1}, {size, 1, -1}, {size, 1, 1}, {size, -1, 1}},
                             result.eye);
  builder.object().addFacing({{-1, -size, -1}, {1, -size, -1}, {1, -size, 1}, {-1, -size, 1}},
                             result.eye);
  for (int i = 0; i < 4; ++i) builder.object().addBox(grid(random, 2), {2.5, 2.5, 2.5});
  result.scene = builder.scene();
}

/// Far from the origin, where coordinates have few digits left.
void moveFarOff(Random& random, HardScene& result) {
  const Vector offset{84616.0 + random.below(100), 447423.0 + random.below(100), 0.0};
  result.scene = moved(result.scene, [&](const Vector& p) { return plus(p, offset); });
  result.eye = plus(result.eye, offset);
}

void largeCoordinates(Random& random, HardScene& result) {
  SceneBuilder builder;
  addBoxes(builder, random, 25);
  result.scene = builder.scene();
  result.eye = {0.31, -0.27, 0.11};
  moveFarOff(random, result);
}

/// Turned boxes far off, whose corners miss each other by the last digit, or whose sides are flat
/// and in nearly one plane, but not in one layer.
void turnedFarOff(Random& random, HardScene& result, bool rounded) {
  touchingBoxes(random, result);
  const Rotation turn(random);
  result.scene = moved(result.scene, turn);
  result.eye = turn(result.eye);
  moveFarOff(random, result);
  if (!rounded) return;
  result.scene = moved(result.scene, [](const Vector& p) {
    const auto round = [](double value) { return std::round(value * 1e5) / 1e5; };
    return Vector{round(p[0]), round(p[1]), round(p[2])};
  });
}

void fans(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int fan = 0; fan < 3; ++fan) {
    const Vector centre = somewhere(random);
    const Vector axis = random.direction();
    const Outline rim = regularPolygon(centre, axis, random.between(1.0, 3.0), 200);
    const Vector tip = plus(centre, times(axis, random.between(-1.0, 1.0)));
    builder.object();
    for (std::size_t i = 0; i < rim.size(); ++i)
      builder.addFacing({tip, rim[i], rim[(i + 1) % rim.size()]}, result.eye);
  }
  result.scene = builder.scene();
}

void identical(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Outline one = anyOutline(random, 3.0);
  const Outline two = anyOutline(random, 2.0);
  for (int i = 0; i < 40; ++i) {
    Outline copy = random.below(3) == 0 ? two : one;
    std::rotate(copy.begin(), copy.begin() + random.below(static_cast<int>(copy.size())),
                copy.end());
    builder.object().addFacing(copy, result.eye);
  }
  result.scene = builder.scene();
}

/// Outlines that are bent by much more than the tolerance, and are taken as triangles. None crosses
/// itself: corners move away from the middle only, and off the plane.
void bent(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 20; ++i) {
    const Vector centre = somewhere(random);
    const Vector axis = random.direction();
    Outline outline = regularPolygon(centre, axis, random.between(0.5, 4.0), 4 + random.below(8));
    for (Vector& corner : outline) {
      const LongVector out = (wide(corner) - wide(centre)) * random.between(0.3, 1.0);
      corner = narrow(wide(centre) + out + wide(axis) * random.between(-0.3, 0.3));
    }
    builder.object().addFacing(outline, result.eye);
  }
  result.scene = builder.scene();
}

void twoSided(Random& random, HardScene& result) {
  coplanarStack(random, result);
  SceneBuilder more;
  for (int i = 0; i < 20; ++i) more.object().add(anyOutline(random, random.between(0.3, 3.0)));
  const PolygonScene other = more.scene();
  for (std::size_t i = 0; i + 1 < other.offsets.size(); ++i) {
    for (const Vector& point : outlineOf(other, i)) {
      result.scene.corners.push_back(static_cast<int>(result.scene.points.size()));
      result.scene.points.push_back(point);
    }
    result.scene.offsets.push_back(result.scene.corners.size());
    result.scene.labels.push_back({result.scene.labels.back().object + 1, 1, 1});
    result.scene.objectIds.push_back("more");
  }
  result.options.twoSided = true;
}

struct Kind {
  const char* name;
  void (*make)(Random&, HardScene&);
};

constexpr std::array<Kind, HardKinds> Kinds{{{"overlapping", overlapping},
                                             {"interpenetrating", interpenetrating},
                                             {"coplanar stack", coplanarStack},
                                             {"slivers", slivers},
                                             {"cyclic overlaps", cyclic},
                                             {"closed meshes", closedMeshes},
                                             {"eye on a vertex", eyeOnVertex},
                                             {"eye on an edge", eyeOnEdge},
                                             {"eye in planes", eyeInPlane},
                                             {"touching boxes", touchingBoxes},
                                             {"eye inside a body", eyeInsideBody},
                                             {"far away", farAway},
                                             {"self-crossing outlines", selfCrossing},
                                             {"holes by bridges", bridgedHoles},
                                             {"T-junctions", tJunctions},
                                             {"cubic room", cubicRoom},
                                             {"large coordinates", largeCoordinates},
                                             {"fans", fans},
                                             {"identical polygons", identical},
                                             {"bent or two-sided", nullptr}}};

}  // namespace

HardScene hardScene(std::size_t number) {
  Random random(1000 + number);
  HardScene result;
  const Kind& kind = Kinds[number % HardKinds];
  const std::size_t round = number / HardKinds;
  result.name = std::string(kind.name) + " " + std::to_string(round);
  result.options.field = round % 3 == 2 ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
  result.options.forward = round % 2 == 0 ? Vector{1, 0, 0} : random.direction();
  if (number >= HardSceneCount) {
    turnedFarOff(random, result, number % 2 == 1);
    result.name = "turned far off " + std::to_string(number - HardSceneCount);
  } else if (kind.make != nullptr) {
    kind.make(random, result);
  } else if (round % 2 == 0) {
    bent(random, result);
  } else {
    twoSided(random, result);
  }
  return result;
}

}  // namespace Lumivane::Truth
