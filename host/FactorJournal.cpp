#include "FactorJournal.h"

#include <lumivane/measure/FactorText.h>

#include <optional>
#include <utility>

namespace Lumivane::Host {

FactorJournal::FactorJournal(const std::string& path, std::uint64_t key)
    : journal(path, "factors", key) {
  for (const std::string& line : journal.takeLines())
    if (auto row = Measure::FactorText::readRowText(line)) rows.push_back(std::move(*row));
}

void FactorJournal::append(const Measure::FactorRow& row) {
  journal.append(Measure::FactorText::rowText(row));
}

}  // namespace Lumivane::Host
