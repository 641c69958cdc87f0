// Which polygons an import puts together, and which edges it hides.

#include "importers/ImportedRegions.h"
#include "support/Capture.h"
#include "support/NoisyOutlines.h"

#include <cmath>
#include <map>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::ImportedScene;
using Importers::ImportOptions;
using Kernel::Vec3;

constexpr double Pi = 3.14159265358979323846;

// An OBJ text made vertex by vertex; a vertex at a known place is used again.
class ObjText {
 public:
  int vertex(Vec3 v) {
    const auto [place, isNew] =
        numbers.emplace(std::array<double, 3>{v.x, v.y, v.z}, static_cast<int>(numbers.size()) + 1);
    if (isNew) vertices << "v " << v.x << " " << v.y << " " << v.z << "\n";
    return place->second;
  }

  void face(const std::vector<Vec3>& corners) {
    std::string line = "f";
    for (const Vec3& corner : corners) line += " " + std::to_string(vertex(corner));
    faces << line << "\n";
  }

  std::string text() const { return vertices.str() + faces.str(); }

  ObjText() { vertices.precision(17); }

 private:
  std::map<std::array<double, 3>, int> numbers;
  std::ostringstream vertices;
  std::ostringstream faces;
};

double drawnLength(const ImportedScene& imported) {
  double sum = 0.0;
  for (const ImportedRegion& region : importedRegions(imported)) sum += region.drawnLength();
  return sum;
}

double area(const ImportedScene& imported) {
  double sum = 0.0;
  for (const ImportedRegion& region : importedRegions(imported)) sum += region.area();
  return sum;
}

// A ball of quadrilaterals around the axis, its poles of triangles.
std::string ball(int rings, int sectors) {
  ObjText obj;
  const auto at = [&](int ring, int sector) -> Vec3 {
    const double theta = Pi * ring / rings;
    const double phi = 2.0 * Pi * (sector % sectors) / sectors;
    if (ring == 0 || ring == rings) return {0.0, 0.0, ring == 0 ? 1.0 : -1.0};
    return {std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)};
  };
  for (int r = 0; r < rings; ++r)
    for (int s = 0; s < sectors; ++s) {
      if (r > 0) obj.face({at(r, s), at(r + 1, s), at(r, s + 1)});
      if (r < rings - 1) obj.face({at(r, s + 1), at(r + 1, s), at(r + 1, s + 1)});
    }
  return obj.text();
}

struct Rotation {
  Vec3 x, y, z;

  explicit Rotation(std::mt19937_64& random) {
    std::normal_distribution<double> normal;
    const auto any = [&] { return Vec3{normal(random), normal(random), normal(random)}; };
    x = Kernel::normalise(any()).direction;
    y = Kernel::normalise(Kernel::cross(x, any())).direction;
    z = Kernel::cross(x, y);
  }
  Vec3 operator()(Vec3 v) const { return v.x * x + v.y * y + v.z * z; }
};

// One side of a box, from `origin` along `u` and `v`, cut into cells and each into two triangles.
void addSide(ObjText& obj, const Rotation& turn, Vec3 origin, Vec3 u, Vec3 v, int cells,
             std::mt19937_64& random) {
  const auto at = [&](int i, int j) {
    const double step = 1.0 / cells;
    return turn(origin + (i * step) * u + (j * step) * v);
  };
  for (int i = 0; i < cells; ++i)
    for (int j = 0; j < cells; ++j) {
      const Vec3 a = at(i, j), b = at(i + 1, j), c = at(i + 1, j + 1), d = at(i, j + 1);
      if (random() % 2 == 0) {
        obj.face({a, b, c});
        obj.face({a, c, d});
      } else {
        obj.face({a, b, d});
        obj.face({b, c, d});
      }
    }
}

