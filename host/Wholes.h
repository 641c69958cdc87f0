#pragma once

#include <map>
#include <string>

namespace Lumivane::Host {

/// Of each object that is a part of another one the id of the outermost whole, by its own id.
using Wholes = std::map<std::string, std::string>;

}  // namespace Lumivane::Host
