#include "visibility/IndexCheck.h"
#include "visibility/IndexState.h"
#include "visibility/MappedFile.h"
#include "visibility/SceneArrays.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/SceneFile.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#define XXH_INLINE_ALL
#include <xxhash.h>

// A file is a header, a table of sections and the sections, each at a multiple of 64 bytes with
// zeros between them: the arrays of the index as they lie in memory, names, outlines and texts. The
// header has a hash of itself and the table, and the table one of each section, so that every byte
// is looked at. Texts come last and are looked at when they are asked for: a large one, as the text
// of a whole scene, costs nothing as long as nobody wants it.
namespace Lumivane::Visibility {
namespace {

using Session::Error;

// As of PNG: a transfer that changes line ends, or the eighth bit, shows at once.
constexpr char Magic[8] = {'\x89', 'L', 'V', 'S', '\r', '\n', '\x1a', '\n'};
constexpr std::uint32_t ByteOrder = 0x01020304;
constexpr std::size_t Alignment = 64;
constexpr std::uint64_t MostSections = 4096;
constexpr const char* TextPrefix = "text:";
constexpr const char* Anew = "; make it anew from the scene, with lumivane import";

struct Header {
  char magic[8];
  std::uint32_t version;
  std::uint32_t byteOrder;
  std::uint64_t size;      // of the file
  std::uint64_t sections;  // how many
  std::uint64_t hash;      // of the table, and of the header as if this were 0
};

struct Section {
  char name[40];  // ended by zeros
  std::uint64_t elementSize;
  std::uint64_t offset;
  std::uint64_t count;
  std::uint64_t hash;
};

// What stands in files is what stands in memory, on every machine of this byte order.
static_assert(sizeof(Header) == 40 && sizeof(Section) == 72);
static_assert(sizeof(Kernel::Vec3) == 24 && sizeof(Vector) == 24 && sizeof(ScenePlane) == 48);
static_assert(sizeof(BoxNode) == 32 && sizeof(Label) == 12 && sizeof(int) == 4);
static_assert(sizeof(std::size_t) == sizeof(std::uint64_t));

std::uint64_t hashOf(const void* bytes, std::size_t count) { return XXH3_64bits(bytes, count); }

std::uint64_t hashOf(Header header, const Section* table) {
  header.hash = 0;
  const auto size = static_cast<std::size_t>(header.sections) * sizeof(Section);
  return XXH3_64bits_withSeed(table, size, hashOf(&header, sizeof header));
}

std::uint64_t aligned(std::uint64_t offset) {
  return (offset + Alignment - 1) / Alignment * Alignment;
}

// Texts one behind the other, and where each ends.
struct Words {
  std::vector<std::uint64_t> ends;
  std::string bytes;
};

Words wordsOf(const std::vector<std::string>& texts) {
  Words words;
  for (const std::string& text : texts) {
    words.bytes += text;
    words.ends.push_back(words.bytes.size());
  }
  return words;
}

class Writer {
 public:
  void add(const std::string& name, const void* bytes, std::size_t elementSize, std::size_t count) {
    Section section = {};
    name.copy(section.name, sizeof section.name - 1);
    section.elementSize = elementSize;
    section.count = count;
    section.hash = hashOf(bytes, elementSize * count);
    table.push_back(section);
    contents.push_back(static_cast<const char*>(bytes));
  }

  template <class Items>
  void add(const std::string& name, const Items& items) {
    using Item = typename Items::value_type;
    static_assert(std::is_trivially_copyable_v<Item>);
    add(name, items.data(), sizeof(Item), items.size());
  }

  void add(const std::string& name, const Words& words) {
    add(name + "_ends", words.ends);
    add(name + "_bytes", words.bytes);
  }

