#include "kv/toolkit/arguments.h"

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kv/framework/bounded_format.h"
#include "kv/framework/utf8.h"

namespace kv {

namespace {

// Visitor for std::visit with a lambda for each type.
template <class... Cases>
struct Match : Cases... {
  using Cases::operator()...;
};

bool SetNumber(const NumberOption& option, std::string_view text) {
  double number = 0;
  if (!ParseNumber(text, &number) || number < option.lowest || number > option.highest) return false;
  *option.number = number;
  return true;
}

std::string Expected(const Option& option) {
  return std::visit(Match{[](bool*) { return std::string("no value"); },
                          [](const NumberOption& number) {
                            char text[80];
                            FormatBoundedA(text, sizeof(text), "a number from %.15g to %.15g", number.lowest,
                                           number.highest);
                            return std::string(text);
                          },
                          [](const ParsedOption& parsed) { return std::string(parsed.expected); },
                          [](std::string*) { return std::string("a text"); }},
                    option.target);
}

bool SetOption(const Option& option, const std::string& value) {
  return std::visit(Match{[](bool* flag) { return *flag = true; },
                          [&](const NumberOption& number) { return SetNumber(number, value); },
                          [&](const ParsedOption& parsed) { return parsed.parse(value, parsed.target); },
                          [&](std::string* text) { return !(*text = value).empty(); }},
                    option.target);
}

bool IsSwitch(const Option& option) {
  return std::holds_alternative<bool*>(option.target);
}

// Reads the option at arguments[*at] and moves `at` to its last argument.
bool ReadOption(std::span<const std::string> arguments, std::span<const Option> options, size_t* at,
                ArgumentError* error) {
  const std::string& argument = arguments[*at];
  const size_t equals = argument.find('=');
  const std::string name = argument.substr(0, equals);
  const auto option = std::ranges::find_if(options, [&](const Option& o) { return name == o.name; });
  if (option == options.end()) {
    *error = {argument, "unknown option \"" + name + "\""};
    return false;
  }
  std::string value;
  if (equals != argument.npos) {
    value = argument.substr(equals + 1);
  } else if (!IsSwitch(*option)) {
    if (*at + 1 == arguments.size()) {
      *error = {argument, "missing value of " + name + ": " + Expected(*option)};
      return false;
    }
    value = arguments[++*at];
  }
  if ((equals == argument.npos || !IsSwitch(*option)) && SetOption(*option, value)) return true;
  *error = {equals == argument.npos ? argument + " " + value : argument,
            name + " requires " + Expected(*option) + ", not \"" + value + "\""};
  return false;
}

}  // namespace

bool ParseArguments(std::span<const std::string> arguments, std::span<const Option> options, std::string_view names,
                    std::vector<std::string>* operands, ArgumentError* error) {
  bool onlyOperands = false;
  for (size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (!onlyOperands && argument == "--") {
      onlyOperands = true;
    } else if (!onlyOperands && argument.size() > 1 && argument.starts_with('-')) {
      if (!ReadOption(arguments, options, &at, error)) return false;
    } else {
      operands->push_back(argument);
    }
  }
  size_t count = 0;
  while (!names.empty()) {
    const std::string_view name = names.substr(0, names.find(' '));
    names.remove_prefix(std::min(name.size() + 1, names.size()));
    if (count++ < operands->size() || name.starts_with('[')) continue;
    *error = {"", "missing argument " + std::string(name)};
    return false;
  }
  if (operands->size() > count) *error = {(*operands)[count], "unexpected argument \"" + (*operands)[count] + "\""};
  return operands->size() <= count;
}

bool HasArgument(std::span<const std::string> arguments, std::string_view name) {
  const auto end = std::ranges::find(arguments, "--");
  return std::find(arguments.begin(), end, name) != end;
}

std::vector<std::string> ProcessArguments() {
  // Not main's arguments, which cannot represent every file name.
  int count = 0;
  LPWSTR* words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; words && i < count; ++i) arguments.push_back(Narrow(words[i]));
  LocalFree(words);
  return arguments;
}

bool ParseNumber(std::string_view text, double* number) {
  // strtod also accepts leading blanks, hexadecimal numbers, infinity and NaN.
  if (text.empty() || text.find_first_not_of("0123456789.+-eE") != text.npos) return false;
  std::string copy(text);
  std::ranges::replace(copy, '.', *std::localeconv()->decimal_point);
  char* end = nullptr;
  *number = std::strtod(copy.c_str(), &end);
  return *end == '\0' && std::isfinite(*number);
}

std::string DescribeOptions(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) {
    std::string left = std::string("  ") + option.name + (option.value ? std::string(" ") + option.value : "");
    left.resize(std::max<size_t>(left.size() + 2, 30), ' ');
    text += left + option.help + "\n";
  }
  return text;
}

}  // namespace kv
