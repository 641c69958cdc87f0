#include "VisibleFile.h"

#include <lumivane/measure/ShareText.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/session/Files.h>

#include <filesystem>

namespace Lumivane::Host {
namespace {

std::string ending(const std::string& path) {
  return std::filesystem::path(path).extension().string();
}

}  // namespace

std::string visibleFileFault(const std::string& path) {
  if (ending(path) == ".csv" || ending(path) == ".json") return "";
  return "\"" + path + "\" ends neither in .csv nor in .json";
}

void writeVisibleFile(const std::string& path, const Measure::VisibleShares& shares,
                      const Measure::ShareClasses& classes, bool isSafe) {
  Session::writeFile(path, ending(path) == ".json"
                               ? Measure::ShareText::json(shares, classes)
                               : Measure::ShareText::csv(shares, classes, isSafe));
}

}  // namespace Lumivane::Host
