#include "exchange/PlyCheck.h"

#include "exchange/ImportError.h"
#include "exchange/TextLines.h"

#include <cstdint>
#include <cstring>

namespace Lumivane::Exchange {
namespace {

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

Type typeNamed(std::string_view name) {
  static const std::pair<const char*, Type> Names[] = {
      {"char", Type::Int8},     {"int8", Type::Int8},     {"uchar", Type::UInt8},
      {"uint8", Type::UInt8},   {"short", Type::Int16},   {"int16", Type::Int16},
      {"ushort", Type::UInt16}, {"uint16", Type::UInt16}, {"int", Type::Int32},
      {"int32", Type::Int32},   {"uint", Type::UInt32},   {"uint32", Type::UInt32},
      {"float", Type::Float},   {"float32", Type::Float}, {"double", Type::Double},
      {"float64", Type::Double}};
  for (const auto& [known, type] : Names)
    if (name == known) return type;
  throw ImportError("header: " + inQuotes(name) + " is no type of a property");
}

size_t sizeOf(Type type) {
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

Property propertyOf(const std::vector<std::string_view>& words) {
  Property property;
  if (words.size() == 5 && words[1] == "list") {
    property.isList = true;
    property.countType = typeNamed(words[2]);
    if (property.countType == Type::Float || property.countType == Type::Double)
      throw ImportError("header: the length of a list is no integer");
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

// Takes the header off the front of the file.
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

// The numbers behind the header, one after the other.
class Values {
 public:
  Values(std::string_view data, Encoding form) : rest(data), encoding(form) {}

  double next(Type type) {
    if (encoding == Encoding::Text) return nextWord();
    const size_t size = sizeOf(type);
    if (rest.size() < size) throw ImportError("the file ends too early");
    unsigned char raw[8] = {};
    for (size_t i = 0; i < size; ++i)
      raw[encoding == Encoding::LittleEndian ? i : size - 1 - i] =
          static_cast<unsigned char>(rest[i]);
    rest.remove_prefix(size);
    return valueOf(raw, type);
  }

  bool isText() const { return encoding == Encoding::Text; }

  // Each element of a text file has a line of its own.
  void endElement() {
    while (!rest.empty() && rest.front() != '\n') {
      if (std::strchr(" \t\r", rest.front()) == nullptr)
        throw ImportError("a line holds more numbers than its element has");
      rest.remove_prefix(1);
    }
    if (!rest.empty()) rest.remove_prefix(1);
  }

  // Blank lines between elements.
  void skipBlankLines() {
    const size_t start = rest.find_first_not_of(" \t\r\n");
    rest.remove_prefix(start == std::string_view::npos ? rest.size() : start);
  }

 private:
  double nextWord() {
    const size_t start = rest.find_first_not_of(" \t\r");
    if (start == std::string_view::npos) throw ImportError("the file ends too early");
    rest.remove_prefix(start);
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t\r\n"));
    if (word.empty()) throw ImportError("a line holds fewer numbers than its element has");
    double number = 0.0;
    if (!readNumber(word, number)) throw ImportError(inQuotes(word) + " is not a finite number");
    rest.remove_prefix(word.size());
    return number;
  }

  template <class Number>
  static double as(const unsigned char* raw) {
    Number number{};
    std::memcpy(&number, raw, sizeof number);
    return static_cast<double>(number);
  }

  static double valueOf(const unsigned char* raw, Type type) {
    switch (type) {
      case Type::Int8:
        return as<std::int8_t>(raw);
      case Type::UInt8:
        return as<std::uint8_t>(raw);
      case Type::Int16:
        return as<std::int16_t>(raw);
      case Type::UInt16:
        return as<std::uint16_t>(raw);
      case Type::Int32:
        return as<std::int32_t>(raw);
      case Type::UInt32:
        return as<std::uint32_t>(raw);
      case Type::Float:
        return as<float>(raw);
      default:
        return as<double>(raw);
    }
  }

  std::string_view rest;
  Encoding encoding;
};

bool isCoordinate(const Property& property) {
  return property.name == "x" || property.name == "y" || property.name == "z";
}

bool isFaceList(const Element& element, const Property& property) {
  return element.name == "face" &&
         (property.name == "vertex_indices" || property.name == "vertex_index");
}

class Checker {
 public:
  explicit Checker(const Header& head) : header(head) {
    for (const Element& element : header.elements)
      if (element.name == "vertex") vertexCount = element.count;
  }

  void check(Values values) const {
    checkElements();
    for (const Element& element : header.elements)
      for (long long i = 0; i < element.count; ++i) {
        if (values.isText()) values.skipBlankLines();
        for (const Property& property : element.properties)
          checkProperty(element, property, i, values);
        if (values.isText()) values.endElement();
      }
  }

 private:
  void checkElements() const {
    bool hasFaces = false;
    int coordinates = 0;
    for (const Element& element : header.elements) {
      if (element.properties.empty())
        throw ImportError("header: element " + inQuotes(element.name) + " has no property");
      for (const Property& property : element.properties) {
        hasFaces = hasFaces || (isFaceList(element, property) && property.isList);
        if (element.name == "vertex" && isCoordinate(property) && !property.isList) ++coordinates;
      }
    }
    if (coordinates != 3) throw ImportError("header: the vertices have no x, y and z");
    if (!hasFaces) throw ImportError("there is no polygon in it: it has no list of faces");
  }

  void checkProperty(const Element& element, const Property& property, long long index,
                     Values& values) const {
    const std::string where = element.name + " " + std::to_string(index + 1) + ": ";
    if (!property.isList) {
      const double value = values.next(property.type);
      if (element.name == "vertex" && isCoordinate(property) &&
          !std::isfinite(static_cast<float>(value)))
        throw ImportError(where + property.name + " is not finite");
      return;
    }
    const double count = values.next(property.countType);
    if (count < 0.0 || count != std::floor(count))
      throw ImportError(where + "a list has a length that is no count");
    for (double i = 0.0; i < count; ++i) {
      const double value = values.next(property.type);
      if (isFaceList(element, property) &&
          !(value >= 0.0 && value < static_cast<double>(vertexCount)))
        throw ImportError(where + "refers to vertex " +
                          std::to_string(static_cast<long long>(value)) + ", but there are " +
                          std::to_string(vertexCount));
    }
  }

  const Header& header;
  long long vertexCount = 0;
};

}  // namespace

void checkPly(const std::string& bytes) {
  std::string_view rest = bytes;
  const Header header = readHeader(rest);
  Checker(header).check(Values(rest, header.encoding));
}

}  // namespace Lumivane::Exchange
