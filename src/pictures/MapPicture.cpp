// A map as a picture. Each cell is one region; what else is drawn are lines: those of the pens over
// the cells, and under the cells a line of a cell's colour along each edge that has none, or one
// too thin to hide what smooth edges let through. A renderer that smooths edges mixes the two cells
// of an edge with what lies under them, which would be the background.

#include "pictures/MapLooks.h"
#include "pictures/MapPlane.h"
#include "pictures/PictureFrame.h"
#include "pictures/ProjectionRules.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/VisibleMap.h>

#include <map>
#include <tuple>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Line = VectorPicture::Line;
using Path = VectorPicture::Path;
using Pen = VectorPicture::Pen;
using Visibility::VisibleMap;

constexpr double LargestError = 0.1;   // pixels
constexpr double UnderlayWidth = 1.5;  // pixels: what a smoothed edge reaches, on both sides
constexpr double HidingWidth = 1.0;    // pixels: pens from here on leave nothing to see under them

// Paths of equal looks as one.
class PathsByPen {
 public:
  void add(const Pen& pen, std::size_t edge, std::vector<Line> lines) {
    const auto key = std::make_tuple(pen.color.red, pen.color.green, pen.color.blue, pen.width,
                                     pen.roundEnds, pen.dashes);
    const auto [found, isNew] = positions.try_emplace(key, paths.size());
    if (isNew) {
      paths.emplace_back();
      paths.back().pen = pen;
      edgesOfPaths.emplace_back();
    }
    edgesOfPaths[found->second].push_back(edge);
    std::vector<Line>& target = paths[found->second].lines;
    for (Line& line : lines) target.push_back(std::move(line));
  }

  std::vector<Path> take() { return std::move(paths); }
  std::vector<std::vector<std::size_t>> takeEdges() { return std::move(edgesOfPaths); }

 private:
  std::map<std::tuple<int, int, int, double, bool, std::vector<double>>, std::size_t> positions;
  std::vector<Path> paths;
  std::vector<std::vector<std::size_t>> edgesOfPaths;
};

// All lines of a map.
struct MapEdges {
  PathsByPen under;
  PathsByPen over;
};

class MapDrawing {
 public:
  MapDrawing(const VisibleMap& theMap, const MapLooks& theLooks, const PictureFrame& theFrame,
             MapPlane& thePlane, const std::vector<char>& verticesAtBorder)
      : map(theMap),
        looks(theLooks),
        frame(theFrame),
        plane(thePlane),
        atBorder(verticesAtBorder) {}

  std::vector<VectorPicture::Surface> surfaces(bool allCells) {
    std::vector<VectorPicture::Surface> result;
    for (std::size_t i = 0; i < map.cells.size(); ++i) {
      std::vector<Line> lines = inPixels(plane.outline(i));
      if (lines.empty() && !allCells) continue;
      result.emplace_back();
      result.back().regions.push_back(regionOf(i, std::move(lines)));
    }
    return result;
  }

  // Under the cells and over them.
  MapEdges edges() {
    MapEdges result;
    for (std::size_t i = 0; i < map.edges.size(); ++i) {
      const VisibleMap::Edge& edge = map.edges[i];
      if (edge.left < 0 || edge.right < 0) continue;
      const std::optional<Pen> pen = looks.pen(i);
      std::vector<Line> lines = inPixels(plane.arc(edge.from, edge.to));
      if (!pen || pen->width < HidingWidth)
        result.under.add(underlayOf(edge, lines.size() == 1), i, lines);
      if (pen) result.over.add(*pen, i, std::move(lines));
    }
    return result;
  }

 private:
  // Round ends close the corners between edges; at the border they would stick out of the picture.
  Pen underlayOf(const VisibleMap::Edge& edge, bool isWhole) const {
    const Visibility::Label& left = map.cells[static_cast<std::size_t>(edge.left)].label;
    const Visibility::Label& right = map.cells[static_cast<std::size_t>(edge.right)].label;
    const bool isInside = isWhole && !isAtBorder(edge.from) && !isAtBorder(edge.to);
    return {looks.fill(left.object != 0 ? left : right), UnderlayWidth, isInside};
  }

  bool isAtBorder(int vertex) const {
    return !atBorder.empty() && atBorder[static_cast<std::size_t>(vertex)] != 0;
  }

  VectorPicture::Region regionOf(std::size_t number, std::vector<Line> lines) const {
    const Visibility::Label& label = map.cells[number].label;
    VectorPicture::Region region;
    region.number = static_cast<int>(number) + 1;
    region.objectNumber = label.object;
    region.objectId = idOf(label.object);
    region.faceNumber = label.face;
    region.sourceRegionNumber = label.region;
    region.interior.lines = std::move(lines);
    region.interior.closed = true;
    region.interior.fill = looks.fill(label);
    return region;
  }

