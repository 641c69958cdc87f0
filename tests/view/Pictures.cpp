#include "view/Pictures.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <vtkNew.h>
#include <vtkPNGReader.h>

namespace Lumivane::Test {
namespace {

std::vector<unsigned char> bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string leaveCandidate(const std::string& name, const std::vector<unsigned char>& stream) {
  const std::string path = (std::filesystem::current_path() / (name + ".candidate.png")).string();
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(stream.data()),
             static_cast<std::streamsize>(stream.size()));
  return "; the picture is left in " + path;
}

}  // namespace

vtkSmartPointer<vtkImageData> decodedPng(const std::vector<unsigned char>& stream) {
  const vtkNew<vtkPNGReader> reader;
  reader->SetMemoryBuffer(stream.data());
  reader->SetMemoryBufferLength(static_cast<vtkIdType>(stream.size()));
  reader->Update();
  return reader->GetOutput();
}

std::vector<unsigned> pngSize(const std::vector<unsigned char>& stream) {
  const auto numberAt = [&](size_t at) {
    unsigned value = 0;
    for (size_t i = 0; i < 4; ++i) value = value * 256 + stream.at(at + i);
    return value;
  };
  return {numberAt(16), numberAt(20)};
}

double shareOfDifferentPixels(vtkImageData* a, vtkImageData* b) {
  const int* sizeA = a->GetDimensions();
  const int* sizeB = b->GetDimensions();
  const int channels = a->GetNumberOfScalarComponents();
  if (sizeA[0] != sizeB[0] || sizeA[1] != sizeB[1] || channels != b->GetNumberOfScalarComponents())
    return 1.0;

  const auto* pixelA = static_cast<const unsigned char*>(a->GetScalarPointer());
  const auto* pixelB = static_cast<const unsigned char*>(b->GetScalarPointer());
  const long pixels = static_cast<long>(sizeA[0]) * sizeA[1];
  long different = 0;
  for (long i = 0; i < pixels; ++i) {
    bool isDifferent = false;
    for (int k = 0; k < channels; ++k) {
      if (std::abs(*pixelA++ - *pixelB++) > ChannelTolerance) isDifferent = true;
    }
    if (isDifferent) ++different;
  }
  return static_cast<double>(different) / static_cast<double>(pixels);
}

::testing::AssertionResult looksLike(const std::string& name,
                                     const std::vector<unsigned char>& stream) {
  const std::string path = LUMIVANE_TEST_DATA "/pictures/" + name + ".png";
  const std::vector<unsigned char> baseline = bytesOf(path);
  if (baseline.empty()) {
    return ::testing::AssertionFailure() << "no baseline " << path << leaveCandidate(name, stream);
  }
  const double share = shareOfDifferentPixels(decodedPng(baseline), decodedPng(stream));
  if (share <= ShareOfPixelsThatMayDiffer) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "a share of " << share << " of the pixels differs from "
                                       << path << leaveCandidate(name, stream);
}

}  // namespace Lumivane::Test
