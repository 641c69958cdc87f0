#pragma once

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/measure/export.h>

#include <string>
#include <vector>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Measure {

/// How much of the hemisphere in front of the eye something takes.
struct LUMIVANE_MEASURE_EXPORT Share {
  double area = 0.0;        ///< in the picture: the whole disc is pi, the whole square is 4
  double viewFactor = 0.0;  ///< share of the hemisphere weighted by the cosine to forward, 0 to 1
  double solidAngle = 0.0;  ///< steradian, the whole hemisphere is 2 pi

  double hemisphereShare() const;  ///< The solid angle by that of the hemisphere, 0 to 1.
};

/// What is visible of one polygon of the shot.
struct RegionShare {
  int regionNumber = 0;        ///< from 1, in the shot's drawing order
  int objectNumber = 0;        ///< from 1 in the shot's objects
  int faceNumber = 0;          ///< from 1 in the scene object's faces
  int sourceRegionNumber = 0;  ///< from 1 in the scene object's regions
  Share share;                 ///< how much of it is visible
};

/// What is visible of one face: the sum of its regions. Faces wholly hidden are not in a shot.
struct FaceShare {
  int objectNumber = 0;  ///< from 1 in the shot's objects
  int faceNumber = 0;    ///< from 1 in the scene object's faces
  Share share;           ///< how much of it is visible
};

/// What is visible of one object: the sum of its regions, zero for an object without any.
struct ObjectShare {
  int objectNumber = 0;  ///< from 1 in the shot's objects
  std::string id;        ///< as the scene gave it; need not be unique
  Share share;           ///< how much of it is visible
};

/// How much of the picture every object, face and region of a shot takes after all that is drawn
/// later has covered it, and how much stays open.
///
/// In the round picture the view factor is the visible area divided by pi: the picture is the
/// orthographic one of the hemisphere, for which this holds exactly (W. Nusselt, Graphische
/// Bestimmung des Winkelverhaeltnisses bei der Waermestrahlung, 1928). It is the view factor from
/// a small plane element at the eye, facing forward, to what is measured. In the square picture
/// view factor and solid angle come from the inverse of its mapping, azimuth and elevation.
///
/// Areas are those of the polygons as they are drawn, with straight edges. Solid angles, and the
/// view factors of the square picture, take each edge as the arc of a great circle, which is what a
/// straight edge in space is to the eye. Hence the outline's pieces may be long for the solid
/// angle, while the error of the area falls with the square of their length. A region's outline is
/// filled where it winds around a point at all (the nonzero rule).
///
/// Points outside the picture, as rounding makes them, count as on its rim. The open share is all
/// of the disc or square that no region covers; with it all shares add up to 1.
///
/// The picture is divided into tiles (J. E. Warnock, 1969) until few edges are left in one, what is
/// hidden under a region that covers a whole tile is dropped, and each last tile is swept by slabs
/// between the heights at which its edges end or cross.
class LUMIVANE_MEASURE_EXPORT VisibleShares {
 public:
  /// Measures a shot that knows its view.
  /// \throws std::invalid_argument if it has no view or the view no camera of a known kind
  /// \throws std::out_of_range for a point number that is not in the shot
  explicit VisibleShares(const Shot::Shot2d& shot);

  /// Measures any shot, one read from a file included, whose lists may be null.
  /// \throws std::out_of_range for a point number that is not in the shot
  VisibleShares(const Shot::Shot2d& shot, Algorithm::ProjectionType projection);

  /// The projection that the shares were taken in.
  Algorithm::ProjectionType projection() const { return theProjection; }
  const std::vector<ObjectShare>& objects() const { return theObjects; }  ///< In the shot's order.
  const std::vector<FaceShare>& faces() const { return theFaces; }  ///< By object, then by face.
  const std::vector<RegionShare>& regions() const { return theRegions; }  ///< In drawing order.
  const Share& open() const { return theOpen; }  ///< What no region covers: the sky.
  Share whole() const;                           ///< The empty picture.

 private:
  void measure(const Shot::Shot2d& shot);
  void sumUp(const Shot::Shot2d& shot);

  Algorithm::ProjectionType theProjection;
  std::vector<ObjectShare> theObjects;
  std::vector<FaceShare> theFaces;
  std::vector<RegionShare> theRegions;
  Share theOpen;
};

}  // namespace Lumivane::Measure
