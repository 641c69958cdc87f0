#include "view/RenderSpy.h"

#include <lumivane/utils/VtkUtils.h>
#include <lumivane/view/DebugViewer.h>

#include <stdexcept>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkActor.h>
#include <vtkActorCollection.h>
#include <vtkInteractorObserver.h>
#include <vtkProperty.h>

namespace Lumivane::Test {
namespace {

using View::DebugViewer;

vtkSmartPointer<vtkPolyData> triangleAt(double z) {
  return Utils::VtkUtils::createPolydataFromPolygon({{0, 0, z}, {1, 0, z}, {0, 1, z}});
}

// How many actors a viewer shows; -1 if it opens no window.
int actorsShown(DebugViewer& viewer) {
  RenderSpy spy;
  viewer.show();
  return spy.renderers.empty() ? -1 : spy.renderers[0]->GetActors()->GetNumberOfItems();
}

TEST(DebugViewer, WithoutActorsOpensNothing) {
  RenderSpy spy;
  DebugViewer().show();
  for (const auto& window : spy.windows) EXPECT_TRUE(window->GetNeverRendered());
  EXPECT_TRUE(spy.interactors.empty());
}

TEST(DebugViewer, ShowsAllActorsInOrderInOneWindow) {
  DebugViewer viewer;
  viewer.addActor(triangleAt(0), {255, 51, 0, 102});
  viewer.addActor(triangleAt(1), {0, 0, 255, 255});
  RenderSpy spy;
  viewer.show();

  ASSERT_EQ(1u, spy.windows.size());
  vtkRenderWindow* window = spy.windows[0];
  EXPECT_STREQ("Debug Window", window->GetWindowName());
  EXPECT_EQ(800, window->GetSize()[0]);
  EXPECT_EQ(600, window->GetSize()[1]);
  EXPECT_STREQ("vtkInteractorStyleTrackballCamera",
               window->GetInteractor()->GetInteractorStyle()->GetClassName());

  ASSERT_EQ(2u, spy.renderers.size());  // the second is the marker's
  vtkActorCollection* actors = spy.renderers[0]->GetActors();
  ASSERT_EQ(2, actors->GetNumberOfItems());
  auto* first = vtkActor::SafeDownCast(actors->GetItemAsObject(0));
  auto* second = vtkActor::SafeDownCast(actors->GetItemAsObject(1));
  EXPECT_DOUBLE_EQ(51 / 255.0, first->GetProperty()->GetColor()[1]);
  EXPECT_DOUBLE_EQ(102 / 255.0, first->GetProperty()->GetOpacity());
  EXPECT_DOUBLE_EQ(1.0, second->GetProperty()->GetColor()[2]);
  EXPECT_DOUBLE_EQ(1.0, second->GetProperty()->GetOpacity());
  EXPECT_DOUBLE_EQ(1.0, spy.renderers[0]->GetBackground()[0]);
}

TEST(DebugViewer, MarkerTakesTheLowerLeft) {
  DebugViewer viewer;
  viewer.addActor(triangleAt(0), {0, 0, 0, 255});
  RenderSpy spy;
  viewer.show();
  ASSERT_EQ(2u, spy.renderers.size());
  const double* viewport = spy.renderers[1]->GetViewport();
  EXPECT_THAT(std::vector<double>(viewport, viewport + 4),
              ::testing::ElementsAre(0.0, 0.0, 0.5, 0.1));
}

TEST(DebugViewer, SecondShowOpensTheSamePictureAgain) {
  DebugViewer viewer;
  viewer.addActor(triangleAt(0), {0, 0, 0, 255});
  EXPECT_EQ(1, actorsShown(viewer));
  EXPECT_EQ(1, actorsShown(viewer));
}

TEST(DebugViewer, CopiesShareTheActors) {
  DebugViewer viewer;
  viewer.addActor(triangleAt(0), {0, 0, 0, 255});
  DebugViewer copy(viewer);
  DebugViewer assigned;
  assigned = viewer;
  viewer.addActor(triangleAt(1), {0, 0, 0, 255});
  EXPECT_EQ(2, actorsShown(copy));
  EXPECT_EQ(2, actorsShown(assigned));
}

TEST(DebugViewer, MoveLeavesTheSourceWithoutActorsInBothForms) {
  DebugViewer viewer;
  viewer.addActor(triangleAt(0), {0, 0, 0, 255});
  DebugViewer moved(std::move(viewer));
  EXPECT_EQ(-1, actorsShown(viewer));  // NOLINT(bugprone-use-after-move): the source is looked at
  EXPECT_EQ(1, actorsShown(moved));

  DebugViewer target;
  target.addActor(triangleAt(1), {0, 0, 0, 255});
  target.addActor(triangleAt(2), {0, 0, 0, 255});
  target = std::move(moved);
  EXPECT_EQ(-1, actorsShown(moved));  // NOLINT(bugprone-use-after-move): the source is looked at
  EXPECT_EQ(1, actorsShown(target));
}

TEST(DebugViewer, ColourOfFewerThanFourValuesThrows) {
  DebugViewer viewer;
  EXPECT_THAT(
      [&] {
        viewer.addActor(triangleAt(0), {1, 2, 3});
      },
      ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript"));
}

}  // namespace
}  // namespace Lumivane::Test
