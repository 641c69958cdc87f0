// Many views of one scene. The parent reads table and scene and shares the views out to copies of
// itself; it never draws, since what VTK has opened for drawing does not survive a copy.

#include "BatchSummary.h"
#include "Commands.h"
#include "HostError.h"
#include "Journal.h"
#include "Options.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "ShotOutputs.h"
#include "Stats.h"
#include "ViewTable.h"
#include "Workers.h"

#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <set>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Session::LoadedScene;
using Session::TakenShot;

// Where the library leaves its report of a cycle.
constexpr const char* CycleReport = "log_sort.txt";

// Leads the name of a file in a work folder that tells a process's number.
constexpr const char* ProcessMark = "process-";

std::string duration(double seconds) {
  const long whole = std::lround(seconds);
  char text[40];
  if (whole < 3600)
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  else
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return text;
}

// How far a run has come, on standard error if that is a terminal.
class BatchProgress {
 public:
  explicit BatchProgress(size_t count)
      : isShown(isatty(STDERR_FILENO) != 0), all(count), start(std::chrono::steady_clock::now()) {}
  BatchProgress(const BatchProgress&) = delete;
  BatchProgress& operator=(const BatchProgress&) = delete;
  ~BatchProgress() {
    if (isShown) std::fputs("\r\033[K", stderr);
  }

  void count(bool isDone) { ++(isDone ? done : failed); }

  void show() const {
    if (!isShown) return;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const size_t made = done + failed;
    std::string text = progressText(100.0 * static_cast<double>(made) / static_cast<double>(all)) +
                       "  " + std::to_string(made) + "/" + std::to_string(all) + " views";
    if (made > 0) {
      char rate[40];
      std::snprintf(rate, sizeof rate, ", %.1f a second", static_cast<double>(made) / seconds);
      text += rate;
      text += ", " +
              duration(seconds * static_cast<double>(all - made) / static_cast<double>(made)) +
              " left";
    }
    if (failed > 0) text += ", " + std::to_string(failed) + " failed";
    std::fprintf(stderr, "\r\033[K%s", text.c_str());
    std::fflush(stderr);
  }

 private:
  bool isShown;
  size_t all;
  size_t done = 0;
  size_t failed = 0;
  std::chrono::steady_clock::time_point start;
};

class Batch {
 public:
  explicit Batch(const BatchOptions& theOptions) : options(theOptions) {
    Session::checkReadable(options.shot.scene);
    Session::checkReadable(options.views);
    if (!fs::is_regular_file(options.shot.scene))
      throw HostError(options.shot.scene, "is read more than once and must be a plain file");
    setting.scene = options.shot.scene;
    setting.folder = fs::absolute(options.folder).lexically_normal().string();
    setting.options = options.shotOptions;
    setting.sceneKey = textKey(Session::readBytes(options.shot.scene), textKey(LUMIVANE_VERSION));
    views = readViewTable(options.views, setting);
  }

  void make() {
    makeFolder(setting.folder);
    const Journal::Rows known = Journal::rows(setting.folder);
    {
      Journal journal(setting.folder, options.shard);
      const std::vector<size_t> pieces = open(known);
      if (!pieces.empty()) makeViews(pieces, journal);
      removeWorkFolders();
    }
    finish();
  }

  void merge() const {
    const Journal::Rows rows = Journal::rows(setting.folder);
    const size_t missing = countMissing(rows);
    if (missing > 0)
      throw HostError(options.folder, std::to_string(missing) + " of " +
                                          std::to_string(views.size()) +
                                          " views are not made yet: cannot be merged");
    writeSummary(rows);
    report(rows);
  }

 private:
  static void makeFolder(const fs::path& path) {
    std::error_code error;
    fs::create_directories(path, error);
    if (!fs::is_directory(path))
      throw HostError(path.string(), "the folder cannot be made: " + error.message());
  }

  bool isOfShard(size_t index) const {
    return index % static_cast<size_t>(options.shard.count) ==
           static_cast<size_t>(options.shard.number - 1);
  }

  // The views of the shard that are still to be made.
  std::vector<size_t> open(const Journal::Rows& known) const {
    std::vector<size_t> pieces;
    for (size_t i = 0; i < views.size(); ++i)
      if (isOfShard(i) && !isMade(views[i], known)) pieces.push_back(i);
    return pieces;
  }

  bool isMade(const TableView& view, const Journal::Rows& known) const {
    const auto row = known.find(view.key);
    if (row == known.end() || !row->second.isDone) return false;
    return std::all_of(view.files.begin(), view.files.end(), [this](const std::string& file) {
      return fs::exists(fs::path(setting.folder) / file);
    });
  }

