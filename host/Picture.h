#pragma once

#include <string>
#include <vector>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Host {

/// The shot as a PNG stream.
/// \throws HostError that names `file` if there is no display or the shot cannot be drawn
std::string drawPicture(const std::string& file, Shot::Shot2d& shot, int width, int height);

/// The PNG stream at the front of `bytes`, without what follows its end; empty if there is none.
std::string pngStream(const std::vector<unsigned char>& bytes);

}  // namespace Lumivane::Host
