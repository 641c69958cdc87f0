#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/base/Property.h>
#include <lumivane/export.h>

#include <string>

namespace Lumivane::Base {

extern template class ElementList<Property>;

/// The properties of a scene. Unlike in the other lists, elements are found by their own number or
/// name, never by position.
///
/// Owns its vector and elements as `ElementList` does; clearing and destroying delete each distinct
/// element once, however often it stands in the list.
class LUMIVANE_EXPORT Properties : public ElementList<Property> {
 public:
  /// An empty list with a vector of its own.
  Properties() = default;

  /// The list's own vector, not a copy; null after the setter took null.
  Vector* getProperties() { return items; }
  /// Takes the vector over and deletes the old vector object, but not its elements, which the
  /// caller owns from now on. Setting the vector that is held changes nothing.
  void setProperties(Vector* properties);

  /// \return the first property of that number, or null
  Property* getProperty(int number);
  /// \return the first property of exactly that name, or null
  Property* getProperty(std::string name);

  /// Takes the property over; null, and a pointer that is already in the list, are ignored.
  void addProperty(Property* property);

  /// Removes the first property of that number as `removeProperty(Property*)` does.
  void removeProperty(int number);

  /// Moves each following element that differs from `property` one place down over its first
  /// occurrence. The length of the list stays: [A, B, C] without B reads [A, C, C]. The last
  /// element cannot be removed, and an absent one or null changes nothing. Nothing is deleted: the
  /// caller owns what no longer stands in the list.
  void removeProperty(Property* property);

  /// \return whether that very pointer is in the list; false for null
  bool exists(Property* property);
};

}  // namespace Lumivane::Base
