#pragma once

#include "host/Process.h"
#include "support/TempFolder.h"

#include <atomic>
#include <map>
#include <string>
#include <vector>

namespace Lumivane::Test {

using Arguments = std::vector<std::string>;

inline const std::string Small = LUMIVANE_SCENES "/small.json";  ///< A scene without fault.
constexpr const char* Old = "what was there before";             ///< In files that are written.

/// Both, one after the other.
Arguments operator+(Arguments first, const Arguments& second);

/// Runs the program without a display. One that hangs is ended after two minutes, with status 124.
Result lumivane(const Arguments& arguments);

/// The same through a shell's words, in which "$@" stands for the program and its arguments.
Result lumivaneBy(const std::string& shell, const Arguments& arguments);

/// A way to have the program write one file.
struct Output {
  std::string name;
  Arguments command;  ///< up to the option whose value is the file
  std::string ending;
  bool repeats = true;  ///< two runs write the same bytes

  Arguments to(const std::string& path) const { return command + Arguments{path}; }
};

/// All ways that need no display. What they read is made in the folder.
std::vector<Output> outputs(const TempFolder& inputs);

/// A way to have the program read one file.
struct Input {
  std::string name;
  Arguments before;
  Arguments after;
  std::string file;        ///< one that it reads without fault
  bool isScene = true;     ///< it is a scene
  bool isReadOnce = true;  ///< a pipe will do

  Arguments from(const std::string& path) const { return before + Arguments{path} + after; }
};

/// All commands that read a file and end by themselves; what they write goes into the folder.
std::vector<Input> inputs(const TempFolder& made);

/// The other end of a pipe, in a thread of its own: it waits for the program no longer than it
/// runs.
class PipeEnd {
 public:
  /// Writes, as soon as there is who reads.
  void write(const std::string& pipe, const std::string& bytes);
  /// Reads up to the end of the program.
  std::string read(const std::string& pipe);
  /// The program has ended.
  void end() { over = true; }

 private:
  std::atomic<bool> over = false;
};

/// The names and bytes of all files in a folder and below.
std::map<std::string, std::string> filesIn(const std::string& folder);

/// Expects a run that ended by itself with an error in one line that has the words.
void expectOneLine(const Result& result, const std::string& words);

/// Expects a run that ended by itself: well, or with an error in one line that names the file.
void expectNoHarm(const Result& result, const std::string& file);

}  // namespace Lumivane::Test
