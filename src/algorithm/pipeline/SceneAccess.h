#pragma once

#include "base/Indices.h"
#include "kernel/Vec.h"
#include "utils/Shapes.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Vector3d.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// What shot creation reads from the model, as plain values. Lists that are null count as empty.
namespace Lumivane::Algorithm {

/// The position of a number counted from 1; -1 for a number below 1, which every list refuses.
inline int positionOfNumber(int number) { return number < 1 ? -1 : number - 1; }

/// A list of numbers.
inline const std::vector<int>& numbersOf(const std::vector<int>* numbers) {
  static const std::vector<int> none;
  return numbers == nullptr ? none : *numbers;
}

inline bool holdsNumber(const std::vector<int>* numbers, std::int64_t number) {
  const std::vector<int>& list = numbersOf(numbers);
  return std::find(list.begin(), list.end(), number) != list.end();
}

/// What a pointer of the model leads to.
///
/// \throws std::out_of_range "invalid vector subscript" if it is null
template <class T>
T& existing(T* pointer) {
  if (pointer == nullptr) Utils::throwInvalidSubscript();
  return *pointer;
}

/// The element of a number.
///
/// \throws std::out_of_range for a number that is not in the list, and for a null element
template <class List, class Element>
Element& elementOfNumber(List* list, Element* (List::*elementAt)(int), int number) {
  const int position = positionOfNumber(number);
  if (list == nullptr) Base::throwBadIndex(position);
  return existing((list->*elementAt)(position));
}

/// The scene point of a number.
///
/// \throws std::out_of_range as elementOfNumber
inline Kernel::Vec3 scenePoint(Geometry::Points3d* points, int number) {
  const Geometry::Point3d& point = elementOfNumber(points, &Geometry::Points3d::getPoint, number);
  return {point.getX(), point.getY(), point.getZ()};
}

/// The outlines of polygons on the plane, without their edge flags.
inline std::vector<std::vector<Kernel::Vec2>> planeOutlines(
    const std::vector<std::vector<Geometry::EdgeStartPoint2d*>>& polygons) {
  std::vector<std::vector<Kernel::Vec2>> result(polygons.size());
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    result[i].reserve(polygons[i].size());
    for (const Geometry::EdgeStartPoint2d* point : polygons[i])
      result[i].push_back({point->getX(), point->getY()});
  }
  return result;
}

/// Whether a view has an eye and both directions.
inline bool hasOrientation(Base::View& view) {
  Base::ViewOrientation3D* orientation = view.getOrientation();
  return orientation != nullptr && orientation->getEyePosition() != nullptr &&
         orientation->getForwardDirection() != nullptr && orientation->getUpDirection() != nullptr;
}

inline Kernel::Vec3 eyeOf(Base::View& view) {
  const Geometry::Point3d& eye = *view.getOrientation()->getEyePosition();
  return {eye.getX(), eye.getY(), eye.getZ()};
}

inline Kernel::Vec3 forwardOf(Base::View& view) {
  const Geometry::Vector3d& forward = *view.getOrientation()->getForwardDirection();
  return {forward.getX(), forward.getY(), forward.getZ()};
}

inline Kernel::Vec3 upOf(Base::View& view) {
  const Geometry::Vector3d& up = *view.getOrientation()->getUpDirection();
  return {up.getX(), up.getY(), up.getZ()};
}

}  // namespace Lumivane::Algorithm
