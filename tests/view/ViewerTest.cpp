#include "support/Capture.h"
#include "view/Models.h"
#include "view/RenderSpy.h"

#include <lumivane/geometry/Vector3d.h>
#include <lumivane/view/Viewer.h>

#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkInteractorStyle.h>
#include <vtkMapper.h>
#include <vtkPolyData.h>
#include <vtkPropCollection.h>
#include <vtkProperty.h>
#include <vtkTextActor3D.h>
#include <vtkTextProperty.h>

namespace Lumivane::Test {
namespace {

using ::testing::ElementsAre;
using View::Viewer;

// Both models, with something to draw.
struct Both {
  Both() {
    sceneModel.addRegion(sceneModel.addObject(1), 1,
                         {{4, -1, 0}, {4, 1, 0}, {4, 1, 2}, {4, -1, 2}});
    shotModel.addRectangle(1, 1, -0.5, -0.5, 0.5, 0.5);
  }
  // The console text of the windows opened on these two.
  std::string show() const {
    return capturedStdout(
        [&] { Viewer::createSceneAndShotView(sceneModel.scene.get(), shotModel.shot.get()); });
  }
  SceneModel sceneModel;
  ShotModel shotModel;
};

std::vector<double> three(const double* values) { return {values[0], values[1], values[2]}; }
std::vector<double> four(const double* values) {
  return {values[0], values[1], values[2], values[3]};
}

std::vector<vtkProp*> propsOf(vtkRenderer* renderer) {
  std::vector<vtkProp*> result;
  vtkCollectionSimpleIterator position = nullptr;
  vtkPropCollection* props = renderer->GetViewProps();
  props->InitTraversal(position);
  while (vtkProp* prop = props->GetNextProp(position)) result.push_back(prop);
  return result;
}

vtkPolyData* dataOf(vtkProp* prop) {
  return vtkPolyData::SafeDownCast(
      vtkActor::SafeDownCast(prop)->GetMapper()->GetInputDataObject(0, 0));
}

// x minimum, x maximum, y minimum, y maximum, rounded to 4 decimals.
std::vector<double> extent(vtkProp* prop) {
  std::vector<double> result = four(dataOf(prop)->GetBounds());
  for (double& value : result) value = std::round(value * 1e4) / 1e4;
  return result;
}

int opacity255(vtkProp* prop) {
  return static_cast<int>(
      std::lround(vtkActor::SafeDownCast(prop)->GetProperty()->GetOpacity() * 255.0));
}

// Renderers are made in the order: scene, its marker, shot, its marker.
constexpr size_t SceneRenderer = 0;
constexpr size_t SceneMarker = 1;
constexpr size_t ShotRenderer = 2;
constexpr size_t ShotMarker = 3;
constexpr size_t ShotActors = 2;  // one polygon group and one line group stand before the axes

TEST(Viewer, EmptyFileNamesPrintTheFirstMessageAndOpenNothing) {
  RenderSpy spy;
  for (const auto& [scene, shot] : {std::pair<const char*, const char*>{"", ""},
                                    std::pair<const char*, const char*>{"", "shot.json"},
                                    std::pair<const char*, const char*>{"scene.json", ""}}) {
    EXPECT_EQ("Scene and shot views creating\n\n", capturedStdout([&, a = scene, b = shot] {
                Viewer::createSceneAndShotView(std::string(a), std::string(b));
              }));
  }
  EXPECT_TRUE(spy.windows.empty());
}

TEST(Viewer, FilesAreReadAndShownWithRingsSinceTheyHoldNoView) {
  const std::string data = LUMIVANE_TEST_DATA "/golden/";
  RenderSpy spy;
  const std::string text = capturedStdout([&] {
    Viewer::createSceneAndShotView(data + "c01_room.scene.json", data + "c01_room.shot.json");
  });
  EXPECT_EQ(0u, text.find("Scene and shot views creating\n\n"));
  EXPECT_NE(std::string::npos, text.find("Rendering\n\n"));
  ASSERT_EQ(4u, spy.renderers.size());
  EXPECT_GT(propsOf(spy.renderers[ShotRenderer]).size(), 15u);
}

TEST(Viewer, TwoNullsMakeTwoWindowsAndShowNone) {
  RenderSpy spy;
  EXPECT_EQ("Rendering\n\n",
            capturedStdout([] { Viewer::createSceneAndShotView(nullptr, nullptr); }));
  ASSERT_EQ(2u, spy.windows.size());
  for (const auto& window : spy.windows) EXPECT_TRUE(window->GetNeverRendered());
  EXPECT_TRUE(spy.interactors.empty());
}

TEST(Viewer, BothWindowsHaveTheirTitleSizeAndPlace) {
  Both both;
  RenderSpy spy;
  EXPECT_EQ("Rendering\n\n", both.show());
  ASSERT_EQ(2u, spy.windows.size());
  EXPECT_STREQ("Сцена 3d", spy.windows[0]->GetWindowName());
  EXPECT_STREQ("Снимок 2d", spy.windows[1]->GetWindowName());
  for (const auto& window : spy.windows) {
    EXPECT_EQ(600, window->GetSize()[0]);
    EXPECT_EQ(500, window->GetSize()[1]);
  }
  EXPECT_EQ(0, spy.windows[0]->GetPosition()[0]);
  EXPECT_EQ(615, spy.windows[1]->GetPosition()[0]);
  EXPECT_THAT(three(spy.renderers[SceneRenderer]->GetBackground()), ElementsAre(1, 1, 1));
  EXPECT_THAT(three(spy.renderers[ShotRenderer]->GetBackground()), ElementsAre(1, 1, 1));
}

TEST(Viewer, SceneIsSeenFromTheEyeTowardsItsCentre) {
  Both both;
  const std::unique_ptr<Geometry::Point3d> oldEye(both.shotModel.orientation.getEyePosition());
  both.shotModel.orientation.setEyePosition(new Geometry::Point3d(-2, 0.5, 1));
  RenderSpy spy;
  both.show();
  vtkCamera* camera = spy.renderers[SceneRenderer]->GetActiveCamera();
  EXPECT_THAT(three(camera->GetPosition()), ElementsAre(-2, 0.5, 1));
  EXPECT_THAT(three(camera->GetViewUp()), ElementsAre(0, 0, 1));
  EXPECT_EQ(90.0, camera->GetViewAngle());
  // Deliberate: the centre of the scene, not the forward direction.
  EXPECT_THAT(three(camera->GetFocalPoint()), ElementsAre(4, 0, 1));
  EXPECT_FALSE(camera->GetParallelProjection());
}

TEST(Viewer, SceneCameraStaysAsResetWithoutAnOrientationOrViewOrShot) {
  for (const int missing : {0, 1, 2}) {
    Both both;
    if (missing == 0) both.shotModel.view.setOrientation(nullptr);
    if (missing == 1) both.shotModel.shot->setView(nullptr);
    RenderSpy spy;
    capturedStdout([&] {
      Viewer::createSceneAndShotView(both.sceneModel.scene.get(),
                                     missing == 2 ? nullptr : both.shotModel.shot.get());
    });
    vtkCamera* camera = spy.renderers[SceneRenderer]->GetActiveCamera();
    EXPECT_EQ(30.0, camera->GetViewAngle()) << missing;
    EXPECT_THAT(three(camera->GetFocalPoint()), ElementsAre(4, 0, 1)) << missing;
    EXPECT_THAT(three(camera->GetViewUp()), ElementsAre(0, 1, 0)) << missing;
  }
}

TEST(Viewer, OrientationWithoutEyeOrUpLeavesThoseAsTheyAre) {
  Both both;
  const std::unique_ptr<Geometry::Point3d> eye(both.shotModel.orientation.getEyePosition());
  const std::unique_ptr<Geometry::Vector3d> up(both.shotModel.orientation.getUpDirection());
  both.shotModel.orientation.setEyePosition(nullptr);
  both.shotModel.orientation.setUpDirection(nullptr);
  RenderSpy spy;
  both.show();
  EXPECT_EQ(90.0, spy.renderers[SceneRenderer]->GetActiveCamera()->GetViewAngle());
  EXPECT_THAT(three(spy.renderers[SceneRenderer]->GetActiveCamera()->GetViewUp()),
              ElementsAre(0, 1, 0));
}

TEST(Viewer, NullShotGivesTheSceneWindowAlone) {
  Both both;
  RenderSpy spy;
  capturedStdout([&] { Viewer::createSceneAndShotView(both.sceneModel.scene.get(), nullptr); });
  ASSERT_EQ(2u, spy.windows.size());
  EXPECT_FALSE(spy.windows[0]->GetNeverRendered());
  EXPECT_TRUE(spy.windows[1]->GetNeverRendered());
  EXPECT_STREQ("Сцена 3d", spy.windows[0]->GetWindowName());
  EXPECT_EQ(1u, spy.interactors.size());
}

TEST(Viewer, NullSceneGivesTheShotWindowAlone) {
  Both both;
  RenderSpy spy;
  capturedStdout([&] { Viewer::createSceneAndShotView(nullptr, both.shotModel.shot.get()); });
  ASSERT_EQ(2u, spy.windows.size());
  EXPECT_TRUE(spy.windows[0]->GetNeverRendered());
  EXPECT_FALSE(spy.windows[1]->GetNeverRendered());
  EXPECT_STREQ("Снимок 2d", spy.windows[1]->GetWindowName());
}

TEST(Viewer, FlatViewLooksFromAboveInParallel) {
  Both both;
  RenderSpy spy;
  both.show();
  vtkCamera* camera = spy.renderers[ShotRenderer]->GetActiveCamera();
  EXPECT_TRUE(camera->GetParallelProjection());
  EXPECT_THAT(three(camera->GetViewUp()), ElementsAre(0, 1, 0));
  EXPECT_THAT(three(camera->GetDirectionOfProjection()), ElementsAre(0, 0, -1));
  // So far away that the shot fills the window, whatever the axes take up.
  EXPECT_NEAR(std::sqrt(0.5), camera->GetParallelScale(), 1e-6);
}

TEST(Viewer, MarkersTakeTheirPartOfTheWindow) {
  Both both;
  RenderSpy spy;
  both.show();
  ASSERT_EQ(4u, spy.renderers.size());
  EXPECT_THAT(four(spy.renderers[SceneMarker]->GetViewport()), ElementsAre(0, 0, 0.5, 0.1));
  EXPECT_THAT(four(spy.renderers[ShotMarker]->GetViewport()), ElementsAre(0, 0, 0.1, 0.1));
}

TEST(Viewer, LeftAndMiddleButtonPanTheFlatViewAndTheRightOneZooms) {
  Both both;
  RenderSpy spy;
  both.show();
  ASSERT_EQ(2u, spy.interactors.size());
  EXPECT_STREQ("vtkInteractorStyleTrackballCamera",
               spy.interactors[0]->GetInteractorStyle()->GetClassName());
  auto* style = vtkInteractorStyle::SafeDownCast(spy.interactors[1]->GetInteractorStyle());
  ASSERT_NE(nullptr, style);
  EXPECT_STREQ("customMouseInteractorStyle", style->GetClassName());
  EXPECT_TRUE(style->IsA("vtkInteractorStyleTrackballCamera"));

  style->OnLeftButtonDown();
  EXPECT_EQ(VTKIS_PAN, style->GetState());
  style->OnLeftButtonUp();
  EXPECT_EQ(VTKIS_NONE, style->GetState());
  style->OnMiddleButtonDown();
  EXPECT_EQ(VTKIS_PAN, style->GetState());
  style->OnMiddleButtonUp();
  style->OnRightButtonDown();
  EXPECT_EQ(VTKIS_DOLLY, style->GetState());
  style->OnRightButtonUp();
}

// The four actors that both projections begin with, and the two labels.
void expectArrowsAndLabels(const std::vector<vtkProp*>& props, const char* horizontal,
                           const std::vector<double>& horizontalAt, const char* vertical,
                           const std::vector<double>& verticalAt) {
  EXPECT_THAT(extent(props[ShotActors]), ElementsAre(-1.1, 1.1, 0, 0));
  EXPECT_THAT(extent(props[ShotActors + 1]), ElementsAre(0, 0, -1.1, 1.1));
  EXPECT_EQ(128, opacity255(props[ShotActors]));
  EXPECT_EQ(128, opacity255(props[ShotActors + 1]));
  EXPECT_DOUBLE_EQ(1.125, extent(props[ShotActors + 2])[1]);
  EXPECT_DOUBLE_EQ(1.125, extent(props[ShotActors + 3])[3]);
  EXPECT_EQ(255, opacity255(props[ShotActors + 2]));
  for (const auto& [index, text, place] : {std::tuple(ShotActors + 4, horizontal, horizontalAt),
                                           std::tuple(ShotActors + 5, vertical, verticalAt)}) {
    auto* label = vtkTextActor3D::SafeDownCast(props[index]);
    ASSERT_NE(nullptr, label);
    EXPECT_STREQ(text, label->GetInput());
    EXPECT_EQ(place, three(label->GetPosition()));
    EXPECT_EQ(0.004, label->GetScale()[0]);
    EXPECT_EQ(20, label->GetTextProperty()->GetFontSize());
    EXPECT_THAT(three(label->GetTextProperty()->GetColor()), ElementsAre(0, 0, 0));
  }
}

// A camera of the kind 0.
struct UndefinedCamera : Base::ViewCamera {};

TEST(ProjectionAxes, AnyCameraButANormalOneGetsNineRings) {
  UndefinedCamera undefined;
  Base::ViewSphericalCamera spherical;
  for (const bool hasView : {true, false}) {
    for (Base::ViewCamera* camera :
         {static_cast<Base::ViewCamera*>(&undefined), static_cast<Base::ViewCamera*>(&spherical),
          static_cast<Base::ViewCamera*>(nullptr)}) {
      Both both;
      if (!hasView) both.shotModel.shot->setView(nullptr);
      both.shotModel.view.setCamera(camera);
      RenderSpy spy;
      both.show();
      const std::vector<vtkProp*> props = propsOf(spy.renderers[ShotRenderer]);
      ASSERT_EQ(ShotActors + 6 + 9, props.size());
      expectArrowsAndLabels(props, "u", {1.075, -0.1, 0}, "v", {-0.075, 1.05, 0});
      const double radii[] = {1.0, 0.88, 0.77, 0.66, 0.55, 0.44, 0.33, 0.22, 0.11};
      for (size_t i = 0; i < 9; ++i) {
        vtkProp* ring = props[ShotActors + 6 + i];
        EXPECT_NEAR(radii[i], extent(ring)[3], 0.01) << "ring " << i;
        EXPECT_EQ(50, dataOf(ring)->GetNumberOfPoints());
        EXPECT_EQ(0, dataOf(ring)->GetNumberOfPolys());
        EXPECT_EQ(128, opacity255(ring));
      }
    }
  }
}

TEST(ProjectionAxes, NormalCameraGetsTheGridWithItsDuplicates) {
  Both both;
  both.shotModel.view.setCamera(&both.shotModel.normal);
  RenderSpy spy;
  both.show();
  const std::vector<vtkProp*> props = propsOf(spy.renderers[ShotRenderer]);
  ASSERT_EQ(ShotActors + 6 + 1, props.size());
  expectArrowsAndLabels(props, "u1", {1.05, -0.1, 0}, "v1", {-0.12, 1.05, 0});
  vtkProp* grid = props.back();
  EXPECT_THAT(extent(grid), ElementsAre(-1, 1, -1, 1));
  // Deliberate: each of the 42 lines stands there 21 times.
  EXPECT_EQ(2 * 21 * 21, dataOf(grid)->GetNumberOfLines());
  EXPECT_EQ(10, opacity255(grid));
}

TEST(Viewer, WrongBrushNumberPassesThrough) {
  Both both;
  both.shotModel.addRectangle(9, 1, 0, 0, 1, 1);
  RenderSpy spy;
  EXPECT_THAT([&] { both.show(); },
              ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript"));
}

}  // namespace
}  // namespace Lumivane::Test
