// The object with the state of a control of camview, from WM_CREATE to WM_DESTROY. On the thread that owns the window.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <new>

#include "kv/framework/window_state.h"

namespace camview {

template <class Object>
struct ObjectState {
  HGLOBAL hMemory;  // of this block
  Object* object;
};

// Returns null before WM_CREATE and after WM_DESTROY.
template <class Object>
Object* ObjectOf(HWND window) {
  auto* state = kv::WindowState<ObjectState<Object>>(window);
  return state ? state->object : nullptr;
}

// Handles WM_CREATE: creates the object, with the window in `window`. The window accepts dropped files and is not
// mirrored.
template <class Object>
LRESULT CreateObject(HWND window) {
  auto* state = kv::CreateWindowState<ObjectState<Object>>(window);
  if (!state) return -1;
  state->object = new (std::nothrow) Object;
  if (!state->object) return -1;
  state->object->window = window;
  SetWindowLongA(window, GWL_EXSTYLE, GetWindowLongA(window, GWL_EXSTYLE) & ~WS_EX_LAYOUTRTL);
  DragAcceptFiles(window, TRUE);
  return 0;
}

// Handles WM_DESTROY.
template <class Object>
LRESULT DestroyObject(HWND window) {
  auto* state = kv::WindowState<ObjectState<Object>>(window);
  if (!state) return 0;
  if (GetCapture() == window) ReleaseCapture();
  delete state->object;
  kv::DestroyWindowState(window, state);
  return 0;
}

}  // namespace camview
