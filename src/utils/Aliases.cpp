#include <lumivane/utils/Aliases.h>

namespace Lumivane::Utils {

const std::string Aliases::BRUSHES = "Brushes";
const std::string Aliases::BRUSH = "Brush";
const std::string Aliases::PENS = "Pens";
const std::string Aliases::PEN = "Pen";
const std::string Aliases::POINTS = "Points";
const std::string Aliases::OBJECTS = "Objects";
const std::string Aliases::OBJECT = "Object";
const std::string Aliases::PROPERTIES = "Properties";
const std::string Aliases::SCALES = "Scales";
const std::string Aliases::REGIONS = "Regions";
const std::string Aliases::SOURCE_REGION = "SourceRegion";
const std::string Aliases::NORMAL = "Normal";
const std::string Aliases::VALUES = "Values";
const std::string Aliases::ID = "Id";
const std::string Aliases::PARTS_COUNT = "PartsCount";
const std::string Aliases::PARTS = "Parts";
const std::string Aliases::FACES = "Faces";
const std::string Aliases::FACE = "Face";
const std::string Aliases::OVERLAYS = "Overlays";
const std::string Aliases::DOCKING_EDGES = "DockingEdges";
const std::string Aliases::ITEMS = "Items";
const std::string Aliases::NAME = "Name";
const std::string Aliases::POSITION = "Position";
const std::string Aliases::DIRECTION = "Direction";
const std::string Aliases::VIEW_UP = "ViewUp";
const std::string Aliases::INTERIOR_COLOR = "InteriorColor";
const std::string Aliases::D1 = "D1";
const std::string Aliases::D2 = "D2";
const std::string Aliases::CAMERA = "Camera";

}  // namespace Lumivane::Utils
