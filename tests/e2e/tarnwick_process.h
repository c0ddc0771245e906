// The real program, started and watched from outside.
#pragma once

#include <windows.h>

#include <string>

#include "app/camera_record.h"
#include "tests/support/running_program.h"

namespace kvtest {

class TarnwickProcess : public RunningProgram {
 public:
  // Starts the program in `directory` and waits until its window has been painted.
  explicit TarnwickProcess(const wchar_t* directory = nullptr);

  HWND window() const { return window_; }

  // Clicks the toolbar's connect button with the mouse; false when it is not where the mouse can reach it.
  bool ClickConnect() const;
  // Waits until the port button shows this text.
  bool WaitForPortText(const std::string& text, DWORD timeoutMs = 20000) const;
  // The screen's colour where the chart shows a camera point.
  COLORREF ChartPixel(const kv::CameraPoint& point) const;

  // Closes the window and waits for the end. Returns how long it took, or INFINITE when the program did not end with 0.
  DWORD CloseAndWait() const;

 private:
  HWND window_ = nullptr;
};

// Forgets everything that earlier runs of the program have stored in the signed-in user's own registry.
void ForgetUserSettings();

}  // namespace kvtest
