#include "plain/Pipeline.h"

#include <ctime>

namespace Lumivane::Plain {
namespace {

class Clock {
 public:
  explicit Clock(double& seconds) : target(seconds), start(std::clock()) {}
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  ~Clock() { target += static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC; }

 private:
  double& target;
  std::clock_t start;
};

}  // namespace

Scene Pipeline::read(const std::string& text) {
  const Clock clock(seconds.read);
  return readScene(text);
}

Shot Pipeline::makeShot(Scene& scene, View& view) {
  Shot shot;
  shot.messages = "Projecting objects\n\n";
  {
    const Clock clock(seconds.project);
    for (Object& object : scene.objects) projectObject(scene, object, view, shot.messages);
  }
  {
    const Clock clock(seconds.build);
    for (std::size_t i = 0; i < scene.objects.size(); ++i)
      buildObject(shot, scene.objects[i], static_cast<int>(i) + 1);
  }
  const Clock clock(seconds.sort);
  shot.messages += "Calculating objects order\n\n";
  sortShot(shot, scene, nextId);
  return shot;
}

std::string Pipeline::write(const Scene& scene, const Shot& shot) {
  const Clock clock(seconds.write);
  return shotText(scene, shot);
}

}  // namespace Lumivane::Plain
