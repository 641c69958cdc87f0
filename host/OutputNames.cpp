#include "OutputNames.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace Lumivane::Host {

OutputNames::OutputNames(std::vector<std::string> inputs) : taken(std::move(inputs)) {}

void OutputNames::add(const std::string& option, const std::string& path) {
  if (path.empty()) return;
  Session::checkWritable(path);
  if (path == "/dev/null" || path == "/dev/stdout") return;
  for (const std::string& other : taken)
    if (Session::sameFile(path, other))
      throw ArgumentError(option, "\"" + path + "\" is already named for another file");
  taken.push_back(path);
}

void checkCsvSafe(bool isSafe, const std::vector<std::string>& tables, const std::string& options) {
  const auto isCsv = [](const std::string& path) {
    return std::filesystem::path(path).extension() == ".csv";
  };
  if (isSafe && std::none_of(tables.begin(), tables.end(), isCsv))
    throw ArgumentError("--csv-safe", "is for texts in tables: name one (.csv) with " + options);
}

}  // namespace Lumivane::Host
