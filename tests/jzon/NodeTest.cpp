#include "support/Vectors.h"

#include <lumivane/jzon/Node.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Jzon::Node;
using Lumivane::Test::checkedRun;
using Lumivane::Test::sameBits;
using Lumivane::Test::toDouble;
using Lumivane::Test::VectorCase;
using Lumivane::Test::VectorTests;

const VectorTests escapeCases("escapeString", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<std::string>(), Jzon::escapeString(c.in.at("text").get<std::string>()));
  });
});

const VectorTests unescapeCases("unescapeString", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<std::string>(), Jzon::unescapeString(c.in.at("text").get<std::string>()));
  });
});

const VectorTests numberTextCases("numberText", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const double value = toDouble(c.in.at("value"));
    EXPECT_EQ(c.out.get<std::string>(), Node(value).toString());
    Node node(0);
    node.set(value);
    EXPECT_EQ(c.out.get<std::string>(), node.toString());
  });
});

const VectorTests numberReadCases("numberRead", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const Node node(Node::T_NUMBER, c.in.at("text").get<std::string>());
    EXPECT_EQ(c.out.at(0).get<int>(), node.toInt(7));
    EXPECT_TRUE(sameBits(toDouble(c.out.at(1)), node.toDouble(7.0))) << node.toDouble(7.0);
    EXPECT_EQ(c.out.at(2).get<bool>(), node.isInteger());
  });
});

Node number(const std::string& text) { return Node(Node::T_NUMBER, text); }

/// An object with the members a=1 and b=2.
Node pairObject() {
  Node node = Jzon::object();
  node.add("a", Node(1));
  node.add("b", Node(2));
  return node;
}

Node listOf(const std::vector<int>& values) {
  Node node = Jzon::array();
  for (const int value : values) node.add(Node(value));
  return node;
}

std::vector<int> intsOf(const Node& list) {
  std::vector<int> values;
  for (const auto& child : list) values.push_back(child.second.toInt(-1));
  return values;
}

/// Containers around containers, alternately arrays and objects.
Node deepTree(int depth) {
  Node inner = Jzon::array();
  for (int i = 1; i < depth; ++i) {
    Node outer = i % 2 ? Jzon::object() : Jzon::array();
    if (outer.isObject()) {
      outer.add("k", inner);
    } else {
      outer.add(inner);
    }
    inner = outer;
  }
  return inner;
}

constexpr int Million = 1000000;

TEST(NodeConstruction, DefaultIsInvalid) {
  const Node node;
  EXPECT_EQ(Node::T_INVALID, node.getType());
  EXPECT_FALSE(node.isValid());
}

TEST(NodeConstruction, TypeNumbersAreFixed) {
  EXPECT_EQ(0, Node::T_INVALID);
  EXPECT_EQ(1, Node::T_OBJECT);
  EXPECT_EQ(2, Node::T_ARRAY);
  EXPECT_EQ(3, Node::T_NULL);
  EXPECT_EQ(4, Node::T_STRING);
  EXPECT_EQ(5, Node::T_NUMBER);
  EXPECT_EQ(6, Node::T_BOOL);
}

TEST(NodeConstruction, TypeAloneGivesAnEmptyNodeOfThatType) {
  EXPECT_FALSE(Node(Node::T_INVALID).isValid());
  EXPECT_TRUE(Node(Node::T_OBJECT).isObject());
  EXPECT_TRUE(Node(Node::T_ARRAY).isArray());
  EXPECT_TRUE(Node(Node::T_NULL).isNull());
  EXPECT_EQ("", Node(Node::T_STRING).toString("default"));
  EXPECT_EQ("", Node(Node::T_NUMBER).toString("default"));
  EXPECT_EQ("", Node(Node::T_BOOL).toString("default"));
}

TEST(NodeConstruction, ValueTypeWithTextTakesBoth) {
  EXPECT_EQ("x", Node(Node::T_STRING, "x").toString());
  EXPECT_TRUE(Node(Node::T_BOOL, "true").toBool());
  EXPECT_EQ("1e5", Node(Node::T_NUMBER, "1e5").toString());
}

