#pragma once

#include <string>

#include <vtkSmartPointer.h>

class vtkOutputWindow;

namespace Lumivane::Exchange {

/// Keeps what VTK has to say from standard error for as long as it lives, and remembers the first
/// error.
class VtkMessages {
 public:
  VtkMessages();
  VtkMessages(const VtkMessages&) = delete;
  VtkMessages& operator=(const VtkMessages&) = delete;
  ~VtkMessages();

  /// The first error as one line, without the place in VTK's sources; empty if there was none.
  std::string firstError() const;

 private:
  vtkSmartPointer<vtkOutputWindow> before;
  vtkSmartPointer<vtkOutputWindow> capture;
  int verbosity;
};

}  // namespace Lumivane::Exchange
