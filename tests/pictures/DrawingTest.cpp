#include "pictures/PngImage.h"
#include "visibility/Polygons.h"

#include <lumivane/pictures/DrawingOptions.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace Lumivane::Pictures {
namespace {

using Test::Image;
using Visibility::Label;
using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::Vector;
using namespace Visibility::Samples;

constexpr double Pi = 3.141592653589793;

PolygonScene box() {
  PolygonBuilder builder;
  addBox(builder, 1, {0, 0, 0}, {2, 3, 1});
  return builder.scene;
}

// Some stand on each other, touch, or run through each other.
PolygonScene town() {
  PolygonBuilder builder;
  Random random(11);
  for (int i = 0; i < 24; ++i) {
    const double x = std::floor(random.between(0, 12));
    const double y = std::floor(random.between(0, 12));
    addBox(builder, i + 1, {x, y, 0},
           {x + 1 + i % 2, y + 1, 0.5 + 0.5 * std::floor(random.between(0, 6))});
  }
  return builder.scene;
}

// Turned boxes that run through each other.
PolygonScene tangle() {
  PolygonBuilder builder;
  Random random(23);
  for (int i = 0; i < 30; ++i) {
    const Visibility::Samples::Axes axes(random);
    const Vector middle = {random.between(0, 8), random.between(0, 8), random.between(0, 5)};
    const std::size_t first = builder.scene.points.size();
    addBox(builder, i + 1, {-1.3, -0.8, -0.5}, {1.3, 0.8, 0.5});
    for (std::size_t p = first; p < builder.scene.points.size(); ++p)
      builder.scene.points[p] = plus(middle, axes(builder.scene.points[p]));
  }
  return builder.scene;
}

DrawingOptions parallelAlong(const Vector& direction) {
  DrawingOptions options;
  options.projection = DrawingProjection::Parallel;
  options.forward = direction;
  return options;
}

Drawing draw(const SceneIndex& index, const DrawingOptions& options) {
  return drawScene(index, DrawingColors(), options);
}

const Drawing::Group* layerOf(const Drawing& drawing, const std::string& id) {
  for (const Drawing::Group& layer : drawing.layers)
    if (layer.id == id) return &layer;
  return nullptr;
}

std::vector<Drawing::Line> linesOf(const Drawing& drawing, const std::string& id) {
  std::vector<Drawing::Line> lines;
  if (const Drawing::Group* layer = layerOf(drawing, id))
    for (const Drawing::Path& path : layer->paths)
      lines.insert(lines.end(), path.lines.begin(), path.lines.end());
  return lines;
}

std::size_t countOf(const Drawing& drawing, LineKind kind) {
  return drawing.counts.lines[static_cast<std::size_t>(kind)];
}

// ---- pictures beside rays

// A place of the frame, from its middle to its borders -1 to 1, to a direction in the axes of the
// eye: x right, y up, z forward; nothing beyond the picture.
using Inverse = std::function<std::optional<Vector>(double x, double y)>;

Vector inScene(const DrawingOptions& options, const Vector& d) {
  const Vector forward = unit(options.forward);
  const Vector right = unit(cross(forward, options.up));
  const Vector up = cross(right, forward);
  return plus(plus(times(d[0], right), times(d[1], up)), times(d[2], forward));
}

std::optional<Vector> onDisc(double x, double y, const std::function<double(double)>& angle) {
  const double radius = std::hypot(x, y);
  if (radius >= 1.0) return {};
  const double t = angle(radius);
  const double across = radius > 0.0 ? std::sin(t) / radius : 0.0;
  return Vector{across * x, across * y, std::cos(t)};
}

Vector byAngles(double azimuth, double elevation) {
  return {std::cos(elevation) * std::sin(azimuth), std::sin(elevation),
          std::cos(elevation) * std::cos(azimuth)};
}

Inverse inverseOf(const DrawingOptions& options) {
  switch (options.projection) {
    case DrawingProjection::Orthographic:
      return [](double x, double y) { return onDisc(x, y, [](double r) { return std::asin(r); }); };
    case DrawingProjection::Equidistant:
      return [](double x, double y) { return onDisc(x, y, [](double r) { return r * Pi / 2; }); };
    case DrawingProjection::Equisolid:
      return [](double x, double y) {
        return onDisc(x, y, [](double r) { return 2.0 * std::asin(r * std::sqrt(0.5)); });
      };
    case DrawingProjection::Stereographic:
      return [](double x, double y) {
        return onDisc(x, y, [](double r) { return 2.0 * std::atan(r); });
      };
    case DrawingProjection::Equirectangular: {
      const double widest = options.isWhole ? Pi : Pi / 2;
      return [widest](double x, double y) { return byAngles(x * widest, y * Pi / 2); };
    }
    case DrawingProjection::Cylindrical: {
      const double most = std::tan(options.fieldOfView * Pi / 360);
      return [most](double x, double y) { return byAngles(x * Pi, std::atan(y * most)); };
    }
    case DrawingProjection::Perspective:
    case DrawingProjection::Parallel:
      break;
  }
  const double half = std::tan(options.fieldOfView * Pi / 360);
  return [half, options](double x, double y) {
    return Vector{half * (x + 2.0 * options.shift[0]),
                  half / options.aspect * (y + 2.0 * options.shift[1]), 1.0};
  };
}

constexpr double Dpi = 110.0;
// Sum over the channels; objects differ by more. Where many cells meet in a pixel, smoothing lets a
// little of what lies under them through.
constexpr int SameColor = 48;

// The object that a ray through a place of the page meets; -1 beyond the picture.
using ObjectAt = std::function<int(double x, double y)>;

struct Compared {
  int asked = 0;
  int wrong = 0;
};

// Compares the colours of pixels that are farther than 1.5 pixels from any other object.
Compared compareWithRays(const std::string& png, const ObjectAt& objectAt) {
  const Image image(png);
  const MapColors colors;
  Compared result;
  const double pixel = 25.4 / Dpi;
  for (int y = 3; y < image.height() - 3; y += 5)
    for (int x = 3; x < image.width() - 3; x += 5) {
      const auto at = [&](double dx, double dy) {
        return objectAt((x + 0.5 + dx) * pixel, (y + 0.5 + dy) * pixel);
      };
      const int object = at(0.0, 0.0);
      if (object < 0) continue;
      ++result.asked;
      const auto color = colors.fill({object, 1, 1});
      const Test::Rgb seen = image.at(x, y);
      if (std::abs(seen[0] - color.red) + std::abs(seen[1] - color.green) +
              std::abs(seen[2] - color.blue) <=
          SameColor)
        continue;
      bool isInside = true;
      for (int i = 0; i < 16 && isInside; ++i)
        isInside = at(1.5 * std::cos(i * Pi / 8), 1.5 * std::sin(i * Pi / 8)) == object;
      if (isInside) ++result.wrong;
    }
  return result;
}

DrawingOptions filled(DrawingOptions options) {
  options.fill = DrawingFill::Object;
  options.widths.fill(0.0);
  options.contentWidth = 90.0;
  options.flatness = 2.54 / Dpi;
  return options;
}

Compared compareWithRays(const SceneIndex& index, DrawingOptions options) {
  options = filled(options);
  const Drawing drawing = draw(index, options);
  const Inverse inverse = inverseOf(options);
  const auto& frame = drawing.frame;
  return compareWithRays(DrawingWriter::png(drawing, Dpi), [&](double x, double y) {
    const double u = 2.0 * (x - frame[0]) / (frame[2] - frame[0]) - 1.0;
    const double v = 1.0 - 2.0 * (y - frame[1]) / (frame[3] - frame[1]);
    if (std::fabs(u) >= 1.0 || std::fabs(v) >= 1.0) return -1;
    const std::optional<Vector> d = inverse(u, v);
    if (!d) return -1;
    return index.seenIn(options.eye, {inScene(options, *d)})[0].label.object;
  });
}

SceneIndex streetIndex() {
  return SceneIndex(Session::LoadedScene::fromFile(LUMIVANE_SCENES "/street.json"));
}

DrawingOptions streetView(DrawingProjection projection) {
  DrawingOptions options;
  options.projection = projection;
  options.eye = {-5.3, -1.37, 3.4};
  options.forward = {1, 0.07, 0.04};
  options.fieldOfView = 80.0;
  options.shift = {0.1, 0.15};
  return options;
}

class DrawingBesideRays : public testing::TestWithParam<DrawingProjection> {};

TEST_P(DrawingBesideRays, ShowsWhatEachRayMeets) {
  const SceneIndex index = streetIndex();
  const Compared compared = compareWithRays(index, streetView(GetParam()));
  EXPECT_LT(1500, compared.asked);
  EXPECT_EQ(0, compared.wrong);
}

INSTANTIATE_TEST_SUITE_P(
    Projections, DrawingBesideRays,
    testing::Values(DrawingProjection::Orthographic, DrawingProjection::Equidistant,
                    DrawingProjection::Equisolid, DrawingProjection::Stereographic,
                    DrawingProjection::Equirectangular, DrawingProjection::Cylindrical,
                    DrawingProjection::Perspective));

TEST(Drawing, AllAroundIsCutCleanlyBehindTheEye) {
  const SceneIndex index = streetIndex();
  DrawingOptions options = streetView(DrawingProjection::Equirectangular);
  options.isWhole = true;
  const Compared compared = compareWithRays(index, options);
  EXPECT_LT(2000, compared.asked);
  EXPECT_EQ(0, compared.wrong);
}

TEST(Drawing, ParallelPicturesShowWhatParallelRaysMeet) {
  const PolygonScene scene = town();
  const SceneIndex index(scene);
  for (const Vector direction :
       {Vector{0, 0, -1}, Vector{0, 1, 0}, Vector{-1, 1, -1}, Vector{0.3, -0.8, -0.4}}) {
    const DrawingOptions options = filled(parallelAlong(direction));
    const auto map = index.lookAlong({direction, options.up, false, 1, nullptr});
    double low[2] = {1e300, 1e300};
    double high[2] = {-1e300, -1e300};
    for (const Vector& p : scene.points)
      for (std::size_t i : {0U, 1U}) {
        const double at = dot(p, i == 0 ? map.right : map.up);
        low[i] = std::min(low[i], at);
        high[i] = std::max(high[i], at);
      }
    const Drawing drawing = draw(index, options);
    const auto& frame = drawing.frame;
    const double scale = (frame[2] - frame[0]) / (high[0] - low[0]);
    EXPECT_NEAR((frame[3] - frame[1]) / (high[1] - low[1]), scale, 1e-9 * scale);
    const Compared compared =
        compareWithRays(DrawingWriter::png(drawing, Dpi), [&](double x, double y) {
          if (x <= frame[0] || x >= frame[2] || y <= frame[1] || y >= frame[3]) return -1;
          const double right = low[0] + (x - frame[0]) / scale;
          const double up = high[1] - (y - frame[1]) / scale;
          const Vector eye =
              plus(plus(times(right, map.right), times(up, map.up)), times(-100.0, map.direction));
          return index.seenIn(eye, {map.direction})[0].label.object;
        });
    EXPECT_LT(1000, compared.asked);
    EXPECT_EQ(0, compared.wrong);
  }
}

// ---- lines

TEST(Drawing, ABoxHasAnOutlineOfSixEdgesThreeCreasesAndThreeHiddenEdges) {
  DrawingOptions options = parallelAlong({-1, 1, -1});
  options.hidden = true;
  const Drawing drawing = draw(SceneIndex(box()), options);
  EXPECT_EQ(6U, countOf(drawing, LineKind::Outline));
  EXPECT_EQ(3U, countOf(drawing, LineKind::Crease));
  EXPECT_EQ(3U, countOf(drawing, LineKind::Hidden));
  EXPECT_EQ(0U, countOf(drawing, LineKind::Silhouette));
  ASSERT_EQ(1U, linesOf(drawing, "outline").size());
  EXPECT_EQ(7U, linesOf(drawing, "outline")[0].size());
}

TEST(Drawing, HiddenEdgesThatLieUnderVisibleOnesAreNotDrawn) {
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.hidden = true;
  const Drawing drawing = draw(SceneIndex(box()), options);
  EXPECT_EQ(4U, countOf(drawing, LineKind::Outline));
  EXPECT_EQ(0U, countOf(drawing, LineKind::Hidden));
}

TEST(Drawing, AnEdgeBendsByMoreThanTheCreaseAngleOrIsAnInnerOne) {
  PolygonBuilder builder;  // a roof that bends by 2 atan(0.1), 11.4 degrees
  builder.add({{0, 0, 0}, {0, 2, 0}, {1, 2, 0.1}, {1, 0, 0.1}});
  builder.add({{1, 0, 0.1}, {1, 2, 0.1}, {2, 2, 0}, {2, 0, 0}});
  const SceneIndex index(builder.scene);
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.creaseAngle = 11.0;
  EXPECT_EQ(1U, countOf(draw(index, options), LineKind::Crease));
  options.creaseAngle = 12.0;
  EXPECT_EQ(0U, countOf(draw(index, options), LineKind::Crease));
  EXPECT_EQ(1U, countOf(draw(index, options), LineKind::Inner));
}

TEST(Drawing, SurfacesThatRunThroughEachOtherHaveACrossingLine) {
  PolygonBuilder builder;
  builder.add({{0, 0, 0}, {0, 2, 0}, {2, 2, 1}, {2, 0, 1}}, 1);
  builder.add({{0, 0, 1}, {0, 2, 1}, {2, 2, 0}, {2, 0, 0}}, 2);
  const Drawing drawing = draw(SceneIndex(builder.scene), parallelAlong({0, 0, -1}));
  EXPECT_EQ(1U, countOf(drawing, LineKind::Crossing));
}

double distanceTo(const std::vector<Drawing::Line>& lines, const Drawing::Point& p) {
  double nearest = 1e300;
  for (const Drawing::Line& line : lines)
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      const Drawing::Point a = line[i];
      const Drawing::Point b = line[i + 1];
      const double square = (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
      double t =
          square > 0.0 ? ((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)) / square : 0.0;
      t = std::clamp(t, 0.0, 1.0);
      nearest =
          std::min(nearest, std::hypot(a.x + t * (b.x - a.x) - p.x, a.y + t * (b.y - a.y) - p.y));
    }
  return nearest;
}

enum class Met { Nothing, Something, AnotherAtTheSamePlace };

// What is in front of a point of an edge, by a ray.
Met metOnTheWay(const SceneIndex& index, const Visibility::ParallelMap& names, const Vector& eye,
                const Visibility::SceneEdge& edge, const Vector& point) {
  const Vector d = minus(point, eye);
  const auto isOwn = [&](const Label& label) {
    return std::any_of(edge.sides.begin(), edge.sides.end(), [&](const auto& side) {
      return side.region >= 0 &&
             names.names->regions[static_cast<std::size_t>(side.region)] == label;
    });
  };
  // On the edge, and a little beside it to all sides.
  const Vector aside = times(1e-6 * length(d), unit(cross(d, {0.3, -0.5, 0.8})));
  const Vector across = times(1e-6 * length(d), unit(cross(d, aside)));
  Met met = Met::Nothing;
  for (const auto& [a, b] :
       {std::make_pair(0.0, 0.0), std::make_pair(1.0, 0.0), std::make_pair(-1.0, 0.0),
        std::make_pair(0.0, 1.0), std::make_pair(0.0, -1.0)}) {
    const Vector ray = plus(d, plus(times(a, aside), times(b, across)));
    const auto seen = index.seenIn(eye, {ray})[0];
    const double part = seen.distance / length(d);
    if (seen.label.object == 0 || isOwn(seen.label)) continue;
    if (std::fabs(part - 1.0) < 1e-4) return Met::AnotherAtTheSamePlace;
    if (part < 1.0 && a == 0.0 && b == 0.0) met = Met::Something;
  }
  return met;
}

// All edges of a scene, and the lines in which its polygons run through each other.
std::vector<Visibility::SceneEdge> edgesAndCrossings(const SceneIndex& index) {
  std::vector<Visibility::SceneEdge> lines = index.edges();
  for (const Visibility::SceneCrossing& crossing : index.crossings()) {
    Visibility::SceneEdge line;
    line.from = crossing.from;
    line.to = crossing.to;
    for (std::size_t i : {0U, 1U}) line.sides[i].region = crossing.regions[i];
    lines.push_back(line);
  }
  return lines;
}

// Asks of points along every edge and crossing of a scene whether a ray meets something in front of
// them, and whether the drawing has them as visible or as hidden.
void checkEdges(const SceneIndex& index, const DrawingOptions& options,
                const std::function<Vector(const Vector&)>& eyeFor,
                const std::function<std::optional<Drawing::Point>(const Vector&)>& place) {
  const Drawing drawing = draw(index, options);
  std::vector<Drawing::Line> visible;
  for (const char* kind : {"outline", "silhouette", "crease", "inner", "crossing"})
    for (const Drawing::Line& line : linesOf(drawing, kind)) visible.push_back(line);
  const std::vector<Drawing::Line> hidden = linesOf(drawing, "hidden");
  const Visibility::ParallelMap names = index.lookAlong();
  constexpr double Near = 0.01;  // mm
  int hiddenPoints = 0;
  int faults = 0;
  for (const Visibility::SceneEdge& edge : edgesAndCrossings(index))
    for (const double part : {0.0171, 0.213, 0.377, 0.5461, 0.7713, 0.931}) {
      const Vector point = plus(edge.from, times(part, minus(edge.to, edge.from)));
      const auto at = place(point);
      if (!at) continue;
      const Vector eye = eyeFor(point);
      const Met met = metOnTheWay(index, names, eye, edge, point);
      if (met == Met::AnotherAtTheSamePlace) continue;  // painted over in its own plane
      const bool isHidden = met == Met::Something;
      const double toVisible = distanceTo(visible, *at);
      const double toHidden = distanceTo(hidden, *at);
      hiddenPoints += isHidden ? 1 : 0;
      if (isHidden ? toVisible > Near && toHidden > Near : toVisible > Near) ++faults;
      if (!isHidden && toHidden < 1e-6 && toVisible > Near) ++faults;
    }
  EXPECT_LT(100, hiddenPoints);
  EXPECT_EQ(0, faults);
}

void checkEdgesAlong(const PolygonScene& scene) {
  const SceneIndex index(scene);
  DrawingOptions options = parallelAlong({0.8, 1, -0.7});
  options.hidden = true;
  options.widths.fill(0.2);
  options.creaseAngle = 0.0;
  const auto map = index.lookAlong({options.forward, options.up, false, 1, nullptr});
  double left = 1e300;
  double right = -1e300;
  double low = 1e300;
  double top = -1e300;
  for (const Vector& p : scene.points) {
    left = std::min(left, dot(p, map.right));
    right = std::max(right, dot(p, map.right));
    low = std::min(low, dot(p, map.up));
    top = std::max(top, dot(p, map.up));
  }
  const double scale = options.contentWidth / std::max(right - left, (top - low) / 1.5);
  checkEdges(
      index, options, [&](const Vector& p) { return plus(p, times(-100.0, map.direction)); },
      [&](const Vector& p) {
        return Drawing::Point{options.margin + scale * (dot(p, map.right) - left),
                              options.margin + scale * (top - dot(p, map.up))};
      });
}

void checkEdgesInPerspective(const PolygonScene& scene) {
  const SceneIndex index(scene);
  DrawingOptions options;
  options.eye = {-3.1, -4.2, 5.7};
  options.forward = {1, 1.1, -0.5};
  options.hidden = true;
  options.widths.fill(0.2);
  options.creaseAngle = 0.0;
  const Vector forward = unit(options.forward);
  const Vector right = unit(cross(forward, options.up));
  const Vector up = cross(right, forward);
  const double half = std::tan(options.fieldOfView * Pi / 360);
  checkEdges(
      index, options, [&](const Vector&) { return options.eye; },
      [&](const Vector& p) -> std::optional<Drawing::Point> {
        const Vector d = minus(p, options.eye);
        const double depth = dot(d, forward);
        if (depth <= 0.0) return {};
        const double x = dot(d, right) / depth / half;
        const double y = dot(d, up) / depth / half * options.aspect;
        if (std::fabs(x) > 0.99 || std::fabs(y) > 0.99) return {};
        return Drawing::Point{
            options.margin + 0.5 * options.contentWidth * (1.0 + x),
            options.margin + 0.5 * options.contentWidth / options.aspect * (1.0 - y)};
      });
}

TEST(Drawing, EveryPointOfAnEdgeIsDrawnAsRaysSeeItAlongParallelLines) { checkEdgesAlong(town()); }

TEST(Drawing, EveryPointOfAnEdgeIsDrawnAsRaysSeeItInPerspective) {
  checkEdgesInPerspective(town());
}

TEST(Drawing, EveryPointOfACrossingIsDrawnAsRaysSeeItAlongParallelLines) {
  checkEdgesAlong(tangle());
}

TEST(Drawing, EveryPointOfACrossingIsDrawnAsRaysSeeItInPerspective) {
  checkEdgesInPerspective(tangle());
}

// A beam leaves a box through the side that is turned away: of the square in which it does so
// nothing is seen.
TEST(Drawing, HiddenCrossingsAreDashed) {
  PolygonBuilder builder;
  addBox(builder, 1, {0, 0, 0}, {2, 2, 2});
  addBox(builder, 2, {0.5, 1, 0.5}, {1.5, 4, 1.5});
  const SceneIndex index(builder.scene);
  DrawingOptions options = parallelAlong({0.6, 1, -0.7});
  options.hidden = true;
  const Drawing drawing = draw(index, options);
  EXPECT_EQ(0U, countOf(drawing, LineKind::Crossing));
  const auto map = index.lookAlong({options.forward, options.up, false, 1, nullptr});
  const auto placeOf = [&](const Vector& p) {
    return Drawing::Point{dot(p, map.right), -dot(p, map.up)};
  };
  Drawing::Point low{1e300, 1e300};
  Drawing::Point high{-1e300, -1e300};
  for (const Vector& p : builder.scene.points) {
    const Drawing::Point at = placeOf(p);
    low = {std::min(low.x, at.x), std::min(low.y, at.y)};
    high = {std::max(high.x, at.x), std::max(high.y, at.y)};
  }
  const double scale = (drawing.frame[2] - drawing.frame[0]) / (high.x - low.x);
  const std::vector<Drawing::Line> hidden = linesOf(drawing, "hidden");
  const Outline loop = {{0.5, 2, 0.5}, {1.5, 2, 0.5}, {1.5, 2, 1.5}, {0.5, 2, 1.5}};
  for (std::size_t i = 0; i < 4; ++i)
    for (const double part : {0.01, 0.27, 0.5, 0.83, 0.99}) {
      const Drawing::Point at =
          placeOf(plus(loop[i], times(part, minus(loop[(i + 1) % 4], loop[i]))));
      EXPECT_GT(1e-3, distanceTo(hidden, {drawing.frame[0] + scale * (at.x - low.x),
                                          drawing.frame[1] + scale * (at.y - low.y)}));
    }
}

// ---- strokes

TEST(Drawing, StrokesAreDrawnOnceEach) {
  const SceneIndex index(town());
  for (const Vector direction : {Vector{0, 0, -1}, Vector{0, 1, 0}, Vector{0.8, 1, -0.7}}) {
    DrawingOptions options = parallelAlong(direction);
    options.hidden = true;
    options.strokes = true;
    const Drawing drawing = draw(index, options);
    std::vector<Drawing::Line> pieces;
    for (const Drawing::Group& layer : drawing.layers)
      for (const Drawing::Path& path : layer.paths)
        for (const Drawing::Line& line : path.lines)
          for (std::size_t i = 0; i + 1 < line.size(); ++i)
            pieces.push_back({line[i], line[i + 1]});
    ASSERT_LT(25U, pieces.size());
    int doubles = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const Drawing::Point a = pieces[i][0];
      const Drawing::Point b = pieces[i][1];
      for (const double part : {0.31, 0.5, 0.73}) {
        const Drawing::Point p = {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
        for (std::size_t k = 0; k < pieces.size(); ++k) {
          if (k == i || distanceTo({pieces[k]}, p) > 1e-3) continue;
          const Drawing::Point c = pieces[k][0];
          const Drawing::Point d = pieces[k][1];
          const double sine = ((b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x)) /
                              (std::hypot(b.x - a.x, b.y - a.y) * std::hypot(d.x - c.x, d.y - c.y));
          if (std::fabs(sine) < 1e-3) ++doubles;
        }
      }
    }
    EXPECT_EQ(0, doubles);
  }
}

TEST(Drawing, StrokesAreLongPathsWithLittleTravelBetweenThem) {
  const SceneIndex index(town());
  DrawingOptions options = parallelAlong({0.8, 1, -0.7});
  options.groups = DrawingGroups::None;
  const Drawing plain = draw(index, options);
  options.strokes = true;
  const Drawing strokes = draw(index, options);
  std::size_t lines = 0;
  for (const std::size_t count : strokes.counts.lines) lines += count;
  EXPECT_LT(2 * strokes.counts.paths, lines);
  EXPECT_LT(strokes.counts.travel, 0.5 * plain.counts.travel);
  EXPECT_NEAR(plain.counts.drawn, strokes.counts.drawn, 1e-3 * plain.counts.drawn);
}

// ---- page and files

TEST(Drawing, APlanAtAScaleMeasuresWhatItSays) {
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.up = {0, 1, 0};
  options.scale = 10.0;
  options.margin = 7.0;
  const Drawing drawing = draw(SceneIndex(box()), options);
  EXPECT_NEAR(34.0, drawing.width, 1e-9);
  EXPECT_NEAR(44.0, drawing.height, 1e-9);
  EXPECT_NEAR(7.0, drawing.frame[0], 1e-9);
  EXPECT_NEAR(27.0, drawing.frame[2], 1e-9);
}

TEST(Drawing, APageKeepsItsSizeAndTheDrawingItsMargins) {
  DrawingOptions options = parallelAlong({1, 2, -1});
  options.page = {210, 297};
  options.margin = 20.0;
  const Drawing drawing = draw(SceneIndex(town()), options);
  EXPECT_EQ(210.0, drawing.width);
  EXPECT_EQ(297.0, drawing.height);
  for (const char* kind : {"outline", "silhouette", "crease"})
    for (const Drawing::Line& line : linesOf(drawing, kind))
      for (const Drawing::Point& p : line) {
        EXPECT_LE(20.0 - 1e-9, std::min(p.x, p.y));
        EXPECT_GE(190.0 + 1e-9, p.x);
        EXPECT_GE(277.0 + 1e-9, p.y);
      }
}

TEST(Drawing, AtALargeScaleThePageShowsTheMiddle) {
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.page = {100, 80};
  options.scale = 20.0;
  options.fill = DrawingFill::White;
  const Drawing drawing = draw(SceneIndex(town()), options);
  for (const Drawing::Line& line : linesOf(drawing, "outline"))
    for (const Drawing::Point& p : line) {
      EXPECT_LE(10.0 - 1e-9, std::min(p.x, p.y));
      EXPECT_GE(90.0 + 1e-9, p.x);
      EXPECT_GE(70.0 + 1e-9, p.y);
    }
}

TEST(Drawing, BadOptionsAreRefusedInOneLine) {
  const SceneIndex index(box());
  const auto fault = [&](const std::function<void(DrawingOptions&)>& change) -> std::string {
    DrawingOptions options;
    options.eye = {-5, 1, 0.5};
    change(options);
    try {
      draw(index, options);
    } catch (const std::exception& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ("", fault([](DrawingOptions&) {}));
  EXPECT_EQ("the field of view is to be above 0 and below 180 degrees",
            fault([](DrawingOptions& o) { o.fieldOfView = 0.0; }));
  EXPECT_EQ("the field of view is to be above 0 and below 180 degrees",
            fault([](DrawingOptions& o) { o.fieldOfView = 180.0; }));
  EXPECT_EQ("nothing of the scene is in the picture: look from elsewhere",
            fault([](DrawingOptions& o) {
              o.forward = {-1, 0, 0};
            }));
  EXPECT_EQ(
      "the page has no room within its margins: make it larger than twice the margin, or the "
      "margin smaller",
      fault([](DrawingOptions& o) {
        o.page = {19, 200};
      }));
  EXPECT_EQ("exact arcs are of orthographic and stereographic fisheyes",
            fault([](DrawingOptions& o) { o.exactArcs = true; }));
  EXPECT_EQ("forward is zero", fault([](DrawingOptions& o) { o.forward = {0, 0, 0}; }));
  EXPECT_EQ("the direction is zero", fault([](DrawingOptions& o) {
              o.projection = DrawingProjection::Parallel;
              o.forward = {0, 0, 0};
            }));
}

TEST(Drawing, AnEyeInThePlaneOfAPolygonSeesNothingOfIt) {
  PolygonBuilder builder;
  builder.add({{1, -1, 0}, {1, 1, 0}, {3, 1, 0}, {3, -1, 0}});
  const SceneIndex index(builder.scene);
  EXPECT_THROW(draw(index, DrawingOptions()), std::runtime_error);
}

TEST(Drawing, SvgGroupsAreLayersWithIdsOfTheirOwn) {
  DrawingOptions options = parallelAlong({1, 2, -1});
  options.hidden = true;
  options.fill = DrawingFill::Shading;
  options.groups = DrawingGroups::Face;
  options.labels = DrawingLabels::Id;
  const std::string svg = DrawingWriter::svg(draw(SceneIndex(town()), options));
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(svg.c_str()));
  EXPECT_STREQ("200mm", document.child("svg").attribute("width").value());
  std::map<std::string, int> ids;
  for (const pugi::xpath_node& node : document.select_nodes("//*[@id]"))
    ++ids[node.node().attribute("id").value()];
  for (const auto& entry : ids) EXPECT_EQ(1, entry.second) << entry.first;
  for (const char* layer : {"fills", "hidden", "crease", "silhouette", "outline", "labels"}) {
    EXPECT_EQ(1, ids[layer]) << layer;
    const auto found = document.child("svg").find_child_by_attribute("g", "id", layer);
    EXPECT_STREQ("layer", found.attribute("inkscape:groupmode").value());
  }
  EXPECT_LT(10U, document.select_nodes("//g[@id='fills']/g/g/path").size());
}

// A box on a plate, in classes of their own; the lid of the box has none.
PolygonScene boxOfClasses() {
  PolygonBuilder builder;
  addBox(builder, 1, {0, 0, 0}, {4, 4, 1});
  addBox(builder, 2, {1, 1, 1}, {2, 2, 3});
  builder.scene.classNames = {"Ground", "Wall"};
  builder.scene.classes = std::vector<int>(12, 0);
  for (std::size_t i = 6; i < 12; ++i) builder.scene.classes[i] = i == 11 ? -1 : 1;
  return builder.scene;
}

TEST(Drawing, ClassesHaveFillsOfTheirOwnAndALegend) {
  DrawingOptions options = parallelAlong({1, 2, -1});
  options.fill = DrawingFill::Class;
  options.legend = true;
  options.labels = DrawingLabels::Class;
  const Drawing drawing = draw(SceneIndex(boxOfClasses()), options);
  const Drawing::Group* const legend = layerOf(drawing, "legend");
  ASSERT_NE(nullptr, legend);
  std::map<std::string, Drawing::Color> colors;
  for (std::size_t i = 0; i < legend->texts.size(); ++i)
    colors[legend->texts[i].text] = *legend->paths[i].fill;
  ASSERT_EQ(3U, colors.size());
  EXPECT_EQ(238, colors.at("Wall").red);
  EXPECT_EQ(150, colors.at("Ground").red);
  EXPECT_EQ(206, colors.at("no class").red);
  std::map<int, int> fills;
  for (const Drawing::Group& group : layerOf(drawing, "fills")->groups)
    for (const Drawing::Path& path : group.paths) ++fills[path.fill->red];
  EXPECT_EQ((std::map<int, int>{{150, 3}, {206, 1}, {238, 2}}), fills);
  EXPECT_EQ("Ground", layerOf(drawing, "labels")->texts.at(0).text);
}

TEST(Drawing, GroupsOfClassesAreLayersOfFillsAndOfEachKindOfLines) {
  DrawingOptions options = parallelAlong({1, 2, -1});
  options.fill = DrawingFill::Class;
  options.groups = DrawingGroups::Class;
  const Drawing drawing = draw(SceneIndex(boxOfClasses()), options);
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(DrawingWriter::svg(drawing).c_str()));
  std::map<std::string, int> ids;
  for (const pugi::xpath_node& node : document.select_nodes("//*[@id]"))
    ++ids[node.node().attribute("id").value()];
  for (const auto& entry : ids) EXPECT_EQ(1, entry.second) << entry.first;
  for (const char* const id : {"class1", "class2", "class0", "outline-class1", "outline-class2-o2"})
    EXPECT_EQ(1, ids[id]) << id;
  const pugi::xml_node group = document.select_node("//g[@id='class2']").node();
  EXPECT_STREQ("layer", group.attribute("inkscape:groupmode").value());
  EXPECT_STREQ("Wall", group.attribute("inkscape:label").value());
  const std::string dxf = DrawingWriter::dxf(drawing);
  for (const char* const layer : {"FILLS_WALL", "FILLS_NO_CLASS", "OUTLINE_GROUND"}) {
    EXPECT_NE(std::string::npos, dxf.find(std::string("LAYER\n2\n") + layer + "\n")) << layer;
    EXPECT_NE(std::string::npos, dxf.find(std::string("\n8\n") + layer + "\n")) << layer;
  }
}

TEST(Drawing, SvgTakesNoMoreThanSixtyBytesAVertex) {
  const SceneIndex index = streetIndex();
  DrawingOptions options = streetView(DrawingProjection::Perspective);
  const std::string svg = DrawingWriter::svg(draw(index, options));
  std::size_t vertices = 0;
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(svg.c_str()));
  for (const pugi::xpath_node& node : document.select_nodes("//path")) {
    std::istringstream data(node.node().attribute("d").value());
    std::string word;
    std::size_t words = 0;
    while (data >> word) ++words;
    vertices += words / 2;
  }
  EXPECT_LT(1000U, vertices);
  EXPECT_LT(svg.size(), 60 * vertices);
}

