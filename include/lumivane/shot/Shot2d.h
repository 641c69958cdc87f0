#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Base {
class Brushes;
class Pens;
class Property;
class Scale;
class View;
}  // namespace Lumivane::Base
namespace Lumivane::Geometry {
class Points2d;
class Regions2dInDrawingOrder;
}  // namespace Lumivane::Geometry

namespace Lumivane::Shot {
class Objects2d;

/// A flat vector picture of a scene: a pool of points, brushes and pens, all polygons in the order
/// of drawing, and the objects that group them by face. Scale, property and view say with which
/// colouring and from where it was taken; they reach no file.
///
/// Owns everything but the view; each pointer may be null. A shot made of a scene nevertheless
/// shares brushes, pens, scale and property with it: of such a shot and its scene, delete one.
/// Getters hand out what stays the shot's; setters take over and free nothing. Copies share
/// everything: of two copies, destroy one.
class LUMIVANE_EXPORT Shot2d : public Base::BaseLibClass {
 public:
  Shot2d() = default;                          ///< All pointers null.
  Shot2d(const Shot2d&) = default;             ///< Shares all eight pointers.
  Shot2d& operator=(const Shot2d&) = default;  ///< Shares them; frees nothing.
  ~Shot2d();                                   ///< Deletes everything but the view.

  Base::Brushes* getBrushes() const { return brushes; }          ///< Still the shot's; may be null.
  void setBrushes(Base::Brushes* value) { brushes = value; }     ///< Takes over; frees nothing.
  Base::Pens* getPens() const { return pens; }                   ///< Still the shot's; may be null.
  void setPens(Base::Pens* value) { pens = value; }              ///< Takes over; frees nothing.
  Geometry::Points2d* getPoints() const { return points; }       ///< Still the shot's; may be null.
  void setPoints(Geometry::Points2d* value) { points = value; }  ///< Takes over; frees nothing.
  /// Still the shot's; may be null.
  Geometry::Regions2dInDrawingOrder* getRegions() const { return regions; }
  /// Takes over; frees nothing.
  void setRegions(Geometry::Regions2dInDrawingOrder* value) { regions = value; }
  Objects2d* getObjects() const { return objects; }              ///< Still the shot's; may be null.
  void setObjects(Objects2d* value) { objects = value; }         ///< Takes over; frees nothing.
  Base::Scale* getScale() const { return scale; }                ///< Still the shot's; may be null.
  void setScale(Base::Scale* value) { scale = value; }           ///< Takes over; frees nothing.
  Base::Property* getProperty() const { return property; }       ///< Still the shot's; may be null.
  void setProperty(Base::Property* value) { property = value; }  ///< Takes over; frees nothing.
  Base::View* getView() const { return view; }                   ///< The caller's.
  void setView(Base::View* value) { view = value; }              ///< Borrowed, never deleted.

  /// An object with a key for each list that is not null.
  Jzon::Node serialize() override;
  /// Makes a new list for each key that an object node has, whatever the key holds; a list that was
  /// there is not freed. Scale, property and view stay as they are.
  /// \throws std::out_of_range for a colour component out of range, std::runtime_error for a
  ///         negative pen width; the lists read before stay
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  Base::Brushes* brushes = nullptr;
  Base::Pens* pens = nullptr;
  Geometry::Points2d* points = nullptr;
  Geometry::Regions2dInDrawingOrder* regions = nullptr;
  Objects2d* objects = nullptr;
  Base::Scale* scale = nullptr;
  Base::Property* property = nullptr;
  Base::View* view = nullptr;
};

}  // namespace Lumivane::Shot
