// The command line's settings as options of the importers, and their report in two forms: lines for
// a person, keys for statistics.

#include "ImportWork.h"

#include "HostError.h"
#include "StatsNumbers.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>

namespace Lumivane::Host {
namespace {

using Triple = std::array<double, 3>;

Importers::ImportSides sidesOf(const ImportSettings& settings) {
  if (settings.twoSided) return Importers::ImportSides::Both;
  return settings.flip ? Importers::ImportSides::Inside : Importers::ImportSides::Outside;
}

std::string text(const Triple& triple) {
  std::ostringstream stream;
  stream.precision(12);
  stream << triple[0] << "," << triple[1] << "," << triple[2];
  return stream.str();
}

Jzon::Node node(const Triple& triple) {
  Jzon::Node list = Jzon::array();
  for (const double value : triple) list.add(numberNode(value));
  return list;
}

// Of many bodies the first are named.
std::string openBodiesText(const std::vector<Importers::OpenBody>& bodies) {
  constexpr std::size_t MostNamed = 5;
  std::string text = std::to_string(bodies.size()) +
                     (bodies.size() == 1 ? " open body" : " open bodies") +
                     " (edges used by only one polygon): ";
  for (std::size_t i = 0; i < std::min(bodies.size(), MostNamed); ++i)
    text += (i > 0 ? ", \"" : "\"") + Session::oneLine(bodies[i].object) + "\" " +
            std::to_string(bodies[i].openEdges);
  if (bodies.size() > MostNamed)
    text += " and " + std::to_string(bodies.size() - MostNamed) + " more";
  return text + "; from behind they let the sky through, unless --two-sided";
}

}  // namespace

Importers::ImportOptions importOptions(const ImportSettings& settings) {
  Importers::ImportOptions options;
  options.sides = sidesOf(settings);
  options.scale = settings.scale;
  options.yUp = settings.yUp;
  options.center = settings.center;
  options.allowOutside = settings.allowOutside;
  options.creaseDegrees = settings.crease;
  options.eye = settings.eye;
  return options;
}

Importers::ImportedScene importFile(const std::string& path, const ImportSettings& settings) {
  return Importers::Importer::importFiles(modelFiles(path, settings), importOptions(settings));
}

std::vector<std::string> modelFiles(const std::string& path, const ImportSettings& settings) {
  std::vector<std::string> files = {path};
  files.insert(files.end(), settings.also.begin(), settings.also.end());
  if (files.size() == 1) return files;
  for (const std::string& file : files) {
    Session::checkReadable(file);
    if (!Importers::Importer::isImportable(file))
      throw ArgumentError(file,
                          "is no mesh and no city model: of several files of one scene each must "
                          "be one (.obj, .stl, .ply, .gltf, .glb, .city.json, .city.jsonl); of a "
                          "scene give the files that it was made of");
  }
  return files;
}

std::string titleOf(const std::string& path, const ImportSettings& settings) {
  std::string title = std::filesystem::path(path).filename().string();
  for (const std::string& file : settings.also)
    title += ", " + std::filesystem::path(file).filename().string();
  return title;
}

std::string reportText(const Importers::ImportReport& report) {
  std::ostringstream stream;
  const bool isSum = report.files.size() > 1;
  stream << "Imported ";
  if (isSum) stream << report.files.size() << " files (";
  stream << report.format << (isSum ? "): " : ": ") << report.sourcePolygons << " polygons as "
         << report.objects << " objects, " << report.faces << " faces, " << report.regions
         << " regions\n";
  stream << "Bounds: " << text(report.lower) << " to " << text(report.upper) << "\n";
  const bool isMoved = std::any_of(report.shift.begin(), report.shift.end(),
                                   [](double value) { return value != 0.0; });
  if (isMoved)
    stream << "Moved by " << text(report.shift) << ": add this to the file's coordinates\n";
  if (!report.openBodies.empty()) stream << "Note: " << openBodiesText(report.openBodies) << "\n";
  for (const std::string& warning : report.warnings)
    stream << "Note: " << Session::oneLine(warning) << "\n";
  return stream.str();
}

Jzon::Node reportNode(const Importers::ImportReport& report) {
  Jzon::Node root = Jzon::object();
  root.add("format", Session::oneLine(report.format));
  if (report.files.size() > 1) {
    Jzon::Node files = Jzon::array();
    for (const std::string& file : report.files) files.add(Session::oneLine(file));
    root.add("files", files);
  }
  root.add("shift", node(report.shift));
  if (!report.referenceSystem.empty())
    root.add("reference_system", Session::oneLine(report.referenceSystem));
  root.add("lower", node(report.lower));
  root.add("upper", node(report.upper));
  root.add("source_polygons", numberNode(report.sourcePolygons));
  root.add("points", numberNode(report.points));
  root.add("objects", numberNode(report.objects));
  root.add("faces", numberNode(report.faces));
  root.add("regions", numberNode(report.regions));
  root.add("brushes", numberNode(report.brushes));
  root.add("split_polygons", numberNode(report.splitPolygons));
  root.add("empty_polygons", numberNode(report.emptyPolygons));
  root.add("unfilled_polygons", numberNode(report.unfilledPolygons));
  Jzon::Node bodies = Jzon::array();
  for (const Importers::OpenBody& body : report.openBodies) {
    Jzon::Node entry = Jzon::object();
    entry.add("object", Session::oneLine(body.object));
    entry.add("open_edges", numberNode(body.openEdges));
    bodies.add(entry);
  }
  root.add("open_bodies", bodies);
  Jzon::Node warnings = Jzon::array();
  for (const std::string& warning : report.warnings) warnings.add(Session::oneLine(warning));
  root.add("notes", warnings);
  return root;
}

}  // namespace Lumivane::Host
