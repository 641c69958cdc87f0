#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Geometry {

/// A reference to one face of one object, by their numbers from 1; -1 is not set. A true value.
class LUMIVANE_EXPORT Overlay : public Base::BaseLibClass {
 public:
  int getObjectNumber() const { return objectNumber; }         ///< The object's number.
  void setObjectNumber(int number) { objectNumber = number; }  ///< Unchecked.
  int getFaceNumber() const { return faceNumber; }             ///< The face's number in it.
  void setFaceNumber(int number) { faceNumber = number; }      ///< Unchecked.

  /// An object with those of "Object" and "Face" that are set.
  Jzon::Node serialize() override;
  /// Reads the same keys where they hold numbers.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  int objectNumber = -1;
  int faceNumber = -1;
};

}  // namespace Lumivane::Geometry