TEST(Drawing, DxfIsAListOfPairsWithALayerForEachKind) {
  DrawingOptions options = parallelAlong({1, 2, -1});
  options.hidden = true;
  options.fill = DrawingFill::None;
  const Drawing drawing = draw(SceneIndex(town()), options);
  std::istringstream text(DrawingWriter::dxf(drawing));
  std::string code;
  std::string value;
  std::string last;
  std::map<std::string, int> layers;
  std::size_t entities = 0;
  while (std::getline(text, code) && std::getline(text, value)) {
    const int number = std::stoi(code);
    if (number == 0) last = value;
    if (number == 8) ++layers[value];
    entities += number == 0 && (value == "LINE" || value == "POLYLINE") ? 1 : 0;
    if (number == 10 || number == 20) {
      EXPECT_LE(-1e-4, std::stod(value));
      EXPECT_GE((number == 10 ? drawing.width : drawing.height) + 1e-4, std::stod(value));
    }
  }
  EXPECT_EQ("EOF", last);
  EXPECT_EQ(drawing.counts.paths, entities);
  for (const char* layer : {"HIDDEN", "CREASE", "SILHOUETTE", "OUTLINE"})
    EXPECT_LT(0, layers[layer]) << layer;
}

TEST(Drawing, EqualDrawingsGiveEqualBytesFromAnyNumberOfThreads) {
  const SceneIndex index = streetIndex();
  DrawingOptions options = streetView(DrawingProjection::Equisolid);
  options.hidden = true;
  options.threads = 1;
  const Drawing one = draw(index, options);
  options.threads = 3;
  const Drawing three = draw(index, options);
  EXPECT_EQ(DrawingWriter::svg(one), DrawingWriter::svg(three));
  EXPECT_EQ(DrawingWriter::pdf(one), DrawingWriter::pdf(three));
}

