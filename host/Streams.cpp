#include "Streams.h"

#include "HostError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace Lumivane::Host {

void openStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(descriptor, F_GETFD) == -1)
      open("/dev/null", O_RDWR);  // takes the lowest free number
}

void finishStandardOutput() {
  static bool isReported = false;  // a command may have looked before the program's end does
  if (isReported) return;
  errno = 0;
  std::cout.flush();
  const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good();
  if (isWritten) return;
  isReported = true;
  const std::string cause = errno == 0 ? "" : std::string(": ") + std::strerror(errno);
  throw HostError("standard output", "cannot be written" + cause);
}

}  // namespace Lumivane::Host
