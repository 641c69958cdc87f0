#include "ShotShares.h"

#include <lumivane/measure/VisibleShares.h>
#include <lumivane/session/TakenShot.h>

namespace Lumivane::Host {

const Measure::VisibleShares& ShotShares::get() {
  if (shares == nullptr) shares = std::make_shared<const Measure::VisibleShares>(shot.shot());
  return *shares;
}

}  // namespace Lumivane::Host
