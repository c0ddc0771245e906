#include "kv/controls/display_instrument.h"

#include <oleacc.h>
#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <string>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/compass.h"
#include "kv/controls/instrument/digital.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/state.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kAnimationTimer = 5;
constexpr UINT kAnimationTickMs = 20;
constexpr LONG kAnimationCountdown = 20;
constexpr size_t kShownTextSize = 32;
constexpr LRESULT kNoState = 1;

// ---- Record

DWORD ModeOf(const InstrumentState& state) {
  return state.dwStyle & kInstrumentModeBits;
}

struct ModeDefaults {
  BlockDefaults compass, centerBar, other;
};
constexpr BlockDefaults kPlainDefaults{0, 100, 1, 0, 0, "%", "Relative"};
constexpr ModeDefaults kAtCreation{
    {-360, 360, 1, 1, 0, "\xB0", nullptr}, {-100, 100, 1, 0, 0, "%", "Relative"}, kPlainDefaults};
// Quirk: a reset names compass and bar "Compass" and gives the bar one decimal.
constexpr ModeDefaults kAfterReset{
    {-360, 360, 1, 1, 0, "\xB0", "Compass"}, {-100, 100, 1, 1, 0, "%", "Compass"}, kPlainDefaults};

// `name` is used for the mode without a default name.
InstrumentBlock DefaultBlock(const ModeDefaults& row, DWORD mode, const char* name) {
  BlockDefaults defaults = mode == kModeCompass ? row.compass : mode == kModeCenterBar ? row.centerBar : row.other;
  if (!defaults.name) defaults.name = name;
  return BuildDefaultBlock(defaults);
}

void SetBlock(InstrumentState* state, const InstrumentBlock& block) {
  state->block = block;
  state->target = block.current;
  state->work.bExact = FALSE;
  state->bRedraw = TRUE;
}

// Without a cache (allocation failed), the control draws nothing but stores its values.
void MakeBuffers(InstrumentState* state) {
  const SIZE size = ClientSize(state->hWnd);
  state->nWidth = size.cx;
  state->nHeight = size.cy;
  state->work.bBackgroundDrawn = FALSE;
  state->bRedraw = TRUE;
  state->hBuffer = nullptr;
  if (!state->work.cache) state->work.cache = new (std::nothrow) InstrumentCache;
  InstrumentCache* cache = state->work.cache;
  if (!cache || !InstrumentTools() || !cache->buffer.Create(size)) return;
  cache->background.reset(new (std::nothrow) DWORD[static_cast<size_t>(size.cx) * size.cy]);
  if (cache->background) state->hBuffer = cache->buffer.bitmap();
}

// ---- Drawing

void StoreShownText(InstrumentState* state) {
  const FixedText text = DigitalText(state->block, state->dwStyle, state->time);
  const size_t length = std::min(text.size(), kShownTextSize - 1);
  std::transform(text.begin(), text.begin() + length, state->szText,
                 [](wchar_t character) { return static_cast<char>(character); });
  state->szText[length] = '\0';
}

InstrumentAppearance AppearanceOf(const InstrumentState& state) {
  InstrumentAppearance appearance{
      {0, 0, state.nWidth, state.nHeight}, state.dwStyle, {}, state.block, state.work.appearance.reach,
      state.work.appearance.valueExponent};
  std::ranges::transform(kSystemColors, appearance.colors, GetSysColor);
  if (!ReadingOf(state.block).valid) appearance.block.state |= kInstrumentNoValue;
  appearance.block.current = 0;
  return appearance;
}

// Copies the background layer to the clip of the canvas.
void RestoreBackground(Canvas& canvas, const InstrumentCache& cache) {
  const RECT& clip = canvas.clip();
  canvas.FinishGdi();
  for (LONG y = clip.top; y < clip.bottom; ++y) {
    const size_t first = static_cast<size_t>(y) * cache.buffer.size().cx + clip.left;
    std::copy_n(&cache.background[first], clip.right - clip.left, cache.buffer.Row(y) + clip.left);
  }
}

