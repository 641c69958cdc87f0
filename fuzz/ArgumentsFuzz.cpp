// Arguments, one to a line, of the library's command driver and of the program's commands.

#include "Bytes.h"
#include "Options.h"

#ifdef LUMIVANE_HOST_TOOLS
#include "ImportOptions.h"
#endif

#include <lumivane/cmd/CmdManager.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace {

namespace Host = Lumivane::Host;
using Lumivane::Fuzz::require;

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
  std::vector<std::string> copies{"lumivane-driver"};
  copies.insert(copies.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(copies.size() + 1);
  for (std::string& copy : copies) pointers.push_back(copy.data());
  pointers.push_back(nullptr);
  using Lumivane::Cmd::CmdManager;
  try {
    CmdManager::parseArgs(static_cast<int>(copies.size()), pointers.data());
  } catch (const std::invalid_argument&) {
    // no number
  } catch (const std::out_of_range&) {
    // too large a number
  }
  require(CmdManager::minSegmentsNumber > 0);
  require(CmdManager::maxSegmentsLength >= 0.0 && CmdManager::maxSegmentsLength <= 1.0);
  require(CmdManager::projectionType == 1 || CmdManager::projectionType == 2);
}

// What the program may start with once the parser has let it pass. A scene's name may be empty: it
// is refused where it is opened.
void checkShot(const Host::ShotOptions& shot) {
  require(shot.width >= 1 && shot.width <= 16384 && shot.height >= 1 && shot.height <= 16384);
  require(shot.view.segments >= 1);
  require(std::isfinite(shot.view.maxLength) && shot.view.maxLength >= 0.0);
  require(std::isfinite(shot.view.d1) && std::isfinite(shot.view.d2));
  require(shot.import.scale > 0.0 && std::isfinite(shot.import.scale));
}

struct Options {
  Host::ShotOptions shot;
  Host::ShowOptions show;
  Host::CheckOptions check;
  Host::BatchOptions batch;
  Host::GridOptions grid;
  Host::Json5Options json5;
  Host::ImportCommandOptions import;
  Host::ViewOptions view;
};

void declare(CLI::App& app, Options& options) {
  app.require_subcommand(1);
  Host::setShotOptions(*app.add_subcommand("shot"), options.shot);
  Host::setShowOptions(*app.add_subcommand("show"), options.show);
  Host::setCheckOptions(*app.add_subcommand("check"), options.check);
  Host::setBatchOptions(*app.add_subcommand("batch"), options.batch);
  Host::setGridOptions(*app.add_subcommand("grid"), options.grid);
  Host::setJson5Options(*app.add_subcommand("json5"), options.json5);
#ifdef LUMIVANE_HOST_TOOLS
  Host::setImportOptions(*app.add_subcommand("import"), options.import);
  Host::setViewOptions(*app.add_subcommand("view"), options.view);
#endif
}

void checkParsed(const CLI::App& app, const Options& options) {
  if (app.got_subcommand("shot")) checkShot(options.shot);
  if (app.got_subcommand("show")) Host::viewWasGiven(*app.get_subcommand("show"));
  if (options.view.size) {
    require(options.view.size->width >= 1 && options.view.size->width <= 16384);
    require(options.view.size->height >= 1 && options.view.size->height <= 16384);
  }
  if (app.got_subcommand("grid")) require(!options.grid.headings.empty());
  if (!app.got_subcommand("batch")) return;
  checkShot(options.batch.shot);
  const Host::Shard shard = options.batch.shard;
  require(shard.number >= 1 && shard.number <= shard.count);
  require(options.batch.jobs >= 0);
  // Its workers are given these.
  for (const std::string& option : Host::givenShotOptions(*app.get_subcommand("batch")))
    require(option.compare(0, 2, "--") == 0 && option.find('=') != std::string::npos);
}

void programArguments(const std::vector<std::string>& arguments) {
  CLI::App app("fuzz", "lumivane");
  Options options;
  declare(app, options);
  try {
    std::vector<std::string> reversed = Host::joinedVectorOptions(arguments);
    std::reverse(reversed.begin(), reversed.end());
    app.parse(reversed);
    checkParsed(app, options);
  } catch (const CLI::ParseError&) {
    // reported with status 2
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
