#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Cmd {

/// The command driver: a host's `main` hands its arguments to parseArgs and then calls run. The
/// settings are public and static, and the library and the host read them there. They are not
/// guarded: call parseArgs before any other work.
class LUMIVANE_EXPORT CmdManager {
 public:
  /// Does nothing: there is no state but the static one.
  CmdManager() = default;

  /// Reads options of the form name=value into the settings; a later one overrides an earlier one.
  ///
  /// | Option | Value |
  /// |---|---|
  /// | `-if`   | inputFile |
  /// | `-of`   | outputFile |
  /// | `-show` | `1` turns show on; nothing turns it off |
  /// | `-pt`   | `2` sets projectionType to 2, anything else to 1 |
  /// | `-sn`   | minSegmentsNumber, if above 0 |
  /// | `-sl`   | maxSegmentsLength, if above 0 and not above 1 |
  ///
  /// Other names and values outside the ranges are passed over in silence. An option without `=`
  /// has its own name as its value.
  ///
  /// \param argc  count of the arguments
  /// \param argv  the arguments of the process; the first is not looked at. Nothing is kept
  /// \throws std::invalid_argument "invalid stoi argument" or "invalid stod argument" if the value
  ///         of `-sn` or `-sl` starts with no number; the options before it stay in force
  /// \throws std::out_of_range "stoi argument out of range" or "stod argument out of range" if that
  ///         number is too large for its type
  static void parseArgs(int argc, char** const argv);

  /// Reads the scene of inputFile and, if show is set, opens the viewer on inputFile and
  /// outputFile. It makes no shot and writes no file. Without an inputFile it does nothing.
  ///
  /// A file that cannot be opened ends the process; a text that is no scene has its error printed,
  /// and nothing more happens.
  static void run();

  static std::string inputFile;     ///< Path of the scene file; empty at first.
  static std::string outputFile;    ///< Path of the shot file for the viewer; empty at first.
  static bool show;                 ///< Whether run opens the viewer; false at first.
  static int minSegmentsNumber;     ///< Least number of pieces of an edge; 6 at first.
  static double maxSegmentsLength;  ///< Greatest length of a piece; 0.0, at first, is no limit.
  static int projectionType;        ///< 1 or 2, for the host; 1 at first. Not a ProjectionType.
};

}  // namespace Lumivane::Cmd
