#pragma once

#include "ExactScene.h"
#include "Options.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/VisibleMap.h>

#include <string>

namespace Lumivane::Host {

/// Where an eye is from which the picture shows what is not there.
struct EyePlace {
  bool isInside = false;       ///< inside a body
  bool isUnderGround = false;  ///< under the ground
};

/// What a page to print is of; all of it is borrowed.
struct ReportedLook {
  const Visibility::VisibleMap& map;
  const Visibility::MapShares& shares;
  const Pictures::MapColors& colors;
  const Pictures::MapPictureOptions& picture;
  EyePlace place;
};

/// Fails if the sun hours of the page are asked for in part, or without a page. \throws HostError
void checkReport(const ViewOptions& options);

/// The page to print. Looks up from the eye, too. \throws HostError
std::string viewReport(const ViewOptions& options, const ExactScene& scene,
                       const ReportedLook& look);

}  // namespace Lumivane::Host
