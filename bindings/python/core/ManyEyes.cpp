// Each look is made by one thread, since there are more eyes than processors. A dense row belongs
// to one eye, so threads write to the arrays directly; sparse rows are kept and joined at the end.

#include "ManyEyes.h"

#include "Waiting.h"

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace py = pybind11;

namespace Lumivane::Python {
namespace {

using Visibility::MapShares;
using Visibility::ViewShare;

double solidAngle(const ViewShare& share) { return share.solidAngle; }
double viewFactor(const ViewShare& share) { return share.viewFactor; }
double area(const ViewShare& share) { return share.area(); }
double hemisphereShare(const ViewShare& share) { return share.hemisphereShare(); }
double minDistance(const ViewShare& share) { return share.minDistance; }
double maxDistance(const ViewShare& share) { return share.maxDistance; }

struct Measure {
  const char* name;
  double (*value)(const ViewShare&);
  bool isOfHemisphere;
  bool isOfSky;
};

constexpr Measure Measures[] = {{"solid_angle", solidAngle, false, true},
                                {"view_factor", viewFactor, true, true},
                                {"area", area, true, true},
                                {"hemisphere_share", hemisphereShare, true, true},
                                {"min_distance", minDistance, false, false},
                                {"max_distance", maxDistance, false, false}};

constexpr const char* SkyPrefix = "sky_";
constexpr const char* Fraction = "visible_fraction";

// One column that was asked for. A fraction has no measure.
struct Column {
  std::string name;
  bool isSky = false;
  const Measure* measure = nullptr;
};

Column columnOf(const std::string& name, const ManyEyes& many) {
  if (name == Fraction && !many.byClass) return {name, false, nullptr};
  const bool isSky = name.rfind(SkyPrefix, 0) == 0;
  const std::string bare = isSky ? name.substr(std::string(SkyPrefix).size()) : name;
  const auto* const found = std::find_if(std::begin(Measures), std::end(Measures),
                                         [&bare](const Measure& m) { return bare == m.name; });
  if (found == std::end(Measures) || (isSky && !found->isOfSky))
    throw std::invalid_argument("columns: there is none called \"" + name + "\"");
  if (found->isOfHemisphere && many.look.field == Visibility::Field::Sphere)
    throw std::invalid_argument("columns: a sphere has no " + name + "; ask for " +
                                (isSky ? "sky_" : "") + "solid_angle");
  return {name, isSky, found};
}

// What is seen from one eye, sparse: positions, and for each column as many values.
struct SparseRow {
  std::vector<std::int32_t> positions;
  std::vector<std::vector<double>> values;
};

class Looks {
 public:
  Looks(const SceneData& theScene, const ManyEyes& theMany) : scene(theScene), many(theMany) {
    for (const std::string& name : many.columns) columns.push_back(columnOf(name, many));
    width = many.byClass ? scene.names().classNames.size() + 1 : scene.names().objectIds.size();
    for (const Column& column : columns) {
      if (column.measure == nullptr) isAloneAsked = true;
      const bool isOne = column.isSky;
      const bool isKept = isOne || !many.sparse;
      arrays.push_back(isKept ? zeros(many.eyes.size(), isOne ? 1 : width) : zeros(0, 0));
      starts.push_back(arrays.back().mutable_data());
    }
    if (many.sparse) rows.resize(many.eyes.size());
  }

  void look(std::size_t i, const std::atomic<bool>& cancelled) {
    Visibility::LookOptions how = many.look;
    how.forward = many.forwards[many.forwards.size() == 1 ? 0 : i];
    how.up = many.ups[many.ups.size() == 1 ? 0 : i];
    how.alone = isAloneAsked;
    how.threads = 1;
    how.cancelled = &cancelled;
    keep(i, MapShares(scene.index().look(many.eyes[i], how), MapShares::Objects::Seen));
  }

  py::dict result() {
    py::dict result;
    for (std::size_t c = 0; c < columns.size(); ++c)
      if (columns[c].isSky)
        result[columns[c].name.c_str()] = arrays[c].attr("reshape")(-1);
      else if (!many.sparse)
        result[columns[c].name.c_str()] = arrays[c];
    if (many.sparse) addSparse(result);
    return result;
  }

