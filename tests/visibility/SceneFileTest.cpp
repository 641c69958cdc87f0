#include "visibility/Polygons.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/MapText.h>
#include <lumivane/visibility/SceneFile.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace Lumivane::Visibility {
namespace {

namespace fs = std::filesystem;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::square;
using ::testing::HasSubstr;

// A folder of the test's own.
class SceneFileTest : public ::testing::Test {
 protected:
  SceneFileTest()
      : folder(fs::temp_directory_path() /
               ("lumivane-scene-file-" + std::to_string(getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::create_directories(folder);
  }
  ~SceneFileTest() override { fs::remove_all(folder); }

  std::string path(const std::string& name = "scene.lumiscene") const {
    return (folder / name).string();
  }

  static std::string refusal(const std::string& file) {
    try {
      const SceneFile read(file);
      read.text("note");
    } catch (const Session::Error& error) {
      return error.what();
    }
    return "";
  }

  const fs::path folder;
};

// Squares over each other and some that are not flat, of two objects and two classes.
PolygonScene someScene() {
  PolygonBuilder builder;
  Random random(7);
  for (int i = 0; i < 40; ++i)
    builder.add(square(random.between(-2, 2), random.between(-2, 2), random.below(5), 1.5), 1);
  for (int i = 0; i < 20; ++i) {
    auto outline = square(random.between(-2, 2), random.between(-2, 2), random.below(5), 1.0);
    outline[0][2] += 0.3;
    builder.add(outline, 3);
  }
  builder.add({{0, 0, 0}, {1, 1, 1}}, 3);  // dropped
  PolygonScene scene = builder.scene;
  scene.objectIds = {"first", "", "third \xff"};
  scene.classNames = {"roof", "wall"};
  for (std::size_t i = 0; i + 1 < scene.offsets.size(); ++i)
    scene.classes.push_back(static_cast<int>(i % 3) - 1);
  return scene;
}

std::string mapFrom(const SceneIndex& index, const Vector& eye) {
  LookOptions options;
  options.forward = {0.1, 0.2, -1};
  options.alone = true;
  options.edgeSources = true;
  const VisibleMap map = index.look(eye, options);
  return MapText::mapJson(map) + MapText::csv(map, MapShares(map), ShareDepth::Region);
}

TEST_F(SceneFileTest, GivesBackAnIndexThatSeesTheSame) {
  const SceneIndex made(someScene());
  made.write(path());
  const SceneIndex read = SceneIndex::read(path());
  EXPECT_EQ(made.regionCount(), read.regionCount());
  EXPECT_EQ(made.droppedRegionCount(), read.droppedRegionCount());
  EXPECT_EQ(made.triangulatedRegionCount(), read.triangulatedRegionCount());
  EXPECT_EQ(made.layerCount(), read.layerCount());
  EXPECT_EQ(made.edges().size(), read.edges().size());
  EXPECT_EQ(made.pieces().points, read.pieces().points);
  Random random(3);
  for (int i = 0; i < 5; ++i) {
    const Vector eye = {random.between(-2, 2), random.between(-2, 2), random.between(4, 6)};
    EXPECT_EQ(mapFrom(made, eye), mapFrom(read, eye));
  }
}

TEST_F(SceneFileTest, WritesTheSameBytesForTheSameScene) {
  SceneIndex(someScene()).write(path());
  SceneIndex::read(path()).write(path("again.lumiscene"));
  EXPECT_EQ(Session::readBytes(path()), Session::readBytes(path("again.lumiscene")));
  EXPECT_EQ(SceneFile(path()).key(), SceneFile(path("again.lumiscene")).key());
}

TEST_F(SceneFileTest, KeepsAnIndexAfterTheFileIsReplacedOrGone) {
  SceneIndex(someScene()).write(path());
  const SceneIndex read = SceneIndex::read(path());
  const std::string before = mapFrom(read, {0, 0, 5});
  PolygonBuilder other;
  other.add(square(0, 0, 0, 1));
  SceneIndex(other.scene).write(path());
  EXPECT_EQ(before, mapFrom(read, {0, 0, 5}));
  fs::remove(path());
  EXPECT_EQ(before, mapFrom(read, {0, 0, 5}));
}

TEST_F(SceneFileTest, TakesAnEmptyScene) {
  SceneIndex(PolygonScene{}).write(path());
  const SceneIndex read = SceneIndex::read(path());
  EXPECT_EQ(0U, read.regionCount());
  EXPECT_EQ(1U, read.look({0, 0, 0}).cells.size());
}

TEST_F(SceneFileTest, HoldsOutlinesAndTexts) {
  const PolygonScene scene = someScene();
  const SceneIndex index(scene);
  SceneFile::write(path(), index, {&scene, {{"note", std::string("a\0b\xff", 4)}, {"empty", ""}}});
  const SceneFile file(path());
  EXPECT_EQ(std::string("a\0b\xff", 4), file.text("note"));
  EXPECT_TRUE(file.hasText("empty"));
  EXPECT_EQ("", file.text("empty"));
  EXPECT_FALSE(file.hasText("other"));
  EXPECT_EQ("", file.text("other"));
  const SceneFile::Outlines outlines = file.outlines();
  ASSERT_EQ(index.regionCount(), outlines.count);
  EXPECT_EQ(scene.points,
            std::vector<Vector>(outlines.points, outlines.points + outlines.pointCount));
  EXPECT_EQ(scene.offsets,
            std::vector<std::size_t>(outlines.offsets, outlines.offsets + outlines.count + 1));
  EXPECT_EQ(scene.corners, std::vector<int>(outlines.corners,
                                            outlines.corners + outlines.offsets[outlines.count]));
}

TEST_F(SceneFileTest, HoldsNoOutlinesUnlessTheyAreGiven) {
  SceneIndex(someScene()).write(path());
  EXPECT_EQ(nullptr, SceneFile(path()).outlines().points);
  EXPECT_EQ(0U, SceneFile(path()).outlines().count);
}

TEST_F(SceneFileTest, RefusesNamesOfTextsThatAreNoneAndOutlinesOfAnotherScene) {
  const SceneIndex index(someScene());
  EXPECT_THROW(SceneFile::write(path(), index, {nullptr, {{"a b", ""}}}), std::invalid_argument);
  EXPECT_THROW(SceneFile::write(path(), index, {nullptr, {{"", ""}}}), std::invalid_argument);
  EXPECT_THROW(SceneFile::write(path(), index, {nullptr, {{std::string(25, 'a'), ""}}}),
               std::invalid_argument);
  const PolygonScene other = [] {
    PolygonBuilder builder;
    builder.add(square(0, 0, 0, 1));
    return builder.scene;
  }();
  EXPECT_THROW(SceneFile::write(path(), index, {&other, {}}), std::invalid_argument);
  EXPECT_FALSE(fs::exists(path()));
}

TEST_F(SceneFileTest, SaysWhatIsWrongWithAFile) {
  EXPECT_THAT(refusal(path("none.lumiscene")), HasSubstr("cannot be read"));
  EXPECT_THAT(refusal(folder.string()), HasSubstr("no plain file"));
  Session::writeFile(path(), "");
  EXPECT_THAT(refusal(path()), HasSubstr("is no scene made ready for looking"));
  Session::writeFile(path(), "{\"Points\": []}");
  EXPECT_THAT(refusal(path()), HasSubstr("is no scene made ready for looking"));

  SceneIndex(someScene()).write(path());
  const std::string good = Session::readBytes(path());
  Session::writeFile(path(), good.substr(0, 20));
  EXPECT_THAT(refusal(path()), HasSubstr("cut off in its first bytes"));
  Session::writeFile(path(), good.substr(0, good.size() - 1));
  EXPECT_THAT(refusal(path()), HasSubstr("is cut off: it has " + std::to_string(good.size() - 1) +
                                         " of " + std::to_string(good.size()) + " bytes"));
  Session::writeFile(path(), good + "x");
  EXPECT_THAT(refusal(path()), HasSubstr("bytes behind its end"));
  std::string other = good;
  other[8] = static_cast<char>(SceneFile::Version + 1);
  Session::writeFile(path(), other);
  EXPECT_THAT(refusal(path()), HasSubstr("has version " + std::to_string(SceneFile::Version + 1) +
                                         " of the format, and this program reads version " +
                                         std::to_string(SceneFile::Version) +
                                         "; make it anew from the scene, with lumivane import"));
  other = good;
  std::swap(other[12], other[15]);
  std::swap(other[13], other[14]);
  Session::writeFile(path(), other);
  EXPECT_THAT(refusal(path()), HasSubstr("another byte order"));
}

using SceneFileProperty = SceneFileTest;

std::string fullFile(const std::string& path) {
  const PolygonScene scene = someScene();
  SceneFile::write(path, SceneIndex(scene), {&scene, {{"note", "a text"}}});
  return Session::readBytes(path);
}

TEST_F(SceneFileProperty, EveryChangedByteIsNoticed) {
  const std::string good = fullFile(path());
  EXPECT_EQ("", refusal(path()));
  for (std::size_t at = 0; at < good.size(); at += at < 4000 ? 7 : 197) {
    std::string bad = good;
    bad[at] = static_cast<char>(bad[at] ^ (1 << (at % 8)));
    Session::writeFile(path("bad.lumiscene"), bad);
    EXPECT_NE("", refusal(path("bad.lumiscene"))) << "byte " << at;
  }
}

TEST_F(SceneFileProperty, EveryLengthIsNoticed) {
  const std::string good = fullFile(path());
  for (std::size_t length = 0; length < good.size(); length += length < 4000 ? 61 : 997) {
    Session::writeFile(path("bad.lumiscene"), good.substr(0, length));
    EXPECT_NE("", refusal(path("bad.lumiscene"))) << length << " bytes";
  }
}

// The format as it stands in files, to make hashes right again.
constexpr std::size_t HeaderSize = 40;
constexpr std::size_t SectionSize = 72;

std::uint64_t numberAt(const std::string& bytes, std::size_t at) {
  std::uint64_t number = 0;
  std::memcpy(&number, bytes.data() + at, sizeof number);
  return number;
}

void setNumber(std::string& bytes, std::size_t at, std::uint64_t number) {
  std::memcpy(&bytes[at], &number, sizeof number);
}

std::size_t sectionCount(const std::string& bytes) { return numberAt(bytes, 24); }

void makeHashesRight(std::string& bytes) {
  for (std::size_t i = 0; i < sectionCount(bytes); ++i) {
    const std::size_t at = HeaderSize + i * SectionSize;
    const std::uint64_t size = numberAt(bytes, at + 40) * numberAt(bytes, at + 56);
    setNumber(bytes, at + 64, XXH3_64bits(bytes.data() + numberAt(bytes, at + 48), size));
  }
  setNumber(bytes, 32, 0);
  const std::uint64_t header = XXH3_64bits(bytes.data(), HeaderSize);
  setNumber(
      bytes, 32,
      XXH3_64bits_withSeed(bytes.data() + HeaderSize, sectionCount(bytes) * SectionSize, header));
}

// Numbers that the hashes cannot find are found by the checks, or do no harm: what is read can be
// looked at.
TEST_F(SceneFileProperty, NumbersThatPointNowhereAreFoundWithRightHashes) {
  const std::string good = fullFile(path());
  std::string same = good;
  makeHashesRight(same);
  ASSERT_EQ(good, same);
  Random random(5);
  int refused = 0;
  for (int i = 0; i < 1500; ++i) {
    std::string bad = good;
    const std::size_t first = HeaderSize + sectionCount(good) * SectionSize;
    const auto at = first + static_cast<std::size_t>(
                                random.between(0, static_cast<double>(good.size() - first - 4))) /
                                4 * 4;
    const std::int32_t wild[] = {-1, 0x7FFFFFFF, static_cast<std::int32_t>(0x80000000), 1 << 20,
                                 random.below(1000)};
    std::memcpy(&bad[at], &wild[random.below(5)], 4);
    makeHashesRight(bad);
    Session::writeFile(path("bad.lumiscene"), bad);
    try {
      const SceneFile file(path("bad.lumiscene"));
      file.index().pieces();
      file.index().edges();
      file.index().seenIn({0.1, 0.2, 6}, {{0, 0, -1}, {0.3, 0.1, -1}});
    } catch (const Session::Error& error) {
      EXPECT_THAT(error.what(), HasSubstr("is damaged"));
      ++refused;
    }
  }
  EXPECT_GT(refused, 500);
}

}  // namespace
}  // namespace Lumivane::Visibility
