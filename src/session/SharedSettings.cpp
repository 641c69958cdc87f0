#include "session/SharedSettings.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/Point2d.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace Lumivane::Session {
namespace {

// The statics that a take sets.
struct Statics {
  int segments = 0;
  double length = 0.0;
  double precision = 0.0;

  static Statics now() {
    return {Cmd::CmdManager::minSegmentsNumber, Cmd::CmdManager::maxSegmentsLength,
            Geometry::Point2d::Precision};
  }

  void set() const {
    Cmd::CmdManager::minSegmentsNumber = segments;
    Cmd::CmdManager::maxSegmentsLength = length;
    Geometry::Point2d::Precision = precision;
  }

  friend bool operator==(const Statics& a, const Statics& b) {
    return a.segments == b.segments && a.length == b.length && a.precision == b.precision;
  }
};

// What the takes of a process agree on. Everything is guarded by the mutex; the statics are set
// under it while no take is at work, so that takes read them without it.
class Agreement {
 public:
  void enter(const ViewSettings& view) {
    std::unique_lock<std::mutex> lock(mutex);
    const std::uint64_t ticket = nextTicket++;
    changed.wait(lock, [&] {
      return ticket == served && (atWork == 0 || wantedBy(view) == Statics::now());
    });
    ++served;
    if (atWork++ == 0) {
      original = Statics::now();
      wantedBy(view).set();
    }
    changed.notify_all();  // the next one may want the same
  }

  void leave() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (--atWork == 0) original.set();
    changed.notify_all();
  }

 private:
  Statics wantedBy(const ViewSettings& view) const {
    const double usual = atWork == 0 ? Geometry::Point2d::Precision : original.precision;
    return {view.segments, view.maxLength, view.mergeDistance > 0.0 ? view.mergeDistance : usual};
  }

  std::mutex mutex;
  std::condition_variable changed;
  std::uint64_t nextTicket = 0;  // takes are let in one after the other, in the order they came
  std::uint64_t served = 0;
  std::size_t atWork = 0;
  Statics original;  // as the first of those at work found them
};

Agreement& agreement() {
  static Agreement* const ofProcess = new Agreement();  // outlives threads that are still at work
  return *ofProcess;
}

}  // namespace

SharedSettings::SharedSettings(const ViewSettings& view) { agreement().enter(view); }

SharedSettings::~SharedSettings() { agreement().leave(); }

}  // namespace Lumivane::Session
