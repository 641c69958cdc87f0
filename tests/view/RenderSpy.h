#pragma once

#include <vector>

#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Test {

/// Looks over VTK's shoulder: while a spy lives, it keeps every renderer, window and interactor
/// that anybody makes, in order, and event loops return at once. One spy at a time.
class RenderSpy {
 public:
  RenderSpy();
  RenderSpy(const RenderSpy&) = delete;
  RenderSpy& operator=(const RenderSpy&) = delete;
  ~RenderSpy();

  std::vector<vtkSmartPointer<vtkRenderer>> renderers;
  std::vector<vtkSmartPointer<vtkRenderWindow>> windows;
  std::vector<vtkSmartPointer<vtkRenderWindowInteractor>> interactors;
};

}  // namespace Lumivane::Test