TEST(NodeConstruction, ContainerTypeWithTextIsANull) {
  EXPECT_TRUE(Node(Node::T_OBJECT, "x").isNull());
  EXPECT_TRUE(Node(Node::T_ARRAY, "x").isNull());
  EXPECT_TRUE(Node(Node::T_INVALID, "x").isNull());
  EXPECT_EQ(Jzon::null(), Node(Node::T_OBJECT, "x"));
}

TEST(NodeConstruction, NullWithTextKeepsTheText) {
  const Node node(Node::T_NULL, "x");
  EXPECT_EQ("null", node.toString());
  EXPECT_NE(Jzon::null(), node);  // the texts differ
}

TEST(NodeConstruction, ScalarsBecomeText) {
  EXPECT_EQ("abc", Node("abc").toString());
  EXPECT_EQ("abc", Node(std::string("abc")).toString());
  EXPECT_EQ("-5", Node(-5).toString());
  EXPECT_EQ("4294967295", Node(4294967295U).toString());
  EXPECT_EQ("-9223372036854775808", Node(std::numeric_limits<long long>::min()).toString());
  EXPECT_EQ("18446744073709551615",
            Node(std::numeric_limits<unsigned long long>::max()).toString());
  EXPECT_EQ("0.1", Node(0.1F).toString());
  EXPECT_EQ("1234.57", Node(1234.5678).toString());
  EXPECT_EQ("true", Node(true).toString());
  EXPECT_EQ("false", Node(false).toString());
}

TEST(NodeConstruction, TypeOfAScalarIsTakenFromTheArgument) {
  EXPECT_TRUE(Node("1").isString());
  EXPECT_TRUE(Node(1).isNumber());
  EXPECT_TRUE(Node(1.0).isNumber());
  EXPECT_TRUE(Node(true).isBool());
}

TEST(NodeConstruction, NullTextPointerIsTheEmptyText) {
  const char* const text = nullptr;
  EXPECT_TRUE(Node(text).isString());
  EXPECT_EQ("", Node(text).toString("default"));
}

TEST(NodeConstruction, FactoriesGiveEmptyNodes) {
  EXPECT_FALSE(Jzon::invalid().isValid());
  EXPECT_TRUE(Jzon::null().isNull());
  EXPECT_TRUE(Jzon::object().isObject());
  EXPECT_EQ(0U, Jzon::object().getCount());
  EXPECT_TRUE(Jzon::array().isArray());
  EXPECT_EQ(0U, Jzon::array().getCount());
}

TEST(NodeConstruction, NamespaceIsReachableFromTheLibraryRoot) {
  const Lumivane::Jzon::Node node = Lumivane::Jzon::object();
  EXPECT_TRUE(node.isObject());
}

TEST(NodeTests, EachTypeAnswersItsOwnTest) {
  const Node nodes[] = {Jzon::invalid(), Jzon::object(), Jzon::array(), Jzon::null(),
                        Node("x"),       Node(1),        Node(true)};
  for (int type = Node::T_INVALID; type <= Node::T_BOOL; ++type) {
    const Node& node = nodes[type];
    EXPECT_EQ(type, node.getType());
    EXPECT_EQ(type != Node::T_INVALID, node.isValid());
    EXPECT_EQ(type == Node::T_OBJECT, node.isObject());
    EXPECT_EQ(type == Node::T_ARRAY, node.isArray());
    EXPECT_EQ(type == Node::T_NULL, node.isNull());
    EXPECT_EQ(type == Node::T_STRING, node.isString());
    EXPECT_EQ(type == Node::T_NUMBER, node.isNumber());
    EXPECT_EQ(type == Node::T_BOOL, node.isBool());
    EXPECT_EQ(type == Node::T_OBJECT || type == Node::T_ARRAY, node.isContainer());
    EXPECT_EQ(type >= Node::T_NULL, node.isValue());
  }
}

TEST(NodeTests, IntegersAreNumbersWithoutAFraction) {
  EXPECT_TRUE(Node(5).isInteger());
  EXPECT_TRUE(number("1.0").isInteger());
  EXPECT_TRUE(number("1e+06").isInteger());
  EXPECT_FALSE(number("1.5").isInteger());
  EXPECT_FALSE(number("-0.25").isInteger());
}

