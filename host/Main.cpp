// The table of commands, in the order of the help, and the exit status of what goes wrong. A
// command declares its arguments before the parse and runs after it, so nothing here knows their
// options.

#include "Allocator.h"
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
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

enum ExitStatus : int { Done = 0, Failed = 1, WrongArguments = 2 };

int fail(ExitStatus status, const std::string& text) {
  std::cout.flush();
  std::fflush(stdout);
  std::cerr << "lumivane: " << oneLine(withStandardOutputNamed(text)) << std::endl;
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
      command<ShotOptions>("shot",
                           "Make a shot: a hemispherical (fisheye) vector view of whole faces",
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

// How many letters to change, add or take away: V. I. Levenshtein, 1966.
size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t k = 0; k < b.size(); ++k) {
      const size_t changed = diagonal + (a[i] == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({changed, row[k] + 1, row[k + 1] + 1});
    }
  }
  return row.back();
}

// Of a first word that is no command; empty if it is one, or an option.
std::string commandFault(const std::vector<std::string>& arguments,
                         const std::vector<Command>& commands) {
  if (arguments.empty()) return "a command is missing, such as view, draw or shot";
  const std::string& word = arguments.front();
  if (word.empty() || word[0] == '-') return "";
  std::string nearest;
  size_t least = 3;  // more letters than that are another word
  for (const Command& entry : commands) {
    const size_t distance = editDistance(word, entry.name);
    if (distance == 0) return "";
    if (distance < least) nearest = entry.name;
    least = std::min(least, distance);
  }
  return "\"" + word + "\" is not a command" +
         (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?");
}

int run(const std::vector<std::string>& arguments) {
  CLI::App app(
      "Computes what one point of a 3D scene sees: exact view factors, line drawings, fisheye "
      "vector "
      "views.",
      "lumivane");
  app.set_version_flag("--version", "lumivane " LUMIVANE_VERSION);
  app.require_subcommand(1);
  app.footer("\"-\" in place of the name of one file to write stands for standard output.");
  const std::vector<Command> commands = allCommands();
  for (const Command& entry : commands) {
    CLI::App& command = *app.add_subcommand(entry.name, entry.help);
    // Options of commands that are not named take milliseconds of each start.
    if (std::count(arguments.begin(), arguments.end(), entry.name) == 0) continue;
    entry.declare(command);
    if (entry.name != "batch") addStandardOutput(command);  // its outputs are names in a folder
  }

  for (size_t i = 0; i < arguments.size(); ++i)
    if (arguments[i].empty() && (i == 0 || arguments[i - 1] != "--title"))
      return fail(WrongArguments, (i == 0 ? std::string("the command") : arguments[i - 1]) +
                                      ": is followed by an empty text, as an unset variable of the "
                                      "shell gives it");
  if (const std::string fault = commandFault(arguments, commands); !fault.empty())
    return fail(WrongArguments, fault + " (see --help)");
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
  prepareAllocator();
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
