// What whole matrices of view factors are held to: reciprocity, and rows that add up to 1.
#include <lumivane/measure/FaceFactors.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

// Estimates are at least this part of a factor, so that none has a weight without bound.
constexpr double LeastEstimate = 1e-9;

void check(const std::vector<FactorElement>& elements, const std::vector<FactorRow>& rows) {
  if (rows.size() != elements.size())
    throw std::invalid_argument("a matrix has a row for each element");
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].element != i)
      throw std::invalid_argument("the rows are not in the elements' order");
}

// Both exchange areas of two elements that see each other, or think so.
struct Pair {
  size_t i;
  size_t j;
  double ij = 0.0;
  double ji = 0.0;
  double varianceIj = 0.0;  // squares of estimates; 0 where there is no entry
  double varianceJi = 0.0;
};

const FactorEntry* find(const FactorRow& row, size_t element) {
  const auto at = std::lower_bound(
      row.entries.begin(), row.entries.end(), element,
      [](const FactorEntry& entry, size_t wanted) { return entry.element < wanted; });
  return at != row.entries.end() && at->element == element ? &*at : nullptr;
}

double varianceOf(const FactorEntry& entry, double area) {
  const double estimate = area * std::max(entry.estimate, LeastEstimate * entry.factor);
  return std::max(estimate * estimate, 1e-300);
}

// By i, then j, each with i <= j.
std::vector<Pair> pairsOf(const std::vector<FactorElement>& elements,
                          const std::vector<FactorRow>& rows) {
  std::vector<Pair> pairs;
  for (size_t i = 0; i < rows.size(); ++i)
    for (const FactorEntry& entry : rows[i].entries) {
      const size_t j = entry.element;
      const FactorEntry* const back = find(rows[j], i);
      if (j < i && back != nullptr) continue;  // has come with row j
      Pair pair{i, j};
      pair.ij = elements[i].area * entry.factor;
      pair.varianceIj = varianceOf(entry, elements[i].area);
      if (back != nullptr) {
        pair.ji = elements[j].area * back->factor;
        pair.varianceJi = varianceOf(*back, elements[j].area);
      }
      pairs.push_back(pair);
    }
  return pairs;
}

// The exchange areas as unknowns: the least change, by their variances, that makes the rows add up.
class Closing {
 public:
  Closing(const std::vector<FactorElement>& theElements, std::vector<FactorRow>& theRows,
          const std::atomic<bool>* theCancelled)
      : elements(theElements),
        rows(theRows),
        cancelled(theCancelled),
        pairs(pairsOf(elements, rows)) {
    for (const Pair& pair : pairs) {
      values.push_back(mean(pair));
      variances.push_back(variance(pair));
    }
    for (size_t i = 0; i < rows.size(); ++i) {
      skies.push_back(elements[i].area * rows[i].sky);
      const double estimate =
          elements[i].area * std::max(rows[i].skyEstimate, LeastEstimate * rows[i].sky);
      skyVariances.push_back(rows[i].sky > 0.0 ? estimate * estimate : 0.0);
    }
  }

  void run() {
    // What would fall below 0 stays there, and the rest is tried again.
    constexpr int MostRounds = 20;
    for (int round = 0; round < MostRounds; ++round)
      if (!change()) break;
    writeBack();
  }

 private:
  // One that saw nothing of the other gives no estimate of its own: half of what the other saw is
  // as far from both.
  static double mean(const Pair& pair) {
    if (pair.varianceJi == 0.0) return pair.i == pair.j ? pair.ij : 0.5 * pair.ij;
    return (pair.ij * pair.varianceJi + pair.ji * pair.varianceIj) /
           (pair.varianceIj + pair.varianceJi);
  }
  static double variance(const Pair& pair) {
    if (pair.varianceJi == 0.0)
      return std::max(pair.varianceIj, pair.i == pair.j ? 0.0 : 0.25 * pair.ij * pair.ij);
    const double apart = pair.ij - pair.ji;
    return pair.varianceIj * pair.varianceJi / (pair.varianceIj + pair.varianceJi) +
           0.25 * apart * apart;
  }

  std::vector<double> missing() const {
    std::vector<double> result;
    for (size_t i = 0; i < rows.size(); ++i) result.push_back(elements[i].area - skies[i]);
    for (size_t k = 0; k < pairs.size(); ++k) {
      result[pairs[k].i] -= values[k];
      if (pairs[k].i != pairs[k].j) result[pairs[k].j] -= values[k];
    }
    return result;
  }

  // By Lagrange: a pair changes by its variance times the sum of its rows' multipliers.
  std::vector<double> times(const std::vector<double>& x) const {
    std::vector<double> result(x.size());
    for (size_t i = 0; i < x.size(); ++i) result[i] = skyVariances[i] * x[i];
    for (size_t k = 0; k < pairs.size(); ++k) {
      const Pair& pair = pairs[k];
      if (pair.i == pair.j) {
        result[pair.i] += variances[k] * x[pair.i];
        continue;
      }
      const double change = variances[k] * (x[pair.i] + x[pair.j]);
      result[pair.i] += change;
      result[pair.j] += change;
    }
    return result;
  }

