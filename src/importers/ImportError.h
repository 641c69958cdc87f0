#pragma once

#include <stdexcept>

namespace Lumivane::Importers {

/// What is wrong with a file, without the file's name: `Importer` adds it.
class ImportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Lumivane::Importers