// Updates the back buffer if necessary, and returns the changed rectangles.
DirtyRects Render(InstrumentState* state) {
  InstrumentAppearance appearance = AppearanceOf(*state);
  const bool redrawAll =
      !state->work.bBackgroundDrawn || memcmp(&state->work.appearance, &appearance, sizeof(appearance)) != 0;
  if (!state->bRedraw && !redrawAll) return {};
  state->bRedraw = FALSE;
  if (!state->hBuffer) return {};
  ++state->work.renderings;
  if (ModeOf(*state) == kModeDigital) StoreShownText(state);
  InstrumentCache& cache = *state->work.cache;
  DrawingTools& tools = *InstrumentTools();
  const ModeRenderer& layout = RendererOf(state->dwStyle);
  Canvas canvas(tools.dc, cache.buffer, tools.shape);
  if (redrawAll) {
    layout.drawBackground(canvas, appearance);
    canvas.FinishGdi();
    std::copy_n(cache.buffer.Row(0), static_cast<size_t>(state->nWidth) * state->nHeight, cache.background.get());
    state->work.appearance = appearance;
    state->work.bBackgroundDrawn = TRUE;
  }
  const InstrumentParts before = cache.parts;
  cache.parts = {};
  ValueLayer list(appearance, &cache.parts);
  layout.addParts(list, state->block, state->szText);
  DirtyRects dirty = ChangedRects(before, cache.parts, appearance.area);
  if (redrawAll) dirty.Add(appearance.area);
  for (const RECT& changed : dirty) {
    canvas.ClipTo(changed);
    RestoreBackground(canvas, cache);
    ValueLayer drawn(appearance, &canvas);
    layout.addParts(drawn, state->block, state->szText);
  }
  return dirty;
}

// The same; also invalidates the changed rectangles.
void EnsureRendered(InstrumentState* state) {
  for (const RECT& changed : Render(state)) InvalidateRect(state->hWnd, &changed, FALSE);
}

OwnedRegion RegionOf(const DirtyRects& dirty) {
  OwnedRegion region(CreateRectRgn(0, 0, 0, 0));
  for (const RECT& area : dirty) {
    const OwnedRegion part(CreateRectRgnIndirect(&area));
    CombineRgn(region, region, part, RGN_OR);
  }
  return region;
}

// Paints a change before it returns, and only the changed rectangles. In a single call, because twenty animated
// instruments make a thousand of them a second.
void ShowNow(InstrumentState* state) {
  const DirtyRects dirty = Render(state);
  RedrawWindow(state->hWnd, nullptr, dirty.empty() ? OwnedRegion() : RegionOf(dirty),
               RDW_UPDATENOW | RDW_NOCHILDREN | (dirty.empty() ? 0u : RDW_INVALIDATE));
}

// ---- Commands

// Reading changes nothing: always false.
template <class Item>
bool CopyToCaller(const Item& item, LPARAM address) {
  auto* target = reinterpret_cast<Item*>(address);
  if (!IsBadWritePtr(target, sizeof(Item))) memcpy(target, &item, sizeof(Item));
  return false;
}

// Copies the item, so that the owner's memory is probed and read once.
template <class Item>
bool CopyFromCaller(LPARAM address, Item* item) {
  const auto* source = reinterpret_cast<const Item*>(address);
  if (IsBadReadPtr(source, sizeof(Item))) return false;
  memcpy(item, source, sizeof(Item));
  return true;
}

void RenderAll(InstrumentState* state) {
  state->work.bBackgroundDrawn = FALSE;
  state->bRedraw = TRUE;
  RepaintNow(state->hWnd);
}

void ResetBlock(InstrumentState* state) {
  SetBlock(state, DefaultBlock(kAfterReset, ModeOf(*state), nullptr));
  RepaintNow(state->hWnd);
}

bool SetStyle(InstrumentState* state, DWORD style) {
  if (style == state->dwStyle) return false;
  state->dwStyle = style;
  state->bRedraw = TRUE;
  return true;
}

// The functions below return whether they changed the displayed image.

bool ExchangeStyle(InstrumentState* state, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return CopyToCaller(state->dwStyle, address);
  DWORD mask = 0;
  if (!CopyFromCaller(address, &mask)) return false;
  return SetStyle(state, wParam & kCommandRemove ? state->dwStyle & ~mask : state->dwStyle | mask);
}

bool ExchangeBlock(InstrumentState* state, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return CopyToCaller(state->block, address);
  InstrumentBlock block;
  if (!CopyFromCaller(address, &block) || block.version != kInstrumentVersion) return false;
  SetBlock(state, block);
  return true;
}

void StartAnimation(InstrumentState* state) {
  if (state->bAnimating) return;
  state->bAnimating = SetTimer(state->hWnd, kAnimationTimer, kAnimationTickMs, nullptr) != 0;
  state->nCountdown = kAnimationCountdown;
  // Without a timer the animation would never end.
  if (!state->bAnimating) state->block.current = state->target;
}

bool MoveTo(InstrumentState* state, float value, WPARAM flags) {
  const bool exact = (flags & kValueExact) != 0;
  const bool isCurrent = value == state->block.current, isTarget = value == state->target;
  if (exact ? isCurrent && isTarget : isCurrent || isTarget) return false;
  state->target = value;
  state->work.bExact = exact;
  if (flags & kValueAnimate) {
    StartAnimation(state);
  } else {
    state->block.current = value;
  }
  return true;
}