TEST(NodeTests, UnreadableNumberCountsAsAnInteger) {
  EXPECT_TRUE(number("abc").isInteger());
  EXPECT_TRUE(number("").isInteger());
}

TEST(NodeTests, OnlyNumbersAreIntegers) {
  EXPECT_FALSE(Node("5").isInteger());
  EXPECT_FALSE(Node(true).isInteger());
  EXPECT_FALSE(Jzon::null().isInteger());
  EXPECT_FALSE(Jzon::array().isInteger());
  EXPECT_FALSE(Node().isInteger());
}

TEST(NodeConversion, ToStringGivesTheTextOfValuesAndTheDefaultElsewhere) {
  EXPECT_EQ("null", Jzon::null().toString("default"));
  EXPECT_EQ("x", Node("x").toString("default"));
  EXPECT_EQ("2.50", number("2.50").toString("default"));
  EXPECT_EQ("true", Node(true).toString("default"));
  EXPECT_EQ("default", Node().toString("default"));
  EXPECT_EQ("default", Jzon::object().toString("default"));
  EXPECT_EQ("default", Jzon::array().toString("default"));
}

TEST(NodeConversion, ToIntStopsWhereAStreamStops) {
  EXPECT_EQ(2, number("2.9").toInt(7));
  EXPECT_EQ(-2, number("-2.9").toInt(7));
  EXPECT_EQ(12, number("12-").toInt(7));
}

TEST(NodeConversion, IntOfAnExponentIsWhatStandsBeforeIt) {
  EXPECT_EQ(1, number("1e+06").toInt(7));
  EXPECT_EQ(1000000.0, number("1e+06").toDouble(7));
}

TEST(NodeConversion, UnreadableNumberIsZeroAndNotTheDefault) {
  EXPECT_EQ(0, number("abc").toInt(7));
  EXPECT_EQ(0.0, number("abc").toDouble(7));
  EXPECT_EQ(0.0F, number("abc").toFloat(7));
  EXPECT_EQ(0, number("").toInt(7));
}

TEST(NodeConversion, StringThatLooksLikeNothingGivesTheDefault) {
  EXPECT_EQ(7, Node("abc").toInt(7));
  EXPECT_EQ(7, Node("5").toInt(7));
  EXPECT_EQ(7.0, Node("5").toDouble(7));
  EXPECT_EQ(7.0F, Node("5").toFloat(7));
  EXPECT_EQ(7, Node().toInt(7));
  EXPECT_EQ(7, Jzon::null().toInt(7));
  EXPECT_EQ(7, Node(true).toInt(7));
}

TEST(NodeConversion, IntBeyondTheRangeIsTheLimit) {
  EXPECT_EQ(std::numeric_limits<int>::max(), number("2147483648").toInt(7));
  EXPECT_EQ(std::numeric_limits<int>::min(), number("-2147483649").toInt(7));
  EXPECT_EQ(std::numeric_limits<int>::max(), number(std::string(100, '9')).toInt(7));
}

TEST(NodeConversion, DoubleBeyondTheRangeIsTheLargestFinite) {
  EXPECT_EQ(std::numeric_limits<double>::max(), number("1e999").toDouble(7));
  EXPECT_EQ(-std::numeric_limits<double>::max(), number("-1e999").toDouble(7));
  EXPECT_EQ(std::numeric_limits<float>::max(), number("1e39").toFloat(7));
  EXPECT_EQ(-std::numeric_limits<float>::max(), number("-1e39").toFloat(7));
}

TEST(NodeConversion, FloatIsReadAsAFloat) {
  EXPECT_EQ(0.1F, number("0.1").toFloat(7));
  // Rounded once: by way of a double it would be 1.
  EXPECT_EQ(1.00000012F, number("1.00000005960464480000001").toFloat(7));
}

TEST(NodeConversion, NumbersMayStandBehindWhiteSpaceAndAPlus) {
  EXPECT_EQ(5, number(" +5").toInt(7));
  EXPECT_EQ(5.5, number("\t5.5 ").toDouble(7));
}

