// Writes the page of a shot of many regions: `big_page FILE REGIONS OBJECTS`. The regions are
// hexagons of a curved grid, each over the rim of its neighbours as in a shot of a town.

#include "view/Models.h"

#include <lumivane/measure/VisibleShares.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Lumivane::Test::ShotModel;

constexpr double GoldenAngle = 2.399963229728653;

void addObjects(const ShotModel& model, int count) {
  model.shot->setObjects(new Lumivane::Shot::Objects2d);
  for (int i = 1; i <= count; ++i) {
    auto* object = new Lumivane::Shot::Object2d;
    object->setId("house-" + std::to_string(i));
    model.shot->getObjects()->addObject(object);
  }
}

// Evenly over the disc, from the rim inwards.
void addRegions(const ShotModel& model, int count, int objects) {
  for (int i = 1; i <= 8; ++i)
    model.shot->getBrushes()->addBrush(
        new Lumivane::Base::Brush(255 - 20 * i, 120 + 10 * i, 100 + 15 * (i % 4), 255));
  const double size = 2.4 / std::sqrt(count);
  for (int i = 0; i < count; ++i) {
    const double radius = (1.0 - size) * std::sqrt(1.0 - (i + 0.5) / count);
    const double angle = i * GoldenAngle;
    std::vector<std::array<double, 2>> corners;
    for (int k = 0; k < 6; ++k) {
      const double turn = angle + k * 1.0471975511965976;
      corners.push_back({radius * std::cos(angle) + size * std::cos(turn),
                         radius * std::sin(angle) + size * std::sin(turn)});
    }
    auto* region = model.addRegion(3 + i % 8, 1, corners);
    region->setObjectNumber(1 + i % objects);
    region->setFaceNumber(1 + i / objects);
    region->setSourceRegionNumber(1 + i / objects);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const ShotModel model;
  model.shot->getPens()->getPen(0)->setWidth(0.5);
  const int objects = std::atoi(argv[3]);
  addObjects(model, objects);
  addRegions(model, std::atoi(argv[2]), objects);
  Lumivane::Pictures::HtmlPage page("A town of " + std::string(argv[2]) + " regions");
  page.add(Lumivane::Pictures::VectorPicture(*model.shot),
           Lumivane::Measure::VisibleShares(*model.shot));
  std::ofstream(argv[1], std::ios::binary) << page.text();
  return 0;
}
