// Drawings on a page are pictures of maps with other looks: lines have the pens of their kinds, and
// hidden lines are added to the map as edges of no cell. What an eye sees is kept as the map of the
// whole sphere, which the page's script draws in any projection; along parallel lines of sight a
// plane picture is all there is.

#include "pictures/DrawingParts.h"
#include "pictures/MapLooks.h"

#include <lumivane/pictures/DrawingPage.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/visibility/MapShares.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Kernel::Vec2;
using Kernel::Vec3;
using Pen = VectorPicture::Pen;
using Visibility::VisibleMap;

constexpr double PixelsPerMm = 96.0 / 25.4;
constexpr int Height = 800;      // of pictures, pixels
constexpr double Extent = 1.02;  // so that no line of the rim is cut
constexpr double WidestShape = 2.0;
constexpr Color White{255, 255, 255, 1.0};

// The looks of a drawing; `drawnLines` has a line for each edge of the map.
class DrawingLooks final : public MapLooks {
 public:
  DrawingLooks(const DrawnScene& scene, const std::vector<DrawnLine>& drawnLines)
      : options(scene.options), looks(scene), lines(drawnLines) {}

  Color fill(const Visibility::Label& label) const override {
    if (label.object == 0) return options.sky ? *options.sky : White;
    return options.fill == DrawingFill::None ? White : looks.fill(label);
  }

  std::optional<Pen> pen(std::size_t edge) const override {
    const LineKind kind = lines[edge].kind;
    const double width = options.widths[static_cast<std::size_t>(kind)];
    if (!(width > 0.0)) return {};
    const bool isHidden = kind == LineKind::Hidden;
    Pen pen{isHidden ? Grey : Black, width * PixelsPerMm, true, {}};
    if (isHidden)
      for (const double length : Dashes) pen.dashes.push_back(length * PixelsPerMm);
    return pen;
  }

 private:
  const DrawingOptions& options;
  CellLooks looks;
  const std::vector<DrawnLine>& lines;
};

// Corners on a plane, with straight lines between them.
class StraightMapPlane final : public MapPlane {
 public:
  StraightMapPlane(const Visibility::ParallelMap& theMap, std::vector<Vec2> thePlaces)
      : map(theMap), places(std::move(thePlaces)) {}

  std::vector<Places> outline(std::size_t number) override {
    const Visibility::ParallelMap::Cell& cell = map.cells[number];
    std::vector<Places> rings;
    if (std::isinf(cell.area)) return rings;  // lies around all
    for (std::size_t r = cell.firstRing; r < cell.firstRing + cell.ringCount; ++r) {
      rings.emplace_back();
      for (std::size_t k = map.ringOffsets[r]; k < map.ringOffsets[r + 1]; ++k)
        rings.back().push_back(at(map.ringVertices[k]));
    }
    return rings;
  }

  std::vector<Places> arc(int from, int to) override { return {{at(from), at(to)}}; }

 private:
  Vec2 at(int vertex) const { return places[static_cast<std::size_t>(vertex)]; }

  const Visibility::ParallelMap& map;
  std::vector<Vec2> places;
};

