#include "OutputNames.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

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

}  // namespace Lumivane::Host
