#include <lumivane/utils/Aliases.h>

#include <gtest/gtest.h>

namespace Lumivane::Utils {
namespace {

struct Key {
  const std::string& constant;
  const char* literal;
};

TEST(Aliases, HoldTheKeysOfTheDocuments) {
  const Key keys[] = {{Aliases::BRUSHES, "Brushes"},
                      {Aliases::BRUSH, "Brush"},
                      {Aliases::PENS, "Pens"},
                      {Aliases::PEN, "Pen"},
                      {Aliases::POINTS, "Points"},
                      {Aliases::OBJECTS, "Objects"},
                      {Aliases::OBJECT, "Object"},
                      {Aliases::PROPERTIES, "Properties"},
                      {Aliases::SCALES, "Scales"},
                      {Aliases::REGIONS, "Regions"},
                      {Aliases::SOURCE_REGION, "SourceRegion"},
                      {Aliases::NORMAL, "Normal"},
                      {Aliases::VALUES, "Values"},
                      {Aliases::ID, "Id"},
                      {Aliases::PARTS_COUNT, "PartsCount"},
                      {Aliases::PARTS, "Parts"},
                      {Aliases::FACES, "Faces"},
                      {Aliases::FACE, "Face"},
                      {Aliases::OVERLAYS, "Overlays"},
                      {Aliases::DOCKING_EDGES, "DockingEdges"},
                      {Aliases::ITEMS, "Items"},
                      {Aliases::NAME, "Name"},
                      {Aliases::POSITION, "Position"},
                      {Aliases::DIRECTION, "Direction"},
                      {Aliases::VIEW_UP, "ViewUp"},
                      {Aliases::INTERIOR_COLOR, "InteriorColor"},
                      {Aliases::D1, "D1"},
                      {Aliases::D2, "D2"},
                      {Aliases::CAMERA, "Camera"}};
  for (const Key& key : keys) EXPECT_EQ(key.literal, key.constant);
}

}  // namespace
}  // namespace Lumivane::Utils
