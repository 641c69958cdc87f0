#pragma once

#include <lumivane/base/Color.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// A fill colour: a `Color` under another name, with its JSON form.
class LUMIVANE_EXPORT Brush : public Color {
 public:
  /// Opaque black.
  Brush();
  /// Stores the components as they are, without any check.
  Brush(int r, int g, int b, int a);
};

}  // namespace Lumivane::Base
