#pragma once

#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Utils {

/// The vector arithmetic of the library on plain containers: points and vectors of 2 or 3 elements
/// and polygons, which are lists of points, closed implicitly.
///
/// A wrong size does not stop the work: where an entry names a message, it goes to the console log,
/// and the operation goes on. An element that is read and missing throws std::out_of_range
/// "invalid vector subscript"; surplus elements are ignored, unless an entry says otherwise.
class LUMIVANE_EXPORT LinearGeometryUtils {
 public:
  /// The vector a x b.
  ///
  /// \throws std::out_of_range if a or b has fewer than 3 elements
  static std::vector<double> getCrossProduct(std::vector<double> a, std::vector<double> b);

  /// The sum of the products of a's elements with b's, over the size of a; 0.0 for empty vectors.
  /// Different sizes give the message "vectors in arguments have different sizes\n".
  ///
  /// \throws std::out_of_range if b is shorter than a
  static double getDotProduct(std::vector<double> a, std::vector<double> b);

  /// The vector of length 1 with the direction of v. If the length of v is exactly 0, v unchanged,
  /// with the message "Zero-length vector cannot be normalized\n".
  ///
  /// \throws std::out_of_range if v has fewer than 3 elements
  static std::vector<double> getNormalizedVector3D(std::vector<double> v);

  /// The length of a vector of 3.
  ///
  /// \throws std::out_of_range if v has fewer than 3 elements
  static double getVectorLenght3D(std::vector<double> v);

  /// The length of a vector of 2.
  ///
  /// \throws std::out_of_range if v has fewer than 2 elements
  static double getVectorLenght2D(std::vector<double> v);

  /// The vector `to` - `from`, of 3 elements. Another size gives the message "point in arguments
  /// has a size not equal to 3\n".
  ///
  /// \throws std::out_of_range if either has fewer than 3 elements
  static std::vector<double> getVector3D(std::vector<double> from, std::vector<double> to);

  /// The vector `to` - `from`, of 2 elements. Another size gives the message "point in arguments
  /// has a size not equal to 2\n".
  ///
  /// \throws std::out_of_range if either has fewer than 2 elements
  static std::vector<double> getVector2D(std::vector<double> from, std::vector<double> to);

  /// The distance of two points that both have 2 or both have 3 elements. Other sizes give -1.0,
  /// with the message "point in arguments has a size not equal to 2 or 3\n".
  static double getDistance(std::vector<double> a, std::vector<double> b);

  /// The unit normal at the first corner of a polygon, its points 0, 1 and 2; further points do not
  /// count. The zero vector for fewer than 3 points, and, with the message of
  /// getNormalizedVector3D, for three points on a line.
  ///
  /// \throws std::out_of_range if one of the three points has fewer than 3 elements
  static std::vector<double> getPolygonNormal3D(std::vector<std::vector<double>> polygon);

  /// The same with the three points in the opposite order: the opposite direction.
  ///
  /// \throws std::out_of_range if one of the three points has fewer than 3 elements
  static std::vector<double> getPolygonNormalReversed3D(std::vector<std::vector<double>> polygon);

  /// Where a line meets a plane. For a line parallel to the plane the result holds infinities or
  /// not-a-number values. A size other than 3 gives the message "point or vector in arguments has a
  /// size not equal to 3\n".
  ///
  /// \param normal         of the plane, any length but 0
  /// \param planePoint     a point of the plane
  /// \param linePoint      a point of the line
  /// \param lineDirection  any length but 0
  /// \return a point of 3
  /// \throws std::out_of_range if any of them has fewer than 3 elements
  static std::vector<double> intersectLineAndPlane(std::vector<double> normal,
                                                   std::vector<double> planePoint,
                                                   std::vector<double> linePoint,
                                                   std::vector<double> lineDirection);

  /// The coordinates of a point in a local frame, along `first`, along the unit vector of
  /// `second` x `first`, and along `second`, each divided by the determinant of these three. For
  /// orthonormal directions the determinant is 1.
  ///
  /// \param point   3 elements
  /// \param first   a direction of 3 elements
  /// \param second  a direction of 3 elements, not parallel to `first`
  /// \return a point of 3; empty, with the messages of MatrixUtils, if the determinant is exactly
  ///         0.0 or a size is not 3
  /// \throws std::out_of_range if a direction has fewer than 3 elements
  static std::vector<double> getPointTransformedBack3D(std::vector<double> point,
                                                       std::vector<double> first,
                                                       std::vector<double> second);

  /// getPointTransformedBack3D for each point of a polygon. The frame is made once, so that its
  /// messages come once, also for a polygon without points.
  ///
  /// \throws std::out_of_range if a direction has fewer than 3 elements
  static std::vector<std::vector<double>> getPolygonTransformedBack3D(
      std::vector<std::vector<double>> polygon, std::vector<double> first,
      std::vector<double> second);

  /// Angle between two directions.
  ///
  /// \param a, b    vectors of 3, any length
  /// \param digits  decimals kept, as in roundD
  /// \return degrees, 0 to 180; 0 if either vector has length 0
  /// \throws std::out_of_range if a or b has fewer than 3 elements
  static double getAngleBetweenVectorsInDegrees(std::vector<double> a, std::vector<double> b,
                                                int digits);

  /// A value rounded to `digits` decimals, halves away from zero. 0 or fewer digits leave it
  /// unchanged, and 6 is the most: more count as 6.
  static double roundD(double value, int digits);

  /// An angle in radians, in degrees.
  static double toDegrees(double radians);

  /// An angle in degrees, in radians.
  static double toRadians(double degrees);
};

}  // namespace Lumivane::Utils
