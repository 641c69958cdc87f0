// Runs a fuzz target over kept inputs, without a fuzzer and with any compiler.
// Arguments: files, and folders of files. The last name printed before a failure is that of the
// input at fault.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace Fs = std::filesystem;

bool replay(const Fs::path& path) {
  std::fprintf(stderr, "%s\n", path.c_str());
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  if (file.bad() || !file.is_open()) return false;
  // A copy of the very size, so that a sanitizer sees a read beyond it.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

std::set<Fs::path> filesOf(const Fs::path& path) {
  if (!Fs::is_directory(path)) return {path};
  std::set<Fs::path> files;
  for (const auto& entry : Fs::directory_iterator(path))
    if (entry.is_regular_file()) files.insert(entry.path());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i)
    for (const Fs::path& file : filesOf(argv[i])) {
      if (!replay(file)) return 1;
      ++count;
    }
  std::fprintf(stderr, "%zu inputs\n", count);
  return count > 0 ? 0 : 1;  // an empty corpus tests nothing
}
