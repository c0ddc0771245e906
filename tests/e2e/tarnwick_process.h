// The real program, started and watched from outside.
#pragma once

#include <windows.h>

#include <string>

#include "app/camera_record.h"

namespace kvtest {

class TarnwickProcess {
 public:
  // Starts the program in `directory` and waits until its window stands.
  explicit TarnwickProcess(const char* directory = nullptr);
  // Ends the program by force if it still runs.
  ~TarnwickProcess();
  TarnwickProcess(const TarnwickProcess&) = delete;
  TarnwickProcess& operator=(const TarnwickProcess&) = delete;

  HWND window() const { return window_; }
  HANDLE process() const { return process_; }
  bool isRunning() const { return WaitForSingleObject(process_, 0) == WAIT_TIMEOUT; }
  // From the start of the process to the first time that its window had been painted.
  DWORD startUpMs() const { return startUpMs_; }

  // Clicks the toolbar's connect button with the mouse; false when it is not where the mouse can reach it.
  bool ClickConnect() const;
  // Waits until the port button shows this text.
  bool WaitForPortText(const std::string& text, DWORD patienceMs = 20000) const;
  // Where a camera point lies in the chart's client area.
  POINT ChartPlace(const kv::CameraPoint& point) const;
  // The screen's colour there.
  COLORREF ChartPixel(const kv::CameraPoint& point) const;

  // Closes the window and waits for the end. Returns how long it took, or INFINITE when the program did not end with 0.
  DWORD CloseAndWait(DWORD patienceMs = 10000);

 private:
  HANDLE process_ = nullptr;
  HWND window_ = nullptr;
  DWORD startUpMs_ = 0;
};

// The signed-in user's own registry, whatever this process has put in its place. Reads a text value ("" if missing).
std::string UserRegistryText(const char* key, const char* value);
// Forgets everything that earlier runs of the program have stored.
void ForgetUserSettings();

}  // namespace kvtest
