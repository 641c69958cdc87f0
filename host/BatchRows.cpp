// Which views count as made. A file is known by size and hash of its bytes, a view by the key of
// all that it depends on.

#include "BatchRows.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace Lumivane::Host {
namespace {

std::string markKey(const FileMark& mark) {
  return mark.file + "\n" + keyText(mark.size) + keyText(mark.hash);
}

// The rows that were made, by the keys of their views' names.
Journal::Rows rowsByName(const Journal::Rows& known) {
  Journal::Rows result;
  for (const auto& [key, rows] : known)
    for (const JournalRow& row : rows)
      if (row.isDone) result[textKey(row.name)].push_back(row);
  return result;
}

// Whether a sorted list has a key.
bool has(const std::vector<std::uint64_t>& keys, std::uint64_t key) {
  return std::binary_search(keys.begin(), keys.end(), key);
}

template <class KeyOf>
std::vector<std::uint64_t> sortedKeys(const std::vector<std::size_t>& positions, KeyOf keyOf) {
  std::vector<std::uint64_t> keys;
  keys.reserve(positions.size());
  for (const std::size_t i : positions) keys.push_back(keyOf(i));
  std::sort(keys.begin(), keys.end());
  return keys;
}

std::string orNone(const std::string& options) { return options.empty() ? "none" : options; }

}  // namespace

// Names are read from the table only where a row has the key of none of the views.
Journal::Rows BatchRows::known(const std::vector<std::size_t>& positions) const {
  const auto keys = sortedKeys(positions, [this](std::size_t i) { return plan.views.key(i); });
  std::vector<std::uint64_t> names;
  return Journal::rows(plan.setting.folder, [&](std::uint64_t key, const JournalRow& row) {
    if (has(keys, key)) return true;
    if (names.empty())
      names = sortedKeys(positions, [this](std::size_t i) { return textKey(plan.views[i].name); });
    return has(names, textKey(row.name));
  });
}

std::size_t BatchRows::countMissing() {
  std::vector<std::pair<std::uint64_t, std::size_t>> positions;
  positions.reserve(plan.views.size());
  for (std::size_t i = 0; i < plan.views.size(); ++i) positions.emplace_back(plan.views.key(i), i);
  std::sort(positions.begin(), positions.end());
  std::vector<bool> isThere(plan.views.size(), false);
  Journal::rows(plan.setting.folder, [&](std::uint64_t key, const JournalRow& row) {
    const auto found =
        std::lower_bound(positions.begin(), positions.end(), std::make_pair(key, std::size_t{0}));
    if (found == positions.end() || found->first != key) return false;
    if (!row.isDone || hasOutputs(found->second, row)) isThere[found->second] = true;
    return false;
  });
  return static_cast<std::size_t>(std::count(isThere.begin(), isThere.end(), false));
}

BatchRows::ViewRows BatchRows::of(const Journal::Rows& known) {
  ViewRows rows;
  rows.reserve(plan.views.size());
  for (std::size_t i = 0; i < plan.views.size(); ++i) rows.push_back(of(i, known));
  return rows;
}

const JournalRow* BatchRows::of(std::size_t i, const Journal::Rows& known) {
  const auto found = known.find(plan.views.key(i));
  if (found == known.end()) return nullptr;
  const JournalRow* failure = nullptr;
  for (auto row = found->second.rbegin(); row != found->second.rend(); ++row) {
    if (row->isDone && hasOutputs(i, *row)) return &*row;
    if (!row->isDone && failure == nullptr) failure = &*row;
  }
  return failure;
}

void BatchRows::remember(const JournalRow& row) {
  for (const FileMark& mark : row.files) compared[markKey(mark)] = true;
}

bool BatchRows::hasOutputs(std::size_t i, const JournalRow& row) {
  const std::size_t count = plan.views.hasFiles() ? plan.views[i].files.size() : 0;
  return row.files.size() == count &&
         std::all_of(row.files.begin(), row.files.end(),
                     [this](const FileMark& mark) { return isAsWritten(mark); });
}

// Each file is read only once in a run, and what the run itself has written not at all.
bool BatchRows::isAsWritten(const FileMark& mark) {
  const auto [known, isNew] = compared.try_emplace(markKey(mark), false);
  if (isNew)
    known->second =
        hasMark((std::filesystem::path(plan.setting.folder) / mark.file).string(), mark);
  return known->second;
}

void BatchRows::reportRepeats(const std::vector<std::size_t>& pieces,
                              const Journal::Rows& known) const {
  if (known.empty()) return;
  const Journal::Rows byName = rowsByName(known);
  std::map<std::string, std::size_t> counts;
  for (const std::size_t piece : pieces) {
    const std::string reason = reasonToRepeat(plan.views[piece], known, byName);
    if (!reason.empty()) ++counts[reason];
  }
  for (const auto& [reason, count] : counts)
    std::printf("%zu of %zu views are made again: %s\n", count, plan.views.size(), reason.c_str());
}

std::string BatchRows::whyNotMerged(const ViewRows& rows, const Journal::Rows& known) const {
  const Journal::Rows byName = rowsByName(known);
  std::map<std::string, std::size_t> counts;
  for (std::size_t i = 0; i < plan.views.size(); ++i)
    if (rows[i] == nullptr) ++counts[reasonToRepeat(plan.views[i], known, byName)];
  std::string text;
  for (const auto& [reason, count] : counts)
    text += (text.empty() ? "" : "; ") + std::to_string(count) + " of " +
            std::to_string(plan.views.size()) + " views " +
            (reason.empty() ? "are not made yet: cannot be merged" : "cannot be merged: " + reason);
  return text;
}

// Empty if the view has not been made before.
std::string BatchRows::reasonToRepeat(const TableView& view, const Journal::Rows& known,
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
std::string BatchRows::difference(const JournalRow& row) const {
  if (row.sources != plan.setting.sceneKey)
    return "the scene, a file that it names, or the program's version has changed";
  const std::string options = optionsText(plan.setting);
  if (row.options != options)
    return "they were made with other options (" + orNone(row.options) + "), not with these (" +
           orNone(options) + ")";
  return "their rows of the table have changed";
}

}  // namespace Lumivane::Host
