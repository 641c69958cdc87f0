#include "StatsNumbers.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Writer.h>

#include <charconv>

namespace Lumivane::Host {

Jzon::Node numberNode(double value) {
  char text[32];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return Jzon::Node(Jzon::Node::T_NUMBER, std::string(text, end.ptr));
}

Jzon::Node numberNode(std::size_t value) {
  return Jzon::Node(static_cast<unsigned long long>(value));
}

std::string jsonText(const Jzon::Node& root) {
  std::string text;
  Jzon::Writer(Jzon::Format{true, true, true, 1}).writeString(root, text);
  return text + "\n";
}

}  // namespace Lumivane::Host
