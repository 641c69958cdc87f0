#pragma once

#include <lumivane/measure/export.h>
#include <lumivane/visibility/SceneIndex.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Measure {

/// How view factors between faces are integrated.
struct FactorOptions {
  /// The error of an exchange area A_i F_ij is brought below this part of the exchange area itself,
  /// or of a twentieth of the area of all elements, whichever is greater: what is small beside the
  /// scene needs no more than a few points. Below 1e-7 no row is said to be within it, since of
  /// pairs with nothing between them no smaller error is known.
  double tolerance = 1e-4;
  bool twoSided = false;  ///< whether the backs of faces are elements of their own, too
  /// From how many points of a flat piece of a face is looked before its last division, at most.
  std::size_t mostPoints = 4000;
  /// Ends `FaceFactors::row` soon after it has become true: it throws `Visibility::Cancelled`. May
  /// be null; must live as long as the `FaceFactors`.
  const std::atomic<bool>* cancelled = nullptr;
};

/// One side of a face: what emits and what receives.
struct FactorElement {
  Visibility::Label label;  ///< the region whose side it is
  bool isBack = false;      ///< the side from which the corners run counter-clockwise
  int classNumber = -1;     ///< position in `FaceFactors::classNames`, or -1
  double area = 0.0;        ///< of all its flat pieces, in square scene units
  Visibility::Vector centre{0.0, 0.0, 0.0};  ///< the centroid of its area
  Visibility::Vector normal{0.0, 0.0, 0.0};  ///< unit vector to the emitting side
};

/// F_ij: the part of what the row's element sends out, diffusely, that reaches another one.
struct FactorEntry {
  std::size_t element = 0;  ///< j, a position from 0 in `FaceFactors::elements`
  double factor = 0.0;      ///< F_ij, from 0 to 1
  double estimate = 0.0;    ///< of the error of F_ij
};

/// All that one element sees, what it sees of itself included. Elements that are not seen have no
/// entry.
struct FactorRow {
  std::size_t element = 0;           ///< i, a position from 0
  std::vector<FactorEntry> entries;  ///< by element; the factors and `sky` add up to 1
  double sky = 0.0;                  ///< the view factor to what is no face
  double skyEstimate = 0.0;          ///< of the error of `sky`
  double residual = 0.0;  ///< the sum of all factors less 1, before it was distributed over them
  std::size_t looks = 0;  ///< how many points were looked from
  /// False if `mostPoints` was not enough, or the tolerance is below what can be known.
  bool isWithinTolerance = true;
};

/// View factors from face to face, with all that stands between them.
///
/// From a point of the emitting face the factors are exact: those of the cells of the visibility
/// map about the face's normal. What is integrated over the face is not the factor itself but the
/// part of the receiver that is seen, which multiplies the factor that the two would have with
/// nothing between them: that one is a double contour integral (E. M. Sparrow, 1963), whose inner
/// one is done in closed form. So pairs that see each other fully cost no more than one point and
/// have no error from points, however near to each other they are; where something stands between,
/// the emitting face is divided, always where the estimates are worst, until these are small
/// enough. What a division changed, less what it had to change if all were smooth, is taken for the
/// error; a face that has not been divided counts what the borders of shadows could change as they
/// move over it.
///
/// The eyes stand on the face: it and what lies in its plane are not seen.
class LUMIVANE_MEASURE_EXPORT FaceFactors {
 public:
  /// \throws std::invalid_argument for a tolerance that is not above 0, and for no points
  explicit FaceFactors(const Visibility::SceneIndex& index, const FactorOptions& options = {});
  FaceFactors(const FaceFactors&) noexcept;             ///< Shares all.
  FaceFactors& operator=(const FaceFactors&) noexcept;  ///< Shares all.
  FaceFactors(FaceFactors&&) noexcept;                  ///< Takes all of the other.
  FaceFactors& operator=(FaceFactors&&) noexcept;       ///< Takes all of the other.
  ~FaceFactors();

  /// In the scene's order; with two sides the front of each face is followed by its back. Regions
  /// without a normal are no elements.
  const std::vector<FactorElement>& elements() const;
  const std::vector<std::string>& objectIds() const;   ///< Of object i + 1.
  const std::vector<std::string>& classNames() const;  ///< As `Visibility::PolygonScene` has them.
  double area() const;                                 ///< Of all elements.

  /// The row of an element. Any number of threads may ask at a time; rows do not depend on each
  /// other, and have the same bytes whoever asks.
  /// \throws std::out_of_range  \throws Visibility::Cancelled
  FactorRow row(std::size_t element) const;

 private:
  struct State;
  std::shared_ptr<const State> state;
};

/// How the rows of a matrix are made.
struct FactorRun {
  std::size_t first = 0;                ///< the first row, a position from 0
  std::size_t count = ~std::size_t{0};  ///< how many, or as many as there are
  int threads = 1;                      ///< 0 for all processors. Results do not depend on it.
  /// Rows that are known already, as of a run that was ended; they are not made again.
  std::vector<FactorRow> known;
  /// Is called for each row when it has been made, by any thread but one at a time, in no
  /// particular order. May be empty. An exception ends the run and comes through.
  std::function<void(const FactorRow&)> made;
  /// Is called with the finished part, from 0 to 1, by the thread that called. May be empty.
  std::function<void(double)> progress;
};

/// Rows by element.
/// \throws std::invalid_argument for a range that has no row, or a negative number of threads
/// \throws Visibility::Cancelled
LUMIVANE_MEASURE_EXPORT std::vector<FactorRow> factorRows(const FaceFactors& factors,
                                                          const FactorRun& run = {});

/// How far rows are from reciprocity, A_i F_ij = A_j F_ji.
struct LUMIVANE_MEASURE_EXPORT Reciprocity {
  double greatest = 0.0;  ///< of |A_i F_ij - A_j F_ji|, by the smaller one of both areas
  double meanSquare =
      0.0;  ///< the root of the mean square of the same over all pairs that are seen
};

/// Of a whole matrix: `rows[i]` is that of element i.
/// \throws std::invalid_argument if there is not a row for each element, in their order
LUMIVANE_MEASURE_EXPORT Reciprocity reciprocityOf(const std::vector<FactorElement>& elements,
                                                  const std::vector<FactorRow>& rows);

/// Makes a whole matrix reciprocal, while its rows still add up to 1.
///
/// Both values of a pair are estimates of one exchange area: they are averaged, weighted by the
/// inverse squares of their estimates. What the rows then lack goes back to their entries and skies
/// by least squares with the same weights, subject to reciprocity and to rows that add up to the
/// areas (as J. van Leersum, 1989, did without weights). Factors stay at least 0.
/// \param cancelled  ends the work soon after it has become true, and leaves the rows as they were;
/// may be null
/// \throws std::invalid_argument as `reciprocityOf`  \throws Visibility::Cancelled
LUMIVANE_MEASURE_EXPORT void makeReciprocal(const std::vector<FactorElement>& elements,
                                            std::vector<FactorRow>& rows,
                                            const std::atomic<bool>* cancelled = nullptr);

}  // namespace Lumivane::Measure
