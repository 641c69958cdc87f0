// The list pattern on an element of its own, which counts what is alive.

#include "base/ElementList.ipp"
#include "support/JsonText.h"

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

class Counted : public BaseLibClass {
 public:
  explicit Counted(int initial = 0) : value(initial) { ++alive; }
  ~Counted() { --alive; }

  Jzon::Node serialize() override { return Jzon::Node(value); }
  BaseLibClass* deserialize(Jzon::Node node) override {
    if (node.isString()) throw std::runtime_error("no element");
    value = node.toInt(value);
    return this;
  }

  static int alive;
  int value;
};
int Counted::alive = 0;

// An element class that may stand for a derived one.
class Plain : public BaseLibClass {};
class Derived : public Plain {
 public:
  explicit Derived(int& counter) : destroyed(counter) {}
  ~Derived() { ++destroyed; }

 private:
  int& destroyed;
};

}  // namespace

template <>
struct ElementTraits<Plain> {
  static Plain* readElement(Plain* element, const Jzon::Node&) { return element; }
  static void destroyElement(Plain* element) {
    if (auto* derived = dynamic_cast<Derived*>(element))
      delete derived;
    else
      delete element;
  }
};

namespace {

template <class Element>
class OpenList : public ElementList<Element> {
 public:
  using ElementList<Element>::append;
  using ElementList<Element>::at;
  using ElementList<Element>::erase;
  using ElementList<Element>::insert;
  using ElementList<Element>::items;
};
using CountedList = OpenList<Counted>;

class ElementListTest : public ::testing::Test {
 protected:
  void SetUp() override { Counted::alive = 0; }
  void TearDown() override { EXPECT_EQ(0, Counted::alive); }
};

TEST_F(ElementListTest, StartsWithAnEmptyVector) {
  const CountedList list;
  ASSERT_NE(nullptr, list.items);
  EXPECT_TRUE(list.items->empty());
}

TEST_F(ElementListTest, DestructionDestroysEveryElement) {
  {
    CountedList list;
    list.append(new Counted(1));
    list.append(new Counted(2));
    EXPECT_EQ(2, Counted::alive);
  }
  EXPECT_EQ(0, Counted::alive);
}

TEST_F(ElementListTest, DestructionSkipsNullElements) {
  CountedList list;
  list.append(nullptr);
  list.append(new Counted(1));
  list.append(nullptr);
}

TEST_F(ElementListTest, APointerStoredTwiceIsDestroyedOnce) {
  CountedList list;
  auto* element = new Counted(1);
  list.append(element);
  list.append(new Counted(2));
  list.append(element);
}

TEST_F(ElementListTest, ClearDestroysTheElementsAndKeepsTheVector) {
  CountedList list;
  list.append(new Counted(1));
  list.append(nullptr);
  const auto* vector = list.items;
  list.clear();
  EXPECT_EQ(0, Counted::alive);
  EXPECT_EQ(vector, list.items);
  EXPECT_TRUE(list.items->empty());
}

TEST_F(ElementListTest, EraseDestroysNothing) {
  CountedList list;
  const auto element = std::make_unique<Counted>(1);
  list.append(element.get());
  list.append(element.get());
  list.erase(0);
  list.erase(element.get());
  EXPECT_TRUE(list.items->empty());
  EXPECT_EQ(1, Counted::alive);
}

TEST_F(ElementListTest, NullVectorCountsAsEmpty) {
  CountedList list;
  delete list.items;
  list.items = nullptr;
  list.clear();
  list.erase(static_cast<const Counted*>(nullptr));
  EXPECT_EQ("[]", written(list));
  EXPECT_THROW(list.at(0), std::out_of_range);
  EXPECT_THROW(list.erase(0), std::out_of_range);
  EXPECT_EQ(nullptr, list.items);
}

TEST_F(ElementListTest, ReadingWithANullVectorMakesANewOne) {
  CountedList list;
  delete list.items;
  list.items = nullptr;
  read(list, "[5]");
  ASSERT_NE(nullptr, list.items);
  EXPECT_EQ("[5]", written(list));
  list.clear();
  delete list.items;
  list.items = nullptr;
  read(list, "[]");
  ASSERT_NE(nullptr, list.items);
}

TEST_F(ElementListTest, WritesInListOrderWithNullForNullElements) {
  CountedList list;
  EXPECT_EQ("[]", written(list));
  list.append(new Counted(3));
  list.append(nullptr);
  list.append(new Counted(1));
  EXPECT_EQ("[3,null,1]", written(list));
}

TEST_F(ElementListTest, ReadingAppendsToWhatIsThere) {
  CountedList list;
  list.append(new Counted(1));
  read(list, "[2,{},3]");
  EXPECT_EQ("[1,2,0,3]", written(list));
}

TEST_F(ElementListTest, ReadingAnythingButAnArrayChangesNothing) {
  CountedList list;
  list.append(new Counted(1));
  for (const char* text : {"{\"a\":1}", "5", "null", "\"x\""}) read(list, text);
  EXPECT_EQ("[1]", written(list));
  EXPECT_EQ(&list, list.deserialize(Jzon::invalid()));
  EXPECT_EQ("[1]", written(list));
}

TEST_F(ElementListTest, AFailingElementIsNotAppendedAndThoseBeforeItStay) {
  CountedList list;
  const Jzon::Node node = jsonNode("[1,2,\"bad\",4]");
  EXPECT_THROW(list.deserialize(node), std::runtime_error);
  EXPECT_EQ("[1,2]", written(list));
  EXPECT_EQ(2, Counted::alive);
}

TEST_F(ElementListTest, CopiesShareTheVector) {
  CountedList list;
  auto* copy = new CountedList(list);
  auto* assigned = new CountedList();
  delete assigned->items;  // an assignment does not free it
  *assigned = list;
  list.append(new Counted(1));
  EXPECT_EQ("[1]", written(*copy));
  EXPECT_EQ("[1]", written(*assigned));
  // Of the copies one is destroyed; the others let go first.
  copy->items = nullptr;
  assigned->items = nullptr;
  delete copy;
  delete assigned;
}

TEST_F(ElementListTest, TraitsMayDestroyADerivedElementAsWhatItIs) {
  int destroyed = 0;
  {
    OpenList<Plain> list;
    list.append(new Plain());
    list.append(new Derived(destroyed));
  }
  EXPECT_EQ(1, destroyed);
}

}  // namespace
}  // namespace Lumivane::Base
