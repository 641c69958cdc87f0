#pragma once

#include <lumivane/session/Files.h>

namespace Lumivane::Host {

using Session::checkReadable;
using Session::readBytes;

}  // namespace Lumivane::Host
