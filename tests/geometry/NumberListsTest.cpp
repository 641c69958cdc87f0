// The lists of numbers in regions, parts and faces follow one pattern.

#include "support/Documents.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Part.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/VFace.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using namespace Geometry;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <class R>
struct NumberOperations {
  using Record = R;
  const char* key;
  std::vector<int>* (R::*vector)() const;
  void (R::*setVector)(std::vector<int>*);
  int (R::*get)(int) const;
  void (R::*add)(int);
  void (R::*insert)(int, int);
  void (R::*removeAt)(int);
  void (R::*remove)(int);
  void (R::*clear)();
};

template <class Record>
struct PointsOf {
  static NumberOperations<Record> operations() {
    return {"Points",
            &Record::getPoints,
            &Record::setPoints,
            &Record::getPoint,
            &Record::addPoint,
            &Record::insertPoint,
            &Record::removePointByIndex,
            &Record::removePoint,
            &Record::clearPoints};
  }
};

template <class Record>
struct DockingEdgesOf {
  static NumberOperations<Record> operations() {
    return {"DockingEdges",
            &Record::getDockingEdges,
            &Record::setDockingEdges,
            &Record::getDockingEdge,
            &Record::addDockingEdge,
            &Record::insertDockingEdge,
            &Record::removeDockingEdgeByIndex,
            &Record::removeDockingEdge,
            &Record::clearDockingEdges};
  }
};

template <class Record>
struct RegionsOf {
  static NumberOperations<Record> operations() {
    return {"Regions",
            &Record::getRegions,
            &Record::setRegions,
            &Record::getRegion,
            &Record::addRegion,
            &Record::insertRegion,
            &Record::removeRegionByIndex,
            &Record::removeRegion,
            &Record::clear};
  }
};

template <class Case>
class NumberList : public ::testing::Test {
 protected:
  using Record = typename decltype(Case::operations())::Record;

  std::vector<int>* vector() { return (record.*operations.vector)(); }
  void fill(const std::vector<int>& numbers) {
    for (const int number : numbers) (record.*operations.add)(number);
  }
  std::string errorOfGet(int index) {
    try {
      (record.*operations.get)(index);
    } catch (const std::out_of_range& error) {
      return std::string("out_of_range:") + error.what();
    }
    return "none";
  }
  void read(const std::string& value) {
    readInto(record, std::string("{\"") + operations.key + "\":" + value + "}");
  }
  bool writes(const std::string& value) {
    return textOf(record).find(std::string("\"") + operations.key + "\": " + value) !=
           std::string::npos;
  }
  bool writesKey() { return writes(""); }

  const decltype(Case::operations()) operations = Case::operations();
  Record record;
};

using Cases = ::testing::Types<PointsOf<Region>, DockingEdgesOf<Region>, PointsOf<Region2d>,
                               DockingEdgesOf<Region2d>, RegionsOf<Part>, RegionsOf<Face2d>>;

// The key alone would be ambiguous: two records have points.
struct CaseNames {
  template <class Case>
  static std::string GetName(int index) {
    return Case::operations().key + std::to_string(index);
  }
};
TYPED_TEST_SUITE(NumberList, Cases, CaseNames);

TYPED_TEST(NumberList, IsThereAndEmptyAtFirst) {
  ASSERT_NE(nullptr, this->vector());
  EXPECT_THAT(*this->vector(), IsEmpty());
}

TYPED_TEST(NumberList, RemovingANumberTakesEveryOccurrence) {
  this->fill({7, 1, 7});
  (this->record.*this->operations.remove)(7);
  EXPECT_THAT(*this->vector(), ElementsAre(1));
  (this->record.*this->operations.remove)(99);
  EXPECT_THAT(*this->vector(), ElementsAre(1));
}

TYPED_TEST(NumberList, RemovingByIndexTakesOnePosition) {
  this->fill({7, 1, 7});
  (this->record.*this->operations.removeAt)(0);
  EXPECT_THAT(*this->vector(), ElementsAre(1, 7));
  EXPECT_THROW((this->record.*this->operations.removeAt)(2), std::out_of_range);
  EXPECT_THROW((this->record.*this->operations.removeAt)(-1), std::out_of_range);
  EXPECT_THAT(*this->vector(), ElementsAre(1, 7));
}

