#include "kv/controls/horizon/horizon.h"

#include <oleacc.h>
#include <shellapi.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "kv/controls/horizon/horizon_renderer.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kGlideTimer = 5;
constexpr UINT kGlideTickMs = 20;
constexpr LRESULT kNoState = 1;
constexpr int kMinCopySize = 16, kMaxCopySize = 5120;

// ---- State ----------------------------------------------------------------------------------------------------------

struct HorizonState {
  HGLOBAL hMemory;  // of this block
  HWND window;
  DWORD style;
  BOOL redrawAll, gliding;
  HorizonAttitude shown, target;
  HorizonRenderer* renderer;
};

void Refresh(HorizonState& state) {
  const RECT changed =
      state.renderer->Update(state.shown, state.style, ClientSize(state.window), state.redrawAll != FALSE);
  state.redrawAll = FALSE;
  if (!IsRectEmpty(&changed)) InvalidateRect(state.window, &changed, FALSE);
}

void StopGliding(HorizonState& state) {
  if (state.gliding) KillTimer(state.window, kGlideTimer);
  state.gliding = FALSE;
}

// ---- Commands -------------------------------------------------------------------------------------------------------

bool ExchangeStyle(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  auto* bits = reinterpret_cast<DWORD*>(lParam);
  if (wParam & kCommandRead) {
    if (IsBadWritePtr(bits, sizeof(*bits))) return false;
    *bits = state.style;
    return true;
  }
  if (IsBadReadPtr(bits, sizeof(*bits))) return false;
  state.style = wParam & kCommandRemove ? state.style & ~*bits : state.style | *bits;
  return true;
}

bool ExchangeValue(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  auto* address = reinterpret_cast<void*>(lParam);
  if (wParam & kCommandRead) {
    if (IsBadWritePtr(address, sizeof(HorizonAttitude))) return false;
    std::memcpy(address, &state.shown, sizeof(HorizonAttitude));
    return true;
  }
  HorizonAttitude attitude;
  if (IsBadReadPtr(address, sizeof(attitude))) return false;
  std::memcpy(&attitude, address, sizeof(attitude));
  for (const float number : {attitude.pitch, attitude.roll, attitude.slip, attitude.heading}) {
    if (!std::isfinite(number)) return false;
  }
  if (attitude.version != kHorizonVersion) return false;
  state.target = NormalAttitude(attitude);
  const bool wasValid = !(state.shown.state & kHorizonNoValue);
  state.shown.state = state.target.state = attitude.state & kHorizonNoValue;
  if ((wParam & kHorizonGlide) && wasValid && !attitude.state) {
    if (!state.gliding) state.gliding = SetTimer(state.window, kGlideTimer, kGlideTickMs, nullptr) != 0;
  } else {
    StopGliding(state);
  }
  // Without a timer the glide would never end.
  if (!state.gliding) state.shown = state.target;
  return true;
}