TEST(NodeConversion, OnlyTheTextTrueIsTrue) {
  EXPECT_TRUE(Node(Node::T_BOOL, "true").toBool(false));
  EXPECT_FALSE(Node(Node::T_BOOL, "TRUE").toBool(true));
  EXPECT_FALSE(Node(Node::T_BOOL, "1").toBool(true));
  EXPECT_FALSE(Node(false).toBool(true));
}

TEST(NodeConversion, BoolOfAnythingElseIsTheDefault) {
  EXPECT_TRUE(Node("false").toBool(true));
  EXPECT_FALSE(Node("true").toBool(false));
  EXPECT_TRUE(Node().toBool(true));
  EXPECT_TRUE(Node(0).toBool(true));
}

TEST(NodeAssignment, InvalidNodeStaysInvalid) {
  Node node;
  node.set(5);
  EXPECT_FALSE(node.isValid());
  node = "text";
  EXPECT_FALSE(node.isValid());
  node.setNull();
  EXPECT_FALSE(node.isValid());
}

TEST(NodeAssignment, ContainerStaysAContainer) {
  Node node = pairObject();
  node.set("x");
  node = 5;
  node.setNull();
  node.set(Node::T_NUMBER, "5");
  EXPECT_TRUE(node.isObject());
  EXPECT_EQ(2U, node.getCount());
}

TEST(NodeAssignment, ValueTakesTheNewType) {
  Node node(0);
  node.set("x");
  EXPECT_TRUE(node.isString());
  EXPECT_EQ("x", node.toString());
  node.set(true);
  EXPECT_TRUE(node.isBool());
  node.setNull();
  EXPECT_EQ(Jzon::null(), node);
  node.set(2.5);
  EXPECT_TRUE(node.isNumber());
}

TEST(NodeAssignment, EverySetStoresItsText) {
  Node node = Jzon::null();
  node.set(Node::T_NUMBER, "1.50");
  EXPECT_EQ("1.50", node.toString());
  node.set(std::string("s"));
  EXPECT_EQ("s", node.toString());
  node.set("c");
  EXPECT_EQ("c", node.toString());
  node.set(-1);
  EXPECT_EQ("-1", node.toString());
  node.set(4000000000U);
  EXPECT_EQ("4000000000", node.toString());
  node.set(-5000000000LL);
  EXPECT_EQ("-5000000000", node.toString());
  node.set(10000000000000000000ULL);
  EXPECT_EQ("10000000000000000000", node.toString());
  node.set(0.25F);
  EXPECT_EQ("0.25", node.toString());
  node.set(0.125);
  EXPECT_EQ("0.125", node.toString());
  node.set(false);
  EXPECT_EQ("false", node.toString());
}

TEST(NodeAssignment, EveryAssignmentStoresItsText) {
  Node node = Jzon::null();
  EXPECT_EQ("s", (node = std::string("s")).toString());
  EXPECT_EQ("c", (node = "c").toString());
  EXPECT_EQ("-1", (node = -1).toString());
  EXPECT_EQ("4000000000", (node = 4000000000U).toString());
  EXPECT_EQ("-5000000000", (node = -5000000000LL).toString());
  EXPECT_EQ("10000000000000000000", (node = 10000000000000000000ULL).toString());
  EXPECT_EQ("0.25", (node = 0.25F).toString());
  EXPECT_EQ("0.125", (node = 0.125).toString());
  EXPECT_EQ("true", (node = true).toString());
}

TEST(NodeAssignment, TypeThatIsNoValueTypeIsIgnored) {
  Node node(5);
  node.set(Node::T_OBJECT, "x");
  node.set(Node::T_ARRAY, "x");
  node.set(Node::T_INVALID, "x");
  EXPECT_EQ(Node(5), node);
}

TEST(NodeAssignment, DoublesKeepSixSignificantDigits) {
  Node node(0);
  node.set(1234.5678);
  EXPECT_EQ("1234.57", node.toString());
  node.set(1234567.0);
  EXPECT_EQ("1.23457e+06", node.toString());
  node.set(0.0001);
  EXPECT_EQ("0.0001", node.toString());
}

