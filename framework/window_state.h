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
template <class State>
State* CreateLocked() {
  static_assert(std::is_trivially_copyable_v<State> && offsetof(State, hMemory) == 0);
  const HGLOBAL memory = GlobalAlloc(GHND, sizeof(State));
  if (!memory) return nullptr;
  auto* state = static_cast<State*>(GlobalLock(memory));
  if (!state) {
    GlobalFree(memory);
    return nullptr;
  }
  state->hMemory = memory;
  return state;
}

// What the record owns must be gone before.
template <class State>
void FreeLocked(State* state) {
  const HGLOBAL memory = state->hMemory;
  GlobalUnlock(memory);
  GlobalFree(memory);
}

// The state record of a control's window: a locked record whose address stands in the window's user data.
//
// The record belongs to its window, from WM_CREATE to WM_DESTROY, and is touched only on the window's thread.

// Makes the record of `window` and stores its address. Null when allocation fails.
template <class State>
State* CreateWindowState(HWND window) {
  auto* state = CreateLocked<State>();
  if (state) SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(state));
  return state;
}

// The record of `window`, or null when there is none or the address is not writable over the whole record.
template <class State>
State* WindowState(HWND window) {
  auto* state = reinterpret_cast<State*>(GetWindowLongA(window, GWL_USERDATA));
  return IsBadWritePtr(state, sizeof(State)) ? nullptr : state;
}

// Clears the window's slot, then unlocks and frees the record. What the record owns must be gone before.
template <class State>
void DestroyWindowState(HWND window, State* state) {
  SetWindowLongA(window, GWL_USERDATA, 0);
  FreeLocked(state);
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
void* ZeroRecord24(void* state);

// Initialises a lock that the caller owns and deletes. Always 0; a record that cannot be written is left alone.
int InitLock(CRITICAL_SECTION* lock);

}  // namespace kv
