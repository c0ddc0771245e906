// Feeds parsers with random and mutated inputs until one breaks: undefined behaviour, a read beyond the input's end, a
// hang of more than ten seconds, or an answer that breaks a promise.
//
//   fuzz [--count MILLIONS] [--seed NUMBER] [--only PART-OF-A-NAME]
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/fuzz/inputs.h"
#include "tests/fuzz/targets.h"

namespace {

constexpr ULONGLONG kProgressMs = 10000;
constexpr DWORD kHangMs = 10000;

struct Settings {
  double millions = 3;
  unsigned seed = 1;
  const char* only = "";
} settings;

// What is being fed, for the last words of a crash or a hang.
struct {
  const char* target = "";
  long long number = 0;
  std::string input;
  std::atomic<long> beat{0};
} now;

void PrintInput(const char* what) {
  std::printf("BROKEN: %s: %s, input %lld of seed %u, %zu bytes:\n ", now.target, what, now.number, settings.seed,
              now.input.size());
  for (const char byte : now.input) std::printf(" %02X", static_cast<unsigned char>(byte));
  std::puts("");
  std::fflush(stdout);
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
  char what[60];
  std::snprintf(what, sizeof(what), "exception %08lX", exception->ExceptionRecord->ExceptionCode);
  PrintInput(what);
  ExitProcess(3);
}

DWORD WINAPI WatchForHangs(void*) {
  for (long seen = now.beat;; seen = now.beat) {
    Sleep(kHangMs);
    if (now.beat != seen) continue;
    PrintInput("hangs");
    ExitProcess(4);
  }
}

bool Run(const fuzz::Target& target) {
  const std::vector<std::string> examples = target.examples();
  // Each target has a seed of its own, so that --only finds the same inputs.
  fuzz::Source source{std::mt19937(settings.seed), examples, target.words, target.longest};
  fuzz::GuardedArea area(8192);
  now.target = target.name;
  const auto count = static_cast<long long>(settings.millions * 1e6 * target.share);
  long long accepted = 0;
  const ULONGLONG start = GetTickCount64();
  ULONGLONG shown = start;
  for (now.number = 0; now.number < count; ++now.number) {
    now.input = fuzz::NextInput(&source);
    ++now.beat;
    bool isAccepted = false;
    const char* why = "";
    if (!target.feed(area.Put(now.input), &isAccepted, &why)) {
      PrintInput(why);
      return false;
    }
    accepted += isAccepted;
    if (now.number % 1024 || GetTickCount64() - shown < kProgressMs) continue;
    shown = GetTickCount64();
    std::fprintf(stderr, "%s: %lld of %lld\n", target.name, now.number, count);
  }
  std::printf("%-28s %9lld inputs, %9lld accepted, %9lld refused, %4.0f s\n", target.name, count, accepted,
              count - accepted, static_cast<double>(GetTickCount64() - start) / 1000);
  std::fflush(stdout);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; i += 2) {
    const char* value = i + 1 < argc ? argv[i + 1] : "";
    if (!std::strcmp(argv[i], "--count") && std::atof(value) > 0) {
      settings.millions = std::atof(value);
    } else if (!std::strcmp(argv[i], "--seed") && *value) {
      settings.seed = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
    } else if (!std::strcmp(argv[i], "--only") && *value) {
      settings.only = value;
    } else {
      std::fputs("usage: fuzz [--count MILLIONS] [--seed NUMBER] [--only PART-OF-A-NAME]\n", stderr);
      return 2;
    }
  }
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter(OnCrash);
  CloseHandle(CreateThread(nullptr, 0, WatchForHangs, nullptr, 0, nullptr));
  std::printf("seed %u, %.3g million inputs for each parser\n", settings.seed, settings.millions);
  bool done = true;
  for (const fuzz::Target& target : fuzz::Targets()) {
    if (std::strstr(target.name, settings.only)) done &= Run(target);
  }
  std::puts(done ? "nothing broke" : "something broke");
  return done ? 0 : 1;
}
