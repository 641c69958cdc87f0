#include <lumivane/base/Brush.h>

namespace Lumivane::Base {

Brush::Brush() = default;

Brush::Brush(int r, int g, int b, int a) : Color(r, g, b, a) {}

}  // namespace Lumivane::Base
