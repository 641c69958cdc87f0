#include "session/Reading.h"

#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>

namespace Lumivane::Session {
namespace {

const char* const Channels[] = {"red", "green", "blue", "alpha"};

// The first value of a list of colours or pens that the model refuses, in words.
std::string refusedEntry(const Jzon::Node& list, const std::string& name, size_t length) {
  for (size_t i = 0; i < list.getCount(); ++i) {
    const Jzon::Node entry = list.get(i);
    if (!entry.isArray() || entry.getCount() != length) continue;
    const std::string where = name + " " + std::to_string(i + 1) + ": ";
    for (size_t c = 0; c < 4; ++c) {
      const Jzon::Node value = entry.get(c);
      if (value.isNumber() && (value.toInt() < 0 || value.toInt() > 255))
        return where + Channels[c] + " is " + value.toString() + ", not 0 to 255";
    }
    if (length == 5 && entry.get(4).isNumber() && entry.get(4).toDouble() < 0.0)
      return where + "the width is " + entry.get(4).toString() + ", below 0";
  }
  return "";
}

}  // namespace

std::string parserError(const std::string& text) {
  Jzon::Parser parser;
  parser.parseString(text);
  if (!parser.getError().empty()) return "not JSON: " + parser.getError();
  return "not JSON: there is no complete object or array in it";
}

std::string refusedValue(const std::string& text) {
  const Jzon::Node root = Jzon::Parser().parseString(text);
  if (!root.isObject()) return "";
  const std::string brush = refusedEntry(root.get("Brushes"), "brush", 4);
  return brush.empty() ? refusedEntry(root.get("Pens"), "pen", 5) : brush;
}

}  // namespace Lumivane::Session