TEST(NodeAssignment, NumbersThatAreNoneArePrintedAsSuch) {
  EXPECT_EQ("-0", Node(-0.0).toString());
  EXPECT_EQ("inf", Node(std::numeric_limits<double>::infinity()).toString());
  EXPECT_EQ("-inf", Node(-std::numeric_limits<double>::infinity()).toString());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ("nan", Node(std::copysign(nan, 1.0)).toString());
  EXPECT_EQ("-nan", Node(std::copysign(nan, -1.0)).toString());
}

TEST(NodeSharing, CopyKeepsItsValueWhenTheOriginalChanges) {
  Node b(1);
  Node a = b;
  a.set(2);
  EXPECT_EQ(1, b.toInt());
  EXPECT_EQ(2, a.toInt());
}

TEST(NodeSharing, WritingToAContainerDoesNotShowThroughAnotherHandle) {
  const Node original = pairObject();
  Node added = original, removed = original, removedByName = original, cleared = original,
       appended = original;
  added.add("c", Node(3));
  removed.remove(0);
  removedByName.remove("b");
  cleared.clear();
  appended.append(pairObject());
  EXPECT_EQ(2U, original.getCount());
  EXPECT_EQ(3U, added.getCount());
  EXPECT_EQ("b", removed.get_key(0).toString());
  EXPECT_EQ("a", removedByName.get_key(0).toString());
  EXPECT_EQ(0U, cleared.getCount());
  EXPECT_EQ(4U, appended.getCount());
}

TEST(NodeSharing, ChildTakenByGetDetachesItself) {
  Node parent = pairObject();
  Node child = parent.get("a");
  child.set(9);
  EXPECT_EQ(1, parent.get("a").toInt());
  EXPECT_EQ(9, child.toInt());
}

TEST(NodeSharing, GrandchildrenStaySharedWhenAParentDetaches) {
  Node parent = Jzon::array();
  parent.add(pairObject());
  Node copy = parent;
  copy.add(Node(1));
  EXPECT_EQ(parent.get(0), copy.get(0));  // containers are equal only if shared
}

TEST(NodeSharing, SelfAssignmentKeepsTheNode) {
  Node node = listOf({1, 2});
  Node& same = node;
  node = same;
  EXPECT_EQ((std::vector<int>{1, 2}), intsOf(node));
}

TEST(NodeSharing, NodeMayBeAssignedItsOwnChild) {
  Node node = Jzon::array();
  node.add(listOf({1, 2}));
  node = node.begin()->second;
  EXPECT_EQ((std::vector<int>{1, 2}), intsOf(node));
}

TEST(NodeSharing, NodeMayBeAssignedAHandleOnItsData) {
  Node a = listOf({1});
  Node b = a;
  a = b;
  EXPECT_EQ(a, b);
  a = Jzon::invalid();
  EXPECT_EQ((std::vector<int>{1}), intsOf(b));
}

TEST(NodeContainer, UnnamedAddWorksOnArraysOnly) {
  Node object = Jzon::object();
  object.add(Node(1));
  EXPECT_EQ(0U, object.getCount());
  Node invalid;
  invalid.add(Node(1));
  EXPECT_FALSE(invalid.isValid());
  Node value(5);
  value.add(Node(1));
  EXPECT_EQ(0U, value.getCount());
  Node array = Jzon::array();
  array.add(Node(1));
  EXPECT_EQ(1U, array.getCount());
  EXPECT_EQ("", array.get_key(0).toString("default"));
}

TEST(NodeContainer, NamedAddWorksOnObjectsOnly) {
  Node array = Jzon::array();
  array.add("k", Node(1));
  EXPECT_EQ(0U, array.getCount());
  Node invalid;
  invalid.add("k", Node(1));
  EXPECT_FALSE(invalid.isValid());
  Node object = Jzon::object();
  object.add("k", Node(1));
  EXPECT_EQ(1, object.get("k").toInt());
}

TEST(NodeContainer, MembersKeepTheOrderOfInsertion) {
  Node node = Jzon::object();
  for (const char* name : {"z", "a", "m"}) node.add(name, Node(name));
  EXPECT_EQ("z", node.get_key(0).toString());
  EXPECT_EQ("a", node.get_key(1).toString());
  EXPECT_EQ("m", node.get_key(2).toString());
}

