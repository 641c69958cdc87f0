#pragma once

#include <functional>
#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// A command of the program, as the table of commands holds it.
struct Command {
  std::string name;
  std::string help;
  std::function<void(CLI::App&)> declare;   ///< its arguments
  std::function<int(const CLI::App&)> run;  ///< after the parse; returns the exit status
};

/// A command with options of its own, which live as long as it does.
template <class Options>
Command command(const std::string& name, const std::string& help,
                void (*declare)(CLI::App&, Options&), void (*run)(const Options&)) {
  const auto options = std::make_shared<Options>();
  return {name, help, [=](CLI::App& app) { declare(app, *options); },
          [=](const CLI::App&) {
            run(*options);
            return 0;
          }};
}

}  // namespace Lumivane::Host
