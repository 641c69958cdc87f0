// Many views of one scene. The parent reads table and scene and shares the views out to copies of
// itself; it never draws, since what VTK has opened for drawing does not survive a copy.

#include "AuditedShot.h"
#include "BatchMaps.h"
#include "BatchPlan.h"
#include "BatchProgress.h"
#include "BatchRows.h"
#include "BatchSummary.h"
#include "Commands.h"
#include "ExactBatch.h"
#include "HostError.h"
#include "Journal.h"
#include "Memory.h"
#include "NpyTable.h"
#include "Options.h"
#include "SceneSource.h"
#include "ShotOutputs.h"
#include "Stats.h"
#include "Warnings.h"
#include "WorkFolders.h"
#include "Workers.h"

#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Session::LoadedScene;
using Session::TakenShot;

class Batch {
 public:
  explicit Batch(const BatchOptions& theOptions)
      : options(theOptions),
        plan(planBatch(options)),
        workFolders(plan, options.shard),
        batchRows(plan),
        maps(options, plan) {}

  void make() {
    checkMaps();
    makeFolder(plan.setting.folder);
    Session::checkWritable(summaryFile());
    {
      Journal journal(plan.setting.folder, options.shard);
      const std::vector<size_t> pieces = open();
      if (!pieces.empty()) makeViews(pieces, journal);
      workFolders.remove();
    }
    finish();
  }

  void merge() {
    const Journal::Rows known = Journal::rows(plan.setting.folder);
    const ViewRows rows = batchRows.of(known);
    checkMaps();
    if (countMissing(rows) > 0)
      throw HostError(options.folder, batchRows.whyNotMerged(rows, known));
    writeSummary(rows);
    report(rows);
  }

 private:
  using ViewRows = BatchRows::ViewRows;

  SceneForEyes& source() {
    if (!readSource)
      readSource = std::make_unique<SceneForEyes>(options.shot.scene, options.shot.import);
    return *readSource;
  }

  // Before the work, since they need what table and scene may not have.
  void checkMaps() {
    if (maps.isAsked()) maps.check(source().place(), source().eyeShift());
  }

  std::vector<size_t> piecesOfShard() const {
    std::vector<size_t> pieces;
    for (size_t i = 0; i < plan.views.size(); ++i)
      if (options.shard.has(i)) pieces.push_back(i);
    return pieces;
  }

  // The views of the shard that are still to be made. Of the journal its part alone is held, and
  // that not while views are made.
  std::vector<size_t> open() {
    const std::vector<size_t> own = piecesOfShard();
    const Journal::Rows known = batchRows.known(own);
    std::vector<size_t> pieces;
    for (const size_t i : own) {
      const JournalRow* const row = batchRows.of(i, known);
      if (row == nullptr || !row->isDone) pieces.push_back(i);
    }
    batchRows.reportRepeats(pieces, known);
    return pieces;
  }

  void makeViews(const std::vector<size_t>& pieces, Journal& journal) {
    SceneForEyes& scenes = source();
    // One that came ready has been checked; for shots of it each take does it again.
    if (options.shot.view.checkScene && !scenes.source().ready)
      refuseErrors(options.shot.scene, scenes.scene().scene());
    // Of shots alone: a look computes in double precision.
    if (!options.shot.noShots && isSceneFile(options.shot.scene))
      warnOfFarCoordinates(options.shot.scene, scenes.scene());
    keepClasses(scenes);
    for (size_t i = 0; plan.views.hasFiles() && i < pieces.size(); ++i)
      for (const std::string& file : plan.views[pieces[i]].files)
        makeFolder((fs::path(plan.setting.folder) / file).parent_path().string());
    std::fflush(stdout);  // or every process would print it again
    BatchProgress progress(pieces.size());
    SharedWork shared;
    shared.start = [this](int number) { startProcess(number); };
    std::unique_ptr<ExactBatch> exact;  // each process makes one for itself
    shared.work = [this, &scenes, &exact](size_t piece) {
      return makeView(scenes, exact, plan.views[piece]);
    };
    const auto keep = [this, &journal, &progress](size_t piece, const JournalRow& row) {
      journal.append(plan.views.key(piece), row);
      batchRows.remember(row);
      progress.count(row.isDone);
    };
    shared.done = [this, &keep](size_t piece, const std::string& text) {
      const auto row = readJournalText(text);
      keep(piece, row ? *row : failure(plan.views[piece], "its process gave no row"));
    };
    shared.died = [this, &keep](size_t piece, const std::string& how) {
      keep(piece, failure(plan.views[piece], how));
    };
    shared.tick = [&progress] { progress.show(); };
    progress.show();
    shareOut(pieces, processes(), shared);
  }

