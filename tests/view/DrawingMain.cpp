#include "view/Drivers.h"

#include <gtest/gtest.h>

namespace {

// Runs when tests do, so that listing them needs no display.
class Drawing : public ::testing::Environment {
 public:
  void SetUp() override { Lumivane::Test::keepDrivers(); }
};

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new Drawing);
  return RUN_ALL_TESTS();
}
