#include "session/Reading.h"

#include <lumivane/session/ShotFile.h>

namespace Lumivane::Session {

std::unique_ptr<Shot::Shot2d> readShot(const std::string& path) {
  return readText(readDocument(path), path, &IO::DataReader::readShotString);
}

std::unique_ptr<Shot::Shot2d> readShotText(const std::string& text, const std::string& name) {
  return readText(text, name, &IO::DataReader::readShotString);
}

}  // namespace Lumivane::Session