// ---- exact arcs

// A piece of an SVG path: a straight one, or an arc as SVG has it.
struct SvgPiece {
  Drawing::Point from;
  Drawing::Point to;
  double radius = 0.0;  // 0: straight
  double smaller = 0.0;
  double turn = 0.0;
  bool isLarge = false;
  bool isSwept = false;

  // From 0 at its beginning to 1 (W3C, Scalable Vector Graphics 1.1, appendix F.6.5).
  Drawing::Point at(double part) const {
    if (radius == 0.0) return {from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)};
    const double phi = turn * Pi / 180.0;
    const double c = std::cos(phi);
    const double s = std::sin(phi);
    const double x = c * (from.x - to.x) / 2.0 + s * (from.y - to.y) / 2.0;
    const double y = -s * (from.x - to.x) / 2.0 + c * (from.y - to.y) / 2.0;
    const double rx = radius * radius;
    const double ry = smaller * smaller;
    const double size = rx * y * y + ry * x * x;
    const double factor =
        (isLarge == isSwept ? -1.0 : 1.0) * std::sqrt(std::max(0.0, (rx * ry - size) / size));
    const double cx = factor * radius * y / smaller;
    const double cy = -factor * smaller * x / radius;
    const double start = std::atan2((y - cy) / smaller, (x - cx) / radius);
    const double end = std::atan2((-y - cy) / smaller, (-x - cx) / radius);
    double sweep = std::fmod(end - start, 2.0 * Pi);
    if (isSwept && sweep < 0.0) sweep += 2.0 * Pi;
    if (!isSwept && sweep > 0.0) sweep -= 2.0 * Pi;
    const double angle = start + part * sweep;
    const double px = radius * std::cos(angle);
    const double py = smaller * std::sin(angle);
    return {c * px - s * py + c * cx - s * cy + (from.x + to.x) / 2.0,
            s * px + c * py + s * cx + c * cy + (from.y + to.y) / 2.0};
  }
};

