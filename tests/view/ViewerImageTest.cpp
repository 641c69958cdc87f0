#include "support/Capture.h"
#include "view/Models.h"
#include "view/Pictures.h"
#include "view/RenderSpy.h"

#include <lumivane/io/DataReader.h>
#include <lumivane/view/Viewer.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkCamera.h>
#include <vtkTextActor3D.h>

namespace Lumivane::Test {
namespace {

using Bytes = std::vector<unsigned char>;
using View::Viewer;

constexpr int WriterDefault = -1;

Bytes inMemory(Shot::Shot2d* shot, int width = 300, int height = 250, int scale = 1,
               int compression = WriterDefault, int reserved = 0) {
  return Viewer::createImageFromShot(shot, "", width, height, reserved, scale, compression, false);
}

// The stream up to its own end: chunk by chunk to the one named IEND.
Bytes pngStream(const Bytes& bytes) {
  size_t at = 8;
  while (at + 12 <= bytes.size()) {
    size_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length * 256 + bytes[at + i];
    const bool isLast = std::memcmp(&bytes[at + 4], "IEND", 4) == 0;
    at += length + 12;
    if (isLast) return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at)};
  }
  return {};
}

bool startsAsPng(const Bytes& bytes) {
  static constexpr std::array<unsigned char, 8> signature = {0x89, 'P',  'N',  'G',
                                                             0x0D, 0x0A, 0x1A, 0x0A};
  return bytes.size() >= 8 && std::equal(signature.begin(), signature.end(), bytes.begin());
}

Bytes bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A folder of its own that goes with the test.
struct Folder {
  Folder() : path(std::filesystem::temp_directory_path() / ("lumivane-" + uniqueName())) {
    std::filesystem::create_directories(path);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path); }
  static std::string uniqueName() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    return std::string(info->name()) + "-" +
           std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
           std::to_string(reinterpret_cast<std::uintptr_t>(&info));
  }
  std::filesystem::path path;
};

// Overlapping rectangles of both brushes and pens.
struct SomeShot : ShotModel {
  SomeShot() {
    addRectangle(1, 1, -0.8, -0.6, 0.2, 0.4);
    addRectangle(2, 2, -0.2, -0.2, 0.9, 0.7);
  }
};

std::unique_ptr<Shot::Shot2d> shotOfFile(const std::string& name) {
  IO::DataReader reader;
  std::unique_ptr<Shot::Shot2d> shot;
  capturedStdout([&] {
    shot.reset(reader.readShotFile(LUMIVANE_TEST_DATA "/golden/" + name + ".shot.json"));
  });
  return shot;
}

TEST(ImageFromShot, InMemoryItIsAPngOfTheWindowsSize) {
  SomeShot model;
  const Bytes bytes = inMemory(model.shot.get(), 320, 240);
  ASSERT_TRUE(startsAsPng(bytes));
  EXPECT_THAT(pngSize(bytes), ::testing::ElementsAre(320u, 240u));
}

TEST(ImageFromShot, StreamEndsWithinTheVectorAndZerosFollow) {
  SomeShot model;
  const Bytes bytes = inMemory(model.shot.get());
  const Bytes stream = pngStream(bytes);
  ASSERT_FALSE(stream.empty());
  ASSERT_LE(stream.size(), bytes.size());
  for (size_t i = stream.size(); i < bytes.size(); ++i) ASSERT_EQ(0, bytes[i]) << "byte " << i;
}

TEST(ImageFromShot, LengthIsTheAllocatedSizeForEveryPicture) {
  // Deliberate: the array that VTK writes into grows in steps, so some pictures leave a tail.
  size_t tails = 0;
  for (const int width : {40, 80, 160, 320}) {
    SomeShot model;
    const Bytes bytes = inMemory(model.shot.get(), width, width);
    if (bytes.size() > pngStream(bytes).size()) ++tails;
  }
  EXPECT_GT(tails, 0u);
}

TEST(ImageFromShot, FileHoldsTheSamePngAndTheVectorIsEmpty) {
  SomeShot model;
  const Folder folder;
  const std::string path = (folder.path / "shot.png").string();
  EXPECT_TRUE(
      Viewer::createImageFromShot(model.shot.get(), path, 300, 250, 0, 1, WriterDefault, true)
          .empty());
  EXPECT_EQ(pngStream(inMemory(model.shot.get())), bytesOf(path));
}

TEST(ImageFromShot, FileThatCannotBeWrittenGivesAnEmptyVector) {
  SomeShot model;
  Bytes bytes;
  const std::string report = capturedStderr([&] {
    bytes = Viewer::createImageFromShot(model.shot.get(), "/no/such/folder/shot.png", 64, 64, 0, 1,
                                        WriterDefault, true);
  });
  EXPECT_TRUE(bytes.empty());
  EXPECT_FALSE(report.empty());  // VTK's own
}

TEST(ImageFromShot, ScaleMultipliesBothDirections) {
  SomeShot model;
  EXPECT_THAT(pngSize(inMemory(model.shot.get(), 600, 500, 2)),
              ::testing::ElementsAre(1200u, 1000u));
}

TEST(ImageFromShot, CompressionLevelCountsFrom0To9Only) {
  SomeShot model;
  const auto sizeAt = [&](int level) {
    return pngStream(inMemory(model.shot.get(), 300, 250, 1, level)).size();
  };
  const size_t byDefault = sizeAt(5);  // the writer's own default
  EXPECT_EQ(byDefault, sizeAt(-1));
  EXPECT_EQ(byDefault, sizeAt(10));
  EXPECT_LT(sizeAt(9), byDefault);
  EXPECT_GT(sizeAt(0), 300u * 250u * 3u);
}

