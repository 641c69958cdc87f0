#include "support/JsonText.h"
#include "support/Thrown.h"

#include <lumivane/base/Brushes.h>

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

Brush* red(int value) { return new Brush(value, 0, 0, 255); }

TEST(Brushes, GetAtCountThrows) {
  Brushes list;
  list.addBrush(red(1));
  EXPECT_EQ(1, list.getBrush(0)->getRed());
  EXPECT_EQ("ndex = ", thrownText<std::out_of_range>([&] { list.getBrush(1); }));
  EXPECT_EQ("", thrownText<std::out_of_range>([&] { list.getBrush(-1); }));
}

TEST(Brushes, GetFromAnEmptyListShowsTheWholeText) {
  Brushes list;
  EXPECT_EQ("index = ", thrownText<std::out_of_range>([&] { list.getBrush(0); }));
}

TEST(Brushes, InsertAtCountAppends) {
  Brushes list;
  list.insertBrush(0, red(2));
  list.insertBrush(1, red(3));
  list.insertBrush(0, red(1));
  EXPECT_EQ("[[1,0,0,255],[2,0,0,255],[3,0,0,255]]", written(list));
}

TEST(Brushes, InsertBeyondTheCountThrowsAndTakesNothingOver) {
  Brushes list;
  const auto brush = std::make_unique<Brush>();
  EXPECT_EQ("ndex = ", thrownText<std::out_of_range>([&] { list.insertBrush(1, brush.get()); }));
  EXPECT_THROW(list.insertBrush(-1, brush.get()), std::out_of_range);
  EXPECT_TRUE(list.getBrushes()->empty());
}

TEST(Brushes, RemoveByPositionLeavesTheElementAlive) {
  Brushes list;
  list.addBrush(red(1));
  list.addBrush(red(2));
  const std::unique_ptr<Brush> removed(list.getBrush(0));
  list.removeBrush(0);
  EXPECT_EQ("[[2,0,0,255]]", written(list));
  EXPECT_EQ(1, removed->getRed());
  EXPECT_THROW(list.removeBrush(1), std::out_of_range);
  EXPECT_THROW(list.removeBrush(-1), std::out_of_range);
}

TEST(Brushes, RemoveByPointerTakesEveryOccurrenceAndLeavesItAlive) {
  Brushes list;
  const std::unique_ptr<Brush> brush(red(1));
  list.addBrush(brush.get());
  list.addBrush(red(2));
  list.addBrush(brush.get());
  list.removeBrush(brush.get());
  EXPECT_EQ("[[2,0,0,255]]", written(list));
  EXPECT_EQ(1, brush->getRed());
  list.removeBrush(brush.get());
  EXPECT_EQ("[[2,0,0,255]]", written(list));
}

TEST(Brushes, NullAndDuplicatesAreStored) {
  Brushes list;
  auto* brush = red(1);
  list.addBrush(nullptr);
  list.addBrush(brush);
  list.addBrush(brush);
  EXPECT_EQ(3u, list.getBrushes()->size());
  EXPECT_EQ(nullptr, list.getBrush(0));
}

TEST(Brushes, AnAdditionToOneCopyIsSeenThroughTheOther) {
  Brushes first;
  auto* second = new Brushes(first);
  first.addBrush(red(1));
  EXPECT_EQ(first.getBrushes(), second->getBrushes());
  EXPECT_EQ(1, second->getBrush(0)->getRed());
  second->setBrushes(nullptr);  // only one of the two may free what they share
  delete second;
}

TEST(Brushes, ClearingAnEmptyListLeavesAnEmptyVector) {
  Brushes list;
  list.clear();
  ASSERT_NE(nullptr, list.getBrushes());
  EXPECT_TRUE(list.getBrushes()->empty());
}

TEST(Brushes, SetterStoresThePointerAndFreesNothing) {
  Brushes list;
  list.addBrush(red(1));
  const std::unique_ptr<std::vector<Brush*>> old(list.getBrushes());
  auto* vector = new std::vector<Brush*>{red(2)};
  list.setBrushes(vector);
  EXPECT_EQ(vector, list.getBrushes());
  EXPECT_EQ(1, old->at(0)->getRed());
  delete old->at(0);
}

TEST(Brushes, AnEmptyListIsAnEmptyArray) {
  Brushes list;
  EXPECT_EQ("[]", written(list));
}

TEST(Brushes, AnEntryOfTheWrongShapeIsADefaultBrush) {
  Brushes list;
  read(list, "[[1,2,3,4], 17]");
  EXPECT_EQ("[[1,2,3,4],[0,0,0,255]]", written(list));
}

TEST(Brushes, AComponentOutOfRangeThrowsAndKeepsTheBrushesBefore) {
  Brushes list;
  const Jzon::Node node = jsonNode("[[1,2,3,4],[1,2,3,300],[5,6,7,8]]");
  EXPECT_THROW(list.deserialize(node), std::out_of_range);
  EXPECT_EQ("[[1,2,3,4]]", written(list));
}

}  // namespace
}  // namespace Lumivane::Base