std::vector<SvgPiece> piecesOf(const std::string& data) {
  std::string spaced;
  for (const char c : data) {
    if (c == 'M' || c == 'L' || c == 'A' || c == 'z') spaced += ' ';
    spaced += c;
    if (c == 'M' || c == 'L' || c == 'A' || c == 'z') spaced += ' ';
  }
  std::istringstream words(spaced);
  std::vector<SvgPiece> pieces;
  Drawing::Point at;
  std::string word;
  while (words >> word) {
    if (word == "z") continue;
    SvgPiece piece;
    piece.from = at;
    if (word == "A")
      words >> piece.radius >> piece.smaller >> piece.turn >> piece.isLarge >> piece.isSwept;
    words >> piece.to.x >> piece.to.y;
    at = piece.to;
    if (word != "M") pieces.push_back(piece);
  }
  return pieces;
}

// The direction that lies at a place of a fisheye: x right, y up, z forward.
std::array<double, 3> directionAt(double x, double y, DrawingProjection projection) {
  const double r = std::hypot(x, y);
  if (r == 0.0) return {0.0, 0.0, 1.0};
  const double angle = projection == DrawingProjection::Stereographic ? 2.0 * std::atan(r)
                                                                      : std::asin(std::min(1.0, r));
  return {std::sin(angle) * x / r, std::sin(angle) * y / r, std::cos(angle)};
}

