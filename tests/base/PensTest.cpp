#include "support/JsonText.h"

#include <lumivane/base/Pens.h>

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

Pen* wide(double width) { return new Pen(0, 0, 0, 255, width); }

TEST(Pens, FollowTheListPattern) {
  Pens list;
  list.addPen(wide(2));
  list.insertPen(0, wide(1));
  list.insertPen(2, wide(3));
  EXPECT_EQ("[[0,0,0,255,1],[0,0,0,255,2],[0,0,0,255,3]]", written(list));

  const std::unique_ptr<Pen> first(list.getPen(0)), second(list.getPen(1));
  list.removePen(0);
  list.removePen(second.get());
  EXPECT_EQ("[[0,0,0,255,3]]", written(list));
  list.clear();
  EXPECT_TRUE(list.getPens()->empty());
}

TEST(Pens, BadPositionsThrow) {
  Pens list;
  const auto pen = std::make_unique<Pen>();
  EXPECT_THROW(list.getPen(0), std::out_of_range);
  EXPECT_THROW(list.removePen(0), std::out_of_range);
  EXPECT_THROW(list.insertPen(1, pen.get()), std::out_of_range);
}

TEST(Pens, SetterStoresThePointer) {
  Pens list;
  const std::unique_ptr<std::vector<Pen*>> old(list.getPens());
  auto* vector = new std::vector<Pen*>();
  list.setPens(vector);
  EXPECT_EQ(vector, list.getPens());
  EXPECT_TRUE(old->empty());
}

TEST(Pens, AnEntryOfTheWrongLengthIsADefaultPen) {
  Pens list;
  read(list, "[[1,2,3,4,5],[1,2,3,4]]");
  EXPECT_EQ("[[1,2,3,4,5],[0,0,0,255,1]]", written(list));
}

TEST(Pens, ANegativeWidthThrowsAndKeepsThePensBefore) {
  Pens list;
  const Jzon::Node node = jsonNode("[[1,2,3,4,5],[1,2,3,4,-5]]");
  EXPECT_THROW(list.deserialize(node), std::runtime_error);
  EXPECT_EQ("[[1,2,3,4,5]]", written(list));
}

}  // namespace
}  // namespace Lumivane::Base
