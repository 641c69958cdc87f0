#include "kernel/ColorScale.h"
#include "support/JsonText.h"
#include "support/Vectors.h"

#include <lumivane/base/Scale.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
using Channels = std::array<int, 4>;

Channels channels(const Color& color) {
  return {color.getRed(), color.getGreen(), color.getBlue(), color.getAlpha()};
}

class ScaleFromZeroToTen : public ::testing::Test {
 protected:
  ScaleFromZeroToTen() {
    scale.addItem(0, 0, 0, 0);
    scale.addItem(10, 100, 100, 100);
  }
  Scale scale;
};

const VectorTests getColorVectors("getColor", [](const VectorCase& c) {
  checkedRun(c, [&] {
    Scale scale;
    for (const Json& item : c.in.at("items"))
      scale.addItem(toDouble(item[0]), item[1].get<int>(), item[2].get<int>(), item[3].get<int>());
    EXPECT_EQ(c.out.get<Channels>(), channels(scale.getColor(toDouble(c.in.at("value")))));
  });
});

TEST(Scale, DefaultHasNoNameAndNoItems) {
  Scale scale;
  EXPECT_EQ("", scale.getName());
  ASSERT_NE(nullptr, scale.getItems());
  EXPECT_TRUE(scale.getItems()->empty());
}

TEST(Scale, AnEmptyScaleGivesTransparentBlack) {
  Scale scale;
  EXPECT_EQ((Channels{0, 0, 0, 0}), channels(scale.getColor(1.0)));
}

TEST(Scale, AddedItemsAreOpaqueAndUnchecked) {
  Scale scale;
  scale.addItem(1.0, 300, -5, 3);
  EXPECT_EQ((Channels{300, -5, 3, 255}), channels(scale.getItems()->at(1.0)));
}

TEST(Scale, TheFirstColourOfAKeyStands) {
  Scale scale;
  scale.addItem(1.0, 1, 1, 1);
  scale.addItem(1.0, 2, 2, 2);
  scale.addItem(0.0, 3, 3, 3);
  scale.addItem(-0.0, 4, 4, 4);
  EXPECT_EQ(2u, scale.getItems()->size());
  EXPECT_EQ((Channels{1, 1, 1, 255}), channels(scale.getColor(1.0)));
  EXPECT_EQ((Channels{3, 3, 3, 255}), channels(scale.getColor(0.0)));
}

TEST_F(ScaleFromZeroToTen, ValuesBelowTheFirstStopTakeItsColour) {
  EXPECT_EQ((Channels{0, 0, 0, 255}), channels(scale.getColor(-1)));
  EXPECT_EQ((Channels{0, 0, 0, 255}), channels(scale.getColor(0)));
}

TEST_F(ScaleFromZeroToTen, TheLowerColourIsWeightedByTheRatioToTheUpperKey) {
  EXPECT_EQ((Channels{50, 50, 50, 255}), channels(scale.getColor(5)));
  EXPECT_EQ((Channels{1, 1, 1, 255}), channels(scale.getColor(9.9)));
}

TEST_F(ScaleFromZeroToTen, AtAndAboveTheLastStopItsColourIsGiven) {
  EXPECT_EQ((Channels{100, 100, 100, 255}), channels(scale.getColor(10)));
  EXPECT_EQ((Channels{100, 100, 100, 255}), channels(scale.getColor(11)));
}

TEST_F(ScaleFromZeroToTen, AValueThatIsNotANumberGivesTransparentBlack) {
  EXPECT_EQ((Channels{0, 0, 0, 0}), channels(scale.getColor(NotANumber)));
}

TEST_F(ScaleFromZeroToTen, InfiniteValuesLieBeyondTheStops) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ((Channels{100, 100, 100, 255}), channels(scale.getColor(infinity)));
  EXPECT_EQ((Channels{0, 0, 0, 255}), channels(scale.getColor(-infinity)));
}

