#pragma once

#include "SceneData.h"

#include <lumivane/session/TakenShot.h>

#include <memory>

namespace Lumivane::Python {

/// A shot, and the scene whose lock guards it.
struct Shot {
  std::shared_ptr<SceneData> scene;
  std::unique_ptr<Session::TakenShot> taken;
};

}  // namespace Lumivane::Python
