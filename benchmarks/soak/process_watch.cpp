#include "benchmarks/soak/process_watch.h"

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <vector>

#include "camera/ports.h"

namespace soak {

namespace {

constexpr DWORD kHangMs = 10000;

Sample Look(HANDLE process, double seconds) {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(process, &memory, sizeof(memory));
  DWORD handles = 0;
  GetProcessHandleCount(process, &handles);
  return {seconds, memory.PagefileUsage, GetGuiResources(process, GR_GDIOBJECTS),
          GetGuiResources(process, GR_USEROBJECTS), handles};
}

}  // namespace

ProcessWatch::ProcessWatch(HANDLE process, HWND window)
    : process_(process), window_(window), thread_([this] { Watch(); }) {}

ProcessWatch::~ProcessWatch() {
  stop_ = true;
  thread_.join();
}

void ProcessWatch::Watch() {
  const double start = camera::Now();
  for (int second = 0; !stop_; ++second) {
    while (!stop_ && camera::Now() < start + second) Sleep(20);
    if (stop_ || WaitForSingleObject(process_, 0) == WAIT_OBJECT_0) return;
    const bool mayScan = isConnecting;
    const double asked = camera::Now();
    DWORD_PTR answer = 0;
    const bool answered = SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, kHangMs, &answer) != 0;
    const double took = (camera::Now() - asked) * 1000;
    if (!answered) {
      hangs_ += took >= kHangMs && WaitForSingleObject(process_, 0) != WAIT_OBJECT_0;
      continue;
    }
    std::atomic<double>& longest = mayScan || isConnecting ? longestConnecting_ : longestAnswer_;
    longest = std::max(longest.load(), took);
    const std::scoped_lock lock(mutex_);
    answers_.push_back(took);
    samples_.push_back(Look(process_, asked - start));
  }
}

double ProcessWatch::MedianAnswer() const {
  const std::scoped_lock lock(mutex_);
  std::vector<double> sorted = answers_;
  std::ranges::sort(sorted);
  return sorted.empty() ? 0 : sorted[sorted.size() / 2];
}

std::vector<Sample> ProcessWatch::Samples() const {
  const std::scoped_lock lock(mutex_);
  return samples_;
}

void PrintWatch(const ProcessWatch& watch) {
  std::printf("  null message, there and back  median %.1f ms, longest %.0f ms", watch.MedianAnswer(),
              watch.LongestAnswer());
  if (watch.LongestAnswerConnecting() > 0) std::printf(" (while connecting %.0f ms)", watch.LongestAnswerConnecting());
  std::puts("");
  const std::vector<Sample> samples = watch.Samples();
  if (samples.size() < 3) return;
  // The first ten seconds are the program's own warming up.
  const Sample& first = samples[std::min<size_t>(samples.size() / 4, 10)];
  const Sample& middle = samples[samples.size() / 2];
  const Sample& last = samples.back();
  const auto kib = [](const Sample& sample) { return static_cast<unsigned long>(sample.privateBytes / 1024); };
  std::printf("  private memory                start %lu, middle %lu, end %lu KiB\n", kib(first), kib(middle),
              kib(last));
  const auto row = [&](const char* name, DWORD Sample::* field) {
    if (first.*field == 0 && last.*field == 0) {
      std::printf("  %-30s not told by this system\n", name);
    } else {
      std::printf("  %-30sstart %lu, middle %lu, end %lu\n", name, first.*field, middle.*field, last.*field);
    }
  };
  row("GDI objects", &Sample::gdiObjects);
  row("USER objects", &Sample::userObjects);
  row("handles", &Sample::handles);
  std::printf("  hangs of 10 s or more         %d\n", watch.Hangs());
}

}  // namespace soak
