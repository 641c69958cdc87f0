#include "visibility/InParallel.h"

#include <lumivane/measure/FaceFactors.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

// Gives out rows to threads, and reports from the one that called.
class Run {
 public:
  Run(const FaceFactors& theFactors, const FactorRun& theOptions)
      : factors(theFactors), options(theOptions) {
    const size_t all = factors.elements().size();
    if (options.threads < 0) throw std::invalid_argument("the number of threads is negative");
    if (all > 0 && (options.first >= all || options.count == 0))
      throw std::invalid_argument("there are no such rows");
    rows.resize(all == 0 ? 0 : std::min(options.count, all - options.first));
    std::vector<char> isKnown(rows.size(), 0);
    for (const FactorRow& row : options.known) {
      if (row.element < options.first || row.element - options.first >= rows.size()) continue;
      rows[row.element - options.first] = row;
      isKnown[row.element - options.first] = 1;
    }
    for (size_t i = 0; i < rows.size(); ++i)
      if (isKnown[i] == 0) wanted.push_back(i);
  }

  std::vector<FactorRow> take() {
    const size_t threads =
        std::clamp<size_t>(wanted.size(), 1, Visibility::threadCount(options.threads));
    Visibility::inParallel(threads, [this](bool isCaller) { work(isCaller); });
    if (options.progress) options.progress(1.0);
    return std::move(rows);
  }

 private:
  void work(bool reports) try {
    for (;;) {
      const size_t i = next.fetch_add(1);
      if (i >= wanted.size() || stopped.load()) return;
      FactorRow& row = rows[wanted[i]];
      row = factors.row(options.first + wanted[i]);
      if (options.made) {
        const std::lock_guard<std::mutex> lock(mutex);
        options.made(row);
      }
      done.fetch_add(1);
      if (reports) report();
    }
  } catch (...) {
    stopped.store(true);
    throw;
  }

  void report() {
    const auto now = std::chrono::steady_clock::now();
    if (!options.progress || now - lastReport < std::chrono::milliseconds(100)) return;
    lastReport = now;
    const size_t before = rows.size() - wanted.size();
    options.progress(static_cast<double>(before + done.load()) / static_cast<double>(rows.size()));
  }

  const FaceFactors& factors;
  const FactorRun& options;
  std::vector<FactorRow> rows;
  std::vector<size_t> wanted;
  std::atomic<size_t> next{0};
  std::atomic<size_t> done{0};
  std::atomic<bool> stopped{false};
  std::mutex mutex;
  std::chrono::steady_clock::time_point lastReport = std::chrono::steady_clock::now();
};

}  // namespace

std::vector<FactorRow> factorRows(const FaceFactors& factors, const FactorRun& run) {
  return Run(factors, run).take();
}

}  // namespace Lumivane::Measure
