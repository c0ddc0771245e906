// The window procedure of a control whose state is an object: created with the window, deleted with it. On the thread
// that owns the window.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <new>

#include "kv/framework/accessible.h"
#include "kv/framework/control_class.h"
#include "kv/framework/window_state.h"

namespace kv {

// Returns null before WM_CREATE and after WM_DESTROY. Whoever calls foreign code (a notification, a paint, a change of
// the focus) calls this again, because the control may have been destroyed.
template <class Object>
Object* ObjectOf(HWND window) {
  return WindowState<Object>(window);
}

// Handles WM_CREATE: creates Object{window}, unless the window has one. The window accepts dropped files and is not
// mirrored.
template <class Object>
LRESULT CreateObject(HWND window) {
  if (ObjectOf<Object>(window)) return 0;
  auto* object = new (std::nothrow) Object{window};
  if (!object) return -1;
  SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(object));
  SetWindowLongA(window, GWL_EXSTYLE, GetWindowLongA(window, GWL_EXSTYLE) & ~WS_EX_LAYOUTRTL);
  DragAcceptFiles(window, TRUE);
  return 0;
}

// Handles WM_DESTROY.
template <class Object>
LRESULT DestroyObject(HWND window) {
  const Object* object = ObjectOf<Object>(window);
  SetWindowLongA(window, GWL_USERDATA, 0);  // nothing that the next call or the destructor sends finds it
  if (GetCapture() == window) ReleaseCapture();
  delete object;
  return 0;
}

// `kHandle` gets the messages that are not handled here, and `kDescribe` says what screen readers say; neither is
// called without an object.
template <class Object, LONG kRole, AccessibleText (*kDescribe)(const Object&),
          LRESULT (*kHandle)(Object&, UINT, WPARAM, LPARAM)>
LRESULT CALLBACK ObjectProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr auto kDescribeWindow = [](HWND described) {
    const Object* object = ObjectOf<Object>(described);
    return object ? kDescribe(*object) : AccessibleText{};
  };
  switch (message) {
    case WM_CREATE: return CreateObject<Object>(window);
    case WM_DESTROY: return DestroyObject<Object>(window);
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, kRole, kDescribeWindow);
    default: break;
  }
  if (Object* object = ObjectOf<Object>(window)) return kHandle(*object, message, wParam, lParam);
  return message == kControlCommand ? FALSE : DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace kv
