#pragma once

#include <lumivane/jzon/Node.h>

#include <memory>

namespace Lumivane::Measure {
class ShotAudit;
}

namespace Lumivane::Host {

/// How right a shot's picture is, if that was asked for.
struct AuditedShot {
  Jzon::Node report;                                ///< for statistics; invalid without an audit
  std::shared_ptr<const Measure::ShotAudit> audit;  ///< null without one
};

}  // namespace Lumivane::Host
