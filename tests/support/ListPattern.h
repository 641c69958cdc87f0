#pragma once

#include "support/Copies.h"
#include "support/Documents.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {

/// The operations of one of the model's lists, whose names differ by the word for its element.
template <class L, class E>
struct ListOperations {
  using List = L;
  using Element = E;
  std::vector<E*>* (L::*vector)();
  void (L::*setVector)(std::vector<E*>*);
  E* (L::*get)(int);
  void (L::*add)(E*);
  void (L::*insert)(int, E*);
  void (L::*removeAt)(int);
  void (L::*remove)(E*);
};

/// Names the tests of a list after it.
struct CaseNames {
  template <class Case>
  static std::string GetName(int) {
    return Case::Name;
  }
};

/// What every list of the model promises. A case is a class with a static `operations()` and the
/// list's `Name`.
template <class Case>
class ModelList : public ::testing::Test {
 protected:
  using Operations = decltype(Case::operations());
  using ListType = typename Operations::List;
  using ElementType = typename Operations::Element;

  std::vector<ElementType*>& items() { return *(list.*operations.vector)(); }
  ElementType* added() {
    auto* element = new ElementType();
    (list.*operations.add)(element);
    return element;
  }
  std::string errorOfGet(int index) {
    try {
      (list.*operations.get)(index);
    } catch (const std::out_of_range& error) {
      return std::string("out_of_range:") + error.what();
    }
    return "none";
  }

  const Operations operations = Case::operations();
  ListType list;
};

TYPED_TEST_SUITE_P(ModelList);

TYPED_TEST_P(ModelList, ANewListHasAnEmptyVector) {
  ASSERT_NE(nullptr, (this->list.*this->operations.vector)());
  EXPECT_TRUE(this->items().empty());
  EXPECT_EQ("[]", textOf(this->list));
}

TYPED_TEST_P(ModelList, AddAppendsAndGetFindsByPosition) {
  auto* first = this->added();
  auto* second = this->added();
  EXPECT_EQ(first, (this->list.*this->operations.get)(0));
  EXPECT_EQ(second, (this->list.*this->operations.get)(1));
}

TYPED_TEST_P(ModelList, GetThrowsOutsideThePositionsWithTheTailOfTheLiteral) {
  EXPECT_EQ("out_of_range:index = ", this->errorOfGet(0));
  this->added();
  EXPECT_EQ("none", this->errorOfGet(0));
  EXPECT_EQ("out_of_range:ndex = ", this->errorOfGet(1));
  EXPECT_EQ("out_of_range:", this->errorOfGet(8));
  EXPECT_EQ("out_of_range:", this->errorOfGet(9));
  EXPECT_EQ("out_of_range:", this->errorOfGet(-1));
}

TYPED_TEST_P(ModelList, InsertAtCountAppendsAndBeforeAnElementShiftsIt) {
  using Element = typename TestFixture::ElementType;
  auto* first = new Element();
  auto* last = new Element();
  (this->list.*this->operations.insert)(0, last);
  (this->list.*this->operations.insert)(0, first);
  auto* end = new Element();
  (this->list.*this->operations.insert)(2, end);
  EXPECT_EQ((std::vector<Element*>{first, last, end}), this->items());
}

TYPED_TEST_P(ModelList, InsertThrowsPastTheCountAndBelowZeroAndChangesNothing) {
  using Element = typename TestFixture::ElementType;
  this->added();
  const auto element = std::make_unique<Element>();
  EXPECT_THROW((this->list.*this->operations.insert)(2, element.get()), std::out_of_range);
  EXPECT_THROW((this->list.*this->operations.insert)(-1, element.get()), std::out_of_range);
  EXPECT_EQ(1u, this->items().size());
}

TYPED_TEST_P(ModelList, RemoveByPositionLeavesTheElementAlive) {
  using Element = typename TestFixture::ElementType;
  const std::unique_ptr<Element> element(this->added());
  auto* other = this->added();
  (this->list.*this->operations.removeAt)(0);
  EXPECT_EQ(std::vector<Element*>{other}, this->items());
  EXPECT_FALSE(textOf(*element).empty());
  EXPECT_THROW((this->list.*this->operations.removeAt)(1), std::out_of_range);
  EXPECT_THROW((this->list.*this->operations.removeAt)(-1), std::out_of_range);
}

