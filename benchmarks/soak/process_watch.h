// Watches a running program from outside, once a second: does its main thread answer, how much does it hold?
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace soak {

struct Sample {
  double seconds;
  SIZE_T privateBytes;
  DWORD gdiObjects, userObjects, handles;  // 0 where the system does not tell
};

class ProcessWatch {
 public:
  ProcessWatch(HANDLE process, HWND window);
  ~ProcessWatch();
  ProcessWatch(const ProcessWatch&) = delete;
  ProcessWatch& operator=(const ProcessWatch&) = delete;

  // While this is set, the main thread may take as long as a scan of the ports does.
  std::atomic<bool> isConnecting{false};

  // Of a null message there and back, in milliseconds.
  double LongestAnswer() const { return longestAnswer_; }
  double LongestAnswerConnecting() const { return longestConnecting_; }
  double MedianAnswer() const;
  // Answers that did not come within ten seconds while the process lived.
  int Hangs() const { return hangs_; }
  std::vector<Sample> Samples() const;

 private:
  void Watch();

  HANDLE process_;
  HWND window_;
  std::atomic<bool> stop_{false};
  std::atomic<double> longestAnswer_{0}, longestConnecting_{0};
  std::atomic<int> hangs_{0};
  mutable std::mutex mutex_;
  std::vector<Sample> samples_;
  std::vector<double> answers_;
  std::thread thread_;
};

// The rows that every table has: answers, memory at the start, in the middle and at the end, objects, hangs.
void PrintWatch(const ProcessWatch& watch);

}  // namespace soak
