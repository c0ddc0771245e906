#include "kv/controls/horizon/horizon.h"

#include <oleacc.h>

#include <cmath>
#include <memory>
#include <new>

#include "kv/controls/horizon/horizon_renderer.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/object_control.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kAnimationTimer = 5;
constexpr UINT kAnimationTickMs = 20;
constexpr int kMinCopySize = 16, kMaxCopySize = 5120;

// ---- State

struct HorizonState {
  HWND window;
  DWORD style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  bool redrawAll = true, animating = false;
  HorizonAttitude shown{kHorizonVersion, kHorizonNoValue, 0, 0, 0, 0}, target = shown;
  HorizonRenderer renderer;
};

void Refresh(HorizonState& state) {
  const RECT changed = state.renderer.Update(state.shown, state.style, ClientSize(state.window), state.redrawAll);
  state.redrawAll = false;
  if (!IsRectEmpty(&changed)) InvalidateRect(state.window, &changed, FALSE);
}

void StopAnimation(HorizonState& state) {
  if (state.animating) KillTimer(state.window, kAnimationTimer);
  state.animating = false;
}

// ---- Commands

bool ExchangeStyle(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  if (wParam & kCommandRead) return CopyItemOut(state.style, lParam);
  DWORD bits = 0;
  if (!CopyItemIn(lParam, &bits)) return false;
  state.style = wParam & kCommandRemove ? state.style & ~bits : state.style | bits;
  return true;
}

bool ExchangeValue(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  if (wParam & kCommandRead) return CopyItemOut(state.shown, lParam);
  HorizonAttitude attitude;
  if (!CopyItemIn(lParam, &attitude)) return false;
  for (const float number : {attitude.pitch, attitude.roll, attitude.slip, attitude.heading}) {
    if (!std::isfinite(number)) return false;
  }
  if (attitude.version != kHorizonVersion) return false;
  state.target = NormalAttitude(attitude);
  const bool wasValid = !(state.shown.state & kHorizonNoValue);
  state.shown.state = state.target.state = attitude.state & kHorizonNoValue;
  if ((wParam & kHorizonAnimate) && wasValid && !attitude.state) {
    if (!state.animating) state.animating = SetTimer(state.window, kAnimationTimer, kAnimationTickMs, nullptr) != 0;
  } else {
    StopAnimation(state);
  }
  // Without a timer the animation would never end.
  if (!state.animating) state.shown = state.target;
  return true;
}

LRESULT OnCommand(HorizonState& state, WPARAM wParam, LPARAM lParam) {
  bool done = true;
  switch (LOBYTE(wParam)) {
    case kHorizonRender: state.redrawAll = true; break;
    case kHorizonStyle: done = ExchangeStyle(state, wParam, lParam); break;
    case kHorizonValue: done = ExchangeValue(state, wParam, lParam); break;
    default: done = false;
  }
  if (!done || (wParam & kCommandRead)) return done;
  Refresh(state);
  const HWND window = state.window;
  NotifyValueChanged(window);  // a hook may destroy the control, as may whoever paints
  if (LOBYTE(wParam) == kHorizonRender || (wParam & kCommandRedraw)) UpdateWindow(window);
  return TRUE;
}

// ---- Message handlers

AccessibleText Describe(const HorizonState& state) {
  wchar_t text[64] = L"";
  const HorizonAttitude& shown = state.shown;
  if (!(shown.state & kHorizonNoValue)) {
    FormatPlain(text, sizeof(text),
                state.style & kHorizonTape ? L"%+.1f\xB0, %+.1f\xB0, %03.0f\xB0" : L"%+.1f\xB0, %+.1f\xB0",
                WithoutMinusZero(shown.pitch, 1), WithoutMinusZero(shown.roll, 1), RoundedHeading(shown.heading, 0));
  }
  return {WindowText(state.window), text};
}

LRESULT OnPaint(HorizonState& state) {
  const HWND window = state.window;
  Refresh(state);  // before BeginPaint, so that the areas that this invalidates are painted, too
  const PaintScope paint(window);
  const auto* left = ObjectOf<HorizonState>(window);  // erasing may have destroyed the control
  if (left) left->renderer.surface().Show(paint.dc(), left->renderer.dc());
  return 0;
}

LRESULT OnTimer(HorizonState& state, WPARAM timer) {
  if (timer != kAnimationTimer || !state.animating) return 0;
  const HWND window = state.window;
  const bool ends = !AnimateAttitude(&state.shown, state.target);
  if (ends) StopAnimation(state);
  Refresh(state);
  if (ends) NotifyValueChanged(window);
  UpdateWindow(window);
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

// ---- Messages and registration

LRESULT HandleMessage(HorizonState& state, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE: RepaintNow(state.window); return 0;
    case WM_ENABLE: return OnEnable(state, wParam != 0);
    case WM_PAINT: return OnPaint(state);
    case WM_TIMER: return OnTimer(state, wParam);
    case WM_LBUTTONDBLCLK: return OnCopy(state, 0);
    case WM_COPY: return OnCopy(state, lParam);
    case WM_SYSCOLORCHANGE: return OnCommand(state, kHorizonRender, 0);
    case kControlCommand: return OnCommand(state, wParam, lParam);
    default: return DefWindowProcA(state.window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterHorizonClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kHorizonClass,
                              ObjectProcedure<HorizonState, ROLE_SYSTEM_INDICATOR, Describe, HandleMessage>,
                              registerIt);
}

}  // namespace kv