bool ExchangeValue(InstrumentState* state, WPARAM wParam, LPARAM address) {
  InstrumentBlock& block = state->block;
  if (wParam & kCommandRead) return CopyToCaller(wParam & kValueAnimate ? state->target : block.current, address);
  float value = 0;
  bool changed = true;
  if (!CopyFromCaller(address, &value) || std::isnan(value)) {
    block.state |= kInstrumentNoValue;
  } else {
    // After "no value", the old value must be shown again even if it is equal.
    changed = (block.state & kInstrumentNoValue) != 0;
    block.state &= ~kInstrumentNoValue;
    changed |= MoveTo(state, ClampToRange(block, value), wParam);
  }
  if (changed) state->bRedraw = TRUE;
  return changed;
}

bool ExchangeTime(InstrumentState* state, WPARAM wParam, LPARAM address) {
  if (ModeOf(*state) != kModeDigital || !(state->dwStyle & (kInstrumentShowTime | kInstrumentShowDate))) return false;
  if (wParam & kCommandRead) return CopyToCaller(state->time, address);
  SYSTEMTIME time;
  if (!CopyFromCaller(address, &time) || memcmp(&time, &state->time, sizeof(time)) == 0) return false;
  state->time = time;
  state->bRedraw = TRUE;
  return true;
}

bool ExchangeZone(InstrumentState* state, WPARAM wParam, LPARAM address) {
  InstrumentBlock& block = state->block;
  const int index = std::min<int>(HIWORD(wParam), kInstrumentZones - 1);
  if (wParam & kCommandRead) return CopyToCaller(block.zones[index], address);
  InstrumentZone zone;
  if (!CopyFromCaller(address, &zone)) return false;
  zone.lower = ClampToRange(block, zone.lower);
  zone.upper = ClampToRange(block, zone.upper);
  block.zones[index] = zone;
  block.state = wParam & kZoneEnable ? block.state | ZoneEnabledBit(index) : block.state & ~ZoneEnabledBit(index);
  state->bRedraw = TRUE;
  return true;
}

LRESULT OnCommand(HWND window, InstrumentState* state, WPARAM wParam, LPARAM lParam) {
  bool changed = false;
  switch (LOBYTE(wParam)) {
    case kCommandRender: RenderAll(state); break;
    case kCommandReset: ResetBlock(state); break;
    case kCommandStyle: changed = ExchangeStyle(state, wParam, lParam); break;
    case kCommandBlock: changed = ExchangeBlock(state, wParam, lParam); break;
    case kCommandValue: changed = ExchangeValue(state, wParam, lParam); break;
    case kCommandTime: changed = ExchangeTime(state, wParam, lParam); break;
    case kCommandZone: changed = ExchangeZone(state, wParam, lParam); break;
  }
  if (!changed) return 0;
  NotifyValueChanged(window);  // a hook may destroy the control
  state = WindowState<InstrumentState>(window);
  if (state && (wParam & kCommandRedraw)) {
    ShowNow(state);
  } else {
    InvalidateRect(window, nullptr, FALSE);
  }
  return 0;
}

// ---- Accessibility

FixedText AccessibleValue(const InstrumentState& state) {
  const InstrumentReading reading = ReadingOf(state.block);
  if (!reading.valid) return {};
  const int decimals = state.block.format & kFormatDecimals;
  const FixedText unit = DecodedUnit(state.block);
  switch (ModeOf(state)) {
    case kModeCompass: return HeadingText(reading.value, decimals) + unit;
    case kModeDigital:
      if (state.dwStyle & (kInstrumentShowTime | kInstrumentShowDate | kInstrumentShowAngle)) {
        InstrumentState shown = state;
        StoreShownText(&shown);
        return ReadableDigits(shown.szText, state.dwStyle);
      }
      [[fallthrough]];
    default: return PlainNumber(reading.value, decimals, (state.block.format & kFormatSign) != 0) + L" " + unit;
  }
}

AccessibleText Describe(HWND window) {
  const auto* state = WindowState<InstrumentState>(window);
  if (!state) return {};
  return {std::wstring(DecodedName(state->block).view()), std::wstring(AccessibleValue(*state).view())};
}

// ---- Message handlers

LRESULT OnCreate(HWND window, InstrumentState* state) {
  if (state) return 0;  // created already
  state = CreateWindowState<InstrumentState>(window);
  if (!state) return kNoState;
  state->hInstance = reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE));
  state->hWnd = window;
  state->hParent = GetParent(window);
  state->nId = GetWindowLongA(window, GWL_ID);
  state->dwStyle = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  GetLocalTime(&state->time);
  GetWindowTextA(window, state->szText, sizeof(state->szText));
  SetBlock(state, DefaultBlock(kAtCreation, ModeOf(*state), state->szText));
  MakeBuffers(state);
  DragAcceptFiles(window, TRUE);
  return 0;
}

