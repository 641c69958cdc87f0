#include "support/JsonText.h"

#include <lumivane/base/Property.h>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

TEST(Property, DefaultHasNumberMinusOneAndNoName) {
  Property property;
  EXPECT_EQ(-1, property.getNumber());
  EXPECT_EQ("", property.getName());
  EXPECT_EQ("[-1,\"\"]", written(property));
}

TEST(Property, KeepsWhatItIsGiven) {
  Property property(5, "Height");
  EXPECT_EQ(5, property.getNumber());
  EXPECT_EQ("Height", property.getName());
  property.setNumber(6);
  property.setName("Width");
  EXPECT_EQ("[6,\"Width\"]", written(property));
}

TEST(Property, CopiesByValue) {
  Property source(5, "Height");
  Property copy(source);
  Property assigned;
  assigned = source;
  source.setName("other");
  source.setNumber(1);
  EXPECT_EQ("[5,\"Height\"]", written(copy));
  EXPECT_EQ("[5,\"Height\"]", written(assigned));
}

TEST(Property, ReadsNumberAndName) {
  Property property;
  read(property, "[7,\"Area\"]");
  EXPECT_EQ("[7,\"Area\"]", written(property));
}

TEST(Property, OtherLengthsAndKindsChangeNothing) {
  for (const char* text : {"[7]", "[7,\"a\",1]", "[]", "{}", "7", "\"a\""}) {
    Property property(1, "x");
    read(property, text);
    EXPECT_EQ("[1,\"x\"]", written(property)) << text;
  }
}

TEST(Property, ReadsEachElementByItselfIfItIsOfItsKind) {
  Property property(1, "x");
  read(property, "[2.5,\"Area\"]");
  EXPECT_EQ("[1,\"Area\"]", written(property));
  read(property, "[3,null]");
  EXPECT_EQ("[3,\"Area\"]", written(property));
  read(property, "[\"4\",5]");
  EXPECT_EQ("[3,\"Area\"]", written(property));
}

TEST(Property, AWholeNumberWithAFractionPartCountsAsInteger) {
  Property property;
  read(property, "[4.0,\"a\"]");
  EXPECT_EQ(4, property.getNumber());
}

}  // namespace
}  // namespace Lumivane::Base
