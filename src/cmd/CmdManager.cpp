#include "cmd/NumberText.h"

#include <lumivane/cmd/CmdManager.h>

namespace Lumivane::Cmd {

std::string CmdManager::inputFile;
std::string CmdManager::outputFile;
bool CmdManager::show;
int CmdManager::minSegmentsNumber = 6;
double CmdManager::maxSegmentsLength;
int CmdManager::projectionType = 1;

namespace {

void setMinSegmentsNumber(const std::string& value) {
  const int number = parseInt(value);
  if (number > 0) CmdManager::minSegmentsNumber = number;
}

void setMaxSegmentsLength(const std::string& value) {
  const double length = parseDouble(value);
  if (length > 0.0 && length <= 1.0) CmdManager::maxSegmentsLength = length;
}

void parseArg(const std::string& argument) {
  const std::string::size_type equals = argument.find('=');
  const std::string name = argument.substr(0, equals);
  // Deliberate: without a `=` the position after "not found" is 0, so that the value is the whole
  // argument.
  const std::string value = argument.substr(equals + 1);

  if (name == "-if") {
    CmdManager::inputFile = value;
  } else if (name == "-of") {
    CmdManager::outputFile = value;
  } else if (name == "-show") {
    if (value == "1") CmdManager::show = true;
  } else if (name == "-pt") {
    CmdManager::projectionType = value == "2" ? 2 : 1;
  } else if (name == "-sn") {
    setMinSegmentsNumber(value);
  } else if (name == "-sl") {
    setMaxSegmentsLength(value);
  }
}

}  // namespace

void CmdManager::parseArgs(int argc, char** const argv) {
  for (int i = 1; i < argc; ++i) parseArg(argv[i]);
}

}  // namespace Lumivane::Cmd
