#pragma once

#include <lumivane/export.h>

namespace Lumivane::Scene {
class Object;
}

namespace Lumivane::Session {

/// Gives a face a value of a property, by which shots can colour it. A plain face, as files and
/// `Geometry::Face::makeFromLoops` make it, is replaced by a `Geometry::VFace` with its regions and
/// normal, and freed: pointers to it do not hold any more.
///
/// \param faceNumber  from 1 in the object's faces
/// \param property    the property's own number
/// \throws std::out_of_range if the object has no such face, or the property's number is negative
LUMIVANE_EXPORT void setFaceValue(Scene::Object& object, int faceNumber, int property,
                                  double value);

}  // namespace Lumivane::Session
