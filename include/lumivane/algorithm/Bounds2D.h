#pragma once

#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Algorithm {

/// An upright rectangle of the picture, in plane coordinates.
///
/// The default bound is the state of an empty union: both minima are the largest finite double,
/// both maxima its negative, so that the first point or bound taken in replaces all four.
class LUMIVANE_EXPORT Bounds2D {
 public:
  /// The default bound.
  Bounds2D();
  /// These four, unchecked.
  Bounds2D(double xMinValue, double xMaxValue, double yMinValue, double yMaxValue)
      : xMin(xMinValue), xMax(xMaxValue), yMin(yMinValue), yMax(yMaxValue) {}
  Bounds2D(const Bounds2D& other) = default;             ///< Copies all four.
  Bounds2D& operator=(const Bounds2D& other) = default;  ///< Copies all four.
  /// The union of `bounds`; the default bound if there are none. A value that is not a number is
  /// never taken in.
  explicit Bounds2D(const std::vector<Bounds2D>& bounds);

  double getXMin() const { return xMin; }       ///< Smallest x.
  void setXMin(double value) { xMin = value; }  ///< Unchecked.
  double getXMax() const { return xMax; }       ///< Largest x.
  void setXMax(double value) { xMax = value; }  ///< Unchecked.
  double getYMin() const { return yMin; }       ///< Smallest y.
  void setYMin(double value) { yMin = value; }  ///< Unchecked.
  double getYMax() const { return yMax; }       ///< Largest y.
  void setYMax(double value) { yMax = value; }  ///< Unchecked.

  /// The bounds of a list of points.
  ///
  /// \param points  each of at least 2 coordinates; further ones are ignored
  /// \return a new object, which the caller owns; the default bound for an empty list
  /// \throws std::out_of_range "invalid vector subscript" if a point has fewer than 2 coordinates
  static Bounds2D* getBounds(std::vector<std::vector<double>> points);

  /// Whether two bounds share a point. There is no tolerance.
  ///
  /// (1) Swapping `a` and `b` keeps the result. (2) Bounds that merely touch, be it in one corner,
  /// share a point. (3) A default bound meets no finite one.
  static bool isBoundsIntersected(const Bounds2D& a, const Bounds2D& b);

  /// Whether all four values are exactly those of the default bound.
  static bool isDefaultBounds(const Bounds2D& bounds);

 private:
  double xMin;
  double xMax;
  double yMin;
  double yMax;
};

}  // namespace Lumivane::Algorithm
