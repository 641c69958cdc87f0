#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

struct ShotOptions;
struct SourcedScene;

/// What a summary reports of a view: of what the eye really sees, not of the shot's picture.
struct ExactSummary {
  size_t visibleObjects = 0;
  double skyViewFactor = 0.0;
  double skyHemisphereShare = 0.0;
  std::string largestId;  ///< of the object with the largest view factor; as the scene gave it
  std::optional<double> largestViewFactor;  ///< none if no object is seen
  std::vector<double> classViewFactors;     ///< of all classes, and last of what has none
  std::string largestClass;  ///< the class with the largest view factor; empty if none is seen
  std::optional<double> largestClassViewFactor;  ///< none if no class is seen
  /// Under the ground, or inside a body; the latter only of a view without a shot, which says it
  /// otherwise.
  bool isInside = false;
};

/// Looks exactly at one scene from many eyes. A program without the components has a form of it
/// that measures nothing.
class ExactBatch {
 public:
  /// The numbers of the objects are those that the scene has now, for all eyes.
  /// \throws HostError
  ExactBatch(const std::string& name, const SourcedScene& source);
  ExactBatch(const ExactBatch&) = delete;
  ExactBatch& operator=(const ExactBatch&) = delete;
  ~ExactBatch();

  /// Looks from the eye of a view, where the options say it stands, and writes the shares if they
  /// name a file. Nothing without the components. \throws HostError
  std::optional<ExactSummary> look(const ShotOptions& view) const;

 private:
  struct State;
  std::unique_ptr<const State> state;
};

}  // namespace Lumivane::Host
