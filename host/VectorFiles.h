#pragma once

#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
}
namespace Lumivane::Measure {
class ShotAudit;
}
namespace Lumivane::Session {
class LoadedScene;
class TakenShot;
struct ViewSettings;
}  // namespace Lumivane::Session

namespace Lumivane::Host {

class ShotShares;

/// The vector pictures and the page of a shot to write; none of them needs a display. Only a
/// program built with Lumivane::pictures has these options, and without them there is nothing to
/// write.
struct VectorFiles {
  std::string svg;  ///< or empty, and so for the others
  std::string pdf;
  std::string eps;
  std::string png;
  std::string html;
  bool htmlBoth = false;  ///< whether the page has the shot of the other camera too
  bool axes = false;
  double extent = 1.0;

  /// The files by the options that name them; an empty one is not to be written.
  std::vector<std::pair<const char*, std::string>> files() const {
    return {
        {"--svg", svg}, {"--pdf", pdf}, {"--eps", eps}, {"--png-vector", png}, {"--html", html}};
  }
};

/// Declares the options; `files` takes their values when the command line is parsed.
void setVectorOptions(CLI::App& command, VectorFiles& files);

/// Draws all that is asked for, in memory first: either all of it can be drawn or nothing is
/// written.
///
/// \param scene  what the shot was taken of; for a page with both cameras a second one is taken
/// \param view   from where the shot was taken
/// \param title   of pictures and pages
/// \param shares  of the shot; measured here if a page is the first to ask
/// \param audit   of the shot, with its wrong parts: the page shades them; null without one
/// \throws HostError that names the file
void writeVectorFiles(const VectorFiles& files, Session::LoadedScene& scene,
                      const Session::ViewSettings& view, const Session::TakenShot& shot,
                      ShotShares& shares, const Measure::ShotAudit* audit, const std::string& title,
                      int width, int height);

}  // namespace Lumivane::Host
