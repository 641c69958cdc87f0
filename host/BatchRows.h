#pragma once

#include "BatchPlan.h"
#include "Journal.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Which rows of a journal stand for the views of a plan, and why others do not.
class BatchRows {
 public:
  /// The row of each view: of those that were made one whose outputs are as they were written, or
  /// else the latest failure; null if there is neither. They belong to the journal's rows.
  using ViewRows = std::vector<const JournalRow*>;

  /// The plan is borrowed.
  explicit BatchRows(const BatchPlan& thePlan) : plan(thePlan) {}

  /// The rows of the folder by which the views at these positions count as made, or for what
  /// reason they do not: those with their keys or, of views that were others, their names.
  Journal::Rows known(const std::vector<std::size_t>& positions) const;
  /// How many views have no row, without holding any.
  std::size_t countMissing();

  ViewRows of(const Journal::Rows& known);
  /// Of the view at a position.
  const JournalRow* of(std::size_t i, const Journal::Rows& known);

  /// Counts the files of a row that has just been made as they were written.
  void remember(const JournalRow& row);

  /// Prints which of the views had been made before, and why they do not count.
  void reportRepeats(const std::vector<std::size_t>& pieces, const Journal::Rows& known) const;

  /// Why views without a row cannot be brought together, with their numbers.
  std::string whyNotMerged(const ViewRows& rows, const Journal::Rows& known) const;

 private:
  bool hasOutputs(std::size_t i, const JournalRow& row);
  bool isAsWritten(const FileMark& mark);
  std::string reasonToRepeat(const TableView& view, const Journal::Rows& known,
                             const Journal::Rows& byName) const;
  std::string difference(const JournalRow& row) const;

  const BatchPlan& plan;
  std::map<std::string, bool> compared;  // whether files have their marks
};

}  // namespace Lumivane::Host
