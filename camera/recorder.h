// A recording that is being made, which is intact at any time. Any thread; a recorder belongs to one at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "camera/files.h"

namespace camera {

struct Recorder {
  OutputFile file;              // opened by OpenOutput; the caller closes it
  double sizeLimit = 0;         // bytes of the file, 0 = without limit
  double start = 0, flush = 0;  // by Now(): when it began and when it was on the disk last
};

// The time of day: UTC in units of 100 ns since 1601, as FILETIME.
std::uint64_t TimeOfDay();

// The recording begins now. A file that it replaces stays until there are bytes. False with a sentence in `error`.
bool BeginRecording(Recorder* recorder, int port, std::string* error);

// Adds bytes that came at that time of Now(). Within a second they are on the disk. False with a sentence in `error`
// when they cannot be written, or with none when they do not fit into the size limit (the end has room in it).
bool AddToRecording(Recorder* recorder, double time, std::string_view bytes, std::string* error);

// Ends the recording in good order, at this moment, and returns how long it was in seconds.
double EndRecording(Recorder* recorder);

}  // namespace camera
