// GDAL by its C functions, which keep their names and types from version to version, found in the
// library when they are needed first.

#include "Geodata.h"

#include "HostError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

#ifdef LUMIVANE_GDAL_LIBRARY
#include <cpl_error.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <dlfcn.h>
#include <gdal.h>
#include <ogr_srs_api.h>
#endif

namespace Lumivane::Host::Geodata {

int epsgCode(const std::string& name) {
  const std::size_t authority = name.rfind("EPSG");
  const std::size_t digits = name.find_last_not_of("0123456789");
  if (authority == std::string::npos || digits == std::string::npos || digits + 1 == name.size())
    return 0;
  // Between them stand separators, and perhaps a version.
  const std::string between = name.substr(authority + 4, digits + 1 - authority - 4);
  const bool isName = !between.empty() && (between[0] == ':' || between[0] == '/') &&
                      between.find_first_not_of(":/.0123456789") == std::string::npos;
  int code = 0;
  const auto read = std::from_chars(name.data() + digits + 1, name.data() + name.size(), code);
  return isName && read.ec == std::errc() ? code : 0;
}

#ifdef LUMIVANE_GDAL_LIBRARY

namespace {

// The functions of GDAL that are in use, of the types that its headers declare.
struct Gdal {
  decltype(&GDALAllRegister) registerAll = nullptr;
  decltype(&GDALGetDriverByName) driverByName = nullptr;
  decltype(&GDALCreate) create = nullptr;
  decltype(&GDALSetGeoTransform) setGeoTransform = nullptr;
  decltype(&GDALSetSpatialRef) setSpatialRef = nullptr;
  decltype(&GDALGetRasterBand) rasterBand = nullptr;
  decltype(&GDALSetRasterNoDataValue) setNoDataValue = nullptr;
  decltype(&GDALSetDescription) setDescription = nullptr;
  decltype(&GDALRasterIO) rasterIO = nullptr;
  decltype(&GDALClose) close = nullptr;
  decltype(&VSIGetMemFileBuffer) memoryFile = nullptr;
  decltype(&VSIUnlink) unlink = nullptr;
  decltype(&VSIFree) free = nullptr;
  decltype(&CPLPushErrorHandler) pushErrorHandler = nullptr;
  decltype(&CPLQuietErrorHandler) quietErrorHandler = nullptr;
  decltype(&CPLGetLastErrorMsg) lastError = nullptr;
  decltype(&OSRNewSpatialReference) newReference = nullptr;
  decltype(&OSRDestroySpatialReference) destroyReference = nullptr;
  decltype(&OSRImportFromEPSG) importFromEpsg = nullptr;
  decltype(&OSRStripVertical) stripVertical = nullptr;
  decltype(&OSRIsProjected) isProjected = nullptr;
  decltype(&OSRSetAxisMappingStrategy) setAxisOrder = nullptr;
  decltype(&OCTNewCoordinateTransformation) newTransformation = nullptr;
  decltype(&OCTDestroyCoordinateTransformation) destroyTransformation = nullptr;
  decltype(&OCTTransform) transform = nullptr;

  std::string fault;

  Gdal() {
    void* const library = dlopen(LUMIVANE_GDAL_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr) {
      fault = "needs the library " LUMIVANE_GDAL_LIBRARY " (GDAL), which is not installed here";
      return;
    }
    const bool isWhole =
        find(library, "GDALAllRegister", registerAll) &&
        find(library, "GDALGetDriverByName", driverByName) && find(library, "GDALCreate", create) &&
        find(library, "GDALSetGeoTransform", setGeoTransform) &&
        find(library, "GDALSetSpatialRef", setSpatialRef) &&
        find(library, "GDALGetRasterBand", rasterBand) &&
        find(library, "GDALSetRasterNoDataValue", setNoDataValue) &&
        find(library, "GDALSetDescription", setDescription) &&
        find(library, "GDALRasterIO", rasterIO) && find(library, "GDALClose", close) &&
        find(library, "VSIGetMemFileBuffer", memoryFile) && find(library, "VSIUnlink", unlink) &&
        find(library, "VSIFree", free) && find(library, "CPLPushErrorHandler", pushErrorHandler) &&
        find(library, "CPLQuietErrorHandler", quietErrorHandler) &&
        find(library, "CPLGetLastErrorMsg", lastError) &&
        find(library, "OSRNewSpatialReference", newReference) &&
        find(library, "OSRDestroySpatialReference", destroyReference) &&
        find(library, "OSRImportFromEPSG", importFromEpsg) &&
        find(library, "OSRStripVertical", stripVertical) &&
        find(library, "OSRIsProjected", isProjected) &&
        find(library, "OSRSetAxisMappingStrategy", setAxisOrder) &&
        find(library, "OCTNewCoordinateTransformation", newTransformation) &&
        find(library, "OCTDestroyCoordinateTransformation", destroyTransformation) &&
        find(library, "OCTTransform", transform);
    if (!isWhole) {
      fault = "needs another version of the library " LUMIVANE_GDAL_LIBRARY " (GDAL)";
      return;
    }
    registerAll();
    pushErrorHandler(quietErrorHandler);  // errors come as exceptions here
  }

