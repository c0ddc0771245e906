// camtool's commands and exit codes. Each command has its own file with its settings, option table and implementation.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "kv/toolkit/arguments.h"

namespace camtool {

// Exit codes, for scripts. A code has the same meaning in every command; each command's help lists its own.
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
    {kDone, "done; also after Ctrl+C ended a command that runs without limit"},
    {kFailed, "failed: the port was disconnected, a file cannot be read or written, or the disk is full"},
    {kUsageError, "invalid command line; nothing was done"},
    {kNoPort, "the port does not exist, is busy, or access is denied; nothing was done"},
    {kNoCamera, "no camera found"},
    {kDamaged, "done with what is intact, but parts of the recording are damaged"},
    {kEmpty, "the input is empty"},
};

struct Command {
  const char* name;
  const char* operands;  // as shown in the help; see ParseArguments
  const char* purpose;   // one line
  const char* details;   // more help; lines end with line feeds
  std::span<const kv::Option> options;
  std::span<const int> exitCodes;
  // Runs the command with its operands, after the options' targets are set, and returns the exit code. For kUsageError,
  // main refers to the help.
  int (*run)(const std::vector<std::string>& operands);
};

extern const Command kScanCommand, kRecordCommand, kReplayCommand, kExportCommand, kInfoCommand, kWatchCommand,
    kSimulateCommand;

}  // namespace camtool
