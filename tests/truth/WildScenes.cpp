#include "truth/WildScenes.h"

#include "truth/Builder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;
using Visibility::Vector;

Vector plus(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vector times(const Vector& a, double factor) {
  return {a[0] * factor, a[1] * factor, a[2] * factor};
}
Vector between(const Vector& a, const Vector& b, double part) {
  return plus(times(a, 1.0 - part), times(b, part));
}
double powerOfTen(Random& random, double low, double high) {
  return std::pow(10.0, random.between(low, high));
}

Vector onGrid(Random& random, int most) {
  const auto one = [&] { return static_cast<double>(random.below(2 * most + 1) - most); };
  return {one(), one(), one()};
}

/// Triangles with corners on a small grid and an eye on it or halfway between: edges over edges,
/// planes through the eye, corners behind corners.
void gridTriangles(Random& random, HardScene& result) {
  SceneBuilder builder;
  const int size = 1 + random.below(3);
  const int count = 4 + random.below(40);
  for (int i = 0; i < count; ++i)
    builder.object().add({onGrid(random, size), onGrid(random, size), onGrid(random, size)});
  result.scene = builder.scene();
  result.eye = times(onGrid(random, 2 * size), 0.5);
  result.options.twoSided = random.below(2) == 0;
}

/// Outlines of any grid points: bent, crossing and touching themselves, with repeated corners and
/// spikes.
void gridOutlines(Random& random, HardScene& result) {
  SceneBuilder builder;
  const int count = 3 + random.below(12);
  for (int i = 0; i < count; ++i) {
    Outline outline;
    // Which ears an outline has that crosses itself, nobody says.
    const int corners = 3 + random.below(5);
    if (corners > 3) result.truth = HardScene::Truth::Single;
    for (int k = 0; k < corners; ++k) outline.push_back(onGrid(random, 2));
    builder.object().add(outline);
  }
  result.scene = builder.scene();
  result.eye = {0.25 * random.below(9) - 1.0, 0.125, 0.37};
  result.options.twoSided = random.below(2) == 0;
}

/// Flat outlines on a grid that touch themselves in corners and along edges, run twice around,
/// have spikes and repeated corners; holes touch the outside.
void touchingOutlines(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 12; ++i) {
    const double depth = 3.0 + random.below(4);
    const int corners = 4 + random.below(12);
    Outline outline;
    for (int k = 0; k < corners; ++k) {
      const Vector flat = onGrid(random, 4);
      const Vector corner{flat[0], depth, flat[1]};
      outline.push_back(corner);
      if (random.below(6) == 0) outline.push_back(corner);
      if (random.below(6) == 0) outline.insert(outline.end(), {onGrid(random, 0), corner});
    }
    for (Vector& corner : outline) corner[1] = depth;
    builder.object().add(outline);
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
  result.eye = {0.5 * random.below(3), 0.0, 0.5 * random.below(3)};
  turnPerhaps(random, result.scene, result.eye);
}

/// Polygons that are flat within the tolerance only, and an eye on one of their edges or a hair off
/// it, where the ends of the edge are opposite to each other.
void eyeAtBentEdge(Random& random, HardScene& result) {
  SceneBuilder builder;
  // An eye within the thickness of a bent outline has no inside of it.
  const bool isBent = random.below(2) == 0;
  if (isBent) result.truth = HardScene::Truth::Nobody;
  for (int i = 0; i < 8; ++i) {
    const Vector axis = random.direction();
    Outline outline = regularPolygon(random.inBall(2.0), axis, random.between(1.0, 4.0),
                                     4 + random.below(4), random.between(0, 6));
    const double bend = isBent ? powerOfTen(random, -9.0, -4.5) : 0.0;
    for (Vector& corner : outline)
      corner = plus(corner, times(axis, bend * random.between(-1.0, 1.0)));
    if (i == 0) {
      result.eye = between(outline[0], outline[1], random.below(2) == 0 ? 0.5 : 0.3);
      if (random.below(2) == 0)
        result.eye = plus(result.eye, times(random.direction(), powerOfTen(random, -14.0, -5.0)));
    }
    builder.object().add(outline);
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
}

/// The sides and the top of a tall box as one outline, which is bent around the eye: more than half
/// of the sphere is one region.
void lantern(Random& random, HardScene& result) {
  SceneBuilder builder;
  const double tall = random.between(0.5, 20.0);
  const double lean = random.between(0.01, 0.2);
  const auto top = [](double x, double y) { return Vector{x, y, 1.0}; };
  const double o = 1.0 + lean;
  Outline outline{top(1, 1),      {1, o, -tall},   {-1, o, -tall}, top(-1, 1),
                  {-o, 1, -tall}, {-o, -1, -tall}, top(-1, -1),    {-1, -o, -tall},
                  {1, -o, -tall}, top(1, -1),      {o, -1, -tall}, {o, 1, -tall}};
  for (Vector& corner : outline)
    corner = plus(corner, times(random.direction(), 0.3 * lean * random.between(0.0, 1.0)));
  if (random.below(2) == 0) std::reverse(outline.begin(), outline.end());
  builder.object().add(outline);
  for (int i = random.below(3); i > 0; --i)
    builder.object().add(
        regularPolygon(random.inBall(0.5), random.direction(), 0.2, 3 + random.below(3)));
  result.eye = {random.between(-0.6, 0.6), random.between(-0.6, 0.6), random.between(-0.5, 0.9)};
  result.scene = builder.scene();
  result.options.field =
      random.below(4) > 0 ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
  result.options.twoSided = random.below(2) == 0;
}

/// Any polygons about the eye.
void crowd(Random& random, SceneBuilder& builder, int count) {
  for (int i = 0; i < count; ++i)
    builder.object().add(regularPolygon(times(random.direction(), random.between(1.0, 8.0)),
                                        random.direction(), random.between(0.3, 5.0),
                                        3 + random.below(4), random.between(0, 6)));
}

void tiny(Random& random, HardScene& result) {
  SceneBuilder builder;
  crowd(random, builder, 20);
  const double scale = powerOfTen(random, -200.0, -5.0);
  result.scene = moved(builder.scene(), [scale](const Vector& p) { return times(p, scale); });
  result.options.twoSided = true;
}

void huge(Random& random, HardScene& result) {
  SceneBuilder builder;
  crowd(random, builder, 20);
  const double scale = powerOfTen(random, 3.0, 25.0);
  const Vector offset = times(random.direction(), random.below(2) == 0 ? 0.0 : 1e3 * scale);
  result.scene =
      moved(builder.scene(), [&](const Vector& p) { return plus(times(p, scale), offset); });
  result.eye = offset;
  result.options.twoSided = true;
}

/// Hundreds of copies and of sheets a hair apart: more edges on one line than any tile can hold.
void bundles(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Vector axis = random.direction();
  const Vector place = times(axis, 4.0);
  const Outline one = regularPolygon(place, axis, 1.0, 3 + random.below(3));
  const int copies = 100 + random.below(500);
  const double apart = random.below(2) == 0 ? 0.0 : powerOfTen(random, -12.0, -4.0);
  for (int i = 0; i < copies; ++i) {
    Outline copy = one;
    for (Vector& corner : copy) corner = plus(corner, times(axis, apart * i));
    builder.object().add(copy);
  }
  crowd(random, builder, 3);
  result.scene = builder.scene();
  result.options.twoSided = true;
}

/// Planes that differ by about the tolerance of what is one plane.
void nearlyCoplanar(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Vector axis = random.direction();
  const LongVector u = anyNormalTo(wide(axis));
  const LongVector v = cross(wide(axis), u);
  for (int i = 0; i < 25; ++i) {
    const double size = random.between(0.3, 4.0);
    const double off = powerOfTen(random, -9.0, -4.0) * random.between(-1.0, 1.0);
    const LongVector centre =
        wide(axis) * (5.0L + off) + u * random.between(-2, 2) + v * random.between(-2, 2);
    const double tilt = powerOfTen(random, -9.0, -4.0);
    const Vector leaning = plus(axis, times(random.direction(), tilt));
    builder.object().add(
        regularPolygon(narrow(centre), leaning, size, 3 + random.below(3), random.between(0, 6)));
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
  result.truth = HardScene::Truth::Single;  // a third plane may lie between two that count as one
  if (random.below(3) == 0) result.eye = times(axis, 4.9);
}

/// An eye a hair above a floor of tiles and before a wall.
void nearSurfaces(Random& random, HardScene& result) {
  SceneBuilder builder;
  const double noise = random.below(2) == 0 ? 0.0 : powerOfTen(random, -12.0, -6.0);
  const auto point = [&](double x, double y) {
    return Vector{x, y, noise * random.between(-1.0, 1.0)};
  };
  for (int x = -3; x < 3; ++x)
    for (int y = -3; y < 3; ++y)
      builder.object().add({point(x, y), point(x + 1, y), point(x + 1, y + 1), point(x, y + 1)});
  builder.object().addBox({1, 1, 0}, {2, 2, 2});
  builder.object().addBox({-2, -1, -1}, {-1, 1, 3});
  result.eye = {random.between(-0.9, 0.9), random.between(-2.9, 2.9),
                powerOfTen(random, -12.0, -1.0)};
  if (random.below(3) == 0) result.eye[0] = -1.0 + powerOfTen(random, -12.0, -1.0);
  result.scene = builder.scene();
  result.options.twoSided = true;
  turnPerhaps(random, result.scene, result.eye);
}

/// Triangles a million times longer than wide, some close by the eye.
void needles(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 30; ++i) {
    const double length = powerOfTen(random, 0.0, 6.0);
    const Vector along = times(random.direction(), length);
    const Vector place = times(random.direction(), powerOfTen(random, -6.0, 1.0));
    const Vector side = times(random.direction(), powerOfTen(random, -6.0, 0.0));
    builder.object().add({plus(place, along), plus(place, times(along, -1.0)), plus(place, side)});
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
}

/// Very small things close to the eye within a very large world.
void worldsInWorlds(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 30; ++i) {
    const double scale = powerOfTen(random, -12.0, 9.0);
    builder.object().add(regularPolygon(times(random.direction(), 3.0 * scale), random.direction(),
                                        scale * random.between(0.3, 2.0), 3 + random.below(4)));
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
}

/// Fans of many triangles whose tips are one direction: one behind the other, seen from where the
/// axes are the corners of the engine's frame.
void starBursts(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Vector axis = random.direction();
  for (int fan = 0; fan < 3; ++fan) {
    const Vector tip = times(axis, 3.0 + fan);
    const Outline rim = regularPolygon(times(axis, 3.5 + fan), axis, random.between(0.5, 3.0),
                                       50 + random.below(400), random.between(0, 6));
    builder.object();
    for (std::size_t i = 0; i < rim.size(); ++i)
      builder.add({tip, rim[i], rim[(i + 1) % rim.size()]});
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
}

/// Boxes on a grid with eyes on corners, edges, faces and grid points.
void gridBoxes(Random& random, HardScene& result) {
  SceneBuilder builder;
  for (int i = 0; i < 8; ++i) {
    const Vector low = onGrid(random, 2);
    builder.object().addBox(low, plus(low, {1.0 + random.below(2), 1.0 + random.below(2), 1.0}));
  }
  result.scene = builder.scene();
  result.eye = times(onGrid(random, 6), 0.5);
  result.options.twoSided = random.below(2) == 0;
}

/// Planes that all run through one line or one point, which the eye is near or in line with.
void pencils(Random& random, HardScene& result) {
  SceneBuilder builder;
  const Vector axis = random.direction();
  const LongVector u = anyNormalTo(wide(axis));
  const LongVector v = cross(wide(axis), u);
  const Vector middle = times(random.direction(), 4.0);
  const int count = 6 + random.below(20);
  for (int i = 0; i < count; ++i) {
    const double turn = static_cast<double>(Pi) * i / count;
    const Vector across = narrow(u * std::cos(turn) + v * std::sin(turn));
    const double high = random.between(1.0, 3.0);
    const double wideBy = random.between(1.0, 3.0);
    const auto corner = [&](double a, double b) {
      return plus(middle, plus(times(axis, a * high), times(across, b * wideBy)));
    };
    builder.object().add({corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1)});
  }
  result.scene = builder.scene();
  result.options.twoSided = true;
  if (random.below(2) == 0) result.eye = plus(middle, times(axis, 5.0));
}

/// Eyes far from all, towards which everything is a speck.
void specks(Random& random, HardScene& result) {
  SceneBuilder builder;
  crowd(random, builder, 25);
  result.scene = builder.scene();
  result.eye = times(random.direction(), powerOfTen(random, 2.0, 18.0));
  result.options.forward = times(result.eye, -1.0);
  result.options.twoSided = true;
}

using Make = void (*)(Random&, HardScene&);
constexpr std::array<std::pair<const char*, Make>, WildKinds> Kinds{
    {{"grid triangles", gridTriangles},
     {"grid outlines", gridOutlines},
     {"outlines that touch themselves", touchingOutlines},
     {"eye at a bent edge", eyeAtBentEdge},
     {"lantern", lantern},
     {"tiny", tiny},
     {"huge", huge},
     {"bundles", bundles},
     {"nearly coplanar", nearlyCoplanar},
     {"near surfaces", nearSurfaces},
     {"needles", needles},
     {"worlds in worlds", worldsInWorlds},
     {"star bursts", starBursts},
     {"grid boxes", gridBoxes},
     {"pencils of planes", pencils},
     {"specks", specks}}};

}  // namespace

HardScene wildScene(std::size_t number) {
  Random random(77000 + number);
  HardScene result;
  const auto& [name, make] = Kinds.at(number % WildKinds);
  const std::size_t round = number / WildKinds;
  result.name = std::string(name) + " " + std::to_string(round);
  result.options.field = round % 2 == 1 ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
  const std::array<Vector, 3> axes{{{1, 0, 0}, {0, 0, -1}, random.direction()}};
  result.options.forward = axes.at(round % 3);
  make(random, result);
  return result;
}

}  // namespace Lumivane::Truth
