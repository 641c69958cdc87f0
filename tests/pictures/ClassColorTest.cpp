#include "pictures/ClassColor.h"

#include <set>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace Lumivane::Pictures {
namespace {

using Key = std::tuple<int, int, int>;

Key keyOf(const std::string& name) {
  const VectorPicture::Color color = classColor(name);
  return {color.red, color.green, color.blue};
}

TEST(ClassColor, WhatCitiesAreMadeOfHasColorsOfItsOwn) {
  EXPECT_EQ(Key(190, 96, 78), keyOf("Roof"));
  EXPECT_EQ(keyOf("roof"), keyOf("ROOF"));
  std::set<Key> keys;
  for (const char* const name : {"Roof", "Wall", "Ground", "Window", "Door", "Road", "Building"})
    keys.insert(keyOf(name));
  EXPECT_EQ(7U, keys.size());
}

TEST(ClassColor, OtherNamesHaveOneThatFollowsFromThemAlone) {
  EXPECT_EQ(keyOf("brick"), keyOf("Brick"));
  std::set<Key> keys;
  for (int i = 0; i < 100; ++i) {
    const VectorPicture::Color color = classColor("class " + std::to_string(i));
    for (const int channel : {color.red, color.green, color.blue}) {
      EXPECT_LE(80, channel);
      EXPECT_GE(255, channel);
    }
    keys.insert(keyOf("class " + std::to_string(i)));
  }
  EXPECT_LT(50U, keys.size());
}

TEST(ClassColor, NoNameIsGrey) { EXPECT_EQ(Key(206, 206, 206), keyOf("")); }

}  // namespace
}  // namespace Lumivane::Pictures
