#include "support/JsonText.h"

#include <lumivane/base/Properties.h>

#include <memory>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;
using Vector = std::vector<Property*>;

class PropertiesTest : public ::testing::Test {
 protected:
  PropertiesTest() {
    for (Property* property : {a, b, c}) list.addProperty(property);
  }
  // The list may have let go of them, or hold one twice: it owns nothing in these tests.
  ~PropertiesTest() override {
    list.getProperties()->clear();
    for (Property* property : {a, b, c}) delete property;
  }

  Property* a = new Property(3, "A");
  Property* b = new Property(5, "B");
  Property* c = new Property(9, "C");
  Properties list;
};

TEST_F(PropertiesTest, FindsByNumberWhereverItStands) {
  EXPECT_EQ(b, list.getProperty(5));
  EXPECT_EQ(a, list.getProperty(3));
  EXPECT_EQ(nullptr, list.getProperty(0));  // a number, never a position
  EXPECT_EQ(nullptr, list.getProperty(1));
}

TEST_F(PropertiesTest, FindsTheFirstOfEqualNumbersAndNames) {
  c->setNumber(5);
  c->setName("B");
  EXPECT_EQ(b, list.getProperty(5));
  EXPECT_EQ(b, list.getProperty("B"));
}

TEST_F(PropertiesTest, FindsByNameByteForByte) {
  EXPECT_EQ(c, list.getProperty("C"));
  EXPECT_EQ(nullptr, list.getProperty("c"));
  EXPECT_EQ(nullptr, list.getProperty("C "));
  EXPECT_EQ(nullptr, list.getProperty(std::string("C\0", 2)));
  EXPECT_EQ(nullptr, list.getProperty(""));
}

TEST_F(PropertiesTest, AddingAPointerTwiceLeavesOneEntry) {
  list.addProperty(b);
  EXPECT_EQ((Vector{a, b, c}), *list.getProperties());
}

TEST_F(PropertiesTest, AddingAnEqualPropertyIsNotAddingItTwice) {
  const auto twin = std::make_unique<Property>(5, "B");
  list.addProperty(twin.get());
  EXPECT_EQ((Vector{a, b, c, twin.get()}), *list.getProperties());
}

TEST_F(PropertiesTest, AddingNullIsIgnored) {
  list.addProperty(nullptr);
  EXPECT_EQ((Vector{a, b, c}), *list.getProperties());
}

TEST_F(PropertiesTest, RemovingAMiddleElementKeepsTheLength) {
  list.removeProperty(b);
  EXPECT_EQ((Vector{a, c, c}), *list.getProperties());
}

TEST_F(PropertiesTest, RemovingTheFirstMovesAllOthersDown) {
  list.removeProperty(a);
  EXPECT_EQ((Vector{b, c, c}), *list.getProperties());
}

TEST_F(PropertiesTest, TheLastElementCannotBeRemoved) {
  list.removeProperty(c);
  EXPECT_EQ((Vector{a, b, c}), *list.getProperties());
  list.removeProperty(9);
  EXPECT_EQ((Vector{a, b, c}), *list.getProperties());
}

TEST_F(PropertiesTest, RemovingByNumberRemovesTheFirstOfThatNumber) {
  list.removeProperty(5);
  EXPECT_EQ((Vector{a, c, c}), *list.getProperties());
  list.removeProperty(77);
  EXPECT_EQ((Vector{a, c, c}), *list.getProperties());
}

TEST_F(PropertiesTest, RemovingNullOrAnAbsentOneChangesNothing) {
  Property absent(5, "B");
  list.removeProperty(&absent);
  list.removeProperty(nullptr);
  EXPECT_EQ((Vector{a, b, c}), *list.getProperties());
}

TEST_F(PropertiesTest, RemovingOneThatStandsTwicePassesOverItsSecondPlace) {
  *list.getProperties() = {a, b, a, c};
  list.removeProperty(a);
  EXPECT_EQ((Vector{b, c, a, c}), *list.getProperties());
}

TEST_F(PropertiesTest, ExistsComparesPointers) {
  Property twin(5, "B");
  EXPECT_TRUE(list.exists(b));
  EXPECT_FALSE(list.exists(&twin));
  EXPECT_FALSE(list.exists(nullptr));
}

TEST_F(PropertiesTest, LookUpsSkipNullElements) {
  *list.getProperties() = {nullptr, a, nullptr, b};
  EXPECT_EQ(b, list.getProperty(5));
  EXPECT_EQ(b, list.getProperty("B"));
  EXPECT_FALSE(list.exists(nullptr));
  EXPECT_EQ("[null,[3,\"A\"],null,[5,\"B\"]]", written(list));
}

TEST(Properties, DestroyingAndClearingDeleteAPropertyThatStandsTwiceOnce) {
  for (const bool clearFirst : {false, true}) {
    Properties list;
    auto* removed = new Property(2, "B");
    list.addProperty(new Property(1, "A"));
    list.addProperty(removed);
    list.addProperty(new Property(3, "C"));
    list.removeProperty(removed);
    delete removed;
    if (clearFirst) list.clear();
    EXPECT_EQ(clearFirst ? 0u : 3u, list.getProperties()->size());
  }
}

TEST(Properties, SetterDeletesTheOldVectorButNotItsElements) {
  Properties list;
  const auto element = std::make_unique<Property>(1, "A");
  list.addProperty(element.get());
  auto* vector = new Vector();
  list.setProperties(vector);  // the old vector would leak otherwise
  EXPECT_EQ(vector, list.getProperties());
  EXPECT_EQ("A", element->getName());
}

TEST(Properties, SettingTheHeldVectorChangesNothing) {
  Properties list;
  list.addProperty(new Property(1, "A"));
  list.setProperties(list.getProperties());
  EXPECT_EQ("[[1,\"A\"]]", written(list));
}

TEST(Properties, NullVectorCountsAsEmpty) {
  Properties list;
  list.setProperties(nullptr);
  list.clear();
  Property property(1, "A");
  EXPECT_EQ(nullptr, list.getProperties());
  EXPECT_EQ(nullptr, list.getProperty(1));
  EXPECT_EQ(nullptr, list.getProperty("A"));
  EXPECT_FALSE(list.exists(&property));
  list.removeProperty(&property);
  list.removeProperty(1);
  EXPECT_EQ("[]", written(list));
  list.setProperties(nullptr);
  list.addProperty(new Property(2, "B"));
  EXPECT_EQ("[[2,\"B\"]]", written(list));
}

TEST(Properties, CopiesShareTheVector) {
  // Only one of two copies may be destroyed: this one lives on as long as the program.
  static Properties* second = nullptr;
  static Properties first;
  second = new Properties(first);
  first.addProperty(new Property(1, "A"));
  EXPECT_EQ(first.getProperties(), second->getProperties());
  EXPECT_EQ("[[1,\"A\"]]", written(*second));
}

TEST(Properties, ReadingAppendsOnePropertyForEachEntry) {
  Properties list;
  read(list, "[[1,\"Height\"],17,[1,\"Height\"]]");
  EXPECT_EQ("[[1,\"Height\"],[-1,\"\"],[1,\"Height\"]]", written(list));
}

}  // namespace
}  // namespace Lumivane::Base
