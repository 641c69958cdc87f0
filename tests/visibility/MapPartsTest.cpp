#include "visibility/MapParts.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

TEST(Link, HoldsAllOfAPiece) {
  const Source crossing = crossingSource(7, 0x7FFFFFFF);
  for (const Source source : {Source{0}, Source{0x7FFFFFFF}, crossing, NoSource, FieldSource})
    for (const bool inner : {false, true})
      for (const bool shared : {false, true}) {
        const bool isEdge = source >= 0 && source != crossing;
        if (!isEdge && (inner || shared)) continue;  // only edges of the scene are
        Link link({1, 2, 3, 4, source, inner, shared});
        EXPECT_EQ(link.from, 1);
        EXPECT_EQ(link.to, 2);
        EXPECT_EQ(link.left, 3);
        EXPECT_EQ(link.right, 4);
        EXPECT_EQ(link.source(), source);
        EXPECT_EQ(link.inner(), inner);
        EXPECT_EQ(link.shared(), shared);
        link.setUnshared();
        EXPECT_EQ(link.source(), source);
        EXPECT_EQ(link.inner(), inner);
        EXPECT_FALSE(link.shared());
      }
  Link foreign({1, 2, 3, 4, 77, false, false, true});
  EXPECT_TRUE(foreign.foreign());
  EXPECT_EQ(foreign.source(), 77);
  foreign.setSource(78, true, true);
  EXPECT_FALSE(foreign.foreign());
  EXPECT_EQ(foreign.source(), 78);
  EXPECT_TRUE(foreign.inner() && foreign.shared());
  EXPECT_EQ(foreign.right, 4);
  EXPECT_LE(sizeof(Link), 24u);
}

// A tile with areas 0 and 2 of one polygon that are one, 1 of the same region and another polygon,
// which is one with them too, and 3 of another region.
TileParts tileOfFourAreas() {
  TileParts tile;
  for (const std::int32_t polygon : {10, 11, 10}) tile.addArea(5, polygon);
  tile.addArea(6, 20);
  tile.areaSets.join(0, 2);
  tile.areaSets.join(1, 2);
  const int a = tile.addVertex(0, 0, 0);
  const int b = tile.addVertex(0, 100, 0);
  tile.pieces.push_back({a, b, 2, 3, 77, false, true});
  return tile;
}

TEST(MapParts, OfTheAreasOfATileThatAreOneOneOfEachPolygonStays) {
  MapParts parts;
  parts.addArea(1, 1);
  parts.addVertex(cubePoint(0, 7, 7));
  TileParts tile = tileOfFourAreas();
  Sides sides;
  tile.addStretch(sides[Left], 0, 50, 0, -1, 2);
  tile.addStretch(sides[Left], 50, 100, -1, 1, 1);
  tile.addStretch(sides[Left], 100, 200, 1, -1, 3);
  const Sides appended = append(parts, tile, sides);

  ASSERT_EQ(parts.areas.size(), 4u);
  EXPECT_EQ(parts.areas[1].polygon, 10);
  EXPECT_EQ(parts.areas[2].polygon, 11);
  EXPECT_EQ(parts.areas[3].polygon, 20);
  EXPECT_EQ(parts.areaSets.find(2), 1);
  EXPECT_EQ(parts.areaSets.find(3), 3);
  EXPECT_EQ(parts.areaSets.find(0), 0);
  ASSERT_EQ(parts.pieces.size(), 1u);
  EXPECT_EQ(parts.pieces[0].from, 1);
  EXPECT_EQ(parts.pieces[0].to, 2);
  EXPECT_EQ(parts.pieces[0].left, 1);
  EXPECT_EQ(parts.pieces[0].right, 3);
  std::vector<int> areas;
  std::vector<int> vertices;
  for (int i = appended[Left].head; i >= 0; i = parts.stretch(i).next) {
    areas.push_back(parts.stretch(i).area);
    vertices.push_back(parts.stretch(i).fromVertex);
  }
  EXPECT_EQ(areas, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(vertices, (std::vector<int>{1, -1, 2}));
  EXPECT_LT(appended[Right].head, 0);
}

TEST(MapParts, PartsOfAnotherThreadFollowInTheirOrder) {
  MapParts other;
  TileParts tile = tileOfFourAreas();
  Sides sides;
  tile.addStretch(sides[Top], 0, 50, 0, 1, 1);
  sides = append(other, tile, sides);
  MapParts parts;
  for (int i = 0; i < 3; ++i) {
    parts.addArea(9, 9);
    parts.addVertex(cubePoint(1, i, i));
  }
  const Sides appended = append(parts, std::move(other), sides);
  ASSERT_EQ(parts.areas.size(), 6u);
  EXPECT_EQ(parts.areas[4].polygon, 11);
  EXPECT_EQ(parts.areaSets.find(4), 3);
  ASSERT_EQ(parts.vertices.size(), 5u);
  EXPECT_EQ(parts.vertexSets.find(4), 4);
  ASSERT_EQ(parts.pieces.size(), 1u);
  EXPECT_EQ(parts.pieces[0].to, 4);
  EXPECT_EQ(parts.pieces[0].right, 5);
  ASSERT_GE(appended[Top].head, 0);
  EXPECT_EQ(parts.stretch(appended[Top].head).area, 4);
  EXPECT_EQ(parts.stretch(appended[Top].head).toVertex, 4);
}

TEST(MapParts, WhatLiesAlongSidesThatAreJoinedIsUsedAgain) {
  MapParts parts;
  for (int round = 0; round < 100; ++round) {
    SideList low;
    SideList high;
    const int a = parts.addArea(1, 1);
    const int b = parts.addArea(round % 2 == 0 ? 1 : 2, 2);
    parts.addStretch(low, {0, 1000, -1, -1, a, -1});
    parts.addStretch(high, {0, 400, -1, -1, b, -1});
    parts.addStretch(high, {400, 1000, -1, -1, a, -1});
    EXPECT_LT(std::max({low.head, high.head, high.tail}), 3) << round;
    stitch(parts, low, high, {1, cubePoint(0, 5, 5), true});
    EXPECT_EQ(parts.areaSets.find(b) == parts.areaSets.find(a), round % 2 == 0);
  }
  EXPECT_EQ(parts.pieces.size(), 50u);
}

}  // namespace
}  // namespace Lumivane::Visibility
