#include "view/RenderSpy.h"

#include <vtkGenericRenderWindowInteractor.h>
#include <vtkObjectFactory.h>
#include <vtkOpenGLRenderer.h>
#include <vtkVersion.h>
#include <vtkXOpenGLRenderWindow.h>

namespace Lumivane::Test {
namespace {

RenderSpy* current = nullptr;

template <class Made, class Kept>
vtkObject* makeAndKeep(std::vector<vtkSmartPointer<Kept>>& list) {
  Made* made = Made::New();
  list.emplace_back(made);
  return made;
}

vtkObject* makeRenderer() { return makeAndKeep<vtkOpenGLRenderer>(current->renderers); }
vtkObject* makeWindow() { return makeAndKeep<vtkXOpenGLRenderWindow>(current->windows); }
vtkObject* makeInteractor() {
  return makeAndKeep<vtkGenericRenderWindowInteractor>(current->interactors);
}

constexpr const char* Replaced[] = {"vtkRenderer", "vtkRenderWindow", "vtkRenderWindowInteractor"};

class SpyFactory : public vtkObjectFactory {
 public:
  static SpyFactory* New() { VTK_STANDARD_NEW_BODY(SpyFactory); }
  const char* GetVTKSourceVersion() override { return VTK_SOURCE_VERSION; }
  const char* GetDescription() override { return "keeps what is made"; }
  vtkTypeMacro(SpyFactory, vtkObjectFactory)

      protected : SpyFactory() {
    RegisterOverride("vtkRenderer", "spied renderer", "", 1, makeRenderer);
    RegisterOverride("vtkRenderWindow", "spied window", "", 1, makeWindow);
    RegisterOverride("vtkRenderWindowInteractor", "no event loop", "", 1, makeInteractor);
  }
};

vtkSmartPointer<SpyFactory> factory;

}  // namespace

RenderSpy::RenderSpy() {
  current = this;
  factory = vtkSmartPointer<SpyFactory>::New();
  // The first enabled factory wins, so the others have to step aside.
  for (const char* name : Replaced) vtkObjectFactory::SetAllEnableFlags(0, name);
  vtkObjectFactory::RegisterFactory(factory);
}

RenderSpy::~RenderSpy() {
  vtkObjectFactory::UnRegisterFactory(factory);
  factory = nullptr;
  for (const char* name : Replaced) vtkObjectFactory::SetAllEnableFlags(1, name);
  current = nullptr;
}

}  // namespace Lumivane::Test
