#pragma once

#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/pictures/export.h>
#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/PolygonScene.h>

#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Visibility {
struct VisibleMap;
}

namespace Lumivane::Pictures {

/// How the directions of a visibility map become a plane picture.
enum class MapProjection {
  /// The orthographic fisheye (Nusselt's projection) of the hemisphere in front: a direction at the
  /// angle t from forward lies sin t from the centre of a disc. Areas are view factors.
  Fisheye,
  /// Azimuth to the right and elevation upwards, both in degrees: a square for the hemisphere, a
  /// rectangle twice as wide as high for the sphere, cut behind the eye.
  Equirectangular,
  /// The equidistant fisheye of the hemisphere in front: a direction at the angle t from forward
  /// lies
  /// t from the centre, the right angle on the rim.
  EquidistantFisheye
};

/// All of them with the names that they have on the command line, the default one first.
struct MapProjectionName {
  MapProjection projection;  ///< which
  const char* name;          ///< as users write it
};
LUMIVANE_PICTURES_EXPORT const std::vector<MapProjectionName>& mapProjections();

/// Width by height of the picture of a field.
LUMIVANE_PICTURES_EXPORT double mapAspect(MapProjection projection, Visibility::Field field);

/// The colours of the scene's polygons in pictures of its maps. A value; the scene may go.
class LUMIVANE_PICTURES_EXPORT MapColors {
 public:
  /// A colour for each object that differs from those beside it, for scenes of any size. Lines are
  /// black.
  MapColors();
  /// Fills by the scene's brushes, lines by its pens. Opacities are left out, since nothing lies
  /// behind what is seen. A number that points at no brush or pen stands for opaque black.
  explicit MapColors(const Scene::Scene3D& scene);
  /// Fills by the classes of a map, each in the colour that its name has in all pictures; lines are
  /// black.
  static MapColors byClass(const Visibility::VisibleMap& map);

  /// The sky has a colour of its own.
  VectorPicture::Color fill(const Visibility::Label& label) const;
  /// Nothing for the sky and where the pen has no width.
  std::optional<VectorPicture::Pen> pen(const Visibility::Label& label) const;

 private:
  bool isByObject = true;
  std::vector<std::vector<VectorPicture::Color>> fills;  // by object and region
  std::vector<std::optional<VectorPicture::Pen>> pens;   // by object
};

/// How a map becomes a vector picture.
struct MapPictureOptions {
  MapProjection projection = MapProjection::Fisheye;  ///< how directions become places
  int width = 800;      ///< pixels, 1 to `VectorOptions::LargestSide`; the picture fits in
  int height = 800;     ///< likewise
  double extent = 1.0;  ///< what the whole is enlarged by around the map: 1 just fits
  bool lines = true;    ///< whether silhouettes, creases and crossings are drawn by the pens
  /// Whether cells of which nothing is in the picture are regions, too, without outlines.
  bool allCells = false;
  std::string title;  ///< for the document's data; may be empty
};

}  // namespace Lumivane::Pictures
