// The scenes that are measured are those of the tables: their sizes, and polygons that face out.

#include "scene/City.h"
#include "scene/Sphere.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Bench {
namespace {

Point minus(const Point& a, const Point& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point cross(const Point& a, const Point& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double dot(const Point& a, const Point& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

const Point& pointOf(const Model& model, const Face& face, std::size_t k) {
  return model.points.at(static_cast<std::size_t>(face.points.at(k)) - 1);
}

/// Away from the eye that is to see the face.
Point normalOf(const Model& model, const Face& face) {
  const Point& b = pointOf(model, face, 1);
  return cross(minus(b, pointOf(model, face, 0)), minus(pointOf(model, face, 2), b));
}

Point middleOf(const Model& model, const Thing& thing) {
  Point sum;
  double count = 0.0;
  for (const Face& face : thing.faces) {
    for (std::size_t k = 0; k < face.points.size(); ++k) {
      const Point& p = pointOf(model, face, k);
      sum = {sum.x + p.x, sum.y + p.y, sum.z + p.z};
      count += 1.0;
    }
  }
  return {sum.x / count, sum.y / count, sum.z / count};
}

void expectFacesOut(const Model& model, const Thing& thing) {
  const Point middle = middleOf(model, thing);
  for (const Face& face : thing.faces) {
    const Point out = minus(pointOf(model, face, 0), middle);
    EXPECT_LT(dot(normalOf(model, face), out), 0.0) << thing.id;
  }
}

TEST(City, HasFivePolygonsABoxAndATileALot) {
  EXPECT_EQ(314U, city(50).model.faceCount());
  EXPECT_EQ(1225U, city(200).model.faceCount());
  EXPECT_EQ(6024U, city(1000).model.faceCount());
  EXPECT_EQ(30041U, city(5000).model.faceCount());
}

TEST(City, BoxesFaceOutAndTilesUp) {
  const Model model = city(200).model;
  for (std::size_t i = 1; i < model.things.size(); ++i) expectFacesOut(model, model.things[i]);
  for (const Face& tile : model.things.front().faces) EXPECT_LT(normalOf(model, tile).z, 0.0);
}

TEST(City, BoxesKeepOffTheEdgesOfTheirLots) {
  const Model model = city(200).model;
  for (std::size_t i = 1; i < model.things.size(); ++i) {
    for (const Face& face : model.things[i].faces) {
      for (std::size_t k = 0; k < face.points.size(); ++k) {
        const Point& p = pointOf(model, face, k);
        const double inLotX = std::fmod(p.x, 24.0);
        const double inLotY = std::fmod(p.y, 24.0);
        EXPECT_GT(std::min({inLotX, inLotY, 24.0 - inLotX, 24.0 - inLotY}), 3.0);
      }
    }
  }
}

TEST(City, TheSameSeedGivesTheSameTextAndAnotherAnother) {
  EXPECT_EQ(sceneText(city(20, 7).model), sceneText(city(20, 7).model));
  EXPECT_NE(sceneText(city(20, 7).model), sceneText(city(20, 8).model));
}

TEST(City, TheAirSeesAllOfItAhead) {
  const BenchScene scene = city(500);
  const NamedView& air = scene.views.at(0);
  for (const Point& p : scene.model.points) EXPECT_GT(dot(minus(p, air.eye), air.forward), 0.0);
}

TEST(Sphere, HasAsManyTrianglesAsAskedForAllFacingOut) {
  for (const int count : {18, 392, 5000}) {
    const Model model = sphere(count).model;
    EXPECT_EQ(static_cast<std::size_t>(count), model.faceCount());
    expectFacesOut(model, model.things.front());
  }
  EXPECT_EQ(20000U, sphere(20000).model.faceCount());
}

TEST(Sphere, RefusesNumbersThatMakeNoBall) {
  EXPECT_THROW(sphere(7), std::invalid_argument);
  EXPECT_THROW(sphere(0), std::invalid_argument);
  EXPECT_THROW(sphere(2), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Bench
