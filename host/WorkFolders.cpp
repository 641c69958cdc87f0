#include "WorkFolders.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include <unistd.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

// Leads the name of a file in a work folder; the number of a process follows.
constexpr const char* ProcessMark = "process-";

}  // namespace

void makeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (!fs::is_directory(path))
    throw HostError(path, "the folder cannot be made: " + error.message());
}

void WorkFolders::enter(int process) const {
  const fs::path folder =
      fs::path(plan.setting.folder) / "parts" / (nameStart() + std::to_string(process));
  std::error_code ignored;
  if (fs::is_symlink(fs::symlink_status(folder, ignored))) fs::remove(folder, ignored);
  makeFolder(folder.string());
  fs::current_path(folder);
  Session::writeFile(ProcessMark + std::to_string(getpid()), "");
}

void WorkFolders::remove() const {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(fs::path(plan.setting.folder) / "parts", error)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind(nameStart(), 0) != 0) continue;
    if (!entry.is_symlink(error)) removeUnfinishedOf(entry.path().string());
    fs::remove_all(entry.path(), error);
  }
}

std::string WorkFolders::nameStart() const { return "work-" + shard.name() + "-"; }

// Files that processes of this work folder were about to write when they were killed.
void WorkFolders::removeUnfinishedOf(const std::string& workFolder) const {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(workFolder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind(ProcessMark, 0) == 0)
      removeUnfinished(".lumivane." + name.substr(std::strlen(ProcessMark)) + "-");
  }
}

void WorkFolders::removeUnfinished(const std::string& start) const {
  std::set<fs::path> folders;
  for (std::size_t i = 0; plan.views.hasFiles() && i < plan.views.size(); ++i)
    for (const std::string& file : plan.views[i].files)
      folders.insert((fs::path(plan.setting.folder) / file).parent_path());
  std::error_code error;
  for (const fs::path& folder : folders)
    for (const auto& entry : fs::directory_iterator(folder, error))
      if (entry.path().filename().string().rfind(start, 0) == 0) fs::remove(entry.path(), error);
}

}  // namespace Lumivane::Host
