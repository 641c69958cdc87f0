// Many views of one scene. The parent reads table and scene and shares the views out to copies of
// itself; it never draws, since what VTK has opened for drawing does not survive a copy.

#include "BatchSummary.h"
#include "Commands.h"
#include "ExactBatch.h"
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
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
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
    sources = sourceFiles(options.shot.scene);
    setting.sceneKey = sourcesKey(sources);
    views = readViewTable(options.views, setting);
    refuseOutwardParts();
    refuseInputsAsOutputs();
  }

  void make() {
    makeFolder(setting.folder);
    const Journal::Rows known = Journal::rows(setting.folder);
    {
      Journal journal(setting.folder, options.shard);
      const std::vector<size_t> pieces = open(known);
      reportRepeats(pieces, known);
      if (!pieces.empty()) makeViews(pieces, journal);
      removeWorkFolders();
    }
    finish();
  }

  void merge() {
    const Journal::Rows known = Journal::rows(setting.folder);
    const ViewRows rows = rowsOf(known);
    const size_t missing = countMissing(rows);
    if (missing > 0) throw HostError(options.folder, whyNotMerged(rows, known));
    writeSummary(rows);
    report(rows);
  }

 private:
  // Work folders are removed with all that is in them, so a link must not lead somewhere else.
  void refuseOutwardParts() const {
    const fs::path parts = fs::path(setting.folder) / "parts";
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(parts, error))) return;
    const std::string inside = fs::weakly_canonical(setting.folder, error).string() + "/";
    if (Session::writtenFile(parts.string()).rfind(inside, 0) != 0)
      throw ArgumentError(parts.string(),
                          "is a link that leads out of the folder of outputs: "
                          "remove the link or choose another folder");
  }

  // An input is recognised by the file, not by its name: a link or another spelling is the same.
  void refuseInputsAsOutputs() const {
    std::vector<std::string> inputs = sources;
    inputs.push_back(options.views);
    const fs::path folder(setting.folder);
    for (const std::string& input : inputs) {
      for (const char* own : {"summary.csv", "journal.csv"})
        if (Session::sameFile(input, (folder / own).string()))
          throw ArgumentError(input,
                              "is an input, and the run writes its own file of that name: "
                              "rename it or choose another folder");
      std::error_code error;
      const std::string parts = fs::weakly_canonical(folder / "parts", error).string() + "/";
      if (fs::weakly_canonical(fs::absolute(input), error).string().rfind(parts, 0) == 0)
        throw ArgumentError(input,
                            "is an input in a folder that the run removes: choose another "
                            "folder of outputs");
    }
    refuseOutputsOn(inputs);
  }

  // No output is an input or the output of another view, whatever their names.
  void refuseOutputsOn(const std::vector<std::string>& inputs) const {
    std::set<std::pair<dev_t, ino_t>> read;
    struct stat status = {};
    for (const std::string& input : inputs)
      if (stat(input.c_str(), &status) == 0) read.insert({status.st_dev, status.st_ino});
    std::map<std::string, std::string> written;  // with their views
    for (const TableView& view : views) {
      for (const std::string& file : view.files) {
        const std::string path = (fs::path(setting.folder) / file).string();
        if (stat(path.c_str(), &status) == 0 && read.count({status.st_dev, status.st_ino}) > 0)
          throw ArgumentError(path,
                              "is an input, and view \"" + view.name + "\" would overwrite it");
        const auto [other, isNew] = written.emplace(Session::writtenFile(path), view.name);
        if (!isNew)
          throw ArgumentError(path, "is written by view \"" + view.name + "\" and by view \"" +
                                        other->second + "\"");
      }
    }
  }

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

  // A material library that cannot be read is left out by the importer, with a note.
  static std::string bytesOrNone(const std::string& file) {
    try {
      return Session::readBytes(file);
    } catch (const HostError&) {
      return "";
    }
  }

  // Stands for the program's version and the name and bytes of every file that is read.
  static std::uint64_t sourcesKey(const std::vector<std::string>& files) {
    std::uint64_t key = textKey(LUMIVANE_VERSION);
    for (const std::string& file : files) {
      const std::string bytes = bytesOrNone(file);
      const std::string name = fs::path(file).filename().string();
      key = textKey(name + "\n" + std::to_string(bytes.size()) + "\n", key);
      key = textKey(bytes, key);
    }
    return key;
  }

  // The options that stand for all views, as the journal keeps them.
  std::string optionsText() const {
    std::string text;
    for (const std::string& option : setting.options) text += (text.empty() ? "" : " ") + option;
    return text;
  }

  // The row of each view: of those that were made one whose outputs are as they were written, or
  // else the latest failure; nothing if there is neither.
  using ViewRows = std::vector<const JournalRow*>;

  ViewRows rowsOf(const Journal::Rows& known) {
    ViewRows rows;
    rows.reserve(views.size());
    for (const TableView& view : views) rows.push_back(rowOf(view, known));
    return rows;
  }

  const JournalRow* rowOf(const TableView& view, const Journal::Rows& known) {
    const auto found = known.find(view.key);
    if (found == known.end()) return nullptr;
    const JournalRow* failure = nullptr;
    for (auto row = found->second.rbegin(); row != found->second.rend(); ++row) {
      if (row->isDone && hasOutputs(view, *row)) return &*row;
      if (!row->isDone && failure == nullptr) failure = &*row;
    }
    return failure;
  }

  bool hasOutputs(const TableView& view, const JournalRow& row) {
    return row.files.size() == view.files.size() &&
           std::all_of(row.files.begin(), row.files.end(),
                       [this](const FileMark& mark) { return isAsWritten(mark); });
  }

  static std::string markKey(const FileMark& mark) {
    return mark.file + "\n" + keyText(mark.size) + keyText(mark.hash);
  }

  // Each file is read only once in a run, and what the run itself has written not at all.
  bool isAsWritten(const FileMark& mark) {
    const auto [known, isNew] = compared.try_emplace(markKey(mark), false);
    if (isNew) known->second = hasMark((fs::path(setting.folder) / mark.file).string(), mark);
    return known->second;
  }

  // The views of the shard that are still to be made.
  std::vector<size_t> open(const Journal::Rows& known) {
    std::vector<size_t> pieces;
    for (size_t i = 0; i < views.size(); ++i) {
      if (!isOfShard(i)) continue;
      const JournalRow* const row = rowOf(views[i], known);
      if (row == nullptr || !row->isDone) pieces.push_back(i);
    }
    return pieces;
  }

  // Says which of the views had been made before, and why they do not count.
  void reportRepeats(const std::vector<size_t>& pieces, const Journal::Rows& known) const {
    const Journal::Rows byName = rowsByName(known);
    std::map<std::string, size_t> counts;
    for (const size_t piece : pieces) {
      const std::string reason = reasonToRepeat(views[piece], known, byName);
      if (!reason.empty()) ++counts[reason];
    }
    for (const auto& [reason, count] : counts)
      std::printf("%zu of %zu views are made again: %s\n", count, views.size(), reason.c_str());
  }

  static Journal::Rows rowsByName(const Journal::Rows& known) {
    Journal::Rows result;
    for (const auto& [key, rows] : known)
      for (const JournalRow& row : rows)
        if (row.isDone) result[textKey(row.name)].push_back(row);
    return result;
  }

  // Empty if the view has not been made before.
  std::string reasonToRepeat(const TableView& view, const Journal::Rows& known,
                             const Journal::Rows& byName) const {
    const auto rows = known.find(view.key);
    const bool wasMade =
        rows != known.end() && std::any_of(rows->second.begin(), rows->second.end(),
                                           [](const JournalRow& row) { return row.isDone; });
    if (wasMade) return "their outputs are gone or not as they were written";
    const auto others = byName.find(textKey(view.name));
    if (others == byName.end()) return "";
    return difference(others->second.back());
  }

  // What makes a row of the same view name another view.
  std::string difference(const JournalRow& row) const {
    if (row.sources != setting.sceneKey)
      return "the scene, a file that it names, or the program's version has changed";
    if (row.options != optionsText())
      return "they were made with other options (" + (row.options.empty() ? "none" : row.options) +
             "), not with these (" + (setting.options.empty() ? "none" : optionsText()) + ")";
    return "their rows of the table have changed";
  }

  std::string whyNotMerged(const ViewRows& rows, const Journal::Rows& known) const {
    const Journal::Rows byName = rowsByName(known);
    std::map<std::string, size_t> counts;
    for (size_t i = 0; i < views.size(); ++i)
      if (rows[i] == nullptr) ++counts[reasonToRepeat(views[i], known, byName)];
    std::string text;
    for (const auto& [reason, count] : counts)
      text +=
          (text.empty() ? "" : "; ") + std::to_string(count) + " of " +
          std::to_string(views.size()) + " views " +
          (reason.empty() ? "are not made yet: cannot be merged" : "cannot be merged: " + reason);
    return text;
  }

  void makeViews(const std::vector<size_t>& pieces, Journal& journal) {
    SceneForEyes source(options.shot.scene, options.shot.import);
    if (options.shot.view.checkScene) refuseErrors(options.shot.scene, source.scene().scene());
    for (const size_t piece : pieces)
      for (const std::string& file : views[piece].files)
        makeFolder((fs::path(setting.folder) / file).parent_path());
    std::fflush(stdout);  // or every process would print it again
    BatchProgress progress(pieces.size());
    SharedWork shared;
    shared.start = [this](int number) { startProcess(number); };
    std::unique_ptr<ExactBatch> exact;  // each process makes one for itself
    shared.work = [this, &source, &exact](size_t piece) {
      return makeView(source, exact, views[piece]);
    };
    const auto keep = [this, &journal, &progress](size_t piece, const JournalRow& row) {
      journal.append(views[piece].key, row);
      for (const FileMark& mark : row.files) compared[markKey(mark)] = true;
      progress.count(row.isDone);
    };
    shared.done = [this, &keep](size_t piece, const std::string& text) {
      const auto row = readJournalText(text);
      keep(piece, row ? *row : failure(views[piece], "its process gave no row"));
    };
    shared.died = [this, &keep](size_t piece, const std::string& how) {
      keep(piece, failure(views[piece], how));
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
    std::error_code ignored;
    if (fs::is_symlink(fs::symlink_status(folder, ignored))) fs::remove(folder, ignored);
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
      if (!entry.is_symlink(error)) removeUnfinishedOf(entry.path());
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

  // The text of the view's row for the journal.
  std::string makeView(SceneForEyes& source, std::unique_ptr<ExactBatch>& exact,
                       const TableView& view) const {
    try {
      // Before the objects are listed for an eye: their numbers are the same for all views.
      if (!exact) exact = std::make_unique<ExactBatch>(options.shot.scene, source.scene());
      LoadedScene& scene = source.at(view.options.view.eye);
      std::error_code ignored;
      fs::remove(CycleReport, ignored);
      ShotOptions placed = view.options;
      placed.view.eye = moved(view.options.view.eye, source.eyeShift());
      const TakenShot shot = scene.take(placed.view);
      const bool hasCycle = fs::exists(CycleReport);
      warnIfInside("view " + view.name, shot);
      Seconds seconds;
      JournalRow row = rowFor(view, true);
      row.row = summaryRow(view.name, shot, hasCycle, exact->look(placed),
                           options.shot.csvSafe);  // before another shot
      writeOutputs(placed, scene, shot, seconds);
      for (const std::string& file : view.files)
        row.files.push_back(markOf((fs::path(setting.folder) / file).string(), file));
      return journalText(row);
    } catch (const std::bad_alloc&) {
      return journalText(failure(view, NotEnoughMemory));
    } catch (const std::exception& error) {
      return journalText(failure(view, oneLine(withoutFolder(error.what()))));
    }
  }

  JournalRow rowFor(const TableView& view, bool isDone) const {
    JournalRow row;
    row.isDone = isDone;
    row.name = view.name;
    row.sources = setting.sceneKey;
    row.options = optionsText();
    return row;
  }

  JournalRow failure(const TableView& view, const std::string& how) const {
    JournalRow row = rowFor(view, false);
    row.row = failureRow(view.name, how, options.shot.csvSafe);
    return row;
  }

  // The summary does not tell where the folder lies, so that it is the same everywhere.
  std::string withoutFolder(std::string text) const {
    const std::string folder = setting.folder + "/";
    for (size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
      text.erase(at, folder.size());
    return text;
  }

  static size_t countMissing(const ViewRows& rows) {
    return static_cast<size_t>(std::count(rows.begin(), rows.end(), nullptr));
  }

  void finish() {
    const Journal::Rows known = Journal::rows(setting.folder);
    const ViewRows rows = rowsOf(known);
    if (countMissing(rows) == 0) writeSummary(rows);
    report(rows);
  }

  void writeSummary(const ViewRows& rows) const {
    std::string text = summaryHeading() + "\n";
    std::vector<std::pair<std::uint64_t, JournalRow>> kept;
    for (size_t i = 0; i < views.size(); ++i) {
      text += rows[i]->row + "\n";
      kept.emplace_back(views[i].key, *rows[i]);
    }
    Session::writeFile(summaryFile(), text);
    Journal::close(setting.folder, kept);
  }

  std::string summaryFile() const { return (fs::path(options.folder) / "summary.csv").string(); }

  // A failed view of any shard counts once the summary is there, before that only one's own.
  void report(const ViewRows& rows) const {
    const size_t missing = countMissing(rows);
    size_t failed = 0;
    size_t own = 0;
    for (size_t i = 0; i < views.size(); ++i) {
      if (missing > 0 && !isOfShard(i)) continue;
      ++own;
      if (rows[i] == nullptr || !rows[i]->isDone) ++failed;
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
  std::vector<std::string> sources;  // all files that make the scene
  std::vector<TableView> views;
  std::map<std::string, bool> compared;  // whether files have their marks
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
