#include "pictures/ClassColor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

namespace Lumivane::Pictures {
namespace {

using Color = VectorPicture::Color;

constexpr Color NoClass{206, 206, 206, 1.0};

const std::map<std::string, Color>& knownColors() {
  static const std::map<std::string, Color> known = {
      {"roof", {190, 96, 78, 1.0}},
      {"wall", {238, 226, 204, 1.0}},
      {"ground", {150, 142, 130, 1.0}},
      {"terrain", {196, 204, 164, 1.0}},
      {"tinrelief", {196, 204, 164, 1.0}},
      {"landuse", {216, 214, 184, 1.0}},
      {"closure", {200, 214, 228, 1.0}},
      {"outerceiling", {216, 190, 150, 1.0}},
      {"outerfloor", {184, 174, 158, 1.0}},
      {"window", {122, 164, 204, 1.0}},
      {"door", {126, 88, 60, 1.0}},
      {"interiorwall", {244, 238, 226, 1.0}},
      {"ceiling", {250, 248, 242, 1.0}},
      {"floor", {196, 168, 132, 1.0}},
      {"water", {132, 176, 214, 1.0}},
      {"waterbody", {132, 176, 214, 1.0}},
      {"waterway", {112, 160, 204, 1.0}},
      {"waterground", {130, 150, 140, 1.0}},
      {"waterclosure", {160, 196, 222, 1.0}},
      {"road", {178, 178, 182, 1.0}},
      {"railway", {150, 140, 132, 1.0}},
      {"transportsquare", {190, 186, 182, 1.0}},
      {"trafficarea", {172, 172, 176, 1.0}},
      {"auxiliarytrafficarea", {188, 196, 168, 1.0}},
      {"transportationmarking", {248, 248, 246, 1.0}},
      {"transportationhole", {96, 96, 100, 1.0}},
      {"building", {228, 200, 160, 1.0}},
      {"bridge", {176, 160, 150, 1.0}},
      {"tunnel", {140, 136, 132, 1.0}},
      {"plantcover", {160, 194, 124, 1.0}},
      {"vegetation", {104, 154, 84, 1.0}},
      {"solitaryvegetationobject", {104, 154, 84, 1.0}},
      {"tree", {104, 154, 84, 1.0}},
      {"cityfurniture", {120, 120, 128, 1.0}},
      {"genericcityobject", {206, 196, 180, 1.0}},
      {"sky", {219, 234, 246, 1.0}},
  };
  return known;
}

std::string lowerLetters(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return name;
}

// FNV-1a, of 32 bits.
std::uint32_t numberOf(const std::string& name) {
  std::uint32_t number = 2166136261U;
  for (const char c : name) number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
  return number;
}

// One of 36 hues in three shades, all light enough for black lines.
Color colorOfNumber(std::uint32_t number) {
  constexpr int Hues = 36;
  const double hue = static_cast<double>(number % Hues) * 6.0 / Hues;
  const double lightest = 235.0 - 25.0 * static_cast<double>(number / Hues % 3U);
  const auto channel = [hue, lightest](double shift) {
    const double place = std::fmod(hue + shift, 6.0);
    const double part = std::clamp(std::fabs(place - 3.0) - 1.0, 0.0, 1.0);
    return static_cast<int>(std::lround(lightest * (0.5 + 0.5 * part)));
  };
  return {channel(0.0), channel(4.0), channel(2.0), 1.0};
}

}  // namespace

Color classColor(const std::string& name) {
  if (name.empty()) return NoClass;
  const std::string lower = lowerLetters(name);
  const auto found = knownColors().find(lower);
  return found == knownColors().end() ? colorOfNumber(numberOf(lower)) : found->second;
}

}  // namespace Lumivane::Pictures
