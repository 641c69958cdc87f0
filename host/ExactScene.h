#pragma once

#include "SceneSource.h"
#include "Wholes.h"

#include <lumivane/session/ViewSettings.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/MapText.h>
#include <lumivane/visibility/SceneIndex.h>

#include <string>
#include <vector>

namespace Lumivane::Host {

/// What one eye sees, exactly.
struct ExactView {
  Visibility::VisibleMap map;
  Visibility::MapShares shares;
};

/// A scene made ready for exact looks from any eye.
class ExactScene {
 public:
  /// \param name  stands in errors
  /// \throws HostError for a scene that cannot be looked at
  ExactScene(const std::string& name, const SourcedScene& source);
  /// The same of a scene whose parts belong to nothing.
  ExactScene(const std::string& name, const Session::LoadedScene& scene);

  /// The hemisphere of a view, from where it says; without what objects would take alone.
  /// \throws HostError
  ExactView look(const Session::ViewSettings& view) const;
  /// As for a view. \throws HostError
  Visibility::VisibleMap look(const Visibility::Vector& eye,
                              const Visibility::LookOptions& options) const;

  const Visibility::SceneIndex& sceneIndex() const { return index; }

  /// The rows of a table of shares by its depth on the command line.
  std::vector<Visibility::ShareRow> shareRows(const std::string& rows,
                                              const Visibility::VisibleMap& map,
                                              const Visibility::MapShares& shares) const;
  /// A table of shares, as the file's ending says (.csv or .json).
  std::string sharesText(const std::string& path, const std::string& rows, bool isSafe,
                         const Visibility::VisibleMap& map,
                         const Visibility::MapShares& shares) const;

 private:
  Visibility::SceneIndex index;
  Wholes wholes;
};

/// A scene made ready for exact looks: as it came, or made now. \param name  stands in errors
/// \throws HostError for a scene that cannot be looked at
Visibility::SceneIndex sceneIndexOf(const std::string& name, const SourcedScene& source);

/// Whether a table of these rows shows how much of each object is seen, which takes another look.
bool hasFractions(const std::string& rows);

/// Which objects such a table needs sums of.
Visibility::MapShares::Objects objectsOf(const std::string& rows);

}  // namespace Lumivane::Host
