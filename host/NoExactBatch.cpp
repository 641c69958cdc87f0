// What a program has that is built without the components.

#include "ExactBatch.h"

namespace Lumivane::Host {

struct ExactBatch::State {};

ExactBatch::ExactBatch(const std::string&, const Session::LoadedScene&) {}
ExactBatch::~ExactBatch() = default;
std::optional<ExactSummary> ExactBatch::look(const ShotOptions&) const { return {}; }

}  // namespace Lumivane::Host