  int processes() const {
    if (options.jobs > 0) return options.jobs;
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  }

  // The library prints lines about every shot.
  void startProcess(int number) const {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
    workFolders.enter(number);
  }

  // The text of the view's row for the journal.
  std::string makeView(SceneForEyes& scenes, std::unique_ptr<ExactBatch>& exact,
                       const TableView& view) const {
    renewMemoryReserve();
    try {
      // Before the objects are listed for an eye: their numbers are the same for all views.
      if (!exact) exact = std::make_unique<ExactBatch>(options.shot.scene, scenes.source());
      JournalRow row = rowFor(view, true);
      row.row = view.options.noShots ? look(scenes, *exact, view) : take(scenes, *exact, view);
      for (const std::string& file : view.files)
        row.files.push_back(markOf((fs::path(plan.setting.folder) / file).string(), file));
      return journalText(row);
    } catch (const std::bad_alloc&) {
      return journalText(failure(view, NotEnoughMemory));
    } catch (const std::exception& error) {
      return journalText(failure(view, oneLine(withoutFolder(error.what()))));
    }
  }

  static ShotOptions placedOptions(const SceneForEyes& scenes, const TableView& view) {
    ShotOptions placed = view.options;
    placed.view.eye = moved(view.options.view.eye, scenes.eyeShift());
    return placed;
  }

  // Makes the shot and all outputs of a view; returns its row of the summary.
  std::string take(SceneForEyes& scenes, const ExactBatch& exact, const TableView& view) const {
    LoadedScene& scene = scenes.at(view.options.view.eye);
    const ShotOptions placed = placedOptions(scenes, view);
    const TakenShot shot = scene.take(placed.view);
    warnIfInside("view " + view.name, shot);
    Seconds seconds;
    std::string row =
        summaryRow(view.name, shot, exact.look(placed), scenes.place().inFile(placed.view.eye),
                   classes, options.shot.csvSafe);
    writeOutputs(placed, scene, shot, AuditedShot(), seconds);
    return row;
  }

  // The same of a view without a shot.
  std::string look(const SceneForEyes& scenes, const ExactBatch& exact,
                   const TableView& view) const {
    const ShotOptions placed = placedOptions(scenes, view);
    const std::optional<ExactSummary> seen = exact.look(placed);
    return exactSummaryRow(view.name, placed.view.eye, seen.value_or(ExactSummary()),
                           scenes.place().inFile(placed.view.eye), classes, options.shot.csvSafe);
  }

  JournalRow rowFor(const TableView& view, bool isDone) const {
    JournalRow row;
    row.isDone = isDone;
    row.name = view.name;
    row.sources = plan.setting.sceneKey;
    row.options = optionsText(plan.setting);
    return row;
  }

  JournalRow failure(const TableView& view, const std::string& how) const {
    JournalRow row = rowFor(view, false);
    row.row = failureRow(view.name, how, classes, options.shot.csvSafe);
    return row;
  }

