// camtool: a console program that looks at the camera's line, keeps what came over it and stands in for the camera.
// Results go to standard output, everything else to standard error. docs/camtool.md is its reference.
#include <windows.h>

#include <shellapi.h>
#include <timeapi.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "camtool/arguments.h"
#include "camtool/console.h"
#include "camtool/exit_codes.h"
#include "camtool/files.h"
#include "camtool/verbs.h"

namespace camtool {

namespace {

const Verb* const kVerbs[] = {&kScanVerb, &kRecordVerb, &kReplayVerb, &kExportVerb, &kSimulateVerb};

void PrintOverview(FILE* out) {
  std::fputs("camtool looks at the camera's serial line, records it, and stands in for the camera.\n\n", out);
  for (const Verb* verb : kVerbs)
    std::fprintf(out, "  camtool %-9s %-12s %s\n", verb->name, verb->operands, verb->purpose);
  std::fputs("\n\"camtool scan --help\" tells more about scan, and so for each.\n", out);
}

void PrintHelp(const Verb& verb) {
  std::string purpose = verb.purpose;
  purpose[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(purpose[0])));
  std::printf("usage: camtool %s%s%s%s\n\n%s.\n%s", verb.name, *verb.operands ? " " : "", verb.operands,
              verb.options.empty() ? "" : " [OPTIONS]", purpose.c_str(), verb.details);
  if (!verb.options.empty()) std::printf("\noptions:\n%s", DescribeOptions(verb.options).c_str());
  std::puts("\nexit codes:");
  for (const ExitCode& code : kExitCodes) {
    if (std::ranges::find(verb.exitCodes, code.code) == verb.exitCodes.end()) continue;
    std::printf("  %d  %s\n", code.code, code.meaning);
  }
}

int RunVerb(const Verb& verb, std::span<const std::string> arguments) {
  if (std::ranges::find(arguments, "--help") != arguments.end()) {
    PrintHelp(verb);
    return kDone;
  }
  std::vector<std::string> operands;
  std::string error;
  int result = kUsageError;
  if (ParseArguments(arguments, verb.options, verb.count, &operands, &error)) {
    // Records are 11 ms apart; the default timer is too coarse for that.
    timeBeginPeriod(1);
    result = verb.run(operands);
    timeEndPeriod(1);
  } else {
    Complain(error);
  }
  if (result == kUsageError) {
    std::fprintf(stderr, "usage: camtool %s %s; see \"camtool %s --help\"\n", verb.name, verb.operands, verb.name);
  }
  return result;
}

int Run(std::span<const std::string> arguments) {
  if (arguments.empty()) {
    PrintOverview(stderr);
    return kUsageError;
  }
  const std::string& first = arguments.front();
  if (first == "--help" || (first == "help" && arguments.size() == 1)) {
    PrintOverview(stdout);
    return kDone;
  }
  const bool isHelp = first == "help";
  const std::string& name = isHelp ? arguments[1] : first;
  const auto verb = std::ranges::find_if(kVerbs, [&](const Verb* v) { return name == v->name; });
  if (verb == std::end(kVerbs)) {
    Complain("there is no \"" + name + "\"");
    PrintOverview(stderr);
    return kUsageError;
  }
  if (isHelp) {
    PrintHelp(**verb);
    return kDone;
  }
  return RunVerb(**verb, arguments.subspan(1));
}

}  // namespace

}  // namespace camtool

int main() {
  // Not main's own arguments: they cannot hold every file name.
  int count = 0;
  LPWSTR* words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(camtool::Narrow(words[i]));
  LocalFree(words);
  const int result = camtool::Run(arguments);
  std::fflush(stdout);
  // Not by return: a thread that still waits for a port that does not answer must not hold the process.
  ExitProcess(static_cast<UINT>(result));
}
