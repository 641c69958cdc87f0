// The host of the command driver: hands its arguments over and lets the driver run.

#include "Display.h"
#include "HostError.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace Lumivane::Host {
namespace {

using Cmd::CmdManager;

int fail(const std::string& text) {
  std::cout.flush();
  std::fflush(stdout);
  std::cerr << "lumivane-driver: " << oneLine(text) << std::endl;
  return 1;
}

bool opensWindows() {
  return CmdManager::show && !CmdManager::inputFile.empty() && !CmdManager::outputFile.empty();
}

// What the driver does up to the windows, which cannot be opened here.
int runWithoutWindows(const std::string& fault) {
  CmdManager::show = false;
  CmdManager::run();
  const std::string text = IO::DataReader().readFileIntoString(CmdManager::inputFile);
  if (!Jzon::Parser().parseString(text).isValid()) return 0;  // the driver ends here with a display
  return fail(CmdManager::inputFile + ": cannot be shown: " + fault);
}

int run(int argc, char** argv) {
  CmdManager::parseArgs(argc, argv);
  const std::string fault = opensWindows() ? displayFault() : "";
  if (!fault.empty()) return runWithoutWindows(fault);
  CmdManager::run();
  return 0;
}

}  // namespace
}  // namespace Lumivane::Host

int main(int argc, char** argv) {
  using namespace Lumivane::Host;
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}