TEST(Scale, TheLowerKeyDoesNotEnterTheResult) {
  Scale scale;
  scale.addItem(2, 10, 0, 0);
  scale.addItem(4, 20, 0, 0);
  EXPECT_EQ(12, scale.getColor(3).getRed());  // 12.5, truncated
}

TEST(Scale, NegativeKeysLeaveTheRangeOfAChannel) {
  Scale scale;
  scale.addItem(-4, 200, 0, 0);
  scale.addItem(-2, 0, 255, 0);
  EXPECT_EQ((Channels{300, -127, 0, 255}), channels(scale.getColor(-3)));
}

TEST(Scale, AnUpperKeyOfZeroGivesTheLowestIntInEachChannel) {
  Scale scale;
  scale.addItem(-4, 200, 7, 0);
  scale.addItem(0, 100, 7, 0);
  EXPECT_EQ((Channels{INT_MIN, INT_MIN, INT_MIN, INT_MIN}), channels(scale.getColor(-2)));
}

TEST(Scale, DifferencesOfChannelsWrap) {
  Scale scale;
  scale.addItem(1, INT_MAX, 0, 0);
  scale.addItem(4, -1, 0, 0);
  // INT_MAX + 1 wraps to INT_MIN; half of it, less 1.
  EXPECT_EQ(INT_MIN / 2 - 1, scale.getColor(2).getRed());
}

TEST(Scale, MixingMixesAlphaToo) {
  Scale scale;
  (*scale.getItems())[1] = Color(0, 0, 0, 0);
  (*scale.getItems())[4] = Color(0, 0, 0, 100);
  EXPECT_EQ(50, scale.getColor(2).getAlpha());
}

TEST(Scale, AKeyThatIsNotANumberIsNeverReached) {
  Scale scale;
  scale.addItem(NotANumber, 1, 2, 3);
  EXPECT_EQ((Channels{0, 0, 0, 0}), channels(scale.getColor(1.0)));
}

TEST(Scale, CopiesShareTheItemsAndKeepTheirOwnNames) {
  static Scale first;  // only one of two copies may be destroyed
  static Scale* second = nullptr;
  first.setName("first");
  second = new Scale(first);
  second->setName("second");
  first.addItem(1, 2, 3, 4);
  EXPECT_EQ("first", first.getName());
  EXPECT_EQ(first.getItems(), second->getItems());
  EXPECT_EQ((Channels{2, 3, 4, 255}), channels(second->getColor(1)));
}

TEST(Scale, WritesNameAndItemsAscendingWithoutAlpha) {
  Scale scale;
  EXPECT_EQ("{\"Name\":\"\",\"Items\":[]}", written(scale));
  scale.setName("S");
  scale.addItem(1, 255, 0, 0);
  scale.addItem(-0.5, 0, 0, 255);
  EXPECT_EQ("{\"Name\":\"S\",\"Items\":[[-0.5,0,0,255],[1,255,0,0]]}", written(scale));
}

TEST(Scale, ReadsNameAndItemsAsOpaque) {
  Scale scale;
  read(scale, R"({"Items":[[1,255,0,0],[0,0,0,300]],"Name":"S"})");
  EXPECT_EQ("{\"Name\":\"S\",\"Items\":[[0,0,0,300],[1,255,0,0]]}", written(scale));
  EXPECT_EQ(255, scale.getItems()->at(0).getAlpha());
}

TEST(Scale, ReadingAddsToTheItemsThereAndKeepsTheirColours) {
  Scale scale;
  scale.setName("old");
  scale.addItem(1, 1, 1, 1);
  read(scale, R"({"Items":[[1,2,2,2],[2,3,3,3],[2,4,4,4]]})");
  EXPECT_EQ("{\"Name\":\"old\",\"Items\":[[1,1,1,1],[2,3,3,3]]}", written(scale));
}

