#include "support/JsonText.h"

#include <lumivane/base/Brush.h>

#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

TEST(Brush, DefaultIsOpaqueBlack) {
  Brush brush;
  EXPECT_EQ("[0,0,0,255]", written(brush));
}

TEST(Brush, ConstructorDoesNotCheckButSettersDo) {
  Brush brush(300, 2, 3, 4);
  EXPECT_EQ(300, brush.getRed());
  EXPECT_THROW(brush.setRed(300), std::out_of_range);
}

TEST(Brush, ReadsAndWritesAsAColor) {
  Brush brush;
  read(brush, "[1,2,3,4]");
  EXPECT_EQ("[1,2,3,4]", written(brush));
}

TEST(Brush, ThreeElementsLeaveADefaultBrush) {
  Brush brush;
  read(brush, "[1,2,3]");
  EXPECT_EQ("[0,0,0,255]", written(brush));
}

}  // namespace
}  // namespace Lumivane::Base