LRESULT OnCommand(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  bool done = true;
  switch (LOBYTE(wParam)) {
    case kHorizonRender: state.redrawAll = TRUE; break;
    case kHorizonStyle: done = ExchangeStyle(state, wParam, lParam); break;
    case kHorizonValue: done = ExchangeValue(state, wParam, lParam); break;
    default: done = false;
  }
  if (!done || (wParam & kCommandRead)) return done;
  Refresh(state);
  NotifyValueChanged(state.window);
  if (state.redrawAll || LOBYTE(wParam) == kHorizonRender || (wParam & kCommandRedraw)) UpdateWindow(state.window);
  return TRUE;
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

AccessibleText Describe(HWND window) {
  const auto* state = WindowState<HorizonState>(window);
  if (!state) return {};
  wchar_t text[64] = L"";
  const HorizonAttitude& shown = state->shown;
  if (!(shown.state & kHorizonNoValue)) {
    FormatBounded(text, sizeof(text),
                  state->style & kHorizonTape ? L"%+.1f\xB0, %+.1f\xB0, %03.0f\xB0" : L"%+.1f\xB0, %+.1f\xB0",
                  shown.pitch, shown.roll, shown.heading);
  }
  return {WindowText(window), text};
}

LRESULT OnCreate(HWND window) {
  auto* state = CreateWindowState<HorizonState>(window);
  if (!state) return kNoState;
  state->window = window;
  state->style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  state->redrawAll = TRUE;
  state->shown = state->target = {kHorizonVersion, kHorizonNoValue, 0, 0, 0, 0};
  state->renderer = new (std::nothrow) HorizonRenderer;
  if (!state->renderer) {
    DestroyWindowState(window, state);
    return kNoState;
  }
  SetWindowLongA(window, GWL_EXSTYLE, GetWindowLongA(window, GWL_EXSTYLE) & ~WS_EX_LAYOUTRTL);
  DragAcceptFiles(window, TRUE);
  return 0;
}

LRESULT OnDestroy(HorizonState& state) {
  StopGliding(state);
  delete state.renderer;
  DestroyWindowState(state.window, &state);
  return 0;
}

LRESULT OnPaint(HWND window, HorizonState* state) {
  // Before BeginPaint, so that the areas that this invalidates are painted, too.
  if (state) Refresh(*state);
  const PaintScope paint(window);
  if (!state) return kNoState;
  const Surface& surface = state->renderer->surface();
  if (!surface.bitmap()) return 0;
  const SelectedObject selected(state->renderer->dc(), surface.bitmap());
  BitBlt(paint.dc(), 0, 0, surface.size().cx, surface.size().cy, state->renderer->dc(), 0, 0, SRCCOPY);
  return 0;
}

LRESULT OnTimer(HorizonState& state, WPARAM timer) {
  if (timer != kGlideTimer || !state.gliding) return 0;
  if (!GlideAttitude(&state.shown, state.target)) {
    StopGliding(state);
    NotifyValueChanged(state.window);
  }
  Refresh(state);
  UpdateWindow(state.window);
  return 0;
}

LRESULT OnEnable(HorizonState& state, bool enabled) {
  state.style = enabled ? state.style & ~kHorizonDisabled : state.style | kHorizonDisabled;
  RepaintNow(state.window);
  return 0;
}

LRESULT OnCopy(HorizonState& state, LPARAM requested) {
  const SIZE size = RequestedCopySize(requested, ClientSize(state.window), kMinCopySize, kMaxCopySize);
  const std::unique_ptr<HorizonRenderer> renderer(new (std::nothrow) HorizonRenderer);
  if (!renderer) return 0;
  renderer->Update(state.shown, state.style, size, true);
  if (renderer->surface().bitmap()) CopyBitmapToClipboard(state.window, renderer->surface().bitmap(), size, size);
  return 0;
}

// ---- Window procedure -----------------------------------------------------------------------------------------------

LRESULT CALLBACK HorizonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = WindowState<HorizonState>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return state ? OnDestroy(*state) : kNoState;
    case WM_SIZE: return state ? (RepaintNow(window), 0) : kNoState;
    case WM_ENABLE: return state ? OnEnable(*state, wParam != 0) : kNoState;
    case WM_PAINT: return OnPaint(window, state);
    case WM_TIMER: return state ? OnTimer(*state, wParam) : kNoState;
    case WM_LBUTTONDBLCLK: return state ? OnCopy(*state, 0) : kNoState;
    case WM_COPY: return state ? OnCopy(*state, lParam) : kNoState;
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, ROLE_SYSTEM_INDICATOR, Describe);
    case WM_SYSCOLORCHANGE: return state ? OnCommand(*state, kHorizonRender, 0) : kNoState;
    case kControlCommand: return state ? OnCommand(*state, wParam, lParam) : 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

// ---- Registration ---------------------------------------------------------------------------------------------------

BOOL RegisterHorizonClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kHorizonClass, HorizonProcedure, registerIt);
}

}  // namespace kv
