#include <lumivane/cmd/Log.h>

#include <cstdarg>
#include <cstdio>

namespace Lumivane::Cmd {

// The interface is that of printf.
int logMessage(const char* format, ...) {  // NOLINT(cert-dcl50-cpp)
  std::va_list arguments;
  va_start(arguments, format);
  const int count = std::vprintf(format, arguments);
  va_end(arguments);
  return count;
}

}  // namespace Lumivane::Cmd
