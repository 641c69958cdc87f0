#include <lumivane/visibility/MapShares.h>

#include <cstddef>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

constexpr double Pi = 3.141592653589793;

VisibleMap::Cell cell(Label label, double solidAngle, double viewFactor, double least,
                      double greatest) {
  VisibleMap::Cell result;
  result.label = label;
  result.solidAngle = solidAngle;
  result.viewFactor = viewFactor;
  result.minDistance = least;
  result.maxDistance = greatest;
  return result;
}

// Three objects, the second unseen; the first with two faces and a region of none.
VisibleMap handMade() {
  auto names = std::make_shared<VisibleMap::Names>();
  names->objectIds = {"house", "shed", "tree"};
  names->classNames = {"roof", "wall", "plant", "water"};
  names->regions = {{1, 1, 1}, {1, 1, 2}, {1, 2, 3}, {1, -1, 4}, {2, 1, 1}, {3, 1, 1}, {3, 1, 2}};
  names->classes = {0, 1, 1, -1, 0, 2, 2};
  VisibleMap map;
  map.names = names;
  map.cells = {cell({1, 1, 1}, 0.5, 0.1, 3.0, 4.0),   cell({1, 1, 1}, 0.25, 0.05, 2.0, 3.0),
               cell({1, 2, 3}, 1.0, 0.2, 5.0, 9.0),   cell({1, -1, 4}, 0.125, 0.01, 6.0, 7.0),
               cell({3, 1, 2}, 0.5, 0.04, 8.0, 20.0), cell({0, 0, 0}, 1.0, 0.3, 0.0, 0.0),
               cell({0, 0, 0}, 2.0, 0.3, 0.0, 0.0)};
  map.alone = {2.5, 0.0, 0.25};
  return map;
}

void expectShare(double solidAngle, double viewFactor, double least, double greatest,
                 const ViewShare& share) {
  EXPECT_DOUBLE_EQ(solidAngle, share.solidAngle);
  EXPECT_DOUBLE_EQ(viewFactor, share.viewFactor);
  EXPECT_DOUBLE_EQ(least, share.minDistance);
  EXPECT_DOUBLE_EQ(greatest, share.maxDistance);
}

TEST(MapShares, ListAllObjectsInTheScenesOrder) {
  const MapShares shares(handMade());
  ASSERT_EQ(3U, shares.objects().size());
  EXPECT_EQ((Label{1, 0, 0}), shares.objects()[0].label);
  EXPECT_EQ((Label{2, 0, 0}), shares.objects()[1].label);
  expectShare(1.875, 0.36, 2.0, 9.0, shares.objects()[0].share);
  expectShare(0.0, 0.0, 0.0, 0.0, shares.objects()[1].share);
  expectShare(0.5, 0.04, 8.0, 20.0, shares.objects()[2].share);
}

TEST(MapShares, ListSeenObjectsAloneWhereThoseAreAskedFor) {
  const VisibleMap map = handMade();
  const MapShares all(map);
  const MapShares seen(map, MapShares::Objects::Seen);
  ASSERT_EQ(2U, seen.objects().size());
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}}) {
    const MapShares::Row& expected = all.objects()[2 * i];
    EXPECT_EQ(expected.label, seen.objects()[i].label);
    EXPECT_EQ(expected.classNumber, seen.objects()[i].classNumber);
    expectShare(expected.share.solidAngle, expected.share.viewFactor, expected.share.minDistance,
                expected.share.maxDistance, seen.objects()[i].share);
  }
  EXPECT_EQ((std::vector<double>{0.75, 1.0}), seen.visibleFractions());
  EXPECT_EQ(all.faces().size(), seen.faces().size());
  EXPECT_EQ(all.sky().viewFactor, seen.sky().viewFactor);
}

// As a map made by hand may; the second object has regions, but no name.
TEST(MapShares, ListObjectsWithoutNamesThatAreSeenInOrder) {
  auto names = std::make_shared<VisibleMap::Names>();
  names->objectIds = {"house"};
  names->classNames = {"roof"};
  names->regions = {{1, 1, 1}, {2, 1, 1}, {2, 1, 2}};
  names->classes = {-1, 0, 0};
  VisibleMap map;
  map.names = names;
  map.cells = {cell({4, 1, 1}, 0.5, 0.1, 3.0, 4.0), cell({2, 1, 2}, 0.25, 0.05, 2.0, 3.0),
               cell({-1, 1, 1}, 0.125, 0.05, 2.0, 3.0)};
  const MapShares shares(map);
  ASSERT_EQ(4U, shares.objects().size());
  const int numbers[] = {-1, 1, 2, 4};
  const int classes[] = {-1, -1, 0, -1};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(numbers[i], shares.objects()[i].label.object);
    EXPECT_EQ(classes[i], shares.objects()[i].classNumber);
  }
  EXPECT_EQ(0.25, shares.objects()[2].share.solidAngle);
}

