// Feeds parsers with random and mutated inputs until one breaks: undefined behavior, a read beyond the input's end, a
// hang of more than ten seconds, or a result that violates the target's contract.
//
//   fuzz [--count MILLIONS] [--seed NUMBER] [--only PART-OF-A-NAME]
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/targets.h"
#include "tests/support/test_window.h"

namespace {

constexpr DWORD kHangMs = 10000;

struct Settings {
  double millions = 3;
  unsigned seed = 1;
  const char* only = "";
} settings;

// The current input, for the report of a crash or a hang.
struct {
  const char* target = "";
  long long number = 0;
  std::string input;
  std::atomic<long> beat{0};
} now;

struct Source {
  std::mt19937 random;
  std::span<const std::string> examples;  // valid inputs
  std::span<const std::string> words;     // tokens to insert
  size_t longest;
};

size_t Below(Source* source, size_t end) {
  return end == 0 ? 0 : source->random() % end;
}

char RandomByte(Source* source) {
  return static_cast<char>(source->random() >> 24);
}

const std::string& AnyOf(Source* source, std::span<const std::string> texts) {
  return texts[Below(source, texts.size())];
}

std::string Noise(Source* source, std::string_view characters) {
  std::string bytes(Below(source, std::min<size_t>(source->longest, 200)), '\0');
  for (char& byte : bytes)
    byte = characters.empty() ? RandomByte(source) : characters[Below(source, characters.size())];
  return bytes;
}

void Mutate(Source* source, std::string* bytes) {
  const size_t at = Below(source, bytes->size() + 1);
  const size_t length = Below(source, std::min<size_t>(bytes->size() - at, 16) + 1);
  switch (source->random() % 8) {
    case 0:
      if (at < bytes->size()) (*bytes)[at] = static_cast<char>((*bytes)[at] ^ (1 << (source->random() % 8)));
      break;
    case 1:
      if (at < bytes->size()) (*bytes)[at] = RandomByte(source);
      break;
    case 2: bytes->insert(at, 1, RandomByte(source)); break;
    case 3: bytes->erase(at, length); break;
    case 4: bytes->insert(at, bytes->substr(at, length)); break;
    case 5: bytes->replace(at, length, AnyOf(source, source->words)); break;
    case 6: bytes->resize(at); break;
    default: {
      const std::string& other = AnyOf(source, source->examples);
      bytes->replace(at, bytes->npos, other.substr(Below(source, other.size())));
      break;
    }
  }
}

// One input: random bytes, random characters of the examples, or an example (or two, concatenated) with some bytes
// changed, removed, duplicated or replaced by words. The same seed gives the same inputs.
std::string NextInput(Source* source) {
  const unsigned kind = source->random() % 16;
  if (kind == 0) return Noise(source, {});
  if (kind == 1) return Noise(source, AnyOf(source, source->examples));
  std::string bytes = AnyOf(source, source->examples);
  if (kind == 2) bytes += AnyOf(source, source->examples);
  for (size_t changes = 1 + Below(source, 6); changes > 0; --changes) Mutate(source, &bytes);
  bytes.resize(std::min(bytes.size(), source->longest));
  return bytes;
}

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
  // Each target has its own seed, so that --only generates the same inputs.
  Source source{std::mt19937(settings.seed), examples, target.words, target.longest};
  const kvtest::GuardedBytes area(fuzz::kAreaSize);
  now.target = target.name;
  const auto count = static_cast<long long>(settings.millions * 1e6);
  long long accepted = 0;
  const ULONGLONG start = GetTickCount64();
  for (now.number = 0; now.number < count; ++now.number) {
    now.input = NextInput(&source);
    ++now.beat;
    bool isAccepted = false;
    if (const char* broken = target.feed(fuzz::PutAtEnd(area, now.input), &isAccepted)) {
      PrintInput(broken);
      return false;
    }
    accepted += isAccepted;
  }
  std::printf("%-28s %9lld inputs, %9lld accepted, %9lld rejected, %4.0f s\n", target.name, count, accepted,
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
