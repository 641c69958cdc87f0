// What the formats share: the reader by the file's ending, placement, faces, the scene and the
// report. Files are read once; the order of objects and faces is made anew for each eye. Several
// files are one model before it is placed, so that all are moved alike.

#include "importers/FileSum.h"
#include "importers/ImportError.h"
#include "importers/ListOrder.h"
#include "importers/OpenBodies.h"
#include "importers/Placement.h"
#include "importers/Readers.h"
#include "importers/SceneBuilder.h"
#include "importers/SourceFaces.h"
#include "importers/TextLines.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Writer.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <new>
#include <optional>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {
namespace {

enum class Format { None, Obj, Stl, Ply, Gltf, CityJson, CitySequence };

// Edges below this length make their polygon vanish from a shot.
constexpr double ShortestEdge = 1e-4;

std::string lowerEnding(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
  });
  return ending;
}

std::string readBytes(const std::string& path) {
  std::string bytes = Session::readBytes(path);
  if (bytes.empty()) throw ImportError("it is empty");
  if (bytes.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
    throw ImportError("it is larger than 2 GiB");
  return bytes;
}

// Whether a JSON text is a city model: looks at the keys and strings of its outermost object only,
// and stops at the first that decides.
class CityModelFinder : public nlohmann::json::json_sax_t {
 public:
  bool found = false;

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool start_array(std::size_t) override { return deeper(); }
  bool end_array() override { return shallower(); }
  bool start_object(std::size_t) override { return deeper(); }
  bool end_object() override { return shallower(); }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
    return false;
  }
  bool string(string_t& value) override {
    found = found || (depth == 1 && isType && value.rfind("CityJSON", 0) == 0);
    isType = false;
    return !found;
  }
  bool key(string_t& name) override {
    isType = depth == 1 && name == "type";
    found = found || (depth == 1 && name == "CityObjects");
    return !found && !(depth == 1 && isSceneKey(name));
  }

 private:
  static bool isSceneKey(const string_t& name) {
    return name == "Brushes" || name == "Pens" || name == "Points" || name == "Objects";
  }

  bool deeper() {
    ++depth;
    return true;
  }
  bool shallower() {
    --depth;
    return true;
  }

  int depth = 0;
  bool isType = false;
};

bool isCityModel(const std::string& bytes) {
  CityModelFinder finder;
  nlohmann::json::sax_parse(bytes, &finder);
  return finder.found;
}

Format formatByEnding(const std::string& ending) {
  if (ending == ".obj") return Format::Obj;
  if (ending == ".stl") return Format::Stl;
  if (ending == ".ply") return Format::Ply;
  if (ending == ".gltf" || ending == ".glb") return Format::Gltf;
  if (ending == ".cityjson") return Format::CityJson;
  if (ending == ".jsonl") return Format::CitySequence;
  return Format::None;
}

// Line by line, so that large files are never in memory as a whole.
SourceModel readSequence(const std::string& path) {
  Session::checkReadable(path);
  std::ifstream lines(path, std::ios::binary);
  SourceModel model = readCityJsonSequence(lines);
  if (lines.bad()) throw ImportError("cannot be read to its end");
  return model;
}

SourceModel readModel(const std::string& path, const ImportOptions& options) {
  const std::string ending = lowerEnding(path);
  if (formatByEnding(ending) == Format::CitySequence) return readSequence(path);
  const std::string bytes = readBytes(path);
  switch (formatByEnding(ending)) {
    case Format::Obj:
      return readObj(path, bytes);
    case Format::Stl:
      return readStl(path, bytes);
    case Format::Ply:
      return readPly(path, bytes);
    case Format::Gltf:
      return readGltf(path, bytes, options.allowOutside);
    case Format::CityJson:
      return readCityJson(bytes);
    case Format::CitySequence:
    case Format::None:
      break;
  }
  if (ending == ".json") return readCityJson(bytes);
  throw ImportError("\"" + ending +
                    "\" is not a known kind of file; these are: .obj, "
                    ".stl, .ply, .gltf, .glb, .city.json, .cityjson, .city.jsonl");
}

