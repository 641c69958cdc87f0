#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/base/Color.h>
#include <lumivane/export.h>

#include <optional>
#include <vector>

namespace Lumivane::Geometry {

/// One flat polygon of a shot: the numbers of its points in the shot's Points2d, where it came from
/// and how it is drawn. The polygon is closed implicitly. No number is checked.
///
/// Owns its two vectors. A copy by construction has vectors of its own; a copy by assignment shares
/// them, so of those two destroy one.
class LUMIVANE_EXPORT Region2d : public Base::BaseLibClass {
 public:
  Region2d();  ///< Two empty vectors, no colour; numbers -1, the source region 0.
  Region2d(const Region2d& other);                 ///< Copies the vectors as well.
  Region2d& operator=(const Region2d&) = default;  ///< Shares the vectors; frees nothing.
  ~Region2d();                                     ///< Frees both vectors.

  int getObjectNumber() const { return objectNumber; }         ///< From 1 in the shot's objects.
  void setObjectNumber(int number) { objectNumber = number; }  ///< Unchecked.
  int getPenNumber() const { return penNumber; }               ///< From 1 in the shot's pens.
  void setPenNumber(int number) { penNumber = number; }        ///< Unchecked.
  int getBrushNumber() const { return brushNumber; }           ///< From 1 in the shot's brushes.
  void setBrushNumber(int number) { brushNumber = number; }    ///< Unchecked.
  int getFaceNumber() const { return faceNumber; }             ///< From 1 in the object's faces.
  void setFaceNumber(int number) { faceNumber = number; }      ///< Unchecked.
  /// The number, from 1, of the region of the scene object that this polygon was cut from.
  int getSourceRegionNumber() const { return sourceRegionNumber; }
  void setSourceRegionNumber(int number) { sourceRegionNumber = number; }  ///< Unchecked.

  /// The colour that a scale gave to this polygon, for the host; empty if none did. It is not part
  /// of the file form.
  std::optional<Base::Color> getOverrideColor() const { return overrideColor; }
  void setOverrideColor(Base::Color color) { overrideColor = color; }  ///< Sets or overwrites it.

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

  /// An object with those of "Object", "Pen", "Brush", "Face", "SourceRegion", "Points" and
  /// "DockingEdges" that are set.
  Jzon::Node serialize() override;
  /// Reads the same keys; numbers are appended to the vectors, and what is no number is skipped.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  int objectNumber = -1;
  int penNumber = -1;
  int brushNumber = -1;
  int faceNumber = -1;
  int sourceRegionNumber = 0;
  std::vector<int>* points;
  std::vector<int>* dockingEdges;
  std::optional<Base::Color> overrideColor;
};

}  // namespace Lumivane::Geometry
