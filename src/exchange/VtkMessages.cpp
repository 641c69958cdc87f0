#include "exchange/VtkMessages.h"

#include <algorithm>

#include <vtkLogger.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>

namespace Lumivane::Exchange {
namespace {

class CapturingWindow : public vtkOutputWindow {
 public:
  static CapturingWindow* New();
  vtkTypeMacro(CapturingWindow, vtkOutputWindow)

      void DisplayText(const char*) override {}
  void DisplayWarningText(const char*) override {}
  void DisplayGenericWarningText(const char*) override {}
  void DisplayDebugText(const char*) override {}
  void DisplayErrorText(const char* text) override {
    if (first.empty() && text != nullptr) first = text;
  }

  std::string first;
};
vtkStandardNewMacro(CapturingWindow)

}  // namespace

VtkMessages::VtkMessages()
    : before(vtkOutputWindow::GetInstance()),
      capture(vtkSmartPointer<CapturingWindow>::New()),
      verbosity(vtkLogger::GetCurrentVerbosityCutoff()) {
  vtkOutputWindow::SetInstance(capture);
  // Errors go to VTK's log as well, which writes them to standard error by itself.
  vtkLogger::SetStderrVerbosity(vtkLogger::VERBOSITY_OFF);
}

VtkMessages::~VtkMessages() {
  vtkLogger::SetStderrVerbosity(static_cast<vtkLogger::Verbosity>(verbosity));
  vtkOutputWindow::SetInstance(before);
}

std::string VtkMessages::firstError() const {
  std::string text = static_cast<CapturingWindow*>(capture.Get())->first;
  // "ERROR: In file.cxx, line 7\nvtkClass (0x...): what went wrong\n\n"
  const size_t place = text.find("): ");
  if (place != std::string::npos) text.erase(0, place + 3);
  std::replace(text.begin(), text.end(), '\n', ' ');
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

}  // namespace Lumivane::Exchange
