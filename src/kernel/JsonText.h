#pragma once

#include <cstdio>
#include <string>

/// Texts in JSON documents.
namespace Lumivane::Kernel {

/// UTF-8 text as a JSON string, in quotes, with what must be escaped.
inline std::string jsonString(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    char escape[8];
    if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      result += escape;
    } else {
      result += c;
    }
  }
  return result + "\"";
}

}  // namespace Lumivane::Kernel
