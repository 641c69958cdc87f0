#pragma once

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include <vtkMergePoints.h>
#include <vtkPoints.h>

namespace Lumivane::Utils {

/// Merges equal points of small polygon data as vtkMergePoints does, without its 125,000 buckets:
/// making and freeing these takes a hundred times as long as clipping a polygon.
///
/// How: points are compared one after the other. Equal means what it means there: equal when stored
/// with the precision of the points, and in the same of those buckets by the coordinates that they
/// were asked for with. That a point and its neighbour across a bucket's border stay two, although
/// both are stored as one, is kept.
class FewPointsLocator : public vtkMergePoints {
 public:
  /// Above this number of points the buckets pay.
  static constexpr vtkIdType MostPoints = 64;

  static FewPointsLocator* New() {
    auto* result = new FewPointsLocator();
    result->InitializeObjectBase();
    return result;
  }
  vtkTypeMacro(FewPointsLocator, vtkMergePoints)

      int InitPointInsertion(vtkPoints* newPoints, const double bounds[6]) override {
    return InitPointInsertion(newPoints, bounds, 0);
  }

  int InitPointInsertion(vtkPoints* newPoints, const double bounds[6], vtkIdType) override {
    Initialize();
    newPoints->Register(this);
    Points = newPoints;
    InsertionPointId = 0;
    inserted.clear();
    for (int axis = 0; axis < 3; ++axis) {
      double* side = Bounds + 2 * axis;
      side[0] = bounds[2 * axis];
      side[1] = bounds[2 * axis + 1];
      if (side[1] <= side[0]) side[1] = side[0] + 1.0;
      H[axis] = (side[1] - side[0]) / Divisions[axis];
    }
    ComputePerformanceFactors();
    return 1;
  }

  int InsertUniquePoint(const double x[3], vtkIdType& id) override {
    id = IsInsertedPoint(x);
    if (id >= 0) return 0;
    id = InsertNextPoint(x);
    return 1;
  }

  vtkIdType InsertNextPoint(const double x[3]) override {
    Points->InsertPoint(InsertionPointId, x);
    inserted.push_back({bucketOf(x), InsertionPointId});
    return InsertionPointId++;
  }

  vtkIdType IsInsertedPoint(const double x[3]) override {
    const vtkIdType bucket = bucketOf(x);
    for (const auto& [itsBucket, id] : inserted)
      if (itsBucket == bucket && isStoredAs(x, id)) return id;
    return -1;
  }
  vtkIdType IsInsertedPoint(double x, double y, double z) override {
    const double point[3] = {x, y, z};
    return IsInsertedPoint(point);
  }

 protected:
  FewPointsLocator() = default;
  ~FewPointsLocator() override = default;

 private:
  // The number that GetBucketIndex gives. That one turns any double into an integer, which only
  // those within its range can be; what no integer can hold comes out as the first bucket there.
  static vtkIdType bucketAlong(double place, vtkIdType count) {
    constexpr auto beyond = static_cast<double>(std::numeric_limits<vtkIdType>::max());
    if (!(place > 0.0) || place >= beyond) return 0;
    return std::min(static_cast<vtkIdType>(place), count - 1);
  }

  vtkIdType bucketOf(const double x[3]) const {
    return bucketAlong((x[0] - BX) * FX, XD) + bucketAlong((x[1] - BY) * FY, YD) * XD +
           bucketAlong((x[2] - BZ) * FZ, ZD) * SliceSize;
  }

  bool isStoredAs(const double x[3], vtkIdType id) const {
    double stored[3];
    Points->GetPoint(id, stored);
    const bool isSingle = Points->GetDataType() == VTK_FLOAT;
    for (int axis = 0; axis < 3; ++axis) {
      const double asked = isSingle ? static_cast<double>(static_cast<float>(x[axis])) : x[axis];
      if (asked != stored[axis]) return false;
    }
    return true;
  }

  std::vector<std::pair<vtkIdType, vtkIdType>> inserted;  // bucket and id
};

}  // namespace Lumivane::Utils