// Hidden lines first, then thin ones, so that thick ones lie over them.
void orderLines(VectorPicture::Parts& parts) {
  std::vector<std::size_t> order(parts.lines.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto rank = [&](std::size_t i) {
    const Pen& pen = *parts.lines[i].pen;
    return std::make_pair(pen.dashes.empty(), pen.width);
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
  std::vector<VectorPicture::Path> lines;
  std::vector<std::vector<std::size_t>> edges;
  for (const std::size_t i : order) {
    lines.push_back(std::move(parts.lines[i]));
    edges.push_back(std::move(parts.mapPart->lineEdges[i]));
  }
  parts.lines = std::move(lines);
  parts.mapPart->lineEdges = std::move(edges);
}

std::string scriptName(const DrawingOptions& options) {
  switch (options.projection) {
    case DrawingProjection::Orthographic:
      return "fisheye";
    case DrawingProjection::Equidistant:
      return "equidistant";
    case DrawingProjection::Equisolid:
      return "equisolid";
    case DrawingProjection::Stereographic:
      return "stereographic";
    case DrawingProjection::Equirectangular:
      return options.isWhole ? "equirectangular" : "equirectangular-half";
    case DrawingProjection::Cylindrical:
      return "cylindrical";
    case DrawingProjection::Perspective:
    case DrawingProjection::Parallel:
      break;
  }
  return "perspective";
}

// Adds lines that are no edges of a map: each is an edge of no cell between two vertices of its
// own.
template <class AddVertex>
void addLines(const std::vector<DrawnLine>& lines, AddVertex addVertex, VisibleMap& map) {
  for (const DrawnLine& line : lines) {
    VisibleMap::Edge edge;
    edge.from = addVertex(line.from);
    edge.to = addVertex(line.to);
    edge.left = edge.right = 0;
    edge.kind = VisibleMap::EdgeKind::Inner;
    map.edges.push_back(edge);
  }
}

// A map with its lines: those of its edges, then the hidden ones.
struct LinedMap {
  FlatMap flat;
  RegionPlanes planes;
  std::vector<DrawnLine> hidden;
  std::vector<DrawnLine> lines;

  bool showsAnything() const { return lines.size() > hidden.size(); }
};

LinedMap lined(const Visibility::SceneIndex& index, FlatMap flat, const DrawingOptions& options) {
  const std::vector<Visibility::SceneEdge> edges = index.edges();
  RegionPlanes planes(edges, flat.names->regions.size());
  std::vector<DrawnLine> lines = visibleLines(flat, edges, planes, options.creaseAngle);
  std::vector<DrawnLine> hidden;
  if (options.hidden)
    hidden = hiddenLines(flat, edges, index.crossings(options.threads, options.cancelled), lines,
                         options.creaseAngle);
  lines.insert(lines.end(), hidden.begin(), hidden.end());
  return {std::move(flat), std::move(planes), std::move(hidden), std::move(lines)};
}

void addEye(const Visibility::SceneIndex& index, const DrawingColors& colors,
            const DrawingView& view, const std::string& title, HtmlPage& page) {
  const DrawingOptions& options = view.options;
  VisibleMap map = index.look(options.eye, drawnLook(options, Visibility::Field::Sphere));
  const Visibility::MapShares shares(map);
  const LinedMap drawn = lined(index, flatMap(map), options);
  if (!drawn.showsAnything()) return;
  addLines(
      drawn.hidden,
      [&](Vec3 place) {
        const FlatMap& axes = drawn.flat;
        const Vec3 d = place.x * axes.right + place.y * axes.up + place.z * axes.forward;
        const double length = Kernel::length3(d);
        map.vertices.push_back({d.x / length, d.y / length, d.z / length});
        return static_cast<int>(map.vertices.size()) - 1;
      },
      map);
  const auto plane = straightPlane({});
  const DrawnScene scene{options, colors, drawn.flat, drawn.planes, *plane, {}};
  MapPictureOptions picture;
  picture.projection = MapProjection::Equirectangular;
  picture.width = 2 * Height;
  picture.height = Height;
  picture.extent = Extent;
  picture.allCells = true;
  picture.title = title;
  VectorPicture::Parts parts = mapParts(map, DrawingLooks(scene, drawn.lines), picture);
  orderLines(parts);
  parts.mapPart->opening = VectorPicture::MapPart::Opening{scriptName(options), options.fieldOfView,
                                                           options.aspect, options.shift};
  page.add(VectorPicture(std::move(parts)), map, shares, view.name);
}

// Cells and edges alone.
VisibleMap shapeOf(const Visibility::ParallelMap& map) {
  VisibleMap shape;
  shape.names = map.names;
  shape.edges = map.edges;
  for (const Visibility::ParallelMap::Cell& cell : map.cells) {
    shape.cells.emplace_back();
    shape.cells.back().label = cell.label;
  }
  return shape;
}

void addParallel(const Visibility::SceneIndex& index, const DrawingColors& colors,
                 const DrawingView& view, const std::string& title, HtmlPage& page) {
  const DrawingOptions& options = view.options;
  Visibility::ParallelOptions how;
  how.direction = options.forward;
  how.up = options.up;
  how.twoSided = options.twoSided;
  how.threads = options.threads;
  how.cancelled = options.cancelled;
  const Visibility::ParallelMap map = index.lookAlong(how);
  const LinedMap drawn = lined(index, flatMap(map), options);
  const PlaneBox box = boxOf(drawn.lines);
  if (!drawn.showsAnything() || !(box.width() > 0.0 && box.height() > 0.0)) return;
  const Vec2 middle = 0.5 * (box.low + box.high);
  std::vector<Vec2> places;
  for (const Vec3& place : drawn.flat.places) places.push_back(Vec2{place.x, place.y} - middle);
  VisibleMap shape = shapeOf(map);
  addLines(
      drawn.hidden,
      [&](Vec3 place) {
        places.push_back(Vec2{place.x, place.y} - middle);
        return static_cast<int>(places.size()) - 1;
      },
      shape);
  const auto plane = straightPlane({});
  const DrawnScene scene{options, colors, drawn.flat, drawn.planes, *plane, {}};
  const double scale = std::min(WidestShape * Height / box.width(), Height / box.height());
  const int width = std::max(1, static_cast<int>(std::lround(scale * box.width())));
  const int height = std::max(1, static_cast<int>(std::lround(scale * box.height())));
  const PictureFrame frame(width, height, Extent, {0.5 * box.width(), 0.5 * box.height()});
  StraightMapPlane straight(map, std::move(places));
  VectorPicture::Parts parts =
      planeParts(shape, DrawingLooks(scene, drawn.lines), frame, straight, {}, false);
  orderLines(parts);
  parts.mapPart.reset();
  parts.width = width;
  parts.height = height;
  parts.title = title;
  page.add(VectorPicture(std::move(parts)), map, view.name);
}

}  // namespace

std::string drawingPage(const Visibility::SceneIndex& index, const DrawingColors& colors,
                        const std::vector<DrawingView>& views, const std::string& title) {
  if (views.empty()) throw std::invalid_argument("a page of drawings needs a view");
  for (const DrawingView& view : views) checkDrawing(view.options);
  HtmlPage page(title);
  for (const DrawingView& view : views) {
    const bool isParallel = view.options.projection == DrawingProjection::Parallel;
    (isParallel ? addParallel : addEye)(index, colors, view, title, page);
    if (page.pictureCount() == 0)
      throw std::runtime_error("nothing of the scene is in the picture: look from elsewhere");
  }
  return page.text();
}

}  // namespace Lumivane::Pictures
