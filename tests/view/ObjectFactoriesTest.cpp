// This program initialises none of VTK's rendering modules itself: what the object factories make
// is what loading the library has registered. No display is needed to make the objects.

#include <lumivane/view/ViewBuilder.h>

#include <string>

#include <gtest/gtest.h>
#include <vtkActorCollection.h>
#include <vtkObject.h>
#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Test {
namespace {

// The class that VTK makes for an abstract one; empty if it makes none.
std::string madeFor(const char* abstractClass) {
  // Keeps the library linked, where linkers drop what is not called.
  EXPECT_NE(nullptr, &View::ViewBuilder::createSceneView);
  const auto made =
      vtkSmartPointer<vtkObject>::Take(vtkObjectFactory::CreateInstance(abstractClass));
  return made == nullptr ? "" : made->GetClassName();
}

TEST(ObjectFactories, GiveOpenGlVolumeMappersOnceTheLibraryIsLoaded) {
  EXPECT_EQ("vtkOpenGLGPUVolumeRayCastMapper", madeFor("vtkGPUVolumeRayCastMapper"));
  EXPECT_EQ("vtkOpenGLProjectedTetrahedraMapper", madeFor("vtkProjectedTetrahedraMapper"));
}

TEST(ObjectFactories, GiveRenderersStylesAndTextsOnceTheLibraryIsLoaded) {
  EXPECT_EQ("vtkOpenGLRenderer", madeFor("vtkRenderer"));
  EXPECT_EQ("vtkInteractorStyleSwitch", madeFor("vtkInteractorStyleSwitchBase"));
  EXPECT_NE("", madeFor("vtkTextRenderer"));
}

}  // namespace
}  // namespace Lumivane::Test
