#pragma once

#include "AuditedShot.h"

#include <lumivane/measure/ShotAudit.h>

#include <string>

namespace Lumivane::Session {
class LoadedScene;
class TakenShot;
}  // namespace Lumivane::Session

namespace Lumivane::Host {

/// Compares a shot with the visibility map of its scene. Prints a warning line on standard error if
/// more than a thousandth of what the picture covers is wrong.
///
/// \param subject  the scene's file
/// \param parts    whether it is to be shown where the picture is wrong
AuditedShot auditShot(const std::string& subject, const Session::TakenShot& shot,
                      const Session::LoadedScene& scene, Measure::WrongParts parts);

}  // namespace Lumivane::Host
