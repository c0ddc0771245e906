// Parses the arguments of a command. A command describes its options in a table, which is used for parsing and for its
// help. Pure, any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "camtool/faults.h"

namespace camtool {

// A number within inclusive limits. Messages use the option's name.
struct NumberOption {
  double* number;
  double lowest, highest;
};

// A number of bytes with an optional suffix K, M or G (1024 each).
struct SizeOption {
  double* bytes;
};

struct Option {
  const char* name;   // "--rate"
  const char* value;  // name of the value in the help; null for a switch, whose target is a bool
  const char* help;
  std::variant<bool*, NumberOption, SizeOption, std::string*, Trigger*> target;
};

// Splits arguments into options, which set their targets, and operands. `names` are the operands as shown in the help:
// "FILE [CSV]" has a required and an optional one. Returns false with an error message in `error`; some targets may be
// set then. "--name value" and "--name=value" are equivalent; everything after "--" is an operand, and "-" always is.
bool ParseArguments(std::span<const std::string> arguments, std::span<const Option> options, std::string_view names,
                    std::vector<std::string>* operands, std::string* error);

// Parses the whole text as a number.
bool ParseNumber(std::string_view text, double* number);

// Parses the frequency of a fault: "5%" or "0.05" is a probability for each record, "50" means every 50th record, "10s"
// and "500ms" are periods.
bool ParseTrigger(std::string_view text, Trigger* trigger);

// Returns a line of help for each option.
std::string DescribeOptions(std::span<const Option> options);

}  // namespace camtool
