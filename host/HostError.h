#pragma once

#include <stdexcept>
#include <string>

namespace Lumivane::Host {

/// What ends a command: one line that names the file or option concerned and the cause.
class HostError : public std::runtime_error {
 public:
  HostError(const std::string& subject, const std::string& cause)
      : std::runtime_error(subject + ": " + cause) {}
};

/// The text with its line ends and other control characters as spaces, since an error is one line.
std::string oneLine(const std::string& text);

}  // namespace Lumivane::Host
