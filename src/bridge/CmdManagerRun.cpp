#include <lumivane/cmd/CmdManager.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/view/Viewer.h>

namespace Lumivane::Cmd {

void CmdManager::run() {
  if (inputFile.empty()) return;

  // Deliberate: the scene is neither used nor freed here. Reading it shows whether the viewer,
  // which reads it once more, is worth opening.
  if (IO::DataReader().readSceneFile(inputFile) == nullptr) return;

  if (show) View::Viewer::createSceneAndShotView(inputFile, outputFile);
}

}  // namespace Lumivane::Cmd
