#include "HostError.h"
#include "Picture.h"
#include "ProgressBar.h"

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

}  // namespace
}  // namespace Lumivane::Host
