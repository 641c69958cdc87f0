#pragma once

#include <lumivane/pictures/VectorOptions.h>
#include <lumivane/pictures/export.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Shot {
class Shot2d;
}
namespace Lumivane::Visibility {
struct VisibleMap;
}

namespace Lumivane::Pictures {

class MapColors;
struct MapPictureOptions;

/// A shot or a visibility map as a list of what to draw, first things first: the one description
/// that all writers of vector files replay. Coordinates are pixels, x to the right and y down. It
/// refers to nothing of the shot or map and stays valid without it.
class LUMIVANE_PICTURES_EXPORT VectorPicture {
 public:
  /// A point of the picture.
  struct Point {
    double x = 0.0;  ///< pixels to the right
    double y = 0.0;  ///< pixels down
  };
  /// Points joined by straight pieces.
  using Line = std::vector<Point>;

  /// What a fill or a line is painted with.
  struct Color {
    int red = 0;           ///< 0 to 255
    int green = 0;         ///< 0 to 255
    int blue = 0;          ///< 0 to 255
    double opacity = 1.0;  ///< 0 to 1
  };

  /// How lines are drawn.
  struct Pen {
    Color color;                   ///< its paint
    double width = 1.0;            ///< pixels, above 0; corners are round
    bool roundEnds = true;         ///< whether the ends are round too, or cut straight
    std::vector<double> dashes{};  ///< pixels on and off; empty for a whole line
  };

  /// Lines with one look. A fill covers what the lines wind around at least once (non-zero rule).
  struct Path {
    std::vector<Line> lines;    ///< in the order of drawing
    bool closed = false;        ///< whether each line returns to its first point
    std::optional<Color> fill;  ///< without it nothing is filled
    std::optional<Pen> pen;     ///< without it no line is drawn
  };

  /// One polygon of the shot, or one cell of the map.
  struct Region {
    int number = 0;  ///< in the order of drawing, from 1
    /// From 1; -1 or beyond the shot's objects: of no object; 0: the sky of a map.
    int objectNumber = -1;
    std::string objectId;        ///< bytes as the scene gave them; need not be unique
    int faceNumber = -1;         ///< from 1 in the scene's object
    int sourceRegionNumber = 0;  ///< from 1 in the scene's object
    Path interior;               ///< closed; without a fill in an outline picture
    /// Lines of the fill's colour along the docking edges, if a later surface docks to the region:
    /// they reach a little under it, so that no seam is left between the two. Drawn between the
    /// inside and the edges.
    Path spread;
    Path edges;  ///< without the docking edges; no lines if there is nothing to draw
  };

  /// Polygons that follow each other in the order of drawing: one polygon, or the pieces of a face
  /// that dock to each other.
  struct Surface {
    std::vector<Region> regions;  ///< in the order of drawing
    /// What pieces cover together, once per colour and each without edges between its pieces. Laid
    /// under the insides it closes the seams between them. Where there are several, each reaches
    /// under those that follow. Empty for a polygon alone.
    std::vector<Path> merged;
    /// Below 1 the merged paths and the insides, which are all opaque, make one layer of this
    /// opacity, and the edges lie over it. At 1 each region's edges follow its inside.
    double opacity = 1.0;
  };

  /// What the picture of a map knows of the map.
  struct MapPart {
    std::string projection;  ///< its name on the command line
    /// Which edges of the map each of `underlay()` draws: positions in `VisibleMap::edges`.
    std::vector<std::vector<std::size_t>> underlayEdges;
    std::vector<std::vector<std::size_t>> lineEdges;  ///< likewise of `lines()`
    /// How a page shows the map at first, if not as the picture does.
    struct Opening {
      std::string projection;     ///< as `drawingProjections` has it, or equirectangular-half
      double fieldOfView = 90.0;  ///< degrees, of a perspective or cylindrical picture
      double aspect = 1.5;        ///< of a perspective: width by height
      std::array<double, 2> shift{0, 0};  ///< as `DrawingOptions::shift`
    };
    std::optional<Opening> opening;  ///< nothing: as the picture does
  };

  /// All that a picture is.
  struct Parts {
    int width = 1;                    ///< pixels
    int height = 1;                   ///< pixels
    std::string title;                ///< as `title()`; may be empty
    std::optional<Color> background;  ///< as `background()`
    std::string content = "shot";     ///< as `content()`
    std::vector<Path> axes;           ///< as `axes()`
    std::vector<Path> underlay;       ///< as `underlay()`
    std::vector<Surface> surfaces;    ///< as `surfaces()`
    std::vector<Path> lines;          ///< as `lines()`
    std::optional<MapPart> mapPart;   ///< as `mapPart()`
  };
  /// A picture of parts that are there. \throws std::invalid_argument for sides out of range
  explicit VectorPicture(Parts parts);

  /// Describes a shot. Points, brushes and pens that no region names are not looked at. A shot
  /// without points or regions is an empty picture.
  ///
  /// The fill of a region is its override colour, or else its brush; a missing list of brushes or
  /// pens stands for opaque black and width 1. Half transparent halves the fill's opacity.
  /// Components of a colour out of 0 to 255 are brought into it. A pen of width 0 draws nothing.
  ///
  /// \throws std::invalid_argument for options out of range
  /// \throws std::runtime_error for a number in the shot that points at nothing, a coordinate that
  ///         is not finite or more than 1000 units away, a pen width that is negative or not
  ///         finite; the text names the region and its object
  explicit VectorPicture(Shot::Shot2d& shot, const VectorOptions& options = {});

  /// Draws a visibility map: every cell is one region, in the map's order, none of which lies under
  /// another. Arcs become chords that are off them by at most 0.1 pixel; cells on both sides of an
  /// edge have the same points there, so that neither gap nor overlap is left between them.
  ///
  /// \throws std::invalid_argument for options out of range
  VectorPicture(const Visibility::VisibleMap& map, const MapColors& colors,
                const MapPictureOptions& options);

  int width() const { return all.width; }                 ///< Pixels.
  int height() const { return all.height; }               ///< Pixels.
  const std::string& title() const { return all.title; }  ///< May be empty.
  /// What lies under everything, if anything does.
  const std::optional<Color>& background() const { return all.background; }
  /// What is drawn, in a word that names its group in a document: "shot" or "map".
  const std::string& content() const { return all.content; }
  /// Lies under the surfaces, as in the library's PNG.
  const std::vector<Path>& axes() const { return all.axes; }
  /// Lines under the surfaces of a map, along edges without a line of their own, in the colour of
  /// one of the cells: where a renderer smooths the edges of both cells, no background shines
  /// through between them. The cells cover them wholly.
  const std::vector<Path>& underlay() const { return all.underlay; }
  /// What is drawn, in its order.
  const std::vector<Surface>& surfaces() const { return all.surfaces; }
  /// Lies over the surfaces of a map: its silhouettes, creases and crossings.
  const std::vector<Path>& lines() const { return all.lines; }
  /// Of a map; nothing of a shot.
  const std::optional<MapPart>& mapPart() const { return all.mapPart; }

 private:
  Parts all;
};

}  // namespace Lumivane::Pictures
