#pragma once

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/measure/export.h>

#include <string>
#include <vector>

namespace Lumivane::Session {
class TakenShot;
}
namespace Lumivane::Shot {
class Shot2d;
}
namespace Lumivane::Visibility {
class SceneIndex;
struct VisibleMap;
}  // namespace Lumivane::Visibility

namespace Lumivane::Measure {

/// How right a shot is about one object. Areas are those of the picture: the whole disc is pi, the
/// whole square 4.
struct ObjectAudit {
  int objectNumber = 0;  ///< from 1 in the shot's objects
  std::string id;        ///< as the scene gave it; need not be unique
  double shown = 0.0;    ///< where the picture shows it
  double seen = 0.0;     ///< where the map has it
  /// Where the picture shows a region of it, and the map has another region, perhaps of the same
  /// object, or the sky.
  double shownWrongly = 0.0;
  /// Where the map has a region of it, and the picture shows another region, perhaps of the same
  /// object, or none.
  double missing = 0.0;
};

/// A region by the numbers that shot and map have in common.
struct AuditedRegion {
  int object = 0;  ///< from 1 in the shot's objects; 0 where there is no region, but the sky
  int region = 0;  ///< from 1 in the scene's object; 0 for the sky
};

/// A connected part of the picture in which it shows one region, and the map has another one.
struct WrongPart {
  /// A point of the picture's plane, as points of shots are: from -1 to 1, y upwards.
  struct Point {
    double x = 0.0;  ///< to the right
    double y = 0.0;  ///< upwards
  };

  AuditedRegion shown;  ///< what the picture shows; object 0 where it shows nothing
  AuditedRegion seen;   ///< what the map has; object 0 where it has the sky
  double area = 0.0;    ///< of the picture, in the units of `ShotAudit::wrong`
  /// The outer line counter-clockwise, then those around what is cut out of it, clockwise. Each is
  /// closed, and its first point is not repeated. A line may touch itself.
  std::vector<std::vector<Point>> outlines;
};

/// Whether an audit keeps where the picture is wrong, beside how much.
enum class WrongParts { NotKept, Kept };

/// How much of a shot's picture shows another region than the exact visibility map has there.
///
/// The arcs between the map's cells are carried into the picture, each cut into pieces that are off
/// it by at most a millionth of the picture's half width, and laid over what is painted last at
/// each point of the picture, as `VisibleShares` measures it: both arrangements are swept together,
/// and nothing is sampled. Beside a wrong order of faces, what counts as wrong is therefore
/// whatever the picture's chords leave of the arcs, and points that were merged.
///
/// Regions are compared by the numbers of object and region that shot and map have in common.
class LUMIVANE_MEASURE_EXPORT ShotAudit {
 public:
  /// Looks from where the shot was really taken, into the hemisphere in front of it, and compares.
  /// \param index  of the scene that the shot was taken of
  /// \param threads  how many of them look; 0 for all processors. Results do not depend on it.
  /// \throws std::invalid_argument if the eye or a direction is not one to look from
  ShotAudit(const Session::TakenShot& shot, const Visibility::SceneIndex& index, int threads = 1);
  /// The same, also with the wrong parts. \param parts  they take memory for each of their points
  ShotAudit(const Session::TakenShot& shot, const Visibility::SceneIndex& index, int threads,
            WrongParts parts);

  /// Compares with a map that was made from the shot's eye, of the hemisphere in front of it and
  /// with its direction upwards. The shot's lists may be null. \throws std::invalid_argument for a
  /// map of the whole sphere \throws std::out_of_range for a point number that is not in the shot
  ShotAudit(const Shot::Shot2d& shot, Algorithm::ProjectionType projection,
            const Visibility::VisibleMap& map);
  /// The same, also with the wrong parts.
  ShotAudit(const Shot::Shot2d& shot, Algorithm::ProjectionType projection,
            const Visibility::VisibleMap& map, WrongParts parts);

  /// The area where the picture or the map has a region.
  double covered() const { return theCovered; }
  /// The part of that area where both do not have the same region.
  double wrong() const { return theWrong; }
  /// The same divided by the covered area, 0 to 1; 0 if nothing is covered.
  double wrongShare() const;
  /// All objects of the shot and those that the map has besides, in their order.
  const std::vector<ObjectAudit>& objects() const { return theObjects; }

  /// Whether the wrong parts were asked for.
  bool hasWrongParts() const { return keepsParts; }
  /// Where the picture is wrong: the very pieces of the overlay, however narrow, which do not
  /// overlap, and whose areas add up to `wrong`. By the numbers of what is shown, then of what is
  /// seen; empty if they were not asked for.
  const std::vector<WrongPart>& wrongParts() const { return theParts; }

 private:
  void compare(const Shot::Shot2d& shot, Algorithm::ProjectionType projection,
               const Visibility::VisibleMap& map);
  ObjectAudit& object(int number);

  double theCovered = 0.0;
  double theWrong = 0.0;
  bool keepsParts = false;
  std::vector<ObjectAudit> theObjects;
  std::vector<WrongPart> theParts;
};

}  // namespace Lumivane::Measure
