#pragma once

#include "importers/SourceModel.h"

#include <iosfwd>
#include <string>

namespace Lumivane::Importers {

/// Each reads one kind of file. `bytes` is the content of the file at `path`.
/// \throws ImportError
SourceModel readObj(const std::string& path, const std::string& bytes);
SourceModel readStl(const std::string& path, const std::string& bytes);
SourceModel readPly(const std::string& path, const std::string& bytes);
SourceModel readGltf(const std::string& path, const std::string& bytes, bool allowOutside);
SourceModel readCityJson(const std::string& bytes);
/// A sequence of CityJSON (CityJSONSeq), one line after the other.
SourceModel readCityJsonSequence(std::istream& lines);

}  // namespace Lumivane::Importers
