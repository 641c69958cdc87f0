#include "kernel/JsonText.h"

#include <cstddef>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::JsonWriter;

TEST(JsonWriter, PutsCommasBetweenMembersAndElementsAlone) {
  JsonWriter json;
  json.beginObject().key("a").beginArray().endArray().key("b").beginArray();
  json.number(1).number(std::size_t{2}).beginObject().endObject().text("c").endArray();
  json.key("d").beginObject().key("e").number(-3).endObject().endObject();
  EXPECT_EQ("{\"a\":[],\"b\":[1,2,{},\"c\"],\"d\":{\"e\":-3}}\n", json.take());
}

TEST(JsonWriter, BeginsLinesWhereItIsAsked) {
  JsonWriter json;
  json.beginObject().newLine().key("a").number(1).newLine().key("b").beginArray();
  json.newLine().number(2).newLine().number(3).endArray().newLine().endObject();
  EXPECT_EQ("{\n\"a\":1,\n\"b\":[\n2,\n3]\n}\n", json.take());
}

TEST(JsonWriter, WritesNumbersThatReadBackToTheSame) {
  JsonWriter json;
  json.beginArray().number(0.1).number(1e300).number(-0.0).number(2.0);
  json.longNumber(0.1).longNumber(2.0).longNumber(-0.0).endArray();
  EXPECT_EQ("[0.1,1e+300,0,2,0.10000000000000001,2,0]\n", json.take());
}

TEST(JsonWriter, WritesNullForWhatIsNotFinite) {
  JsonWriter json;
  json.beginArray().number(std::numeric_limits<double>::infinity());
  json.longNumber(std::numeric_limits<double>::quiet_NaN()).endArray();
  EXPECT_EQ("[null,null]\n", json.take());
}

TEST(JsonWriter, WritesJsonWhateverATextHolds) {
  JsonWriter json;
  json.text("\xC3\xA4\xFF\"\\\n\x01");
  EXPECT_EQ("\"\xC3\xA4\xEF\xBF\xBD\\\"\\\\\\u000a\\u0001\"\n", json.take());
}

TEST(JsonWriter, IsEmptyOnceItsDocumentIsTaken) {
  JsonWriter json;
  json.number(1);
  EXPECT_EQ("1\n", json.take());
  json.number(2);
  EXPECT_EQ("2\n", json.take());
}

}  // namespace
}  // namespace Lumivane::Test
