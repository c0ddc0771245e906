#include "kv/framework/window_position.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "kv/framework/bounded_format.h"
#include "kv/framework/guards.h"

namespace kv {

namespace {

constexpr int kTextCharacters = 256;

const char* settingsKey = nullptr;

struct KeyPath {
  char text[300];
};

KeyPath PositionsKey() {
  KeyPath path{};
  FormatBoundedA(path.text, sizeof(path.text), "%s\\WindowPositions", SettingsKey());
  return path;
}

// Reads at most `size` bytes of a value. Returns FALSE, with undefined contents, when it is missing or longer.
BOOL ReadValue(const char* name, void* data, DWORD size) {
  const RegistryKey key = RegistryKey::Open(PositionsKey().text);
  return key && RegQueryValueExA(key, name, nullptr, nullptr, static_cast<BYTE*>(data), &size) == ERROR_SUCCESS;
}

void WriteValue(const char* name, DWORD type, const void* data, DWORD size) {
  const RegistryKey key = RegistryKey::Create(PositionsKey().text);
  if (key) RegSetValueExA(key, name, 0, type, static_cast<const BYTE*>(data), size);
}

RECT StoredPosition(HWND window, const char* name) {
  // One byte more than is read, for a value stored without a terminator.
  char text[kTextCharacters] = "";
  if (ReadValue(name, text, sizeof(text) - 1)) return ParsePosition(text);
  RECT desktop{}, present{};
  GetClientRect(GetDesktopWindow(), &desktop);
  GetWindowRect(window, &present);
  return CenteredPosition({desktop.right, desktop.bottom},
                          {present.right - present.left, present.bottom - present.top});
}

// Returns the distance between two edges, clamped.
int Extent(LONG from, LONG to) {
  return static_cast<int>(std::clamp<long long>(static_cast<long long>(to) - from, INT_MIN, INT_MAX));
}

BOOL SavePosition(HWND window, const char* name) {
  // A minimized or maximized rectangle is not worth restoring.
  if (IsIconic(window) || IsZoomed(window)) return FALSE;
  RECT position{};
  GetWindowRect(window, &position);
  StorePosition(name, position);
  return TRUE;
}

RECT WorkAreaOf(HWND window) {
  MONITORINFO monitor{.cbSize = sizeof(monitor)};
  GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
  return monitor.rcWork;
}

}  // namespace

void SetSettingsKey(const char* key) {
  settingsKey = key;
}

const char* SettingsKey() {
  return settingsKey ? settingsKey : "Software\\korvel";
}

void StorePosition(const char* name, const RECT& position) {
  char text[kTextCharacters];
  FormatBoundedA(text, sizeof(text), "%ld,%ld,%ld,%ld", position.left, position.top, position.right, position.bottom);
  WriteValue(name, REG_SZ, text, static_cast<DWORD>(std::strlen(text)) + 1);
}

RECT ParsePosition(const char* text) {
  const char* fields[] = {text, text, text, text};
  for (int i = 1; i < 4; ++i) {
    const char* comma = std::strchr(fields[i - 1], ',');
    if (!comma) break;
    fields[i] = comma + 1;
  }
  const auto number = [](const char* field) { return std::strtol(field, nullptr, 10); };
  return {number(fields[0]), number(fields[1]), number(fields[2]), number(fields[3])};
}

RECT ClampPosition(RECT position) {
  position.left = std::max(position.left, 0L);
  position.top = std::max(position.top, 0L);
  return position;
}

RECT CenteredPosition(SIZE desktop, SIZE window) {
  const LONG left = desktop.cx / 2 - (window.cx >> 1);
  const LONG top = desktop.cy / 2 - (window.cy >> 1);
  return {left, top, left + window.cx, top + window.cy};
}

BOOL WindowPosition(HWND window, const char* name, int mode) {
  if (!IsWindow(window) || IsBadStringPtrA(name, UINT_MAX) || mode < kPositionSave) return FALSE;
  if (mode == kPositionSave) return SavePosition(window, name);
  const RECT position = ClampPosition(StoredPosition(window, name));
  switch (mode) {
    case kPositionRestore:
      SetWindowPos(window, nullptr, position.left, position.top, Extent(position.left, position.right),
                   Extent(position.top, position.bottom), SWP_SHOWWINDOW);
      break;
    case kPositionRestoreOnly: SetWindowPos(window, nullptr, position.left, position.top, 0, 0, SWP_NOSIZE); break;
    default: StorePosition(name, position); break;
  }
  return TRUE;
}

void PlaceOverOwner(HWND window) {
  SetWindowLongA(window, GWL_STYLE, GetWindowLongA(window, GWL_STYLE) & ~(WS_MINIMIZEBOX | WS_MAXIMIZEBOX));
  const HWND owner = GetWindow(window, GW_OWNER);
  RECT around{}, own{};
  if (!owner || IsIconic(owner) || !GetWindowRect(owner, &around) || !GetWindowRect(window, &own)) return;
  // On the owner's monitor, whose work area may begin at negative coordinates.
  const RECT work = WorkAreaOf(owner);
  const LONG left = (around.left + around.right - (own.right - own.left)) / 2;
  const LONG top = (around.top + around.bottom - (own.bottom - own.top)) / 2;
  SetWindowPos(window, nullptr, std::max(left, work.left), std::max(top, work.top), 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE FitToWorkArea(HWND window, SIZE size) {
  const RECT work = WorkAreaOf(window);
  return {std::min(size.cx, work.right - work.left), std::min(size.cy, work.bottom - work.top)};
}

void KeepInSight(HWND window, SIZE minimumSize) {
  constexpr int kGrip = 48;  // of the caption, in pixels
  minimumSize = FitToWorkArea(window, minimumSize);
  RECT rect{}, work = WorkAreaOf(window);
  GetWindowRect(window, &rect);
  SIZE size = FitToWorkArea(window, {rect.right - rect.left, rect.bottom - rect.top});
  // What was shrunk is moved to where it fits.
  if (size.cx < rect.right - rect.left) rect.left = work.left;
  if (size.cy < rect.bottom - rect.top) rect.top = work.top;
  size = {std::max(size.cx, minimumSize.cx), std::max(size.cy, minimumSize.cy)};
  const RECT caption{rect.left + std::min<LONG>(kGrip, size.cx / 2), rect.top,
                     rect.left + std::max<LONG>(size.cx - kGrip, size.cx / 2 + 1),
                     rect.top + GetSystemMetrics(SM_CYCAPTION)};
  if (!MonitorFromRect(&caption, MONITOR_DEFAULTTONULL)) {
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const RECT centered = CenteredPosition({work.right - work.left, work.bottom - work.top}, size);
    // Keeps the caption reachable even when the window is larger than the screen.
    rect.left = work.left + std::max(centered.left, 0L);
    rect.top = work.top + std::max(centered.top, 0L);
  }
  SetWindowPos(window, nullptr, rect.left, rect.top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL WindowNumber(const char* name, DWORD* number, int mode) {
  if (IsBadStringPtrA(name, UINT_MAX) || IsBadWritePtr(number, sizeof(*number))) return FALSE;
  switch (mode) {
    case kPositionSave: WriteValue(name, REG_DWORD, number, sizeof(*number)); return TRUE;
    case kPositionRestore:
    case kPositionRestoreOnly: {
      // Read into a copy, because a value that is too long leaves undefined contents.
      DWORD stored = *number;
      if (ReadValue(name, &stored, sizeof(stored))) *number = stored;
      return TRUE;
    }
    default: return FALSE;
  }
}

}  // namespace kv
