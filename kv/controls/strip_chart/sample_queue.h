// The way of samples from any thread to a chart: a bounded queue for each window, found by its handle. No thread waits
// for the window, only for another thread that copies samples.
#pragma once

#include <windows.h>

#include <array>
#include <vector>

#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

struct QueuedSample {
  int channel;
  StripSample sample;
};

// Created and destroyed with the control, whose thread calls everything but QueueStripSamples.
class SampleQueue {
 public:
  explicit SampleQueue(HWND window);
  ~SampleQueue();
  SampleQueue(const SampleQueue&) = delete;
  SampleQueue& operator=(const SampleQueue&) = delete;

  // Takes all samples. With `wake`, the next sample posts kStripUpdate to the window.
  std::vector<QueuedSample> Take(bool wake);
  // The newest times of the channels in the chart; -kStripMaxTime without samples.
  void SetNewest(const std::array<double, kStripChannels>& times);
  void AddRejected(size_t count);
  DWORD rejected() const;

 private:
  friend BOOL QueueStripSamples(HWND chart, int channel, std::span<const StripSample> samples);
  bool Put(int channel, std::span<const StripSample> samples);

  HWND window_;
  SampleQueue* next_;  // of the list of all queues
  std::vector<QueuedSample> samples_;
  std::array<double, kStripChannels> newest_;
  DWORD rejected_ = 0;
  bool woken_ = false;
};

}  // namespace kv
