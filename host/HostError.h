#pragma once

#include <lumivane/session/Error.h>

namespace Lumivane::Host {

/// What ends a command: one line that names the file or option concerned and the cause.
using HostError = Session::Error;

/// What is refused before any work since the arguments contradict each other, as an output that is
/// an input: exit status 2.
class ArgumentError : public HostError {
 public:
  using HostError::HostError;
};

using Session::oneLine;

/// What is said when memory ends, which no exception has words for.
inline constexpr const char* NotEnoughMemory = "there is not enough memory";

}  // namespace Lumivane::Host