LRESULT OnDestroy(HWND window, InstrumentState* state) {
  KillTimer(window, kAnimationTimer);
  delete state->work.cache;
  DestroyWindowState(window, state);
  return 0;
}

LRESULT OnSize(InstrumentState* state) {
  MakeBuffers(state);
  RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnEnable(InstrumentState* state, bool enabled) {
  SetStyle(state, enabled ? state->dwStyle & ~kInstrumentDisabled : state->dwStyle | kInstrumentDisabled);
  RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnSetText(InstrumentState* state, const char* text) {
  if (IsBadStringPtrA(text, sizeof(state->szText))) return 0;
  lstrcpynA(state->szText, text, sizeof(state->szText));
  if (ModeOf(*state) == kModeCompass) lstrcpynA(state->block.szName, text, sizeof(state->block.szName));
  state->bRedraw = TRUE;
  RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnPaint(HWND window, InstrumentState* state) {
  // Before BeginPaint, so that the areas that this invalidates are painted, too.
  if (state) EnsureRendered(state);
  const PaintScope paint(window);
  state = WindowState<InstrumentState>(window);  // messages sent by BeginPaint may have destroyed the control
  if (!state) return kNoState;
  if (!state->hBuffer) return 0;
  const SIZE client = ClientSize(window);
  HDC source = InstrumentTools()->dc;
  const SelectedObject selected(source, state->hBuffer);
  SetStretchBltMode(paint.dc(), COLORONCOLOR);
  StretchBlt(paint.dc(), 0, 0, client.cx, client.cy, source, 0, 0, state->nWidth, state->nHeight, SRCCOPY);
  return 0;
}

// An exact animation continues within the block's step; when its steps become invisible, it jumps to the target.
AnimationStep NextStep(const InstrumentState& state) {
  if (!state.work.bExact) return NextAnimationStep(state.block, state.target);
  InstrumentBlock fine = state.block;
  fine.step = std::min(std::fabs(fine.step), std::fabs(fine.maximum - fine.minimum) / 10000);
  const AnimationStep step = NextAnimationStep(fine, state.target);
  return step.moving || fine.current == state.target ? step : AnimationStep{state.target, true};
}

LRESULT OnTimer(InstrumentState* state, WPARAM timer) {
  if (timer != kAnimationTimer) return 0;
  const AnimationStep step = NextStep(*state);
  if (step.moving) {
    state->block.current = step.current;
    state->bRedraw = TRUE;
    ShowNow(state);
  } else if (state->nCountdown == 0) {
    KillTimer(state->hWnd, kAnimationTimer);
    state->bAnimating = FALSE;
    NotifyValueChanged(state->hWnd);
  } else {
    --state->nCountdown;
  }
  return 0;
}

LRESULT CopyToClipboard(InstrumentState* state, LPARAM requested) {
  EnsureRendered(state);
  if (!state->hBuffer) return 0;
  const SIZE own{state->nWidth, state->nHeight};
  const SIZE size = RequestedCopySize(requested, own, kInstrumentMinCopySize, kInstrumentMaxCopySize);
  CopyBitmapToClipboard(state->hWnd, state->hBuffer, own, size);
  return 0;
}

// ---- Window procedure

LRESULT CALLBACK InstrumentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = WindowState<InstrumentState>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window, state);
    case WM_DESTROY: return state ? OnDestroy(window, state) : kNoState;
    case WM_SIZE: return state ? OnSize(state) : kNoState;
    case WM_ENABLE: return state ? OnEnable(state, wParam != 0) : kNoState;
    case WM_SETTEXT: return state ? OnSetText(state, reinterpret_cast<const char*>(lParam)) : kNoState;
    case WM_PAINT: return OnPaint(window, state);
    case WM_TIMER: return state ? OnTimer(state, wParam) : kNoState;
    case WM_LBUTTONDBLCLK: return state ? CopyToClipboard(state, 0) : kNoState;
    case WM_COPY: return state ? CopyToClipboard(state, lParam) : kNoState;
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, ROLE_SYSTEM_INDICATOR, Describe);
    case WM_SYSCOLORCHANGE: return state ? OnCommand(window, state, kCommandRender, 0) : kNoState;
    case kControlCommand: return state ? OnCommand(window, state, wParam, lParam) : kNoState;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

// ---- Registration

BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kDisplayInstrumentClass, InstrumentProcedure, registerIt);
}

}  // namespace kv
