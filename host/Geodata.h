#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Files that carry a coordinate reference system. They are made by GDAL, which is loaded when it
/// is needed, since that takes longer than most commands.
namespace Geodata {

/// A grid of cells, as wide as high, with a value in each for every band.
struct Raster {
  struct Band {
    std::string name;
    std::vector<double> values;  ///< rows from north to south, each from west to east; NaN for none
  };

  std::size_t columns = 0;
  std::size_t rows = 0;
  double west = 0.0;   ///< left edge of the first column
  double north = 0.0;  ///< upper edge of the first row
  double cell = 0.0;   ///< side of a cell
  std::vector<Band> bands;
};

/// The EPSG code in the name of a coordinate reference system: "EPSG:28992",
/// "urn:ogc:def:crs:EPSG::28992" or "https://www.opengis.net/def/crs/EPSG/0/28992"; 0 if it has
/// none.
int epsgCode(const std::string& name);

/// Why this program cannot make such files; empty if it can.
std::string fault();

/// Whether a code is that of a projected system, in which lengths are lengths. \throws HostError
/// that names it if it is not
void checkCode(int epsg);

/// The bytes of a GeoTIFF: numbers of 64 bits, compressed without loss. The reference system is the
/// horizontal part of the code's.
/// \throws HostError
std::string geoTiff(const Raster& raster, int epsg);

/// Points x, y of a reference system as longitude and latitude of WGS 84, in degrees; NaN for those
/// that have no place there.
/// \throws HostError
std::vector<std::array<double, 2>> inDegrees(const std::vector<std::array<double, 2>>& points,
                                             int epsg);

}  // namespace Geodata
}  // namespace Lumivane::Host
