#pragma once

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/ParallelMap.h>
#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneCrossing.h>
#include <lumivane/visibility/SceneEdge.h>
#include <lumivane/visibility/VisibleMap.h>
#include <lumivane/visibility/export.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Session {
class LoadedScene;
}

namespace Lumivane::Visibility {

struct IndexState;

/// What `SceneIndex::look` throws when it was cancelled.
class LUMIVANE_VISIBILITY_EXPORT Cancelled : public std::runtime_error {
 public:
  Cancelled();
  Cancelled(const Cancelled&) noexcept = default;             ///< Shares the text.
  Cancelled& operator=(const Cancelled&) noexcept = default;  ///< Shares the text.
  ~Cancelled() override;
};

/// How an index is made.
struct IndexOptions {
  /// A region is flat if no corner is off its plane by more than this part of its size (the
  /// greatest distance between two corners). Others are taken as triangles, each seen from its own
  /// side: ears of the outline as seen along its normal, or, where that crosses itself and has no
  /// ear, whatever its corners with the lowest numbers cut off.
  double flatness = 1e-4;
  /// Regions whose corners lie within this part of the larger one's size of each other's planes
  /// form a layer, in which the later region is seen.
  double coplanar = 1e-7;
};

/// What one direction meets.
struct Seen {
  Label label;            ///< 0, 0, 0 for the sky
  double distance = 0.0;  ///< from the eye along the direction, in scene units; 0 for the sky
};

/// A scene made ready for looking at it from any eye point: immutable, and used by any number of
/// threads at a time. Copies are cheap and share all.
class LUMIVANE_VISIBILITY_EXPORT SceneIndex {
 public:
  /// The regions of a loaded scene and their classes; its working lists are not looked at. The
  /// scene may change or go afterwards.
  /// \throws std::invalid_argument that names object and region for a point number that points at
  ///         nothing and for coordinates that are not finite, and if there is not one class for
  ///         each region any more
  explicit SceneIndex(const Session::LoadedScene& scene, const IndexOptions& options = {});
  /// The same of a raw scene, without classes.
  explicit SceneIndex(const Scene::Scene3D& scene, const IndexOptions& options = {});
  /// Plain arrays, which are taken over.
  /// \throws std::invalid_argument if the arrays do not fit each other or coordinates are not
  /// finite
  explicit SceneIndex(PolygonScene scene, const IndexOptions& options = {});

  SceneIndex(const SceneIndex&) noexcept;             ///< Shares all.
  SceneIndex& operator=(const SceneIndex&) noexcept;  ///< Shares all.
  SceneIndex(SceneIndex&&) noexcept;                  ///< Takes all of the other.
  SceneIndex& operator=(SceneIndex&&) noexcept;       ///< Takes all of the other.
  ~SceneIndex();

  /// Reads what `write` or `SceneFile::write` has written, mapped into memory: ready in a fraction
  /// of the time that it takes to make an index, and equal to the one that was written.
  /// \throws Session::Error that says what is wrong with the file
  static SceneIndex read(const std::string& path);
  /// Writes the index to a file (*.lumiscene), whole or not at all.
  /// \throws Session::Error if it cannot be written
  void write(const std::string& path) const;

  /// The exact map of what the eye sees.
  /// \throws std::invalid_argument for an eye or direction that is not finite, a forward of zero or
  ///         a negative number of threads
  /// \throws Cancelled  if `options.cancelled` became true
  VisibleMap look(const Vector& eye, const LookOptions& options = {}) const;

  /// The exact map of what is seen along parallel lines of sight, from in front of the whole scene.
  /// A plane whose angle with the lines of sight has a sine of 1e-12 or less is edge-on.
  /// \throws std::invalid_argument for a direction that is zero or not finite or a negative number
  ///         of threads
  /// \throws Cancelled  if `options.cancelled` became true
  ParallelMap lookAlong(const ParallelOptions& options = {}) const;

  /// All edges of the scene's polygons, for drawings that ask what is hidden, too. Made anew at
  /// each call.
  std::vector<SceneEdge> edges() const;

  /// All lines in which two regions run through each other, seen or not: for drawings that ask what
  /// is hidden, too. Found anew at each call, in the same order with any number of threads. Regions
  /// in one layer have none, nor has a region with itself. Where an edge of one polygon lies in
  /// another one there may be one, too, which then lies along that edge.
  /// \param threads  as `LookOptions::threads`
  /// \throws std::invalid_argument for a negative number of threads
  /// \throws Cancelled  if `cancelled` became true
  std::vector<SceneCrossing> crossings(int threads = 1,
                                       const std::atomic<bool>* cancelled = nullptr) const;

  /// What single directions, of any length but zero, meet: by the same rules as the map, found one
  /// by one with exact predicates. \throws std::invalid_argument for an eye or direction that is
  /// not finite, or a direction of zero
  std::vector<Seen> seenIn(const Vector& eye, const std::vector<Vector>& directions,
                           bool twoSided = false) const;

  /// What the index looks at: each flat region as one outline, every other one as its triangles,
  /// which all have the label, and the class, of their region. Outlines of no region that was
  /// dropped; in no particular, but always the same order.
  PolygonScene pieces() const;

  /// Objects, classes and labels, as its maps have them.
  const VisibleMap::Names& names() const;

  std::size_t regionCount() const;  ///< All regions of the scene, the dropped ones included.
  std::size_t droppedRegionCount()
      const;  ///< Regions without a normal: no area, fewer than 3 corners.
  std::size_t triangulatedRegionCount() const;  ///< Regions that are not flat, taken as triangles.
  std::size_t layerCount() const;               ///< Layers of two or more coplanar regions.

 private:
  friend class SceneFile;
  using State = IndexState;
  explicit SceneIndex(std::shared_ptr<const State> made) noexcept;
  std::shared_ptr<const State> state;
};

}  // namespace Lumivane::Visibility
