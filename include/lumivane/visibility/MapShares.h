#pragma once

#include <lumivane/visibility/VisibleMap.h>
#include <lumivane/visibility/export.h>

#include <vector>

namespace Lumivane::Visibility {

/// How much of the view something takes, and how far away what is seen of it lies.
struct LUMIVANE_VISIBILITY_EXPORT ViewShare {
  double solidAngle = 0.0;  ///< steradian
  double viewFactor =
      0.0;  ///< from a small plane element at the eye, facing forward; 0 for a sphere
  double minDistance = 0.0;  ///< least distance of what is seen; 0 if nothing is
  double maxDistance = 0.0;  ///< greatest distance of what is seen; 0 if nothing is

  double area() const;             ///< On the orthographic fisheye's disc, whose whole is pi.
  double hemisphereShare() const;  ///< The solid angle by that of the hemisphere.
};

/// The sums of a map by object, face, region and class. A plain value.
class LUMIVANE_VISIBILITY_EXPORT MapShares {
 public:
  /// A region, or a face with region 0, or an object with face and region 0.
  struct Row {
    Label label;      ///< numbers that do not apply are 0
    ViewShare share;  ///< what is seen of it
    /// Position in `VisibleMap::Names::classNames`; -1 for none, and for faces and objects whose
    /// regions, seen or not, have more than one class.
    int classNumber = -1;
  };
  /// All that belongs to one class.
  struct ClassRow {
    int classNumber = -1;  ///< position in `VisibleMap::Names::classNames`; -1 for regions of none
    ViewShare share;       ///< what is seen of it
  };

  /// Which objects have a row.
  enum class Objects {
    All,  ///< of the scene
    Seen  ///< those of which the map has a cell: where a scene has many, this takes far less
  };

  /// Sums up a map, with a row for all objects of the scene.
  explicit MapShares(const VisibleMap& map);
  /// Sums up a map.
  MapShares(const VisibleMap& map, Objects which);

  /// All of the scene or seen ones, in its order.
  const std::vector<Row>& objects() const { return theObjects; }
  /// Seen ones, by object and face; face -1 stands for the object's regions of no face.
  const std::vector<Row>& faces() const { return theFaces; }
  const std::vector<Row>& regions() const {
    return theRegions;
  }  ///< Seen ones, in the scene's order.
  const std::vector<ClassRow>& classes() const { return theClasses; }  ///< All, those of none last.
  const ViewShare& sky() const { return theSky; }                      ///< Where no region is seen.
  const ViewShare& whole() const {
    return theWhole;
  }  ///< All of the field; the distances are those of all that is seen.
  /// For each of `objects` the part of it that is seen of what it would take if nothing stood in
  /// front of it, 0 to 1; 0 for one that would take nothing. Empty unless the map was asked for it.
  const std::vector<double>& visibleFractions() const { return theFractions; }

 private:
  std::vector<Row> theObjects;
  std::vector<Row> theFaces;
  std::vector<Row> theRegions;
  std::vector<ClassRow> theClasses;
  std::vector<double> theFractions;
  ViewShare theSky;
  ViewShare theWhole;
};

}  // namespace Lumivane::Visibility
