#include "camtool/press_chance.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "app/camera_link.h"

namespace camtool {

namespace {

constexpr double kReadGap = 0.005;
constexpr int kReadBytes = 64;
constexpr double kReadPatience = kv::kReplyTimeoutMs / 1000.0;

struct Read {
  int bytes;
  double end;
};

// The read whose first bytes are those of `first`.
Read ReadFrom(std::span<const Arrival> arrivals, size_t first) {
  int bytes = 0;
  for (size_t i = first;; ++i) {
    bytes += arrivals[i].bytes;
    if (bytes >= kReadBytes) return {kReadBytes, arrivals[i].seconds};
    const bool isLast = i + 1 == arrivals.size();
    if (isLast || arrivals[i + 1].seconds - arrivals[i].seconds > kReadGap) {
      return {bytes, arrivals[i].seconds + kReadGap};
    }
  }
}

}  // namespace

double PressChance(std::span<const Arrival> arrivals, double from, double to) {
  double found = 0, all = 0, before = from;
  for (size_t i = 0; i < arrivals.size(); ++i) {
    // Every read that begins between the arrivals before and this one brings the same bytes; those that begin too early
    // give up before.
    const double now = arrivals[i].seconds;
    const Read read = ReadFrom(arrivals, i);
    // What the end of the watch cut off says nothing.
    if (read.end > to) break;
    all += now - before;
    if (read.bytes > static_cast<int>(kv::kSilentPortBytes)) {
      found += std::max(0.0, now - std::max(before, read.end - kReadPatience));
    }
    before = now;
  }
  return all > 0 ? found / all : 0;
}

}  // namespace camtool
