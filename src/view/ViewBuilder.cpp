#include "utils/Shapes.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/ViewBuilder.h>

#include <cstddef>
#include <map>
#include <vector>

#include <vtkActor.h>
#include <vtkAppendPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

namespace Lumivane::View {
namespace {

using Algorithm::ShotCreator;
using PolyDataList = std::vector<vtkSmartPointer<vtkPolyData>>;
using Groups = std::map<int, PolyDataList>;  // by brush or pen number, ascending

void addIfAny(PolyDataList& list, vtkPolyData* polyData) {
  if (polyData->GetNumberOfPoints() > 0) list.emplace_back(polyData);
}

void addToGroup(Groups& groups, int number, vtkPolyData* polyData) {
  if (polyData->GetNumberOfPoints() > 0) groups[number].emplace_back(polyData);
}

// One actor for all polygon data of a group, or null if there is nothing to draw.
vtkSmartPointer<vtkActor> buildGroup(const PolyDataList& list) {
  const vtkNew<vtkAppendPolyData> filter;
  for (const auto& polyData : list) filter->AddInputData(polyData);
  if (filter->GetNumberOfInputConnections(0) == 0) return nullptr;
  filter->Update();
  const vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputData(filter->GetOutput());
  auto actor = vtkSmartPointer<vtkActor>::New();
  actor->SetMapper(mapper);
  return actor;
}

// The element of a number counted from 1. Without a list, and for an element that is null, it is
// the default one.
template <class Element>
Element elementOfNumber(const std::vector<Element*>* elements, int number) {
  if (elements == nullptr) return Element();
  if (number < 1 || static_cast<std::size_t>(number) > elements->size()) {
    Utils::throwInvalidSubscript();
  }
  const Element* element = (*elements)[static_cast<std::size_t>(number) - 1];
  return element == nullptr ? Element() : *element;
}

void setColor(vtkActor* actor, const Base::Color& color, double opacityFactor) {
  actor->GetProperty()->SetColor(color.getRed() / 255.0, color.getGreen() / 255.0,
                                 color.getBlue() / 255.0);
  actor->GetProperty()->SetOpacity(color.getAlpha() / 255.0 * opacityFactor);
}

void addPolygons(vtkActorCollection* actors, const Groups& polygons, Base::Brushes* brushes,
                 double opacityFactor) {
  const std::vector<Base::Brush*>* elements = brushes ? brushes->getBrushes() : nullptr;
  for (const auto& [brushNumber, list] : polygons) {
    const auto actor = buildGroup(list);
    if (actor == nullptr) continue;
    setColor(actor, elementOfNumber(elements, brushNumber), opacityFactor);
    actors->AddItem(actor);
  }
}

void addLines(vtkActorCollection* actors, const PolyDataList& lines, Base::Pens* pens,
              int penNumber) {
  const auto actor = buildGroup(lines);
  if (actor == nullptr) return;
  const std::vector<Base::Pen*>* elements = pens ? pens->getPens() : nullptr;
  const Base::Pen pen = elementOfNumber(elements, penNumber);
  setColor(actor, pen, 1.0);
  actor->GetProperty()->SetLineWidth(static_cast<float>(pen.getWidth()));
  actors->AddItem(actor);
}

void addObject(vtkActorCollection* actors, Scene::Scene3D* scene, Scene::Object* object) {
  if (object->getRegions() == nullptr || object->getRegions()->getRegions() == nullptr) return;
  Groups polygons;
  PolyDataList lines;
  for (Geometry::Region* region : *object->getRegions()->getRegions()) {
    if (region == nullptr) continue;
    const auto polygon = ShotCreator::getRegionPolyDataTriangulated(region, scene->getPoints());
    const auto outline = ShotCreator::getRegionLinePolyData(region, scene->getPoints());
    addToGroup(polygons, region->getBrushNumber(), polygon);
    addIfAny(lines, outline);
  }
  addPolygons(actors, polygons, scene->getBrushes(), 1.0);
  addLines(actors, lines, scene->getPens(), object->getPenNumber());
}

template <class Points>
bool hasPoints(Points* points) {
  return points != nullptr && points->getPoints() != nullptr && !points->getPoints()->empty();
}

}  // namespace

vtkSmartPointer<vtkActorCollection> ViewBuilder::createSceneView(Scene::Scene3D* scene) {
  auto actors = vtkSmartPointer<vtkActorCollection>::New();
  Scene::Objects* objects = scene->getObjects();
  if (objects == nullptr || objects->getObjects() == nullptr) return actors;
  if (!hasPoints(scene->getPoints())) return actors;
  for (Scene::Object* object : *objects->getObjects()) {
    if (object != nullptr) addObject(actors, scene, object);
  }
  return actors;
}

vtkSmartPointer<vtkActorCollection> ViewBuilder::createShotView(Shot::Shot2d* shot) {
  auto actors = vtkSmartPointer<vtkActorCollection>::New();
  Geometry::Regions2dInDrawingOrder* regions = shot->getRegions();
  if (regions == nullptr || regions->getRegions() == nullptr) return actors;
  if (!hasPoints(shot->getPoints())) return actors;

  Groups polygons;
  Groups lines;
  int depth = 0;
  for (Geometry::Region2d* region : *regions->getRegions()) {
    ++depth;  // the drawing order is the height
    if (region == nullptr) continue;
    const auto polygon = ShotCreator::getRegionPolyData(region, shot->getPoints(), depth);
    const auto outline = ShotCreator::getRegionLinePolyData(region, shot->getPoints(), depth);
    addToGroup(polygons, region->getBrushNumber(), polygon);
    addToGroup(lines, region->getPenNumber(), outline);
  }

  const Base::View* view = shot->getView();
  const auto style = view ? view->getDisplayStyle() : Base::ViewDisplayStyle::Filled;
  if (style != Base::ViewDisplayStyle::Outline) {
    const bool isHalf = style == Base::ViewDisplayStyle::HalfTransparent;
    addPolygons(actors, polygons, shot->getBrushes(), isHalf ? 0.5 : 1.0);
  }
  for (const auto& [penNumber, list] : lines) addLines(actors, list, shot->getPens(), penNumber);
  return actors;
}

}  // namespace Lumivane::View