class ExactArcs : public testing::TestWithParam<DrawingProjection> {};

TEST_P(ExactArcs, LieOnTheProjectedGreatCirclesWithinAThousandthOfAPixel) {
  constexpr double Pixel = 25.4 / 96.0;  // mm
  const SceneIndex index(town());
  DrawingOptions options;
  options.projection = GetParam();
  options.eye = {5.3, 5.6, 1.7};
  options.forward = {0.3, 0.2, 1.0};
  options.fill = DrawingFill::Object;
  options.contentWidth = 200.0;
  options.exactArcs = true;
  const Drawing drawing = draw(index, options);
  const double scale = (drawing.frame[2] - drawing.frame[0]) / 2.0;
  const double middleX = drawing.frame[0] + scale;
  const double middleY = drawing.frame[1] + scale;
  Visibility::LookOptions look;
  look.forward = options.forward;
  look.up = options.up;
  const Visibility::VisibleMap map = index.look(options.eye, look);
  const Vector right = cross(map.forward, map.up);
  struct Circle {
    std::array<double, 3> normal;
    std::array<double, 3> middle;
    double cosine;  // of the angle from the middle to its ends
  };
  std::vector<Circle> circles;
  for (const Visibility::VisibleMap::Edge& edge : map.edges) {
    const Vector& a = map.vertices[static_cast<std::size_t>(edge.from)];
    const Vector& b = map.vertices[static_cast<std::size_t>(edge.to)];
    const auto seen = [&](const Vector& v) {
      return Vector{dot(v, right), dot(v, map.up), dot(v, map.forward)};
    };
    const Vector middle = unit(seen({a[0] + b[0], a[1] + b[1], a[2] + b[2]}));
    circles.push_back({unit(cross(seen(a), seen(b))), middle, dot(middle, seen(a))});
  }
  // How far a place is from the nearest edge of the map, or from the rim; mm.
  const auto distanceOf = [&](const Drawing::Point& p) {
    const double x = (p.x - middleX) / scale;
    const double y = (middleY - p.y) / scale;
    double least = std::abs(1.0 - std::hypot(x, y));
    const Vector d = directionAt(x, y, GetParam());
    // Of an angle; the plane is stretched by no more than this.
    for (const Circle& circle : circles)
      if (dot(d, circle.middle) > circle.cosine - 1e-6)
        least = std::min(least, std::abs(dot(d, circle.normal)));
    return least * scale;
  };
  std::size_t arcs = 0;
  double longest = 0.0;
  double worst = 0.0;
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(DrawingWriter::svg(drawing).c_str()));
  for (const pugi::xpath_node& node : document.select_nodes("//path"))
    for (const SvgPiece& piece : piecesOf(node.node().attribute("d").value())) {
      const double length = std::hypot(piece.to.x - piece.from.x, piece.to.y - piece.from.y);
      if (piece.radius > 0.0) {
        ++arcs;
        longest = std::max(longest, length);
      }
      for (const double part : {0.07, 0.31, 0.5, 0.77, 0.96})
        worst = std::max(worst, distanceOf(piece.at(part)));
    }
  EXPECT_LT(150U, arcs);
  EXPECT_LT(30.0, longest);
  EXPECT_LT(worst, 1e-3 * Pixel);
  DrawingOptions chords = options;
  chords.exactArcs = false;
  EXPECT_EQ(std::string::npos, DrawingWriter::svg(draw(index, chords)).find('A', 2000));
}

