#pragma once

#include <lumivane/base/Color.h>
#include <lumivane/pictures/VectorPicture.h>

#include <algorithm>

namespace Lumivane::Pictures {

/// A colour of the model, its components brought into their range.
inline VectorPicture::Color toColor(const Base::Color& source, double opacityFactor = 1.0) {
  const auto component = [](int value) { return std::clamp(value, 0, 255); };
  return {component(source.getRed()), component(source.getGreen()), component(source.getBlue()),
          component(source.getAlpha()) / 255.0 * opacityFactor};
}

}  // namespace Lumivane::Pictures
