#include "view/Drivers.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  Lumivane::Test::keepDrivers();
  return RUN_ALL_TESTS();
}
