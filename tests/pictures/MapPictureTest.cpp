// Pictures of maps built by hand: cells fit each other, cover what they should, and keep to the
// arcs.

#include "kernel/ArcFlattening.h"
#include "pictures/PngImage.h"
#include "pictures/ProjectionRules.h"
#include "support/HandMap.h"

#include <lumivane/pictures/CairoWriter.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Projection;
using Kernel::Vec2;
using Kernel::Vec3;
using Pictures::MapColors;
using Pictures::MapPictureOptions;
using Pictures::MapProjection;
using Pictures::VectorPicture;
using Visibility::Field;
using Visibility::VisibleMap;

constexpr double Pi = 3.141592653589793;

MapPictureOptions optionsOf(MapProjection projection, int width = 800, int height = 800) {
  MapPictureOptions options;
  options.projection = projection;
  options.width = width;
  options.height = height;
  return options;
}

VectorPicture drawn(const VisibleMap& map, const MapPictureOptions& options) {
  return VectorPicture(map, MapColors(), options);
}

const Projection& rule(MapProjection projection) { return Pictures::ruleOf(projection); }

// Pixels of the picture in units of the plane.
struct Frame {
  const MapPictureOptions& options;
  Vec2 half;

  double unit() const {
    return std::min(options.width / 2.0 / half.x, options.height / 2.0 / half.y);
  }
  Vec2 plane(VectorPicture::Point p) const {
    return {(p.x - options.width / 2.0) / unit(), (options.height / 2.0 - p.y) / unit()};
  }
  VectorPicture::Point pixel(Vec2 p) const {
    return {options.width / 2.0 + p.x * unit(), options.height / 2.0 - p.y * unit()};
  }
};

// Twice the signed area, counterclockwise positive though y runs down.
double areaOf(const VectorPicture::Region& region) {
  double sum = 0.0;
  for (const VectorPicture::Line& line : region.interior.lines)
    for (std::size_t i = 0; i < line.size(); ++i) {
      const VectorPicture::Point& a = line[i];
      const VectorPicture::Point& b = line[(i + 1) % line.size()];
      sum -= 0.5 * (a.x * b.y - a.y * b.x);
    }
  return sum;
}

int windingAround(const VectorPicture::Region& region, VectorPicture::Point p) {
  int winding = 0;
  for (const VectorPicture::Line& line : region.interior.lines)
    for (std::size_t i = 0; i < line.size(); ++i) {
      const VectorPicture::Point& a = line[i];
      const VectorPicture::Point& b = line[(i + 1) % line.size()];
      if ((a.y <= p.y) == (b.y <= p.y)) continue;
      if (a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x) > p.x) winding += a.y < b.y ? -1 : 1;
    }
  return winding;
}

std::vector<VectorPicture::Region> regionsOf(const VectorPicture& picture) {
  std::vector<VectorPicture::Region> regions;
  for (const VectorPicture::Surface& surface : picture.surfaces())
    for (const VectorPicture::Region& region : surface.regions) regions.push_back(region);
  return regions;
}

Direction randomDirection(std::mt19937& random) {
  std::normal_distribution<double> normal;
  return unit({normal(random), normal(random), normal(random)});
}

// Turns the eye of a map.
void turn(VisibleMap& map, const Direction& forward, const Direction& upwards) {
  map.forward = unit(forward);
  const double along = dot(upwards, map.forward);
  Direction up{};
  for (std::size_t i = 0; i < 3; ++i) up[i] = upwards[i] - along * map.forward[i];
  map.up = unit(up);
}

// The scene's direction at a place of the picture.
std::optional<Direction> directionAt(const VisibleMap& map, const Projection& rule, Vec2 place) {
  const std::optional<Vec3> d = rule.direction(place);
  if (!d) return {};
  const Direction right = cross(map.forward, map.up);
  Direction result{};
  for (std::size_t i = 0; i < 3; ++i)
    result[i] = d->x * right[i] + d->y * map.up[i] + d->z * map.forward[i];
  return result;
}

