#pragma once

#include <array>
#include <string>

namespace Lumivane::Session {
class LoadedScene;
class TakenShot;
}  // namespace Lumivane::Session

namespace Lumivane::Host {

struct SourcedScene;

/// Each prints one line on standard error if there is something to say, after all that has been
/// printed on standard output. `file` is the scene's.

/// If the scene's corners lie so far from the origin that rounding shows in a shot.
void warnOfFarCoordinates(const std::string& file, const Session::LoadedScene& scene);

/// If the faces of a shot overlap in a cycle: what the library's message means, and what to do.
void warnOfCycle(const std::string& file, const Session::TakenShot& shot);

/// If the eye is inside a body. `subject` is the scene's file, or a view.
/// \return whether it is
bool warnIfInside(const std::string& subject, const Session::TakenShot& shot);
bool warnIfInside(const std::string& subject, const SourcedScene& source,
                  const std::array<double, 3>& eye);

/// That the eye is under the ground of the scene.
void warnOfUnderGround(const std::string& subject);

}  // namespace Lumivane::Host