std::string box(Vec3 size, int cells, std::mt19937_64& random) {
  ObjText obj;
  const Rotation turn(random);
  const Vec3 x{size.x, 0, 0}, y{0, size.y, 0}, z{0, 0, size.z}, zero;
  addSide(obj, turn, zero, y, x, cells, random);
  addSide(obj, turn, z, x, y, cells, random);
  addSide(obj, turn, zero, x, z, cells, random);
  addSide(obj, turn, y, z, x, cells, random);
  addSide(obj, turn, zero, z, y, cells, random);
  addSide(obj, turn, x, y, z, cells, random);
  return obj.text();
}

TEST(ImporterFacesProperty, TriangulatedBoxHasSixFacesAndTheEdgesOfABox) {
  std::mt19937_64 random(20240611);
  std::uniform_real_distribution<double> length(0.5, 20.0);
  for (int i = 0; i < 60; ++i) {
    SCOPED_TRACE(i);
    const Vec3 size{length(random), length(random), length(random)};
    const ImportedScene imported = importText("b.obj", box(size, 1 + i % 5, random));
    const double perimeter = 4.0 * (size.x + size.y + size.z);
    EXPECT_EQ(6u, imported.report.faces);
    // Each edge of the box belongs to two faces.
    EXPECT_NEAR(2.0 * perimeter, drawnLength(imported), 1e-4 * perimeter);
    const double surface = 2.0 * (size.x * size.y + size.y * size.z + size.z * size.x);
    EXPECT_NEAR(surface, area(imported), 1e-4 * surface);
  }
}

TEST(ImporterFacesProperty, NoFaceOfACurvedMeshLeavesItsPlane) {
  for (const int rings : {8, 40, 160}) {
    SCOPED_TRACE(rings);
    const ImportOptions options;
    const ImportedScene imported = importText("ball.obj", ball(rings, 2 * rings), options);
    std::map<int, std::vector<ImportedRegion>> faces;
    for (ImportedRegion& region : importedRegions(imported))
      faces[region.face].push_back(std::move(region));
    const double limit = options.flatDistance * 2.0 * std::sqrt(3.0) * 1.001;
    for (const auto& [number, regions] : faces) {
      // The plane of some region of the face has all corners near it.
      double least = 1.0;
      for (const ImportedRegion& plane : regions) {
        const Vec3 normal = (1.0 / plane.area()) * plane.areaVector();
        double greatest = 0.0;
        for (const ImportedRegion& region : regions)
          for (const Vec3& corner : region.corners)
            greatest = std::max(greatest, std::abs(Kernel::dot(corner - plane.corners[0], normal)));
        least = std::min(least, greatest);
      }
      EXPECT_LE(least, limit) << "face " << number;
    }
  }
}

TEST(ImporterFaces, CoarseBallKeepsItsFacets) {
  // Of the two triangles of a quadrilateral, which is flat, one face each.
  const ImportedScene imported = importText("ball.obj", ball(8, 16));
  EXPECT_EQ(16u * 8u, imported.report.faces);
}

TEST(ImporterFaces, BackToBackTrianglesAreNoNeighbours) {
  const ImportedScene imported =
      importText("t.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 1 3 2\n");
  EXPECT_EQ(2u, imported.report.faces);
}

TEST(ImporterFaces, OtherColoursAndObjectsAreNotJoined) {
  const std::string square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\n";
  EXPECT_EQ(1u, importText("t.obj", square + "f 1 3 4\n").report.faces);
  EXPECT_EQ(2u, importText("t.obj", square + "usemtl other\nf 1 3 4\n").report.faces);
  EXPECT_EQ(2u, importText("t.obj", square + "g other\nf 1 3 4\n").report.faces);
}

TEST(ImporterFaces, JoiningCanBeTurnedOff) {
  ImportOptions options;
  options.flatAngleDegrees = -1.0;
  EXPECT_EQ(2u,
            importText("t.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 1 3 4\n", options)
                .report.faces);
}

