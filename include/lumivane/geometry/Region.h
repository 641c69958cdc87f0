#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Geometry {

/// One polygon of a scene object: the numbers of its points in the scene's Points3d, with the
/// numbers of its brush and of its face. The polygon is closed implicitly. No number is checked.
///
/// Owns its two vectors. Copies share them: of two copies, destroy one.
class LUMIVANE_EXPORT Region : public Base::BaseLibClass {
 public:
  Region();                         ///< Two empty vectors; brush and face number -1, not set.
  Region(const Region&) = default;  ///< Shares the vectors.
  Region& operator=(const Region&) = default;  ///< Shares the vectors; frees nothing.
  ~Region();                                   ///< Frees both vectors.

  int getBrushNumber() const { return brushNumber; }  ///< From 1 in the scene's brushes; -1 unset.
  void setBrushNumber(int number) { brushNumber = number; }  ///< Unchecked.
  int getFaceNumber() const { return faceNumber; }  ///< From 1 in the object's faces; -1 unset.
  void setFaceNumber(int number) { faceNumber = number; }  ///< Unchecked.

  /// Point numbers from 1, in polygon order: the held vector, still the record's.
  std::vector<int>* getPoints() const { return points; }
  /// Takes over the vector; the old one is not freed.
  void setPoints(std::vector<int>* numbers) { points = numbers; }
  /// The number at a position from 0. \throws std::out_of_range
  int getPoint(int index) const;
  void addPoint(int number);  ///< Appends.
  /// Inserts before `index`, the count appending. \throws std::out_of_range
  void insertPoint(int index, int number);
  void removePointByIndex(int index);  ///< Erases that position. \throws std::out_of_range
  void removePoint(int number);        ///< Erases every occurrence of the number.
  void clearPoints();                  ///< Empties the vector and keeps it.

  /// Numbers from 1 of the edges at which the polygon docks to a neighbour: the held vector, still
  /// the record's.
  std::vector<int>* getDockingEdges() const { return dockingEdges; }
  /// Takes over the vector; the old one is not freed.
  void setDockingEdges(std::vector<int>* numbers) { dockingEdges = numbers; }
  /// The number at a position from 0. \throws std::out_of_range
  int getDockingEdge(int index) const;
  void addDockingEdge(int number);  ///< Appends.
  /// Inserts before `index`, the count appending. \throws std::out_of_range
  void insertDockingEdge(int index, int number);
  void removeDockingEdgeByIndex(int index);  ///< Erases that position. \throws std::out_of_range
  void removeDockingEdge(int number);        ///< Erases every occurrence of the number.
  void clearDockingEdges();                  ///< Empties the vector and keeps it.

  /// An object with those of "Brush", "Face", "Points" and "DockingEdges" that are set.
  Jzon::Node serialize() override;
  /// Reads the same keys; numbers are appended to the vectors, and what is no number is skipped.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  int brushNumber = -1;
  int faceNumber = -1;
  std::vector<int>* points;
  std::vector<int>* dockingEdges;
};

}  // namespace Lumivane::Geometry