 private:
  void keep(std::size_t i, const MapShares& shares) {
    for (std::size_t c = 0; c < columns.size(); ++c)
      if (columns[c].isSky) starts[c][i] = columns[c].measure->value(shares.sky());
    if (many.sparse) rows[i].values.resize(columns.size());
    if (many.byClass)
      for (std::size_t k = 0; k < shares.classes().size(); ++k)
        keep(i, k, shares.classes()[k].share, 0.0);
    else
      for (std::size_t k = 0; k < shares.objects().size(); ++k)
        keep(i, static_cast<std::size_t>(shares.objects()[k].label.object) - 1,
             shares.objects()[k].share, isAloneAsked ? shares.visibleFractions()[k] : 0.0);
  }

  void keep(std::size_t i, std::size_t position, const ViewShare& share, double fraction) {
    if (!(share.solidAngle > 0.0)) return;  // all its values are 0
    if (many.sparse) rows[i].positions.push_back(static_cast<std::int32_t>(position));
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (columns[c].isSky) continue;
      const double value = columns[c].measure ? columns[c].measure->value(share) : fraction;
      if (many.sparse)
        rows[i].values[c].push_back(value);
      else
        starts[c][i * width + position] = value;
    }
  }

  void addSparse(py::dict& result) const {
    std::vector<std::int64_t> ends = {0};
    std::vector<std::int32_t> positions;
    for (const SparseRow& row : rows) {
      positions.insert(positions.end(), row.positions.begin(), row.positions.end());
      ends.push_back(static_cast<std::int64_t>(positions.size()));
    }
    result["indptr"] =
        py::array(py::array_t<std::int64_t>(static_cast<py::ssize_t>(ends.size()), ends.data()));
    result["indices"] = py::array(
        py::array_t<std::int32_t>(static_cast<py::ssize_t>(positions.size()), positions.data()));
    for (std::size_t c = 0; c < columns.size(); ++c)
      if (!columns[c].isSky) result[columns[c].name.c_str()] = joined(c, positions.size());
  }

  py::array joined(std::size_t column, std::size_t count) const {
    py::array_t<double> values(static_cast<py::ssize_t>(count));
    double* at = values.mutable_data();
    for (const SparseRow& row : rows)
      at = std::copy(row.values[column].begin(), row.values[column].end(), at);
    return std::move(values);
  }

  const SceneData& scene;
  const ManyEyes& many;
  std::vector<Column> columns;
  bool isAloneAsked = false;
  std::size_t width = 0;
  std::vector<Array<double>> arrays;
  std::vector<double*> starts;
  std::vector<SparseRow> rows;
};

void checkCounts(const ManyEyes& many) {
  const std::size_t count = many.eyes.size();
  if (many.forwards.size() != 1 && many.forwards.size() != count)
    throw std::invalid_argument("forward: there must be one for all eyes or one for each");
  if (many.ups.size() != 1 && many.ups.size() != count)
    throw std::invalid_argument("up: there must be one for all eyes or one for each");
}

}  // namespace

py::dict sharesOf(const SceneData& scene, const ManyEyes& many, const py::object& progress) {
  checkCounts(many);
  Looks looks(scene, many);
  std::atomic<bool> cancelled{false};
  std::atomic<std::size_t> done{0};
  const auto call = [&] {
    const std::size_t count = std::max<std::size_t>(1, many.eyes.size());
    progress(many.eyes.empty() ? 1.0
                               : static_cast<double>(done.load()) / static_cast<double>(count));
  };
  const std::function<void()> report = progress.is_none() ? std::function<void()>() : call;
  if (report) report();
  runInterruptibly(
      cancelled,
      [&] {
        forEach(many.eyes.size(), many.threads, cancelled, [&](std::size_t i) {
          looks.look(i, cancelled);
          ++done;
        });
      },
      report);
  if (report && !many.eyes.empty()) report();
  return looks.result();
}

}  // namespace Lumivane::Python
