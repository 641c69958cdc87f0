// Where two polygons meet, a renderer that smooths edges covers a pixel of the common edge partly
// by the one and partly by the other, and what lies beneath shines through: a hairline that no zoom
// takes away. Hence the pieces of a face get a ground of their own colour, cut out of their common
// outline, which has no edge where they meet.
//
// Faces of one curved surface may dock as well, as those of a terrain do, but they are drawn at
// different times. There the earlier one spreads under the later one by a narrow line of its
// colour.
//
// Pieces of several colours get a ground of each. The first reaches under all pieces, the next
// under all but those of the first colour, and so on, so that at every inner edge one of its two
// colours lies beneath.

#include "pictures/Surfaces.h"

#include "kernel/MergedOutline.h"
#include "kernel/Planar.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;
using Line = VectorPicture::Line;
using Path = VectorPicture::Path;
using Surface = VectorPicture::Surface;
using Iterator = std::vector<DrawnRegion>::iterator;

constexpr double SpreadWidth = 1.0;  // half of it lies outside

bool areOfOneFace(const DrawnRegion& a, const DrawnRegion& b) {
  return a.region.objectNumber >= 1 && a.region.faceNumber >= 1 &&
         a.region.objectNumber == b.region.objectNumber &&
         a.region.faceNumber == b.region.faceNumber;
}

bool sameColor(const Color& a, const Color& b) {
  return a.red == b.red && a.green == b.green && a.blue == b.blue && a.opacity == b.opacity;
}

// Twice the area, positive if the line turns to the left.
double turning(const Line& line) {
  return Kernel::twiceArea(line.size(), [&](std::size_t i) {
    return Kernel::Vec2{line[i].x, line[i].y};
  });
}

// The common outline of pieces, turned to one sense so that their inner edges fall out.
std::vector<Line> commonOutline(const std::vector<const DrawnRegion*>& pieces) {
  std::map<int, VectorPicture::Point> places;
  std::vector<std::vector<int>> polygons;
  for (const DrawnRegion* piece : pieces) {
    const Line& line = piece->region.interior.lines.front();
    for (std::size_t i = 0; i < line.size(); ++i) places[piece->points[i]] = line[i];
    polygons.push_back(piece->points);
    if (turning(line) < 0.0) std::reverse(polygons.back().begin(), polygons.back().end());
  }
  std::vector<Line> result;
  for (const std::vector<int>& loop : Kernel::mergedOutline(polygons)) {
    Line line;
    for (const int number : loop) line.push_back(places[number]);
    result.push_back(std::move(line));
  }
  return result;
}

std::vector<const DrawnRegion*> filledPieces(Iterator first, Iterator last) {
  std::vector<const DrawnRegion*> pieces;
  for (; first != last; ++first)
    if (first->region.interior.fill) pieces.push_back(&*first);
  return pieces;
}

// Whether there are seams to close, which pieces of different opacity have not in common.
bool canMerge(Iterator first, Iterator last) {
  if (std::none_of(first, last,
                   [](const DrawnRegion& region) { return !region.dockingEdges.empty(); }))
    return false;
  const std::vector<const DrawnRegion*> pieces = filledPieces(first, last);
  if (pieces.size() < 2) return false;
  const double opacity = pieces.front()->region.interior.fill->opacity;
  return std::all_of(pieces.begin(), pieces.end(), [opacity](const DrawnRegion* piece) {
    return piece->region.interior.fill->opacity == opacity;
  });
}

// A ground for each colour, in the order in which the colours first come.
std::vector<Path> grounds(std::vector<const DrawnRegion*> pieces) {
  std::vector<Path> result;
  while (!pieces.empty()) {
    const Color color = *pieces.front()->region.interior.fill;
    Path ground;
    ground.lines = commonOutline(pieces);
    ground.closed = true;
    ground.fill = color;
    result.push_back(std::move(ground));
    pieces.erase(std::remove_if(pieces.begin(), pieces.end(),
                                [&color](const DrawnRegion* piece) {
                                  return sameColor(*piece->region.interior.fill, color);
                                }),
                 pieces.end());
  }
  return result;
}

// For each point at which regions dock, the last region that does.
std::map<int, int> lastDockings(const std::vector<DrawnRegion>& regions) {
  std::map<int, int> result;
  for (const DrawnRegion& region : regions) {
    for (const std::size_t edge : region.dockingEdges)
      result[region.edgeStart(edge)] = result[region.edgeEnd(edge)] = region.region.number;
  }
  return result;
}

bool docksLater(const DrawnRegion& region, int number, const std::map<int, int>& lastDocking) {
  return std::any_of(region.dockingEdges.begin(), region.dockingEdges.end(), [&](std::size_t edge) {
    return lastDocking.at(region.edgeStart(edge)) > number ||
           lastDocking.at(region.edgeEnd(edge)) > number;
  });
}

// All edges at which a region docks: those that follow each other make one line.
std::vector<Line> dockingLines(const DrawnRegion& region) {
  const Line& outline = region.region.interior.lines.front();
  std::vector<Line> lines;
  std::size_t end = outline.size();  // where the last line ends; at first nowhere
  for (const std::size_t edge : region.dockingEdges) {
    if (lines.empty() || end != edge) lines.push_back({outline[edge]});
    end = edge + 1;
    lines.back().push_back(outline[end % outline.size()]);
  }
  return lines;
}

// Spreads the regions of one surface under the surfaces that follow and dock to it. Neighbours may
// have cut a common edge at different points, so that no edge is matched by itself: whatever docks
// later spreads along all edges at which it docks. There it meets only what docks to it.
void spread(Iterator first, Iterator last, const std::map<int, int>& lastDocking) {
  const int lastNumber = (last - 1)->region.number;
  for (; first != last; ++first) {
    const std::optional<Color>& fill = first->region.interior.fill;
    if (!fill || fill->opacity < 1.0 || !docksLater(*first, lastNumber, lastDocking)) continue;
    first->region.spread.lines = dockingLines(*first);
    first->region.spread.pen = VectorPicture::Pen{*fill, SpreadWidth, false};
  }
}

Surface mergedSurface(Iterator first, Iterator last) {
  Surface surface;
  surface.merged = grounds(filledPieces(first, last));
  surface.opacity = surface.merged.front().fill->opacity;
  for (Path& ground : surface.merged) ground.fill->opacity = 1.0;
  for (; first != last; ++first) {
    if (first->region.interior.fill) first->region.interior.fill->opacity = 1.0;
    surface.regions.push_back(std::move(first->region));
  }
  return surface;
}

}  // namespace

std::vector<Surface> surfacesOf(std::vector<DrawnRegion> regions) {
  const std::map<int, int> lastDocking = lastDockings(regions);
  std::vector<Surface> result;
  for (auto first = regions.begin(); first != regions.end();) {
    const auto last = std::find_if(first + 1, regions.end(), [first](const DrawnRegion& region) {
      return !areOfOneFace(*first, region);
    });
    if (canMerge(first, last)) {
      spread(first, last, lastDocking);
      result.push_back(mergedSurface(first, last));
      first = last;
    }
    for (; first != last; ++first) {
      spread(first, first + 1, lastDocking);
      result.push_back({{std::move(first->region)}, {}, 1.0});
    }
  }
  return result;
}

}  // namespace Lumivane::Pictures
