#include "support/JsonText.h"
#include "support/Thrown.h"

#include <lumivane/base/Color.h>

#include <climits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

TEST(Color, DefaultIsOpaqueBlack) {
  Color color;
  EXPECT_EQ("[0,0,0,255]", written(color));
}

TEST(Color, GettersGiveTheirComponents) {
  const Color color(1, 2, 3, 4);
  EXPECT_EQ(1, color.getRed());
  EXPECT_EQ(2, color.getGreen());
  EXPECT_EQ(3, color.getBlue());
  EXPECT_EQ(4, color.getAlpha());
}

TEST(Color, ConstructorDoesNotCheck) {
  Color color(300, -1, 0, 255);
  EXPECT_EQ(300, color.getRed());
  EXPECT_EQ(-1, color.getGreen());
  EXPECT_EQ("[300,-1,0,255]", written(color));
}

TEST(Color, CopiesByValue) {
  Color source(1, 2, 3, 4);
  Color copy(source);
  Color assigned;
  assigned = source;
  source.setRed(9);
  EXPECT_EQ("[1,2,3,4]", written(copy));
  EXPECT_EQ("[1,2,3,4]", written(assigned));
}

struct Component {
  const char* name;
  void (Color::*set)(int);
  int (Color::*get)() const;
  const char* literal;
};

class ColorComponent : public ::testing::TestWithParam<Component> {};

INSTANTIATE_TEST_SUITE_P(
    All, ColorComponent,
    ::testing::Values(Component{"Red", &Color::setRed, &Color::getRed, "red component = "},
                      Component{"Green", &Color::setGreen, &Color::getGreen, "green component = "},
                      Component{"Blue", &Color::setBlue, &Color::getBlue, "blue component = "},
                      Component{"Alpha", &Color::setAlpha, &Color::getAlpha, "alpha component = "}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_P(ColorComponent, LimitsAreStored) {
  Color color;
  (color.*GetParam().set)(255);
  EXPECT_EQ(255, (color.*GetParam().get)());
  (color.*GetParam().set)(0);
  EXPECT_EQ(0, (color.*GetParam().get)());
}

TEST_P(ColorComponent, ValuesBeyondTheLimitsThrowAndChangeNothing) {
  Color color(7, 7, 7, 7);
  for (const int value : {256, -1, 300, INT_MAX, INT_MIN}) {
    // The text starts that many characters past the literal's start, which is past its end.
    EXPECT_EQ("", thrownText<std::out_of_range>([&] { (color.*GetParam().set)(value); })) << value;
    EXPECT_EQ("[7,7,7,7]", written(color));
  }
}

TEST(Color, ReadsAnArrayOfExactlyFour) {
  Color color;
  read(color, "[1,2,3,4]");
  EXPECT_EQ("[1,2,3,4]", written(color));
}

TEST(Color, OtherLengthsAndKindsChangeNothing) {
  for (const char* text :
       {"[9,9,9]", "[9,9,9,9,9]", "[]", "{}", "{\"a\":[9,9,9,9]}", "17", "null"}) {
    Color color(1, 2, 3, 4);
    read(color, text);
    EXPECT_EQ("[1,2,3,4]", written(color)) << text;
  }
}

TEST(Color, ElementsThatAreNoNumbersArePassedOver) {
  Color color(1, 2, 3, 4);
  read(color, "[10,\"20\",null,true]");
  EXPECT_EQ("[10,2,3,4]", written(color));
}

TEST(Color, FractionsAreCutOff) {
  Color color;
  read(color, "[1.9,0,0,255.9]");
  EXPECT_EQ("[1,0,0,255]", written(color));
}

TEST(Color, AFailingComponentKeepsTheComponentsBeforeIt) {
  Color color;
  const Jzon::Node node = jsonNode("[1,2,300,4]");
  EXPECT_EQ("", thrownText<std::out_of_range>([&] { color.deserialize(node); }));
  EXPECT_EQ("[1,2,0,255]", written(color));
}

TEST(Color, ANumberBeyondIntThrows) {
  Color color;
  const Jzon::Node node = jsonNode("[99999999999,2,3,4]");
  EXPECT_THROW(color.deserialize(node), std::out_of_range);
  EXPECT_EQ("[0,0,0,255]", written(color));
}

}  // namespace
}  // namespace Lumivane::Base
