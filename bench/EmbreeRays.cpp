// The exact map of a view beside one ray for each pixel of a picture of it: processor time on one
// core, index and acceleration structure built, in one run. Rays hit polygons from both sides,
// which is the cheaper way for Embree. They are cast one by one, as a program that asks for single
// directions does, and in packets of eight neighbours, which is the quickest that Embree offers.

#include "scene/City.h"
#include "truth/LongVector.h"
#include "truth/Pieces.h"
#include "truth/SceneArrays.h"
#include "truth/SceneFiles.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <limits>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <embree3/rtcore.h>
#include <sys/resource.h>

namespace {

using namespace Lumivane::Truth;
using Lumivane::Visibility::LookOptions;
using Lumivane::Visibility::PolygonScene;
using Lumivane::Visibility::SceneIndex;
using Lumivane::Visibility::Vector;
using Lumivane::Visibility::VisibleMap;

constexpr const char* Usage =
    "Usage: bench_embree_rays [city:BOXES|FILE]... [--runs N]\n"
    "\n"
    "  city:BOXES  a town with the views street, sky and air (12500, 50000 and 200000 by default)\n"
    "  FILE        a scene, mesh or city model, seen from five eyes at street level and one above\n"
    "  --runs N    the least of so many runs counts (3)\n";

constexpr int Pixels = 1024;

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

double wallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double megabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

struct NamedEye {
  std::string name;
  Vector eye;
  Vector forward;
  Vector up;
};

/// The triangles of a scene in Embree.
class RayScene {
 public:
  explicit RayScene(const PolygonScene& scene)
      : device(rtcNewDevice("threads=1")), rays(rtcNewScene(device)) {
    const std::vector<std::array<unsigned, 3>> triangles = trianglesOf(scene);
    RTCGeometry mesh = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* points = static_cast<float*>(rtcSetNewGeometryBuffer(mesh, RTC_BUFFER_TYPE_VERTEX, 0,
                                                               RTC_FORMAT_FLOAT3, 3 * sizeof(float),
                                                               scene.points.size()));
    for (const Vector& point : scene.points)
      for (const double coordinate : point) *points++ = static_cast<float>(coordinate);
    auto* corners = static_cast<unsigned*>(rtcSetNewGeometryBuffer(
        mesh, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(unsigned), triangles.size()));
    for (const auto& triangle : triangles)
      for (const unsigned corner : triangle) *corners++ = corner;
    rtcCommitGeometry(mesh);
    rtcAttachGeometry(rays, mesh);
    rtcReleaseGeometry(mesh);
    rtcSetSceneBuildQuality(rays, RTC_BUILD_QUALITY_HIGH);
    rtcCommitScene(rays);
  }
  RayScene(const RayScene&) = delete;
  RayScene& operator=(const RayScene&) = delete;
  ~RayScene() {
    rtcReleaseScene(rays);
    rtcReleaseDevice(device);
  }

  /// Casts all rays; \return how many hit something.
  std::size_t cast(const Vector& eye, const std::vector<std::array<float, 3>>& directions) const {
    constexpr std::size_t Packet = 8;
    alignas(32) const std::array<int, Packet> valid{-1, -1, -1, -1, -1, -1, -1, -1};
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
    std::size_t hits = 0;
    for (std::size_t i = 0; i + Packet <= directions.size(); i += Packet) {
      alignas(32) RTCRayHit8 packet;
      for (std::size_t k = 0; k < Packet; ++k) {
        packet.ray.org_x[k] = static_cast<float>(eye[0]);
        packet.ray.org_y[k] = static_cast<float>(eye[1]);
        packet.ray.org_z[k] = static_cast<float>(eye[2]);
        packet.ray.dir_x[k] = directions[i + k][0];
        packet.ray.dir_y[k] = directions[i + k][1];
        packet.ray.dir_z[k] = directions[i + k][2];
        packet.ray.tnear[k] = 0.0F;
        packet.ray.tfar[k] = std::numeric_limits<float>::infinity();
        packet.ray.time[k] = 0.0F;
        packet.ray.mask[k] = ~0U;
        packet.ray.id[k] = 0;
        packet.ray.flags[k] = 0;
        packet.hit.geomID[k] = RTC_INVALID_GEOMETRY_ID;
        packet.hit.instID[0][k] = RTC_INVALID_GEOMETRY_ID;
      }
      rtcIntersect8(valid.data(), rays, &context, &packet);
      for (std::size_t k = 0; k < Packet; ++k)
        if (packet.hit.geomID[k] != RTC_INVALID_GEOMETRY_ID) ++hits;
    }
    return hits;
  }

  /// The same, ray by ray.
  std::size_t castSingly(const Vector& eye,
                         const std::vector<std::array<float, 3>>& directions) const {
    std::size_t hits = 0;
    for (const std::array<float, 3>& direction : directions)
      if (std::isfinite(distance(eye, {direction[0], direction[1], direction[2]}))) ++hits;
    return hits;
  }

