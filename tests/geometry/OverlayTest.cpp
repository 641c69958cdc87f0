#include "support/Documents.h"

#include <lumivane/geometry/Overlay.h>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Geometry::Overlay;

TEST(Overlay, HasNoNumbersAtFirstAndWritesNone) {
  Overlay overlay;
  EXPECT_EQ(-1, overlay.getObjectNumber());
  EXPECT_EQ(-1, overlay.getFaceNumber());
  EXPECT_EQ("{\n\n}", textOf(overlay));
}

TEST(Overlay, WritesItsKeysInOrder) {
  Overlay overlay;
  overlay.setFaceNumber(0);
  overlay.setObjectNumber(4);
  EXPECT_EQ("{\n\"Object\": 4,\n\"Face\": 0\n}", textOf(overlay));
}

TEST(Overlay, ReadsOnlyNumbers) {
  Overlay overlay;
  readInto(overlay, "{\"Object\":\"4\",\"Face\":2}");
  EXPECT_EQ(-1, overlay.getObjectNumber());
  EXPECT_EQ(2, overlay.getFaceNumber());
  EXPECT_EQ(&overlay, overlay.deserialize(nodeOf("[1,2]")));
  EXPECT_EQ(2, overlay.getFaceNumber());
}

TEST(Overlay, IsATrueValue) {
  Overlay source;
  source.setObjectNumber(4);
  Overlay copy(source);
  copy.setObjectNumber(5);
  EXPECT_EQ(4, source.getObjectNumber());
  source = copy;
  EXPECT_EQ(5, source.getObjectNumber());
}

}  // namespace
}  // namespace Lumivane::Test