// Looks at random places of the picture: only the right cell may wind around each, and once.
void expectCellsWhereTheyBelong(const VisibleMap& map, const MapPictureOptions& options,
                                const std::function<int(const Direction&)>& objectIn) {
  const Projection& projection = rule(options.projection);
  const Frame frame = {options, projection.halfSize(map.field == Visibility::Field::Sphere)};
  const VectorPicture picture = drawn(map, options);
  const std::vector<VectorPicture::Region> regions = regionsOf(picture);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (int i = 0; i < 2000; ++i) {
    const Vec2 place = {uniform(random) * frame.half.x, uniform(random) * frame.half.y};
    const std::optional<Direction> direction = directionAt(map, projection, place);
    if (!direction) continue;
    // What lies nearer to an edge than its chords may be off is not asked about.
    std::set<int> near;
    for (const double dx : {-0.3, 0.0, 0.3})
      for (const double dy : {-0.3, 0.0, 0.3}) {
        const auto other = directionAt(map, projection,
                                       {place.x + dx / frame.unit(), place.y + dy / frame.unit()});
        near.insert(other ? objectIn(*other) : -1);
      }
    if (near.size() > 1) continue;
    for (const VectorPicture::Region& region : regions) {
      const int expected = region.objectNumber == *near.begin() ? 1 : 0;
      ASSERT_EQ(expected, windingAround(region, frame.pixel(place)))
          << "object " << region.objectNumber << " at " << place.x << " " << place.y;
    }
  }
}

int sideOfCube(const Direction& d) {
  int axis = 0;
  for (int i = 1; i < 3; ++i)
    if (std::abs(d[static_cast<std::size_t>(i)]) > std::abs(d[static_cast<std::size_t>(axis)]))
      axis = i;
  return axis + (d[static_cast<std::size_t>(axis)] > 0.0 ? 1 : 4);
}

int squareOrSky(const Direction& d) {
  return d[0] > 0.0 && std::abs(d[1]) < 0.5 * d[0] && std::abs(d[2]) < 0.5 * d[0] ? 1 : 0;
}

// Every piece of an outline is run once each way, but for those along the border.
void expectSharedPoints(const VectorPicture& picture,
                        const std::function<bool(VectorPicture::Point)>& isOnBorder) {
  using Ends = std::array<double, 4>;
  std::map<Ends, int> counts;
  for (const VectorPicture::Region& region : regionsOf(picture))
    for (const VectorPicture::Line& line : region.interior.lines)
      for (std::size_t i = 0; i < line.size(); ++i) {
        const VectorPicture::Point& a = line[i];
        const VectorPicture::Point& b = line[(i + 1) % line.size()];
        if (isOnBorder(a) && isOnBorder(b)) continue;
        ++counts[{a.x, a.y, b.x, b.y}];
        --counts[{b.x, b.y, a.x, a.y}];
      }
  EXPECT_FALSE(counts.empty());
  for (const auto& [ends, count] : counts)
    ASSERT_EQ(0, count) << ends[0] << " " << ends[1] << " to " << ends[2] << " " << ends[3];
}

bool isOnCircle(VectorPicture::Point p) {
  return std::abs(std::hypot(p.x - 400.0, p.y - 400.0) - 400.0) < 1e-6;
}

TEST(MapProjections, PlaceAndDirectionAreInverseInEachProjection) {
  std::mt19937 random(3);
  for (const auto& [number, name] : Pictures::mapProjections()) {
    const Projection& projection = rule(number);
    for (int i = 0; i < 1000; ++i) {
      const Direction d = randomDirection(random);
      const Vec3 direction = {d[0], d[1], std::abs(d[2])};
      const std::optional<Vec3> back = projection.direction(projection.place(direction));
      ASSERT_TRUE(back) << projection.name;
      EXPECT_NEAR(0.0, Kernel::length3(*back - direction), 1e-7) << projection.name;
    }
  }
}

TEST(MapProjections, PlacesOutsideTheBorderHaveNoDirection) {
  for (const auto& [number, name] : Pictures::mapProjections()) {
    const Projection& projection = rule(number);
    EXPECT_FALSE(projection.direction({2.1, 0.0})) << projection.name;
    EXPECT_FALSE(projection.direction({0.0, 1.01})) << projection.name;
    EXPECT_TRUE(projection.direction({0.0, 0.99})) << projection.name;
  }
}

