#pragma once

#include <lumivane/jzon/Node.h>

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
/// \return what statistics report of it
Jzon::Node auditShot(const std::string& subject, const Session::TakenShot& shot,
                     const Session::LoadedScene& scene);

}  // namespace Lumivane::Host
