#pragma once

#include <lumivane/measure/FaceFactors.h>
#include <lumivane/measure/export.h>

#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Measure {

/// A matrix of view factors as it stands in files.
struct FactorTable {
  std::vector<FactorElement> elements;  ///< the faces, whose positions are rows and columns
  std::vector<std::string> objectIds;   ///< of object i + 1
  std::vector<std::string> classNames;  ///< that the elements' numbers point at
  std::vector<FactorRow> rows;          ///< all, or some, by element
};

/// Matrices of view factors as bytes of files. Elements are numbered from 1. Numbers have as many
/// digits as read back to the same doubles, and a point whatever the locale.
class LUMIVANE_MEASURE_EXPORT FactorText {
 public:
  /// `i,j,view_factor,estimate`: a line for each entry, and for each row one with the j of 0, the
  /// sky's.
  static std::string csv(const FactorTable& table);
  /// One JSON object: `elements`, and `rows` with the entries as arrays `j`, `view_factor` and
  /// `estimate` of equal length.
  static std::string json(const FactorTable& table);
  /// A NumPy archive: a matrix of compressed rows that `scipy.sparse.load_npz` reads (`data`,
  /// `indices`, `indptr`, `shape`, `format`), and beside it `estimate` for each of `data`, and for
  /// each element `area`, `sky`, `sky_estimate`, `object`, `face`, `region`, `back` and `class`. A
  /// row that was not asked for is empty, and its sky is not a number.
  /// \throws std::runtime_error if it was built without libarchive
  static std::string npz(const FactorTable& table);
  static bool hasNpz();  ///< Whether `npz` was built.

  /// What the elements are: `number,object,id,face,region,side,class,area,x,y,z,nx,ny,nz`, then of
  /// the rows that are there `sky,residual,points,within_tolerance`.
  /// \param isSafe  texts that a spreadsheet would take for formulas get an apostrophe in front
  static std::string elementsCsv(const FactorTable& table, bool isSafe = false);

  /// A row as a line of text without its end, and back; nothing if the text is no whole row.
  static std::string rowText(const FactorRow& row);
  static std::optional<FactorRow> readRowText(const std::string& text);  ///< See `rowText`.
};

}  // namespace Lumivane::Measure
