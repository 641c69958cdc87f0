#include <lumivane/jzon/Jzon.h>
#include <lumivane/jzon/Writer.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

using Jzon::Format;
using Jzon::Node;
using Jzon::Writer;

constexpr Format FileFormat{true, true, true, 1};

std::string written(const Node& node, const Writer& writer) {
  std::string text;
  writer.writeString(node, text);
  return text;
}

Node sample() {
  Node list = Jzon::array();
  list.add(Node(1));
  list.add(Node(2));
  Node node = Jzon::object();
  node.add("a", Node(1));
  node.add("b", list);
  return node;
}

TEST(Writer, FileFormatBreaksLinesWithoutIndentation) {
  EXPECT_EQ("{\n\"a\": 1,\n\"b\": [1,2]\n}", written(sample(), Writer(FileFormat)));
}

TEST(Writer, IndentationSettingsHaveNoEffect) {
  const std::string expected = written(sample(), Writer(FileFormat));
  EXPECT_EQ(expected, written(sample(), Writer(Format{true, true, false, 1})));
  EXPECT_EQ(expected, written(sample(), Writer(Format{true, true, true, 8})));
}

TEST(Writer, SpacingWithoutNewlinePutsSpacesForLineBreaks) {
  EXPECT_EQ("{ \"a\": 1, \"b\": [1,2] }", written(sample(), Writer(Format{false, true, true, 1})));
}

TEST(Writer, NewlineWithoutSpacingLeavesNoSpaceBehindTheColon) {
  EXPECT_EQ("{\n\"a\":1,\n\"b\":[1,2]\n}", written(sample(), Writer(Format{true, false, true, 1})));
}

TEST(Writer, AllFlagsFalseWritesNothingBetween) {
  EXPECT_EQ("{\"a\":1,\"b\":[1,2]}", written(sample(), Writer(Format{false, false, false, 0})));
}

TEST(Writer, DefaultWritesNothingBetween) {
  EXPECT_EQ("{\"a\":1,\"b\":[1,2]}", written(sample(), Writer()));
}

TEST(Writer, FormatCanBeChanged) {
  Writer writer(FileFormat);
  writer.setFormat(Format{false, true, false, 0});
  EXPECT_EQ("{ \"a\": 1, \"b\": [1,2] }", written(sample(), writer));
  writer.setFormat(Format{false, false, false, 0});
  EXPECT_EQ("{\"a\":1,\"b\":[1,2]}", written(sample(), writer));
}

TEST(Writer, CopyWritesAsTheOriginal) {
  const Writer original(FileFormat);
  const Writer copy(original);
  EXPECT_EQ(written(sample(), original), written(sample(), copy));
}

TEST(Writer, EmptyContainers) {
  EXPECT_EQ("{\n\n}", written(Jzon::object(), Writer(FileFormat)));
  EXPECT_EQ("{  }", written(Jzon::object(), Writer(Format{false, true, false, 0})));
  EXPECT_EQ("{}", written(Jzon::object(), Writer()));
  EXPECT_EQ("[]", written(Jzon::array(), Writer(FileFormat)));
}

TEST(Writer, ArraysStayOnOneLineAndObjectsInThemBreakLines) {
  Node inner = Jzon::object();
  inner.add("a", Node(1));
  Node list = Jzon::array();
  list.add(Jzon::array());
  list.add(inner);
  list.add(inner);
  EXPECT_EQ("[[],{\n\"a\": 1\n},{\n\"a\": 1\n}]", written(list, Writer(FileFormat)));
}

TEST(Writer, NestedObjectsAreNotIndented) {
  Node outer = Jzon::object();
  outer.add("o", sample());
  outer.add("e", Jzon::object());
  EXPECT_EQ("{\n\"o\": {\n\"a\": 1,\n\"b\": [1,2]\n},\n\"e\": {\n\n}\n}",
            written(outer, Writer(FileFormat)));
}

TEST(Writer, NameIsWrittenRaw) {
  Node node = Jzon::object();
  node.add("a\"b/\n c", Node(1));
  EXPECT_EQ("{\"a\"b/\n c\":1}", written(node, Writer()));
}

TEST(Writer, StringsAreEscapedSlashIncluded) {
  EXPECT_EQ("\"a\\/b\"", written(Node("a/b"), Writer(FileFormat)));
  EXPECT_EQ("\"\\\"\\\\\\n\"", written(Node("\"\\\n"), Writer()));
}

TEST(Writer, OtherValuesAreWrittenAsTheirText) {
  EXPECT_EQ("null", written(Jzon::null(), Writer()));
  EXPECT_EQ("true", written(Node(true), Writer()));
  EXPECT_EQ("1.50", written(Node(Node::T_NUMBER, "1.50"), Writer()));
  EXPECT_EQ("1.23457e+06", written(Node(1234567.0), Writer()));
}

TEST(Writer, InvalidNodesWriteNothing) {
  EXPECT_EQ("", written(Node(), Writer(FileFormat)));
  Node node = Jzon::object();
  node.add("key", Node());
  node.add("next", Node(1));
  EXPECT_EQ("{\n\"key\": ,\n\"next\": 1\n}", written(node, Writer(FileFormat)));
  Node list = Jzon::array();
  list.add(Node());
  list.add(Node());
  EXPECT_EQ("[,]", written(list, Writer(FileFormat)));
}

TEST(Writer, LongerStringIsOverwrittenFromTheFront) {
  std::string text = "0123456789";
  Writer().writeString(Jzon::array(), text);
  EXPECT_EQ("[]23456789", text);
}

TEST(Writer, StreamIsWrittenWhereItStands) {
  std::ostringstream stream;
  stream << "before ";
  Writer().writeStream(sample(), stream);
  EXPECT_EQ("before {\"a\":1,\"b\":[1,2]}", stream.str());
}

TEST(Writer, FileIsTruncatedFirst) {
  const std::string path = testing::TempDir() + "lumivane_writer_test.json";
  std::ofstream(path) << std::string(100, 'x');
  Writer(FileFormat).writeFile(sample(), path);
  std::ifstream file(path);
  EXPECT_EQ("{\n\"a\": 1,\n\"b\": [1,2]\n}",
            std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
  std::remove(path.c_str());
}

TEST(Writer, FileThatCannotBeOpenedIsNoError) {
  const std::string path = testing::TempDir() + "no/such/folder.json";
  Writer().writeFile(sample(), path);
  EXPECT_FALSE(std::ifstream(path).is_open());
}

TEST(Writer, TreeThatSharesANodeWithItselfIsWrittenTwice) {
  Node list = Jzon::array();
  list.add(Node(1));
  list.add(list);
  EXPECT_EQ("[1,[1]]", written(list, Writer()));
}

TEST(WriterDepth, MillionLevelsAreWritten) {
  constexpr int depth = 1000000;
  Node tree = Jzon::object();
  for (int i = 1; i < depth; ++i) {
    Node outer = Jzon::object();
    outer.add("a", tree);
    tree = outer;
  }
  const std::string text = written(tree, Writer(FileFormat));
  // Each level writes `{`, a break, the name, `: `, a break and `}`; the innermost has no name.
  EXPECT_EQ(depth * 9U - 5U, text.size());
  EXPECT_EQ("{\n\"a\": {\n\"a\": {", text.substr(0, 15));
}

}  // namespace