TYPED_TEST_P(ModelList, RemoveByPointerTakesEveryOccurrenceOutAndLeavesTheElementAlive) {
  using Element = typename TestFixture::ElementType;
  const std::unique_ptr<Element> element(this->added());
  auto* other = this->added();
  (this->list.*this->operations.add)(element.get());
  (this->list.*this->operations.remove)(element.get());
  EXPECT_EQ(std::vector<Element*>{other}, this->items());
  EXPECT_FALSE(textOf(*element).empty());
  (this->list.*this->operations.remove)(element.get());
  EXPECT_EQ(1u, this->items().size());
}

TYPED_TEST_P(ModelList, ClearKeepsTheVectorItself) {
  this->added();
  auto* vector = (this->list.*this->operations.vector)();
  this->list.clear();
  this->list.clear();
  EXPECT_EQ(vector, (this->list.*this->operations.vector)());
  EXPECT_TRUE(vector->empty());
}

TYPED_TEST_P(ModelList, ACopySeesWhatIsAddedToTheSource) {
  using List = typename TestFixture::ListType;
  UndestroyedCopy<List> copy(this->list);
  auto* element = this->added();
  EXPECT_EQ(element, ((*copy).*this->operations.get)(0));
  // The target's vector is not freed by an assignment.
  List target;
  const std::unique_ptr<std::vector<typename TestFixture::ElementType*>> old(
      (target.*this->operations.vector)());
  target = this->list;
  EXPECT_EQ((this->list.*this->operations.vector)(), (target.*this->operations.vector)());
  EXPECT_TRUE(old->empty());
  (target.*this->operations.setVector)(nullptr);
}

TYPED_TEST_P(ModelList, SetVectorStoresThePointerAndFreesNothing) {
  using Element = typename TestFixture::ElementType;
  const std::unique_ptr<std::vector<Element*>> old((this->list.*this->operations.vector)());
  auto* fresh = new std::vector<Element*>{new Element()};
  (this->list.*this->operations.setVector)(fresh);
  EXPECT_EQ(fresh, (this->list.*this->operations.vector)());
  EXPECT_TRUE(old->empty());
}

TYPED_TEST_P(ModelList, AMissingVectorCountsAsEmptyAndReadingMakesANewOne) {
  const std::unique_ptr<std::vector<typename TestFixture::ElementType*>> old(
      (this->list.*this->operations.vector)());
  (this->list.*this->operations.setVector)(nullptr);
  EXPECT_EQ("[]", textOf(this->list));
  EXPECT_EQ("out_of_range:index = ", this->errorOfGet(0));
  this->list.clear();
  readInto(this->list, "[17]");
  EXPECT_EQ(1u, this->items().size());
}

TYPED_TEST_P(ModelList, NullElementsAreStoredAndWrittenAsNull) {
  (this->list.*this->operations.add)(nullptr);
  EXPECT_EQ(nullptr, (this->list.*this->operations.get)(0));
  EXPECT_EQ("[null]", textOf(this->list));
  this->list.clear();
  EXPECT_TRUE(this->items().empty());
}

TYPED_TEST_P(ModelList, ReadingAppendsOneElementForEachEntryWhateverItsShape) {
  typename TestFixture::ElementType plain;
  const std::string text = textOf(plain);
  this->added();
  EXPECT_EQ(&this->list, this->list.deserialize(nodeOf("[17, \"x\"]")));
  EXPECT_EQ(3u, this->items().size());
  EXPECT_EQ("[" + text + "," + text + "," + text + "]", textOf(this->list));
}

TYPED_TEST_P(ModelList, ReadingAnythingButAnArrayChangesNothing) {
  this->added();
  readInto(this->list, "{\"a\": 1}");
  this->list.deserialize(Jzon::invalid());
  this->list.deserialize(Jzon::Node(3));
  EXPECT_EQ(1u, this->items().size());
}

REGISTER_TYPED_TEST_SUITE_P(
    ModelList, ANewListHasAnEmptyVector, AddAppendsAndGetFindsByPosition,
    GetThrowsOutsideThePositionsWithTheTailOfTheLiteral,
    InsertAtCountAppendsAndBeforeAnElementShiftsIt,
    InsertThrowsPastTheCountAndBelowZeroAndChangesNothing, RemoveByPositionLeavesTheElementAlive,
    RemoveByPointerTakesEveryOccurrenceOutAndLeavesTheElementAlive, ClearKeepsTheVectorItself,
    ACopySeesWhatIsAddedToTheSource, SetVectorStoresThePointerAndFreesNothing,
    AMissingVectorCountsAsEmptyAndReadingMakesANewOne, NullElementsAreStoredAndWrittenAsNull,
    ReadingAppendsOneElementForEachEntryWhateverItsShape, ReadingAnythingButAnArrayChangesNothing);

}  // namespace Lumivane::Test
