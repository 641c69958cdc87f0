#include "measure/NumpyArchive.h"

#include <cstring>
#include <stdexcept>

#ifdef LUMIVANE_HAS_LIBARCHIVE
#include <archive.h>
#include <archive_entry.h>
#endif

// Files of numpy's format, version 1.0, in a zip. libarchive packs; times and owners are left out,
// so that equal results are equal files.
namespace Lumivane::Measure {
namespace {

// Magic, version, length of what describes the array; the data begin at a multiple of 64.
std::string header(const std::string& type, const std::string& shape) {
  std::string text = "{'descr': '" + type + "', 'fortran_order': False, 'shape': " + shape + ", }";
  constexpr size_t Before = 10;
  while ((Before + text.size() + 1) % 64 != 0) text += ' ';
  text += '\n';
  std::string result("\x93NUMPY\x01\x00", 8);
  result += static_cast<char>(text.size() & 0xFFU);
  result += static_cast<char>(text.size() >> 8U);
  return result + text;
}

template <class Value>
std::string arrayFile(const std::string& type, const std::vector<Value>& values) {
  std::string result = header(type, "(" + std::to_string(values.size()) + ",)");
  const size_t at = result.size();
  result.resize(at + values.size() * sizeof(Value));
  if (!values.empty()) std::memcpy(&result[at], values.data(), values.size() * sizeof(Value));
  return result;
}

}  // namespace

void NumpyArchive::add(const std::string& name, const std::vector<double>& values) {
  files.emplace_back(name + ".npy", arrayFile("<f8", values));
}

void NumpyArchive::add(const std::string& name, const std::vector<std::int64_t>& values) {
  files.emplace_back(name + ".npy", arrayFile("<i8", values));
}

void NumpyArchive::addWord(const std::string& name, const std::string& word) {
  files.emplace_back(name + ".npy", header("|S" + std::to_string(word.size()), "()") + word);
}

#ifdef LUMIVANE_HAS_LIBARCHIVE

namespace {

la_ssize_t append(archive*, void* target, const void* data, size_t size) {
  static_cast<std::string*>(target)->append(static_cast<const char*>(data), size);
  return static_cast<la_ssize_t>(size);
}

class Writer {
 public:
  Writer() : writer(archive_write_new()) {
    check(writer == nullptr ? ARCHIVE_FATAL : archive_write_set_format_zip(writer));
    check(archive_write_set_options(writer, "zip:compression=store"));
    check(archive_write_set_bytes_in_last_block(writer, 1));
    check(archive_write_open(writer, &bytes, nullptr, append, nullptr));
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { archive_write_free(writer); }

  void add(const std::string& name, const std::string& content) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_mtime(entry, 315532800, 0);  // 1980, the first time of the format
    const int status = archive_write_header(writer, entry);
    archive_entry_free(entry);
    check(status);
    if (archive_write_data(writer, content.data(), content.size()) !=
        static_cast<la_ssize_t>(content.size()))
      check(ARCHIVE_FATAL);
  }

  std::string take() {
    check(archive_write_close(writer));
    return std::move(bytes);
  }

 private:
  void check(int status) const {
    if (status == ARCHIVE_OK) return;
    const char* const text = writer == nullptr ? nullptr : archive_error_string(writer);
    throw std::runtime_error(std::string("the archive cannot be made: ") +
                             (text == nullptr ? "not enough memory" : text));
  }

  archive* writer;
  std::string bytes;
};

}  // namespace

bool NumpyArchive::isBuilt() { return true; }

std::string NumpyArchive::bytes() const {
  Writer writer;
  for (const auto& file : files) writer.add(file.first, file.second);
  return writer.take();
}

#else

bool NumpyArchive::isBuilt() { return false; }

std::string NumpyArchive::bytes() const {
  throw std::runtime_error("built without libarchive: no .npz can be written");
}

#endif

}  // namespace Lumivane::Measure
