// Writes a scene of the benchmarks and prints its size and its views, each as the options that the
// program lumivane takes.

#include "scene/City.h"
#include "scene/Sphere.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

using Lumivane::Bench::BenchScene;
using Lumivane::Bench::NamedView;
using Lumivane::Bench::Point;

constexpr const char* Usage =
    "Usage: bench_scene city|sphere COUNT [-o FILE] [--seed NUMBER]\n"
    "\n"
    "  city COUNT    a town of COUNT boxes on its ground, with the views air, street and sky\n"
    "  sphere COUNT  a ball of COUNT triangles, with the view air\n"
    "  -o FILE       the scene file to write\n"
    "  --seed N      another town of the same kind\n";

constexpr int LargestCount = 10000000;

template <class Number>
Number numberOf(const std::string& what, const std::string& text, Number least, Number most) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc{} || read.ptr != end || number < least || number > most)
    throw std::invalid_argument(what + ": \"" + text + "\" is not a whole number from " +
                                std::to_string(least) + " to " + std::to_string(most));
  return number;
}

struct Order {
  std::string kind;
  int count = 0;
  std::string file;
  std::uint64_t seed = 1;
};

Order orderOf(const std::vector<std::string>& words) {
  if (words.size() < 2) throw std::invalid_argument("city or sphere is needed, and a COUNT");
  Order order;
  order.kind = words[0];
  order.count = numberOf("COUNT", words[1], 1, LargestCount);
  for (std::size_t i = 2; i < words.size(); i += 2) {
    if (words[i] != "-o" && words[i] != "--seed")
      throw std::invalid_argument("\"" + words[i] + "\" is neither -o nor --seed");
    if (i + 1 == words.size()) throw std::invalid_argument(words[i] + " needs a value");
    if (words[i] == "-o")
      order.file = words[i + 1];
    else
      order.seed = numberOf("--seed", words[i + 1], std::uint64_t{0},
                            std::numeric_limits<std::uint64_t>::max());
  }
  return order;
}

BenchScene sceneOf(const Order& order) {
  if (order.kind == "city") return Lumivane::Bench::city(order.count, order.seed);
  if (order.kind == "sphere") return Lumivane::Bench::sphere(order.count);
  throw std::invalid_argument("\"" + order.kind + "\" is neither city nor sphere");
}

std::ostream& operator<<(std::ostream& out, const Point& point) {
  return out << point.x << ',' << point.y << ',' << point.z;
}

void print(const BenchScene& scene) {
  std::cout << "polygons " << scene.model.faceCount() << '\n';
  for (const NamedView& view : scene.views)
    std::cout << view.name << " --eye " << view.eye << " --forward " << view.forward << " --up "
              << view.up << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Order order = orderOf({argv + 1, argv + argc});
    const BenchScene scene = sceneOf(order);
    if (!order.file.empty()) {
      std::ofstream file(order.file, std::ios::binary);
      file << sceneText(scene.model);
      file.close();
      if (!file) {
        std::cerr << "Error: " << order.file << ": cannot be written\n";
        return EXIT_FAILURE;
      }
    }
    print(scene);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << Usage << "\nError: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
