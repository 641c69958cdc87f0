#pragma once

#include <lumivane/export.h>

#include <string>
#include <vector>

#include <vtkActor.h>
#include <vtkPolyData.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::View {

/// Shows a scene and its shot in two windows, and draws a shot into a PNG picture.
class LUMIVANE_EXPORT Viewer {
 public:
  /// Reads a scene file and a shot file and shows both. With an empty name nothing is read or
  /// opened. What was read is freed when the windows are closed.
  ///
  /// A file that cannot be opened ends the process, as the reader does.
  static void createSceneAndShotView(std::string sceneFile, std::string shotFile);

  /// Opens the window of the scene ("Сцена 3d", at the left) and of the shot ("Снимок 2d", beside
  /// it) and returns when both are closed. Needs a display.
  ///
  /// The scene is seen from the eye of the shot's view towards the scene's centre; without a view
  /// or orientation the camera is where VTK puts it by itself. In the shot's window the left and
  /// middle buttons pan and the right one zooms.
  ///
  /// \param scene  null for no scene window; stays the caller's
  /// \param shot   null for no shot window; stays the caller's. A shot without a view is drawn
  ///               filled, with the axes of a spherical camera
  /// \throws std::out_of_range "invalid vector subscript" for a wrong brush or pen number
  static void createSceneAndShotView(Scene::Scene3D* scene, Shot::Shot2d* shot);

  /// Draws a shot with its axes off screen, y from -1 to 1 over the height, into a PNG picture.
  ///
  /// \param shot              what to draw; null gives an empty vector and no file
  /// \param fileName          the file to write if saveToFile; else not read
  /// \param width, height     size of the drawing in pixels
  /// \param reserved          ignored
  /// \param scale             the picture is this many times larger in both directions
  /// \param compressionLevel  0 to 9; any other value leaves the writer's default
  /// \param saveToFile        true: write the file, return an empty vector; false: return the
  ///                          PNG stream, which zero bytes may follow
  /// \throws std::out_of_range "invalid vector subscript" for a wrong brush or pen number
  static std::vector<unsigned char> createImageFromShot(Shot::Shot2d* shot, std::string fileName,
                                                        int width, int height, int reserved,
                                                        int scale, int compressionLevel,
                                                        bool saveToFile);

 private:
  static void createProjectionAxes(vtkRenderer* renderer, Shot::Shot2d* shot);
  static void createRadialProjectionAxes(vtkRenderer* renderer);
  static void createSquareProjectionAxes(vtkRenderer* renderer);
  static vtkSmartPointer<vtkActor> createActor(vtkPolyData* polyData, std::vector<int> color);
  static vtkSmartPointer<vtkActor> createGrid(double* center, double* bounds, double columns,
                                              double rows);
  static vtkSmartPointer<vtkActor> createCirclePd(double radius, double* center);
};

}  // namespace Lumivane::View
