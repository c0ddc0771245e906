// Serial lines for tests: a pair of COM ports joined by a pseudo-terminal pair, which can be unplugged under a program
// that uses it, and a camera that plays exact bytes on the far end.
#pragma once

#include <windows.h>

#include <string_view>

#include "app/camera_point.h"

namespace kvtest {

// COM`port` and COM`farPort`, joined from construction to destruction.
class SerialLine {
 public:
  SerialLine(int port, int farPort);
  ~SerialLine();
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  // False when the machine could not make the line.
  bool isPlugged() const { return plugged_; }
  void Unplug();
  void PlugIn();

 private:
  int port_, farPort_;
  bool plugged_ = false;
};

// The far end of a line, opened for writing.
class PlayedCamera {
 public:
  explicit PlayedCamera(int farPort);
  ~PlayedCamera();
  PlayedCamera(const PlayedCamera&) = delete;
  PlayedCamera& operator=(const PlayedCamera&) = delete;

  bool isOpen() const { return port_ != INVALID_HANDLE_VALUE; }
  void Reopen();
  // Writes all bytes in one call. False when the line does not take them within 100 ms.
  bool Send(std::string_view bytes);
  bool SendRecord(const kv::CameraPoint (&points)[kv::kPointCount]);

 private:
  int farPort_;
  HANDLE port_;
  HANDLE written_;
};

}  // namespace kvtest
