#include "controls/horizon/horizon.h"

#include <oleacc.h>
#include <shellapi.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "controls/horizon/horizon_renderer.h"
#include "framework/accessible.h"
#include "framework/bitmaps.h"
#include "framework/bounded_format.h"
#include "framework/canvas.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/window_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kGlideTimer = 5;
constexpr UINT kGlideTickMs = 20;
constexpr LRESULT kNoRecord = 1;
constexpr int kMinCopySize = 16, kMaxCopySize = 5120;

// ---- Record ---------------------------------------------------------------------------------------------------------

struct HorizonRecord {
  HGLOBAL hMemory;  // of this record
  HWND window;
  DWORD style;
  BOOL anew, gliding;
  HorizonAttitude shown, target;
  HorizonPicture* picture;
};

void Refresh(HorizonRecord& record) {
  const RECT changed =
      record.picture->Update(record.shown, record.style, ClientSize(record.window), record.anew != FALSE);
  record.anew = FALSE;
  if (!IsRectEmpty(&changed)) InvalidateRect(record.window, &changed, FALSE);
}

void StopGliding(HorizonRecord& record) {
  if (record.gliding) KillTimer(record.window, kGlideTimer);
  record.gliding = FALSE;
}

// ---- Commands -------------------------------------------------------------------------------------------------------

bool ExchangeStyle(HorizonRecord& record, WPARAM wParam, LPARAM lParam) {
  auto* bits = reinterpret_cast<DWORD*>(lParam);
  if (wParam & kCommandRead) {
    if (IsBadWritePtr(bits, sizeof(*bits))) return false;
    *bits = record.style;
    return true;
  }
  if (IsBadReadPtr(bits, sizeof(*bits))) return false;
  record.style = wParam & kCommandRemove ? record.style & ~*bits : record.style | *bits;
  return true;
}

bool ExchangeValue(HorizonRecord& record, WPARAM wParam, LPARAM lParam) {
  auto* address = reinterpret_cast<void*>(lParam);
  if (wParam & kCommandRead) {
    if (IsBadWritePtr(address, sizeof(HorizonAttitude))) return false;
    std::memcpy(address, &record.shown, sizeof(HorizonAttitude));
    return true;
  }
  HorizonAttitude attitude;
  if (IsBadReadPtr(address, sizeof(attitude))) return false;
  std::memcpy(&attitude, address, sizeof(attitude));
  for (const float number : {attitude.pitch, attitude.roll, attitude.slip, attitude.heading}) {
    if (!std::isfinite(number)) return false;
  }
  if (attitude.version != kHorizonVersion) return false;
  record.target = NormalAttitude(attitude);
  const bool wasValid = !(record.shown.state & kHorizonNoValue);
  record.shown.state = record.target.state = attitude.state & kHorizonNoValue;
  if ((wParam & kHorizonGlide) && wasValid && !attitude.state) {
    if (!record.gliding) record.gliding = SetTimer(record.window, kGlideTimer, kGlideTickMs, nullptr) != 0;
  } else {
    StopGliding(record);
  }
  // Without a timer the value would never arrive.
  if (!record.gliding) record.shown = record.target;
  return true;
}

