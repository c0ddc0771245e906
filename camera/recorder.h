// A recording that is being written and is intact at any time. Any thread; a recorder belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "camera/files.h"

namespace camera {

struct Recorder {
  OutputFile file;              // opened by OpenOutput; the caller closes it
  double sizeLimit = 0;         // maximum file size in bytes; 0 = no limit
  double start = 0, flush = 0;  // by Now(): begin, and last flush to disk
};

// Returns the UTC time in units of 100 ns since 1601, as FILETIME.
std::uint64_t TimeOfDay();

// Begins the recording now. A file that it replaces remains until bytes are added. Returns false with an error message
// in `error`.
bool BeginRecording(Recorder* recorder, int port, std::string* error);

// Adds bytes received at `time`, by Now(), and flushes them to disk within a second. Returns false with an error
// message in `error` when they cannot be written, or with an empty one when they would exceed the size limit (which
// leaves space for the end).
bool AddToRecording(Recorder* recorder, double time, std::string_view bytes, std::string* error);

// Ends the recording now and returns its duration in seconds.
double EndRecording(Recorder* recorder);

}  // namespace camera
