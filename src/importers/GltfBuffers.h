#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Lumivane::Importers {

using GltfBytes = std::shared_ptr<const std::string>;

/// The bytes that the URIs of a glTF document stand for. A file that is named several times is read
/// once.
class GltfBuffers {
 public:
  /// \param path          of the document
  /// \param allowOutside  whether files outside its folder are read
  GltfBuffers(const std::string& path, bool allowOutside);

  /// The data in a "data:" URI, or that of the file beside the document that a relative URI names.
  /// \throws ImportError that does not name the buffer
  GltfBytes read(const std::string& uri);

 private:
  std::filesystem::path locate(const std::string& uri) const;

  std::filesystem::path folder;
  bool anywhere;
  std::map<std::filesystem::path, GltfBytes> files;
};

/// A URI with its percent-encoded bytes put in; a percent sign before anything but two hexadecimal
/// digits stands for itself.
std::string percentDecoded(std::string_view uri);

}  // namespace Lumivane::Importers
