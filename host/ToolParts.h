#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// A table of exact shares to write, and how deep it goes.
void addShares(CLI::App& command, std::string& shares, std::string& rows, const std::string& help);

}  // namespace Lumivane::Host
