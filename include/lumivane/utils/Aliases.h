#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Utils {

/// The keys of the JSON documents. Keys are matched exactly, case included.
class LUMIVANE_EXPORT Aliases {
 public:
  static const std::string BRUSHES;         ///< "Brushes"
  static const std::string BRUSH;           ///< "Brush"
  static const std::string PENS;            ///< "Pens"
  static const std::string PEN;             ///< "Pen"
  static const std::string POINTS;          ///< "Points"
  static const std::string OBJECTS;         ///< "Objects"
  static const std::string OBJECT;          ///< "Object"
  static const std::string PROPERTIES;      ///< "Properties"
  static const std::string SCALES;          ///< "Scales"
  static const std::string REGIONS;         ///< "Regions"
  static const std::string SOURCE_REGION;   ///< "SourceRegion"
  static const std::string NORMAL;          ///< "Normal"
  static const std::string VALUES;          ///< "Values"
  static const std::string ID;              ///< "Id"
  static const std::string PARTS_COUNT;     ///< "PartsCount"
  static const std::string PARTS;           ///< "Parts"
  static const std::string FACES;           ///< "Faces"
  static const std::string FACE;            ///< "Face"
  static const std::string OVERLAYS;        ///< "Overlays"
  static const std::string DOCKING_EDGES;   ///< "DockingEdges"
  static const std::string ITEMS;           ///< "Items"
  static const std::string NAME;            ///< "Name"
  static const std::string POSITION;        ///< "Position"
  static const std::string DIRECTION;       ///< "Direction"
  static const std::string VIEW_UP;         ///< "ViewUp"
  static const std::string INTERIOR_COLOR;  ///< "InteriorColor"
  static const std::string D1;              ///< "D1"
  static const std::string D2;              ///< "D2"
  static const std::string CAMERA;          ///< "Camera"; no reader and no writer uses it
};

}  // namespace Lumivane::Utils
