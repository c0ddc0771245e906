// Runs a function on a separate thread, with progress and cancellation.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>

namespace camview {

class Worker {
 public:
  Worker() = default;
  // Cancels and waits.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Cancels the running function, waits for it and starts `work`. Returns false when no thread could be created. Call
  // Start and Wait on the main thread only.
  bool Start(std::function<void()> work);
  // Requests the function to return soon. Any thread.
  void Cancel() { isCanceled_ = true; }
  void Wait();

  // Any thread.
  bool IsDone() const { return isDone_; }
  double Progress() const { return progress_; }  // 0 to 1

  // For the function itself.
  bool IsCanceled() const { return isCanceled_; }
  void SetProgress(double progress) { progress_ = progress; }

 private:
  static DWORD WINAPI Run(void* worker);

  std::function<void()> work_;
  HANDLE thread_ = nullptr;
  std::atomic<bool> isCanceled_{false}, isDone_{true};
  std::atomic<double> progress_{0};
};

}  // namespace camview