  std::vector<double> diagonal() const {
    std::vector<double> result = skyVariances;
    for (size_t k = 0; k < pairs.size(); ++k) {
      result[pairs[k].i] += variances[k];
      if (pairs[k].i != pairs[k].j) result[pairs[k].j] += variances[k];
    }
    return result;
  }

  // Conjugate gradients (M. R. Hestenes and E. Stiefel, 1952), scaled by the diagonal.
  std::vector<double> multipliers(std::vector<double> rest) const {
    const std::vector<double> scales = diagonal();
    const auto scaled = [&scales](const std::vector<double>& v) {
      std::vector<double> result(v.size());
      for (size_t i = 0; i < v.size(); ++i) result[i] = scales[i] > 0.0 ? v[i] / scales[i] : 0.0;
      return result;
    };
    std::vector<double> x(rest.size(), 0.0);
    std::vector<double> z = scaled(rest);
    std::vector<double> direction = z;
    double size = dot(rest, z);
    const double first = size;
    constexpr int MostSteps = 1000;
    constexpr double Enough = 1e-26;
    for (int step = 0; step < MostSteps && size > Enough * first; ++step) {
      const std::vector<double> image = times(direction);
      const double curvature = dot(direction, image);
      if (!(curvature > 0.0)) break;
      if (cancelled != nullptr && cancelled->load()) throw Visibility::Cancelled();
      const double length = size / curvature;
      for (size_t i = 0; i < x.size(); ++i) {
        x[i] += length * direction[i];
        rest[i] -= length * image[i];
      }
      z = scaled(rest);
      const double now = dot(rest, z);
      for (size_t i = 0; i < x.size(); ++i) direction[i] = z[i] + now / size * direction[i];
      size = now;
    }
    return x;
  }

  static double dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
  }

  // Whether something has come to 0, so that the rows do not add up yet.
  bool change() {
    const std::vector<double> x = multipliers(missing());
    bool cut = false;
    const auto add = [&cut](double& value, double& weight, double by) {
      value += weight * by;
      if (value >= 0.0) return;
      value = weight = 0.0;
      cut = true;
    };
    for (size_t k = 0; k < pairs.size(); ++k) {
      const Pair& pair = pairs[k];
      add(values[k], variances[k], pair.i == pair.j ? x[pair.i] : x[pair.i] + x[pair.j]);
    }
    for (size_t i = 0; i < skies.size(); ++i) add(skies[i], skyVariances[i], x[i]);
    return cut;
  }

  void writeBack() {
    for (size_t i = 0; i < rows.size(); ++i) {
      rows[i].entries.clear();
      rows[i].sky = skies[i] / elements[i].area;
    }
    for (size_t k = 0; k < pairs.size(); ++k) {
      const Pair& pair = pairs[k];
      if (!(values[k] > 0.0)) continue;
      const double estimate = std::sqrt(variance(pair));
      const auto put = [&](size_t i, size_t j) {
        rows[i].entries.push_back({j, values[k] / elements[i].area, estimate / elements[i].area});
      };
      put(pair.i, pair.j);
      if (pair.i != pair.j) put(pair.j, pair.i);
    }
    for (FactorRow& row : rows)
      std::sort(row.entries.begin(), row.entries.end(),
                [](const FactorEntry& a, const FactorEntry& b) { return a.element < b.element; });
  }

  const std::vector<FactorElement>& elements;
  std::vector<FactorRow>& rows;
  const std::atomic<bool>* cancelled;
  std::vector<Pair> pairs;
  std::vector<double> values;
  std::vector<double> variances;
  std::vector<double> skies;
  std::vector<double> skyVariances;
};

}  // namespace

Reciprocity reciprocityOf(const std::vector<FactorElement>& elements,
                          const std::vector<FactorRow>& rows) {
  check(elements, rows);
  Reciprocity result;
  double squares = 0.0;
  size_t count = 0;
  for (const Pair& pair : pairsOf(elements, rows)) {
    if (pair.i == pair.j) continue;
    const double smaller = std::min(elements[pair.i].area, elements[pair.j].area);
    const double apart = std::abs(pair.ij - pair.ji) / smaller;
    result.greatest = std::max(result.greatest, apart);
    squares += apart * apart;
    ++count;
  }
  if (count > 0) result.meanSquare = std::sqrt(squares / static_cast<double>(count));
  return result;
}

void makeReciprocal(const std::vector<FactorElement>& elements, std::vector<FactorRow>& rows,
                    const std::atomic<bool>* cancelled) {
  check(elements, rows);
  Closing(elements, rows, cancelled).run();
}

}  // namespace Lumivane::Measure
