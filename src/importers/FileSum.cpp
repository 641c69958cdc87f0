// Models are added one by one, so that no two files are held besides their sum. What depends on all
// of them comes at the end: which names are in several files, and, where only some formats have y
// pointing up, the turning of those.

#include "importers/FileSum.h"

#include "importers/ImportError.h"

#include <lumivane/session/Error.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <limits>
#include <set>
#include <sstream>
#include <utility>

namespace Lumivane::Importers {
namespace {

namespace fs = std::filesystem;

// One name for all ways to write a path; a name of nothing stays as it is.
std::string samePath(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(path, error);
  return error ? path : whole.string();
}

std::string fileName(const std::string& path) { return fs::path(path).filename().string(); }

std::vector<std::string> partsOf(const std::string& text, const std::string& separators) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (separators.find(c) == std::string::npos)
      parts.back() += c;
    else if (!parts.back().empty())
      parts.emplace_back();
  }
  if (parts.back().empty()) parts.pop_back();
  return parts;
}

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : static_cast<char>(c);
  });
  return text;
}

std::string moreFiles(std::size_t count) {
  if (count < 2) return "";
  return " and " + std::to_string(count - 1) + (count == 2 ? " more file" : " more files");
}

bool isCode(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](unsigned char c) { return std::isalnum(c) != 0; });
}

// A coordinate reference system by authority and code, "EPSG:7415", of its URL, URN or short name;
// another text as it is.
std::string canonicalSystem(const std::string& name) {
  const std::vector<std::string> parts = partsOf(name, ":/");
  if (parts.size() < 2 || !isCode(parts.back())) return name;
  const bool isLong =
      name.find("def/crs/") != std::string::npos || name.find("def:crs:") != std::string::npos;
  if (!isLong) return parts.size() == 2 ? upperCase(parts[0] + ":" + parts[1]) : name;
  // Between "crs" and the code stand the authority and perhaps its version.
  const auto crs = std::find(parts.begin(), parts.end(), "crs");
  if (crs == parts.end() || parts.end() - crs < 3) return name;
  return upperCase(*(crs + 1) + ":" + parts.back());
}

// Files are far from each other if the gap is so many times their size.
constexpr double FarTimes = 10.0;

// The box around points, of which those that are not finite do not count.
class Box {
 public:
  void add(const Kernel::Vec3& point) {
    const std::array<double, 3> at = {point.x, point.y, point.z};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!std::isfinite(at[axis])) continue;
      low[axis] = std::min(low[axis], at[axis]);
      high[axis] = std::max(high[axis], at[axis]);
    }
  }
  bool isThere() const { return low[0] <= high[0] && low[1] <= high[1] && low[2] <= high[2]; }
  // The longest edge.
  double size() const { return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]}); }
  // The largest gap along an axis; below 0 where the boxes meet.
  double gapTo(const Box& other) const {
    double gap = -Infinite;
    for (std::size_t axis = 0; axis < 3; ++axis)
      gap = std::max({gap, other.low[axis] - high[axis], low[axis] - other.high[axis]});
    return gap;
  }

 private:
  static constexpr double Infinite = std::numeric_limits<double>::infinity();

  std::array<double, 3> low = {Infinite, Infinite, Infinite};
  std::array<double, 3> high = {-Infinite, -Infinite, -Infinite};
};

}  // namespace

FileSum::FileSum(const std::vector<std::string>& paths) {
  std::set<std::string> known;
  std::map<std::string, int> namesakes;
  for (const std::string& path : paths) {
    if (!known.insert(samePath(path)).second)
      throw Session::Error(path, "is named twice among the files of one scene: leave it out once");
    ++namesakes[fileName(path)];
  }
  for (const std::string& path : paths) {
    File file;
    file.path = path;
    file.label = namesakes[fileName(path)] > 1 ? path : fileName(path);
    files.push_back(std::move(file));
  }
}

void FileSum::add(SourceModel model) {
  File& file = files[added];
  checkSystem(file, model);
  takeFormat(model.format);
  file.yUp = model.yUp;
  file.hasSystem = !model.referenceSystem.empty();
  file.firstVertex = vertexCount;
  file.firstObject = objectCount;
  vertexCount += model.vertices.size();
  objectCount += model.objects.size();
  file.wholes = std::exchange(model.wholes, {});
  for (const SourceObject& object : model.objects) noteName(object.id);
  for (const auto& [part, whole] : file.wholes) noteName(whole);
  if (model.polygons.empty()) model.warnings.emplace_back("there is no polygon in it");
  for (std::string& warning : model.warnings) warning.insert(0, file.label + ": ");
  models.add(std::move(model));
  ++added;
}

