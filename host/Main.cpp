// The table of commands, in the order of the help, and the exit status of what goes wrong. A
// command declares its arguments before the parse and runs after it, so nothing here knows their
// options.

#include "Command.h"
#include "Commands.h"
#include "HostError.h"
#include "Memory.h"
#include "Options.h"
#include "Signals.h"
#include "Streams.h"
#include "Tools.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
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

Command showCommand() {
  const auto show = std::make_shared<ShowOptions>();
  return {"show", "Show a scene and a shot in two windows",
          [show](CLI::App& app) { setShowOptions(app, *show); },
          [show](const CLI::App& app) {
            show->viewGiven = viewWasGiven(app);
            runShow(*show);
            return 0;
          }};
}

Command checkCommand() {
  const auto check = std::make_shared<CheckOptions>();
  return {"check", "List what is wrong or surprising in a scene",
          [check](CLI::App& app) { setCheckOptions(app, *check); },
          [check](const CLI::App&) { return runCheck(*check); }};
}

Command batchCommand() {
  const auto batch = std::make_shared<BatchOptions>();
  return {"batch", "Make shots of a scene from every view of a table",
          [batch](CLI::App& app) { setBatchOptions(app, *batch); },
          [batch](const CLI::App& app) {
            batch->shotOptions = givenShotOptions(app);
            runBatch(*batch);
            return 0;
          }};
}

// In the order of the help.
std::vector<Command> allCommands() {
  std::vector<Command> all = {
      command<ShotOptions>("shot", "Make a shot of a scene, as a file and as a picture",
                           setShotOptions, runShot),
      showCommand()};
  for (Command& tool : Tools::commands()) all.push_back(std::move(tool));
  all.push_back(checkCommand());
  all.push_back(batchCommand());
  all.push_back(command<GridOptions>("grid", "Make a table of views over a scene's ground",
                                     setGridOptions, runGrid));
  all.push_back(command<Json5Options>("json5", "Convert JSON5 to JSON", setJson5Options, runJson5));
  return all;
}

int run(const std::vector<std::string>& arguments) {
  CLI::App app("Makes flat vector pictures of what one eye sees of a scene.", "lumivane");
  app.set_version_flag("--version", "lumivane " LUMIVANE_VERSION);
  app.require_subcommand(1);
  const std::vector<Command> commands = allCommands();
  for (const Command& entry : commands) entry.declare(*app.add_subcommand(entry.name, entry.help));

  try {
    std::vector<std::string> reversed = joinedVectorOptions(arguments);
    std::reverse(reversed.begin(), reversed.end());
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(error);
    return fail(WrongArguments, std::string(error.what()) + " (see --help)");
  }

  int status = Done;
  for (const Command& entry : commands)
    if (app.got_subcommand(entry.name)) status = entry.run(*app.get_subcommand(entry.name));
  finishStandardOutput();
  return status;
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
