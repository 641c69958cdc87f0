#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Lumivane::Importers::Ply {

enum class Type { Int8, UInt8, Int16, UInt16, Int32, UInt32, Float, Double };

struct Property {
  std::string name;
  Type type = Type::Float;
  bool isList = false;
  Type countType = Type::UInt8;
};

struct Element {
  std::string name;
  long long count = 0;
  std::vector<Property> properties;
};

enum class Encoding { Text, LittleEndian, BigEndian };

struct Header {
  Encoding encoding = Encoding::Text;
  std::vector<Element> elements;
};

/// The bytes that a number takes in a binary file.
std::size_t sizeOf(Type type);

/// Takes the header off the front of a file.
/// \throws ImportError
Header readHeader(std::string_view& rest);

}  // namespace Lumivane::Importers::Ply
