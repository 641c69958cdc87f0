// View factors from face to face as the arrays of a sparse matrix. Rows do not depend on each
// other, so each is made by one thread.

#include "Factors.h"

#include "Arrays.h"
#include "Module.h"
#include "Waiting.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace py = pybind11;

namespace Lumivane::Python {

// One element: numbers from 1, positions from 0, or -1.
struct ElementRow {
  std::int32_t object;
  std::int32_t face;
  std::int32_t region;
  std::int32_t polygon;
  std::int32_t classNumber;
  bool isBack;
  double area;
  std::array<double, 3> centre;
  std::array<double, 3> normal;
};

namespace {

using Measure::FaceFactors;
using Measure::FactorElement;
using Measure::FactorEntry;
using Measure::FactorRow;
using Measure::Reciprocity;

std::vector<std::size_t> positionsOf(const WantedFactors& wanted, std::size_t count) {
  std::vector<std::size_t> positions;
  if (!wanted.rows) {
    positions.resize(count);
    std::iota(positions.begin(), positions.end(), std::size_t{0});
    return positions;
  }
  for (const std::int64_t row : *wanted.rows) {
    if (row < 0 || static_cast<std::size_t>(row) >= count)
      throw std::invalid_argument("rows: there is no row " + std::to_string(row) + " of " +
                                  std::to_string(count));
    positions.push_back(static_cast<std::size_t>(row));
  }
  return positions;
}

// What is integrated, in a thread without Python's lock.
class Work {
 public:
  Work(const SceneData& scene, const WantedFactors& theWanted, std::atomic<bool>& theCancelled)
      : index(scene.index()), wanted(theWanted), cancelled(theCancelled) {}

  void run() {
    Measure::FactorOptions how = wanted.how;
    how.cancelled = &cancelled;
    const FaceFactors factors(index, how);
    elements = factors.elements();
    const std::vector<std::size_t> positions = positionsOf(wanted, elements.size());
    rows.resize(positions.size());
    forEach(positions.size(), wanted.threads, cancelled, [&](std::size_t i) {
      rows[i] = factors.row(positions[i]);
      done = static_cast<double>(++count) / static_cast<double>(positions.size());
    });
    if (!wanted.rows && !cancelled) close();
  }

  double part() const { return std::min(done.load(), 1.0); }

  std::vector<FactorElement> elements;
  std::vector<FactorRow> rows;
  std::optional<Reciprocity> apart;

 private:
  void close() {
    apart = reciprocityOf(elements, rows);
    if (wanted.isReciprocal) makeReciprocal(elements, rows, &cancelled);
  }

  const Visibility::SceneIndex& index;
  const WantedFactors& wanted;
  std::atomic<bool>& cancelled;
  std::atomic<std::size_t> count{0};
  std::atomic<double> done{0.0};
};

py::array elementRows(const SceneData& scene, const std::vector<FactorElement>& elements) {
  std::vector<ElementRow> rows;
  rows.reserve(elements.size());
  for (const FactorElement& element : elements)
    rows.push_back({element.label.object, element.label.face, element.label.region,
                    scene.placeOf(element.label), element.classNumber, element.isBack, element.area,
                    element.centre, element.normal});
  return readOnly(rows);
}

// The value of each element's row, and `none` for rows that were not made.
template <class Value, class Get>
py::array byElement(const Work& work, Value none, const Get& get) {
  std::vector<Value> values(work.elements.size(), none);
  for (const FactorRow& row : work.rows) values[row.element] = get(row);
  return readOnly(values);
}

template <class Get>
py::array entries(const Work& work, const Get& get) {
  std::vector<decltype(get(FactorEntry()))> values;
  for (const FactorRow& row : work.rows)
    for (const FactorEntry& entry : row.entries) values.push_back(get(entry));
  return readOnly(values);
}

// Where the entries of each element's row begin, and where the last ones end.
py::array starts(const Work& work) {
  std::vector<std::int64_t> counts(work.elements.size() + 1, 0);
  for (const FactorRow& row : work.rows)
    counts[row.element + 1] = static_cast<std::int64_t>(row.entries.size());
  std::partial_sum(counts.begin(), counts.end(), counts.begin());
  return readOnly(counts);
}

py::dict resultOf(const SceneData& scene, const Work& work) {
  constexpr double None = std::numeric_limits<double>::quiet_NaN();
  using Whole = std::int64_t;
  py::dict result;
  result["elements"] = elementRows(scene, work.elements);
  result["rows"] = [&work] {
    std::vector<Whole> made;
    for (const FactorRow& row : work.rows) made.push_back(static_cast<Whole>(row.element));
    return readOnly(made);
  }();
  result["indptr"] = starts(work);
  result["indices"] =
      entries(work, [](const FactorEntry& entry) { return static_cast<Whole>(entry.element); });
  result["data"] = entries(work, [](const FactorEntry& entry) { return entry.factor; });
  result["estimate"] = entries(work, [](const FactorEntry& entry) { return entry.estimate; });
  result["sky"] = byElement(work, None, [](const FactorRow& row) { return row.sky; });
  result["sky_estimate"] =
      byElement(work, None, [](const FactorRow& row) { return row.skyEstimate; });
  result["residual"] = byElement(work, None, [](const FactorRow& row) { return row.residual; });
  result["points"] =
      byElement(work, Whole{0}, [](const FactorRow& row) { return static_cast<Whole>(row.looks); });
  result["within_tolerance"] = byElement(work, std::int8_t{1}, [](const FactorRow& row) {
                                 return static_cast<std::int8_t>(row.isWithinTolerance ? 1 : 0);
                               }).attr("view")("bool");
  result["reciprocity"] =
      work.apart ? py::object(py::make_tuple(work.apart->greatest, work.apart->meanSquare))
                 : py::object(py::none());
  return result;
}

}  // namespace

void bindFactors(py::module_& module) {
  static_cast<void>(module);
  PYBIND11_NUMPY_DTYPE_EX(ElementRow, object, "object", face, "face", region, "region", polygon,
                          "polygon", classNumber, "class", isBack, "is_back", area, "area", centre,
                          "centre", normal, "normal");
}

py::dict factorsOf(const SceneData& scene, const WantedFactors& wanted,
                   const py::object& progress) {
  std::atomic<bool> cancelled{false};
  Work work(scene, wanted, cancelled);
  const auto report = [&] {
    if (!progress.is_none()) progress(work.part());
  };
  report();
  runInterruptibly(
      cancelled, [&work] { work.run(); }, report);
  if (!progress.is_none()) progress(1.0);
  return resultOf(scene, work);
}

}  // namespace Lumivane::Python