  void write(const std::string& path) {
    const Header header = placed();
    Session::writeFile(path, [&](std::ostream& out) {
      put(out, &header, sizeof header);
      put(out, table.data(), table.size() * sizeof(Section));
      std::uint64_t at = sizeof header + table.size() * sizeof(Section);
      for (std::size_t i = 0; i < table.size(); ++i) {
        const char zeros[Alignment] = {};
        put(out, zeros, static_cast<std::size_t>(table[i].offset - at));
        const std::uint64_t size = table[i].elementSize * table[i].count;
        put(out, contents[i], static_cast<std::size_t>(size));
        at = table[i].offset + size;
      }
    });
  }

 private:
  Header placed() {
    Header header = {};
    std::copy(std::begin(Magic), std::end(Magic), header.magic);
    header.version = SceneFile::Version;
    header.byteOrder = ByteOrder;
    header.sections = table.size();
    header.size = sizeof header + table.size() * sizeof(Section);
    for (Section& section : table) {
      section.offset = aligned(header.size);
      header.size = section.offset + section.elementSize * section.count;
    }
    header.hash = hashOf(header, table.data());
    return header;
  }

  static void put(std::ostream& out, const void* bytes, std::size_t count) {
    out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  }

  std::vector<Section> table;
  std::vector<const char*> contents;  // of each section; borrowed
};

bool isName(const std::string& name) {
  constexpr std::size_t Longest = 24;
  const char* const allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
  return !name.empty() && name.size() <= Longest &&
         name.find_first_not_of(allowed) == std::string::npos;
}

// The sections of a mapped file, checked so far that each lies in it.
class Reader {
 public:
  explicit Reader(const std::string& name) : path(name), file(std::make_shared<MappedFile>(name)) {
    readHeader();
    readTable();
  }

  const Section* find(const std::string& name) const {
    const auto found = std::find_if(table, table + header.sections, [&](const Section& section) {
      return nameOf(section) == name;
    });
    return found == table + header.sections ? nullptr : found;
  }

  // The bytes of a section, as they were written.
  std::string_view bytes(const Section& section) const {
    const std::string_view result(file->data() + section.offset,
                                  static_cast<std::size_t>(section.elementSize * section.count));
    if (hashOf(result.data(), result.size()) != section.hash)
      refuse("is damaged: its section \"" + std::string(nameOf(section)) +
             "\" is not as it was written");
    return result;
  }

  template <class Item>
  std::pair<const Item*, std::size_t> items(const std::string& name) const {
    const Section* const section = find(name);
    if (section == nullptr || section->elementSize != sizeof(Item))
      refuse("is damaged: it has no section \"" + name + "\"");
    return {reinterpret_cast<const Item*>(bytes(*section).data()),
            static_cast<std::size_t>(section->count)};
  }

  template <class Item>
  std::vector<Item> values(const std::string& name) const {
    const auto [first, count] = items<Item>(name);
    return std::vector<Item>(first, first + count);
  }

  std::vector<std::string> words(const std::string& name) const {
    const auto [ends, count] = items<std::uint64_t>(name + "_ends");
    const auto [text, length] = items<char>(name + "_bytes");
    std::vector<std::string> result;
    result.reserve(count);
    std::uint64_t begin = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (ends[i] < begin || ends[i] > length) refuse("is damaged: its " + name + " have no ends");
      result.emplace_back(text + begin, static_cast<std::size_t>(ends[i] - begin));
      begin = ends[i];
    }
    return result;
  }

  [[noreturn]] void refuse(const std::string& cause) const { throw Error(path, cause + Anew); }

  std::uint64_t key() const { return header.hash; }
  const std::shared_ptr<MappedFile>& mapped() const { return file; }

 private:
  static std::string_view nameOf(const Section& section) {
    return {section.name, ::strnlen(section.name, sizeof section.name)};
  }

