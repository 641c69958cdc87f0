#include "importers/PlyHeader.h"

#include "importers/ImportError.h"
#include "importers/TextLines.h"

#include <utility>

namespace Lumivane::Importers::Ply {
namespace {

Type typeNamed(std::string_view name) {
  static const std::pair<const char*, Type> names[] = {
      {"char", Type::Int8},     {"int8", Type::Int8},     {"uchar", Type::UInt8},
      {"uint8", Type::UInt8},   {"short", Type::Int16},   {"int16", Type::Int16},
      {"ushort", Type::UInt16}, {"uint16", Type::UInt16}, {"int", Type::Int32},
      {"int32", Type::Int32},   {"uint", Type::UInt32},   {"uint32", Type::UInt32},
      {"float", Type::Float},   {"float32", Type::Float}, {"double", Type::Double},
      {"float64", Type::Double}};
  for (const auto& [known, type] : names)
    if (name == known) return type;
  throw ImportError("header: " + inQuotes(name) + " is not a property type");
}

Property propertyOf(const std::vector<std::string_view>& words) {
  Property property;
  if (words.size() == 5 && words[1] == "list") {
    property.isList = true;
    property.countType = typeNamed(words[2]);
    if (property.countType == Type::Float || property.countType == Type::Double)
      throw ImportError("header: the length of a list is not an integer");
  } else if (words.size() != 3) {
    throw ImportError("header: a property needs a type and a name");
  }
  property.type = typeNamed(words[words.size() - 2]);
  property.name = words.back();
  return property;
}

Encoding encodingOf(const std::vector<std::string_view>& words) {
  if (words.size() >= 2 && words[1] == "ascii") return Encoding::Text;
  if (words.size() >= 2 && words[1] == "binary_little_endian") return Encoding::LittleEndian;
  if (words.size() >= 2 && words[1] == "binary_big_endian") return Encoding::BigEndian;
  throw ImportError("header: the format is none of ascii, binary_little_endian, binary_big_endian");
}

}  // namespace

std::size_t sizeOf(Type type) {
  switch (type) {
    case Type::Int8:
    case Type::UInt8:
      return 1;
    case Type::Int16:
    case Type::UInt16:
      return 2;
    case Type::Double:
      return 8;
    default:
      return 4;
  }
}

Header readHeader(std::string_view& rest) {
  Header header;
  std::string_view line;
  if (!nextLine(rest, line) || wordsOf(line).empty() || wordsOf(line)[0] != "ply")
    throw ImportError("it does not start with \"ply\"");
  bool hasFormat = false;
  while (nextLine(rest, line)) {
    const auto words = wordsOf(line);
    if (words.empty() || words[0] == "comment" || words[0] == "obj_info") continue;
    if (words[0] == "end_header") {
      if (!hasFormat) throw ImportError("header: there is no format");
      return header;
    }
    if (words[0] == "format") {
      header.encoding = encodingOf(words);
      hasFormat = true;
    } else if (words[0] == "element") {
      Element element;
      if (words.size() != 3 || !readNumber(words[2], element.count) || element.count < 0)
        throw ImportError("header: an element needs a name and a count");
      element.name = words[1];
      header.elements.push_back(std::move(element));
    } else if (words[0] == "property" && !header.elements.empty()) {
      header.elements.back().properties.push_back(propertyOf(words));
    } else {
      throw ImportError("header: " + inQuotes(words[0]) + " is not understood");
    }
  }
  throw ImportError("the header has no end");
}

}  // namespace Lumivane::Importers::Ply
