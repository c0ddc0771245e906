#include "camtool/arguments.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "camera/text.h"
#include "camtool/faults.h"

namespace camtool {

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

bool SetSize(const SizeOption& option, std::string_view text) {
  constexpr std::string_view kUnits = "KMG";
  double factor = 1;
  if (!text.empty()) {
    const size_t unit = kUnits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(text.back()))));
    if (unit != kUnits.npos) {
      factor = std::pow(1024.0, static_cast<double>(unit + 1));
      text.remove_suffix(1);
    }
  }
  double number = 0;
  if (!ParseNumber(text, &number) || number * factor < 1 || number * factor > 1e15) return false;
  *option.bytes = number * factor;
  return true;
}

std::string Expected(const Option& option) {
  return std::visit(
      Match{[](bool*) { return std::string("no value"); },
            [](const NumberOption& number) {
              return camera::Format("a number from %.15g to %.15g", number.lowest, number.highest);
            },
            [](const SizeOption&) { return std::string("a number of bytes, such as 500K or 10M"); },
            [](std::string*) { return std::string("a text"); },
            [](Trigger*) {
              return std::string("a probability for each record (5%), a count (50) or a period (10s, 500ms)");
            }},
      option.target);
}

bool SetOption(const Option& option, const std::string& value) {
  return std::visit(Match{[](bool* flag) { return *flag = true; },
                          [&](const NumberOption& number) { return SetNumber(number, value); },
                          [&](const SizeOption& size) { return SetSize(size, value); },
                          [&](std::string* text) { return !(*text = value).empty(); },
                          [&](Trigger* trigger) { return ParseTrigger(value, trigger); }},
                    option.target);
}

bool IsSwitch(const Option& option) {
  return std::holds_alternative<bool*>(option.target);
}

// Reads the option at arguments[*at] and moves `at` to its last argument.
bool ReadOption(std::span<const std::string> arguments, std::span<const Option> options, size_t* at,
                std::string* error) {
  const std::string& argument = arguments[*at];
  const size_t equals = argument.find('=');
  const std::string name = argument.substr(0, equals);
  const auto option = std::ranges::find_if(options, [&](const Option& o) { return name == o.name; });
  if (option == options.end()) {
    *error = "unknown option \"" + name + "\"";
    return false;
  }
  std::string value;
  if (equals != argument.npos) {
    value = argument.substr(equals + 1);
  } else if (!IsSwitch(*option)) {
    if (*at + 1 == arguments.size()) {
      *error = "missing value of " + name + ": " + Expected(*option);
      return false;
    }
    value = arguments[++*at];
  }
  if ((equals == argument.npos || !IsSwitch(*option)) && SetOption(*option, value)) return true;
  *error = name + " requires " + Expected(*option) + ", not \"" + value + "\"";
  return false;
}

}  // namespace

bool ParseArguments(std::span<const std::string> arguments, std::span<const Option> options, std::string_view names,
                    std::vector<std::string>* operands, std::string* error) {
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
  std::istringstream rest{std::string(names)};
  for (std::string name; rest >> name; ++count) {
    if (count < operands->size() || name.starts_with('[')) continue;
    *error = "missing argument " + name;
    return false;
  }
  if (operands->size() > count) *error = "unexpected argument \"" + (*operands)[count] + "\"";
  return operands->size() <= count;
}

bool ParseNumber(std::string_view text, double* number) {
  // strtod also accepts leading blanks, hexadecimal numbers, infinity and NaN.
  if (text.empty() || text.find_first_not_of("0123456789.+-eE") != text.npos) return false;
  const std::string copy(text);
  char* end = nullptr;
  *number = std::strtod(copy.c_str(), &end);
  return *end == '\0' && std::isfinite(*number);
}

bool ParseTrigger(std::string_view text, Trigger* trigger) {
  const auto read = [&](std::string_view unit, double factor, double* number) {
    if (!text.ends_with(unit)) return false;
    if (!ParseNumber(text.substr(0, text.size() - unit.size()), number)) return false;
    *number *= factor;
    return true;
  };
  double number = 0;
  if (read("%", 0.01, &number)) {
    *trigger = {Trigger::kChance, number};
    return number >= 0 && number <= 1;
  }
  if (read("ms", 0.001, &number) || read("s", 1, &number)) {
    *trigger = {Trigger::kPeriod, number};
    return number >= 0.001;
  }
  if (!ParseNumber(text, &number) || number < 0) return false;
  *trigger = number < 1 ? Trigger{Trigger::kChance, number} : Trigger{Trigger::kEveryNth, number};
  return number < 1 || (number == std::floor(number) && number <= 1e9);
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

}  // namespace camtool
