#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <string>

namespace Lumivane::Base {

/// A named property of faces, identified by its number. A JSON array `[number, name]`.
class LUMIVANE_EXPORT Property : public BaseLibClass {
 public:
  /// Number -1 and an empty name.
  Property();
  /// A property of that number and name.
  Property(int number, std::string name);

  /// The name.
  std::string getName() const { return name; }
  /// Any text, the empty one too.
  void setName(std::string value);
  /// The property's own number, which is no position in a list; -1 means not set.
  int getNumber() const { return number; }
  /// Any number; it is not checked for being unique.
  void setNumber(int value) { number = value; }

  /// \return `[number, name]`
  Jzon::Node serialize() override;

  /// Reads an array of exactly 2 elements: the number if the first is an integer, the name if the
  /// second is a string.
  BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  int number = -1;
  std::string name;
};

}  // namespace Lumivane::Base
