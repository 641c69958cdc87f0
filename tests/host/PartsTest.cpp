#include "HostError.h"
#include "Options.h"
#include "Picture.h"
#include "ProgressBar.h"
#include "ViewSetup.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

const std::string Signature = "\x89PNG\r\n\x1A\n";

std::string chunk(const std::string& type, const std::string& data) {
  return std::string("\0\0\0", 3) + static_cast<char>(data.size()) + type + data + "SUM!";
}

std::string stream(const std::string& bytes) {
  return pngStream(std::vector<unsigned char>(bytes.begin(), bytes.end()));
}

TEST(Picture, StreamEndsBehindItsLastChunk) {
  const std::string png = Signature + chunk("IHDR", "0123456789abc") + chunk("IEND", "");
  EXPECT_EQ(png, stream(png));
  EXPECT_EQ(png, stream(png + std::string(100, '\0')));
  EXPECT_EQ(png, stream(png + chunk("IEND", "")));
}

TEST(Picture, CutOrForeignStreamIsNone) {
  const std::string png = Signature + chunk("IHDR", "0123456789abc") + chunk("IEND", "");
  EXPECT_EQ("", stream(""));
  EXPECT_EQ("", stream("no picture at all"));
  for (size_t i = 0; i < png.size(); ++i) EXPECT_EQ("", stream(png.substr(0, i))) << i;
  EXPECT_EQ("", stream(Signature + "\xFF\xFF\xFF\xFFIDAT" + std::string(20, 'x')));
}

TEST(ProgressBar, BarFollowsThePercentage) {
  EXPECT_EQ("[" + std::string(40, '.') + "] 0 %", progressText(0.0));
  EXPECT_EQ("[" + std::string(20, '#') + std::string(20, '.') + "] 50 %", progressText(50.0));
  EXPECT_EQ("[" + std::string(40, '#') + "] 100 %", progressText(100.0));
}

TEST(ProgressBar, AnyNumberGivesABar) {
  EXPECT_EQ(progressText(0.0), progressText(-5.0));
  EXPECT_EQ(progressText(0.0), progressText(std::nan("")));
  EXPECT_EQ(progressText(100.0), progressText(std::numeric_limits<double>::infinity()));
}

TEST(HostError, TextIsOneLine) {
  EXPECT_EQ("a b  c", oneLine("a\nb\r\tc"));
  EXPECT_STREQ("f: no", HostError("f", "no").what());
}

ViewOptions turned(const Vector& forward, const Vector& up) {
  ViewOptions options;
  options.forward = forward;
  options.up = up;
  return options;
}

TEST(View, DefaultHasNoFault) { EXPECT_EQ("", viewFault(ViewOptions())); }

TEST(View, ParallelAndZeroAndInfiniteVectorsAreFaults) {
  EXPECT_EQ("forward 1,0,0 and up 2,0,0 are parallel", viewFault(turned({1, 0, 0}, {2, 0, 0})));
  EXPECT_EQ("forward 1,0,0 and up -2,0,0 are parallel", viewFault(turned({1, 0, 0}, {-2, 0, 0})));
  EXPECT_NE("", viewFault(turned({0.1, 0.2, 0.3}, {0.3, 0.6, 0.9})));
  EXPECT_NE("", viewFault(turned({1e-200, 0, 0}, {1e200, 0, 0})));
  EXPECT_EQ("forward is the zero vector", viewFault(turned({0, 0, 0}, {0, 0, 1})));
  EXPECT_EQ("up is the zero vector", viewFault(turned({1, 0, 0}, {0, 0, 0})));
  EXPECT_EQ("up 0,0,inf is not finite", viewFault(turned({1, 0, 0}, {0, 0, HUGE_VAL})));
  ViewOptions options;
  options.eye[1] = std::nan("");
  EXPECT_EQ("eye 0,nan,0 is not finite", viewFault(options));
}

TEST(View, NearlyParallelVectorsAreNoFault) {
  EXPECT_EQ("", viewFault(turned({1, 0, 0}, {1, 0.001, 0})));
  EXPECT_EQ("", viewFault(turned({1e-150, 0, 0}, {0, 1e150, 0})));
}

}  // namespace
}  // namespace Lumivane::Host
