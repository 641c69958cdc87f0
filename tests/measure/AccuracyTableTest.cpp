// The figures of docs/view-factors.md are those of the library as it is.

#include "measure/AccuracyTable.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

constexpr double UsualDistance = 1e-3;
constexpr double FineDistance = 1e-7;

std::string page() {
  std::ifstream file(LUMIVANE_DOCS "/view-factors.md");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

AccuracyTable smallTable() {
  return {UsualDistance, {{"a", 0.25, {-2.7e-4, 1e-5, 0, 0, 0}}, {"b", 0.5, {1, 2, 3, 4, 5}}}};
}

TEST(AccuracyTable, ThePageTellsTheErrorsThatShotsHave) {
  for (const double distance : {UsualDistance, FineDistance}) {
    const AccuracyTable measured = measuredAccuracy(distance);
    ASSERT_EQ(12u, measured.rows.size());
    EXPECT_EQ("", differences(tableInPage(page(), distance), measured)) << markdown(measured);
  }
}

TEST(AccuracyTable, AtTheUsualLengthEveryErrorIsBelowOneInAThousand) {
  for (const double distance : {UsualDistance, FineDistance})
    for (const AccuracyRow& row : tableInPage(page(), distance).rows)
      EXPECT_LT(std::abs(row.errors.at(2)), 1e-3) << row.scene;
}

// What stands in for a disc or an endless strip is off by this much itself; single precision adds.
TEST(AccuracyTable, WithPointsKeptApartErrorsFallWithTheLengthDownToThoseOfThePolygons) {
  constexpr double OfPolygons = 3e-5;
  for (const AccuracyRow& row : tableInPage(page(), FineDistance).rows)
    for (size_t i = 1; i < row.errors.size(); ++i) {
      const double now = std::abs(row.errors[i]);
      EXPECT_TRUE(now < std::abs(row.errors[i - 1]) || now < OfPolygons) << row.scene << " " << i;
    }
}

TEST(AccuracyTable, ATableIsReadBackAsItWasPrinted) {
  const AccuracyTable table = smallTable();
  EXPECT_EQ(
      "", differences(tableInPage("before\n" + markdown(table) + "\nafter", UsualDistance), table));
}

TEST(AccuracyTable, AnAlteredFigureRowOrNameIsADifference) {
  AccuracyTable altered = smallTable();
  altered.rows[0].errors[0] = -2.9e-4;
  EXPECT_NE("", differences(altered, smallTable()));
  altered = smallTable();
  altered.rows[1].viewFactor = 0.500000002;
  EXPECT_NE("", differences(altered, smallTable()));
  altered = smallTable();
  altered.rows[1].scene = "c";
  EXPECT_NE("", differences(altered, smallTable()));
  altered = smallTable();
  altered.rows.pop_back();
  EXPECT_NE("", differences(altered, smallTable()));
}

TEST(AccuracyTable, APageWithoutTheTableIsRefused) {
  EXPECT_THROW(tableInPage("nothing", UsualDistance), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Test
