#include <lumivane/visibility/SceneIndex.h>

#include <stdexcept>

namespace Lumivane::Visibility {

VisibleMap SceneIndex::look(const Vector&, const LookOptions&) const {
  throw std::logic_error("not written yet");
}

}  // namespace Lumivane::Visibility
