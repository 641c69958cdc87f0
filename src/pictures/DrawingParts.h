#pragma once

#include "pictures/DrawingPlane.h"
#include "pictures/DrawnLines.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/visibility/LookOptions.h>

#include <map>
#include <string>
#include <vector>

/// The parts of a drawing: what `drawScene` puts together.
namespace Lumivane::Pictures {

/// From the plane of a projection to the page.
struct Paper {
  double scale = 1.0;  ///< mm for a unit of the plane
  double x = 0.0;      ///< mm, of the plane's origin
  double y = 0.0;

  Drawing::Point operator()(Kernel::Vec2 p) const { return {x + scale * p.x, y - scale * p.y}; }
  Drawing::Line operator()(const PlaneLine& line) const {
    Drawing::Line placed;
    placed.reserve(line.size());
    for (const Kernel::Vec2& p : line) placed.push_back((*this)(p));
    return placed;
  }
};

/// \throws std::invalid_argument for options out of range
void checkDrawing(const DrawingOptions& options);
/// How to look around for a drawing: the edges of the map name those of the scene.
Visibility::LookOptions drawnLook(const DrawingOptions& options, Visibility::Field field);
/// Around lines along parallel lines of sight; upside down without any.
PlaneBox boxOf(const std::vector<DrawnLine>& lines);

/// Everything that the parts are made from.
struct DrawnScene {
  const DrawingOptions& options;
  const DrawingColors& colors;
  const FlatMap& map;
  const RegionPlanes& planes;
  const DrawingPlane& plane;
  Paper paper;
};

/// What cells are filled with and called.
class CellLooks {
 public:
  explicit CellLooks(const DrawnScene& scene);
  Drawing::Color fill(const Visibility::Label& label) const;
  /// From 0 as the class is listed; -1 for none. Brushes are classes where a scene has none.
  int classOf(const Visibility::Label& label) const;
  std::string className(int number) const;
  Drawing::Color classColor(int number) const;
  std::string objectName(int object) const;

 private:
  Drawing::Color shaded(const Visibility::Label& label) const;

  const DrawnScene& scene;
  bool hasClasses;
  std::map<int, Drawing::Color> brushes;
};

/// A cell on the page.
struct DrawnCell {
  std::size_t number = 0;        ///< in the map
  std::vector<PlaneLine> lines;  ///< of the plane
};

std::vector<DrawnCell> drawnCells(const FlatMap& map, const DrawingPlane& plane);

/// The layer of fills, and under it what closes seams along edges without a line.
void addFills(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnCell>& cells,
              const std::vector<DrawnLine>& lines, Drawing& drawing);
/// A layer for each kind of lines.
void addLines(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnLine>& lines,
              Drawing& drawing);
/// Which chords of the lines and fills are arcs of ellipses.
void addArcs(const DrawnScene& scene, const std::vector<DrawnLine>& lines, Drawing& drawing);
void addLabels(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnCell>& cells,
               Drawing& drawing);
/// Sky, rings and marks of fisheyes; under everything else but for the marks.
void addSky(const DrawnScene& scene, Drawing& drawing);
void addMarks(const DrawnScene& scene, Drawing& drawing);
/// Squares or dots for values, and the scale of their colours, which stands at the right.
void addValues(const DrawnScene& scene, Drawing& drawing);
void addColorScale(const DrawnScene& scene, double top, Drawing& drawing);
double colorScaleHeight(const DrawingOptions& options);
/// A colour of the scale; 0 is its beginning, 1 its end.
Drawing::Color scaleColor(double part);
/// The height that scale bar and legend need under the picture; mm.
double footHeight(const DrawingOptions& options, std::size_t legendRows);
void addFoot(const DrawnScene& scene, const CellLooks& looks, const std::vector<int>& classes,
             double top, Drawing& drawing);

constexpr Drawing::Color Black{0, 0, 0, 1.0};
constexpr Drawing::Color Grey{110, 110, 110, 1.0};
constexpr double Dashes[] = {1.6, 0.9};  ///< of hidden lines, mm on and off

/// Of texts that stand on fills and lines: part of their height.
constexpr double HaloPart = 0.16;

/// The width of a text, about.
inline double textWidth(const std::string& text, double height) {
  std::size_t letters = 0;
  for (const char c : text) letters += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U ? 1 : 0;
  return 0.58 * height * static_cast<double>(letters);
}

}  // namespace Lumivane::Pictures