INSTANTIATE_TEST_SUITE_P(Fisheyes, ExactArcs,
                         testing::Values(DrawingProjection::Orthographic,
                                         DrawingProjection::Stereographic));

TEST(Drawing, ExactArcsShowWhatChordsShow) {
  const SceneIndex index(town());
  DrawingOptions options;
  options.projection = DrawingProjection::Stereographic;
  options.eye = {5.3, 5.6, 1.7};
  options.forward = {0, 0, 1};
  options.fill = DrawingFill::Object;
  const Drawing chords = draw(index, options);
  options.exactArcs = true;
  const Drawing arcs = draw(index, options);
  EXPECT_TRUE(chords.arcs.empty());
  EXPECT_LT(50U, arcs.arcs.size());
  EXPECT_EQ(chords.counts.lines, arcs.counts.lines);
  EXPECT_LT(DrawingWriter::svg(arcs).size(), 2 * DrawingWriter::svg(chords).size());
}

TEST(Drawing, LabelsStandInTheirCellsOrHaveALeader) {
  PolygonBuilder builder;
  builder.scene.objectIds = {"meadow", "a long name for a small patch"};
  builder.add({{0, 0, 0}, {0, 20, 0}, {30, 20, 0}, {30, 0, 0}}, 1);
  builder.add({{40, 10, 0}, {40, 11, 0}, {41, 11, 0}, {41, 10, 0}}, 2);
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.labels = DrawingLabels::Id;
  const Drawing drawing = draw(SceneIndex(builder.scene), options);
  const Drawing::Group* labels = layerOf(drawing, "labels");
  ASSERT_NE(nullptr, labels);
  ASSERT_EQ(2U, labels->texts.size());
  EXPECT_EQ("meadow", labels->texts[0].text);
  const double scale = (drawing.frame[2] - drawing.frame[0]) / 41.0;
  EXPECT_LT(labels->texts[0].place.x, drawing.frame[0] + 30.0 * scale);
  EXPECT_EQ(1U, labels->paths.size());  // the leader
}

