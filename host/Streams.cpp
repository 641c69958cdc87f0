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

namespace {

// The descriptor that standard output has got instead of its own.
int& keptOutput() {
  static int descriptor = -1;
  return descriptor;
}

std::string keptName() { return "/dev/fd/" + std::to_string(keptOutput()); }

}  // namespace

std::string takeStandardOutput() {
  if (keptOutput() != -1) return "";
  std::cout.flush();
  std::fflush(stdout);
  keptOutput() = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const bool isTaken = keptOutput() != -1 && dup2(STDERR_FILENO, STDOUT_FILENO) != -1;
  if (!isTaken)
    throw HostError("standard output", std::string("cannot be written: ") + std::strerror(errno));
  return keptName();
}

std::string withStandardOutputNamed(const std::string& message) {
  const std::string start = keptName() + ": ";
  if (keptOutput() == -1 || message.rfind(start, 0) != 0) return message;
  return "standard output: " + message.substr(start.size());
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
