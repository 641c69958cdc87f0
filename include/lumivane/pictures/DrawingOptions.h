#pragma once

#include <lumivane/pictures/Drawing.h>
#include <lumivane/pictures/export.h>
#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Pictures {

/// How what is seen becomes a plane picture. t is the angle from the middle of the picture.
enum class DrawingProjection {
  Orthographic,     ///< fisheye, a direction lies sin t from the centre; areas are view factors
  Equidistant,      ///< fisheye, t: angles from the middle can be measured
  Equisolid,        ///< fisheye, sin(t / 2): areas are solid angles
  Stereographic,    ///< fisheye, tan(t / 2): angles and small shapes are kept
  Equirectangular,  ///< azimuth to the right, elevation upwards, in front of the eye or all around
  Cylindrical,      ///< azimuth to the right, upright lines stay straight, all around
  Perspective,      ///< straight lines stay straight
  Parallel          ///< along parallel lines of sight: plans, elevations, axonometries
};

/// All with their names on the command line.
struct DrawingProjectionName {
  DrawingProjection projection;  ///< which
  const char* name;              ///< as users write it
};
LUMIVANE_PICTURES_EXPORT const std::vector<DrawingProjectionName>& drawingProjections();

/// What cells are filled with.
enum class DrawingFill {
  None,     ///< nothing: lines alone
  White,    ///< white
  Brush,    ///< the scene's colours
  Class,    ///< a colour for each class, or for each brush of a scene without classes
  Object,   ///< a colour for each object
  Shading,  ///< by the angle between the surface and the light
};

/// What the lines and fills of a drawing are grouped by.
enum class DrawingGroups {
  None,    ///< by nothing
  Class,   ///< by class, then by object
  Object,  ///< by object
  Face     ///< by object, then by face
};

/// What labels say.
enum class DrawingLabels {
  None,  ///< there are none
  Id,    ///< the ids of objects
  Class  ///< the class of each object's largest cell
};

/// What a drawing takes of a scene beside its polygons. A value; the scene may go.
class LUMIVANE_PICTURES_EXPORT DrawingColors {
 public:
  /// None: brushes are light grey.
  DrawingColors();
  /// Its brushes.
  explicit DrawingColors(const Scene::Scene3D& scene);
  ~DrawingColors();
  DrawingColors(const DrawingColors&);             ///< Shares all.
  DrawingColors& operator=(const DrawingColors&);  ///< Shares all.

  /// Of a region's brush, opaque.
  Drawing::Color brush(const Visibility::Label& label) const;
  /// The number of a region's brush, from 1; 0 for none.
  int brushNumber(const Visibility::Label& label) const;

 private:
  struct Data;
  std::shared_ptr<const Data> data;
};

/// Values at places of a scene, to be seen on a plan of it by their colours: those of viridis, from
/// dark blue to yellow, in which equal steps look equal.
struct DrawingValues {
  /// One of them.
  struct Value {
    Visibility::Vector place{0.0, 0.0, 0.0};  ///< in the scene
    double value = 0.0;                       ///< not NaN
  };
  std::vector<Value> values;  ///< later ones over earlier ones
  double side = 0.0;          ///< of level squares around the places, scene units; 0 for dots
  double dot = 1.2;           ///< width of dots, mm
  double low = 0.0;           ///< what has the first colour, and all below it
  double high = 1.0;          ///< what has the last colour, and all above it; greater than `low`
  std::string title;          ///< over the scale of colours
};

/// How a drawing is made. Lengths are mm if not said otherwise.
struct DrawingOptions {
  using Vector = Visibility::Vector;  ///< a point or a direction of the scene

  DrawingProjection projection = DrawingProjection::Perspective;  ///< how directions become points
  Vector eye{0.0, 0.0, 0.0};                                      ///< not of parallel projections
  Vector forward{1.0, 0.0, 0.0};      ///< of any length but zero; the direction of sight
  Vector up{0.0, 0.0, 1.0};           ///< as `LookOptions::up`, or `ParallelOptions::up`
  double fieldOfView = 60.0;          ///< of perspectives, across, degrees, above 0 and below 180;
                                      ///< of cylindrical pictures, from lower to upper border
  std::array<double, 2> shift{0, 0};  ///< of a perspective's window, in parts of its width and
                                      ///< height; to the right, upwards
  bool isWhole = false;               ///< equirectangular: all around
  double aspect = 1.5;                ///< of a perspective: width by height
  std::optional<double> scale;        ///< mm on paper for a unit of the scene (parallel)
  bool twoSided = false;              ///< polygons are seen from behind, too
  int threads = 0;                    ///< 0 for as many as processors
  const std::atomic<bool>* cancelled = nullptr;  ///< as `LookOptions::cancelled`

  std::optional<std::array<double, 2>> page;  ///< width and height; without it as the content
  double margin = 10.0;                       ///< around the content
  double contentWidth = 180.0;                ///< if there is neither a page nor a scale
  bool crop = false;  ///< whether the page ends at the drawn lines and fills

  /// Widths of lines by `LineKind`; 0 draws none.
  std::array<double, LineKindCount> widths{0.5, 0.35, 0.25, 0.0, 0.25, 0.25, 0.18};
  bool hidden = false;                    ///< whether hidden parts of edges are drawn, dashed
  double creaseAngle = 20.0;              ///< degrees
  DrawingFill fill = DrawingFill::White;  ///< what cells are filled with
  Vector light{-0.5, 0.3, 1.0};           ///< where light comes from, for shading
  DrawingGroups groups = DrawingGroups::Object;  ///< what the layers and groups stand for
  DrawingLabels labels = DrawingLabels::None;    ///< what is written into cells
  double textHeight = 2.5;                       ///< of labels
  bool strokes = false;    ///< only lines, in long paths in the order of a plotter
  double flatness = 0.02;  ///< that chords may be off curves
  /// Whether curves are arcs of ellipses and circles in the SVG, and finer chords elsewhere: of
  /// orthographic and stereographic fisheyes.
  bool exactArcs = false;

  std::optional<Drawing::Color> background;  ///< of the page
  std::optional<Drawing::Color> sky;         ///< where nothing is seen
  bool scaleBar = false;                     ///< of parallel projections
  bool north = false;                        ///< an arrow; of fisheyes, letters at the rim
  bool legend = false;                       ///< of classes
  std::optional<DrawingValues> values;       ///< of parallel projections, with their scale
  double rings = 0.0;                        ///< degrees between circles of a fisheye; 0: none
  std::string title;                         ///< for the document's data
};

/// Draws a scene.
/// \throws std::invalid_argument for options out of range; the text names the value and its range
/// \throws std::runtime_error if nothing is in the picture, or the page has no room in its margins
/// \throws Visibility::Cancelled
LUMIVANE_PICTURES_EXPORT Drawing drawScene(const Visibility::SceneIndex& index,
                                           const DrawingColors& colors,
                                           const DrawingOptions& options);

}  // namespace Lumivane::Pictures
