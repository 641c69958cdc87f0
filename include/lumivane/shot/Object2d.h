#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <string>
#include <utility>

namespace Lumivane::Geometry {
class Faces2d;
}  // namespace Lumivane::Geometry

namespace Lumivane::Shot {

/// A scene object as a shot sees it: its id and its faces.
///
/// Owns its faces, which may be null. Copies share them: of two copies, destroy one.
class LUMIVANE_EXPORT Object2d : public Base::BaseLibClass {
 public:
  Object2d() = default;                            ///< No id, null faces.
  Object2d(const Object2d&) = default;             ///< Shares the faces.
  Object2d& operator=(const Object2d&) = default;  ///< Shares the faces; frees nothing.
  ~Object2d();                                     ///< Deletes the faces.

  const std::string& getId() const { return id; }             ///< The id of the scene object.
  void setId(std::string value) { id = std::move(value); }    ///< Need not be unique.
  Geometry::Faces2d* getFaces() const { return faces; }       ///< Still the object's; may be null.
  void setFaces(Geometry::Faces2d* value) { faces = value; }  ///< Takes over; frees nothing.

  /// An object with "Id" if it is not empty and "Faces" if they are not null.
  Jzon::Node serialize() override;
  /// Reads a string "Id" and an array "Faces"; faces that were there before are not freed.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  std::string id;
  Geometry::Faces2d* faces = nullptr;
};

}  // namespace Lumivane::Shot
