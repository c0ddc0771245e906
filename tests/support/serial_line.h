// Serial lines for tests: a null-modem pair of COM ports, and a camera that sends exact bytes on the far end. Under
// Wine it is a pair of pseudo-terminals, which can be removed while a program uses it. On Windows it is the permanent
// pair in the environment variable KV_COM_PAIR ("COM5,COM6", the second is the camera's).
#pragma once

#include <windows.h>

#include <string_view>

#include "camera/camera_record.h"

namespace kvtest {

struct ComPair {
  int port, farPort;  // 0 if the machine has no pair
};
// The pair that tests use, and the message for tests that are skipped without it.
ComPair GivenComPair();
inline constexpr char kNoComPair[] = "no joined COM ports: name a pair in KV_COM_PAIR, like COM5,COM6";

// Connects COM`port` and COM`farPort` from construction to destruction.
class SerialLine {
 public:
  explicit SerialLine(ComPair pair = GivenComPair());
  ~SerialLine();
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  // False if the line could not be created.
  bool isPlugged() const { return plugged_; }
  // Whether lines can be created and removed on this machine; false if only the given one can be used.
  static bool CanUnplug();
  void Unplug();
  void PlugIn();

 private:
  ComPair pair_;
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
  // Writes all bytes in one call. False if that takes longer than 100 ms.
  bool Send(std::string_view bytes);
  bool SendRecord(const kv::CameraPoint (&points)[kv::kPointCount]);

 private:
  int farPort_;
  HANDLE port_;
  HANDLE written_;
};

}  // namespace kvtest