TEST(NodeContainer, FirstOfTwoEqualNamesIsFoundAndRemoved) {
  Node node = Jzon::object();
  node.add("a", Node(1));
  node.add("a", Node(2));
  EXPECT_EQ(2U, node.getCount());
  EXPECT_EQ(1, node.get("a").toInt());
  node.remove("a");
  EXPECT_EQ(1U, node.getCount());
  EXPECT_EQ(2, node.get("a").toInt());
}

TEST(NodeContainer, AppendJoinsTwoContainersOfOneKind) {
  Node list = listOf({1, 2});
  list.append(listOf({3}));
  EXPECT_EQ((std::vector<int>{1, 2, 3}), intsOf(list));
  Node object = pairObject();
  object.append(pairObject());
  EXPECT_EQ(4U, object.getCount());
  EXPECT_EQ("a", object.get_key(2).toString());
}

TEST(NodeContainer, AppendOfTheOtherKindIsIgnored) {
  Node list = listOf({1});
  list.append(pairObject());
  list.append(Node(5));
  list.append(Node());
  EXPECT_EQ(1U, list.getCount());
  Node object = pairObject();
  object.append(list);
  EXPECT_EQ(2U, object.getCount());
  Node value(5);
  value.append(Node(6));
  EXPECT_EQ(Node(5), value);
  Node invalid;
  invalid.append(Node());
  EXPECT_FALSE(invalid.isValid());
}

TEST(NodeContainer, AppendSharesTheChildren) {
  Node source = Jzon::array();
  source.add(pairObject());
  Node target = Jzon::array();
  target.append(source);
  EXPECT_EQ(source.get(0), target.get(0));
}

TEST(NodeContainer, NodeAppendedToItselfDoublesItsChildren) {
  Node list = listOf({1, 2, 3});
  list.append(list);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 1, 2, 3}), intsOf(list));
  Node object = pairObject();
  object.append(object);
  EXPECT_EQ(4U, object.getCount());
  const Node handle = list;
  list.append(handle);
  EXPECT_EQ(12U, list.getCount());
  EXPECT_EQ(6U, handle.getCount());
}

TEST(NodeContainer, ChildMayBeAppendedToItsParent) {
  Node list = Jzon::array();
  list.add(listOf({1, 2}));
  list.append(list.begin()->second);
  EXPECT_EQ((std::vector<int>{-1, 1, 2}), intsOf(list));
}

TEST(NodeContainer, NodeAddedToItselfNestsTheOldValue) {
  Node list = listOf({1, 2});
  list.add(list);
  ASSERT_EQ(3U, list.getCount());
  EXPECT_EQ((std::vector<int>{1, 2}), intsOf(list.get(2)));
  Node object = pairObject();
  object.add("self", object);
  ASSERT_EQ(3U, object.getCount());
  EXPECT_EQ(2U, object.get("self").getCount());
}

TEST(NodeContainer, ChildMayBeAddedToItsParentAgain) {
  Node object = pairObject();
  for (int i = 0; i < 100; ++i) object.add(object.begin()->first, object.begin()->second);
  EXPECT_EQ(102U, object.getCount());
  EXPECT_EQ("a", object.get_key(101).toString());
  EXPECT_EQ(1, object.get(101).toInt());
}

TEST(NodeContainer, RemoveByPositionErasesThatChild) {
  Node list = listOf({1, 2, 3});
  list.remove(1);
  EXPECT_EQ((std::vector<int>{1, 3}), intsOf(list));
  list.remove(2);
  EXPECT_EQ(2U, list.getCount());
  Node object = pairObject();
  object.remove(0);
  EXPECT_FALSE(object.has("a"));
}

TEST(NodeContainer, RemoveOfWhatIsNotThereDoesNothing) {
  Node object = pairObject();
  object.remove("x");
  object.remove(2);
  EXPECT_EQ(2U, object.getCount());
  Node list = listOf({1});
  list.remove("");  // names are looked up in objects only
  EXPECT_EQ(1U, list.getCount());
  Node invalid;
  invalid.remove(0);
  invalid.remove("x");
  EXPECT_FALSE(invalid.isValid());
}

TEST(NodeContainer, RemoveMayTakeTheNameOfTheChildItErases) {
  Node object = pairObject();
  object.remove(object.begin()->first);
  EXPECT_FALSE(object.has("a"));
}

