#pragma once

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/EdgeStartPoint3d.h>

#include <vector>

namespace Lumivane::Test {

/// The protected operations of a shot creator.
class ShotCreatorProbe : public Algorithm::ShotCreator {
 public:
  using ShotCreator::checkCameraOnPolygonAndShift;
  using ShotCreator::copyPoints;
  using ShotCreator::getDockingEdges;
  using ShotCreator::getProjection;
  using ShotCreator::isCameraInObject;
  using ShotCreator::isPointInArea3dConvex;
  using ShotCreator::printPoints;
  using ShotCreator::projectPoints;
  using ShotCreator::projectPointsRadial;
  using ShotCreator::projectPointsSquare;
  using ShotCreator::splitPoints;
};

/// Coordinates, and whether the edge that starts there exists.
struct EdgeStart {
  std::vector<double> coordinates;
  bool hasEdge = true;
};

/// The values of the points, which are freed.
inline std::vector<EdgeStart> taken(std::vector<Geometry::EdgeStartPoint2d*> points) {
  std::vector<EdgeStart> result;
  for (const Geometry::EdgeStartPoint2d* point : points) {
    result.push_back({point->toVector(), point->getHasEdge()});
    delete point;
  }
  return result;
}

inline std::vector<EdgeStart> taken(std::vector<Geometry::EdgeStartPoint3d*> points) {
  std::vector<EdgeStart> result;
  for (const Geometry::EdgeStartPoint3d* point : points) {
    result.push_back({point->toVector(), point->getHasEdge()});
    delete point;
  }
  return result;
}

/// Sets how edges are split, and sets the defaults again at the end of its life.
class SegmentSettings {
 public:
  SegmentSettings(int minSegmentsNumber, double maxSegmentsLength) {
    Cmd::CmdManager::minSegmentsNumber = minSegmentsNumber;
    Cmd::CmdManager::maxSegmentsLength = maxSegmentsLength;
  }
  SegmentSettings(const SegmentSettings&) = delete;
  SegmentSettings& operator=(const SegmentSettings&) = delete;
  ~SegmentSettings() {
    Cmd::CmdManager::minSegmentsNumber = 6;
    Cmd::CmdManager::maxSegmentsLength = 0.0;
  }
};

}  // namespace Lumivane::Test
