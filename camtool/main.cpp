// camtool: a console program that examines the camera's line, records and replays its bytes, and simulates the camera.
// Results go to standard output, everything else to standard error. See docs/camtool.md.
#include <windows.h>

#include <timeapi.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/framework/modules.h"
#include "kv/framework/version.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

const Command* const kCommands[] = {&kScanCommand, &kRecordCommand, &kReplayCommand,  &kExportCommand,
                                    &kInfoCommand, &kWatchCommand,  &kSimulateCommand};

void PrintOverview(FILE* out) {
  std::fputs(
      "camtool finds the camera's serial port, records and shows what the camera sends, and simulates a camera.\n\n",
      out);
  for (const Command* command : kCommands)
    std::fprintf(out, "  camtool %-9s %-12s %s\n", command->name, command->operands, command->purpose);
  std::fputs("\nRun \"camtool COMMAND --help\" for the options of a command, \"camtool --version\" for the version.\n",
             out);
}

std::string Usage(const Command& command) {
  return std::string("usage: camtool ") + command.name + (*command.operands ? " " : "") + command.operands +
         " [OPTIONS]";
}

void PrintHelp(const Command& command) {
  std::string purpose = command.purpose;
  purpose[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(purpose[0])));
  std::printf("%s\n\n%s.\n%s\noptions:\n%s", Usage(command).c_str(), purpose.c_str(), command.details,
              kv::DescribeOptions(command.options).c_str());
  std::puts("\nexit codes:");
  for (const ExitCode& code : kExitCodes) {
    if (std::ranges::find(command.exitCodes, code.code) == command.exitCodes.end()) continue;
    std::printf("  %d  %s\n", code.code, code.meaning);
  }
}

// Records are 11 ms apart, which requires a finer timer than the default, until the process ends.
void UseFineTimer() {
  decltype(&timeBeginPeriod) begin;
  kv::FindProcedure(LoadLibraryA("winmm.dll"), "timeBeginPeriod", &begin);
  if (begin) begin(1);
}

int RunCommand(const Command& command, std::span<const std::string> arguments) {
  if (kv::HasArgument(arguments, "--help")) {
    PrintHelp(command);
    return kDone;
  }
  std::vector<std::string> operands;
  kv::ArgumentError error;
  int result = kUsageError;
  if (kv::ParseArguments(arguments, command.options, command.operands, &operands, &error)) {
    UseFineTimer();
    result = command.run(operands);
  } else {
    PrintError(error.reason);
  }
  if (result == kUsageError) {
    std::fprintf(stderr, "%s; run \"camtool %s --help\"\n", Usage(command).c_str(), command.name);
  }
  return result;
}

int Run(std::span<const std::string> arguments) {
  if (arguments.empty()) {
    PrintOverview(stderr);
    return kUsageError;
  }
  const std::string& first = arguments.front();
  if (kv::HasArgument(arguments, "--version")) {
    std::puts("camtool " KV_VERSION_TEXT);
    return kDone;
  }
  if (first == "--help" || (first == "help" && arguments.size() == 1)) {
    PrintOverview(stdout);
    return kDone;
  }
  const bool isHelp = first == "help";
  const std::string& name = isHelp ? arguments[1] : first;
  const auto command = std::ranges::find_if(kCommands, [&](const Command* v) { return name == v->name; });
  if (command == std::end(kCommands)) {
    PrintError("unknown command \"" + name + "\"; run \"camtool --help\"");
    return kUsageError;
  }
  if (isHelp) {
    PrintHelp(**command);
    return kDone;
  }
  return RunCommand(**command, arguments.subspan(1));
}

}  // namespace

}  // namespace camtool

int main() {
  kv::RestrictLibrarySearch();
  const int result = camtool::Run(kv::ProcessArguments());
  std::fflush(stdout);
  // Not by returning from main: threads that are blocked on a port must not delay the end of the process.
  ExitProcess(static_cast<UINT>(result));
}
