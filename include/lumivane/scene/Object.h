#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Geometry {
class EdgeStartPoint2d;
class Faces;
class Overlays;
class Parts;
class Regions;
}  // namespace Lumivane::Geometry

namespace Lumivane::Scene {

template <class List>
class Deferred;
struct DeferredAccess;

/// One solid or surface of a scene: its regions with their faces, parts and overlays. Besides that
/// it carries the working data of the last shot, which reaches no file.
///
/// Owns its four lists, each of which may be null; the working data is not freed by it. Getters
/// hand out what stays the object's; setters take over and free nothing. Copies share everything
/// but the id: of two copies, destroy one.
class LUMIVANE_EXPORT Object : public Base::BaseLibClass {
 public:
  Object() = default;                          ///< Null lists, no id, no pen.
  Object(const Object&) = default;             ///< Shares lists and working data.
  Object& operator=(const Object&) = default;  ///< Shares them; frees nothing.
  ~Object();                                   ///< Deletes the four lists.

  const std::string& getId() const { return id; }           ///< Carried to the shot's Object2d.
  void setId(std::string value) { id = std::move(value); }  ///< Need not be unique.
  int getPartsCount() const { return partsCount; }       ///< As in the file; not the parts' count.
  void setPartsCount(int count) { partsCount = count; }  ///< Leaves the parts alone.
  int getPenNumber() const { return penNumber; }         ///< From 1 in the scene's pens; -1 unset.
  void setPenNumber(int number) { penNumber = number; }  ///< Unchecked.

  Geometry::Faces* getFaces() const { return faces; }        ///< Still the object's; may be null.
  void setFaces(Geometry::Faces* value) { faces = value; }   ///< Takes over; frees nothing.
  Geometry::Parts* getParts() const { return parts; }        ///< Still the object's; may be null.
  void setParts(Geometry::Parts* value) { parts = value; }   ///< Takes over; frees nothing.
  Geometry::Regions* getRegions() const { return regions; }  ///< Still the object's; may be null.
  void setRegions(Geometry::Regions* value) { regions = value; }  ///< Takes over; frees nothing.
  /// Still the object's; may be null.
  Geometry::Overlays* getOverlays() const { return overlays; }
  void setOverlays(Geometry::Overlays* value) { overlays = value; }  ///< Takes over; frees nothing.

  /// Working data: one polydata for each region; null before a shot. This list and the three below
  /// are made when they are first asked for after a shot, from what the shot saw; the next shot
  /// frees those that nobody has asked for, and only those.
  std::vector<vtkSmartPointer<vtkPolyData>>* getRegionsPolyData() const;
  /// Stores the pointer; frees nothing.
  void setRegionsPolyData(std::vector<vtkSmartPointer<vtkPolyData>>* value);
  /// Working data: the same, clipped by the plane through the eye.
  std::vector<vtkSmartPointer<vtkPolyData>>* getRegionsClippedPolyData() const;
  /// Stores the pointer; frees nothing.
  void setRegionsClippedPolyData(std::vector<vtkSmartPointer<vtkPolyData>>* value);
  /// Working data: for each region its visible polygons, lists of points of 3 doubles.
  std::vector<std::vector<std::vector<std::vector<double>>>>* getRegionsVisiblePolygons() const;
  /// Stores the pointer; frees nothing.
  void setRegionsVisiblePolygons(std::vector<std::vector<std::vector<std::vector<double>>>>* value);
  /// Working data: for each region its projected polygons.
  std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>>* getRegionsProjectedPolygons()
      const;
  /// Stores the pointer; frees nothing.
  void setRegionsProjectedPolygons(
      std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>>* value);
  /// Working data: the position, from 0, of the region that holds the camera, or -1.
  int getCameraInRegionIndex() const { return cameraInRegionIndex; }
  /// Unchecked.
  void setCameraInRegionIndex(int index) { cameraInRegionIndex = index; }

  /// An object with "Id" and "Pen" where set, "PartsCount" from 0 on, and the lists not null.
  Jzon::Node serialize() override;
  /// Reads the same keys; a list whose key holds no array stays as it is, and a list that was there
  /// before is not freed.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  std::string id;
  int partsCount = 0;
  int penNumber = -1;
  Geometry::Faces* faces = nullptr;
  Geometry::Parts* parts = nullptr;
  Geometry::Regions* regions = nullptr;
  Geometry::Overlays* overlays = nullptr;
  std::vector<vtkSmartPointer<vtkPolyData>>* regionsPolyData = nullptr;
  std::vector<vtkSmartPointer<vtkPolyData>>* regionsClippedPolyData = nullptr;
  std::vector<std::vector<std::vector<std::vector<double>>>>* regionsVisiblePolygons = nullptr;
  std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>>* regionsProjectedPolygons =
      nullptr;
  int cameraInRegionIndex = -1;

  // Where one of these is set, it stands for the list of that name above. Copies share it.
  friend struct DeferredAccess;
  std::shared_ptr<Deferred<std::vector<vtkSmartPointer<vtkPolyData>>>> deferredPolyData;
  std::shared_ptr<Deferred<std::vector<vtkSmartPointer<vtkPolyData>>>> deferredClippedPolyData;
  std::shared_ptr<Deferred<std::vector<std::vector<std::vector<std::vector<double>>>>>>
      deferredVisiblePolygons;
  std::shared_ptr<Deferred<std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>>>>
      deferredProjectedPolygons;
};

}  // namespace Lumivane::Scene
