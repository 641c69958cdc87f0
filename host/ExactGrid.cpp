#include "ExactGrid.h"

#include "ExactScene.h"
#include "ProgressBar.h"

#include <lumivane/session/Text.h>

namespace Lumivane::Host {

std::string exactShares(const GridOptions& options, const Session::LoadedScene& scene,
                        const std::vector<GridView>& views) {
  using Visibility::MapText;
  const ExactScene exact(options.scene, scene);
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  constexpr Visibility::Field Field = Visibility::Field::Hemisphere;
  std::string text = "name," + MapText::csvHeading(Field) + "\n";
  for (size_t i = 0; i < views.size(); ++i) {
    if (show) show(100.0 * static_cast<double>(i) / static_cast<double>(views.size()));
    Visibility::LookOptions look;
    look.forward = views[i].forward;
    look.up = views[i].up;
    look.alone = hasFractions(options.rows);
    look.threads = 0;
    const Visibility::VisibleMap map = exact.look(views[i].eye, look);
    text += MapText::csvRows(shareRows(map, Visibility::MapShares(map), depthOf(options.rows)),
                             Field, Session::csvField(views[i].name) + ",", options.csvSafe);
  }
  return text;
}

}  // namespace Lumivane::Host