void checkOptions(const ImportOptions& options) {
  if (!(options.scale > 0.0) || !std::isfinite(options.scale))
    throw ImportError("the scale is not above 0");
}

double edgeLength(const SourceModel& model, const Loop& loop, size_t i) {
  return Kernel::distance(model.vertices[static_cast<size_t>(loop[i])],
                          model.vertices[static_cast<size_t>(loop[(i + 1) % loop.size()])]);
}

void warnOfShortEdges(const SourceModel& model, ImportReport& report) {
  size_t count = 0;
  for (const SourcePolygon& polygon : model.polygons) {
    const auto isShort = [&](const Loop& loop) {
      for (size_t i = 0; i < loop.size(); ++i)
        if (edgeLength(model, loop, i) < ShortestEdge) return true;
      return false;
    };
    if (std::any_of(polygon.loops.begin(), polygon.loops.end(), isShort)) ++count;
  }
  if (count > 0)
    report.warnings.push_back(std::to_string(count) +
                              " polygons have an edge shorter than 0.0001 and will not be seen; "
                              "a greater scale helps");
}

std::optional<Kernel::Vec3> eyeOf(const std::optional<std::array<double, 3>>& eye) {
  if (!eye || !std::all_of(eye->begin(), eye->end(), [](double c) { return std::isfinite(c); }))
    return std::nullopt;
  return Kernel::Vec3{(*eye)[0], (*eye)[1], (*eye)[2]};
}

// A file can give a reason for a note in each of its lines.
void shorten(std::vector<std::string>& notes) {
  constexpr size_t MostNotes = 100;
  if (notes.size() <= MostNotes) return;
  const size_t more = notes.size() - MostNotes;
  notes.resize(MostNotes);
  notes.push_back("there are " + std::to_string(more) + " more notes like these");
}

// What went wrong, as an error that names the file.
template <class Work>
auto namingTheFile(const std::string& path, const Work& work) {
  try {
    return work();
  } catch (const ImportError& error) {
    throw Session::Error(path, error.what());
  } catch (const Session::Error&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;  // the end of memory is no fault of the file
  } catch (const std::exception& error) {
    // The reader of a foreign format may object in its own way.
    throw Session::Error(path, std::string("cannot be imported: ") + error.what());
  }
}

SourceModel readModels(const std::vector<std::string>& paths, const ImportOptions& options) {
  if (paths.size() == 1) return readModel(paths.front(), options);
  FileSum sum(paths);
  for (const std::string& path : paths)
    namingTheFile(path, [&] { sum.add(readModel(path, options)); });
  return sum.take(options.yUp);
}

// As errors name them.
std::string nameOf(const std::vector<std::string>& paths) {
  if (paths.empty()) throw Session::Error("import", "no file is named");
  const std::size_t more = paths.size() - 1;
  if (more == 0) return paths.front();
  return paths.front() + " and " + std::to_string(more) +
         (more == 1 ? " more file" : " more files");
}

Jzon::Node number(double value) {
  char text[32];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return Jzon::Node(Jzon::Node::T_NUMBER, std::string(text, end.ptr));
}

Jzon::Node pointsNode(Geometry::Points3d& points) {
  Jzon::Node list = Jzon::array();
  for (const Geometry::Point3d* const point : *points.getPoints()) {
    Jzon::Node node = Jzon::array();
    node.add(number(point->getX()));
    node.add(number(point->getY()));
    node.add(number(point->getZ()));
    list.add(node);
  }
  return list;
}

}  // namespace

bool Importer::isImportable(const std::string& path) {
  const std::string ending = lowerEnding(path);
  if (formatByEnding(ending) != Format::None) return true;
  if (ending != ".json") return false;
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;  // a pipe is read but once
  try {
    return isCityModel(readBytes(path));
  } catch (const std::exception&) {
    return false;  // the reader of scenes reports what is wrong
  }
}