TEST(MapProjections, EachHasANameAndTheFisheyeIsFirst) {
  EXPECT_EQ(std::string("fisheye"), Pictures::mapProjections().front().name);
  for (const auto& [number, name] : Pictures::mapProjections()) EXPECT_EQ(name, rule(number).name);
}

TEST(MapPicture, EveryCellIsOnePathWithItsHoles) {
  const HandMap hand = squareInTheSky();
  const VectorPicture picture = drawn(hand.map, optionsOf(MapProjection::Fisheye));
  const auto regions = regionsOf(picture);
  ASSERT_EQ(2U, regions.size());
  EXPECT_EQ(1U, regions[0].interior.lines.size());
  EXPECT_EQ(2U, regions[1].interior.lines.size());
  EXPECT_EQ("square", regions[0].objectId);
  EXPECT_EQ(2, regions[0].sourceRegionNumber);
  EXPECT_EQ(0, regions[1].objectNumber);
  EXPECT_EQ("map", picture.content());
}

TEST(MapPicture, FisheyeShowsRightToTheRightAndUpUpwards) {
  HandMap hand;
  // A triangle to the right of the eye, which is at negative y, and above.
  hand.add({1, 1, 1}, {{{1, -.5, .5}, {1, -1, .5}, {1, -1, 1}}}, 0.1);
  const auto regions = regionsOf(drawn(hand.finish(), optionsOf(MapProjection::Fisheye)));
  for (const VectorPicture::Point& p : regions.at(0).interior.lines.at(0)) {
    EXPECT_GT(p.x, 400.0);
    EXPECT_LT(p.y, 400.0);
  }
  EXPECT_GT(areaOf(regions[0]), 0.0);
}

TEST(MapPicture, AreasOnTheFisheyesDiscAreViewFactors) {
  const HandMap hand = squareInTheSky();
  const auto regions = regionsOf(drawn(hand.map, optionsOf(MapProjection::Fisheye)));
  // From a plane element to a square on its axis, each quarter by Lambert's sum.
  const double side = 0.5 / std::sqrt(1.25);
  const double factor = 4.0 / Pi * side * std::atan(side);
  EXPECT_NEAR(factor, areaOf(regions[0]) / (Pi * 400.0 * 400.0), 2e-4);
  EXPECT_NEAR(1.0, (areaOf(regions[0]) + areaOf(regions[1])) / (Pi * 400.0 * 400.0), 3e-4);
}

TEST(MapPicture, CellsLieWhereTheirDirectionsAre) {
  const HandMap hand = squareInTheSky();
  for (const auto& [projection, name] : Pictures::mapProjections()) {
    SCOPED_TRACE(name);
    expectCellsWhereTheyBelong(hand.map, optionsOf(projection), squareOrSky);
  }
}

TEST(MapPicture, CellsOfASphereLieWhereTheirDirectionsAreHoweverTheEyeIsTurned) {
  std::mt19937 random(11);
  for (int i = 0; i < 40; ++i) {
    HandMap hand = cubeAroundTheEye();
    if (i > 0) turn(hand.map, randomDirection(random), randomDirection(random));
    for (const auto& [projection, name] : Pictures::mapProjections()) {
      SCOPED_TRACE(std::string(name) + " " + std::to_string(i));
      expectCellsWhereTheyBelong(hand.map, optionsOf(projection, 800, 400), sideOfCube);
    }
  }
}

