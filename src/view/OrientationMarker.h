#pragma once

#include <vtkAxesActor.h>
#include <vtkNew.h>
#include <vtkOrientationMarkerWidget.h>
#include <vtkRenderWindowInteractor.h>

namespace Lumivane::View {

/// The small axes in the lower left corner of a window. They show as long as the widget lives.
class OrientationMarker {
 public:
  /// \param right, top  the upper right corner of the marker, as fractions of the window
  OrientationMarker(vtkRenderWindowInteractor* interactor, double right, double top) {
    widget->SetOutlineColor(0.93, 0.57, 0.13);
    widget->SetOrientationMarker(axes);
    widget->SetInteractor(interactor);
    widget->SetViewport(0.0, 0.0, right, top);
    widget->SetEnabled(1);
    widget->InteractiveOn();
  }

 private:
  vtkNew<vtkAxesActor> axes;  // outlives the widget
  vtkNew<vtkOrientationMarkerWidget> widget;
};

}  // namespace Lumivane::View