SourceModel FileSum::take(bool turnsLater) {
  SourceModel sum = models.take();
  sum.yUp = false;
  if (!turnsLater) turnFiles(sum);
  nameObjects(sum);
  sum.referenceSystem = system;
  sum.format.clear();
  for (const std::string& format : formats)
    sum.format += (sum.format.empty() ? "" : " + ") + format;
  if (!system.empty() && !withoutSystem.empty())
    sum.warnings.push_back(withoutSystem.front() + moreFiles(withoutSystem.size()) +
                           ": no coordinate reference system is named, and that of " +
                           fileName(systemOwner) + " is assumed");
  noteFarFiles(sum);
  return sum;
}

void FileSum::checkSystem(const File& file, const SourceModel& model) {
  if (model.referenceSystem.empty()) {
    withoutSystem.push_back(file.label);
  } else if (system.empty()) {
    system = model.referenceSystem;
    systemOwner = file.path;
  } else if (canonicalSystem(system) != canonicalSystem(model.referenceSystem)) {
    throw Session::Error(file.path, "its coordinates are in " + model.referenceSystem +
                                        ", and those of " + systemOwner + " in " + system +
                                        ": the files of one scene need one coordinate reference "
                                        "system");
  }
}

void FileSum::takeFormat(const std::string& format) {
  if (std::find(formats.begin(), formats.end(), format) == formats.end()) formats.push_back(format);
}

void FileSum::noteName(const std::string& name) {
  NameUse& use = names.emplace(name, NameUse{added, false}).first->second;
  use.isShared = use.isShared || use.last != added;
  use.last = added;
}

// Objects without a name are numbered in the scene, whatever their file.
std::string FileSum::nameIn(const File& file, const std::string& name) const {
  const auto use = names.find(name);
  const bool isShared = use != names.end() && use->second.isShared && !name.empty();
  return isShared ? file.label + "#" + name : name;
}

// If y is up in all files the sum is turned as one file would be.
void FileSum::turnFiles(SourceModel& sum) const {
  const auto isTurned = [](const File& file) { return file.yUp; };
  sum.yUp = std::all_of(files.begin(), files.end(), isTurned);
  if (sum.yUp) return;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!files[i].yUp) continue;
    const std::size_t end = i + 1 < files.size() ? files[i + 1].firstVertex : sum.vertices.size();
    for (std::size_t v = files[i].firstVertex; v < end; ++v) {
      const Kernel::Vec3 at = sum.vertices[v];
      sum.vertices[v] = {at.x, -at.z, at.y};
    }
  }
}

// A mesh beside a city model is likely to have coordinates of its own, and then lies where nobody
// looks for it.
void FileSum::noteFarFiles(SourceModel& sum) const {
  std::vector<Box> boxes(files.size());
  Box placed;  // of all files that name a coordinate reference system
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::size_t end = i + 1 < files.size() ? files[i + 1].firstVertex : sum.vertices.size();
    Box& box = files[i].hasSystem ? placed : boxes[i];
    for (std::size_t v = files[i].firstVertex; v < end; ++v) box.add(sum.vertices[v]);
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].hasSystem || !boxes[i].isThere() || !placed.isThere()) continue;
    const double gap = boxes[i].gapTo(placed);
    if (!(gap > FarTimes * std::max(boxes[i].size(), placed.size()))) continue;
    std::ostringstream text;
    text << files[i].label << ": lies " << gap << " from " << fileName(systemOwner)
         << moreFiles(files.size() - withoutSystem.size()) << ", more than " << FarTimes
         << " times the size of either: if its coordinates are in another system, convert them";
    sum.warnings.push_back(text.str());
  }
}

void FileSum::nameObjects(SourceModel& sum) const {
  std::size_t shared = 0;
  std::string example;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::size_t end = i + 1 < files.size() ? files[i + 1].firstObject : sum.objects.size();
    for (std::size_t k = files[i].firstObject; k < end; ++k) {
      std::string name = nameIn(files[i], sum.objects[k].id);
      if (name == sum.objects[k].id) continue;
      if (shared++ == 0) example = name;
      sum.objects[k].id = std::move(name);
    }
    for (const auto& [part, whole] : files[i].wholes)
      sum.wholes[nameIn(files[i], part)] = nameIn(files[i], whole);
  }
  if (shared > 0)
    sum.warnings.push_back(std::to_string(shared) +
                           " objects have a name that stands in several files; theirs now starts "
                           "with that of the file, as \"" +
                           example + "\"");
}

}  // namespace Lumivane::Importers
