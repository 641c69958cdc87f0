#pragma once

#include <vtkInteractorStyleTrackballCamera.h>
#include <vtkObjectFactory.h>

namespace Lumivane::View {

/// The mouse of the flat picture: left and middle button pan, the right one zooms, and nothing
/// rotates. Releases, wheel and keys are the base's.
class customMouseInteractorStyle  // NOLINT(readability-identifier-naming): the name VTK reports
    : public vtkInteractorStyleTrackballCamera {
 public:
  static customMouseInteractorStyle* New();

  void OnLeftButtonDown() override { vtkInteractorStyleTrackballCamera::OnMiddleButtonDown(); }
  void OnMiddleButtonDown() override { vtkInteractorStyleTrackballCamera::OnMiddleButtonDown(); }
  void OnRightButtonDown() override { vtkInteractorStyleTrackballCamera::OnRightButtonDown(); }

  vtkTypeMacro(customMouseInteractorStyle, vtkInteractorStyleTrackballCamera)
};

inline customMouseInteractorStyle* customMouseInteractorStyle::New() {
  VTK_STANDARD_NEW_BODY(customMouseInteractorStyle);
}

}  // namespace Lumivane::View
