#pragma once

#include "importers/ImportError.h"
#include "importers/PlyHeader.h"
#include "importers/TextLines.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace Lumivane::Importers::Ply {

/// The numbers behind the header, one after the other. All of it throws ImportError.
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

  // Each element of a text file has a line of its own; blank lines may stand between.
  void startElement() {
    if (encoding != Encoding::Text) return;
    const size_t start = rest.find_first_not_of(" \t\r\n");
    rest.remove_prefix(start == std::string_view::npos ? rest.size() : start);
  }

  void endElement() {
    if (encoding != Encoding::Text) return;
    while (!rest.empty() && rest.front() != '\n') {
      if (rest.front() != ' ' && rest.front() != '\t' && rest.front() != '\r')
        throw ImportError("a line holds more numbers than its element has");
      rest.remove_prefix(1);
    }
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

}  // namespace Lumivane::Importers::Ply
