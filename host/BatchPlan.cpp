// What a batch is going to make, and what it must not touch. Files are recognised by what they are,
// not by their names: a link or another spelling is the same file.

#include "BatchPlan.h"

#include "HostError.h"
#include "SceneSource.h"

#include <lumivane/session/Files.h>

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

// The files that the run writes besides the views' outputs, as names in the folder of outputs.
constexpr const char* OwnFiles[] = {"summary.csv", "journal.csv"};
constexpr const char* OwnFolder = "parts";

// A material library that cannot be read is left out by the importer, with a note.
std::string bytesOrNone(const std::string& file) {
  try {
    return Session::readBytes(file);
  } catch (const HostError&) {
    return "";
  }
}

// Stands for the program's version and the name and bytes of every file that is read.
std::uint64_t sourcesKey(const std::vector<std::string>& files) {
  std::uint64_t key = textKey(LUMIVANE_VERSION);
  for (const std::string& file : files) {
    const std::string bytes = bytesOrNone(file);
    const std::string name = fs::path(file).filename().string();
    key = textKey(name + "\n" + std::to_string(bytes.size()) + "\n", key);
    key = textKey(bytes, key);
  }
  return key;
}

// Work folders are removed with all that is in them, so a link must not lead somewhere else.
void refuseOutwardParts(const std::string& folder) {
  const fs::path parts = fs::path(folder) / OwnFolder;
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(parts, error))) return;
  const std::string inside = fs::weakly_canonical(folder, error).string() + "/";
  if (Session::writtenFile(parts.string()).rfind(inside, 0) != 0)
    throw ArgumentError(parts.string(),
                        "is a link that leads out of the folder of outputs: "
                        "remove the link or choose another folder");
}

// The path of all that lies in the run's own folder starts with this.
std::string startOfOwnFolder(const std::string& folder) {
  std::error_code error;
  return fs::weakly_canonical(fs::path(folder) / OwnFolder, error).string() + "/";
}

void refuseInputsAsOwnFiles(const std::vector<std::string>& inputs, const std::string& folder) {
  const std::string parts = startOfOwnFolder(folder);
  for (const std::string& input : inputs) {
    for (const char* own : OwnFiles)
      if (Session::sameFile(input, (fs::path(folder) / own).string()))
        throw ArgumentError(input,
                            "is an input, and the run writes its own file of that name: "
                            "rename it or choose another folder");
    std::error_code error;
    if (fs::weakly_canonical(fs::absolute(input), error).string().rfind(parts, 0) == 0)
      throw ArgumentError(input,
                          "is an input in a folder that the run removes: choose another "
                          "folder of outputs");
  }
}

class OutputCheck {
 public:
  OutputCheck(const std::vector<std::string>& inputs, const std::string& folder)
      : parts(startOfOwnFolder(folder)) {
    struct stat status = {};
    for (const std::string& input : inputs)
      if (stat(input.c_str(), &status) == 0) read.insert({status.st_dev, status.st_ino});
    for (const char* own : OwnFiles) {
      const std::string path = (fs::path(folder) / own).string();
      if (!written.emplace(Session::writtenFile(path), "").second)
        throw ArgumentError(path, "leads to another file that the run writes: remove the link");
    }
  }

  // No output is an input, a file of the run's own or another output.
  void add(const std::string& path, const std::string& writer) {
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && read.count({status.st_dev, status.st_ino}) > 0)
      throw ArgumentError(path, "is an input, and " + writer + " would overwrite it");
    const std::string file = Session::writtenFile(path);
    const auto [other, isNew] = written.emplace(file, writer);
    if (file.rfind(parts, 0) == 0 || (!isNew && other->second.empty()))
      throw ArgumentError(path, "leads to a file that the run writes itself: remove the link");
    if (!isNew) throw ArgumentError(path, "is written by " + writer + " and by " + other->second);
  }

 private:
  std::string parts;
  std::set<std::pair<dev_t, ino_t>> read;
  std::map<std::string, std::string> written;  // with their writers; those of the run have none
};

