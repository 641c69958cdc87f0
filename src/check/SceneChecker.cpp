#include "check/Document.h"
#include "check/FarCoordinates.h"
#include "check/Findings.h"
#include "check/References.h"
#include "check/RegionShape.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <utility>

namespace Lumivane::Check {
namespace {

const Scene::Objects::Vector& objectsOf(Scene::Scene3D& scene) {
  return itemsOf(scene.getObjects() == nullptr ? nullptr : scene.getObjects()->getObjects());
}

// Calls `look` for each object, with the findings set to be about it.
template <class Look>
void lookAtObjects(Scene::Scene3D& scene, Findings& findings, const Look& look) {
  if (scene.getObjects() == nullptr)
    findings.add(Severity::Error, "no-objects", "it has no list of objects",
                 "add \"Objects\", as [] if there are none");
  const auto& objects = objectsOf(scene);
  for (size_t i = 0; i < objects.size() && !findings.full(); ++i) {
    findings.setObject(objects[i] == nullptr ? "" : objects[i]->getId());
    if (objects[i] == nullptr)
      findings.add(Severity::Error, "null-object", "object " + std::to_string(i + 1) + " is null",
                   "take it out of the list");
    else
      look(*objects[i]);
  }
}

void findInScene(Scene::Scene3D& scene, Findings& findings) {
  const Counts counts(scene);
  lookAtObjects(scene, findings, [&](Scene::Object& object) {
    findErrors(object, counts, findings);
    findLooseNumbers(object, counts, findings);
    findOddShapes(object, scene, findings);
  });
  findDoubleIds(scene, Severity::Warning, findings);
  if (auto far = findFarCoordinates(scene)) findings.add(std::move(*far));
}

}  // namespace

std::vector<Finding> SceneChecker::checkText(const std::string& json) {
  Findings findings;
  Jzon::Parser parser;
  const Jzon::Node root = parser.parseString(json);
  if (!root.isValid()) {
    findings.add(Severity::Error, "no-json",
                 parser.getError().empty() ? "no JSON document" : "not JSON: " + parser.getError(),
                 "a scene is a JSON object; the file may be cut short or of another format");
    return findings.take();
  }
  findBehindDocument(json, findings);
  findInDocument(root, findings);
  if (findings.hasErrors()) return findings.take();  // reading would throw
  Scene::Scene3D scene;
  scene.deserialize(root);
  findInScene(scene, findings);
  return findings.take();
}

std::vector<Finding> SceneChecker::check(Scene::Scene3D& scene) {
  Findings findings;
  findInScene(scene, findings);
  return findings.take();
}

std::optional<Finding> SceneChecker::farCoordinates(Scene::Scene3D& scene) {
  return findFarCoordinates(scene);
}

std::vector<Finding> SceneChecker::errors(Scene::Scene3D& scene) {
  Findings findings;
  const Counts counts(scene);
  lookAtObjects(scene, findings,
                [&](Scene::Object& object) { findErrors(object, counts, findings); });
  findDoubleIds(scene, Severity::Error, findings);
  return findings.take();
}

}  // namespace Lumivane::Check
