#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

class ViewCamera;
class ViewOrientation3D;

/// From where and how a shot is taken and drawn.
///
/// Owns nothing: the camera and the orientation belong to the caller, who keeps them alive as long
/// as the view is used. It reaches no file: its JSON form is the empty object of the base.
class LUMIVANE_EXPORT View : public BaseLibClass {
 public:
  /// No camera, no orientation, filled.
  View();

  /// The camera, which the caller owns; null unless set.
  ViewCamera* getCamera() { return camera; }
  /// Keeps the pointer; the caller still owns the camera.
  void setCamera(ViewCamera* viewCamera) { camera = viewCamera; }
  /// The orientation, which the caller owns; null unless set.
  ViewOrientation3D* getOrientation() { return orientation; }
  /// Keeps the pointer; the caller still owns the orientation.
  void setOrientation(ViewOrientation3D* viewOrientation) { orientation = viewOrientation; }
  /// How the shot is drawn.
  ViewDisplayStyle getDisplayStyle() const { return displayStyle; }
  /// How the shot is drawn; making it does not depend on this.
  void setDisplayStyle(ViewDisplayStyle style) { displayStyle = style; }

  /// \return an empty object, whatever the view holds
  Jzon::Node serialize() override;

 private:
  ViewCamera* camera = nullptr;
  ViewOrientation3D* orientation = nullptr;
  ViewDisplayStyle displayStyle = ViewDisplayStyle::Filled;
};

}  // namespace Lumivane::Base
