// Registers VTK's rendering implementations with its object factories when the library is loaded.
//
// `vtk_module_autoinit` in src/CMakeLists.txt only defines macros. They take effect in a source
// file that includes the header of the module concerned, and no other file needs that of volume
// rendering: a host that asks for a volume mapper would get none.

#include <vtkRenderingCoreModule.h>  // runs the initialisers of OpenGL2, InteractionStyle, FreeType
#include <vtkRenderingVolumeModule.h>  // runs the initialiser of RenderingVolumeOpenGL2

#ifndef vtkRenderingCore_AUTOINIT
#error "VTK's rendering modules are not initialised: see vtk_module_autoinit"
#endif
#ifndef vtkRenderingVolume_AUTOINIT
#error "VTK's volume rendering is not initialised: see vtk_module_autoinit"
#endif
