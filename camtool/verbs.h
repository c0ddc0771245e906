// camtool's subcommands. Each has a file of its own that holds its settings, the table of its options and what it does.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "camtool/arguments.h"
#include "camtool/exit_codes.h"

namespace camtool {

struct Verb {
  const char* name;
  const char* operands;  // as help shows them
  Operands count;
  const char* purpose;  // one line
  const char* details;  // what else help says; lines end with line feeds
  std::span<const Option> options;
  std::span<const int> exitCodes;
  // Takes the operands, the options' targets being set, and returns the exit code; kUsageError makes main name the
  // help.
  int (*run)(const std::vector<std::string>& operands);
};

extern const Verb kScanVerb, kRecordVerb, kReplayVerb, kExportVerb, kSimulateVerb;

}  // namespace camtool
