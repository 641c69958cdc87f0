// Each eye is one thread's work, and its rows are kept as soon as they are made.
#include "ExactGrid.h"

#include "ExactScene.h"
#include "EyeThreads.h"
#include "FacePlaces.h"
#include "FileMark.h"
#include "GroundSearch.h"
#include "RowJournal.h"
#include "UnderGroundTest.h"

#include <lumivane/session/Text.h>

#include <charconv>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <utility>

namespace Lumivane::Host {
namespace {

// Rows have line ends in them.
std::string inOneLine(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\n')
      line += "\\n";
    else if (c == '\\')
      line += "\\\\";
    else
      line += c;
  }
  return line;
}

std::string inLines(const std::string& line) {
  std::string text;
  for (size_t i = 0; i < line.size(); ++i) {
    const bool isEscape = line[i] == '\\' && i + 1 < line.size();
    if (isEscape) ++i;
    text += isEscape && line[i] == 'n' ? '\n' : line[i];
  }
  return text;
}

// Of all that the rows of the table depend on.
std::uint64_t keyOf(const GridOptions& options, const std::vector<GridView>& views) {
  std::uint64_t key = sceneKey(options.scene, options.import);
  key = textKey(options.rows + (options.csvSafe ? " safe\n" : "\n"), key);
  char numbers[400];
  for (const GridView& view : views) {
    std::snprintf(numbers, sizeof numbers, "%a %a %a %a %a %a %a %a %a ", view.eye[0], view.eye[1],
                  view.eye[2], view.forward[0], view.forward[1], view.forward[2], view.up[0],
                  view.up[1], view.up[2]);
    key = textKey(numbers + view.name + "\n", key);
  }
  return key;
}

// By the numbers of the views; none of a line that is not whole.
std::vector<std::optional<std::string>> knownRows(RowJournal& journal, size_t count) {
  std::vector<std::optional<std::string>> rows(count);
  for (const std::string& line : journal.takeLines()) {
    size_t number = 0;
    const char* const end = line.data() + line.size();
    const auto read = std::from_chars(line.data(), end, number);
    if (read.ec == std::errc() && read.ptr != end && *read.ptr == ' ' && number < count)
      rows[number] = inLines(std::string(read.ptr + 1, end));
  }
  return rows;
}

}  // namespace

struct ExactGrid::State {
  State(const GridOptions& theOptions, const SourcedScene& source)
      : options(theOptions),
        exact(theOptions.scene, source),
        surfaces(exact.sceneIndex()),
        underGround(exact.sceneIndex()) {
    if (!options.above.empty())
      ground.emplace(exact.sceneIndex(), surfaces, options.above, options.scene);
  }

  // The rows of one view.
  std::string rowsOf(const GridView& view) const {
    Visibility::LookOptions look;
    look.forward = view.forward;
    look.up = view.up;
    look.alone = hasFractions(options.rows);
    const Visibility::VisibleMap map = exact.look(view.eye, look);
    return Visibility::MapText::csvRows(
        exact.shareRows(options.rows, map, Visibility::MapShares(map, objectsOf(options.rows))),
        map.field, Session::csvField(view.name) + ",", options.csvSafe);
  }

  const GridOptions& options;
  ExactScene exact;
  SceneSurfaces surfaces;
  UnderGroundTest underGround;
  std::optional<GroundSearch> ground;
  std::unique_ptr<RowJournal> journal;
};

ExactGrid::ExactGrid(const GridOptions& theOptions, const SourcedScene& source)
    : state(new State(theOptions, source)) {}

ExactGrid::~ExactGrid() = default;

std::optional<GridFoot> ExactGrid::footAt(double x, double y) const {
  const std::optional<GroundSearch::Hit> hit = state->ground->at(x, y);
  if (!hit) return std::nullopt;
  return GridFoot{hit->z, state->surfaces.idOf(hit->label.object), hit->label.face,
                  state->surfaces.classOf(hit->label)};
}

bool ExactGrid::isUnderGround(const Vector& eye) const { return state->underGround.isUnder(eye); }

std::vector<FacePlace> ExactGrid::facePlaces() const {
  const GridOptions& options = state->options;
  return placesOnFaces(state->surfaces, options.on, options.spacing, options.clearance,
                       options.scene);
}

std::string ExactGrid::shares(const std::vector<GridView>& views) {
  using Visibility::MapText;
  constexpr Visibility::Field Field = Visibility::Field::Hemisphere;
  const GridOptions& options = state->options;
  state->journal =
      std::make_unique<RowJournal>(options.shares + ".rows", "grid", keyOf(options, views));
  std::vector<std::optional<std::string>> rows = knownRows(*state->journal, views.size());
  std::vector<size_t> open;
  for (size_t i = 0; i < views.size(); ++i)
    if (!rows[i]) open.push_back(i);
  if (open.size() < views.size())
    std::cerr << "lumivane: " << views.size() - open.size()
              << " eyes are known from the run before\n";
  std::mutex mutex;
  forEachEye(open.size(), 0, [&](size_t i) {
    const size_t number = open[i];
    rows[number] = state->rowsOf(views[number]);
    const std::string line = std::to_string(number) + " " + inOneLine(*rows[number]);
    const std::lock_guard<std::mutex> lock(mutex);
    state->journal->append(line);
  });
  std::string text = "name," + MapText::csvHeading(Field) + "\n";
  for (const std::optional<std::string>& row : rows) text += *row;
  return text;
}

void ExactGrid::removeJournal() {
  if (state->journal) state->journal->remove();
}

}  // namespace Lumivane::Host
