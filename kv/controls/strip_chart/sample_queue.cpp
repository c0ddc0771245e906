#include "kv/controls/strip_chart/sample_queue.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"

namespace kv {

namespace {

SRWLOCK lock = SRWLOCK_INIT;  // of all queues
SampleQueue* queues = nullptr;

class Locked {
 public:
  Locked() { AcquireSRWLockExclusive(&lock); }
  ~Locked() { ReleaseSRWLockExclusive(&lock); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
};

}  // namespace

SampleQueue::SampleQueue(HWND window) : window_(window) {
  newest_.fill(-kStripMaxTime);
  const Locked locked;
  next_ = std::exchange(queues, this);
}

SampleQueue::~SampleQueue() {
  const Locked locked;
  SampleQueue** link = &queues;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

std::vector<QueuedSample> SampleQueue::Take(bool wake) {
  const Locked locked;
  if (wake) woken_ = false;
  return std::exchange(samples_, {});
}

void SampleQueue::SetNewest(const std::array<double, kStripChannels>& times) {
  const Locked locked;
  if (samples_.empty()) newest_ = times;
}

void SampleQueue::AddRejected(size_t count) {
  const Locked locked;
  rejected_ += static_cast<DWORD>(count);
}

DWORD SampleQueue::rejected() const {
  const Locked locked;
  return rejected_;
}

bool SampleQueue::Put(int channel, std::span<const StripSample> samples) {
  double last = newest_[channel];
  bool isAllowed = samples.size() <= kStripQueueCapacity - samples_.size();
  for (const StripSample& sample : samples) {
    isAllowed = isAllowed && sample.time >= last && sample.time <= kStripMaxTime;
    last = sample.time;
  }
  if (!isAllowed) {
    rejected_ += static_cast<DWORD>(samples.size());
    return false;
  }
  newest_[channel] = last;
  for (const StripSample& sample : samples) samples_.push_back({channel, sample});
  if (!woken_) woken_ = PostMessageA(window_, kControlCommand, kStripUpdate, 0) != 0;
  return true;
}

BOOL QueueStripSamples(HWND chart, int channel, std::span<const StripSample> samples) {
  if (channel < 0 || channel >= kStripChannels) return FALSE;
  const Locked locked;
  for (SampleQueue* queue = queues; queue; queue = queue->next_) {
    if (queue->window_ == chart) return queue->Put(channel, samples);
  }
  return FALSE;
}

}  // namespace kv
