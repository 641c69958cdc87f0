#pragma once

#include "SceneSource.h"
#include "Tools.h"

#include <lumivane/visibility/SceneFile.h>

#include <memory>
#include <string>

namespace Lumivane::Host {

/// A scene made ready for looking (*.lumiscene), as commands take it. The scene itself, which shots
/// and colours need, is in the file as a text and only read when it is asked for.
class ReadyScene : public Tools::Model {
 public:
  /// \throws Session::Error
  explicit ReadyScene(const std::string& file);

  /// As it was made, whatever the eye. \throws Session::Error if the file holds only what looks
  /// need
  Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye) override;
  std::string reportText() const override { return ""; }
  Jzon::Node reportNode() const override;
  FilePlace place() const override;
  Wholes wholes() const override;
  std::shared_ptr<const Visibility::SceneFile> ready() const override { return file; }

 private:
  std::string path;
  std::shared_ptr<const Visibility::SceneFile> file;
};

/// Makes a scene ready and writes it. \throws Session::Error
void writeReadyScene(const std::string& path, const SourcedScene& source);

std::unique_ptr<const Check::InsideTest> insideTestOfReady(const Visibility::SceneFile& file);

}  // namespace Lumivane::Host
