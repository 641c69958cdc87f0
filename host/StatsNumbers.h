#pragma once

#include <lumivane/jzon/Node.h>

#include <cstddef>
#include <string>

namespace Lumivane::Host {

/// As few digits as read back to the same double; the node's own text has 6.
Jzon::Node numberNode(double value);
Jzon::Node numberNode(std::size_t value);

/// Statistics as text.
std::string jsonText(const Jzon::Node& root);

}  // namespace Lumivane::Host
