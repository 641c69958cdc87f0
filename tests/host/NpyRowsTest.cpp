#include "HostError.h"
#include "NpyRows.h"
#include "ViewTable.h"
#include "host/Process.h"
#include "support/TempFolder.h"

#include <lumivane/session/Files.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

constexpr const char* Wanted =
    ": views are rows of 3 (eye), 6 (eye, forward) or 9 (eye, forward, up) doubles, of numpy's "
    "type "
    "float64";

std::string headerOf(const std::string& shape, const std::string& type = "'<f8'",
                     const std::string& order = "False") {
  return "{'descr': " + type + ", 'fortran_order': " + order + ", 'shape': " + shape + ", }";
}

// A file as numpy writes it, of version 1.
std::string npy(const std::string& header, const std::vector<double>& numbers) {
  std::string text("\x93NUMPY\x01\x00", 8);
  text += static_cast<char>(header.size() % 256);
  text += static_cast<char>(header.size() / 256);
  text += header;
  for (const double number : numbers) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    text.append(bytes, sizeof number);
  }
  return text;
}

class NpyRowsTest : public ::testing::Test {
 protected:
  ViewTable read(const std::string& bytes) {
    Session::writeFile(path, bytes);
    return ViewTable(path, setting);
  }
  std::string fault(const std::string& bytes) {
    try {
      read(bytes);
    } catch (const HostError& error) {
      return error.what();
    }
    return "";
  }
  // The same table as text.
  ViewTable text(const std::string& csv) {
    Session::writeFile(folder.path("views.csv"), csv);
    return ViewTable(folder.path("views.csv"), setting);
  }

  const TempFolder folder;
  const std::string path = folder.path("views.npy");
  TableSetting setting;
};

void expectSame(const ViewTable& expected, const ViewTable& table) {
  ASSERT_EQ(expected.size(), table.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(expected.key(i), table.key(i)) << i;
    EXPECT_EQ(expected[i].name, table[i].name) << i;
    EXPECT_EQ(expected[i].options.view.eye, table[i].options.view.eye) << i;
    EXPECT_EQ(expected[i].options.view.forward, table[i].options.view.forward) << i;
    EXPECT_EQ(expected[i].options.view.up, table[i].options.view.up) << i;
  }
}

TEST_F(NpyRowsTest, StandsForTheTableWithItsNumbersInColumns) {
  expectSame(text("eye_x,eye_y,eye_z\n0.1,-2,1e+300\n3,4,5e-324\n"),
             read(npy(headerOf("(2, 3)"), {0.1, -2, 1e300, 3, 4, 5e-324})));
  setting.options = {"--up=0,1,0"};
  expectSame(text("eye,forward_x,forward_y,forward_z\n\"1,2,3\",0,0,-1\n"),
             read(npy(headerOf("(1, 6)"), {1, 2, 3, 0, 0, -1})));
  expectSame(text("eye,forward,up\n\"1,2,3\",\"0,0,-1\",\"1,0.5,0\"\n"),
             read(npy(headerOf("(1, 9)"), {1, 2, 3, 0, 0, -1, 1, 0.5, 0})));
}

// A view that cannot be made fails by itself, as that of a table in text does.
TEST_F(NpyRowsTest, WhatIsNoNumberIsReadAsFromText) {
  const ViewTable table = read(npy(headerOf("(1, 3)"), {1, std::nan(""), 3}));
  const ViewTable same = text("eye\n\"1,nan,3\"\n");
  EXPECT_EQ(same.key(0), table.key(0));
  EXPECT_TRUE(std::isnan(same[0].options.view.eye[1]));
  EXPECT_TRUE(std::isnan(table[0].options.view.eye[1]));
}

TEST_F(NpyRowsTest, HeaderMayBeOfAnyVersionOrderAndLength) {
  const std::string header = "{'shape':(1,3),'fortran_order':False,'descr':'<f8'}   \n";
  expectSame(text("eye\n\"1,2,3\"\n"), read(npy(header, {1, 2, 3})));
  std::string second = npy(header, {1, 2, 3});
  second[6] = 2;
  second.insert(10, 2, '\0');
  expectSame(text("eye\n\"1,2,3\"\n"), read(second));
}

