// A record in a memory block of its own: zero-filled movable global memory, locked as long as the record lives. The
// record's first field, `hMemory`, is the block's handle. It belongs to whoever made it. Any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <type_traits>

namespace kv {

// Null when allocation fails.
template <class Record>
Record* CreateLockedRecord() {
  static_assert(std::is_trivially_copyable_v<Record> && offsetof(Record, hMemory) == 0);
  const HGLOBAL memory = GlobalAlloc(GHND, sizeof(Record));
  if (!memory) return nullptr;
  auto* record = static_cast<Record*>(GlobalLock(memory));
  if (!record) {
    GlobalFree(memory);
    return nullptr;
  }
  record->hMemory = memory;
  return record;
}

// What the record owns must be gone before.
template <class Record>
void FreeLockedRecord(Record* record) {
  const HGLOBAL memory = record->hMemory;
  GlobalUnlock(memory);
  GlobalFree(memory);
}

}  // namespace kv
