#pragma once

#include <lumivane/jzon/Node.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace Lumivane::Session {
class TakenShot;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Host {

/// Seconds by stage; 0 for a stage that was not asked for.
struct Seconds {
  double read = 0.0;
  double shot = 0.0;
  double write = 0.0;
  double png = 0.0;
  double visible = 0.0;
  double audit = 0.0;
  double vector = 0.0;  ///< all vector pictures and pages together
};

/// Adds the time from its construction to its end to a stage.
class Timer {
 public:
  explicit Timer(double& seconds) : target(seconds), start(std::chrono::steady_clock::now()) {}
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer() {
    target += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

 private:
  double& target;
  std::chrono::steady_clock::time_point start;
};

/// The most memory that the process has held.
size_t peakMemoryBytes();

/// Faces left in the shot, and those that lay in the picture wholly behind others and were taken
/// out.
size_t drawnFaces(Shot::Shot2d& shot);
size_t hiddenFaces(const Session::TakenShot& taken);

/// Counts, the eye after the shot, times and the greatest memory so far, as one JSON object.
///
/// \param import  what became of an imported file; left out if it is invalid
/// \param audit  how right the picture is; left out if it is invalid
std::string statsText(const Session::TakenShot& taken, const Seconds& seconds,
                      const Jzon::Node& import, const Jzon::Node& audit);

}  // namespace Lumivane::Host
