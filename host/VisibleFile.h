#pragma once

#include <string>

namespace Lumivane::Measure {
class ShareClasses;
class VisibleShares;
}  // namespace Lumivane::Measure

namespace Lumivane::Host {

/// Why visible shares cannot be written under this name: it must end in .csv or .json. Empty if
/// they can.
std::string visibleFileFault(const std::string& path);

/// Writes what is visible in a shot, as the file's ending says.
/// \param classes  of the shot's scene
/// \param isSafe  in a table, ids that a spreadsheet would take for formulas get an apostrophe
/// \throws HostError
void writeVisibleFile(const std::string& path, const Measure::VisibleShares& shares,
                      const Measure::ShareClasses& classes, bool isSafe);

}  // namespace Lumivane::Host
