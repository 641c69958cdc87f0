#include "truth/Deviations.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Lumivane::Truth {

std::size_t Deviations::beyond(double limit) const {
  return static_cast<std::size_t>(
      std::count_if(all.begin(), all.end(), [limit](double by) { return std::abs(by) > limit; }));
}

double Deviations::greatest() const {
  double most = 0.0;
  for (const double by : all) most = std::max(most, std::abs(by));
  return most;
}

double Deviations::mean() const {
  double sum = 0.0;
  for (const double by : all) sum += by;
  return all.empty() ? 0.0 : sum / static_cast<double>(all.size());
}

double Deviations::spread() const {
  const double middle = mean();
  double sum = 0.0;
  for (const double by : all) sum += (by - middle) * (by - middle);
  return all.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(all.size()));
}

std::string Deviations::text() const {
  char line[200];
  const auto total = static_cast<double>(all.size());
  std::snprintf(line, sizeof line,
                "%zu shares of objects: mean %.4f (expected 0 +- %.4f), spread %.4f (1), greatest "
                "%.2f (median %.2f, 99 %% below %.2f)\n",
                all.size(), mean(), 1.0 / std::sqrt(std::max(1.0, total)), spread(), greatest(),
                normalMaximum(all.size()), normalMaximum(all.size(), 0.01));
  std::string text = line;
  for (const double limit : {1.0, 2.0, 3.0, 4.0, 5.0}) {
    std::snprintf(line, sizeof line, "  beyond %.0f: %6zu, expected %.2f\n", limit, beyond(limit),
                  total * normalPartBeyond(limit));
    text += line;
  }
  return text;
}

double normalPartBeyond(double limit) { return std::erfc(limit / std::sqrt(2.0)); }

double normalMaximum(std::size_t count, double probability) {
  if (count == 0) return 0.0;
  double low = 0.0;
  double high = 40.0;
  for (int i = 0; i < 100; ++i) {
    const double middle = 0.5 * (low + high);
    // That none of them is beyond it.
    const double none =
        std::exp(static_cast<double>(count) * std::log1p(-normalPartBeyond(middle)));
    (none < 1.0 - probability ? low : high) = middle;
  }
  return low;
}

}  // namespace Lumivane::Truth