TEST_F(NpyRowsTest, OtherArraysAreRefused) {
  EXPECT_EQ(path + ": has the shape (2, 4)" + Wanted, fault(npy(headerOf("(2, 4)"), {})));
  EXPECT_EQ(path + ": has the shape (6,)" + Wanted, fault(npy(headerOf("(6,)"), {})));
  EXPECT_EQ(path + ": has the shape (1, 3, 1)" + Wanted, fault(npy(headerOf("(1, 3, 1)"), {})));
  EXPECT_EQ(path + ": has the shape ()" + Wanted, fault(npy(headerOf("()"), {})));
  EXPECT_EQ(path + ": has the shape (3 3)" + Wanted, fault(npy(headerOf("(3 3)"), {})));
  EXPECT_EQ(path + ": holds values of the type '<f4'" + Wanted,
            fault(npy(headerOf("(1, 3)", "'<f4'"), {})));
  EXPECT_EQ(path + ": holds values of the type '>f8'" + Wanted,
            fault(npy(headerOf("(1, 3)", "'>f8'"), {})));
  EXPECT_EQ(path + ": holds records" + Wanted,
            fault(npy(headerOf("(1,)", "[('eye_x', '<f8')]"), {})));
  EXPECT_EQ(path + ": is stored by columns (Fortran order): save numpy.ascontiguousarray of it",
            fault(npy(headerOf("(2, 3)", "'<f8'", "True"), {1, 2, 3, 4, 5, 6})));
  EXPECT_EQ(path + ": has no view", fault(npy(headerOf("(0, 3)"), {})));
  EXPECT_EQ(path + ": has a header that is none of numpy's format .npy", fault(npy("{}", {})));
}

TEST_F(NpyRowsTest, FilesThatAreNotWholeAreRefused) {
  const std::string whole = npy(headerOf("(2, 3)"), {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(path + ": has the shape (2, 3), but 40 bytes of numbers: it is cut off",
            fault(whole.substr(0, whole.size() - 8)));
  EXPECT_EQ(path + ": has the shape (2, 3), but 56 bytes of numbers: something follows",
            fault(whole + "12345678"));
  EXPECT_EQ(
      path + ": has the shape (1000000000000000000, 3), but 0 bytes of numbers: it is cut off",
      fault(npy(headerOf("(1000000000000000000, 3)"), {})));
  EXPECT_EQ(path + ": is cut off in its header", fault(whole.substr(0, 40)));
  EXPECT_EQ(path + ": is cut off in its header", fault(whole.substr(0, 9)));
  EXPECT_EQ(path + ": is cut off in its header", fault(whole.substr(0, 6)));
  EXPECT_EQ(path + ": is no array of numpy's format .npy, though its name says so",
            fault("eye\n\"1,2,3\"\n"));
  std::string later = whole;
  later[6] = 4;
  EXPECT_EQ(path + ": has version 4 of the format .npy: versions 1 to 3 are read", fault(later));
}

// However a file is cut, it is refused, and read no farther than it goes.
TEST_F(NpyRowsTest, NoBeginningOfAFileIsATable) {
  const std::string whole = npy(headerOf("(2, 3)"), {1, 2, 3, 4, 5, 6});
  for (std::size_t size = 1; size < whole.size(); ++size)
    EXPECT_NE("", fault(whole.substr(0, size))) << size;
}

TEST_F(NpyRowsTest, FaultsNameTheirRow) {
  setting.options = {"--output=a.json"};
  EXPECT_EQ(path +
                ": row 2: column --output: \"a.json\" is written by row 1 as well; {name} in it "
                "stands for the view's name",
            fault(npy(headerOf("(2, 3)"), {1, 2, 3, 4, 5, 6})));
}

TEST(NpyRowsProgram, BatchMakesTheSameOfArrayAndText) {
  const TempFolder folder;
  Session::writeFile(folder.path("views.csv"),
                     "eye,forward\n\"0.1,0.3,1.6\",\"1,0,0\"\n\"0.2,0.3,1.6\",\"0,0,1\"\n");
  Session::writeFile(folder.path("views.npy"),
                     npy(headerOf("(2, 6)"), {0.1, 0.3, 1.6, 1, 0, 0, 0.2, 0.3, 1.6, 0, 0, 1}));
  for (const std::string kind : {"csv", "npy"}) {
    const Result result = Lumivane::Test::runProcess(
        {LUMIVANE_PROGRAM, "batch", LUMIVANE_SCENES "/room.json", folder.path("views." + kind),
         "--out-dir", folder.path(kind), "--jobs", "1", "-o", "{name}.json"},
        {{"DISPLAY", {}}});
    ASSERT_EQ(0, result.status) << result.err;
  }
  for (const char* file : {"/summary.csv", "/journal.csv", "/view1.json", "/view2.json"})
    EXPECT_EQ(fileBytes(folder.path("csv") + file), fileBytes(folder.path("npy") + file)) << file;
}

}  // namespace
}  // namespace Lumivane::Host