TEST(ImageFromShot, ReservedValueChangesNothing) {
  SomeShot model;
  const Bytes bytes = inMemory(model.shot.get());
  EXPECT_EQ(bytes, inMemory(model.shot.get(), 300, 250, 1, WriterDefault, 99));
  EXPECT_EQ(bytes, inMemory(model.shot.get(), 300, 250, 1, WriterDefault, -1));
}

TEST(ImageFromShot, NullShotGivesNoFileAndNoWindow) {
  const Folder folder;
  RenderSpy spy;
  EXPECT_TRUE(inMemory(nullptr).empty());
  EXPECT_TRUE(Viewer::createImageFromShot(nullptr, (folder.path / "shot.png").string(), 300, 250, 0,
                                          1, WriterDefault, true)
                  .empty());
  EXPECT_TRUE(std::filesystem::is_empty(folder.path));
  EXPECT_TRUE(spy.windows.empty());
}

TEST(ImageFromShot, CameraStandsOneLayerAboveTheLastRegion) {
  for (const int regions : {0, 1, 5}) {
    ShotModel model;
    for (int i = 0; i < regions; ++i) model.addRectangle(1, 1, 0, 0, 0.5, 0.5);
    RenderSpy spy;
    inMemory(model.shot.get(), 64, 64);
    ASSERT_EQ(2u, spy.renderers.size());
    vtkCamera* camera = spy.renderers[0]->GetActiveCamera();
    EXPECT_EQ((regions + 1) * 0.1, camera->GetPosition()[2]);
    EXPECT_EQ(1.0, camera->GetParallelScale());
    EXPECT_TRUE(camera->GetParallelProjection());
  }
}

TEST(ImageFromShot, ShotWithoutRegionsListShowsTheAxes) {
  Shot::Shot2d bare;
  RenderSpy spy;
  EXPECT_TRUE(startsAsPng(inMemory(&bare, 64, 64)));
  EXPECT_EQ(15, spy.renderers[0]->GetViewProps()->GetNumberOfItems());
  EXPECT_EQ(0.1, spy.renderers[0]->GetActiveCamera()->GetPosition()[2]);
}

TEST(ImageFromShot, LabelsTellTheKindOfTheCamera) {
  for (const bool isNormal : {false, true}) {
    SomeShot model;
    if (isNormal) model.view.setCamera(&model.normal);
    RenderSpy spy;
    inMemory(model.shot.get(), 64, 64);
    std::vector<std::string> labels;
    vtkPropCollection* props = spy.renderers[0]->GetViewProps();
    for (int i = 0; i < props->GetNumberOfItems(); ++i) {
      auto* label = vtkTextActor3D::SafeDownCast(props->GetItemAsObject(i));
      if (label != nullptr) labels.emplace_back(label->GetInput());
    }
    EXPECT_EQ(
        (isNormal ? std::vector<std::string>{"u1", "v1"} : std::vector<std::string>{"u", "v"}),
        labels);
  }
}

TEST(ImageFromShot, WrongPenNumberPassesThrough) {
  ShotModel model;
  model.addRectangle(1, 9, 0, 0, 1, 1);
  EXPECT_THAT([&] { inMemory(model.shot.get()); },
              ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript"));
}

TEST(ImageFromShot, IsDrawnOffScreen) {
  SomeShot model;
  RenderSpy spy;
  inMemory(model.shot.get(), 64, 64);
  ASSERT_EQ(1u, spy.windows.size());
  EXPECT_TRUE(spy.windows[0]->GetOffScreenRendering());
  EXPECT_FALSE(spy.windows[0]->GetMapped());
}

TEST(ImageFromShotPicture, RectanglesUnderRings) {
  SomeShot model;
  EXPECT_TRUE(looksLike("rectangles_rings", inMemory(model.shot.get(), 600, 500)));
}

TEST(ImageFromShotPicture, RectanglesUnderTheGrid) {
  SomeShot model;
  model.view.setCamera(&model.normal);
  EXPECT_TRUE(looksLike("rectangles_grid", inMemory(model.shot.get(), 600, 500)));
}

TEST(ImageFromShotPicture, OutlineStyle) {
  SomeShot model;
  model.view.setDisplayStyle(Base::ViewDisplayStyle::Outline);
  EXPECT_TRUE(looksLike("rectangles_outline", inMemory(model.shot.get(), 600, 500)));
}

TEST(ImageFromShotPicture, HalfTransparentStyle) {
  SomeShot model;
  model.view.setDisplayStyle(Base::ViewDisplayStyle::HalfTransparent);
  EXPECT_TRUE(looksLike("rectangles_half", inMemory(model.shot.get(), 600, 500)));
}

TEST(ImageFromShotPicture, FurnishedRoom) {
  const auto shot = shotOfFile("e01_furniture");
  ASSERT_NE(nullptr, shot);
  EXPECT_TRUE(looksLike("furniture", inMemory(shot.get(), 600, 600)));
}

TEST(ImageFromShotPicture, CityStreetInTheSquareProjection) {
  const auto shot = shotOfFile("d02_city_normal");
  ASSERT_NE(nullptr, shot);
  ShotModel model;
  model.view.setCamera(&model.normal);
  shot->setView(&model.view);
  EXPECT_TRUE(looksLike("city_square", inMemory(shot.get(), 600, 600)));
}

TEST(ImageFromShotPicture, GridAndRingsAreDistinguished) {
  SomeShot model;
  const auto rings = decodedPng(inMemory(model.shot.get(), 600, 500));
  model.view.setCamera(&model.normal);
  const auto grid = decodedPng(inMemory(model.shot.get(), 600, 500));
  EXPECT_GT(shareOfDifferentPixels(rings, grid), ShareOfPixelsThatMayDiffer);
}

}  // namespace
}  // namespace Lumivane::Test
