// Icons in the taskbar's notification area, and notifications about USB devices. Main thread only.
//
// When the taskbar restarts (the shell crashed, or started after the program), every icon that was added and not
// removed is added again with its last properties; the owner need not act. A hidden window receives the taskbar's
// message, so the thread that adds icons must dispatch messages.
//
// In a DPI-aware program, the shell does not scale the icon: pass one of the size GetSystemMetrics(SM_CXSMICON).
#pragma once

#include <windows.h>

#include <shellapi.h>

namespace kv {

// The message that the owner receives for mouse events over the icon: wParam is the icon's identifier, lParam the mouse
// message. Numeric value 1025.
inline constexpr UINT kNotificationCallback = WM_USER + 1;

// The maximum length of a tip, terminator included; a longer one is truncated.
inline constexpr int kNotificationTipCharacters = 64;

// All four functions return the shell's result: 0 when there is no notification area or the icon is unknown.

// Adds icon `id` of `owner`. An unreadable tip is empty. The owner must remove the icon before it is destroyed.
BOOL AddNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip);

// Changes icon and tip. A null icon or an unreadable tip leaves the present one.
BOOL ChangeNotificationIcon(HWND owner, UINT id, HICON icon, const char* tip);

// Replaces the tip with a Unicode text (the functions above use the system's code page). Returns 0 also for an
// unreadable tip.
BOOL SetNotificationTip(HWND owner, UINT id, const wchar_t* tip);

// Removes the icon and repaints the whole desktop, so that no image of it is left behind.
BOOL RemoveNotificationIcon(HWND owner, UINT id);

// With `registerThem` not 0, registers the window `target` for WM_DEVICECHANGE messages about USB devices and returns
// the notification's handle, 0 on failure. With 0, unregisters the notification `target` and returns 0.
HDEVNOTIFY RegisterDeviceNotifications(HANDLE target, BOOL registerThem);

// The system calls used. Only tests replace them.
struct NotificationCalls {
  decltype(&::Shell_NotifyIconA) notifyIcon;
  decltype(&::RegisterDeviceNotificationA) registerDevices;
  decltype(&::UnregisterDeviceNotification) unregisterDevices;
  decltype(&::Shell_NotifyIconW) notifyIconWide;
};
extern NotificationCalls notificationCalls;

}  // namespace kv
