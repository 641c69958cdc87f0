// A host that runs for long: `bench_memory SCENE SHOTS [LIMIT]` takes shot after shot of one scene
// from eyes along a path, in turn round and square, and frees each after use. Prints the peak
// memory after the first 50 shots and at the end, and fails if the second is more than LIMIT times
// the first. Beside them stands what is resident at that moment, which no early peak hides.

#include <lumivane/session/LoadedScene.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

namespace Session = Lumivane::Session;

constexpr int FirstShots = 50;

double peakMegabytes() {
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;  // in kibibytes
}

double residentMegabytes() {
  long whole = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> whole >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

struct Memory {
  double peak = peakMegabytes();
  double resident = residentMegabytes();
};

void print(const char* when, const Memory& memory) {
  std::fprintf(stderr, "%s: peak %.2f MiB, resident %.2f MiB\n", when, memory.peak,
               memory.resident);
}

// Along the street and back, looking round. The path ends where it began every 50 shots, so that
// the first 50 have met every eye.
Session::ViewSettings view(int number) {
  const double turn = 2.0 * 3.14159265358979323846 * (number % FirstShots) / FirstShots;
  Session::ViewSettings settings;
  settings.eye = {-5.3 + 4.0 * std::cos(turn), -1.37 + 0.5 * std::sin(turn), 3.4};
  settings.forward = {std::cos(turn), std::sin(turn), 0.0};
  settings.camera = number % 2 == 0 ? Lumivane::Base::ViewCameraKind::Spherical
                                    : Lumivane::Base::ViewCameraKind::Normal;
  return settings;
}

// What the library prints, and the result that goes to standard error.
void silenceStandardOutput() {
  const int nowhere = open("/dev/null", O_WRONLY);
  if (nowhere < 0) return;
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

int run(const std::string& file, int shots, double limit) {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(file);
  size_t bytes = 0;
  Memory first;
  for (int i = 0; i < shots; ++i) {
    bytes += scene.take(view(i)).text().size();
    if (i + 1 == FirstShots) first = Memory();
  }
  const Memory last;
  std::fprintf(stderr, "shots: %d, bytes of text: %zu\n", shots, bytes);
  print("at the end", last);
  if (bytes == 0) return 1;
  if (shots < FirstShots) return 0;
  print("after 50 shots", first);
  std::fprintf(stderr, "the peak at the end is %.4f times the one after 50\n",
               last.peak / first.peak);
  return last.peak <= limit * first.peak ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  silenceStandardOutput();
  try {
    return run(argv[1], std::atoi(argv[2]), argc > 3 ? std::atof(argv[3]) : 1.05);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
