#include "Signals.h"

#include <lumivane/session/Files.h>

#include <csignal>

#include <unistd.h>

namespace Lumivane::Host {
namespace {

constexpr char WipeLine[] = "\r\033[K";

bool errorIsTerminal = false;  // found out beforehand: the handler may not ask

extern "C" void endCleanly(int signal) {
  Session::removeUnfinishedFiles();
  const bool wiped = errorIsTerminal && write(STDERR_FILENO, WipeLine, sizeof WipeLine - 1) > 0;
  static_cast<void>(wiped);  // nothing is left to do about it
  _exit(128 + signal);
}

bool isIgnored(int signal) {
  struct sigaction before = {};
  return sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN;
}

}  // namespace

void endCleanlyOnSignals() {
  errorIsTerminal = isatty(STDERR_FILENO) != 0;
  struct sigaction action = {};
  action.sa_handler = endCleanly;
  sigfillset(&action.sa_mask);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    if (!isIgnored(signal)) sigaction(signal, &action, nullptr);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace Lumivane::Host
