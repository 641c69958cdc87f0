#include "Commands.h"
#include "OptionParts.h"
#include "ToolParts.h"

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
void setFactorsOptions(CLI::App& command, FactorsOptions& options) {
  addScene(command, options.scene, options.import);
  command.remove_option(command.get_option("--two-sided"));  // backs are elements of their own
  command.add_option("-o,--output", options.out, "view factors to write (.csv, .json or .npz)")
      ->required()
      ->check(factorFileFault, "")
      ->type_name("FILE");
  addFile(command, "--elements", options.elements,
          "what the rows and columns are: a table to write (.csv)");
  command
      .add_option("--tolerance", options.tolerance,
                  "error of an exchange area, by itself or by a twentieth of the area of all faces")
      ->check(numberRange(1e-7, 1.0), "")
      ->type_name("NUMBER")
      ->capture_default_str();
  command
      .add_option("--most-points", options.mostPoints,
                  "points of a face from which it is looked before it is divided no further")
      ->check(CLI::Range(1, 1000000))
      ->type_name("N")
      ->capture_default_str();
  command.add_flag("--two-sided", options.twoSided, "the backs of faces are elements, too");
  command.add_flag("--reciprocal", options.reciprocal,
                   "make both factors of each pair agree, by least squares, with rows that still "
                   "add up to 1");
  command
      .add_option_function<std::string>(
          "--rows",
          [&options](const std::string& text) { options.rows = readRowRange("--rows", text); },
          "only these rows, from 1")
      ->type_name("FIRST:LAST");
  command.add_option("--threads", options.threads, "threads; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  addClasses(command, options.import);
  addCsvSafe(command, options.csvSafe);
  command.get_option("--csv-safe")->needs("--elements");
  command.footer(
      "Rows are kept in a file beside the output, named FILE.rows, until it is written: the same\n"
      "command goes on where it was ended.");
}

}  // namespace Lumivane::Host
