#pragma once

#include <lumivane/scene/Object.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Lumivane::Scene {

// A list of an object's working data that is made when somebody first asks for it. What it is made
// from is kept as it was when the shot was taken, so that a later look finds the same as an early
// one. Made, the list belongs to whoever asked; not made, it needs no freeing.
template <class List>
class Deferred {
 public:
  explicit Deferred(std::function<List*()> maker) : make(std::move(maker)) {}

  List* get() {
    if (make == nullptr) return list;
    list = make();
    make = nullptr;  // frees what it was made from
    return list;
  }
  bool isMade() const { return make == nullptr; }

 private:
  std::function<List*()> make;
  List* list = nullptr;
};

// How shot creation leaves lists on an object that are yet to be made.
struct DeferredAccess {
  using PolyDataList = std::vector<vtkSmartPointer<vtkPolyData>>;
  using RegionPolygons = std::vector<std::vector<std::vector<std::vector<double>>>>;
  using RegionProjections = std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>>;

  static void setRegionsPolyData(Object& object, std::function<PolyDataList*()> make) {
    object.deferredPolyData = deferred<PolyDataList>(std::move(make));
  }
  static void setRegionsClippedPolyData(Object& object, std::function<PolyDataList*()> make) {
    object.deferredClippedPolyData = deferred<PolyDataList>(std::move(make));
  }
  static void setRegionsVisiblePolygons(Object& object, std::function<RegionPolygons*()> make) {
    object.deferredVisiblePolygons = deferred<RegionPolygons>(std::move(make));
  }
  static void setRegionsProjectedPolygons(Object& object,
                                          std::function<RegionProjections*()> make) {
    object.deferredProjectedPolygons = deferred<RegionProjections>(std::move(make));
  }

  // Forgets the lists that nobody has asked for. Their getters then give null.
  static void dropUnmade(Object& object) {
    drop(object.deferredPolyData, object.regionsPolyData);
    drop(object.deferredClippedPolyData, object.regionsClippedPolyData);
    drop(object.deferredVisiblePolygons, object.regionsVisiblePolygons);
    drop(object.deferredProjectedPolygons, object.regionsProjectedPolygons);
  }

 private:
  template <class List>
  static std::shared_ptr<Deferred<List>> deferred(std::function<List*()> make) {
    return std::make_shared<Deferred<List>>(std::move(make));
  }

  template <class List>
  static void drop(std::shared_ptr<Deferred<List>>& list, List*& earlier) {
    if (list == nullptr || list->isMade()) return;
    list.reset();
    earlier = nullptr;
  }
};

}  // namespace Lumivane::Scene
