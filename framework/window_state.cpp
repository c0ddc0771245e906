#include "framework/window_state.h"

#include <cstring>

namespace kv {

void* ZeroRecord24(void* record) {
  constexpr size_t kSize = 24;
  if (IsBadWritePtr(record, kSize)) return nullptr;
  return std::memset(record, 0, kSize);
}

int InitLock(CRITICAL_SECTION* lock) {
  if (!IsBadWritePtr(lock, sizeof(*lock))) InitializeCriticalSection(lock);
  return 0;
}

}  // namespace kv
