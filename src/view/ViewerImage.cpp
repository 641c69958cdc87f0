// A shot as a PNG picture: the flat view of the shot window, drawn off screen.

#include "view/ShotWindow.h"

#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/ViewBuilder.h>
#include <lumivane/view/Viewer.h>

#include <cstdint>

#include <vtkCamera.h>
#include <vtkPNGWriter.h>
#include <vtkUnsignedCharArray.h>
#include <vtkWindowToImageFilter.h>

namespace Lumivane::View {
namespace {

// One drawing layer above the last region. The parallel scale stays 1, and so y runs from -1 to 1.
void placePictureCamera(vtkRenderer* renderer, Shot::Shot2d* shot) {
  Geometry::Regions2dInDrawingOrder* regions = shot->getRegions();
  const bool hasRegions = regions != nullptr && regions->getRegions() != nullptr;
  const std::uint64_t count = hasRegions ? regions->getRegions()->size() : 0;
  vtkCamera* camera = renderer->GetActiveCamera();
  camera->SetViewUp(0.0, 1.0, 0.0);
  camera->SetPosition(0.0, 0.0, static_cast<double>(count + 1) * 0.1);
  camera->SetFocalPoint(0.0, 0.0, 0.0);
  camera->SetParallelProjection(1);
  renderer->SetBackground(1.0, 1.0, 1.0);
}

// The stream in the array's allocated size. Deliberate: zeros may follow the end of the stream.
std::vector<unsigned char> writeToMemory(vtkPNGWriter* writer) {
  writer->WriteToMemoryOn();
  writer->Write();
  writer->WriteToMemoryOff();
  vtkUnsignedCharArray* bytes = writer->GetResult();
  std::vector<unsigned char> result;
  if (bytes == nullptr) return result;
  result.reserve(static_cast<std::size_t>(bytes->GetSize()));
  result.assign(bytes->GetPointer(0), bytes->GetPointer(0) + bytes->GetNumberOfValues());
  result.resize(static_cast<std::size_t>(bytes->GetSize()));
  return result;
}

}  // namespace

std::vector<unsigned char> Viewer::createImageFromShot(Shot::Shot2d* shot, std::string fileName,
                                                       int width, int height, int /*reserved*/,
                                                       int scale, int compressionLevel,
                                                       bool saveToFile) {
  if (shot == nullptr) return {};  // an empty window has no picture
  const vtkNew<vtkRenderWindow> window;
  {
    const vtkNew<vtkRenderer> renderer;
    addActors(renderer, ViewBuilder::createShotView(shot));
    placePictureCamera(renderer, shot);
    setUpShotWindow(window, renderer, width, height);
    createProjectionAxes(renderer, shot);
  }
  window->OffScreenRenderingOn();
  window->Render();

  const vtkNew<vtkWindowToImageFilter> filter;
  filter->SetInput(window);
  filter->SetScale(scale);
  filter->ReadFrontBufferOff();
  filter->Update();
  const vtkNew<vtkPNGWriter> writer;
  if (compressionLevel >= 0 && compressionLevel <= 9) writer->SetCompressionLevel(compressionLevel);
  writer->SetInputConnection(filter->GetOutputPort());
  if (!saveToFile) return writeToMemory(writer);
  writer->SetFileName(fileName.c_str());
  writer->Write();
  return {};
}

}  // namespace Lumivane::View
