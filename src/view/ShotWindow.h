#pragma once

#include "view/CustomMouseInteractorStyle.h"
#include "view/Windows.h"

namespace Lumivane::View {

/// Size, place, picture and mouse of a window on a flat shot, beside the window of the scene.
inline void setUpShotWindow(vtkRenderWindow* window, vtkRenderer* renderer, int width, int height) {
  window->SetSize(width, height);
  window->SetPosition(615, 0);
  window->AddRenderer(renderer);
  const vtkNew<customMouseInteractorStyle> style;
  addInteraction(window, style, 0.1);
}

}  // namespace Lumivane::View
