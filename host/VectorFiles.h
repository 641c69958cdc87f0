#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}
namespace Lumivane::Session {
class TakenShot;
}

namespace Lumivane::Host {

/// The vector pictures of a shot to write; none of them needs a display. Only a program built with
/// Lumivane::exchange has these options, and without them there is nothing to write.
struct VectorFiles {
  std::string svg;  ///< or empty, and so for the others
  std::string pdf;
  std::string eps;
  std::string png;
  bool axes = false;
  double extent = 1.0;

  std::vector<std::string> paths() const { return {svg, pdf, eps, png}; }
};

/// Declares the options; `files` takes their values when the command line is parsed.
void setVectorOptions(CLI::App& command, VectorFiles& files);

/// Draws all that is asked for, in memory first: either all of it can be drawn or nothing is
/// written.
///
/// \param title  names the picture in its document data
/// \throws HostError that names the file
void writeVectorFiles(const VectorFiles& files, const Session::TakenShot& shot,
                      const std::string& title, int width, int height);

}  // namespace Lumivane::Host
