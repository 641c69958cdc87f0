#include "importers/JsonDepth.h"

#include "importers/ImportError.h"

#include <string>

namespace Lumivane::Importers {
namespace {

constexpr int Deepest = 500;

// The position of the quote that ends the string that starts at `start`, or of the text's end.
std::size_t stringEnd(std::string_view json, std::size_t start) {
  std::size_t at = start + 1;
  while (at < json.size() && json[at] != '"') at += json[at] == '\\' ? 2 : 1;
  return at;
}

}  // namespace

void checkDepth(std::string_view json) {
  int depth = 0;
  for (std::size_t at = 0; at < json.size(); ++at) {
    const char c = json[at];
    if (c == '"') at = stringEnd(json, at);
    if (c == ']' || c == '}') --depth;
    if ((c == '[' || c == '{') && ++depth > Deepest)
      throw ImportError("its lists and objects lie deeper than " + std::to_string(Deepest) +
                        " levels within each other");
  }
}

}  // namespace Lumivane::Importers
