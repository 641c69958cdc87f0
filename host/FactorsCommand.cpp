// View factors from face to face. Rows go into a journal as they are made: a run that was ended
// takes them from there.

#include "Commands.h"
#include "ExactScene.h"
#include "FactorJournal.h"
#include "FileMark.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "ProgressBar.h"
#include "SceneSource.h"

#include <lumivane/io/FileReading.h>
#include <lumivane/io/FileWriting.h>
#include <lumivane/measure/FaceFactors.h>
#include <lumivane/measure/FactorText.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace Lumivane::Host {
namespace {

using Measure::FaceFactors;
using Measure::FactorTable;
using Measure::FactorText;

std::string endingOf(const std::string& path) {
  return std::filesystem::path(path).extension().string();
}

// Of all that rows depend on.
std::uint64_t keyOf(const FactorsOptions& options) {
  char numbers[80];
  std::snprintf(numbers, sizeof numbers, "%a %zu %d", options.tolerance, options.mostPoints,
                options.twoSided ? 1 : 0);
  return textKey(numbers, sceneKey(options.scene, options.import));
}

FaceFactors factorsOf(const FactorsOptions& options, const SourcedScene& source) {
  Measure::FactorOptions how;
  how.tolerance = options.tolerance;
  how.twoSided = options.twoSided;
  how.mostPoints = options.mostPoints;
  try {
    return FaceFactors(sceneIndexOf(options.scene, source), how);
  } catch (const std::invalid_argument& error) {
    throw HostError(options.scene, error.what());
  }
}

Measure::FactorRun runOf(const FactorsOptions& options, const FaceFactors& factors,
                         FactorJournal& journal) {
  Measure::FactorRun run;
  if (options.rows) {
    const size_t count = factors.elements().size();
    if (options.rows->last > count)
      throw HostError("--rows", "there are " + std::to_string(count) + " elements");
    run.first = options.rows->first - 1;
    run.count = options.rows->last - run.first;
  }
  run.threads = options.threads;
  run.known = journal.takeRows();
  run.made = [&journal](const Measure::FactorRow& row) { journal.append(row); };
  return run;
}

std::vector<Measure::FactorRow> makeRows(const FactorsOptions& options, const FaceFactors& factors,
                                         FactorJournal& journal) {
  Measure::FactorRun run = runOf(options, factors, journal);
  if (!run.known.empty()) std::printf("%zu rows are known from the run before\n", run.known.size());
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  if (show) run.progress = [&show](double part) { show(100.0 * part); };
  return factorRows(factors, run);
}

std::string textOf(const std::string& path, const FactorTable& table) {
  const std::string ending = endingOf(path);
  if (ending == ".npz") return FactorText::npz(table);
  return ending == ".json" ? FactorText::json(table) : FactorText::csv(table);
}

void report(const FactorsOptions& options, const FactorTable& table) {
  size_t entries = 0;
  size_t points = 0;
  size_t rough = 0;
  for (const Measure::FactorRow& row : table.rows) {
    entries += row.entries.size();
    points += row.looks;
    rough += row.isWithinTolerance ? 0 : 1;
  }
  std::printf("%zu factors in %zu of %zu rows, from %zu points\n", entries, table.rows.size(),
              table.elements.size(), points);
  if (rough > 0)
    std::printf("%zu row%s not within the tolerance: raise --most-points\n", rough,
                rough == 1 ? " is" : "s are");
  if (options.reciprocal || table.rows.size() != table.elements.size()) return;
  const Measure::Reciprocity apart = reciprocityOf(table.elements, table.rows);
  std::printf("reciprocity: off by %.3g at most, %.3g in the root mean square\n", apart.greatest,
              apart.meanSquare);
}

void makeAllReciprocal(FactorTable& table) {
  const Measure::Reciprocity before = reciprocityOf(table.elements, table.rows);
  makeReciprocal(table.elements, table.rows);
  const Measure::Reciprocity after = reciprocityOf(table.elements, table.rows);
  std::printf(
      "reciprocity: off by %.3g at most, %.3g in the root mean square; now by %.3g and %.3g\n",
      before.greatest, before.meanSquare, after.greatest, after.meanSquare);
}

}  // namespace

std::string factorFileFault(const std::string& path) {
  const std::string ending = endingOf(path);
  if (ending == ".npz" && !FactorText::hasNpz())
    return "\"" + path + "\": this program was built without libarchive, which writes .npz files";
  return ending == ".csv" || ending == ".json" || ending == ".npz"
             ? ""
             : "\"" + path + "\" does not end in .csv, .json or .npz";
}

void runFactors(const FactorsOptions& options) {
  IO::checkReadable(options.scene);
  const std::string journalPath = options.out + ".rows";
  OutputNames names(sourceFiles(options.scene, options.import));
  names.add("--output", options.out);
  names.add("--elements", options.elements);
  names.add("the journal", journalPath);
  if (options.reciprocal && options.rows)
    throw ArgumentError("--reciprocal", "needs all rows: leave out --rows");
  if (!options.import.classes.empty() && options.elements.empty() &&
      endingOf(options.out) == ".csv")
    throw ArgumentError("--classes",
                        "is for the column class of the elements: name their table with "
                        "--elements, or write .json or .npz");
  const SourcedScene source = loadScene(options.scene, options.import);
  const FaceFactors factors = factorsOf(options, source);
  FactorTable table;
  table.elements = factors.elements();
  table.objectIds = factors.objectIds();
  table.classNames = factors.classNames();
  FactorJournal journal(journalPath, keyOf(options));
  table.rows = makeRows(options, factors, journal);
  if (options.reciprocal) makeAllReciprocal(table);
  const std::string text = textOf(options.out, table);
  if (!options.elements.empty())
    IO::writeFile(options.elements, FactorText::elementsCsv(table, options.csvSafe));
  IO::writeFile(options.out, text);
  journal.remove();
  report(options, table);
}

}  // namespace Lumivane::Host
