#include "camview/worker.h"

#include <windows.h>

#include <functional>
#include <utility>

namespace camview {

Worker::~Worker() {
  Cancel();
  Wait();
}

bool Worker::Start(std::function<void()> work) {
  Cancel();
  Wait();
  work_ = std::move(work);
  isCanceled_ = false;
  isDone_ = false;
  progress_ = 0;
  thread_ = CreateThread(nullptr, 0, Run, this, 0, nullptr);
  if (!thread_) isDone_ = true;
  return thread_ != nullptr;
}

void Worker::Wait() {
  if (!thread_) return;
  WaitForSingleObject(thread_, INFINITE);
  CloseHandle(thread_);
  thread_ = nullptr;
}

DWORD WINAPI Worker::Run(void* worker) {
  auto* self = static_cast<Worker*>(worker);
  self->work_();
  self->isDone_ = true;
  return 0;
}

}  // namespace camview