TEST(NodeContainer, ClearEmptiesContainersAndLeavesValues) {
  Node list = listOf({1, 2});
  list.clear();
  EXPECT_TRUE(list.isArray());
  EXPECT_EQ(0U, list.getCount());
  Node value("x");
  value.clear();
  EXPECT_EQ("x", value.toString());
  Node invalid;
  invalid.clear();
  EXPECT_FALSE(invalid.isValid());
}

TEST(NodeContainer, HasLooksInObjectsOnly) {
  EXPECT_TRUE(pairObject().has("b"));
  EXPECT_FALSE(pairObject().has("c"));
  EXPECT_FALSE(listOf({1}).has(""));
  EXPECT_FALSE(Node("b").has("b"));
  EXPECT_FALSE(Node().has("b"));
}

TEST(NodeContainer, CountOfAnythingWithoutChildrenIsZero) {
  EXPECT_EQ(2U, pairObject().getCount());
  EXPECT_EQ(0U, Node(5).getCount());
  EXPECT_EQ(0U, Node().getCount());
}

TEST(NodeContainer, GetByNameWorksOnObjectsOnly) {
  EXPECT_EQ(2, pairObject().get("b").toInt());
  EXPECT_FALSE(pairObject().get("x").isValid());
  const Node missing = listOf({1}).get("x");
  EXPECT_FALSE(missing.isValid());
  EXPECT_EQ(7, missing.toInt(7));
  EXPECT_FALSE(Node(5).get("x").isValid());
  EXPECT_FALSE(Node().get("x").isValid());
}

TEST(NodeContainer, GetByPositionWorksOnContainersOnly) {
  EXPECT_EQ(2, pairObject().get(1).toInt());
  EXPECT_EQ(4, listOf({3, 4}).get(1).toInt());
  EXPECT_FALSE(listOf({3, 4}).get(2).isValid());
  EXPECT_FALSE(Node(5).get(0).isValid());
  EXPECT_FALSE(Node().get(0).isValid());
}

TEST(NodeContainer, KeyIsAStringOfItsOwn) {
  Node object = pairObject();
  Node key = object.get_key(0);
  EXPECT_TRUE(key.isString());
  key.set("changed");
  EXPECT_EQ("a", object.get_key(0).toString());
  EXPECT_TRUE(listOf({1}).get_key(0).isString());
  EXPECT_FALSE(object.get_key(2).isValid());
  EXPECT_FALSE(Node(5).get_key(0).isValid());
  EXPECT_FALSE(Node().get_key(0).isValid());
}

TEST(NodeContainer, NamedNodeCanBeChangedInPlace) {
  Node object = pairObject();
  object.getNamedNode("a").first = "z";
  object.getNamedNode("b").second.set("changed");
  EXPECT_EQ("z", object.get_key(0).toString());
  EXPECT_EQ("changed", object.get("b").toString());
}

TEST(NodeContainer, ChangingANamedNodeDoesNotShowThroughAnotherHandle) {
  const Node original = pairObject();
  Node copy = original;
  std::pair<std::string, Node>& pair = copy.getNamedNode("a");
  pair.first = "z";
  pair.second.set(9);
  EXPECT_EQ(9, copy.get("z").toInt());
  EXPECT_FALSE(original.has("z"));
  EXPECT_EQ(1, original.get("a").toInt());
}

TEST(NodeContainer, MissingNamedNodeIsANewEmptyPair) {
  Node object = pairObject(), list = listOf({1}), invalid;
  for (Node* node : {&object, &list, &invalid}) {
    const std::unique_ptr<Node::NamedNode> pair(&node->getNamedNode("x"));
    EXPECT_EQ("", pair->first);
    EXPECT_FALSE(pair->second.isValid());
  }
  EXPECT_EQ(2U, object.getCount());
}

TEST(NodeIteration, VisitsNamesAndNodesInOrder) {
  std::string seen;
  for (const std::pair<std::string, Node>& child : pairObject()) {
    seen += child.first + "=" + child.second.toString() + ";";
  }
  EXPECT_EQ("a=1;b=2;", seen);
  const Node constant = pairObject();
  const Node::const_iterator first = constant.begin();
  EXPECT_EQ("a", first->first);
  EXPECT_EQ(2, constant.end() - first);
}

