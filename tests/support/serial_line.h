// Serial lines for tests: a pair of joined COM ports, and a camera that plays exact bytes on the far end. Under Wine
// the pair is a pseudo-terminal pair, which can be unplugged under a program that uses it. On Windows it is what the
// environment variable KV_COM_PAIR names ("COM5,COM6", the second being the camera's), joined for good.
#pragma once

#include <windows.h>

#include <string_view>

#include "app/camera_record.h"

namespace kvtest {

struct ComPair {
  int port, farPort;  // 0 where the machine has no pair
};
// The pair that tests use, and what to say when skipping for want of it.
ComPair GivenComPair();
inline constexpr char kNoComPair[] = "no joined COM ports: name a pair in KV_COM_PAIR, like COM5,COM6";

// COM`port` and COM`farPort`, joined from construction to destruction.
class SerialLine {
 public:
  explicit SerialLine(ComPair pair = GivenComPair());
  ~SerialLine();
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;

  // False when the machine could not make the line.
  bool isPlugged() const { return plugged_; }
  // Whether lines can be made and taken away here, or only the given one be used.
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
  // Writes all bytes in one call. False when the line does not take them within 100 ms.
  bool Send(std::string_view bytes);
  bool SendRecord(const kv::CameraPoint (&points)[kv::kPointCount]);

 private:
  int farPort_;
  HANDLE port_;
  HANDLE written_;
};

}  // namespace kvtest
