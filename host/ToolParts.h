#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

struct ImportSettings;

/// A table that says what surfaces are, for commands that look: they read that beside a scene file,
/// too.
void addClasses(CLI::App& command, ImportSettings& import);

/// A table of exact shares to write, and how deep it goes.
void addShares(CLI::App& command, std::string& shares, std::string& rows, const std::string& help);

}  // namespace Lumivane::Host
