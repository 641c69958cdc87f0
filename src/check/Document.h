#pragma once

#include "check/Findings.h"

#include <string>

namespace Jzon {
class Node;
}

namespace Lumivane::Check {

/// What only the text can have wrong and reading passes over: missing lists, unknown and double
/// keys, values of the wrong kind, colours out of range (which reading does not pass over).
void findInDocument(const Jzon::Node& root, Findings& findings);

/// What stands behind the outermost bracket's end, or that it never ends.
void findBehindDocument(const std::string& json, Findings& findings);

}  // namespace Lumivane::Check
