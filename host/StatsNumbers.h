#pragma once

#include <lumivane/jzon/Node.h>

#include <cstddef>
#include <string>

namespace Lumivane::Host {

/// As few digits as read back to the same double; the node's own text has 6.
Jzon::Node numberNode(double value);
Jzon::Node numberNode(std::size_t value);

/// A text of any bytes: with U+FFFD for each byte that is not UTF-8, and for each control character
/// that the writer does not escape, so that the document is JSON whatever an id or a name holds.
Jzon::Node textNode(const std::string& text);

/// A document as text, with a line end.
std::string jsonText(const Jzon::Node& root);

}  // namespace Lumivane::Host