// What is made of the summary lies in the folder, too.
void addMaps(const BatchOptions& options, const std::string& folder, OutputCheck& outputs) {
  if (!options.crs.empty() && options.raster.empty() && options.geojson.empty())
    throw ArgumentError("--crs", "is that of --raster and --geojson: name one of them");
  const std::pair<const char*, const std::string&> files[] = {
      {"--raster", options.raster}, {"--geojson", options.geojson}, {"--npy", options.npy}};
  for (const auto& [option, path] : files) {
    if (path.empty()) continue;
    const fs::path normal = fs::path(path).lexically_normal();
    const std::string start = normal.begin()->string();
    if (normal.is_absolute() || start == ".." || start == ".")
      throw ArgumentError(option, "\"" + path + "\" is not a name inside the folder of outputs");
    outputs.add((fs::path(folder) / normal).string(), option);
  }
}

void refuseShots(const BatchPlan& plan) {
  if (!plan.views.hasFiles()) return;
  for (std::size_t i = 0; i < plan.views.size(); ++i) {
    const TableView view = plan.views[i];
    if (view.options.noShots && view.files.size() > (view.options.shares.empty() ? 0U : 1U))
      throw ArgumentError("--no-shots", "makes no shot for the outputs of view \"" + view.name +
                                            "\": of these only --shares needs none");
  }
}

// The value of an option that was given for all views; nothing if it was not.
std::optional<std::string> given(const BatchOptions& options, const std::string& name) {
  for (const std::string& option : options.shotOptions)
    if (option.rfind("--" + name + "=", 0) == 0) return option.substr(name.size() + 3);
  return std::nullopt;
}

// Options for all views that would change nothing are mistakes. Those in a table may be meant for
// another run with it.
void refuseUseless(const BatchOptions& options, const BatchPlan& plan) {
  for (const char* const ofShots :
       {"camera", "segments", "max-length", "merge-distance", "limit-points", "limit-memory",
        "eye-clearance", "grazing-angle", "style", "size"})
    if (options.shot.noShots && given(options, ofShots))
      throw ArgumentError(std::string("--") + ofShots, "is for shots, which --no-shots leaves out");
  const std::optional<std::string> rows = given(options, "rows");
  if (!rows || *rows == "class") return;  // those are columns of the summary, too
  for (std::size_t i = 0; plan.views.hasFiles() && i < plan.views.size(); ++i)
    if (!plan.views[i].options.shares.empty()) return;
  throw ArgumentError("--rows",
                      "is for --shares; rows of classes alone are columns of the summary");
}

void refusePipes(const ShotOptions& options) {
  std::vector<std::string> files = options.import.also;
  files.insert(files.begin(), options.scene);
  for (const std::string& file : files)
    if (!fs::is_regular_file(file))
      throw HostError(file, "is read more than once and must be a plain file");
}

}  // namespace

BatchPlan planBatch(const BatchOptions& options) {
  Session::checkReadable(options.shot.scene);
  Session::checkReadable(options.views);
  refusePipes(options.shot);
  std::vector<std::string> inputs = sourceFiles(options.shot.scene, options.shot.import);
  BatchPlan plan;
  plan.setting.scene = options.shot.scene;
  plan.setting.folder = fs::absolute(options.folder).lexically_normal().string();
  plan.setting.options = options.shotOptions;
  plan.setting.sceneKey = sourcesKey(inputs);
  plan.views = ViewTable(options.views, plan.setting);
  inputs.push_back(options.views);
  refuseOutwardParts(plan.setting.folder);
  refuseInputsAsOwnFiles(inputs, plan.setting.folder);
  OutputCheck outputs(inputs, plan.setting.folder);
  for (std::size_t i = 0; plan.views.hasFiles() && i < plan.views.size(); ++i) {
    const TableView view = plan.views[i];
    for (const std::string& file : view.files)
      outputs.add((fs::path(plan.setting.folder) / file).string(), "view \"" + view.name + "\"");
  }
  if (options.shard.range && options.shard.range->last > plan.views.size())
    throw HostError("--views-range", "ends at " + std::to_string(options.shard.range->last) +
                                         ", but there are " + std::to_string(plan.views.size()) +
                                         " views");
  addMaps(options, plan.setting.folder, outputs);
  refuseShots(plan);
  refuseUseless(options, plan);
  return plan;
}

std::string optionsText(const TableSetting& setting) {
  std::string text;
  for (const std::string& option : setting.options) text += (text.empty() ? "" : " ") + option;
  return text;
}

}  // namespace Lumivane::Host
