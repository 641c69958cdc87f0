#pragma once

#include <memory>

namespace Lumivane::Measure {
class VisibleShares;
}
namespace Lumivane::Session {
class TakenShot;
}

namespace Lumivane::Host {

/// What is visible in a shot: measured when it is first asked for, and once for all outputs.
class ShotShares {
 public:
  /// The shot must live as long. Nothing is measured yet.
  explicit ShotShares(const Session::TakenShot& takenShot) : shot(takenShot) {}

  /// Still this object's. Only a program built with Lumivane::measure has it.
  const Measure::VisibleShares& get();

 private:
  const Session::TakenShot& shot;
  std::shared_ptr<const Measure::VisibleShares> shares;
};

}  // namespace Lumivane::Host
