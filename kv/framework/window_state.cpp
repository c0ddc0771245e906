#include "kv/framework/window_state.h"

#include <cstring>

namespace kv {

void* ZeroRecord24(void* state) {
  constexpr size_t kSize = 24;
  if (IsBadWritePtr(state, kSize)) return nullptr;
  return std::memset(state, 0, kSize);
}

int InitLock(CRITICAL_SECTION* lock) {
  if (!IsBadWritePtr(lock, sizeof(*lock))) InitializeCriticalSection(lock);
  return 0;
}

}  // namespace kv
