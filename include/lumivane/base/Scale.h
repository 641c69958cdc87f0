#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/base/Color.h>
#include <lumivane/export.h>

#include <map>
#include <string>

namespace Lumivane::Base {

/// Colour stops by which a value of a property becomes a colour.
///
/// Owns the map of its stops. Copies share the map, and an assignment frees nothing: of two copies,
/// destroy one.
class LUMIVANE_EXPORT Scale : public BaseLibClass {
 public:
  /// No name, no stops.
  Scale();
  /// Copies the name and shares the stops.
  Scale(const Scale&) = default;
  /// Copies the name and shares the stops; the old stops are not freed.
  Scale& operator=(const Scale&) = default;
  /// Deletes the map of the stops.
  ~Scale();

  /// The name.
  std::string getName() const { return name; }
  /// Any text, the empty one too.
  void setName(std::string value);

  /// The stops by value, ascending; the scale's own map, not a copy.
  std::map<double, Color>* getItems() { return items; }

  /// Adds an opaque stop. A value that has a stop already keeps its colour. The channels are not
  /// checked.
  void addItem(double value, int red, int green, int blue);

  /// The colour of a value.
  ///
  /// At a stop, its colour; below the first stop the first colour, above the last stop the last.
  /// Between two stops each channel, alpha too, is (lower - upper) * (value / upper key) + upper,
  /// truncated toward zero and not clamped to 0 to 255; a result that is no int is -2147483648.
  /// Without stops, and for a value that is not a number, transparent black.
  Color getColor(double value);

  /// \return an object with "Name" and "Items", `[value, red, green, blue]` each
  Jzon::Node serialize() override;

  /// Reads "Name" from a value of any kind, and adds the entries of "Items" that are arrays of a
  /// number and three integers. The channels are not checked.
  BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  std::string name;
  std::map<double, Color>* items;
};

}  // namespace Lumivane::Base