LRESULT OnCommand(HorizonRecord& record, WPARAM wParam, LPARAM lParam) {
  bool done = true;
  switch (LOBYTE(wParam)) {
    case kHorizonRender: record.anew = TRUE; break;
    case kHorizonStyle: done = ExchangeStyle(record, wParam, lParam); break;
    case kHorizonValue: done = ExchangeValue(record, wParam, lParam); break;
    default: done = false;
  }
  if (!done || (wParam & kCommandRead)) return done;
  Refresh(record);
  NotifyValueChanged(record.window);
  if (record.anew || LOBYTE(wParam) == kHorizonRender || (wParam & kCommandRedraw)) UpdateWindow(record.window);
  return TRUE;
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

AccessibleText Describe(HWND window) {
  const auto* record = WindowRecord<HorizonRecord>(window);
  if (!record) return {};
  wchar_t text[64] = L"";
  const HorizonAttitude& shown = record->shown;
  if (!(shown.state & kHorizonNoValue)) {
    FormatBounded(text, sizeof(text),
                  record->style & kHorizonTape ? L"%+.1f\xB0, %+.1f\xB0, %03.0f\xB0" : L"%+.1f\xB0, %+.1f\xB0",
                  shown.pitch, shown.roll, shown.heading);
  }
  return {WindowText(window), text};
}

LRESULT OnCreate(HWND window) {
  auto* record = CreateWindowRecord<HorizonRecord>(window);
  if (!record) return kNoRecord;
  record->window = window;
  record->style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  record->anew = TRUE;
  record->shown = record->target = {kHorizonVersion, kHorizonNoValue, 0, 0, 0, 0};
  record->picture = new (std::nothrow) HorizonPicture;
  if (!record->picture) {
    DestroyWindowRecord(window, record);
    return kNoRecord;
  }
  SetWindowLongA(window, GWL_EXSTYLE, GetWindowLongA(window, GWL_EXSTYLE) & ~WS_EX_LAYOUTRTL);
  DragAcceptFiles(window, TRUE);
  return 0;
}

LRESULT OnDestroy(HorizonRecord& record) {
  StopGliding(record);
  delete record.picture;
  DestroyWindowRecord(record.window, &record);
  return 0;
}

LRESULT OnPaint(HWND window, HorizonRecord* record) {
  // Before the paint begins: it then shows what this invalidates as well.
  if (record) Refresh(*record);
  const PaintScope paint(window);
  if (!record) return kNoRecord;
  const Surface& surface = record->picture->surface();
  if (!surface.bitmap()) return 0;
  const SelectedObject selected(record->picture->dc(), surface.bitmap());
  BitBlt(paint.dc(), 0, 0, surface.size().cx, surface.size().cy, record->picture->dc(), 0, 0, SRCCOPY);
  return 0;
}

LRESULT OnTimer(HorizonRecord& record, WPARAM timer) {
  if (timer != kGlideTimer || !record.gliding) return 0;
  if (!GlideAttitude(&record.shown, record.target)) {
    StopGliding(record);
    NotifyValueChanged(record.window);
  }
  Refresh(record);
  UpdateWindow(record.window);
  return 0;
}

LRESULT OnEnable(HorizonRecord& record, bool enabled) {
  record.style = enabled ? record.style & ~kHorizonDisabled : record.style | kHorizonDisabled;
  RepaintNow(record.window);
  return 0;
}

LRESULT OnCopy(HorizonRecord& record, LPARAM requested) {
  const SIZE size = RequestedPictureSize(requested, ClientSize(record.window), kMinCopySize, kMaxCopySize);
  const std::unique_ptr<HorizonPicture> picture(new (std::nothrow) HorizonPicture);
  if (!picture) return 0;
  picture->Update(record.shown, record.style, size, true);
  if (picture->surface().bitmap()) CopyBitmapToClipboard(record.window, picture->surface().bitmap(), size, size);
  return 0;
}

// ---- Window procedure -----------------------------------------------------------------------------------------------

LRESULT CALLBACK HorizonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* record = WindowRecord<HorizonRecord>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return record ? OnDestroy(*record) : kNoRecord;
    case WM_SIZE: return record ? (RepaintNow(window), 0) : kNoRecord;
    case WM_ENABLE: return record ? OnEnable(*record, wParam != 0) : kNoRecord;
    case WM_PAINT: return OnPaint(window, record);
    case WM_TIMER: return record ? OnTimer(*record, wParam) : kNoRecord;
    case WM_LBUTTONDBLCLK: return record ? OnCopy(*record, 0) : kNoRecord;
    case WM_COPY: return record ? OnCopy(*record, lParam) : kNoRecord;
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_GETOBJECT: return AnswerGetObject(window, wParam, lParam, ROLE_SYSTEM_INDICATOR, Describe);
    case WM_SYSCOLORCHANGE: return record ? OnCommand(*record, kHorizonRender, 0) : kNoRecord;
    case kControlCommand: return record ? OnCommand(*record, wParam, lParam) : 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

// ---- Registration ---------------------------------------------------------------------------------------------------

BOOL RegisterHorizonClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kHorizonClass, HorizonProcedure, registerIt);
}

}  // namespace kv
