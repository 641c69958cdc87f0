// Arguments, one to a line, of the library's command driver and of the program's commands.

#include "Bytes.h"
#include "Options.h"

#include <lumivane/cmd/CmdManager.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace {

namespace Host = Lumivane::Host;

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    std::string line = text.substr(start, end - start);
    line.erase(std::remove(line.begin(), line.end(), '\0'), line.end());  // none in an argument
    result.push_back(std::move(line));
    start = end + 1;
  }
  return result;
}

void driverArguments(const std::vector<std::string>& arguments) {
  std::vector<std::string> copies = arguments;
  std::vector<char*> pointers;
  pointers.reserve(copies.size() + 1);
  for (std::string& copy : copies) pointers.push_back(copy.data());
  pointers.push_back(nullptr);
  try {
    Lumivane::Cmd::CmdManager::parseArgs(static_cast<int>(copies.size()), pointers.data());
  } catch (const std::invalid_argument&) {
    // no number
  } catch (const std::out_of_range&) {
    // too large a number
  }
}

void programArguments(const std::vector<std::string>& arguments) {
  CLI::App app("fuzz", "lumivane");
  app.require_subcommand(1);
  Host::ShotOptions shot;
  Host::ShowOptions show;
  Host::CheckOptions check;
  Host::Json5Options json5;
  Host::setShotOptions(*app.add_subcommand("shot"), shot);
  Host::setShowOptions(*app.add_subcommand("show"), show);
  Host::setCheckOptions(*app.add_subcommand("check"), check);
  Host::setJson5Options(*app.add_subcommand("json5"), json5);
  try {
    std::vector<std::string> reversed = Host::joinedVectorOptions(arguments);
    std::reverse(reversed.begin(), reversed.end());
    app.parse(reversed);
  } catch (const CLI::ParseError&) {
    // told with status 2
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  const std::vector<std::string> arguments = lines(Lumivane::Fuzz::Bytes(data, size).rest());
  driverArguments(arguments);
  programArguments(arguments);
  return 0;
}
