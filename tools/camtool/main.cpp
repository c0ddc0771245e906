// camtool: a console program that stands in for the camera and looks at its line, for people without one. Each verb has
// a file of its own and a line in the table below.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <span>

#include "tools/camtool/verbs.h"

namespace {

constexpr camtool::Verb kVerbs[] = {
    {"simulate", "simulate PORT [--rate RECORDS_PER_SECOND] [--seconds DURATION]",
     "streams records of four moving points to PORT (COM1..COM999)", camtool::Simulate},
};

int PrintUsage() {
  std::fputs("usage:\n", stderr);
  for (const camtool::Verb& verb : kVerbs) std::fprintf(stderr, "  camtool %s\n      %s\n", verb.usage, verb.purpose);
  return camtool::kUsageError;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return PrintUsage();
  for (const camtool::Verb& verb : kVerbs) {
    if (std::strcmp(argv[1], verb.name) != 0) continue;
    const int result = verb.run(std::span<char* const>(argv + 2, argv + argc));
    if (result == camtool::kUsageError) std::fprintf(stderr, "usage: camtool %s\n", verb.usage);
    return result;
  }
  std::fprintf(stderr, "camtool: unknown verb \"%s\"\n", argv[1]);
  return PrintUsage();
}
