// The program without the components: it has no more options and commands than these, and writes
// nothing that they would write.

#include "BatchMaps.h"
#include "ExactBatch.h"
#include "ExactGrid.h"
#include "Tools.h"

#include <lumivane/check/InsideTest.h>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {

struct ExactBatch::State {};

ExactBatch::ExactBatch(const std::string&, const SourcedScene&) {}
ExactBatch::~ExactBatch() = default;
std::optional<ExactSummary> ExactBatch::look(const ShotOptions&) const { return {}; }

struct ExactGrid::State {};

ExactGrid::ExactGrid(const GridOptions&, const SourcedScene&) {}
ExactGrid::~ExactGrid() = default;
std::optional<GridFoot> ExactGrid::footAt(double, double) const { return {}; }
bool ExactGrid::isUnderGround(const Vector&) const { return false; }
std::vector<FacePlace> ExactGrid::facePlaces() const { return {}; }
std::string ExactGrid::shares(const std::vector<GridView>&) { return ""; }
void ExactGrid::removeJournal() {}

void BatchMaps::check(const FilePlace&, const Session::Vector&) {}
void BatchMaps::write(const std::string&, const std::vector<std::string>&) const {}

namespace Tools {

void addScene(CLI::App& command, std::string& scene, ImportSettings&) {
  command.add_option("SCENE", scene, "scene file (JSON)")->required()->type_name("");
}
void addSceneBeforeOthers(CLI::App& command, std::string& scene, ImportSettings& import) {
  Tools::addScene(command, scene, import);
}
void addShotOptions(CLI::App&, ShotOptions&) {}
void addShotSceneOptions(CLI::App&, ShotOptions&) {}
void addBatchedShotOptions(CLI::App&, ShotOptions&) {}
void addBatchOptions(CLI::App&, BatchOptions&) {}
void addGridOptions(CLI::App&, GridOptions&) {}
std::vector<Command> commands() { return {}; }
void writeVisible(const ShotOptions&, const Session::LoadedScene&, ShotShares&, Seconds&) {}
void writeVectorPictures(const ShotOptions&, Session::LoadedScene&, const Session::TakenShot&,
                         ShotShares&, const AuditedShot&, Seconds&) {}
AuditedShot audit(const ShotOptions&, const Session::TakenShot&, const Session::LoadedScene&,
                  Seconds&) {
  return {};
}
std::vector<std::string> sourceFiles(const std::string& path) { return {path}; }
bool isImportable(const std::string&) { return false; }
std::unique_ptr<const Check::InsideTest> insideTestOf(const Visibility::SceneFile&) {
  return nullptr;
}
const std::vector<std::string>& classNamesOf(const Visibility::SceneFile&) {
  static const std::vector<std::string> none;
  return none;
}
std::unique_ptr<Model> modelOf(const std::string&, const ImportSettings&) { return nullptr; }

}  // namespace Tools
}  // namespace Lumivane::Host