  std::string idOf(int object) const {
    const auto at = static_cast<std::size_t>(object) - 1;
    return object >= 1 && map.names && at < map.names->objectIds.size() ? map.names->objectIds[at]
                                                                        : "";
  }

  std::vector<Line> inPixels(const std::vector<Places>& lines) const {
    std::vector<Line> result;
    for (const Places& places : lines) {
      result.emplace_back();
      result.back().reserve(places.size());
      for (const Kernel::Vec2 place : places) result.back().push_back(frame.at(place));
    }
    return result;
  }

  const VisibleMap& map;
  const MapLooks& looks;
  const PictureFrame& frame;
  MapPlane& plane;
  const std::vector<char>& atBorder;  // whether the picture ends there; empty: nowhere
};

// By the colours and pens of the scene.
class SceneLooks final : public MapLooks {
 public:
  SceneLooks(const VisibleMap& theMap, const MapColors& theColors, bool hasLines)
      : map(theMap), colors(theColors), lines(hasLines) {}

  Color fill(const Visibility::Label& label) const override { return colors.fill(label); }

  // That of the nearer one of two cells.
  std::optional<Pen> pen(std::size_t number) const override {
    const VisibleMap::Edge& edge = map.edges[number];
    if (!lines || !isDrawn(edge.kind)) return {};
    const VisibleMap::Cell& left = map.cells[static_cast<std::size_t>(edge.left)];
    const VisibleMap::Cell& right = map.cells[static_cast<std::size_t>(edge.right)];
    const bool isLeftNearer = right.label.object == 0 ||
                              (left.label.object != 0 && left.minDistance <= right.minDistance);
    return colors.pen(isLeftNearer ? left.label : right.label);
  }

 private:
  static bool isDrawn(VisibleMap::EdgeKind kind) {
    switch (kind) {
      case VisibleMap::EdgeKind::Silhouette:
      case VisibleMap::EdgeKind::Crease:
      case VisibleMap::EdgeKind::Crossing:
        return true;
      case VisibleMap::EdgeKind::Inner:
      case VisibleMap::EdgeKind::Field:
        return false;
    }
    return false;
  }

  const VisibleMap& map;
  const MapColors& colors;
  bool lines;
};

bool endsAtRightAngle(const Kernel::Projection& rule, const VisibleMap& map) {
  switch (rule.shape) {
    case Kernel::PlaneShape::Disc:
      return true;
    case Kernel::PlaneShape::Band:
      return map.field == Visibility::Field::Hemisphere;
  }
  return false;
}

// Of vertices: whether the picture ends there, at a right angle from forward.
std::vector<char> borderOf(const VisibleMap& map, const Kernel::Projection& rule) {
  std::vector<char> atBorder;
  if (!endsAtRightAngle(rule, map)) return atBorder;
  for (const Kernel::Vec3& d : eyeDirections(map)) atBorder.push_back(d.z <= 0.0 ? 1 : 0);
  return atBorder;
}

}  // namespace

VectorPicture::Parts planeParts(const VisibleMap& map, const MapLooks& looks,
                                const PictureFrame& frame, MapPlane& plane,
                                const std::vector<char>& atBorder, bool allCells) {
  MapDrawing drawing(map, looks, frame, plane, atBorder);
  VectorPicture::Parts parts;
  parts.content = "map";
  parts.surfaces = drawing.surfaces(allCells);
  MapEdges edges = drawing.edges();
  parts.underlay = edges.under.take();
  parts.lines = edges.over.take();
  parts.mapPart = VectorPicture::MapPart{"", edges.under.takeEdges(), edges.over.takeEdges(), {}};
  return parts;
}

VectorPicture::Parts mapParts(const VisibleMap& map, const MapLooks& looks,
                              const MapPictureOptions& options) {
  checkPictureSize(options.width, options.height, options.extent);
  const Kernel::Projection& rule = ruleOf(options.projection);
  const PictureFrame frame(options.width, options.height, options.extent,
                           rule.halfSize(map.field == Visibility::Field::Sphere));
  const auto plane = MapPlane::make(map, rule, LargestError / frame.length(1.0));
  VectorPicture::Parts parts =
      planeParts(map, looks, frame, *plane, borderOf(map, rule), options.allCells);
  parts.width = options.width;
  parts.height = options.height;
  parts.title = options.title;
  parts.mapPart->projection = rule.name;
  return parts;
}

VectorPicture::VectorPicture(const VisibleMap& map, const MapColors& colors,
                             const MapPictureOptions& options)
    : all(mapParts(map, SceneLooks(map, colors, options.lines), options)) {}

}  // namespace Lumivane::Pictures