struct ImportedModel::State {
  State(const std::string& theName, const std::vector<std::string>& paths,
        const ImportOptions& options)
      : name(theName), sides(options.sides) {
    checkOptions(options);
    model = readModels(paths, options);
    report.files = paths;
    report.format = model.format;
    report.referenceSystem = model.referenceSystem;
    report.wholes = model.wholes;
    report.sourcePolygons = model.polygons.size();
    const PlacedSize placed = placeModel(model, options, report);
    report.openBodies = openBodiesOf(model);
    surfaces = makeFaces(model, options, placed.step, report);
    report.warnings = std::move(model.warnings);
    shorten(report.warnings);
    if (report.emptyPolygons > 0)
      report.warnings.push_back(std::to_string(report.emptyPolygons) +
                                " polygons without area are left out");
    if (report.unfilledPolygons > 0)
      report.warnings.push_back(
          std::to_string(report.unfilledPolygons) +
          " polygons whose outline crosses itself, or is too large to be cut, are "
          "left out");
    warnOfShortEdges(model, report);
  }

  std::string name;  // of the files
  ImportSides sides;
  SourceModel model;
  std::vector<ObjectSurfaces> surfaces;  // in the order of the files
  std::vector<std::string> givenClasses;
  ImportReport report;  // without the counts of a scene
};

ImportedModel::ImportedModel(const std::string& path, const ImportOptions& options)
    : ImportedModel(std::vector<std::string>{path}, options) {}
ImportedModel::ImportedModel(const std::vector<std::string>& paths, const ImportOptions& options)
    : state(namingTheFile(
          nameOf(paths), [&] { return std::make_unique<State>(nameOf(paths), paths, options); })) {}
ImportedModel::ImportedModel(ImportedModel&&) noexcept = default;
ImportedModel& ImportedModel::operator=(ImportedModel&&) noexcept = default;
ImportedModel::~ImportedModel() = default;

ImportedScene ImportedModel::sceneFor(const std::optional<std::array<double, 3>>& eye) const {
  return namingTheFile(state->name, [&] {
    std::vector<ObjectSurfaces> surfaces = state->surfaces;
    const std::vector<std::size_t> order = listOrder(state->model, surfaces, eyeOf(eye));
    ImportReport report = state->report;
    BuiltScene built =
        buildScene(state->model, surfaces, order, state->givenClasses, state->sides, report);
    Session::LoadedScene scene = Session::LoadedScene::adopt(built.scene.release(), state->name);
    scene.setClasses(Session::SurfaceClasses::ofNames(built.classNames));
    return ImportedScene{std::move(scene), std::move(report)};
  });
}

void ImportedModel::setClasses(const Session::SurfaceClasses& classes) {
  const auto copies = static_cast<size_t>(regionsOfEach(state->sides));
  std::vector<SurfaceRegion*> regions;
  for (const std::size_t i : listOrder(state->model, state->surfaces, {}))
    for (SurfaceFace& face : state->surfaces[i])
      for (SurfaceRegion& region : face.regions) regions.push_back(&region);
  const size_t count = classes.regions.empty() ? 0 : copies * regions.size();
  if (classes.regions.size() != count)
    throw Session::Error(state->name, "has " + std::to_string(count) + " regions, but there are " +
                                          std::to_string(classes.regions.size()) + " classes");
  for (size_t i = 0; i < regions.size(); ++i)
    regions[i]->givenClass = count == 0 ? -1 : classes.regions[copies * i];
  state->givenClasses = classes.names;
}

ImportedScene Importer::importFile(const std::string& path, const ImportOptions& options) {
  return ImportedModel(path, options).sceneFor(options.eye);
}

ImportedScene Importer::importFiles(const std::vector<std::string>& paths,
                                    const ImportOptions& options) {
  return ImportedModel(paths, options).sceneFor(options.eye);
}

std::string Importer::sceneText(Scene::Scene3D& scene) {
  Jzon::Node root = scene.serialize();
  if (scene.getPoints() != nullptr) {
    root.remove("Points");
    root.add("Points", pointsNode(*scene.getPoints()));
  }
  std::string text;
  Jzon::Writer(Jzon::Format{true, true, false, 0}).writeString(root, text);
  text += '\n';
  return text;
}

}  // namespace Lumivane::Importers
