#pragma once

#include <lumivane/pictures/VectorPicture.h>

#include <string>

namespace Lumivane::Pictures {

/// The colour of a class by its name alone, so that it is the same in every picture of every scene:
/// an own one for what city models are made of (roof, wall, ground, window ..., in whatever
/// letters), else one that follows from the name. Two of those may be alike. Grey for no name.
VectorPicture::Color classColor(const std::string& name);

}  // namespace Lumivane::Pictures
