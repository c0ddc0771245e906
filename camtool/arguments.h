// The command line behind a command's name. A command describes its options in a table, from which the arguments
// are read and its help is written. Pure, any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "camtool/faults.h"

namespace camtool {

// A number within limits, both included. Its name for messages is the option's.
struct NumberOption {
  double* number;
  double lowest, highest;
};

// A count of bytes, which may end with K, M or G (1024 each).
struct SizeOption {
  double* bytes;
};

struct Option {
  const char* name;   // "--rate"
  const char* value;  // what help calls its value; null for a switch, which has a bool
  const char* help;
  std::variant<bool*, NumberOption, SizeOption, std::string*, Trigger*> target;
};

// Sorts arguments into options, whose targets are set, and operands, whose names are given as help shows them: "FILE
// [CSV]" for one that is required and one that is not. On false `error` says in a sentence what is wrong, and targets
// may be half set. "--name value" and "--name=value" are the same; after "--" all are operands, and "-" is one
// everywhere.
bool ParseArguments(std::span<const std::string> arguments, std::span<const Option> options, std::string_view names,
                    std::vector<std::string>* operands, std::string* error);

// The whole text as a number.
bool ParseNumber(std::string_view text, double* number);

// "COM1" to "COM999", in any case. 0 for anything else.
int ParsePort(std::string_view text);

// How often a fault happens: "5%" or "0.05" is a chance for each record, "50" means every 50th record, "10s" and
// "500ms" a period.
bool ParseTrigger(std::string_view text, Trigger* trigger);

// A line for each option, for help.
std::string DescribeOptions(std::span<const Option> options);

}  // namespace camtool
