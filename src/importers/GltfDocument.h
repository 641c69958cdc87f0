#pragma once

#include "importers/GltfBuffers.h"

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {

/// A glTF file whose structure holds: every number that refers to something is in range, and every
/// accessor lies within its buffer view, its buffer and the bytes of that.
struct GltfDocument {
  nlohmann::json root;
  std::vector<GltfBytes> buffers;  ///< one for each of the document's buffers, at least as long as
                                   ///< it says
};

/// Opens a glTF document, text or binary, and reads its buffers.
///
/// \param path          of the file, beside which its buffers lie
/// \param bytes         the content of the file
/// \param allowOutside  whether a buffer may lie outside the folder of the file
/// \throws ImportError that names the part of the document that is wrong
GltfDocument openGltf(const std::string& path, const std::string& bytes, bool allowOutside);

}  // namespace Lumivane::Importers
