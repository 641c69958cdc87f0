// One actor for all regions of one look: thousands of actors, or filters, would take most of the
// time.

#include "algorithm/pipeline/RegionPolygon.h"
#include "utils/PolygonData.h"
#include "utils/Shapes.h"

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
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

namespace Lumivane::View {
namespace {

using Kernel::Vec3;

// What one actor draws. The regions are appended one by one, as a filter would append the polygon
// data of each; only there would be twenty thousand of these, with a pipeline for each to be cut
// into triangles.
class Group {
 public:
  void addPolygon(const std::vector<Vec3>& polygon) {
    if (!polygon.empty()) Utils::appendPolygon(polygon, points, cells);
  }
  void addOutline(const std::vector<Vec3>& polygon, const std::vector<int>* dockingEdges) {
    Algorithm::appendOutline(polygon, dockingEdges, points, cells);
  }

  // Of regions without polygons, or without outlines, there is nothing to draw.
  bool isEmpty() const { return points->GetNumberOfPoints() == 0; }

  vtkSmartPointer<vtkActor> trianglesActor() const {
    const vtkNew<vtkPolyData> polygons;
    polygons->SetPoints(points);
    polygons->SetPolys(cells);
    const vtkNew<vtkPolyData> triangles;
    Algorithm::triangulate(polygons, triangles);
    return actorOf(triangles);
  }
  vtkSmartPointer<vtkActor> linesActor() const {
    const vtkNew<vtkPolyData> lines;
    lines->SetPoints(points);
    lines->SetLines(cells);
    return actorOf(lines);
  }

 private:
  static vtkSmartPointer<vtkActor> actorOf(vtkPolyData* data) {
    const vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(data);
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    return actor;
  }

  vtkNew<vtkPoints> points;
  vtkNew<vtkCellArray> cells;
};
using Groups = std::map<int, Group>;  // by brush or pen number, ascending

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

void addPolygons(vtkActorCollection* actors, const Groups& groups, Base::Brushes* brushes,
                 double opacityFactor) {
  const std::vector<Base::Brush*>* elements = brushes ? brushes->getBrushes() : nullptr;
  for (const auto& [brushNumber, group] : groups) {
    if (group.isEmpty()) continue;
    const Base::Brush brush = elementOfNumber(elements, brushNumber);
    const auto actor = group.trianglesActor();
    setColor(actor, brush, opacityFactor);
    actors->AddItem(actor);
  }
}

void addLines(vtkActorCollection* actors, const Groups& groups, Base::Pens* pens) {
  const std::vector<Base::Pen*>* elements = pens ? pens->getPens() : nullptr;
  for (const auto& [penNumber, group] : groups) {
    if (group.isEmpty()) continue;
    const Base::Pen pen = elementOfNumber(elements, penNumber);
    const auto actor = group.linesActor();
    setColor(actor, pen, 1.0);
    actor->GetProperty()->SetLineWidth(static_cast<float>(pen.getWidth()));
    actors->AddItem(actor);
  }
}

void addObject(vtkActorCollection* actors, Scene::Scene3D* scene, Scene::Object* object) {
  if (object->getRegions() == nullptr || object->getRegions()->getRegions() == nullptr) return;
  Groups polygons;
  Groups lines;
  std::vector<Vec3> polygon;
  for (Geometry::Region* region : *object->getRegions()->getRegions()) {
    if (region == nullptr) continue;
    Algorithm::readRegionPolygon(region, scene->getPoints(), polygon);
    polygons[region->getBrushNumber()].addPolygon(polygon);
    Algorithm::readRegionOutline(region, scene->getPoints(), polygon);
    lines[object->getPenNumber()].addOutline(polygon, region->getDockingEdges());
  }
  addPolygons(actors, polygons, scene->getBrushes(), 1.0);
  addLines(actors, lines, scene->getPens());
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
  std::vector<Vec3> polygon;
  int depth = 0;
  for (Geometry::Region2d* region : *regions->getRegions()) {
    ++depth;  // the drawing order is the height
    if (region == nullptr) continue;
    Algorithm::readRegionPoints(region, shot->getPoints(), depth, polygon);
    polygons[region->getBrushNumber()].addPolygon(polygon);
    lines[region->getPenNumber()].addOutline(polygon, region->getDockingEdges());
  }

  const Base::View* view = shot->getView();
  const auto style = view ? view->getDisplayStyle() : Base::ViewDisplayStyle::Filled;
  if (style != Base::ViewDisplayStyle::Outline) {
    const bool isHalf = style == Base::ViewDisplayStyle::HalfTransparent;
    addPolygons(actors, polygons, shot->getBrushes(), isHalf ? 0.5 : 1.0);
  }
  addLines(actors, lines, shot->getPens());
  return actors;
}

}  // namespace Lumivane::View
