// Threads that share their state with the code that starts them, so that either can outlive the other: a thread that
// waits for a device or a pipe may never end.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

namespace camera {

template <auto kRun, class State>
DWORD WINAPI RunShared(void* share) {
  const std::unique_ptr<std::shared_ptr<State>> state(static_cast<std::shared_ptr<State>*>(share));
  std::invoke(kRun, **state);
  return 0;
}

// Starts a thread that calls kRun(*state), or state->kRun(). Returns its handle, which the caller closes; null on
// failure.
template <auto kRun, class State>
HANDLE StartShared(const std::shared_ptr<State>& state, SIZE_T stackBytes = 0) {
  auto* share = new std::shared_ptr<State>(state);
  HANDLE thread =
      CreateThread(nullptr, stackBytes, RunShared<kRun, State>, share, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (!thread) delete share;
  return thread;
}

}  // namespace camera
