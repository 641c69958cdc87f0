// The axes of the projection, drawn over a shot in its own coordinates, at z 0.

#include "algorithm/pipeline/TypeProjection.h"
#include "kernel/PlaneAxes.h"

#include <lumivane/base/View.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/Viewer.h>

#include <vtkAppendPolyData.h>
#include <vtkConeSource.h>
#include <vtkLineSource.h>
#include <vtkNew.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRegularPolygonSource.h>
#include <vtkTextActor3D.h>
#include <vtkTextProperty.h>

namespace Lumivane::View {
namespace {

namespace PlaneAxes = Kernel::PlaneAxes;
using Place = Kernel::Vec2;

std::vector<int> components(const PlaneAxes::Rgba& rgba) { return {rgba.begin(), rgba.end()}; }

vtkSmartPointer<vtkPolyData> line(Place from, Place to, double z) {
  const vtkNew<vtkLineSource> source;
  source->SetPoint1(from.x, from.y, z);
  source->SetPoint2(to.x, to.y, z);
  source->Update();
  return source->GetOutput();
}

// The head of an axis: a cone of two sides, flat in the picture.
vtkSmartPointer<vtkPolyData> arrowHead(Place center, Place direction) {
  const vtkNew<vtkConeSource> source;
  source->SetResolution(2);
  source->SetRadius(PlaneAxes::HeadHalfWidth);
  source->SetHeight(PlaneAxes::HeadLength);
  source->SetCenter(center.x, center.y, 0.0);
  source->SetDirection(direction.x, direction.y, 0.0);
  source->Update();
  return source->GetOutput();
}

// What both projections have: two axes with their heads.
template <class MakeActor>
void addArrows(vtkRenderer* renderer, MakeActor makeActor) {
  const double reach = PlaneAxes::Reach;
  const std::vector<int> axisColor = components(PlaneAxes::AxisColor);
  const std::vector<int> headColor = components(PlaneAxes::HeadColor);
  renderer->AddActor(makeActor(line({-reach, 0.0}, {reach, 0.0}, 0.0), axisColor));
  renderer->AddActor(makeActor(line({0.0, -reach}, {0.0, reach}, 0.0), axisColor));
  renderer->AddActor(makeActor(arrowHead({reach, 0.0}, {1.0, 0.0}), headColor));
  renderer->AddActor(makeActor(arrowHead({0.0, reach}, {0.0, 1.0}), headColor));
}

void addLabel(vtkRenderer* renderer, const PlaneAxes::Label& label) {
  const vtkNew<vtkTextActor3D> actor;
  actor->SetInput(label.text);
  actor->SetScale(PlaneAxes::LabelScale);
  actor->GetTextProperty()->SetFontSize(static_cast<int>(PlaneAxes::LabelPoints));
  actor->GetTextProperty()->SetColor(0.0, 0.0, 0.0);
  actor->SetPosition(label.place.x, label.place.y, 0.0);
  renderer->AddActor(actor);
}

}  // namespace

void Viewer::createProjectionAxes(vtkRenderer* renderer, Shot::Shot2d* shot) {
  switch (Algorithm::gridOf(shot->getView())) {
    case Kernel::PlaneGrid::Rings:
      return createRadialProjectionAxes(renderer);
    case Kernel::PlaneGrid::Lines:
      return createSquareProjectionAxes(renderer);
  }
}

void Viewer::createRadialProjectionAxes(vtkRenderer* renderer) {
  addArrows(renderer, createActor);
  for (const PlaneAxes::Label& label : PlaneAxes::RadialLabels) addLabel(renderer, label);
  double center[3] = {0.0, 0.0, 0.0};
  for (const double radius : PlaneAxes::RingRadii) {
    renderer->AddActor(createCirclePd(radius, center));
  }
}

void Viewer::createSquareProjectionAxes(vtkRenderer* renderer) {
  addArrows(renderer, createActor);
  for (const PlaneAxes::Label& label : PlaneAxes::SquareLabels) addLabel(renderer, label);
  double center[3] = {0.0, 0.0, 0.0};
  double bounds[4] = {-1.0, 1.0, -1.0, 1.0};
  renderer->AddActor(createGrid(center, bounds, PlaneAxes::GridSteps, PlaneAxes::GridSteps));
}

vtkSmartPointer<vtkActor> Viewer::createActor(vtkPolyData* polyData, std::vector<int> color) {
  const vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputData(polyData);
  auto actor = vtkSmartPointer<vtkActor>::New();
  actor->SetMapper(mapper);
  actor->GetProperty()->SetColor(color[0] / 255.0, color[1] / 255.0, color[2] / 255.0);
  actor->GetProperty()->SetOpacity(color[3] / 255.0);
  return actor;
}

vtkSmartPointer<vtkActor> Viewer::createGrid(double* center, double* bounds, double columns,
                                             double rows) {
  const double width = bounds[1] - bounds[0];
  const double height = bounds[3] - bounds[2];
  const double stepX = width / columns;
  const double stepY = height / rows;
  const Place origin = {center[0] - width * 0.5, center[1] - height * 0.5};
  const double z = center[2];

  // Deliberate: each line is added once for every step of the other loop, so that the many faint
  // copies on one place darken each other.
  const vtkNew<vtkAppendPolyData> filter;
  for (int i = 0; columns >= i; ++i) {
    const double x = origin.x + i * stepX;
    for (int j = 0; rows >= j; ++j) {
      const double y = origin.y + j * stepY;
      filter->AddInputData(line({x, origin.y}, {x, origin.y + height}, z));
      filter->AddInputData(line({origin.x, y}, {origin.x + width, y}, z));
    }
  }
  filter->Update();
  return createActor(filter->GetOutput(), components(PlaneAxes::GridColor));
}

vtkSmartPointer<vtkActor> Viewer::createCirclePd(double radius, double* center) {
  const vtkNew<vtkRegularPolygonSource> source;
  source->SetNumberOfSides(PlaneAxes::RingSides);
  source->SetRadius(radius);
  source->SetCenter(center);
  source->GeneratePolylineOn();
  source->GeneratePolygonOff();
  source->Update();
  return createActor(source->GetOutput(), components(PlaneAxes::RingColor));
}

}  // namespace Lumivane::View
