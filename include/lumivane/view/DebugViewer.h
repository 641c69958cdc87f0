#pragma once

#include <lumivane/export.h>

#include <vector>

#include <vtkActorCollection.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::View {

/// One window that shows any polygon data: a help to look at geometry during development.
///
/// Copies share the collected actors; a move takes them and leaves the source without any.
class LUMIVANE_EXPORT DebugViewer {
 public:
  DebugViewer() = default;
  DebugViewer(const DebugViewer&) = default;             ///< Shares the actors.
  DebugViewer& operator=(const DebugViewer&) = default;  ///< Shares the actors.
  DebugViewer(DebugViewer&& other) noexcept;             ///< Takes the actors.
  DebugViewer& operator=(DebugViewer&& other) noexcept;  ///< Takes the actors.
  ~DebugViewer() = default;

  /// Adds polygon data to what `show` draws, after what was added before.
  ///
  /// \param polyData  kept by reference count
  /// \param color     red, green, blue, alpha, each 0 to 255
  /// \throws std::out_of_range "invalid vector subscript" for a colour of fewer than 4 values
  void addActor(vtkPolyData* polyData, std::vector<int> color);

  /// Opens the window "Debug Window" (800 by 600 pixels) with all actors and returns when it is
  /// closed; may be called again. Without an actor nothing opens.
  void show();

 private:
  vtkSmartPointer<vtkActorCollection> actors;
};

}  // namespace Lumivane::View