TEST(NodeIteration, EndsAreNullWithoutChildren) {
  Node nodes[] = {Node(), Jzon::object(), Jzon::array(), Node("x")};
  for (Node& node : nodes) {
    const Node& constant = node;
    EXPECT_EQ(Node::iterator(nullptr), node.begin());
    EXPECT_EQ(Node::iterator(nullptr), node.end());
    EXPECT_EQ(Node::const_iterator(nullptr), constant.begin());
    EXPECT_EQ(Node::const_iterator(nullptr), constant.end());
  }
}

TEST(NodeEquality, ValuesCompareByTypeAndText) {
  EXPECT_EQ(Node("x"), Node("x"));
  EXPECT_NE(Node("x"), Node("y"));
  EXPECT_NE(Node("1"), Node(1));
  EXPECT_EQ(Node(true), Node(Node::T_BOOL, "true"));
  EXPECT_EQ(Jzon::null(), Jzon::null());
}

TEST(NodeEquality, NumbersCompareAsText) {
  EXPECT_NE(number("1.0"), number("1"));
  EXPECT_EQ(number("1"), Node(1));
}

TEST(NodeEquality, ContainersAreEqualOnlyIfShared) {
  const Node node = pairObject();
  Node handle;
  handle = node;
  EXPECT_EQ(node, handle);
  EXPECT_NE(pairObject(), pairObject());
  EXPECT_NE(Jzon::array(), Jzon::array());
}

TEST(NodeEquality, InvalidNodesEqualEachOtherAndNothingElse) {
  EXPECT_EQ(Node(), Node());
  EXPECT_FALSE(Node(5) == Node());
  EXPECT_FALSE(Node() == Node(5));
  EXPECT_FALSE(Jzon::object() == Node());
  EXPECT_TRUE(Node(5) != Node());
}

TEST(NodeDepth, MillionLevelsAreBuiltCopiedComparedAndDestroyed) {
  Node tree = deepTree(Million);
  Node copy = tree;
  EXPECT_EQ(tree, copy);
  copy.add("x", Node(1));  // detaches: the outermost level is an object
  EXPECT_EQ(1U, tree.getCount());
  EXPECT_EQ(2U, copy.getCount());
  EXPECT_NE(tree, copy);
  tree = Node();
  EXPECT_TRUE(copy.get("k").isArray());  // the shared levels live on
  copy.clear();
}

TEST(NodeDepth, MillionLevelsSharedByManyHandlesAreDestroyedOnce) {
  Node tree = deepTree(Million);
  Node list = Jzon::array();
  for (int i = 0; i < 10; ++i) list.add(tree);
  tree = Node();
  list.remove(0);
  EXPECT_EQ(1U, list.get(8).getCount());
}

TEST(EscapeString, EscapesTheEightCharactersAndNothingElse) {
  EXPECT_EQ("\\\\\\/\\\"\\n\\t\\b\\f\\r", Jzon::escapeString("\\/\"\n\t\b\f\r"));
  EXPECT_EQ("\x01\x7f\xc3\xa9\v'", Jzon::escapeString("\x01\x7f\xc3\xa9\v'"));
}

TEST(EscapeString, SlashIsRestoredByUnescaping) {
  EXPECT_EQ("a\\/b", Jzon::escapeString("a/b"));
  EXPECT_EQ("a/b", Jzon::unescapeString("a\\/b"));
}

TEST(UnescapeString, LoneTrailingBackslashStays) {
  EXPECT_EQ("a\\", Jzon::unescapeString("a\\"));
  EXPECT_EQ("\\", Jzon::unescapeString("\\\\"));
}

TEST(UnescapeString, UnknownEscapesStay) {
  EXPECT_EQ("\\u0041", Jzon::unescapeString("\\u0041"));
  EXPECT_EQ("\\x", Jzon::unescapeString("\\x"));
}

TEST(UnescapeString, ZeroBytesAreOrdinary) {
  const std::string text("a\0b\\", 4);
  EXPECT_EQ(text, Jzon::unescapeString(text));
  EXPECT_EQ(text + "\\", Jzon::escapeString(text));
}

}  // namespace