  void makeViews(const std::vector<size_t>& pieces, Journal& journal) {
    SourcedScene source = loadScene(options.shot.scene, options.shot.import);
    if (!options.shot.noCheck) refuseErrors(options.shot.scene, source.scene.scene());
    for (const size_t piece : pieces)
      for (const std::string& file : views[piece].files)
        makeFolder((fs::path(setting.folder) / file).parent_path());
    std::fflush(stdout);  // or every process would print it again
    BatchProgress progress(pieces.size());
    SharedWork shared;
    shared.start = [this](int number) { startProcess(number); };
    shared.work = [this, &source](size_t piece) { return makeView(source.scene, views[piece]); };
    const auto keep = [this, &journal, &progress](size_t piece, const JournalRow& row) {
      journal.append(views[piece].key, row);
      progress.count(row.isDone);
    };
    shared.done = [&keep](size_t piece, const std::string& line) {
      keep(piece, {line[0] == '+', line.substr(1)});
    };
    shared.died = [this, &keep](size_t piece, const std::string& how) {
      keep(piece, {false, failureRow(views[piece].name, how)});
    };
    shared.tick = [&progress] { progress.show(); };
    progress.show();
    shareOut(pieces, processes(), shared);
  }

  int processes() const {
    if (options.jobs > 0) return options.jobs;
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  }

  std::string workFolderStart() const {
    return "work-" + std::to_string(options.shard.number) + "-of-" +
           std::to_string(options.shard.count) + "-";
  }

  // The library tells standard output about every shot, and writes a report into the working
  // folder: each process has one of its own.
  void startProcess(int number) const {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
    const fs::path folder =
        fs::path(setting.folder) / "parts" / (workFolderStart() + std::to_string(number));
    makeFolder(folder);
    fs::current_path(folder);
    Session::writeFile(ProcessMark + std::to_string(getpid()), "");
  }

  // Those of this run, and of one that was killed before.
  void removeWorkFolders() const {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(fs::path(setting.folder) / "parts", error)) {
      const std::string name = entry.path().filename().string();
      if (name.rfind(workFolderStart(), 0) != 0) continue;
      removeUnfinishedOf(entry.path());
      fs::remove_all(entry.path(), error);
    }
  }

  // Files that processes of this work folder were about to write when they were killed.
  void removeUnfinishedOf(const fs::path& workFolder) const {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(workFolder, error)) {
      const std::string name = entry.path().filename().string();
      if (name.rfind(ProcessMark, 0) == 0)
        removeUnfinished(".lumivane." + name.substr(std::strlen(ProcessMark)) + "-");
    }
  }

  void removeUnfinished(const std::string& start) const {
    std::set<fs::path> folders;
    for (const TableView& view : views)
      for (const std::string& file : view.files)
        folders.insert((fs::path(setting.folder) / file).parent_path());
    std::error_code error;
    for (const fs::path& folder : folders)
      for (const auto& entry : fs::directory_iterator(folder, error))
        if (entry.path().filename().string().rfind(start, 0) == 0) fs::remove(entry.path(), error);
  }

  // The row of the summary, led by + if the view was made and by - if not.
  std::string makeView(LoadedScene& scene, const TableView& view) const {
    try {
      std::error_code ignored;
      fs::remove(CycleReport, ignored);
      const TakenShot shot = scene.take(view.options.view);
      const bool hasCycle = fs::exists(CycleReport);
      Seconds seconds;
      const std::string row = summaryRow(view.name, shot, hasCycle);  // before another shot
      writeOutputs(view.options, scene, shot, seconds);
      return "+" + row;
    } catch (const std::exception& error) {
      return "-" + failureRow(view.name, oneLine(withoutFolder(error.what())));
    }
  }

  // The summary does not tell where the folder lies, so that it is the same everywhere.
  std::string withoutFolder(std::string text) const {
    const std::string folder = setting.folder + "/";
    for (size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
      text.erase(at, folder.size());
    return text;
  }

  size_t countMissing(const Journal::Rows& rows) const {
    return static_cast<size_t>(
        std::count_if(views.begin(), views.end(),
                      [&rows](const TableView& view) { return rows.count(view.key) == 0; }));
  }

  void finish() const {
    const Journal::Rows rows = Journal::rows(setting.folder);
    const size_t missing = countMissing(rows);
    if (missing == 0) writeSummary(rows);
    report(rows);
  }

  void writeSummary(const Journal::Rows& rows) const {
    std::string text = summaryHeading() + "\n";
    std::vector<std::uint64_t> keys;
    for (const TableView& view : views) {
      text += rows.at(view.key).row + "\n";
      keys.push_back(view.key);
    }
    Session::writeFile(summaryFile(), text);
    Journal::close(setting.folder, keys, rows);
  }

  std::string summaryFile() const { return (fs::path(options.folder) / "summary.csv").string(); }

  // A failed view of any shard counts once the summary is there, before that only one's own.
  void report(const Journal::Rows& rows) const {
    const size_t missing = countMissing(rows);
    size_t failed = 0;
    size_t own = 0;
    for (size_t i = 0; i < views.size(); ++i) {
      if (missing > 0 && !isOfShard(i)) continue;
      ++own;
      if (!rows.at(views[i].key).isDone) ++failed;
    }
    const std::string count = std::to_string(failed) + " of " + std::to_string(own) + " views";
    if (missing > 0)
      std::printf("%zu of %zu views made, %zu of other shards are missing for the summary\n",
                  own - failed, own, missing);
    else
      std::printf("%zu of %zu views made: %s\n", own - failed, own, summaryFile().c_str());
    if (failed > 0)
      throw HostError(missing > 0 ? options.folder : summaryFile(), count + " failed");
  }

  const BatchOptions& options;
  TableSetting setting;
  std::vector<TableView> views;
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
