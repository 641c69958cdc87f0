// The two windows. Each is set up on its own; both are rendered before the first event loop runs.

#include "view/ShotWindow.h"
#include "view/Windows.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/ViewBuilder.h>
#include <lumivane/view/Viewer.h>

#include <memory>

#include <vtkCamera.h>
#include <vtkInteractorStyleTrackballCamera.h>

namespace Lumivane::View {
namespace {

// The eye and the upward direction of the shot's view. Deliberate: the forward direction is not
// passed on, so the camera goes on looking at the centre of the scene.
void placeSceneCamera(vtkCamera* camera, Shot::Shot2d* shot) {
  if (shot == nullptr || shot->getView() == nullptr) return;
  Base::ViewOrientation3D* orientation = shot->getView()->getOrientation();
  if (orientation == nullptr) return;
  if (const Geometry::Point3d* eye = orientation->getEyePosition()) {
    camera->SetPosition(eye->getX(), eye->getY(), eye->getZ());
  }
  if (const Geometry::Vector3d* up = orientation->getUpDirection()) {
    camera->SetViewUp(up->getX(), up->getY(), up->getZ());
  }
  camera->SetViewAngle(90.0);
}

void setUpSceneWindow(vtkRenderWindow* window, Scene::Scene3D* scene, Shot::Shot2d* shot) {
  const vtkNew<vtkRenderer> renderer;
  addActors(renderer, ViewBuilder::createSceneView(scene));
  renderer->ResetCamera();
  renderer->SetBackground(1.0, 1.0, 1.0);
  placeSceneCamera(renderer->GetActiveCamera(), shot);

  window->SetSize(600, 500);
  window->SetPosition(0, 0);
  window->AddRenderer(renderer);
  renderer->ResetCameraClippingRange();
  const vtkNew<vtkInteractorStyleTrackballCamera> style;
  addInteraction(window, style, 0.5);
}

// The shot from above, so large that all of it shows.
void placeShotCamera(vtkRenderer* renderer) {
  vtkCamera* camera = renderer->GetActiveCamera();
  camera->SetViewUp(0.0, 1.0, 0.0);
  camera->SetFocalPoint(0.0, 0.0, 0.0);
  camera->SetParallelProjection(1);
  renderer->SetBackground(1.0, 1.0, 1.0);
  renderer->ResetCamera();
}

}  // namespace

void Viewer::createSceneAndShotView(std::string sceneFile, std::string shotFile) {
  Cmd::logMessage("Scene and shot views creating\n\n");
  if (sceneFile.empty() || shotFile.empty()) return;
  IO::DataReader reader;
  const std::unique_ptr<Scene::Scene3D> scene(reader.readSceneFile(sceneFile));
  const std::unique_ptr<Shot::Shot2d> shot(reader.readShotFile(shotFile));
  createSceneAndShotView(scene.get(), shot.get());
}

void Viewer::createSceneAndShotView(Scene::Scene3D* scene, Shot::Shot2d* shot) {
  Cmd::logMessage("Rendering\n\n");
  const vtkNew<vtkRenderWindow> sceneWindow;
  const vtkNew<vtkRenderWindow> shotWindow;
  if (scene != nullptr) setUpSceneWindow(sceneWindow, scene, shot);
  if (shot != nullptr) {
    const vtkNew<vtkRenderer> renderer;
    addActors(renderer, ViewBuilder::createShotView(shot));
    placeShotCamera(renderer);
    setUpShotWindow(shotWindow, renderer, 600, 500);
    createProjectionAxes(renderer, shot);
  }

  if (scene != nullptr) sceneWindow->Render();
  if (shot != nullptr) shotWindow->Render();
  // The titles come after the first render: only then there are windows to bear them.
  if (scene != nullptr) sceneWindow->SetWindowName("Сцена 3d");
  if (shot != nullptr) shotWindow->SetWindowName("Снимок 2d");
  if (scene != nullptr) sceneWindow->GetInteractor()->Start();
  if (shot != nullptr) shotWindow->GetInteractor()->Start();
}

}  // namespace Lumivane::View
