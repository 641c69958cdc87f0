#include "ReadyScene.h"

#include "ExactScene.h"
#include "HostError.h"
#include "StatsNumbers.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/visibility/PolygonScene.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

// Beside index and outlines a file holds, as texts, what commands report of a scene: what became of
// it at its import, where it lies, what its parts belong to, and the whole scene. Lists of texts of
// any bytes stand there one by one, each after its length and a colon.
namespace Lumivane::Host {
namespace {

constexpr const char* SceneText = "scene";
constexpr const char* ImportText = "import";
constexpr const char* PlaceText = "place";
constexpr const char* WholesText = "wholes";

std::string listText(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += std::to_string(item.size()) + ":" + item;
  return text;
}

// A file that is as it was written has whole lists; of others nothing behind the fault is taken.
std::vector<std::string> readList(const std::string& text) {
  std::vector<std::string> items;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end) {
    std::size_t length = 0;
    const auto read = std::from_chars(at, end, length);
    if (read.ec != std::errc() || read.ptr == end || *read.ptr != ':' ||
        length > static_cast<std::size_t>(end - read.ptr - 1))
      break;
    items.emplace_back(read.ptr + 1, length);
    at = read.ptr + 1 + length;
  }
  return items;
}

// With all bits.
std::string numberText(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%a", value);
  return text;
}

double readNumber(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

std::string placeText(const FilePlace& place) {
  return listText({numberText(place.shift[0]), numberText(place.shift[1]),
                   numberText(place.shift[2]), numberText(place.scale), place.isTurned ? "1" : "0",
                   place.referenceSystem});
}

std::string wholesText(const Wholes& wholes) {
  std::vector<std::string> items;
  for (const auto& [part, whole] : wholes) items.insert(items.end(), {part, whole});
  return listText(items);
}

}  // namespace

ReadyScene::ReadyScene(const std::string& name)
    : path(name), file(std::make_shared<const Visibility::SceneFile>(name)) {}

Session::LoadedScene ReadyScene::scene(const std::optional<std::array<double, 3>>&) {
  if (!file->hasText(SceneText))
    throw HostError(path,
                    "holds only what looks need, and no scene for shots, colours or checks: make "
                    "it with lumivane import to have both");
  Session::LoadedScene scene = Session::LoadedScene::fromText(file->text(SceneText), path);
  const Visibility::VisibleMap::Names& names = file->index().names();
  if (!names.classNames.empty()) scene.setClasses({names.classNames, names.classes});
  return scene;
}

Jzon::Node ReadyScene::reportNode() const {
  if (!file->hasText(ImportText)) return Jzon::Node(Jzon::Node::T_INVALID);
  return Jzon::Parser().parseString(file->text(ImportText));
}

FilePlace ReadyScene::place() const {
  constexpr std::size_t Count = 6;
  const std::vector<std::string> items = readList(file->text(PlaceText));
  if (items.size() != Count) return {};
  return {{readNumber(items[0]), readNumber(items[1]), readNumber(items[2])},
          readNumber(items[3]),
          items[4] == "1",
          items[5]};
}

Wholes ReadyScene::wholes() const {
  const std::vector<std::string> items = readList(file->text(WholesText));
  Wholes result;
  for (std::size_t i = 0; i + 1 < items.size(); i += 2) result[items[i]] = items[i + 1];
  return result;
}

void writeReadyScene(const std::string& path, const SourcedScene& source) {
  Session::LoadedScene& scene = source.scene();
  Visibility::SceneFile::Content content;
  // Before there is an index beside the scene, since the text is made by way of a tree of its size.
  content.texts[SceneText] = Importers::Importer::sceneText(scene.scene());
  const Visibility::SceneIndex index = sceneIndexOf(path, source);
  const Visibility::PolygonScene outlines = Visibility::polygonsOf(scene);
  content.outlines = &outlines;
  content.texts[PlaceText] = placeText(source.place);
  content.texts[WholesText] = wholesText(source.wholes);
  if (source.import.isValid()) content.texts[ImportText] = jsonText(source.import);
  Visibility::SceneFile::write(path, index, content);
}

std::unique_ptr<const Check::InsideTest> insideTestOfReady(const Visibility::SceneFile& file) {
  const auto kept = std::make_shared<const Visibility::SceneFile>(file);
  const Visibility::SceneFile::Outlines outlines = kept->outlines();
  Check::InsideTest::Outlines how;
  if (outlines.points != nullptr) {
    how.points = outlines.points;
    how.offsets = outlines.offsets;
    how.corners = outlines.corners;
    how.owner = kept;
    for (const Visibility::Label& label : kept->index().names().regions)
      how.objects.push_back(label.object);
    return std::make_unique<const Check::InsideTest>(std::move(how));
  }
  const auto pieces = std::make_shared<const Visibility::PolygonScene>(file.index().pieces());
  how.points = pieces->points.data();
  how.offsets = pieces->offsets.data();
  how.corners = pieces->corners.data();
  how.owner = pieces;
  for (const Visibility::Label& label : pieces->labels) how.objects.push_back(label.object);
  return std::make_unique<const Check::InsideTest>(std::move(how));
}

}  // namespace Lumivane::Host
