#pragma once

#include <string>

namespace Lumivane::Test {

/// A city model (CityJSON, EPSG:28992) whose coordinates begin at x = 100000, y = 400000, so that
/// an import moves it. In metres from there: a terrain at z = 1 over x 0 to 12, y 0 to 11; a house
/// on it from x 2 to 6, y 2 to 6, z 1 to 8, of two parts beside each other that meet at x = 4; and
/// a shed beyond the terrain from x 15 to 19, y 2 to 6, z 1 to 4. All bodies are closed. The places
/// of a grid of 2 m are at 0.5, 2.5 and so on, from 0.5 to 18.5 and from 0.5 to 10.5.
std::string cityText(
    const std::string& referenceSystem = "https://www.opengis.net/def/crs/EPSG/0/28992");

}  // namespace Lumivane::Test
