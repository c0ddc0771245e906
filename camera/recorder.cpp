#include "camera/recorder.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "camera/camera_port.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/recording.h"

namespace camera {

namespace {

constexpr double kFlushSeconds = 1;

std::uint64_t Microseconds(double seconds) {
  return static_cast<std::uint64_t>(std::llround(std::max(seconds, 0.0) * 1e6));
}

}  // namespace

std::uint64_t TimeOfDay() {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  return (std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
}

bool BeginRecording(Recorder* recorder, int port, std::string* error) {
  recorder->start = recorder->flush = Now();
  const std::string header = EncodeHeader({TimeOfDay(), kv::kCameraBaudRate, static_cast<std::uint32_t>(port)});
  // A replaced recording remains until the new one contains data.
  return AppendToOutput(&recorder->file, header, error) &&
         (recorder->file.file.replaces() || PublishOutput(&recorder->file, error));
}

bool AddToRecording(Recorder* recorder, double time, std::string_view bytes, std::string* error) {
  const std::string chunk = EncodeChunks(Microseconds(time - recorder->start), bytes);
  const double size =
      static_cast<double>(recorder->file.file.size()) + static_cast<double>(chunk.size() + kChunkOverhead);
  if (recorder->sizeLimit > 0 && size > recorder->sizeLimit) return false;
  if (!AppendToOutput(&recorder->file, chunk, error) || !PublishOutput(&recorder->file, error)) return false;
  // A crash of this process loses nothing; a power failure loses at most this interval.
  if (!recorder->file.stream && time - recorder->flush >= kFlushSeconds) {
    recorder->file.file.Flush();
    recorder->flush = time;
  }
  return true;
}

double EndRecording(Recorder* recorder) {
  const double seconds = Now() - recorder->start;
  std::string unused;
  AppendToOutput(&recorder->file, EncodeEnd(Microseconds(seconds)), &unused);
  return seconds;
}

}  // namespace camera
