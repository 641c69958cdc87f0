#pragma once

#include <string>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Host {

struct ImportCommandOptions;
struct CheckOptions;
struct BatchOptions;
struct FactorsOptions;
struct GridOptions;
struct Json5Options;
struct ShotOptions;
struct ShowOptions;
struct ViewOptions;

/// The commands. Each throws HostError when it cannot be done.

/// Makes a shot of a scene; writes the shot, a picture and statistics as far as asked for.
void runShot(const ShotOptions& options);

/// Looks at a scene from one eye, exactly; writes shares, the map, pictures and statistics as far
/// as asked for. Only where the program is built with the components.
void runView(const ViewOptions& options);

/// Opens the two windows on a scene and a shot, and returns when they are closed.
void runShow(const ShowOptions& options);

/// Makes a scene file of a mesh or a city model. Only where the program is built with importers.
void runImport(const ImportCommandOptions& options);
/// Makes a shot of a scene from every view of a table, in several processes.
void runBatch(const BatchOptions& options);

/// Writes a table of views whose eyes stand in a grid over a scene's ground.
void runGrid(const GridOptions& options);

/// Writes the view factors from face to face. Only where the program is built with the components.
void runFactors(const FactorsOptions& options);

/// Why view factors cannot be written under this name; empty if they can.
std::string factorFileFault(const std::string& path);

/// Converts JSON5 to JSON.
void runJson5(const Json5Options& options);

/// Lists what is wrong or surprising in a scene. Returns the exit status.
int runCheck(const CheckOptions& options);

/// Fails if no shot can be made of the scene, with the check's message.
void refuseErrors(const std::string& file, Scene::Scene3D& scene);

}  // namespace Lumivane::Host
