#include "plain/Groups.h"
#include "support/Capture.h"
#include "view/Models.h"

#include <lumivane/view/ViewBuilder.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkIdList.h>
#include <vtkMapper.h>
#include <vtkPolyData.h>
#include <vtkProperty.h>

namespace Lumivane::Test {
namespace {

using View::ViewBuilder;
using Corners3 = std::vector<std::array<double, 3>>;

const Corners3 Triangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
const Corners3 Square = {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
const Corners3 Stroke = {{0, 0, 0}, {1, 1, 1}};

// What an actor draws and how, in short.
struct Drawn {
  bool isLines;
  long cells;
  std::array<double, 3> color;
  double opacity;
  float lineWidth;
};

vtkPolyData* dataOf(vtkActor* actor) {
  return vtkPolyData::SafeDownCast(actor->GetMapper()->GetInputDataObject(0, 0));
}

std::vector<Drawn> drawn(vtkActorCollection* actors) {
  std::vector<Drawn> result;
  vtkCollectionSimpleIterator position = nullptr;
  actors->InitTraversal(position);
  while (vtkActor* actor = actors->GetNextActor(position)) {
    vtkPolyData* data = dataOf(actor);
    vtkProperty* property = actor->GetProperty();
    const double* color = property->GetColor();
    result.push_back({data->GetNumberOfLines() > 0,
                      static_cast<long>(data->GetNumberOfCells()),
                      {color[0], color[1], color[2]},
                      property->GetOpacity(),
                      property->GetLineWidth()});
  }
  return result;
}

std::vector<Drawn> drawnScene(const SceneModel& model) {
  return drawn(ViewBuilder::createSceneView(model.scene.get()));
}

std::vector<Drawn> drawnShot(const ShotModel& model) {
  return drawn(ViewBuilder::createShotView(model.shot.get()));
}

const std::array<double, 3> Red = {1, 0, 0};
const std::array<double, 3> Green = {0, 102 / 255.0, 0};
const std::array<double, 3> Black = {0, 0, 0};
const std::array<double, 3> Blue = {0, 0, 51 / 255.0};

auto throwsSubscript() {
  return ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript");
}

TEST(SceneView, WithObjectsAndNoPointsIsEmpty) {
  SceneModel model;
  model.addObject(1);
  EXPECT_TRUE(drawnScene(model).empty());
}

TEST(SceneView, WithoutAListOrItsVectorIsEmpty) {
  Scene::Scene3D bare;
  EXPECT_EQ(0, ViewBuilder::createSceneView(&bare)->GetNumberOfItems());
  bare.setObjects(new Scene::Objects);
  EXPECT_EQ(0, ViewBuilder::createSceneView(&bare)->GetNumberOfItems());

  SceneModel model;
  model.addRegion(model.addObject(1), 1, Triangle);
  EXPECT_EQ(2u, drawnScene(model).size());
  Geometry::Points3d withoutVector;
  const std::unique_ptr<std::vector<Geometry::Point3d*>> vector(withoutVector.getPoints());
  withoutVector.setPoints(nullptr);
  const std::unique_ptr<Geometry::Points3d> points(model.scene->getPoints());
  model.scene->setPoints(&withoutVector);
  EXPECT_TRUE(drawnScene(model).empty());
  model.scene->setPoints(nullptr);
  EXPECT_TRUE(drawnScene(model).empty());
}

TEST(SceneView, GivesEachObjectsPolygonsByAscendingBrushAndThenItsLines) {
  SceneModel model;
  Scene::Object* first = model.addObject(2);
  model.addRegion(first, 2, Triangle);
  model.addRegion(first, 1, Square);
  model.addRegion(first, 2, Square);
  Scene::Object* second = model.addObject(1);
  model.addRegion(second, 1, Triangle);

  const std::vector<Drawn> actors = drawnScene(model);
  ASSERT_EQ(5u, actors.size());
  EXPECT_EQ(Red, actors[0].color);
  EXPECT_EQ(2, actors[0].cells);
  EXPECT_EQ(Green, actors[1].color);
  EXPECT_EQ(3, actors[1].cells);
  EXPECT_DOUBLE_EQ(51 / 255.0, actors[1].opacity);
  EXPECT_TRUE(actors[2].isLines);
  EXPECT_EQ(3, actors[2].cells);
  EXPECT_EQ(Blue, actors[2].color);
  EXPECT_DOUBLE_EQ(204 / 255.0, actors[2].opacity);
  EXPECT_EQ(3.5f, actors[2].lineWidth);
  EXPECT_FALSE(actors[3].isLines);
  EXPECT_EQ(Red, actors[3].color);
  EXPECT_TRUE(actors[4].isLines);
  EXPECT_EQ(Black, actors[4].color);
  EXPECT_EQ(2.0f, actors[4].lineWidth);
}

TEST(SceneView, RegionWithoutAPolygonStillHasItsOutline) {
  SceneModel model;
  model.addRegion(model.addObject(1), 1, Stroke);
  std::vector<Drawn> actors;
  EXPECT_EQ("Error: region points size < 3 \n",
            capturedStdout([&] { actors = drawnScene(model); }));
  ASSERT_EQ(1u, actors.size());
  EXPECT_TRUE(actors[0].isLines);
}

TEST(SceneView, RegionOfOnePointReadsNoPointNumber) {
  SceneModel model;
  model.addRegion(model.addObject(1), 1, {{0, 0, 0}})->getPoints()->front() = 77;
  capturedStdout([&] { EXPECT_TRUE(drawnScene(model).empty()); });
}

TEST(SceneView, BrushNumberBeyondTheListThrowsOnceItsGroupIsReached) {
  for (const int number : {0, -1, 3}) {
    SceneModel model;
    Scene::Object* object = model.addObject(1);
    model.addRegion(object, 1, Square);
    model.addRegion(object, number, Triangle);
    EXPECT_THAT([&] { ViewBuilder::createSceneView(model.scene.get()); }, throwsSubscript());
  }
}

TEST(SceneView, BrushNumberOfARegionWithoutAPolygonIsNeverLookedUp) {
  SceneModel model;
  model.addRegion(model.addObject(1), 77, Stroke);
  capturedStdout([&] { EXPECT_EQ(1u, drawnScene(model).size()); });
}

TEST(SceneView, PenNumberBeyondTheListThrowsUnlessThereIsNoLine) {
  for (const int number : {0, -1, 3}) {
    SceneModel model;
    model.addRegion(model.addObject(number), 1, Triangle);
    EXPECT_THAT([&] { ViewBuilder::createSceneView(model.scene.get()); }, throwsSubscript());
  }
  SceneModel withoutLines;
  withoutLines.addObject(77);
  withoutLines.addRegion(withoutLines.addObject(1), 1, Triangle);
  EXPECT_EQ(2u, drawnScene(withoutLines).size());
}

TEST(SceneView, WithoutBrushesAndPensAllIsOpaqueBlackOfWidth1) {
  SceneModel model;
  model.addRegion(model.addObject(99), 77, Triangle);
  const std::unique_ptr<Base::Brushes> brushes(model.scene->getBrushes());
  const std::unique_ptr<Base::Pens> pens(model.scene->getPens());
  model.scene->setBrushes(nullptr);
  model.scene->setPens(nullptr);
  const std::vector<Drawn> actors = drawnScene(model);
  ASSERT_EQ(2u, actors.size());
  EXPECT_EQ(Black, actors[0].color);
  EXPECT_EQ(1.0, actors[0].opacity);
  EXPECT_EQ(Black, actors[1].color);
  EXPECT_EQ(1.0, actors[1].opacity);
  EXPECT_EQ(1.0f, actors[1].lineWidth);
}

TEST(SceneView, ObjectWithoutRegionsAndNullElementsArePassedOver) {
  SceneModel model;
  model.scene->getObjects()->addObject(nullptr);
  model.scene->getObjects()->addObject(new Scene::Object);
  Scene::Object* object = model.addObject(1);
  object->getRegions()->addRegion(nullptr);
  model.addRegion(object, 1, Triangle);
  EXPECT_EQ(2u, drawnScene(model).size());
}

TEST(SceneView, DockingEdgesAreNotDrawn) {
  SceneModel model;
  Geometry::Region* region = model.addRegion(model.addObject(1), 1, Square);
  region->addDockingEdge(2);
  EXPECT_EQ(2, drawnScene(model).at(1).cells);
}

TEST(ShotView, WithoutRegionsOrPointsIsEmpty) {
  ShotModel model;
  EXPECT_TRUE(drawnShot(model).empty());
  Shot::Shot2d bare;
  EXPECT_EQ(0, ViewBuilder::createShotView(&bare)->GetNumberOfItems());
  bare.setRegions(new Geometry::Regions2dInDrawingOrder);
  EXPECT_EQ(0, ViewBuilder::createShotView(&bare)->GetNumberOfItems());
}

TEST(ShotView, GivesAllPolygonsByBrushAndThenAllLinesByPen) {
  ShotModel model;
  model.addRectangle(2, 2, 0, 0, 1, 1);
  model.addRectangle(1, 1, 0, 0, 1, 1);
  model.addRectangle(2, 1, 0, 0, 1, 1);
  const std::vector<Drawn> actors = drawnShot(model);
  ASSERT_EQ(4u, actors.size());
  EXPECT_EQ(Red, actors[0].color);
  EXPECT_EQ(2, actors[0].cells);
  EXPECT_EQ(Green, actors[1].color);
  EXPECT_EQ(4, actors[1].cells);
  EXPECT_EQ(Black, actors[2].color);
  EXPECT_EQ(2, actors[2].cells);
  EXPECT_EQ(2.0f, actors[2].lineWidth);
  EXPECT_EQ(Blue, actors[3].color);
  EXPECT_EQ(1, actors[3].cells);
  EXPECT_EQ(3.5f, actors[3].lineWidth);
}

TEST(ShotView, DrawingOrderIsTheHeight) {
  ShotModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1);
  model.shot->getRegions()->addRegion(nullptr);
  model.addRectangle(2, 2, 0, 0, 1, 1);
  const auto actors = ViewBuilder::createShotView(model.shot.get());
  ASSERT_EQ(4, actors->GetNumberOfItems());
  const double heights[] = {0.1f, 0.3f, 0.1f, 0.3f};  // polygons, then lines
  for (int i = 0; i < 4; ++i) {
    auto* actor = vtkActor::SafeDownCast(actors->GetItemAsObject(i));
    EXPECT_EQ(heights[i], dataOf(actor)->GetPoint(0)[2]) << "actor " << i;
  }
}

TEST(ShotView, DisplayStyleDecidesAboutThePolygons) {
  ShotModel model;
  model.addRectangle(2, 1, 0, 0, 1, 1);
  const auto shown = [&](int style) {
    model.view.setDisplayStyle(static_cast<Base::ViewDisplayStyle>(style));
    return drawnShot(model);
  };
  ASSERT_EQ(2u, shown(0).size());
  EXPECT_DOUBLE_EQ(51 / 255.0, shown(0)[0].opacity);
  ASSERT_EQ(1u, shown(1).size());
  EXPECT_TRUE(shown(1)[0].isLines);
  ASSERT_EQ(2u, shown(2).size());
  EXPECT_DOUBLE_EQ(0.5 * 51 / 255.0, shown(2)[0].opacity);
  EXPECT_DOUBLE_EQ(1.0, shown(2)[1].opacity);
  ASSERT_EQ(2u, shown(7).size());
  EXPECT_DOUBLE_EQ(51 / 255.0, shown(7)[0].opacity);
}

TEST(ShotView, WithoutAViewIsFilled) {
  ShotModel model;
  model.addRectangle(2, 1, 0, 0, 1, 1);
  model.shot->setView(nullptr);
  const std::vector<Drawn> actors = drawnShot(model);
  ASSERT_EQ(2u, actors.size());
  EXPECT_DOUBLE_EQ(51 / 255.0, actors[0].opacity);
}

TEST(ShotView, WrongBrushOrPenNumberThrows) {
  for (const int number : {0, -1, 3}) {
    ShotModel brush;
    brush.addRectangle(number, 1, 0, 0, 1, 1);
    EXPECT_THAT([&] { ViewBuilder::createShotView(brush.shot.get()); }, throwsSubscript());
    ShotModel pen;
    pen.addRectangle(1, number, 0, 0, 1, 1);
    EXPECT_THAT([&] { ViewBuilder::createShotView(pen.shot.get()); }, throwsSubscript());
  }
}

TEST(ShotView, OutlineStyleNeverLooksUpABrush) {
  ShotModel model;
  model.addRectangle(77, 1, 0, 0, 1, 1);
  model.view.setDisplayStyle(Base::ViewDisplayStyle::Outline);
  EXPECT_EQ(1u, drawnShot(model).size());
}

TEST(ShotView, WithoutBrushesAndPensAllIsOpaqueBlackOfWidth1) {
  ShotModel model;
  model.addRectangle(77, 99, 0, 0, 1, 1);
  const std::unique_ptr<Base::Brushes> brushes(model.shot->getBrushes());
  const std::unique_ptr<Base::Pens> pens(model.shot->getPens());
  model.shot->setBrushes(nullptr);
  model.shot->setPens(nullptr);
  const std::vector<Drawn> actors = drawnShot(model);
  ASSERT_EQ(2u, actors.size());
  EXPECT_EQ(Black, actors[0].color);
  EXPECT_EQ(1.0, actors[0].opacity);
  EXPECT_EQ(Black, actors[1].color);
  EXPECT_EQ(1.0f, actors[1].lineWidth);
}

TEST(ShotView, NullBrushOrPenInTheListIsADefaultOne) {
  ShotModel model;
  model.shot->getBrushes()->addBrush(nullptr);
  model.shot->getPens()->addPen(nullptr);
  model.addRectangle(3, 3, 0, 0, 1, 1);
  const std::vector<Drawn> actors = drawnShot(model);
  ASSERT_EQ(2u, actors.size());
  EXPECT_EQ(Black, actors[0].color);
  EXPECT_EQ(1.0f, actors[1].lineWidth);
}

// ---- What is drawn, against polygon data for each region -------------------------------------

void expectSameCells(vtkCellArray* expected, vtkCellArray* cells) {
  ASSERT_EQ(expected->GetNumberOfCells(), cells->GetNumberOfCells());
  for (vtkIdType c = 0; c < cells->GetNumberOfCells(); ++c) {
    const vtkNew<vtkIdList> a;
    const vtkNew<vtkIdList> b;
    expected->GetCellAtId(c, a);
    cells->GetCellAtId(c, b);
    ASSERT_EQ(a->GetNumberOfIds(), b->GetNumberOfIds());
    for (vtkIdType i = 0; i < a->GetNumberOfIds(); ++i) ASSERT_EQ(a->GetId(i), b->GetId(i));
  }
}

void expectSameData(vtkPolyData* expected, vtkPolyData* data) {
  ASSERT_EQ(expected->GetNumberOfPoints(), data->GetNumberOfPoints());
  ASSERT_EQ(expected->GetPoints()->GetDataType(), data->GetPoints()->GetDataType());
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
    std::array<double, 3> a;
    std::array<double, 3> b;
    expected->GetPoint(i, a.data());
    data->GetPoint(i, b.data());
    ASSERT_EQ(a, b);
  }
  expectSameCells(expected->GetPolys(), data->GetPolys());
  expectSameCells(expected->GetLines(), data->GetLines());
  ASSERT_EQ(expected->GetNumberOfCells(), data->GetNumberOfCells());
}

void expectSameGroups(const Plain::PolyDataList& expected, vtkActorCollection* actors) {
  ASSERT_EQ(static_cast<int>(expected.size()), actors->GetNumberOfItems());
  for (int i = 0; i < actors->GetNumberOfItems(); ++i) {
    auto* actor = vtkActor::SafeDownCast(actors->GetItemAsObject(i));
    ASSERT_NO_FATAL_FAILURE(expectSameData(expected[static_cast<size_t>(i)], dataOf(actor)))
        << "actor " << i;
  }
}

// A coordinate of few values, so that points repeat and lie in line, or any.
double anyCoordinate(std::mt19937_64& random) {
  if (random() % 2 == 0) return static_cast<double>(random() % 4);
  return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

// Star-shaped outlines of many points as well as wild ones of few.
template <class Corners>
Corners anyOutline(std::mt19937_64& random) {
  Corners result(random() % 3 == 0 ? 5 + random() % 20 : random() % 6);
  const double turn =
      2.0 * std::acos(-1.0) / static_cast<double>(std::max<size_t>(1, result.size()));
  const bool isStar = random() % 2 == 0;
  for (size_t i = 0; i < result.size(); ++i) {
    for (double& c : result[i]) c = anyCoordinate(random);
    if (!isStar) continue;
    const double radius = 1.0 + static_cast<double>(random() % 3);
    result[i][0] = radius * std::cos(turn * static_cast<double>(i));
    result[i][1] = radius * std::sin(turn * static_cast<double>(i));
  }
  return result;
}

template <class AnyRegion>
void addDockingEdges(AnyRegion* region, std::mt19937_64& random) {
  if (random() % 3 != 0) return;
  for (size_t i = random() % 4; i > 0; --i) region->addDockingEdge(static_cast<int>(random() % 8));
}

TEST(ShotViewProperty, ActorsDrawWhatAppendedPolygonDataHolds) {
  std::mt19937_64 random(20261123);
  for (int run = 0; run < 60; ++run) {
    ShotModel model;
    for (size_t i = 1 + random() % 30; i > 0; --i) {
      const auto outline = anyOutline<std::vector<std::array<double, 2>>>(random);
      addDockingEdges(model.addRegion(1 + static_cast<int>(random() % 2),
                                      1 + static_cast<int>(random() % 2), outline),
                      random);
    }
    ASSERT_NO_FATAL_FAILURE(expectSameGroups(
        Plain::shotGroups(*model.shot->getRegions()->getRegions(), model.shot->getPoints()),
        ViewBuilder::createShotView(model.shot.get())))
        << "run " << run;
  }
}

TEST(SceneViewProperty, ActorsDrawWhatAppendedPolygonDataHolds) {
  std::mt19937_64 random(20261124);
  for (int run = 0; run < 60; ++run) {
    SceneModel model;
    Scene::Object* object = model.addObject(1);
    for (size_t i = 1 + random() % 30; i > 0; --i) {
      const auto outline = anyOutline<Corners3>(random);
      addDockingEdges(model.addRegion(object, 1 + static_cast<int>(random() % 2), outline), random);
    }
    Plain::PolyDataList expected;
    vtkSmartPointer<vtkActorCollection> actors;
    capturedStdout([&] {
      expected = Plain::objectGroups(*object->getRegions()->getRegions(), model.scene->getPoints());
      actors = ViewBuilder::createSceneView(model.scene.get());
    });
    ASSERT_NO_FATAL_FAILURE(expectSameGroups(expected, actors)) << "run " << run;
  }
}

}  // namespace
}  // namespace Lumivane::Test
