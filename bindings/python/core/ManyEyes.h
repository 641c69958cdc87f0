#pragma once

#include "Arrays.h"
#include "SceneData.h"

#include <lumivane/visibility/LookOptions.h>

#include <string>
#include <vector>

#include <pybind11/pybind11.h>

namespace Lumivane::Python {

/// Which eyes are looked from, and what is kept of each look.
struct ManyEyes {
  std::vector<Visibility::Vector> eyes;
  std::vector<Visibility::Vector> forwards;  ///< one for all eyes, or one for each
  std::vector<Visibility::Vector> ups;       ///< likewise
  Visibility::LookOptions look;              ///< field and sides
  std::vector<std::string> columns;          ///< of objects or classes; those of the sky: "sky_..."
  bool byClass = false;                      ///< a column for each class, those of none last
  bool sparse = false;                       ///< only what is seen
  int threads = 0;                           ///< 0: one for each processor
};

/// Looks from all eyes. Dense columns are arrays of eyes by objects or classes, those of the sky
/// one number for each eye. Sparse ones have their values in a row each, with "indptr" and
/// "indices" as SciPy's compressed sparse rows name them.
///
/// \param progress  is called with the finished part, 0 to 1; may be None
pybind11::dict sharesOf(const SceneData& scene, const ManyEyes& many,
                        const pybind11::object& progress);

}  // namespace Lumivane::Python
