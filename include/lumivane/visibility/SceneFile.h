#pragma once

#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneIndex.h>
#include <lumivane/visibility/export.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Lumivane::Visibility {

/// A scene that has been made ready for looking once and for all, in a file (*.lumiscene).
///
/// The file is mapped into memory: a million polygons are ready in a fraction of a second, and all
/// processes of a machine that look at the same file share one copy of it. It is a cache: for
/// machines of one byte order and for programs that know its version of the format, and made anew
/// from the scene whenever it is refused.
///
/// Everything that is read is checked against its hash, and every number that points somewhere
/// against what it points into, before the first look. Whoever writes into a file that is in use
/// breaks that; `write` never does, since it puts a new file in the place of the old one.
class LUMIVANE_VISIBILITY_EXPORT SceneFile {
 public:
  /// Of the format. It is raised whenever what the arrays of an index hold, or mean, changes.
  static constexpr std::uint32_t Version = 1;

  /// What a file may hold besides the index.
  struct Content {
    /// The outlines that the index was made from; null for none. Borrowed.
    const PolygonScene* outlines = nullptr;
    /// Any bytes under a name of 1 to 24 letters, digits, `_` or `-`.
    std::map<std::string, std::string> texts;
  };

  /// The outlines of all regions of a scene, in its order, as `PolygonScene` has them. Borrowed
  /// from the file.
  struct Outlines {
    const Vector* points = nullptr;        ///< null if the file holds no outlines
    std::size_t pointCount = 0;            ///< how many
    const std::size_t* offsets = nullptr;  ///< one more than outlines; the first is 0
    std::size_t count = 0;                 ///< of outlines, as many as the index has regions
    const int* corners = nullptr;          ///< positions in `points`
  };

  /// Writes a file whole or not at all. \throws Session::Error if it cannot be written
  /// \throws std::invalid_argument for a name of a text that is none, or outlines of another scene
  static void write(const std::string& path, const SceneIndex& index, const Content& content);

  /// Maps a file. \throws Session::Error that says what is wrong with it and what to do
  explicit SceneFile(const std::string& path);

  SceneFile(const SceneFile&) noexcept;             ///< Shares all.
  SceneFile& operator=(const SceneFile&) noexcept;  ///< Shares all.
  SceneFile(SceneFile&&) noexcept;                  ///< Takes all of the other.
  SceneFile& operator=(SceneFile&&) noexcept;       ///< Takes all of the other.
  ~SceneFile();

  const SceneIndex& index() const;  ///< The file stays mapped as long as a copy of it lives.
  Outlines outlines() const;        ///< Live as long as this, or a copy of it.

  bool hasText(const std::string& name) const;  ///< Whether there is a text of this name.
  /// A text; empty if there is none of this name. \throws Session::Error if it is damaged
  std::string text(const std::string& name) const;

  /// Stands for all that the file holds: equal contents have equal keys (XXH3, 64 bits).
  std::uint64_t key() const;

  /// Whether a path ends in .lumiscene.
  static bool hasEnding(const std::string& path);

 private:
  struct State;
  std::shared_ptr<const State> state;
};

}  // namespace Lumivane::Visibility