  void readHeader() {
    const std::size_t count = std::min(file->size(), sizeof header);
    if (count > 0) std::memcpy(&header, file->data(), count);
    if (count < sizeof header.magic ||
        !std::equal(std::begin(Magic), std::end(Magic), header.magic))
      throw Error(path, std::string("is no scene made ready for looking (.lumiscene)") + Anew);
    if (count < sizeof header) refuse("is cut off in its first bytes");
    if (header.byteOrder != ByteOrder) refuse("is damaged, or of a machine of another byte order");
    if (header.version != SceneFile::Version)
      refuse("has version " + std::to_string(header.version) +
             " of the format, and this program "
             "reads version " +
             std::to_string(SceneFile::Version));
    if (file->size() < header.size)
      refuse("is cut off: it has " + std::to_string(file->size()) + " of " +
             std::to_string(header.size) + " bytes");
    if (file->size() > header.size) refuse("is damaged: it has bytes behind its end");
  }

  void readTable() {
    if (header.sections > MostSections ||
        sizeof header + header.sections * sizeof(Section) > file->size())
      refuse("is damaged: its table of sections does not fit into it");
    table = reinterpret_cast<const Section*>(file->data() + sizeof header);
    if (hashOf(header, table) != header.hash)
      refuse(
          "is damaged: its table of sections is not "
          "as it was written");
    std::uint64_t end = sizeof header + header.sections * sizeof(Section);
    for (std::uint64_t i = 0; i < header.sections; ++i) end = endOf(table[i], end);
    if (end != file->size()) refuse("is damaged: its sections do not fill it");
    fetch();
  }

  // Of a section behind the end of the one before it.
  std::uint64_t endOf(const Section& section, std::uint64_t before) const {
    const std::uint64_t offset = aligned(before);
    if (section.offset != offset || offset > file->size() || section.elementSize == 0 ||
        section.count > (file->size() - offset) / section.elementSize)
      refuse("is damaged: a section does not lie where it should");
    const bool isZero =
        std::all_of(file->data() + before, file->data() + offset, [](char c) { return c == '\0'; });
    if (!isZero) refuse("is damaged: there are bytes between its sections");
    return offset + section.elementSize * section.count;
  }

  // All but the texts, which come last.
  void fetch() const {
    std::uint64_t end = sizeof header;
    for (std::uint64_t i = 0; i < header.sections; ++i)
      if (nameOf(table[i]).rfind(TextPrefix, 0) != 0)
        end = table[i].offset + table[i].elementSize * table[i].count;
    file->fetch(static_cast<std::size_t>(end));
  }

  std::string path;
  std::shared_ptr<MappedFile> file;
  Header header = {};
  const Section* table = nullptr;  // in the file
};

// Positions in the section of counts.
enum Counts : std::size_t { Dropped, Triangulated, LayersOfSeveral, CountCount };

std::shared_ptr<IndexState> stateOf(const Reader& reader) {
  auto state = std::make_shared<IndexState>();
  state->file = reader.mapped();
  forEachArray(*state, [&reader](const char* name, auto& array) {
    using Item = typename std::decay_t<decltype(array)>::value_type;
    const auto found = reader.items<Item>(name);
    array.borrow(found.first, found.second);
  });
  auto names = std::make_shared<VisibleMap::Names>();
  names->objectIds = reader.words("object_ids");
  names->classNames = reader.words("class_names");
  names->regions = reader.values<Label>("labels");
  names->classes = reader.values<int>("classes");
  state->names = std::move(names);
  const auto counts = reader.values<std::uint64_t>("counts");
  if (counts.size() != CountCount) reader.refuse("is damaged: it has other counts");
  state->droppedRegions = counts[Dropped];
  state->triangulatedRegions = counts[Triangulated];
  state->layersOfSeveral = counts[LayersOfSeveral];
  if (const std::string fault = indexFault(*state); !fault.empty())
    reader.refuse("is damaged: " + fault);
  return state;
}

std::string outlineFault(const SceneFile::Outlines& outlines, std::size_t corners) {
  bool fits = outlines.offsets[0] == 0 && outlines.offsets[outlines.count] == corners;
  for (std::size_t i = 0; i < outlines.count; ++i)
    fits = fits & (outlines.offsets[i] <= outlines.offsets[i + 1]);
  for (std::size_t i = 0; i < corners; ++i)
    fits = fits & (outlines.corners[i] >= 0) &
           (static_cast<std::size_t>(outlines.corners[i]) < outlines.pointCount);
  return fits ? "" : "its outlines do not fit their points";
}

SceneFile::Outlines outlinesOf(const Reader& reader, std::size_t regions) {
  SceneFile::Outlines result;
  if (reader.find("outline_points") == nullptr) return result;
  const auto points = reader.items<Vector>("outline_points");
  const auto offsets = reader.items<std::size_t>("outline_offsets");
  const auto corners = reader.items<int>("outline_corners");
  if (offsets.second != regions + 1)
    reader.refuse("is damaged: it does not have one outline for each region");
  result = {points.first, points.second, offsets.first, regions, corners.first};
  if (const std::string fault = outlineFault(result, corners.second); !fault.empty())
    reader.refuse("is damaged: " + fault);
  return result;
}

}  // namespace

