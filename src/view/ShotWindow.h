#pragma once

#include "view/CustomMouseInteractorStyle.h"
#include "view/Windows.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewCamera.h>
#include <lumivane/base/ViewCameraKind.h>
#include <lumivane/shot/Shot2d.h>

namespace Lumivane::View {

/// Whether the square projection made the shot. Without a view or camera: no.
inline bool hasNormalCamera(Shot::Shot2d* shot) {
  Base::View* view = shot->getView();
  if (view == nullptr || view->getCamera() == nullptr) return false;
  return view->getCamera()->getKind() == Base::ViewCameraKind::Normal;
}

/// Size, place, picture and mouse of a window on a flat shot, beside the window of the scene.
inline void setUpShotWindow(vtkRenderWindow* window, vtkRenderer* renderer, int width, int height) {
  window->SetSize(width, height);
  window->SetPosition(615, 0);
  window->AddRenderer(renderer);
  const vtkNew<customMouseInteractorStyle> style;
  addInteraction(window, style, 0.1);
}

}  // namespace Lumivane::View