TEST(ImporterFaces, EdgesThatBendLessThanTheCreaseAreHidden) {
  // A ridge of 20 degrees between two squares.
  const double drop = std::tan(20.0 * Pi / 180.0);
  ObjText obj;
  obj.face({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
  obj.face({{1, 0, 0}, {2, 0, -drop}, {2, 1, -drop}, {1, 1, 0}});
  const double outline = 2.0 + 2.0 * (2.0 + std::hypot(1.0, drop)) - 2.0;
  ImportOptions options;
  options.creaseDegrees = 19.0;
  EXPECT_NEAR(outline + 2.0, drawnLength(importText("r.obj", obj.text(), options)), 1e-4);
  options.creaseDegrees = 21.0;
  const ImportedScene smooth = importText("r.obj", obj.text(), options);
  EXPECT_NEAR(outline, drawnLength(smooth), 1e-4);
  EXPECT_EQ(2u, smooth.report.faces);
}

TEST(ImporterFaces, PolygonThatIsNotFlatIsCutIntoTriangles) {
  const ImportedScene imported =
      importText("q.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0.5\nv 0 1 0\nf 1 2 3 4\n");
  EXPECT_EQ(1u, imported.report.splitPolygons);
  EXPECT_EQ(2u, imported.report.regions);
  EXPECT_EQ(2u, imported.report.faces);
  for (const ImportedRegion& region : importedRegions(imported))
    EXPECT_LT(region.areaVector().z, 0.0);
}

TEST(ImporterFaces, ConcavePolygonOfMoreThanFourCornersIsCutAtDockingEdges) {
  const ImportedScene imported =
      importText("l.obj", "v 0 0 0\nv 2 0 0\nv 2 1 0\nv 1 1 0\nv 1 2 0\nv 0 2 0\nf 1 2 3 4 5 6\n");
  EXPECT_EQ(4u, imported.report.regions);
  EXPECT_EQ(1u, imported.report.faces);
  EXPECT_EQ(1u, imported.report.splitPolygons);
  EXPECT_DOUBLE_EQ(3.0, area(imported));
  EXPECT_DOUBLE_EQ(8.0, drawnLength(imported));
}

TEST(ImporterFaces, ConvexFlatPolygonStaysOneRegion) {
  const ImportedScene imported =
      importText("c.obj", "v 0 0 0\nv 2 0 0\nv 3 1 0\nv 2 2 0\nv 0 2 0\nf 1 2 3 4 5\n");
  EXPECT_EQ(1u, imported.report.regions);
  EXPECT_EQ(0u, imported.report.splitPolygons);
}

TEST(ImporterFaces, QuadThatBendsByTwoMillimetresIsCutHoweverLargeItsModel) {
  const std::string quad = "v 0 0 0\nv 10 0 0\nv 10 8 0.002\nv 0 8 0\nf 1 2 3 4\n";
  for (const std::string town : {"", "v 500 0 0\nv 500 10 0\nv 500 10 9\nf 5 6 7\n"}) {
    const ImportedScene imported = importText("q.obj", quad + town);
    EXPECT_EQ(1u, imported.report.splitPolygons);
    const double ownLength = town.empty() ? 0.0 : 10.0 + 9.0 + std::hypot(10.0, 9.0);
    EXPECT_NEAR(36.0 + ownLength, drawnLength(imported), 1e-3);
  }
}

TEST(ImporterFaces, CutsOfAPolygonThatBendsMuchAreNotDrawnEither) {
  const ImportedScene imported =
      importText("q.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0.5\nv 0 1 0\nf 1 2 3 4\n");
  EXPECT_NEAR(2.0 + 2.0 * std::hypot(1.0, 0.5), drawnLength(imported), 1e-6);
}

// A roof with a shape that a shot loses if it is one region.
TEST(ImporterFacesProperty, NoImportedOutlineVanishesHoweverNoisy) {
  NoisyOutlines outlines(20261123);
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    const Outline3d outline = outlines.next();
    ObjText obj;
    obj.face(outline);
    ImportedScene imported = importText("roof.obj", obj.text());
    Outline3d seen(outline.rbegin(), outline.rend());  // a scene winds the other way
    const Session::ViewSettings view = eyeInFrontOf(seen, 15.0);
    double shown = 0.0;
    capturedStdout([&] { shown = shownArea(imported.scene.take(view)); });
    EXPECT_NEAR(1.0, shown / pictureArea(outline, view), 0.02);
    double length = 0.0;
    for (size_t k = 0; k < outline.size(); ++k)
      length += Kernel::distance(outline[k], outline[(k + 1) % outline.size()]);
    EXPECT_NEAR(length, drawnLength(imported), 1e-3 * length);
  }
}

TEST(ImporterFaces, PolygonsWithoutAreaAreCountedAndLeftOut) {
  const ImportedScene imported =
      importText("d.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 2 0 0\nf 1 2 3\nf 1 1 2\nf 1 2 4\n");
  EXPECT_EQ(1u, imported.report.regions);
  EXPECT_EQ(2u, imported.report.emptyPolygons);
  ASSERT_EQ(1u, imported.report.warnings.size());
  EXPECT_EQ("2 polygons without area are left out", imported.report.warnings[0]);
}

TEST(ImporterFaces, RepeatedPointsOfAnOutlineDoNoHarm) {
  const ImportedScene imported =
      importText("r.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 1 0 0\nf 1 2 5 3 4 1\n");
  EXPECT_EQ(4u, importedRegions(imported).at(0).corners.size());
}

TEST(ImporterFaces, ShortEdgesAreWarnedOf) {
  const ImportedScene imported = importText("s.obj", "v 0 0 0\nv 0.00005 0 0\nv 0 1 0\nf 1 2 3\n");
  ASSERT_EQ(1u, imported.report.warnings.size());
  EXPECT_NE(std::string::npos, imported.report.warnings[0].find("shorter than 0.0001"));
}

TEST(ImporterFacesProperty, HolesAnywhereKeepTheAreaAndTheOutline) {
  std::mt19937_64 random(20240612);
  std::uniform_real_distribution<double> share(0.1, 0.9);
  std::uniform_real_distribution<double> length(0.01, 300.0);
  for (int i = 0; i < 60; ++i) {
    SCOPED_TRACE(i);
    const double w = length(random), h = length(random);
    double x0 = share(random) * w, x1 = share(random) * w;
    double z0 = share(random) * h, z1 = share(random) * h;
    if (x0 > x1) std::swap(x0, x1);
    if (z0 > z1) std::swap(z0, z1);
    if (x1 - x0 < 0.05 * w || z1 - z0 < 0.05 * h) continue;
    const Rotation turn(random);
    std::ostringstream text;
    text.precision(12);
    text << R"({"type":"CityJSON","version":"2.0","CityObjects":{"w":{"type":"Road","geometry":[)"
         << R"({"type":"MultiSurface","lod":"1","boundaries":[[[0,1,2,3],[4,5,6,7]]]}]}},)"
         << R"("vertices":[)";
    // The hole runs either way round: both are read as a hole.
    std::vector<Vec3> hole = {{x0, 0, z0}, {x1, 0, z0}, {x1, 0, z1}, {x0, 0, z1}};
    if (i % 2 == 0) std::reverse(hole.begin(), hole.end());
    std::vector<Vec3> points = {{0, 0, 0}, {w, 0, 0}, {w, 0, h}, {0, 0, h}};
    points.insert(points.end(), hole.begin(), hole.end());
    for (size_t p = 0; p < points.size(); ++p) {
      const Vec3 v = turn(points[p]);
      text << (p > 0 ? "," : "") << "[" << v.x << "," << v.y << "," << v.z << "]";
    }
    text << "]}";
    const ImportedScene imported = importText("w.city.json", text.str());
    const double wanted = w * h - (x1 - x0) * (z1 - z0);
    const double outline = 2.0 * (w + h) + 2.0 * (x1 - x0 + z1 - z0);
    EXPECT_EQ(1u, imported.report.faces);
    EXPECT_NEAR(wanted, area(imported), 1e-4 * w * h + 1e-5 * (w + h) * (w + h));
    EXPECT_NEAR(outline, drawnLength(imported), 1e-4 * outline);
  }
}

}  // namespace
}  // namespace Lumivane::Test
