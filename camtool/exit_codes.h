// The exit codes of camtool, for scripts. The same number means the same in every subcommand; each subcommand's help
// lists those that it gives.
#pragma once

namespace camtool {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsageError = 2;
inline constexpr int kNoPort = 3;
inline constexpr int kNoCamera = 4;
inline constexpr int kDamaged = 5;
inline constexpr int kEmpty = 6;

struct ExitCode {
  int code;
  const char* meaning;
};

inline constexpr ExitCode kExitCodes[] = {
    {kDone, "done, also when Ctrl+C ended what would go on for ever"},
    {kFailed, "failed on the way: the port was disconnected, a file cannot be read or written, the disk is full"},
    {kUsageError, "the command line is wrong; nothing was done"},
    {kNoPort, "the port is absent, in use, or may not be opened; nothing was done"},
    {kNoCamera, "no port has a camera"},
    {kDamaged, "done with what is whole, but parts of the recording are damaged"},
    {kEmpty, "the file to read is empty"},
};

}  // namespace camtool
