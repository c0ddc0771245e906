// Parses the arguments of a program. It describes its options in a table, which is used for parsing and for the help.
// Texts are UTF-8. Pure, any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kv {

// A number within inclusive limits.
struct NumberOption {
  double* number;
  double lowest, highest;
};

// A value of another type.
struct ParsedOption {
  void* target;
  bool (*parse)(std::string_view text, void* target);  // false for an invalid text
  const char* expected;                                // "a percentage", for messages
};
// Makes one from bool kParse(std::string_view text, Value* value).
template <auto kParse, class Value>
ParsedOption ParsedBy(Value* target, const char* expected) {
  return {target, [](std::string_view text, void* to) { return kParse(text, static_cast<Value*>(to)); }, expected};
}

struct Option {
  const char* name;   // "--rate"
  const char* value;  // name of the value in the help; null for a switch, whose target is a bool
  const char* help;
  std::variant<bool*, NumberOption, ParsedOption, std::string*> target;
};

struct ArgumentError {
  std::string words;   // the invalid arguments as they were given; empty if one is missing
  std::string reason;  // in English, part of a sentence
};

// Splits arguments into options, which set their targets, and operands. `names` are the operands as shown in the help:
// "FILE [CSV]" has a required and an optional one. Returns false, with the first error in `error`; some targets may be
// set then. "--name value" and "--name=value" are equivalent; everything after "--" is an operand, and "-" always is.
bool ParseArguments(std::span<const std::string> arguments, std::span<const Option> options, std::string_view names,
                    std::vector<std::string>* operands, ArgumentError* error);

// Whether `name` is among the arguments before "--".
bool HasArgument(std::span<const std::string> arguments, std::string_view name);

// The arguments of the process, without the program's name.
std::vector<std::string> ProcessArguments();

// Parses the whole text as a decimal number, with a point whatever setlocale has set.
bool ParseNumber(std::string_view text, double* number);

// Returns a line of help for each option.
std::string DescribeOptions(std::span<const Option> options);

}  // namespace kv
