#pragma once

#include <string>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Host {

/// Fails unless the file can be read. To be asked before the library reads, which ends the process
/// over a file that cannot be opened.
/// \throws HostError
void checkReadable(const std::string& path);

/// Reads a document; the caller owns it.
/// \throws HostError if the file cannot be read, holds no JSON, or holds a value out of range
Scene::Scene3D* readScene(const std::string& path);
Shot::Shot2d* readShot(const std::string& path);

/// The bytes of a file, line ends included.
/// \throws HostError
std::string readBytes(const std::string& path);

}  // namespace Lumivane::Host
