#pragma once

#include <vtkActorCollection.h>
#include <vtkAxesActor.h>
#include <vtkInteractorObserver.h>
#include <vtkNew.h>
#include <vtkOrientationMarkerWidget.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

namespace Lumivane::View {

/// The small axes in the lower left corner of a window. They show as long as this object lives.
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

/// Puts the actors into a renderer, in order.
inline void addActors(vtkRenderer* renderer, vtkActorCollection* actors) {
  vtkCollectionSimpleIterator position = nullptr;
  actors->InitTraversal(position);
  while (vtkActor* actor = actors->GetNextActor(position)) renderer->AddActor(actor);
}

/// Gives a window its interactor and a mouse style; the window keeps both.
///
/// \param markerRight  width of the orientation marker, as a fraction of the window
inline void addInteraction(vtkRenderWindow* window, vtkInteractorObserver* style,
                           double markerRight) {
  const vtkNew<vtkRenderWindowInteractor> interactor;
  interactor->SetRenderWindow(window);
  interactor->SetInteractorStyle(style);
  // Deliberate: the marker goes with the end of this block, before anything is rendered.
  const OrientationMarker marker(interactor, markerRight, 0.1);
}

}  // namespace Lumivane::View
