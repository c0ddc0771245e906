// Small helpers for plain records. Any thread; no state.
#pragma once

#include <windows.h>

namespace kv {

// Fills the 24 bytes at `record` with zeros and returns it; null when they cannot be written.
void* ZeroRecord24(void* record);

// Initialises a lock that the caller owns and deletes. Always 0; a record that cannot be written is left alone.
int InitLock(CRITICAL_SECTION* lock);

}  // namespace kv
