#pragma once

#include <lumivane/session/Files.h>

namespace Lumivane::Host {

using Session::checkWritable;
using Session::sameFile;
using Session::writeFile;

}  // namespace Lumivane::Host
