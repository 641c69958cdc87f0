#include "Commands.h"
#include "HostError.h"
#include "Memory.h"
#include "Options.h"
#include "Signals.h"
#include "Streams.h"

#ifdef LUMIVANE_HOST_TOOLS
#include "ImportOptions.h"
#endif

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongArguments = 2 };

int fail(ExitStatus status, const std::string& text) {
  std::cout.flush();
  std::fflush(stdout);
  std::cerr << "lumivane: " << oneLine(text) << std::endl;
  return status;
}

int run(const std::vector<std::string>& arguments) {
  CLI::App app("Makes flat vector pictures of what one eye sees of a scene.", "lumivane");
  app.set_version_flag("--version", "lumivane " LUMIVANE_VERSION);
  app.require_subcommand(1);

  ShotOptions shot;
  ShowOptions show;
  CheckOptions check;
  BatchOptions batch;
  GridOptions grid;
  Json5Options json5;
  setShotOptions(*app.add_subcommand("shot", "Make a shot of a scene, as a file and as a picture"),
                 shot);
  CLI::App* const showCommand =
      app.add_subcommand("show", "Show a scene and a shot in two windows");
  setShowOptions(*showCommand, show);
#ifdef LUMIVANE_HOST_TOOLS
  ViewOptions view;
  CLI::App* const viewCommand = app.add_subcommand(
      "view", "Find out exactly what one eye sees: shares, the map of it, pictures");
  setViewOptions(*viewCommand, view);
  ImportCommandOptions import;
  CLI::App* const importCommand =
      app.add_subcommand("import", "Make a scene file of a mesh or a city model");
  setImportOptions(*importCommand, import);
#endif
  setCheckOptions(*app.add_subcommand("check", "List what is wrong or surprising in a scene"),
                  check);
  CLI::App* const batchCommand =
      app.add_subcommand("batch", "Make shots of a scene from every view of a table");
  setBatchOptions(*batchCommand, batch);
  setGridOptions(*app.add_subcommand("grid", "Make a table of views over a scene's ground"), grid);
  setJson5Options(*app.add_subcommand("json5", "Convert JSON5 to JSON"), json5);

  try {
    std::vector<std::string> reversed = joinedVectorOptions(arguments);
    std::reverse(reversed.begin(), reversed.end());
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(error);
    return fail(WrongArguments, std::string(error.what()) + " (see --help)");
  }
  show.viewGiven = viewWasGiven(*showCommand);
  batch.shotOptions = givenShotOptions(*batchCommand);

  if (app.got_subcommand("shot")) runShot(shot);
  if (app.got_subcommand("show")) runShow(show);
#ifdef LUMIVANE_HOST_TOOLS
  if (viewCommand->parsed()) runView(view);
  if (importCommand->parsed()) runImport(import);
#endif
  if (app.got_subcommand("check")) return runCheck(check);
  if (app.got_subcommand("batch")) runBatch(batch);
  if (app.got_subcommand("grid")) runGrid(grid);
  if (app.got_subcommand("json5")) runJson5(json5);
  finishStandardOutput();
  return Done;
}

}  // namespace
}  // namespace Lumivane::Host

int main(int argc, char** argv) {
  using namespace Lumivane::Host;
  openStandardStreams();
  prepareMemory();
  endCleanlyOnSignals();
  try {
    return run({argv + (argc > 0 ? 1 : 0), argv + argc});
  } catch (const std::bad_alloc&) {
    return fail(Failed, NotEnoughMemory);
  } catch (const ArgumentError& error) {
    return fail(WrongArguments, error.what());
  } catch (const std::exception& error) {
    return fail(Failed, error.what());
  }
}
