#include "AuditReport.h"

#include "HostError.h"
#include "StatsNumbers.h"

#include <lumivane/measure/ShotAudit.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/session/Text.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <memory>

namespace Lumivane::Host {
namespace {

using Measure::ObjectAudit;
using Measure::ShotAudit;

constexpr double Acceptable = 0.001;  // of what is covered
constexpr int AllProcessors = 0;

double wrongOf(const ObjectAudit& object) { return object.shownWrongly + object.missing; }

const ObjectAudit& worstOf(const ShotAudit& audit) {
  return *std::max_element(
      audit.objects().begin(), audit.objects().end(),
      [](const ObjectAudit& a, const ObjectAudit& b) { return wrongOf(a) < wrongOf(b); });
}

std::string percent(double share) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3g %%", 100.0 * share);
  return text;
}

void warnIfWrong(const std::string& subject, const ShotAudit& audit) {
  if (!(audit.wrongShare() > Acceptable)) return;
  const ObjectAudit& worst = worstOf(audit);
  const std::string id = worst.id.empty() ? "" : " (\"" + Session::idText(worst.id) + "\")";
  std::cerr << oneLine("lumivane: " + subject + ": warning: the picture shows a wrong region on " +
                       percent(audit.wrongShare()) + " of what it covers, most of it at object " +
                       std::to_string(worst.objectNumber) + id +
                       "; lumivane view has what is really seen") +
                   "\n";
}

Jzon::Node objectNode(const ObjectAudit& object) {
  Jzon::Node node = Jzon::object();
  node.add("object", numberNode(static_cast<std::size_t>(object.objectNumber)));
  node.add("id", textNode(Session::idText(object.id)));
  node.add("shown", numberNode(object.shown));
  node.add("seen", numberNode(object.seen));
  node.add("shown_wrongly", numberNode(object.shownWrongly));
  node.add("missing", numberNode(object.missing));
  return node;
}

Jzon::Node auditNode(const ShotAudit& audit) {
  Jzon::Node objects = Jzon::array();
  for (const ObjectAudit& object : audit.objects())
    if (object.shown > 0.0 || object.seen > 0.0) objects.add(objectNode(object));
  Jzon::Node node = Jzon::object();
  node.add("covered", numberNode(audit.covered()));
  node.add("wrong", numberNode(audit.wrong()));
  node.add("wrong_share", numberNode(audit.wrongShare()));
  node.add("objects", objects);
  return node;
}

}  // namespace

AuditedShot auditShot(const std::string& subject, const Session::TakenShot& shot,
                      const Session::LoadedScene& scene, Measure::WrongParts parts) {
  const auto audit =
      std::make_shared<const ShotAudit>(shot, Visibility::SceneIndex(scene), AllProcessors, parts);
  warnIfWrong(subject, *audit);
  return {auditNode(*audit), audit};
}

}  // namespace Lumivane::Host
