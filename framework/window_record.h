// The state record of a control's window: a locked record (framework/locked_record.h) whose address stands in the
// window's user data.
//
// The record belongs to its window, from WM_CREATE to WM_DESTROY, and is touched only on the window's thread.
#pragma once

#include <windows.h>

#include "framework/locked_record.h"

namespace kv {

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

}  // namespace kv
