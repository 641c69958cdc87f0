#include "utils/Shapes.h"
#include "view/Windows.h"

#include <lumivane/view/DebugViewer.h>

#include <utility>

#include <vtkActor.h>
#include <vtkInteractorStyleTrackballCamera.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

namespace Lumivane::View {
// Written out, since VTK's smart pointer leaves its source as it is in one of the two forms.
DebugViewer::DebugViewer(DebugViewer&& other) noexcept
    : actors(std::exchange(other.actors, nullptr)) {}

DebugViewer& DebugViewer::operator=(DebugViewer&& other) noexcept {
  actors = std::exchange(other.actors, nullptr);
  return *this;
}

void DebugViewer::addActor(vtkPolyData* polyData, std::vector<int> color) {
  if (color.size() < 4) Utils::throwInvalidSubscript();
  const vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputData(polyData);
  const vtkNew<vtkActor> actor;
  actor->SetMapper(mapper);
  actor->GetProperty()->SetColor(color[0] / 255.0, color[1] / 255.0, color[2] / 255.0);
  actor->GetProperty()->SetOpacity(color[3] / 255.0);

  if (actors == nullptr) actors = vtkSmartPointer<vtkActorCollection>::New();
  actors->AddItem(actor);
}

void DebugViewer::show() {
  if (actors == nullptr) return;
  const vtkNew<vtkRenderWindow> window;
  const vtkNew<vtkRenderer> renderer;
  addActors(renderer, actors);
  renderer->ResetCamera();
  renderer->SetBackground(1.0, 1.0, 1.0);

  window->SetSize(800, 600);
  window->SetPosition(0, 0);
  window->AddRenderer(renderer);
  const vtkNew<vtkRenderWindowInteractor> interactor;
  interactor->SetRenderWindow(window);
  const vtkNew<vtkInteractorStyleTrackballCamera> style;
  interactor->SetInteractorStyle(style);
  const OrientationMarker marker(interactor, 0.5, 0.1);

  window->Render();
  window->SetWindowName("Debug Window");
  window->GetInteractor()->Start();
}

}  // namespace Lumivane::View
