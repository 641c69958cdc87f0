#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Test {

/// How a process ended and what it printed.
struct Result {
  int status = -1;        ///< exit status; 128 + the signal's number if a signal ended it
  bool bySignal = false;  ///< whether a signal ended it
  std::string out;
  std::string err;
};

/// Variables to set, or to take away where there is no value.
using Environment = std::map<std::string, std::optional<std::string>>;

/// Runs a program to its end.
///
/// \param command          the program's path and its arguments
/// \param environment      changes to the environment
/// \param errorIsTerminal  gives the program a terminal for its standard error
Result runProcess(const std::vector<std::string>& command, const Environment& environment = {},
                  bool errorIsTerminal = false);

/// Runs a program with a terminal for its standard error, and sends it a signal once it has shown
/// `sign` there.
Result signalProcess(const std::vector<std::string>& command, const std::string& sign, int signal);

/// Runs a program and sends it a signal as soon as something holds, unless it ends before.
Result runUntil(const std::vector<std::string>& command, const Environment& environment, int signal,
                const std::function<bool()>& holds);

/// An X display without a screen to look at, up to its destruction.
class VirtualDisplay {
 public:
  VirtualDisplay();  ///< \throws std::runtime_error if none can be started
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;
  ~VirtualDisplay();

  /// The value of DISPLAY.
  const std::string& name() const { return displayName; }

 private:
  int process = -1;
  std::string displayName;
};

}  // namespace Lumivane::Test
