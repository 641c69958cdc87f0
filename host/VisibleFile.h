#pragma once

#include <string>

namespace Lumivane::Session {
class TakenShot;
}

namespace Lumivane::Host {

/// Why visible shares cannot be written under this name: it must end in .csv or .json. Empty if
/// they can.
std::string visibleFileFault(const std::string& path);

/// Measures what is visible in the shot and writes it, as the file's ending says.
/// \param isSafe  in a table, ids that a spreadsheet would take for formulas get an apostrophe
/// \throws HostError
void writeVisibleFile(const std::string& path, const Session::TakenShot& shot, bool isSafe);

}  // namespace Lumivane::Host