 private:
  template <class Function>
  static bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
  }
};

const Gdal& library() {
  static const Gdal& gdal = *new Gdal();  // to the end of the process, as GDAL itself
  return gdal;
}

const Gdal& gdal() {
  const Gdal& loaded = library();
  if (!loaded.fault.empty()) throw HostError("the coordinate reference system", loaded.fault);
  return loaded;
}

[[noreturn]] void fail(const std::string& subject) {
  const std::string cause = gdal().lastError();
  throw HostError(subject, cause.empty() ? "GDAL fails without a reason" : cause);
}

using Reference = std::unique_ptr<std::remove_pointer_t<OGRSpatialReferenceH>,
                                  decltype(&OSRDestroySpatialReference)>;

// Without heights, x first.
Reference referenceOf(int epsg) {
  Reference reference(gdal().newReference(nullptr), gdal().destroyReference);
  if (gdal().importFromEpsg(reference.get(), epsg) != OGRERR_NONE)
    throw HostError("EPSG:" + std::to_string(epsg),
                    "is no coordinate reference system that is known here");
  gdal().stripVertical(reference.get());
  gdal().setAxisOrder(reference.get(), OAMS_TRADITIONAL_GIS_ORDER);
  return reference;
}

// A file in memory, which goes with this.
class MemoryFile {
 public:
  MemoryFile() = default;
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { gdal().unlink(Path); }

  std::string bytes() const {
    vsi_l_offset size = 0;
    const GByte* const start = gdal().memoryFile(Path, &size, FALSE);
    if (start == nullptr) fail("the raster");
    return {reinterpret_cast<const char*>(start), static_cast<std::size_t>(size)};
  }

  static constexpr const char* Path = "/vsimem/lumivane.tif";
};

void fillRaster(GDALDatasetH dataset, const Raster& raster, int epsg) {
  double transform[6] = {raster.west, raster.cell, 0.0, raster.north, 0.0, -raster.cell};
  const Reference reference = referenceOf(epsg);
  if (gdal().setGeoTransform(dataset, transform) != CE_None ||
      gdal().setSpatialRef(dataset, reference.get()) != CE_None)
    fail("the raster");
  const int width = static_cast<int>(raster.columns);
  const int height = static_cast<int>(raster.rows);
  for (std::size_t i = 0; i < raster.bands.size(); ++i) {
    const GDALRasterBandH band = gdal().rasterBand(dataset, static_cast<int>(i) + 1);
    gdal().setDescription(band, raster.bands[i].name.c_str());
    gdal().setNoDataValue(band, std::numeric_limits<double>::quiet_NaN());
    std::vector<double> values = raster.bands[i].values;
    if (gdal().rasterIO(band, GF_Write, 0, 0, width, height, values.data(), width, height,
                        GDT_Float64, 0, 0) != CE_None)
      fail("the raster");
  }
}

}  // namespace

std::string fault() { return library().fault; }

void checkCode(int epsg) {
  if (gdal().isProjected(referenceOf(epsg).get()) == 0)
    throw HostError("EPSG:" + std::to_string(epsg),
                    "is not a projected coordinate reference system, in which x and y are lengths; "
                    "name the one of the model's coordinates with --crs EPSG:N");
}

std::string geoTiff(const Raster& raster, int epsg) {
  const GDALDriverH driver = gdal().driverByName("GTiff");
  if (driver == nullptr) fail("the raster");
  const MemoryFile file;
  char compress[] = "COMPRESS=DEFLATE";
  char tiled[] = "TILED=YES";
  char* options[] = {compress, tiled, nullptr};
  const GDALDatasetH dataset = gdal().create(
      driver, MemoryFile::Path, static_cast<int>(raster.columns), static_cast<int>(raster.rows),
      static_cast<int>(raster.bands.size()), GDT_Float64, options);
  if (dataset == nullptr) fail("the raster");
  {
    const std::unique_ptr<void, decltype(&GDALClose)> closes(dataset, gdal().close);
    fillRaster(dataset, raster, epsg);
  }
  return file.bytes();
}

std::vector<std::array<double, 2>> inDegrees(const std::vector<std::array<double, 2>>& points,
                                             int epsg) {
  constexpr int Wgs84 = 4326;
  const Reference from = referenceOf(epsg);
  const Reference to = referenceOf(Wgs84);
  const std::unique_ptr<std::remove_pointer_t<OGRCoordinateTransformationH>,
                        decltype(&OCTDestroyCoordinateTransformation)>
      transformation(gdal().newTransformation(from.get(), to.get()), gdal().destroyTransformation);
  if (!transformation) fail("EPSG:" + std::to_string(epsg));
  // Beyond the earth some projections are inverted step by step without an end.
  constexpr double Farthest = 1e9;
  std::vector<std::array<double, 2>> result = points;
  for (std::array<double, 2>& point : result) {
    const bool isNear = std::abs(point[0]) <= Farthest && std::abs(point[1]) <= Farthest;
    if (!isNear ||
        gdal().transform(transformation.get(), 1, &point[0], &point[1], nullptr) == FALSE ||
        !(std::abs(point[0]) <= 180.0 && std::abs(point[1]) <= 90.0))
      point = {std::nan(""), std::nan("")};
  }
  return result;
}

#else

namespace {

constexpr const char* Lacking =
    "this program was built without GDAL: build it where libgdal-dev is installed";

}  // namespace

std::string fault() { return Lacking; }

void checkCode(int) { throw HostError("the coordinate reference system", Lacking); }

std::string geoTiff(const Raster&, int) { throw HostError("the raster", Lacking); }

std::vector<std::array<double, 2>> inDegrees(const std::vector<std::array<double, 2>>&, int) {
  throw HostError("the points", Lacking);
}

#endif

}  // namespace Lumivane::Host::Geodata