TEST(MapShares, ListSeenFacesAndRegionsOnly) {
  const MapShares shares(handMade());
  ASSERT_EQ(4U, shares.faces().size());
  EXPECT_EQ((Label{1, -1, 0}), shares.faces()[0].label);
  EXPECT_EQ((Label{1, 1, 0}), shares.faces()[1].label);
  EXPECT_EQ((Label{1, 2, 0}), shares.faces()[2].label);
  EXPECT_EQ((Label{3, 1, 0}), shares.faces()[3].label);
  expectShare(0.75, 0.15, 2.0, 4.0, shares.faces()[1].share);
  ASSERT_EQ(4U, shares.regions().size());
  EXPECT_EQ((Label{1, 1, 1}), shares.regions()[0].label);
  EXPECT_EQ((Label{1, 2, 3}), shares.regions()[1].label);
  EXPECT_EQ((Label{1, -1, 4}), shares.regions()[2].label);
  EXPECT_EQ((Label{3, 1, 2}), shares.regions()[3].label);
  expectShare(0.75, 0.15, 2.0, 4.0, shares.regions()[0].share);
}

TEST(MapShares, AClassBelongsToARowIfAllItsRegionsHaveIt) {
  const MapShares shares(handMade());
  EXPECT_EQ(-1, shares.objects()[0].classNumber);
  EXPECT_EQ(0, shares.objects()[1].classNumber);
  EXPECT_EQ(2, shares.objects()[2].classNumber);
  EXPECT_EQ(-1, shares.faces()[1].classNumber);  // roof and wall, though only the roof is seen
  EXPECT_EQ(1, shares.faces()[2].classNumber);
  EXPECT_EQ(0, shares.regions()[0].classNumber);
  EXPECT_EQ(-1, shares.regions()[2].classNumber);
}

TEST(MapShares, ListAllClassesThenWhatHasNone) {
  const MapShares shares(handMade());
  ASSERT_EQ(5U, shares.classes().size());
  expectShare(0.75, 0.15, 2.0, 4.0, shares.classes()[0].share);
  expectShare(1.0, 0.2, 5.0, 9.0, shares.classes()[1].share);
  expectShare(0.5, 0.04, 8.0, 20.0, shares.classes()[2].share);
  expectShare(0.0, 0.0, 0.0, 0.0, shares.classes()[3].share);
  EXPECT_EQ(-1, shares.classes()[4].classNumber);
  expectShare(0.125, 0.01, 6.0, 7.0, shares.classes()[4].share);
}

TEST(MapShares, TheSkyIsASumAndTheWholeIsTheField) {
  VisibleMap map = handMade();
  const MapShares shares(map);
  expectShare(3.0, 0.6, 0.0, 0.0, shares.sky());
  expectShare(2.0 * Pi, 1.0, 2.0, 20.0, shares.whole());
  map.field = Field::Sphere;
  EXPECT_DOUBLE_EQ(4.0 * Pi, MapShares(map).whole().solidAngle);
  EXPECT_EQ(0.0, MapShares(map).whole().viewFactor);
}

TEST(MapShares, TheVisibleFractionIsOfWhatAnObjectTakesAlone) {
  const MapShares shares(handMade());
  EXPECT_EQ((std::vector<double>{0.75, 0.0, 1.0}), shares.visibleFractions());
  VisibleMap unasked = handMade();
  unasked.alone.clear();
  EXPECT_TRUE(MapShares(unasked).visibleFractions().empty());
}

TEST(MapShares, AShareKnowsItsAreaAndItsPartOfTheHemisphere) {
  const ViewShare share{Pi, 0.25, 1.0, 2.0};
  EXPECT_DOUBLE_EQ(0.25 * Pi, share.area());
  EXPECT_DOUBLE_EQ(0.5, share.hemisphereShare());
}

TEST(MapShares, NoViewFactorIsAboveOneByRounding) {
  Visibility::VisibleMap map;
  map.cells.resize(2);
  map.cells[0].label = {1, 1, 1};
  for (Visibility::VisibleMap::Cell& cell : map.cells) {
    cell.solidAngle = map.fieldSolidAngle();
    cell.viewFactor = 1.0000000000000002;
  }
  const Visibility::MapShares shares(map);
  EXPECT_EQ(1.0, shares.sky().viewFactor);
  EXPECT_EQ(1.0, shares.regions().at(0).share.viewFactor);
}

TEST(MapShares, AMapWithoutNamesHasTheObjectsThatAreSeen) {
  VisibleMap map = handMade();
  map.names = nullptr;
  const MapShares shares(map);
  ASSERT_EQ(2U, shares.objects().size());
  EXPECT_EQ(3, shares.objects()[1].label.object);
  ASSERT_EQ(1U, shares.classes().size());
  EXPECT_DOUBLE_EQ(2.375, shares.classes()[0].share.solidAngle);
}

TEST(MapShares, SumsDoNotDependOnTheOrderOfCells) {
  VisibleMap map;
  for (int i = 0; i < 10000; ++i)
    map.cells.push_back(cell({1, 1, 1}, i % 2 == 0 ? 1.0 : 1e-17 * i, 0.0, 1.0, 1.0));
  const double forward = MapShares(map).objects()[0].share.solidAngle;
  map.cells = std::vector<VisibleMap::Cell>(map.cells.rbegin(), map.cells.rend());
  EXPECT_EQ(forward, MapShares(map).objects()[0].share.solidAngle);
  EXPECT_GT(forward, 5000.0);
}

}  // namespace
}  // namespace Lumivane::Visibility
