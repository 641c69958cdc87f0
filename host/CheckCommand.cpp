// Findings are sorted, written as lines or JSON, and turned into the exit status; what is looked
// for stands in Check::SceneChecker. A mesh or city model is checked as the scene an import makes
// of it.

#include "Commands.h"
#include "HostError.h"
#include "Options.h"
#include "SceneSource.h"
#include "StatsNumbers.h"
#include "Streams.h"
#include "Tools.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/session/Faults.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/Text.h>

#include <algorithm>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

using Check::Finding;
using Check::Severity;
using Findings = std::vector<Finding>;

enum CheckStatus : int { Clean = 0, WarningsOnly = 1, WithErrors = 2 };

const char* word(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

size_t count(const Findings& findings, Severity severity) {
  return static_cast<size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [severity](const Finding& finding) { return finding.severity == severity; }));
}

void print(const std::string& scene, const Findings& findings) {
  for (const Finding& finding : findings)
    std::cout << word(finding.severity) << ": " << oneLine(finding.line()) << " [" << finding.code
              << "]\n    fix: " << finding.fix << '\n';
  std::cout << oneLine(scene) << ": " << count(findings, Severity::Error) << " errors, "
            << count(findings, Severity::Warning) << " warnings\n";
}

Jzon::Node node(const Finding& finding) {
  Jzon::Node node = Jzon::object();
  node.add("severity", Jzon::Node(word(finding.severity)));
  node.add("code", Jzon::Node(finding.code));
  node.add("object", textNode(Session::idText(finding.object)));
  node.add("region", Jzon::Node(finding.region));
  node.add("face", Jzon::Node(finding.face));
  node.add("text", textNode(finding.text));
  node.add("fix", Jzon::Node(finding.fix));
  return node;
}

void printJson(const std::string& scene, const Findings& findings) {
  Jzon::Node list = Jzon::array();
  for (const Finding& finding : findings) list.add(node(finding));
  Jzon::Node root = Jzon::object();
  root.add("scene", textNode(scene));
  root.add("errors", numberNode(count(findings, Severity::Error)));
  root.add("warnings", numberNode(count(findings, Severity::Warning)));
  root.add("findings", list);
  std::cout << jsonText(root);
}

// A mesh or a city model is checked as the scene that an import makes of it.
Findings findingsOf(const CheckOptions& options) {
  if (const auto model = Tools::modelOf(options.scene, options.import))
    return Check::SceneChecker::check(model->scene(options.import.eye).scene());
  refuseModelOptions(options.scene, options.import);
  if (options.import.center)
    throw ArgumentError(options.scene,
                        "is a scene file, which is checked where it is: leave out "
                        "--center");
  return Check::SceneChecker::checkText(Session::readDocument(options.scene));
}

}  // namespace

void setCheckOptions(CLI::App& command, CheckOptions& options) {
  addScene(command, options.scene, options.import);
  command.add_flag("--json", options.json, "print the findings as JSON");
  command.footer("The exit status is 0 without findings, 1 with warnings only, 2 with errors.");
}

int runCheck(const CheckOptions& options) try {
  Session::checkReadable(options.scene);
  const Findings findings = findingsOf(options);
  options.json ? printJson(options.scene, findings) : print(options.scene, findings);
  finishStandardOutput();
  if (count(findings, Severity::Error) > 0) return WithErrors;
  return findings.empty() ? Clean : WarningsOnly;
} catch (const std::bad_alloc&) {
  std::cerr << "lumivane: " << NotEnoughMemory << std::endl;
  return WithErrors;
} catch (const std::exception& error) {  // what cannot be read counts as an error of the scene
  std::cerr << "lumivane: " << oneLine(error.what()) << std::endl;
  return WithErrors;
}

void refuseErrors(const std::string& file, Scene::Scene3D& scene) {
  const std::string errors = Session::sceneErrors(scene);
  if (!errors.empty()) throw HostError(file, "no shot can be made: " + errors);
}

}  // namespace Lumivane::Host