TEST(Drawing, LabelsAlongAStripNeedNoLeader) {
  PolygonBuilder builder;
  builder.scene.objectIds = {"a pavement with a name"};
  builder.add({{0, 0, 0}, {0, 4, 0}, {100, 4, 0}, {100, 0, 0}}, 1);
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.labels = DrawingLabels::Id;
  const Drawing drawing = draw(SceneIndex(builder.scene), options);
  EXPECT_EQ(1U, layerOf(drawing, "labels")->texts.size());
  EXPECT_TRUE(layerOf(drawing, "labels")->paths.empty());
}

TEST(Drawing, LabelsOnDarkFillsHaveAWhiteRim) {
  PolygonBuilder builder;
  builder.scene.objectIds = {"HHHHHHHH"};
  builder.add({{0, 0, 0}, {0, 6, 0}, {20, 6, 0}, {20, 0, 0}}, 1);
  DrawingOptions options = parallelAlong({0, 0, -1});
  options.fill = DrawingFill::Object;
  options.labels = DrawingLabels::Id;
  options.contentWidth = 60.0;
  const Drawing drawing = draw(SceneIndex(builder.scene), options);
  const Drawing::Text& text = layerOf(drawing, "labels")->texts.at(0);
  ASSERT_LT(0.3, text.halo);
  EXPECT_NE(std::string::npos, DrawingWriter::svg(drawing).find("paint-order=\"stroke\""));
  // On a line through the letters there are black pixels, and white ones beside them.
  constexpr double Fine = 600.0;
  const Image image(DrawingWriter::png(drawing, Fine));
  const int row = static_cast<int>((text.place.y - 0.2 * text.height) * Fine / 25.4);
  int black = 0;
  int white = 0;
  const int middle = static_cast<int>(text.place.x * Fine / 25.4);
  for (int x = middle - 100; x < middle + 100; ++x) {
    const auto seen = image.at(x, row);
    black += seen[0] + seen[1] + seen[2] < 60 ? 1 : 0;
    white += seen[0] + seen[1] + seen[2] > 740 ? 1 : 0;
  }
  EXPECT_LT(10, black);
  EXPECT_LT(10, white);
}

