#pragma once

#include <array>
#include <optional>

namespace Lumivane::Importers {

/// From which side an imported surface is seen. A surface's outside is where its corners run
/// counter-clockwise, as in every format read here.
enum class ImportSides {
  Outside,  ///< seen from its outside
  Inside,   ///< seen from its inside, as a room is
  Both,     ///< seen from both sides: twice as many regions
};

/// How a file becomes a scene. Every member has the value that suits most files.
struct ImportOptions {
  ImportSides sides = ImportSides::Outside;  ///< from where surfaces are seen

  /// Factor of all lengths, above 0.
  double scale = 1.0;

  /// Whether y points up in the file; a scene's up is z, so (x, y, z) becomes (x, -z, y). A glTF
  /// file is turned without being asked, since its format says that y is up.
  bool yUp = false;

  /// Whether the buffers of a glTF file may lie outside its folder. A file from elsewhere could
  /// have any file of this machine read otherwise.
  bool allowOutside = false;

  /// Puts the middle of the model at x = 0 and y = 0 and its lowest point at z = 0. Without it
  /// only coordinates far from the origin are moved.
  bool center = false;

  /// From where the scene will be seen, in its own coordinates. The objects are then listed from
  /// far to near, which decides in a shot where faces overlap in a ring. Either way the pieces of
  /// the ground of a city model come first.
  std::optional<std::array<double, 3>> eye;

  /// Two neighbouring polygons of one object and one colour belong to one face if their planes
  /// differ by at most this many degrees and all corners keep to `flatDistance`. Below 0 nothing
  /// is put together.
  double flatAngleDegrees = 0.5;

  /// How far a corner may lie off the plane of its face, as a share of the diagonal of its object;
  /// and how far a polygon may bend for its triangles to be one face, as a share of its own size.
  double flatDistance = 1e-4;

  /// The edge between two neighbouring polygons of one object and one colour is not drawn if it
  /// bends by at most this many degrees. Below 0: `MeshCreaseDegrees` for meshes and buildings, and
  /// `TerrainCreaseDegrees` for the terrain of a city model.
  double creaseDegrees = -1.0;

  /// Bends that no eye sees.
  static constexpr double MeshCreaseDegrees = 1.0;

  /// Triangulated terrain is shown as one smooth surface unless it bends by more.
  static constexpr double TerrainCreaseDegrees = 30.0;

  /// An axis along which the model's middle lies further off than this, in scene units, and
  /// further than the model is long, is moved so that the middle is near 0. Scene files keep few
  /// digits, and a picture needs those below the metre.
  static constexpr double FarCoordinate = 10000.0;
};

}  // namespace Lumivane::Importers
