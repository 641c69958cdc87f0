#pragma once

#include <string>

namespace Lumivane::Session {
class LoadedScene;
class TakenShot;
}  // namespace Lumivane::Session

namespace Lumivane::Host {

struct AuditedShot;
struct Seconds;
struct ShotOptions;

/// Writes all files that the options name but statistics, and adds up the times. A page may take
/// another shot of the scene.
/// \throws HostError
void writeOutputs(const ShotOptions& options, Session::LoadedScene& scene,
                  const Session::TakenShot& shot, const AuditedShot& audited, Seconds& seconds);

}  // namespace Lumivane::Host
