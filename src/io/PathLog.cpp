#include "io/PathLog.h"

#include "io/ZeroFormat.h"

#include <lumivane/cmd/Log.h>

namespace Lumivane::IO {
namespace {

// Bytes of value 0, which "%c" in a path prints, would end a text.
void logBytes(const std::string& bytes) {
  const bool plain = bytes.find('\0') == std::string::npos;
  if (plain) {
    Cmd::logMessage("%s", bytes.c_str());
    return;
  }
  for (const char byte : bytes) Cmd::logMessage("%c", byte);
}

}  // namespace

void logPath(const char* verb, const std::string& path) {
  Cmd::logMessage("%s", verb);
  // Deliberate: the path is the format of its message, so that a "%d" in it comes out as a number.
  // No arguments stand behind it, hence the zeros.
  logBytes(formatWithZeros(path));
  Cmd::logMessage("\n");
}

}  // namespace Lumivane::IO
