#pragma once

#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/pictures/export.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Pictures {

/// What a line of a drawing is.
enum class LineKind {
  Outline,     ///< the silhouette against the background
  Silhouette,  ///< between a near part and a far one
  Crease,      ///< where a surface bends by more than the crease angle, or ends on another one
  Inner,       ///< within a surface: docking edges, and bends up to the crease angle
  Crossing,    ///< where two regions run through each other
  Field,       ///< the border of the picture
  Hidden       ///< a part of an edge of the scene that something is in front of
};
constexpr std::size_t LineKindCount = 7;

/// The name of a kind in options and layers: outline, silhouette, crease, ...
LUMIVANE_PICTURES_EXPORT const char* lineKindName(LineKind kind);

/// A page of line work, fills and texts: what all writers of drawings replay. Lengths are mm, x to
/// the right and y down from the page's upper left corner. A plain value.
struct LUMIVANE_PICTURES_EXPORT Drawing {
  using Color = VectorPicture::Color;  ///< opacity is not used
  using Point = VectorPicture::Point;  ///< mm
  using Line = VectorPicture::Line;    ///< joined by straight pieces

  /// Lines of one look.
  struct Path {
    std::string id;              ///< unique in the drawing, or empty
    std::string title;           ///< what it is, for readers; or empty
    std::vector<Line> lines;     ///< as drawn, in this order
    bool closed = false;         ///< whether each line returns to its first point
    std::optional<Color> fill;   ///< even-odd over all lines; without it nothing is filled
    std::optional<Color> color;  ///< of the line; without it none is drawn
    double width = 0.0;          ///< of the line, mm
    bool roundEnds = true;       ///< whether its ends are round, or cut straight
    std::vector<double> dashes;  ///< mm on and off; empty for a whole line
  };
  /// A run of chords among the lines that stands for a piece of an ellipse, less than half of it.
  /// Lines have it in either direction.
  struct Arc {
    std::size_t chords = 0;      ///< how many, from 2
    Point first;                 ///< where it begins; lines may have a point beside it, by rounding
    Point second;                ///< the end of the first chord, as lines have it
    Point beforeLast;            ///< the beginning of the last one, likewise
    Point last;                  ///< where it ends, as `first`
    double radius = 0.0;         ///< the greater one of the ellipse, mm
    double smallerRadius = 0.0;  ///< mm
    double turn = 0.0;           ///< of the axis of the greater one, degrees clockwise
    bool isClockwise = false;    ///< on the page, from the first point to the last
  };
  /// One line of text.
  struct Text {
    Point place;                ///< where its baseline's middle, start or end lies
    double height = 2.5;        ///< of the font, mm
    double anchor = 0.5;        ///< 0: place is its start, 0.5: its middle, 1: its end
    std::string text;           ///< UTF-8
    Color color{0, 0, 0, 1.0};  ///< of the letters
    /// Width of a white rim around the letters, under them, by which they can be read on any
    /// ground; mm; not in DXF.
    double halo = 0.0;
  };
  /// A layer, or a group in one.
  struct Group {
    std::string id;             ///< unique in the drawing
    std::string name;           ///< for readers
    bool isLayer = false;       ///< of editors of drawings
    std::vector<Path> paths;    ///< first things first
    std::vector<Text> texts;    ///< over the paths
    std::vector<Group> groups;  ///< over both
  };
  /// What the drawing holds, for statistics.
  struct Counts {
    std::size_t cells = 0;                           ///< of the map
    std::array<std::size_t, LineKindCount> lines{};  ///< of each kind, before they were joined
    std::size_t paths = 0;                           ///< that are drawn in one go
    double drawn = 0.0;                              ///< length of all lines, mm
    double travel = 0.0;                             ///< of the pen between them, mm
  };

  double width = 0.0;               ///< of the page, mm
  double height = 0.0;              ///< likewise
  std::string title;                ///< for the document's data; may be empty
  std::optional<Color> background;  ///< under everything; nothing without it
  std::array<double, 4> frame{};    ///< what is drawn keeps within: left, top, right, bottom; mm
  std::vector<Group> layers;        ///< first things first
  std::vector<Arc> arcs;            ///< that the SVG has in place of their chords
  Counts counts;                    ///< of its content
};

/// Writes drawings. Equal drawings give equal bytes: no file holds a date.
class LUMIVANE_PICTURES_EXPORT DrawingWriter {
 public:
  /// Groups and layers with ids, in mm; a layer is one for Inkscape, too.
  static std::string svg(const Drawing& drawing);
  /// One page. \throws std::runtime_error if there is not enough memory
  static std::string pdf(const Drawing& drawing);
  /// \param dotsPerInch  above 0; white under everything if there is no background
  /// \throws std::invalid_argument if a side would have less than 1 or more than
  ///         `VectorOptions::LargestSide` pixels
  static std::string png(const Drawing& drawing, double dotsPerInch);
  /// AutoCAD's drawing exchange format, release 12: lines as polylines on a layer for each layer of
  /// the drawing, fills as their closed outlines, texts; in mm, y upwards.
  static std::string dxf(const Drawing& drawing);
};

}  // namespace Lumivane::Pictures