TEST(Scale, EntriesOfTheWrongShapeAreSkipped) {
  Scale scale;
  read(scale, R"({"Items":[[1,2,3],[1,2,3,4,5],["1",2,3,4],[1,2.5,3,4],[1,2,"3",4],[1,2,3,null],
                           {"a":1},7,[9,2.0,3,4]]})");
  EXPECT_EQ("{\"Name\":\"\",\"Items\":[[9,2,3,4]]}", written(scale));
}

TEST(Scale, ItemsOfAnotherKindAreIgnored) {
  Scale scale;
  read(scale, R"({"Items":{"a":[1,2,3,4]}})");
  EXPECT_TRUE(scale.getItems()->empty());
}

TEST(Scale, TheNameIsTheTextOfAnyValue) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"Name":null})", "null"}, {R"({"Name":1.50})", "1.50"}, {R"({"Name":true})", "true"},
      {R"({"Name":"x"})", "x"},     {R"({"Name":{}})", ""},       {R"({"Name":[1]})", ""}};
  for (const auto& [text, name] : cases) {
    Scale scale;
    scale.setName("old");
    read(scale, text);
    EXPECT_EQ(name, scale.getName()) << text;
  }
}

TEST(Scale, OtherKindsOfNodesChangeNothing) {
  Scale scale;
  scale.setName("old");
  for (const char* text : {"[]", "5", "null", "{}"}) read(scale, text);
  EXPECT_EQ("{\"Name\":\"old\",\"Items\":[]}", written(scale));
}

TEST(TruncatedOrLowest, TruncatesTowardZeroUpToTheLimitsOfInt) {
  EXPECT_EQ(2, Kernel::truncatedOrLowest(2.9));
  EXPECT_EQ(-2, Kernel::truncatedOrLowest(-2.9));
  EXPECT_EQ(INT_MAX, Kernel::truncatedOrLowest(2147483647.5));
  EXPECT_EQ(INT_MIN, Kernel::truncatedOrLowest(2147483648.0));
  EXPECT_EQ(INT_MIN, Kernel::truncatedOrLowest(-2147483648.5));
  EXPECT_EQ(INT_MIN, Kernel::truncatedOrLowest(-2147483649.0));
  EXPECT_EQ(INT_MIN, Kernel::truncatedOrLowest(1e300));
  EXPECT_EQ(INT_MIN, Kernel::truncatedOrLowest(NotANumber));
}

TEST(MixedChannelProperty, OrdinaryChannelsFollowTheFormulaInWideIntegers) {
  std::mt19937_64 random(20240611);
  std::uniform_int_distribution<int> channel(-1000, 1000);
  std::uniform_real_distribution<double> ratios(-3.0, 3.0);
  for (int i = 0; i < 10000; ++i) {
    const int lower = channel(random), upper = channel(random);
    const double ratio = ratios(random);
    const double wide = static_cast<double>(std::int64_t{lower} - upper) * ratio + upper;
    ASSERT_EQ(static_cast<std::int64_t>(std::trunc(wide)),
              Kernel::mixedChannel(lower, upper, ratio))
        << "case " << i;
  }
}

TEST(ScaleProperty, AddingFindsAKeyAsAWalkByEqualityDoes) {
  std::mt19937_64 random(20240612);
  std::uniform_int_distribution<int> key(-20, 20), channel(0, 255);
  Scale scale;
  std::vector<std::pair<double, int>> plain;
  for (int i = 0; i < 1000; ++i) {
    const double value = key(random) / 4.0;
    const int red = channel(random);
    scale.addItem(value, red, 0, 0);
    bool found = false;
    for (const auto& item : plain) found = found || item.first == value;
    if (!found) plain.emplace_back(value, red);
  }
  ASSERT_EQ(plain.size(), scale.getItems()->size());
  for (const auto& [value, red] : plain) EXPECT_EQ(red, scale.getItems()->at(value).getRed());
}

}  // namespace
}  // namespace Lumivane::Base
