#include "support/JsonText.h"

#include <lumivane/base/Scales.h>

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

Scale* named(const char* name) {
  auto* scale = new Scale();
  scale->setName(name);
  return scale;
}

TEST(Scales, FollowTheListPattern) {
  Scales list;
  list.addScale(named("b"));
  list.insertScale(0, named("a"));
  list.insertScale(2, named("c"));
  EXPECT_EQ("b", list.getScale(1)->getName());

  const std::unique_ptr<Scale> first(list.getScale(0)), last(list.getScale(2));
  list.removeScale(0);
  list.removeScale(last.get());
  EXPECT_EQ("[{\"Name\":\"b\",\"Items\":[]}]", written(list));
  list.clear();
  EXPECT_EQ("[]", written(list));
}

TEST(Scales, NullAndDuplicatesAreStored) {
  Scales list;
  auto* scale = named("a");
  list.addScale(scale);
  list.addScale(scale);
  list.addScale(nullptr);
  EXPECT_EQ(3u, list.getScales()->size());
}

TEST(Scales, BadPositionsThrow) {
  Scales list;
  const auto scale = std::make_unique<Scale>();
  EXPECT_THROW(list.getScale(0), std::out_of_range);
  EXPECT_THROW(list.getScale(-2), std::out_of_range);
  EXPECT_THROW(list.removeScale(0), std::out_of_range);
  EXPECT_THROW(list.insertScale(1, scale.get()), std::out_of_range);
}

TEST(Scales, SetterStoresThePointerAndKeepsTheOldVector) {
  Scales list;
  list.addScale(named("a"));
  const std::unique_ptr<std::vector<Scale*>> old(list.getScales());
  list.setScales(new std::vector<Scale*>());
  ASSERT_EQ(1u, old->size());
  const std::unique_ptr<Scale> element(old->front());
  EXPECT_EQ("a", element->getName());
}

TEST(Scales, ReadAnEntryOfTheWrongShapeAsADefaultScale) {
  Scales list;
  read(list, R"([{"Name":"S","Items":[[0,0,0,255],[1,255,0,0]]},3])");
  EXPECT_EQ("[{\"Name\":\"S\",\"Items\":[[0,0,0,255],[1,255,0,0]]},{\"Name\":\"\",\"Items\":[]}]",
            written(list));
}

}  // namespace
}  // namespace Lumivane::Base