TEST(Drawing, AFisheyeHasRingsAndMarksWhereTheDirectionsLie) {
  DrawingOptions options;
  options.projection = DrawingProjection::Equidistant;
  options.eye = {6, 6, 0.2};
  options.forward = {0, 0, 1};
  options.up = {0, 1, 0};
  options.rings = 30.0;
  options.north = true;
  options.sky = Drawing::Color{200, 220, 255, 1.0};
  const Drawing drawing = draw(SceneIndex(town()), options);
  const Drawing::Group* marks = layerOf(drawing, "marks");
  ASSERT_NE(nullptr, marks);
  EXPECT_NE(nullptr, layerOf(drawing, "sky"));
  const double middle = 0.5 * (drawing.frame[0] + drawing.frame[2]);
  const double radius = 0.5 * (drawing.frame[2] - drawing.frame[0]);
  double largest = 0.0;
  for (const Drawing::Point& p : marks->paths[0].lines[0]) largest = std::max(largest, p.x);
  EXPECT_NEAR(middle + radius / 3.0, largest, 1e-6);
  for (const Drawing::Text& text : marks->texts) {
    if (text.text == "N") {
      EXPECT_GT(drawing.frame[1], text.place.y - 0.5 * text.height);
    }
    // Looking up with north above, east is on the left.
    if (text.text == "E") {
      EXPECT_LT(text.place.x, drawing.frame[0]);
    }
  }
}

}  // namespace
}  // namespace Lumivane::Pictures
