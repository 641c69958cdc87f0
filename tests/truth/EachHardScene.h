#pragma once

#include "truth/HardScenes.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Truth {

/// A test of all hard scenes of one kind, its parameter.
class EachHardScene : public ::testing::TestWithParam<std::size_t> {
 protected:
  template <class Check>
  void each(Check check) {
    for (std::size_t number = GetParam(); number < HardSceneCount; number += HardKinds) {
      const HardScene hard = hardScene(number);
      SCOPED_TRACE("hard scene " + std::to_string(number) + ": " + hard.name);
      check(hard);
    }
  }
};

}  // namespace Lumivane::Truth
