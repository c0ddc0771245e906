// The state of a control's window in a locked memory block, and helpers for items that messages pass by address.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace kv {

// A struct in its own block of zero-filled movable global memory, which stays locked. The struct's first field,
// `hMemory`, is the block's handle. The creator owns the block. Any thread.

// Returns null when allocation fails.
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

// Release what the struct owns first.
template <class State>
void FreeLocked(State* state) {
  const HGLOBAL memory = state->hMemory;
  GlobalUnlock(memory);
  GlobalFree(memory);
}

// The state of a control's window: a locked struct whose address is in the window's user data.
//
// The state exists from WM_CREATE to WM_DESTROY and is used only on the window's thread.

// Creates the state of `window` and stores its address. Returns null when allocation fails.
template <class State>
State* CreateWindowState(HWND window) {
  auto* state = CreateLocked<State>();
  if (state) SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(state));
  return state;
}

// Returns the state of `window`; null when there is none or the address is not writable for the size of the state.
template <class State>
State* WindowState(HWND window) {
  auto* state = reinterpret_cast<State*>(GetWindowLongA(window, GWL_USERDATA));
  return IsBadWritePtr(state, sizeof(State)) ? nullptr : state;
}

// Clears the window's user data and frees the state. Release what the state owns first.
template <class State>
void DestroyWindowState(HWND window, State* state) {
  SetWindowLongA(window, GWL_USERDATA, 0);
  FreeLocked(state);
}

// Any thread; no state.

// Copies an item to or from the address in a message's lParam, testing the memory first. Returns false, and copies
// nothing, when it is not accessible.
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

// Fills the 24 bytes at `state` with zeros and returns the address; null when they are not writable.
void* ZeroRecord24(void* state);

// Initializes a lock, which the caller owns and deletes. Always returns 0; does nothing if the memory is not writable.
int InitLock(CRITICAL_SECTION* lock);

}  // namespace kv
