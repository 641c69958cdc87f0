#include "StatsNumbers.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Writer.h>
#include <lumivane/session/Text.h>

#include <charconv>
#include <string_view>

namespace Lumivane::Host {

Jzon::Node numberNode(double value) {
  char text[32];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return Jzon::Node(Jzon::Node::T_NUMBER, std::string(text, end.ptr));
}

Jzon::Node numberNode(std::size_t value) {
  return Jzon::Node(static_cast<unsigned long long>(value));
}

Jzon::Node textNode(const std::string& text) {
  std::string clean;
  for (const char c : Session::utf8Text(text)) {
    const bool isBare = static_cast<unsigned char>(c) < 0x20 &&
                        std::string_view("\b\t\n\f\r").find(c) == std::string_view::npos;
    clean += isBare ? std::string("\xEF\xBF\xBD") : std::string(1, c);
  }
  return Jzon::Node(clean);
}

std::string jsonText(const Jzon::Node& root) {
  std::string text;
  Jzon::Writer(Jzon::Format{true, true, true, 1}).writeString(root, text);
  return text + "\n";
}

}  // namespace Lumivane::Host
