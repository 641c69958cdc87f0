#include "kernel/DisplayText.h"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/session/FaceValues.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Session {
namespace {

using Geometry::Face;
using Geometry::VFace;

Face*& faceOf(Scene::Object& object, int number) {
  auto* const faces = object.getFaces() == nullptr ? nullptr : object.getFaces()->getFaces();
  if (faces == nullptr || number < 1 || static_cast<size_t>(number) > faces->size() ||
      (*faces)[static_cast<size_t>(number) - 1] == nullptr)
    throw std::out_of_range("object \"" + Kernel::idText(object.getId()) + "\" has no face " +
                            std::to_string(number));
  return (*faces)[static_cast<size_t>(number) - 1];
}

// A face with values and all that the plain one had, which is left empty.
std::unique_ptr<VFace> valuedForm(Face& plain) {
  auto valued = std::make_unique<VFace>();
  std::vector<int>* const regions = valued->getRegions();
  Geometry::Vector3d* const normal = valued->getNormal();
  valued->setRegions(plain.getRegions());
  valued->setNormal(plain.getNormal());
  plain.setRegions(regions);
  plain.setNormal(normal);
  return valued;
}

}  // namespace

void setFaceValue(Scene::Object& object, int faceNumber, int property, double value) {
  Face*& face = faceOf(object, faceNumber);
  if (property < 0) throw std::out_of_range("property number " + std::to_string(property));
  auto* valued = dynamic_cast<VFace*>(face);
  if (valued == nullptr) {
    valued = valuedForm(*face).release();
    delete face;
    face = valued;
  }
  valued->setProperty(property, value);
}

}  // namespace Lumivane::Session
