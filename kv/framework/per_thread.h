// Caches that each thread has for itself. For this library only.
#pragma once

#include <windows.h>

#include <new>

namespace kv {

template <class T>
void WINAPI DeleteOfThread(void* object) {
  delete static_cast<T*>(object);
}

// Returns the calling thread's T: created by the first call and deleted when the thread ends. Null when allocation
// fails. Not a thread_local variable: MinGW's runtime deletes those under a lock, for which a process whose threads end
// together with it may wait forever.
template <class T>
T* OfThread() {
  static const DWORD index = FlsAlloc(DeleteOfThread<T>);
  auto* object = static_cast<T*>(FlsGetValue(index));
  if (object) return object;
  object = new (std::nothrow) T;
  if (object && FlsSetValue(index, object)) return object;
  delete object;
  return nullptr;
}

}  // namespace kv
