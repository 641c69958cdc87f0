#pragma once

#include "BatchPlan.h"

#include <string>

namespace Lumivane::Host {

/// Makes a folder and those above it. \throws HostError
void makeFolder(const std::string& path);

/// The working folders of a batch's processes, in the folder "parts" among the outputs. The library
/// writes a report into the folder that it works in, so each process has one of its own.
class WorkFolders {
 public:
  /// The plan is borrowed.
  WorkFolders(const BatchPlan& thePlan, Shard theShard) : plan(thePlan), shard(theShard) {}

  /// Makes a new process's folder and goes into it.
  /// \throws HostError
  void enter(int process) const;

  /// Removes those of this run and of one that was killed before, and what their processes were
  /// about to write. Links are removed, not followed.
  void remove() const;

 private:
  std::string nameStart() const;
  void removeUnfinishedOf(const std::string& workFolder) const;
  void removeUnfinished(const std::string& start) const;

  const BatchPlan& plan;
  Shard shard;
};

}  // namespace Lumivane::Host