  /// How far a single ray goes; infinity if it hits nothing.
  double distance(const Vector& eye, const Vector& direction) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit ray{};
    ray.ray.org_x = static_cast<float>(eye[0]);
    ray.ray.org_y = static_cast<float>(eye[1]);
    ray.ray.org_z = static_cast<float>(eye[2]);
    ray.ray.dir_x = static_cast<float>(direction[0]);
    ray.ray.dir_y = static_cast<float>(direction[1]);
    ray.ray.dir_z = static_cast<float>(direction[2]);
    ray.ray.tfar = std::numeric_limits<float>::infinity();
    ray.ray.mask = ~0U;
    ray.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(rays, &context, &ray);
    return static_cast<double>(ray.ray.tfar);
  }

 private:
  static std::vector<std::array<unsigned, 3>> trianglesOf(const PolygonScene& scene) {
    std::vector<std::array<unsigned, 3>> triangles;
    for (const Piece& piece : piecesOf(scene, {}).list) {
      std::vector<LongVector> corners;
      for (const int corner : piece.corners)
        corners.push_back(wide(scene.points[static_cast<std::size_t>(corner)]));
      for (const std::vector<int>& triangle : clipEars(corners, piece.normal)) {
        const auto corner = [&](std::size_t i) {
          return static_cast<unsigned>(piece.corners[static_cast<std::size_t>(triangle[i])]);
        };
        triangles.push_back({corner(0), corner(1), corner(2)});
      }
    }
    return triangles;
  }

  RTCDevice device;
  RTCScene rays;
};

/// The middles of the pixels of the equirectangular picture of the hemisphere, in blocks of 4 by 2,
/// so that the rays of a packet are near each other.
std::vector<std::array<float, 3>> pixelDirections(const NamedEye& eye) {
  const LongVector forward = unit(wide(eye.forward));
  const LongVector right = unit(cross(forward, wide(eye.up)));
  const LongVector up = cross(right, forward);
  std::vector<std::array<float, 3>> directions;
  directions.reserve(static_cast<std::size_t>(Pixels) * Pixels);
  const auto angle = [](int pixel) { return Pi * ((pixel + 0.5L) / Pixels - 0.5L); };
  for (int row = 0; row < Pixels; row += 2)
    for (int column = 0; column < Pixels; column += 4)
      for (int k = 0; k < 8; ++k) {
        const Real azimuth = angle(column + k % 4);
        const Real elevation = angle(row + k / 4);
        const LongVector d = forward * (std::cos(elevation) * std::cos(azimuth)) +
                             right * (std::cos(elevation) * std::sin(azimuth)) +
                             up * std::sin(elevation);
        directions.push_back(
            {static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z)});
      }
  return directions;
}

template <class Work>
double least(int runs, double (*clock)(), Work work) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < runs; ++i) {
    const double start = clock();
    work();
    best = std::min(best, clock() - start);
  }
  return best;
}

class Bench {
 public:
  explicit Bench(int newRuns) : runs(newRuns) {
    std::printf(
        "| scene | faces | view | cells | faces seen | map ms | rays ms | map / rays | "
        "packets ms | map / packets | "
        "two threads, wall ms | times one |\n"
        "| --- | ---: | --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |\n");
  }

  void measure(const std::string& name, const PolygonScene& scene,
               const std::vector<NamedEye>& eyes) {
    const double before = megabytes();
    const double start = processorSeconds();
    const SceneIndex index(scene);
    const double indexSeconds = processorSeconds() - start;
    const double indexMegabytes = megabytes() - before;
    const RayScene rays(scene);
    for (const NamedEye& eye : eyes.empty() ? streetEyes(scene, rays) : eyes)
      row(name, scene, index, rays, eye);
    notes.push_back(name + ": index " + std::to_string(indexSeconds) + " s, peak memory grew by " +
                    std::to_string(static_cast<int>(indexMegabytes)) + " MB");
  }

  void printNotes() const {
    std::printf("\n");
    for (const std::string& note : notes) std::printf("%s\n", note.c_str());
  }

 private:
  void row(const std::string& name, const PolygonScene& scene, const SceneIndex& index,
           const RayScene& rays, const NamedEye& eye) const {
    LookOptions options;
    options.forward = eye.forward;
    options.up = eye.up;
    VisibleMap map;
    const double one = least(runs, processorSeconds, [&] { map = index.look(eye.eye, options); });
    const double oneWall = least(runs, wallSeconds, [&] { map = index.look(eye.eye, options); });
    options.threads = 2;
    const double two = least(runs, wallSeconds, [&] { map = index.look(eye.eye, options); });
    const std::vector<std::array<float, 3>> directions = pixelDirections(eye);
    std::size_t hits = 0;
    std::size_t singleHits = 0;
    const double cast =
        least(runs, processorSeconds, [&] { hits = rays.cast(eye.eye, directions); });
    const double singly =
        least(runs, processorSeconds, [&] { singleHits = rays.castSingly(eye.eye, directions); });
    const auto more = static_cast<double>(std::max(hits, singleHits));
    if (hits == 0 || static_cast<double>(std::min(hits, singleHits)) < 0.999 * more)
      throw std::runtime_error("packets and single rays do not hit the same");
    std::set<std::pair<int, int>> seen;
    for (const VisibleMap::Cell& cell : map.cells)
      if (cell.label.object > 0) seen.insert({cell.label.object, cell.label.region});
    std::printf("| %s | %zu | %s | %zu | %zu | %.1f | %.1f | %.2f | %.1f | %.2f | %.1f | %.2f |\n",
                name.c_str(), scene.offsets.size() - 1, eye.name.c_str(), map.cells.size(),
                seen.size(), 1e3 * one, 1e3 * singly, one / singly, 1e3 * cast, one / cast,
                1e3 * two, oneWall / two);
    std::fflush(stdout);
  }

