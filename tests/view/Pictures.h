#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vtkImageData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Test {

/// A pixel counts as different when one of its channels is off by more than this: antialiasing and
/// rounding of another OpenGL stay below it.
constexpr int ChannelTolerance = 32;

/// Two pictures look the same when no larger share of their pixels is different. A ring or label
/// that is missing exceeds it; edges that another OpenGL draws half a pixel aside do not.
constexpr double ShareOfPixelsThatMayDiffer = 0.002;

vtkSmartPointer<vtkImageData> decodedPng(const std::vector<unsigned char>& stream);

/// Width and height as the header of a PNG stream gives them.
std::vector<unsigned> pngSize(const std::vector<unsigned char>& stream);

/// The share of different pixels; 1 for pictures of different sizes.
double shareOfDifferentPixels(vtkImageData* a, vtkImageData* b);

/// Compares a PNG stream with tests/data/pictures/NAME.png. Where it differs or where there is no
/// such file, the picture is left in the working folder as NAME.candidate.png, to look at and
/// adopt.
::testing::AssertionResult looksLike(const std::string& name,
                                     const std::vector<unsigned char>& stream);

}  // namespace Lumivane::Test
