#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Algorithm {

/// The numbers that a caller hands to shot creation beside the view. They reach no file: the JSON
/// form is the empty object of the base, and reading changes nothing.
class LUMIVANE_EXPORT ShotParameters : public Base::BaseLibClass {
 public:
  /// Counter 0, no property and no scale (-1), D1 0.01 and D2 1.
  ShotParameters();

  /// A counter for the caller; shot creation neither reads nor changes it.
  int getHandledObjectsCounter() const { return handledObjectsCounter; }
  /// Adds 1.
  void increaseHandledObjectsCounter();
  /// Sets 0.
  void resetHandledObjectsCounter() { handledObjectsCounter = 0; }

  /// The own number of the property that the shot is coloured by; -1 for none.
  int getPropertyNum() const { return propertyNum; }
  /// The property's own number, or -1.
  void setPropertyNum(int value) { propertyNum = value; }

  /// The number, from 1, of the scale in the scene's list; -1 for none.
  int getScaleNum() const { return scaleNum; }
  /// The scale's number, or -1.
  void setScaleNum(int value) { scaleNum = value; }

  /// Distance limit of the camera shift, in scene units: an eye closer than this to a polygon's
  /// plane is shifted by five times this distance.
  double getD1() const { return D1; }
  /// Scene units, not checked.
  void setD1(double value) { D1 = value; }

  /// Angle limit of the camera shift, in degrees.
  double getD2() const { return D2; }
  /// Degrees, not checked.
  void setD2(double value) { D2 = value; }

 private:
  int handledObjectsCounter = 0;
  int propertyNum = -1;
  int scaleNum = -1;
  double D1 = 0.01;
  double D2 = 1.0;
};

}  // namespace Lumivane::Algorithm
