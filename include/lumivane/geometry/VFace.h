#pragma once

#include <lumivane/export.h>
#include <lumivane/geometry/Face.h>

#include <map>
#include <optional>

namespace Lumivane::Geometry {

/// A face that carries values of numbered properties, by which a shot can colour its regions.
///
/// Owns the map of values besides what a Face owns. Copies share all of it: of two copies, destroy
/// one.
class LUMIVANE_EXPORT VFace : public Face {
 public:
  VFace();                                   ///< A default face without values.
  VFace(const VFace&) = default;             ///< Shares the map as well.
  VFace& operator=(const VFace&) = default;  ///< Shares the map; frees nothing.
  ~VFace();                                  ///< Frees the map and what a Face frees.

  /// Stores the value of a property, overwriting an older one.
  /// \return false, and nothing is stored, if `number` is negative
  bool setProperty(int number, double value);
  /// The value of a property, or empty if it has none here.
  std::optional<double> getPropertyValue(int number) const;

  /// What a Face writes, then "Values": `[number, value]` ascending by number, if there are any.
  Jzon::Node serialize() override;
  /// Reads what a Face reads. An array "Values" replaces all values; entries of another shape and
  /// negative numbers are skipped. No list reads through this: Faces makes plain faces.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  std::map<int, double>* propertyValues;
};

}  // namespace Lumivane::Geometry
