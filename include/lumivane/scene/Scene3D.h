#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Algorithm {
class ShotParameters;
}  // namespace Lumivane::Algorithm
namespace Lumivane::Base {
class Brushes;
class Pens;
class Properties;
class Scales;
class View;
}  // namespace Lumivane::Base
namespace Lumivane::Geometry {
class Points3d;
}  // namespace Lumivane::Geometry
namespace Lumivane::Shot {
class Shot2d;
}  // namespace Lumivane::Shot

namespace Lumivane::Scene {
class Objects;

/// What a scene file turns into and what a shot is made from: one pool of points, of brushes and of
/// pens, the objects, and the tables of properties and scales that can colour them.
///
/// Owns its six lists, each of which may be null. Getters hand out what stays the scene's; setters
/// take over and free nothing. Copies share the lists: of two copies, destroy one. Making a shot
/// writes working data into the objects, so one shot at a time is made of a scene.
class LUMIVANE_EXPORT Scene3D : public Base::BaseLibClass {
 public:
  Scene3D() = default;                           ///< Six null lists.
  Scene3D(const Scene3D&) = default;             ///< Shares the lists.
  Scene3D& operator=(const Scene3D&) = default;  ///< Shares the lists; frees nothing.
  ~Scene3D();                                    ///< Deletes the lists.

  Base::Brushes* getBrushes() const { return brushes; }       ///< Still the scene's; may be null.
  void setBrushes(Base::Brushes* value) { brushes = value; }  ///< Takes over; frees nothing.
  Base::Pens* getPens() const { return pens; }                ///< Still the scene's; may be null.
  void setPens(Base::Pens* value) { pens = value; }           ///< Takes over; frees nothing.
  Geometry::Points3d* getPoints() const { return points; }    ///< Still the scene's; may be null.
  void setPoints(Geometry::Points3d* value) { points = value; }  ///< Takes over; frees nothing.
  Objects* getObjects() const { return objects; }       ///< Still the scene's; may be null.
  void setObjects(Objects* value) { objects = value; }  ///< Takes over; frees nothing.
  /// Still the scene's; may be null.
  Base::Properties* getProperties() const { return properties; }
  /// Takes over; frees nothing.
  void setProperties(Base::Properties* value) { properties = value; }
  Base::Scales* getScales() const { return scales; }       ///< Still the scene's; may be null.
  void setScales(Base::Scales* value) { scales = value; }  ///< Takes over; frees nothing.

  /// An object with a key for each list that is not null.
  Jzon::Node serialize() override;
  /// Makes a new list for each key that an object node has, whatever the key holds; a list that was
  /// there is not freed.
  /// \throws std::out_of_range for a colour component out of range, std::runtime_error for a
  ///         negative pen width; the lists read before stay
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

  /// Makes the picture of this scene that the view's eye sees.
  ///
  /// \param view        camera and orientation; stays the caller's, and its eye may be moved off a
  ///                    polygon that it stands on
  /// \param parameters  what colours the faces, and from where on the eye is moved off a polygon;
  ///                    stays the caller's
  /// \return the shot, the caller's, which shares brushes, pens, scale and property with the scene:
  ///         of the two, delete one; null if no shot can be made
  Shot::Shot2d* makeShot(Base::View* view, Algorithm::ShotParameters* parameters);

 private:
  Base::Brushes* brushes = nullptr;
  Base::Pens* pens = nullptr;
  Geometry::Points3d* points = nullptr;
  Objects* objects = nullptr;
  Base::Properties* properties = nullptr;
  Base::Scales* scales = nullptr;
};

}  // namespace Lumivane::Scene