struct SceneFile::State {
  explicit State(const std::string& path)
      : reader(path),
        index(SceneIndex(std::shared_ptr<const IndexState>(stateOf(reader)))),
        outlines(outlinesOf(reader, index.regionCount())) {}

  Reader reader;
  SceneIndex index;
  Outlines outlines;
};

void SceneFile::write(const std::string& path, const SceneIndex& index, const Content& content) {
  const IndexState& state = *index.state;
  Writer writer;
  forEachArray(state, [&writer](const char* name, const auto& array) { writer.add(name, array); });
  const Words ids = wordsOf(state.names->objectIds);
  const Words classNames = wordsOf(state.names->classNames);
  const std::array<std::uint64_t, CountCount> counts = {
      state.droppedRegions, state.triangulatedRegions, state.layersOfSeveral};
  writer.add("object_ids", ids);
  writer.add("class_names", classNames);
  writer.add("labels", state.names->regions);
  writer.add("classes", state.names->classes);
  writer.add("counts", counts);
  if (content.outlines != nullptr) {
    if (content.outlines->offsets.size() != state.names->regions.size() + 1)
      throw std::invalid_argument("there is not one outline for each region");
    writer.add("outline_points", content.outlines->points);
    writer.add("outline_offsets", content.outlines->offsets);
    writer.add("outline_corners", content.outlines->corners);
  }
  for (const auto& [name, text] : content.texts) {
    if (!isName(name)) throw std::invalid_argument("\"" + name + "\" is no name of a text");
    writer.add(TextPrefix + name, text);
  }
  writer.write(path);
}

SceneFile::SceneFile(const std::string& path) : state(std::make_shared<State>(path)) {}

SceneFile::SceneFile(const SceneFile&) noexcept = default;
SceneFile& SceneFile::operator=(const SceneFile&) noexcept = default;
SceneFile::SceneFile(SceneFile&&) noexcept = default;
SceneFile& SceneFile::operator=(SceneFile&&) noexcept = default;
SceneFile::~SceneFile() = default;

const SceneIndex& SceneFile::index() const { return state->index; }
SceneFile::Outlines SceneFile::outlines() const { return state->outlines; }

bool SceneFile::hasText(const std::string& name) const {
  return state->reader.find(TextPrefix + name) != nullptr;
}

std::string SceneFile::text(const std::string& name) const {
  const Section* const section = state->reader.find(TextPrefix + name);
  return section == nullptr ? "" : std::string(state->reader.bytes(*section));
}

std::uint64_t SceneFile::key() const { return state->reader.key(); }

bool SceneFile::hasEnding(const std::string& path) {
  const std::string ending = ".lumiscene";
  return path.size() > ending.size() &&
         path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace Lumivane::Visibility
