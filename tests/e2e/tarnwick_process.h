// The real program, started and observed from outside.
#pragma once

#include <windows.h>

#include <string>

#include "camera/camera_record.h"
#include "tests/support/running_program.h"

namespace kvtest {

class TarnwickProcess : public RunningProgram {
 public:
  // Starts the program in `directory` and waits until its window has been painted.
  explicit TarnwickProcess(const wchar_t* directory = nullptr);

  HWND window() const { return window_; }

  // Clicks the toolbar's connect button with the mouse; false if the mouse cannot reach it.
  bool ClickConnect() const;
  // Waits until the port button shows this text.
  bool WaitForPortText(const std::string& text, DWORD timeoutMs = 20000) const;
  // The screen's color at a camera position in the chart.
  COLORREF ChartPixel(const kv::CameraPoint& point) const;

  // Closes the window and waits for the process to end. Returns the time that took in ms, or INFINITE when the exit
  // code is not 0.
  DWORD CloseAndWait() const;

 private:
  HWND window_ = nullptr;
};

// Deletes everything that earlier runs of the program have stored in the current user's registry.
void ForgetUserSettings();

}  // namespace kvtest