TEST(MapPicture, PolesAndTheSeamMayLieOnVerticesAndEdges) {
  // Corners, middles of edges and of sides of the cube, each in front and each upwards.
  std::vector<Direction> special;
  for (const double x : {-1.0, 0.0, 1.0})
    for (const double y : {-1.0, 0.0, 1.0})
      for (const double z : {-1.0, 0.0, 1.0})
        if (x != 0.0 || y != 0.0 || z != 0.0) special.push_back({x, y, z});
  for (const Direction& forward : special) {
    for (const Direction& up : special) {
      const Direction across = cross(forward, up);
      if (dot(across, across) < 1e-6) continue;
      HandMap hand = cubeAroundTheEye();
      turn(hand.map, forward, up);
      for (const auto& [projection, name] : Pictures::mapProjections()) {
        SCOPED_TRACE(std::string(name) + " " + testing::PrintToString(forward) + " " +
                     testing::PrintToString(up));
        expectCellsWhereTheyBelong(hand.map, optionsOf(projection, 200, 100), sideOfCube);
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

TEST(MapPicture, SkyAroundSquaresIsCutCleanlyWhereverTheEyeLooks) {
  // A cell with two holes, and none with a border of its own.
  const std::vector<Direction> front = {{1, .5, -.5}, {1, -.5, -.5}, {1, -.5, .5}, {1, .5, .5}};
  const std::vector<Direction> back = {{-1, -.5, -.5}, {-1, .5, -.5}, {-1, .5, .5}, {-1, -.5, .5}};
  const double square = 4.0 * std::asin(0.2);
  const auto object = [](const Direction& d) {
    const bool isInside =
        std::abs(d[1]) < 0.5 * std::abs(d[0]) && std::abs(d[2]) < 0.5 * std::abs(d[0]);
    return isInside ? (d[0] > 0.0 ? 1 : 2) : 0;
  };
  std::mt19937 random(5);
  for (int i = 0; i < 40; ++i) {
    HandMap hand(Field::Sphere);
    hand.add({1, 1, 1}, {front}, square);
    hand.add({2, 1, 1}, {back}, square);
    hand.add({0, 0, 0}, {{front.rbegin(), front.rend()}, {back.rbegin(), back.rend()}},
             4.0 * Pi - 2.0 * square);
    hand.finish();
    // The poles in the squares, the cell as a band between them, and anything else.
    if (i == 1) turn(hand.map, {0, 0, 1}, {1, 0, 0});
    if (i == 2) turn(hand.map, {0, 1, 0}, {-1, 0, 0});
    if (i > 2) turn(hand.map, randomDirection(random), randomDirection(random));
    for (const auto& [projection, name] : Pictures::mapProjections()) {
      SCOPED_TRACE(std::string(name) + " " + std::to_string(i));
      expectCellsWhereTheyBelong(hand.map, optionsOf(projection, 800, 400), object);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(MapPicture, SphereOfSkyFillsThePicture) {
  HandMap hand(Field::Sphere);
  hand.add({0, 0, 0}, {}, 4.0 * Pi);
  hand.finish();
  const auto disc = regionsOf(drawn(hand.map, optionsOf(MapProjection::Fisheye)));
  EXPECT_NEAR(Pi, areaOf(disc.at(0)) / (400.0 * 400.0), 1e-3);
  const auto band = regionsOf(drawn(hand.map, optionsOf(MapProjection::Equirectangular, 800, 400)));
  EXPECT_EQ(800.0 * 400.0, areaOf(band.at(0)));
}

TEST(MapPicture, CellsWhollyBehindAreNotOnTheDisc) {
  const HandMap hand = cubeAroundTheEye();
  std::set<int> objects;
  for (const auto& region : regionsOf(drawn(hand.map, optionsOf(MapProjection::Fisheye))))
    objects.insert(region.objectNumber);
  EXPECT_EQ((std::set<int>{1, 2, 3, 5, 6}), objects);
}

TEST(MapPicture, HemispheresBorderIsTheWholeSquare) {
  const HandMap hand = squareInTheSky();
  const auto regions = regionsOf(drawn(hand.map, optionsOf(MapProjection::Equirectangular)));
  EXPECT_NEAR(800.0 * 800.0, areaOf(regions[0]) + areaOf(regions[1]), 1e-6);
}

TEST(MapPicture, NeighboursShareEveryPoint) {
  HandMap cube = cubeAroundTheEye();
  turn(cube.map, {0.3, 0.5, -0.7}, {0.1, 0.9, 0.2});
  const HandMap square = squareInTheSky();
  expectSharedPoints(drawn(square.map, optionsOf(MapProjection::Fisheye)), isOnCircle);
  expectSharedPoints(drawn(cube.map, optionsOf(MapProjection::Fisheye)), isOnCircle);
  expectSharedPoints(
      drawn(square.map, optionsOf(MapProjection::Equirectangular)),
      [](VectorPicture::Point p) { return p.x <= 0 || p.x >= 800 || p.y <= 0 || p.y >= 800; });
  expectSharedPoints(drawn(cube.map, optionsOf(MapProjection::Equirectangular, 800, 400)),
                     [](VectorPicture::Point p) {
                       return p.x <= 1e-9 || p.x >= 800 - 1e-9 || p.y <= 1e-9 || p.y >= 400 - 1e-9;
                     });
}

TEST(MapPicture, CellsOfScenesFillThePictureAndShareEveryPoint) {
  for (const char* name : {"room", "street", "ring"}) {
    const auto scene =
        Session::LoadedScene::fromFile(std::string(LUMIVANE_SCENES "/") + name + ".json");
    const Visibility::SceneIndex index(scene);
    Visibility::LookOptions look;
    const Visibility::Vector eye = name == std::string("room")
                                       ? Visibility::Vector{0.35, 2.137, 1.6}
                                       : Visibility::Vector{-5.3, -1.37, 3.4};
    for (const Field field : {Field::Hemisphere, Field::Sphere}) {
      look.field = field;
      const VisibleMap map = index.look(eye, look);
      ASSERT_GT(map.cells.size(), 3U);
      for (const auto& [projection, label] : Pictures::mapProjections()) {
        SCOPED_TRACE(std::string(name) + " " + label);
        const MapPictureOptions options = optionsOf(projection, 800, 400);
        const VectorPicture picture = drawn(map, options);
        const Vec2 half = rule(projection).halfSize(field == Visibility::Field::Sphere);
        const double unit = Frame{options, half}.unit();
        const bool isDisc = rule(projection).shape == Kernel::PlaneShape::Disc;
        double area = 0.0;
        for (const VectorPicture::Region& region : regionsOf(picture)) area += areaOf(region);
        const double whole = (isDisc ? Pi : 4.0 * half.x * half.y) * unit * unit;
        EXPECT_NEAR(1.0, area / whole, isDisc ? 2e-3 : 1e-9);
        expectSharedPoints(picture, [&](VectorPicture::Point p) {
          const double x = (p.x - 400.0) / unit;
          const double y = (p.y - 200.0) / unit;
          return isDisc ? std::hypot(x, y) > 1.0 - 1e-9
                        : std::abs(x) > half.x - 1e-9 || std::abs(y) > half.y - 1e-9;
        });
      }
    }
  }
}

double distanceToLine(Vec2 p, const VectorPicture::Line& line) {
  double least = 1e9;
  for (std::size_t i = 0; i + 1 < line.size(); ++i)
    least = std::min(least, Kernel::distanceToSegment(p, {line[i].x, line[i].y},
                                                      {line[i + 1].x, line[i + 1].y}));
  return least;
}

TEST(MapPicture, ChordsAreAtMostATenthOfAPixelOffTheirArcs) {
  std::mt19937 random(9);
  for (const auto& [projection, name] : Pictures::mapProjections()) {
    for (const int size : {100, 800, 4000}) {
      HandMap hand = cubeAroundTheEye();
      turn(hand.map, randomDirection(random), randomDirection(random));
      const MapPictureOptions options = optionsOf(projection, size, size / 2);
      const Frame frame = {options, rule(projection).halfSize(true)};
      const VectorPicture picture = drawn(hand.map, options);
      const Direction right = cross(hand.map.forward, hand.map.up);
      for (const VisibleMap::Edge& edge : hand.map.edges) {
        for (double t = 0.0; t <= 1.0; t += 1.0 / 512) {
          Direction d{};
          for (std::size_t i = 0; i < 3; ++i)
            d[i] = (1.0 - t) * hand.map.vertices[static_cast<std::size_t>(edge.from)][i] +
                   t * hand.map.vertices[static_cast<std::size_t>(edge.to)][i];
          const Vec3 seen = {dot(d, right), dot(d, hand.map.up), dot(d, hand.map.forward)};
          if (rule(projection).shape == Kernel::PlaneShape::Disc && seen.z < 0.0) continue;
          const VectorPicture::Point p = frame.pixel(rule(projection).place(seen));
          double least = 1e9;
          for (const VectorPicture::Path& path : picture.lines())
            for (const VectorPicture::Line& line : path.lines)
              least = std::min(least, distanceToLine({p.x, p.y}, line));
          ASSERT_LE(least, 0.1) << name << " " << size << " " << t;
        }
      }
    }
  }
}

TEST(MapPicture, LinesLieOnEdgesWithAPenAndUnderlaysOnTheOthers) {
  HandMap hand = squareInTheSky();
  hand.map.edges[0].kind = VisibleMap::EdgeKind::Inner;
  for (VisibleMap::Edge& edge : hand.map.edges)
    if (edge.kind == VisibleMap::EdgeKind::Field) edge.right = -1;
  const VectorPicture picture = drawn(hand.map, optionsOf(MapProjection::Fisheye));
  ASSERT_EQ(1U, picture.underlay().size());
  ASSERT_EQ(1U, picture.lines().size());
  EXPECT_EQ(4U, picture.underlay()[0].lines.size() + picture.lines()[0].lines.size());
  EXPECT_EQ(1U, picture.underlay()[0].lines.size());
  MapPictureOptions plain = optionsOf(MapProjection::Fisheye);
  plain.lines = false;
  EXPECT_TRUE(drawn(hand.map, plain).lines().empty());
  EXPECT_EQ(4U, drawn(hand.map, plain).underlay().at(0).lines.size());
}

TEST(MapPicture, RefusesSidesThatNoPictureHas) {
  const HandMap hand = squareInTheSky();
  EXPECT_THROW(drawn(hand.map, optionsOf(MapProjection::Fisheye, 0, 5)), std::invalid_argument);
  EXPECT_THROW(drawn(hand.map, optionsOf(MapProjection::Fisheye, 5, 16385)), std::invalid_argument);
}

TEST(MapPicture, SvgNamesTheGroupsAndTheSky) {
  const HandMap hand = squareInTheSky();
  const std::string svg =
      Pictures::SvgWriter::write(drawn(hand.map, optionsOf(MapProjection::Fisheye)));
  EXPECT_NE(std::string::npos, svg.find("<g id=\"map\""));
  EXPECT_NE(std::string::npos, svg.find("<g id=\"lines\""));
  EXPECT_NE(std::string::npos, svg.find("<title>sky</title>"));
  EXPECT_NE(std::string::npos, svg.find("<title>square, face 1, region 2</title>"));
}

// Values of pixels that differ from the colour in the middle by more than rounding makes.
int strangePixels(const Image& image, int rounding = 2) {
  const Rgb expected = image.at(image.width() / 2, image.height() / 2);
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      for (std::size_t i = 0; i < 3; ++i)
        if (std::abs(image.at(x, y)[i] - expected[i]) > rounding) ++count;
  return count;
}

// A torus about the z axis, whose corners lie exactly on its planes of symmetry.
Visibility::PolygonScene torus() {
  constexpr int Around = 48;
  constexpr int Across = 24;
  Visibility::PolygonScene scene;
  for (int i = 0; i < Around; ++i)
    for (int k = 0; k < Across; ++k) {
      const double turn = 2.0 * Pi * i / Around;
      const double tube = 2.0 * Pi * k / Across;
      const double reach = 2.0 + std::cos(tube);
      const bool isOnPlane = i % (Around / 2) == 0;
      scene.points.push_back(
          {reach * std::cos(turn), isOnPlane ? 0.0 : reach * std::sin(turn), std::sin(tube)});
    }
  scene.offsets.push_back(0);
  for (int i = 0; i < Around; ++i)
    for (int k = 0; k < Across; ++k) {
      const auto at = [&](int a, int b) { return a % Around * Across + b % Across; };
      for (const int corner : {at(i, k), at(i, k + 1), at(i + 1, k + 1), at(i + 1, k)})
        scene.corners.push_back(corner);
      scene.offsets.push_back(scene.corners.size());
    }
  return scene;
}

// Where a shot of the same draws bars across half the picture: points on the centre line belong to
// its left edge there.
TEST(MapPicture, ASymmetricalMeshSeenAlongItsPlaneOfSymmetryIsWhatRaysMeet) {
  const Visibility::SceneIndex index(torus());
  const Visibility::Vector eye = {-8, 0, 0};
  const VisibleMap map = index.look(eye);
  MapPictureOptions options = optionsOf(MapProjection::Equirectangular, 600, 600);
  options.lines = false;
  const Image image(Pictures::CairoWriter::png(drawn(map, options)));
  const auto isSeen = [&](double x, double y) {
    const double azimuth = (x / 300.0 - 1.0) * Pi / 2.0;  // to the right, which is -y
    const double height = (1.0 - y / 300.0) * Pi / 2.0;
    const auto seen =
        index.seenIn(eye, {{std::cos(height) * std::cos(azimuth),
                            -std::cos(height) * std::sin(azimuth), std::sin(height)}});
    return seen[0].label.object != 0;
  };
  int wrong = 0;
  int covered = 0;
  for (int y = 1; y < 600; y += 3)
    for (int x = 1; x < 600; x += 3) {
      const Rgb color = image.at(x, y);
      const bool isDrawn = color[0] + color[1] + color[2] < 3 * 250;
      const bool expected = isSeen(x + 0.5, y + 0.5);
      covered += expected ? 1 : 0;
      if (isDrawn == expected) continue;
      bool isAtEdge = false;  // within a pixel and a half
      for (int i = 0; i < 16 && !isAtEdge; ++i)
        isAtEdge = isSeen(x + 0.5 + 1.5 * std::cos(i * Pi / 8.0),
                          y + 0.5 + 1.5 * std::sin(i * Pi / 8.0)) != expected;
      wrong += isAtEdge ? 0 : 1;
    }
  EXPECT_LT(500, covered);
  EXPECT_EQ(0, wrong);
}

TEST(MapPicture, PngHasNoSeamBetweenCellsOfOneColour) {
  // The sides of the cube in one colour, without lines: nothing else may be seen.
  HandMap hand = cubeAroundTheEye();
  turn(hand.map, {0.3, 0.5, -0.7}, {0.1, 0.9, 0.2});
  for (VisibleMap::Cell& cell : hand.map.cells) cell.label = {1, 1, 1};
  MapPictureOptions options = optionsOf(MapProjection::Equirectangular, 400, 200);
  options.lines = false;
  const VectorPicture picture = drawn(hand.map, options);
  for (const double scale : {1.0, 1.7, 3.0, 10.0})
    EXPECT_EQ(0, strangePixels(Image(Pictures::CairoWriter::png(picture, scale)))) << scale;
}

// Pens thinner than a pixel do not hide what smooth edges let through: where they have the colour
// of the cells, nothing may be seen of either.
TEST(MapPicture, PngHasNoSeamUnderThinPens) {
  HandMap hand = cubeAroundTheEye();
  turn(hand.map, {0.3, 0.5, -0.7}, {0.1, 0.9, 0.2});
  for (VisibleMap::Cell& cell : hand.map.cells) cell.label = {1, 1, 1};
  for (const char* const width : {"0.25", "0.5", "0.75"}) {
    const auto scene = Session::LoadedScene::fromText(
        R"({"Points":[[1,0,0],[1,1,0],[1,1,1]],"Brushes":[[90,100,110,255]],"Pens":[[90,100,110,255,)" +
            std::string(width) +
            R"(]],"Objects":[{"Id":"grey","Pen":1,"Faces":[{"Regions":[1]}],)" +
            R"("Regions":[{"Brush":1,"Face":1,"Points":[1,2,3]}]}]})",
        "grey");
    const VectorPicture picture(hand.map, MapColors(scene.scene()),
                                optionsOf(MapProjection::Equirectangular, 400, 200));
    ASSERT_EQ(1U, picture.lines().size()) << width;
    EXPECT_EQ(0, strangePixels(Image(Pictures::CairoWriter::png(picture)), 4)) << width;
  }
}

}  // namespace
}  // namespace Lumivane::Test
