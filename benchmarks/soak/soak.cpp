// Hostile minutes: the tool and the gallery used hard, each for so long. Ends with a table for each, and with 0 when
// nothing crashed, hung or failed to close.
//
//   soak [SECONDS] [--seed NUMBER] [--only tool|gallery]     600 s and seed 1 if nothing else is said
#include <windows.h>

#include <timeapi.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "benchmarks/soak/soaks.h"

int main(int argc, char** argv) {
  double seconds = 600;
  std::uint32_t seed = 1;
  const char* only = "";
  for (int i = 1; i < argc; ++i) {
    const char* value = i + 1 < argc ? argv[i + 1] : "";
    if (std::strcmp(argv[i], "--seed") == 0 && *value) {
      seed = static_cast<std::uint32_t>(std::strtoul(value, nullptr, 10));
      ++i;
    } else if (std::strcmp(argv[i], "--only") == 0 && (!std::strcmp(value, "tool") || !std::strcmp(value, "gallery"))) {
      only = value;
      ++i;
    } else if (std::atof(argv[i]) > 0) {
      seconds = std::atof(argv[i]);
    } else {
      std::fputs("usage: soak [SECONDS] [--seed NUMBER] [--only tool|gallery]\n", stderr);
      return 2;
    }
  }
  setvbuf(stdout, nullptr, _IONBF, 0);
  timeBeginPeriod(1);
  int result = 0;
  if (std::strcmp(only, "gallery") != 0) result |= soak::SoakTool(seconds, seed);
  if (std::strcmp(only, "tool") != 0) result |= soak::SoakGallery(seconds, seed);
  timeEndPeriod(1);
  std::puts(result == 0 ? "\nnothing fell" : "\nsomething fell");
  return result;
}
