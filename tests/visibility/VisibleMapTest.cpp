#include <lumivane/visibility/VisibleMap.h>

#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

TEST(VisibleMap, RingsOfACellAreItsOuterOneThenItsHoles) {
  VisibleMap map;
  map.cells.resize(2);
  map.cells[0].ringCount = 1;
  map.cells[1].firstRing = 1;
  map.cells[1].ringCount = 2;
  map.ringOffsets = {0, 3, 7, 10};
  map.ringVertices = {0, 1, 2, 3, 4, 5, 6, 0, 2, 1};
  EXPECT_EQ((std::vector<std::vector<int>>{{0, 1, 2}}), map.rings(0));
  EXPECT_EQ((std::vector<std::vector<int>>{{3, 4, 5, 6}, {0, 2, 1}}), map.rings(1));
  EXPECT_THROW(map.rings(2), std::out_of_range);
}

TEST(VisibleMap, ACellThatIsTheWholeSphereHasNoRing) {
  VisibleMap map;
  map.cells.resize(1);
  EXPECT_TRUE(map.rings(0).empty());
}

TEST(VisibleMap, TheFieldIsHalfTheSphereOrAllOfIt) {
  VisibleMap map;
  EXPECT_DOUBLE_EQ(6.283185307179586, map.fieldSolidAngle());
  map.field = Field::Sphere;
  EXPECT_DOUBLE_EQ(12.566370614359172, map.fieldSolidAngle());
}

}  // namespace
}  // namespace Lumivane::Visibility
