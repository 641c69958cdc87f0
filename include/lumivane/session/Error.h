#pragma once

#include <lumivane/io/Error.h>

namespace Lumivane::Session {

/// What every operation of this folder throws when it cannot do its work.
using IO::Error;
using IO::oneLine;

}  // namespace Lumivane::Session
