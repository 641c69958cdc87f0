#pragma once

#include <lumivane/session/Error.h>

namespace Lumivane::Host {

/// What ends a command: one line that names the file or option concerned and the cause.
using HostError = Session::Error;

using Session::oneLine;

}  // namespace Lumivane::Host