TYPED_TEST(NumberList, InsertAtTheCountAppendsAndPastItThrows) {
  (this->record.*this->operations.insert)(0, 5);
  (this->record.*this->operations.insert)(1, 6);
  (this->record.*this->operations.insert)(0, 4);
  EXPECT_THAT(*this->vector(), ElementsAre(4, 5, 6));
  EXPECT_THROW((this->record.*this->operations.insert)(4, 9), std::out_of_range);
  EXPECT_THROW((this->record.*this->operations.insert)(-1, 9), std::out_of_range);
  EXPECT_THAT(*this->vector(), ElementsAre(4, 5, 6));
}

TYPED_TEST(NumberList, GetFindsByPositionAndThrowsOutsideWithTheTailOfTheLiteral) {
  this->fill({8, 9});
  EXPECT_EQ(8, (this->record.*this->operations.get)(0));
  EXPECT_EQ(9, (this->record.*this->operations.get)(1));
  EXPECT_EQ("out_of_range:dex = ", this->errorOfGet(2));
  EXPECT_EQ("out_of_range:", this->errorOfGet(100));
  EXPECT_EQ("out_of_range:", this->errorOfGet(-1));
}

TYPED_TEST(NumberList, ClearKeepsTheVector) {
  this->fill({8, 9});
  const auto* before = this->vector();
  (this->record.*this->operations.clear)();
  EXPECT_EQ(before, this->vector());
  EXPECT_THAT(*this->vector(), IsEmpty());
}

TYPED_TEST(NumberList, SetStoresThePointerAndFreesNothing) {
  const std::unique_ptr<std::vector<int>> old(this->vector());
  auto* fresh = new std::vector<int>{3};
  (this->record.*this->operations.setVector)(fresh);
  EXPECT_EQ(fresh, this->vector());
  EXPECT_THAT(*old, IsEmpty());
}

TYPED_TEST(NumberList, NumbersAreNotChecked) {
  this->fill({-3, 0, 2147483647});
  EXPECT_THAT(*this->vector(), ElementsAre(-3, 0, 2147483647));
  EXPECT_TRUE(this->writes("[-3,0,2147483647]"));
}

TYPED_TEST(NumberList, IsLeftOutOfTheFileWhenEmptyOrMissing) {
  EXPECT_FALSE(this->writesKey());
  delete this->vector();
  (this->record.*this->operations.setVector)(nullptr);
  EXPECT_FALSE(this->writesKey());
}

TYPED_TEST(NumberList, ReadingAppendsNumbersAndSkipsTheRest) {
  this->fill({4});
  this->read("[1,\"x\",2,null,[3],2.9]");
  EXPECT_THAT(*this->vector(), ElementsAre(4, 1, 2, 2));
}

TYPED_TEST(NumberList, ReadingAnythingButAnArrayChangesNothing) {
  this->fill({4});
  this->read("5");
  this->read("{\"a\":1}");
  readInto(this->record, "[1,2]");
  this->record.deserialize(Jzon::invalid());
  EXPECT_THAT(*this->vector(), ElementsAre(4));
}

TYPED_TEST(NumberList, AMissingVectorCountsAsEmptyAndIsMadeAnew) {
  delete this->vector();
  (this->record.*this->operations.setVector)(nullptr);
  EXPECT_EQ("out_of_range:index = ", this->errorOfGet(0));
  EXPECT_THROW((this->record.*this->operations.removeAt)(0), std::out_of_range);
  (this->record.*this->operations.remove)(1);
  (this->record.*this->operations.clear)();
  EXPECT_EQ(nullptr, this->vector());
  this->read("[1,2]");
  ASSERT_NE(nullptr, this->vector());
  EXPECT_THAT(*this->vector(), ElementsAre(1, 2));
}

TYPED_TEST(NumberList, AddingToAMissingVectorMakesOne) {
  delete this->vector();
  (this->record.*this->operations.setVector)(nullptr);
  (this->record.*this->operations.add)(3);
  EXPECT_THAT(*this->vector(), ElementsAre(3));
}

}  // namespace
}  // namespace Lumivane::Test
