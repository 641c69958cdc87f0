#pragma once

#include "Options.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

struct SourcedScene;

/// One view of a grid, its numbers as they stand in the table.
struct GridView {
  std::string name;
  Vector eye{};
  Vector forward{};
  Vector up{};
  std::size_t row = 0;      ///< of the grid's cells, from 1, towards greater y; 0 on faces
  std::size_t column = 0;   ///< from 1, towards greater x; 0 on faces
  bool isInside = false;    ///< whether the eye stands inside a body or under the ground
  std::string object;       ///< id of the object on which the eye stands; empty over a level
  int face = 0;             ///< its face, from 1; -1 for a region of no face, 0 over a level
  std::string className{};  ///< what it is; empty for nothing, and over a level
};

/// Where a vertical line meets the surface that eyes stand on.
struct GridFoot {
  double z = 0.0;
  std::string object;       ///< its id
  int face = 0;             ///< from 1; -1 for a region of no face
  std::string className{};  ///< what it is; may be empty
};

/// A place on a face, a little off it.
struct FacePlace {
  Vector eye{};
  Vector forward{};  ///< the way that the face is seen from: its outward normal
  Vector up{};
  int objectNumber = 0;     ///< from 1
  std::string object;       ///< its id
  int face = 0;             ///< from 1; -1 for a region of no face
  std::string className{};  ///< what it is; may be empty
};

/// Places eyes on the surfaces of one scene, and looks exactly from them. A program without the
/// components has a form of it that finds and measures nothing.
class ExactGrid {
 public:
  /// The options are borrowed. \throws HostError
  ExactGrid(const GridOptions& theOptions, const SourcedScene& source);
  ExactGrid(const ExactGrid&) = delete;
  ExactGrid& operator=(const ExactGrid&) = delete;
  ~ExactGrid();

  /// The surface that `--above` names at x and y; nothing if there is none.
  std::optional<GridFoot> footAt(double x, double y) const;

  /// Whether an eye is under the ground.
  bool isUnderGround(const Vector& eye) const;

  /// Places on the faces that `--on` names, by object and face. \throws HostError
  std::vector<FacePlace> facePlaces() const;

  /// What each eye really sees, as one table whose first column is the view's name. Shows on a
  /// terminal how far it has come. What has been made is kept in a file beside the table, up to
  /// `removeJournal`: a run that was ended takes it from there.
  /// \throws HostError
  std::string shares(const std::vector<GridView>& views);
  void removeJournal();  ///< When the table has been written.

 private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace Lumivane::Host