  /// Walkers on the lowest ground, and an eye above the middle.
  static std::vector<NamedEye> streetEyes(const PolygonScene& scene, const RayScene& rays) {
    Vector low = scene.points.front();
    Vector high = low;
    for (const Vector& point : scene.points)
      for (std::size_t i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], point[i]);
        high[i] = std::max(high[i], point[i]);
      }
    std::mt19937_64 engine(7);
    const auto between = [&](double from, double to) {
      return from + (to - from) * static_cast<double>(engine() >> 11U) * 0x1.0p-53;
    };
    std::vector<Vector> grounds;
    while (grounds.size() < 60) {
      const Vector above{between(0.7 * low[0] + 0.3 * high[0], 0.3 * low[0] + 0.7 * high[0]),
                         between(0.7 * low[1] + 0.3 * high[1], 0.3 * low[1] + 0.7 * high[1]),
                         high[2] + 1.0};
      const double down = rays.distance(above, {0, 0, -1});
      if (std::isfinite(down)) grounds.push_back({above[0], above[1], above[2] - down});
    }
    std::nth_element(grounds.begin(), grounds.begin() + 5, grounds.end(),
                     [](const Vector& a, const Vector& b) { return a[2] < b[2]; });
    std::vector<NamedEye> eyes;
    for (std::size_t i = 0; i < 5; ++i) {
      const double turn = between(0.0, 6.28);
      eyes.push_back({"street " + std::to_string(i + 1),
                      {grounds[i][0], grounds[i][1], grounds[i][2] + 1.7},
                      {std::cos(turn), std::sin(turn), 0},
                      {0, 0, 1}});
    }
    eyes.push_back({"sky", eyes.front().eye, {0, 0, 1}, {1, 0, 0}});
    eyes.push_back({"air",
                    {0.5 * (low[0] + high[0]), 0.5 * (low[1] + high[1]), high[2] + 80.0},
                    {0.3, 0.2, -1.0},
                    {0, 0, 1}});
    return eyes;
  }

  int runs;
  std::vector<std::string> notes;
};

PolygonScene arraysOfModel(const Lumivane::Bench::Model& model) {
  PolygonScene scene;
  scene.offsets = {0};
  for (const auto& point : model.points) scene.points.push_back({point.x, point.y, point.z});
  int object = 0;
  for (const auto& thing : model.things) {
    ++object;
    int region = 0;
    for (const auto& face : thing.faces) {
      for (const int point : face.points) scene.corners.push_back(point - 1);
      scene.offsets.push_back(scene.corners.size());
      ++region;
      scene.labels.push_back({object, region, region});
    }
    scene.objectIds.push_back(thing.id);
  }
  return scene;
}

void measureTown(Bench& bench, int boxes) {
  const Lumivane::Bench::BenchScene town = Lumivane::Bench::city(boxes);
  std::vector<NamedEye> eyes;
  for (const auto& view : town.views)
    eyes.push_back({view.name,
                    {view.eye.x, view.eye.y, view.eye.z},
                    {view.forward.x, view.forward.y, view.forward.z},
                    {view.up.x, view.up.y, view.up.z}});
  bench.measure("town of " + std::to_string(boxes), arraysOfModel(town.model), eyes);
}

void measureFile(Bench& bench, const std::string& path) {
  bench.measure(nameOfFile(path), arraysOf(sceneOfFile(path).scene()), {});
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::vector<std::string> words(argv + 1, argv + argc);
    int runs = 3;
    const auto option = std::find(words.begin(), words.end(), "--runs");
    if (option != words.end()) {
      if (option + 1 == words.end()) throw std::invalid_argument("--runs needs a number");
      runs = std::max(1, std::stoi(*(option + 1)));
      words.erase(option, option + 2);
    }
    if (words.empty())
      words = {LUMIVANE_SCENES "/models/delft.city.json", "city:12500", "city:50000",
               "city:200000"};
    Bench bench(runs);
    for (const std::string& word : words)
      if (word.rfind("city:", 0) == 0)
        measureTown(bench, std::stoi(word.substr(5)));
      else
        measureFile(bench, word);
    bench.printNotes();
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << Usage << "\nError: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
