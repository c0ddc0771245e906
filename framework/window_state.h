// Records in memory blocks of their own, the state record of a window, and small helpers for plain records.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace kv {

// A record in a memory block of its own: zero-filled movable global memory, locked as long as the record lives. The
// record's first field, `hMemory`, is the block's handle. It belongs to whoever made it. Any thread.

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

// The state record of a control's window: a locked record whose address stands in the window's user data.
//
// The record belongs to its window, from WM_CREATE to WM_DESTROY, and is touched only on the window's thread.

// Makes the record of `window` and stores its address. Null when allocation fails.
template <class Record>
Record* CreateWindowRecord(HWND window) {
  auto* record = CreateLockedRecord<Record>();
  if (record) SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(record));
  return record;
}

// The record of `window`, or null when there is none or the address is not writable over the whole record.
template <class Record>
Record* WindowRecord(HWND window) {
  auto* record = reinterpret_cast<Record*>(GetWindowLongA(window, GWL_USERDATA));
  return IsBadWritePtr(record, sizeof(Record)) ? nullptr : record;
}

// Clears the window's slot, then unlocks and frees the record. What the record owns must be gone before.
template <class Record>
void DestroyWindowRecord(HWND window, Record* record) {
  SetWindowLongA(window, GWL_USERDATA, 0);
  FreeLockedRecord(record);
}

// Any thread; no state.

// Copies an item to an address that a message has brought, or from it, so that the sender's memory is probed and
// touched once. False, with nothing copied, when it cannot be.
template <class Item>
bool CopyItemOut(const Item& item, LPARAM address) {
  static_assert(std::is_trivially_copyable_v<Item>);
  auto* target = reinterpret_cast<void*>(address);
  if (IsBadWritePtr(target, sizeof(Item))) return false;
  std::memcpy(target, &item, sizeof(Item));
  return true;
}
template <class Item>
bool CopyItemIn(LPARAM address, Item* item) {
  static_assert(std::is_trivially_copyable_v<Item>);
  const auto* source = reinterpret_cast<const void*>(address);
  if (IsBadReadPtr(source, sizeof(Item))) return false;
  std::memcpy(item, source, sizeof(Item));
  return true;
}

// Fills the 24 bytes at `record` with zeros and returns it; null when they cannot be written.
void* ZeroRecord24(void* record);

// Initialises a lock that the caller owns and deletes. Always 0; a record that cannot be written is left alone.
int InitLock(CRITICAL_SECTION* lock);

}  // namespace kv