  // The summary does not say where the folder lies, so that it is the same everywhere.
  std::string withoutFolder(std::string text) const {
    const std::string folder = plan.setting.folder + "/";
    for (size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
      text.erase(at, folder.size());
    return text;
  }

  static size_t countMissing(const ViewRows& rows) {
    return static_cast<size_t>(std::count(rows.begin(), rows.end(), nullptr));
  }

  // Only the shard that comes last brings all rows together.
  void finish() {
    if (const size_t missing = batchRows.countMissing(); missing > 0) {
      reportShard(missing);
      return;
    }
    const Journal::Rows known = Journal::rows(plan.setting.folder);
    const ViewRows rows = batchRows.of(known);
    if (countMissing(rows) > 0) {  // an output has gone meanwhile
      reportShard(countMissing(rows));
      return;
    }
    writeSummary(rows);
    report(rows);
  }

  // The summary has a column for each class if the shares go by classes.
  bool goesByClasses() const { return options.shot.rows == "class"; }
  void keepClasses(SceneForEyes& scenes) {
    if (goesByClasses()) classes = scenes.classNames();
  }

  void writeSummary(const ViewRows& rows) {
    // Where nothing was left to be made the scene has not been read.
    if (goesByClasses() && !classes)
      classes = classNamesOf(options.shot.scene, options.shot.import);
    const std::string heading = summaryHeading(classes, options.shot.csvSafe);
    std::string text = heading + "\n";
    std::vector<std::pair<std::uint64_t, const JournalRow*>> kept;
    for (size_t i = 0; i < plan.views.size(); ++i) {
      text += rows[i]->row + "\n";
      kept.emplace_back(plan.views.key(i), rows[i]);
    }
    Session::writeFile(summaryFile(), text);
    writeMaps(heading, rows);
    Journal::close(plan.setting.folder, kept);
  }

  void writeMaps(const std::string& heading, const ViewRows& rows) const {
    if (!maps.isAsked() && options.npy.empty()) return;
    std::vector<std::string> texts;
    for (const JournalRow* const row : rows) texts.push_back(row->row);
    if (maps.isAsked()) maps.write(heading, texts);
    if (!options.npy.empty())
      Session::writeFile((fs::path(plan.setting.folder) / options.npy).string(),
                         npyOfTable(heading, texts));
  }

  std::string summaryFile() const { return (fs::path(options.folder) / "summary.csv").string(); }

  // A failed view of any shard counts once the summary is there, before that only one's own.
  void report(const ViewRows& rows) const {
    const auto failed = static_cast<size_t>(std::count_if(
        rows.begin(), rows.end(), [](const JournalRow* row) { return !row->isDone; }));
    std::printf("%zu of %zu views made: %s\n", rows.size() - failed, rows.size(),
                summaryFile().c_str());
    throwIfFailed(failed, rows.size(), summaryFile());
  }

  void reportShard(size_t missing) {
    const std::vector<size_t> own = piecesOfShard();
    const Journal::Rows known = batchRows.known(own);
    const auto failed = static_cast<size_t>(std::count_if(own.begin(), own.end(), [&](size_t i) {
      const JournalRow* const row = batchRows.of(i, known);
      return row == nullptr || !row->isDone;
    }));
    std::printf("%zu of %zu views made, %zu of other shards are missing for the summary\n",
                own.size() - failed, own.size(), missing);
    throwIfFailed(failed, own.size(), options.folder);
  }

  static void throwIfFailed(size_t failed, size_t all, const std::string& where) {
    if (failed > 0)
      throw HostError(where,
                      std::to_string(failed) + " of " + std::to_string(all) + " views failed");
  }

  const BatchOptions& options;
  BatchPlan plan;
  WorkFolders workFolders;
  BatchRows batchRows;
  SummaryClasses classes;
  BatchMaps maps;
  std::unique_ptr<SceneForEyes> readSource;  // null until it is asked for
};

}  // namespace

void runBatch(const BatchOptions& options) {
  Batch batch(options);
  if (options.merge)
    batch.merge();
  else
    batch.make();
}

}  // namespace Lumivane::Host
