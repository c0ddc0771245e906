#include "controls/display_instrument.h"

#include <oleacc.h>
#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <string>

#include "controls/instrument/cache.h"
#include "controls/instrument/compass.h"
#include "controls/instrument/digital.h"
#include "controls/instrument/fixed_text.h"
#include "controls/instrument/layout.h"
#include "controls/instrument/state.h"
#include "controls/instrument/text.h"
#include "controls/instrument_block.h"
#include "framework/accessible.h"
#include "framework/bitmaps.h"
#include "framework/canvas.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/window_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kGlideTimer = 5;
constexpr UINT kGlideTickMs = 20;
constexpr LONG kGlideCountdown = 20;
constexpr size_t kShownTextSize = 32;
constexpr LRESULT kNoRecord = 1;

// ---- Record ---------------------------------------------------------------------------------------------------------

DWORD ModeOf(const InstrumentRecord& record) {
  return record.dwStyle & kInstrumentModeBits;
}

struct ModeDefaults {
  BlockDefaults compass, centreBar, other;
};
constexpr BlockDefaults kPlainDefaults{0, 100, 1, 0, 0, "%", "Relative"};
constexpr ModeDefaults kAtCreation{
    {-360, 360, 1, 1, 0, "\xB0", nullptr}, {-100, 100, 1, 0, 0, "%", "Relative"}, kPlainDefaults};
// Quirk: a reset names compass and bar "Compass" and gives the bar a decimal place.
constexpr ModeDefaults kAfterReset{
    {-360, 360, 1, 1, 0, "\xB0", "Compass"}, {-100, 100, 1, 1, 0, "%", "Compass"}, kPlainDefaults};

// `name` is for the mode that has none of its own.
InstrumentBlock DefaultBlock(const ModeDefaults& row, DWORD mode, const char* name) {
  BlockDefaults defaults = mode == kModeCompass ? row.compass : mode == kModeCentreBar ? row.centreBar : row.other;
  if (!defaults.name) defaults.name = name;
  return BuildDefaultBlock(defaults);
}

void SetBlock(InstrumentRecord* record, const InstrumentBlock& block) {
  record->block = block;
  record->target = block.current;
  record->work.bExact = FALSE;
  record->bRedraw = TRUE;
}

// Without a cache, memory being short, the control shows nothing and still keeps its values.
void MakeBuffers(InstrumentRecord* record) {
  const SIZE size = ClientSize(record->hWnd);
  record->nWidth = size.cx;
  record->nHeight = size.cy;
  record->work.bFaceDrawn = FALSE;
  record->bRedraw = TRUE;
  record->hBuffer = nullptr;
  if (!record->work.cache) record->work.cache = new (std::nothrow) InstrumentCache;
  InstrumentCache* cache = record->work.cache;
  if (!cache || !InstrumentTools() || !cache->buffer.Create(size)) return;
  cache->face.reset(new (std::nothrow) DWORD[static_cast<size_t>(size.cx) * size.cy]);
  if (cache->face) record->hBuffer = cache->buffer.bitmap();
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

void StoreShownText(InstrumentRecord* record) {
  const FixedText text = DigitalText(record->block, record->dwStyle, record->time);
  const size_t length = std::min(text.size(), kShownTextSize - 1);
  std::transform(text.begin(), text.begin() + length, record->szText,
                 [](wchar_t character) { return static_cast<char>(character); });
  record->szText[length] = '\0';
}

InstrumentFace FaceOf(const InstrumentRecord& record) {
  InstrumentFace face{{0, 0, record.nWidth, record.nHeight}, record.dwStyle, {}, record.block, record.work.face.reach};
  std::ranges::transform(kFaceColors, face.colors, GetSysColor);
  if (!ReadingOf(record.block).valid) face.block.state |= kInstrumentNoValue;
  face.block.current = 0;
  return face;
}

// Copies the clip of the canvas from the face's picture.
void RestoreFace(Canvas& canvas, const InstrumentCache& cache) {
  const RECT& clip = canvas.clip();
  canvas.FinishGdi();
  for (LONG y = clip.top; y < clip.bottom; ++y) {
    const size_t first = static_cast<size_t>(y) * cache.buffer.size().cx + clip.left;
    std::copy_n(&cache.face[first], clip.right - clip.left, cache.buffer.Row(y) + clip.left);
  }
}

// Brings the back buffer up to date, if it is not, and returns what changed of it.
Damage Render(InstrumentRecord* record) {
  InstrumentFace face = FaceOf(*record);
  const bool anew = !record->work.bFaceDrawn || memcmp(&record->work.face, &face, sizeof(face)) != 0;
  if (!record->bRedraw && !anew) return {};
  record->bRedraw = FALSE;
  if (!record->hBuffer) return {};
  ++record->work.renderings;
  if (ModeOf(*record) == kModeDigital) StoreShownText(record);
  InstrumentCache& cache = *record->work.cache;
  DrawingTools& tools = *InstrumentTools();
  const InstrumentLayout& layout = LayoutOf(record->dwStyle);
  Canvas canvas(tools.dc, cache.buffer, tools.shape);
  if (anew) {
    layout.drawFace(canvas, face);
    canvas.FinishGdi();
    std::copy_n(cache.buffer.Row(0), static_cast<size_t>(record->nWidth) * record->nHeight, cache.face.get());
    record->work.face = face;
    record->work.bFaceDrawn = TRUE;
  }
  const InstrumentParts before = cache.parts;
  cache.parts = {};
  ValueLayer list(face, &cache.parts);
  layout.addParts(list, record->block, record->szText);
  Damage damage = DamageBetween(before, cache.parts, face.area);
  if (anew) damage.Add(face.area);
  for (const RECT& changed : damage) {
    canvas.ClipTo(changed);
    RestoreFace(canvas, cache);
    ValueLayer drawn(face, &canvas);
    layout.addParts(drawn, record->block, record->szText);
  }
  return damage;
}

// The same, and has what changed painted when the time comes.
void EnsureRendered(InstrumentRecord* record) {
  for (const RECT& changed : Render(record)) InvalidateRect(record->hWnd, &changed, FALSE);
}

OwnedRegion RegionOf(const Damage& damage) {
  OwnedRegion region(CreateRectRgn(0, 0, 0, 0));
  for (const RECT& area : damage) {
    const OwnedRegion part(CreateRectRgnIndirect(&area));
    CombineRgn(region, region, part, RGN_OR);
  }
  return region;
}

// Shows a change before returning; what did not change is not painted. All in one call: twenty gliding instruments make
// a thousand of them a second.
void ShowNow(InstrumentRecord* record) {
  const Damage damage = Render(record);
  RedrawWindow(record->hWnd, nullptr, damage.empty() ? OwnedRegion() : RegionOf(damage),
               RDW_UPDATENOW | RDW_NOCHILDREN | (damage.empty() ? 0u : RDW_INVALIDATE));
}

// ---- Commands -------------------------------------------------------------------------------------------------------

// Reading changes nothing: always false.
template <class Item>
bool ReadOut(const Item& item, LPARAM address) {
  auto* target = reinterpret_cast<Item*>(address);
  if (!IsBadWritePtr(target, sizeof(Item))) memcpy(target, &item, sizeof(Item));
  return false;
}

// Takes a copy, so that the owner's memory is tested and read once.
template <class Item>
bool TakeIn(LPARAM address, Item* item) {
  const auto* source = reinterpret_cast<const Item*>(address);
  if (IsBadReadPtr(source, sizeof(Item))) return false;
  memcpy(item, source, sizeof(Item));
  return true;
}

void RenderAnew(InstrumentRecord* record) {
  record->work.bFaceDrawn = FALSE;
  record->bRedraw = TRUE;
  RepaintNow(record->hWnd);
}

void ResetBlock(InstrumentRecord* record) {
  SetBlock(record, DefaultBlock(kAfterReset, ModeOf(*record), nullptr));
  RepaintNow(record->hWnd);
}

bool SetStyle(InstrumentRecord* record, DWORD style) {
  if (style == record->dwStyle) return false;
  record->dwStyle = style;
  record->bRedraw = TRUE;
  return true;
}

// The exchanges below tell whether they changed what is shown.

bool ExchangeStyle(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return ReadOut(record->dwStyle, address);
  DWORD mask = 0;
  if (!TakeIn(address, &mask)) return false;
  return SetStyle(record, wParam & kCommandRemove ? record->dwStyle & ~mask : record->dwStyle | mask);
}

bool ExchangeBlock(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return ReadOut(record->block, address);
  InstrumentBlock block;
  if (!TakeIn(address, &block) || block.version != kInstrumentVersion) return false;
  SetBlock(record, block);
  return true;
}

void StartGliding(InstrumentRecord* record) {
  if (record->bGliding) return;
  record->bGliding = SetTimer(record->hWnd, kGlideTimer, kGlideTickMs, nullptr) != 0;
  record->nCountdown = kGlideCountdown;
  // Without a timer the value would never arrive.
  if (!record->bGliding) record->block.current = record->target;
}

bool MoveTo(InstrumentRecord* record, float value, WPARAM flags) {
  const bool exact = (flags & kValueExact) != 0;
  const bool isCurrent = value == record->block.current, isTarget = value == record->target;
  if (exact ? isCurrent && isTarget : isCurrent || isTarget) return false;
  record->target = value;
  record->work.bExact = exact;
  if (flags & kValueGlide) {
    StartGliding(record);
  } else {
    record->block.current = value;
  }
  return true;
}

bool ExchangeValue(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  InstrumentBlock& block = record->block;
  if (wParam & kCommandRead) return ReadOut(wParam & kValueGlide ? record->target : block.current, address);
  float value = 0;
  bool changed = true;
  if (!TakeIn(address, &value) || std::isnan(value)) {
    block.state |= kInstrumentNoValue;
  } else {
    // A value that comes back after none must show again even if it is still the old one.
    changed = (block.state & kInstrumentNoValue) != 0;
    block.state &= ~kInstrumentNoValue;
    changed |= MoveTo(record, ClampToRange(block, value), wParam);
  }
  if (changed) record->bRedraw = TRUE;
  return changed;
}

bool ExchangeTime(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  if (ModeOf(*record) != kModeDigital || !(record->dwStyle & (kInstrumentShowTime | kInstrumentShowDate))) return false;
  if (wParam & kCommandRead) return ReadOut(record->time, address);
  SYSTEMTIME time;
  if (!TakeIn(address, &time) || memcmp(&time, &record->time, sizeof(time)) == 0) return false;
  record->time = time;
  record->bRedraw = TRUE;
  return true;
}

bool ExchangeZone(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  InstrumentBlock& block = record->block;
  const int index = std::min<int>(HIWORD(wParam), kInstrumentZones - 1);
  if (wParam & kCommandRead) return ReadOut(block.zones[index], address);
  InstrumentZone zone;
  if (!TakeIn(address, &zone)) return false;
  zone.lower = ClampToRange(block, zone.lower);
  zone.upper = ClampToRange(block, zone.upper);
  block.zones[index] = zone;
  block.state = wParam & kZoneEnable ? block.state | ZoneEnabledBit(index) : block.state & ~ZoneEnabledBit(index);
  record->bRedraw = TRUE;
  return true;
}

LRESULT OnCommand(HWND window, InstrumentRecord* record, WPARAM wParam, LPARAM lParam) {
  bool changed = false;
  switch (LOBYTE(wParam)) {
    case kCommandRender: RenderAnew(record); break;
    case kCommandReset: ResetBlock(record); break;
    case kCommandStyle: changed = ExchangeStyle(record, wParam, lParam); break;
    case kCommandBlock: changed = ExchangeBlock(record, wParam, lParam); break;
    case kCommandValue: changed = ExchangeValue(record, wParam, lParam); break;
    case kCommandTime: changed = ExchangeTime(record, wParam, lParam); break;
    case kCommandZone: changed = ExchangeZone(record, wParam, lParam); break;
  }
  if (!changed) return 0;
  NotifyValueChanged(window);  // whoever listens may destroy the control
  record = WindowRecord<InstrumentRecord>(window);
  if (record && (wParam & kCommandRedraw)) {
    ShowNow(record);
  } else {
    InvalidateRect(window, nullptr, FALSE);
  }
  return 0;
}

// ---- For screen readers ---------------------------------------------------------------------------------------------

FixedText SpokenValue(const InstrumentRecord& record) {
  const InstrumentReading reading = ReadingOf(record.block);
  if (!reading.valid) return {};
  const int places = record.block.format & kFormatPlaces;
  const FixedText unit = DecodedUnit(record.block);
  switch (ModeOf(record)) {
    case kModeCompass: return HeadingText(reading.value, places) + unit;
    case kModeDigital:
      if (record.dwStyle & (kInstrumentShowTime | kInstrumentShowDate | kInstrumentShowAngle)) {
        InstrumentRecord shown = record;
        StoreShownText(&shown);
        return ReadableDigits(shown.szText, record.dwStyle);
      }
      [[fallthrough]];
    default: return PlainNumber(reading.value, places, (record.block.format & kFormatSign) != 0) + L" " + unit;
  }
}

AccessibleText Describe(HWND window) {
  const auto* record = WindowRecord<InstrumentRecord>(window);
  if (!record) return {};
  return {std::wstring(DecodedName(record->block).view()), std::wstring(SpokenValue(*record).view())};
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window, InstrumentRecord* record) {
  if (record) return 0;  // created already
  record = CreateWindowRecord<InstrumentRecord>(window);
  if (!record) return kNoRecord;
  record->hInstance = reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE));
  record->hWnd = window;
  record->hParent = GetParent(window);
  record->nId = GetWindowLongA(window, GWL_ID);
  record->dwStyle = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  GetLocalTime(&record->time);
  GetWindowTextA(window, record->szText, sizeof(record->szText));
  SetBlock(record, DefaultBlock(kAtCreation, ModeOf(*record), record->szText));
  MakeBuffers(record);
  DragAcceptFiles(window, TRUE);
  return 0;
}

LRESULT OnDestroy(HWND window, InstrumentRecord* record) {
  KillTimer(window, kGlideTimer);
  delete record->work.cache;
  DestroyWindowRecord(window, record);
  return 0;
}

LRESULT OnSize(InstrumentRecord* record) {
  MakeBuffers(record);
  RepaintNow(record->hWnd);
  return 0;
}

LRESULT OnEnable(InstrumentRecord* record, bool enabled) {
  SetStyle(record, enabled ? record->dwStyle & ~kInstrumentDisabled : record->dwStyle | kInstrumentDisabled);
  RepaintNow(record->hWnd);
  return 0;
}

LRESULT OnSetText(InstrumentRecord* record, const char* text) {
  if (IsBadStringPtrA(text, sizeof(record->szText))) return 0;
  lstrcpynA(record->szText, text, sizeof(record->szText));
  if (ModeOf(*record) == kModeCompass) lstrcpynA(record->block.szName, text, sizeof(record->block.szName));
  record->bRedraw = TRUE;
  RepaintNow(record->hWnd);
  return 0;
}

LRESULT OnPaint(HWND window, InstrumentRecord* record) {
  // Before the paint begins: it then shows what this invalidates as well.
  if (record) EnsureRendered(record);
  const PaintScope paint(window);
  record = WindowRecord<InstrumentRecord>(window);  // the messages of its beginning may have ended the control
  if (!record) return kNoRecord;
  if (!record->hBuffer) return 0;
  const SIZE client = ClientSize(window);
  HDC source = InstrumentTools()->dc;
  const SelectedObject selected(source, record->hBuffer);
  SetStretchBltMode(paint.dc(), COLORONCOLOR);
  StretchBlt(paint.dc(), 0, 0, client.cx, client.cy, source, 0, 0, record->nWidth, record->nHeight, SRCCOPY);
  return 0;
}

// An exact glide goes on within the block's step, and from where no more is to be seen of it to the target itself.
GlideStep NextStep(const InstrumentRecord& record) {
  if (!record.work.bExact) return NextGlideStep(record.block, record.target);
  InstrumentBlock fine = record.block;
  fine.step = std::min(std::fabs(fine.step), std::fabs(fine.maximum - fine.minimum) / 10000);
  const GlideStep step = NextGlideStep(fine, record.target);
  return step.moving || fine.current == record.target ? step : GlideStep{record.target, true};
}

LRESULT OnTimer(InstrumentRecord* record, WPARAM timer) {
  if (timer != kGlideTimer) return 0;
  const GlideStep step = NextStep(*record);
  if (step.moving) {
    record->block.current = step.current;
    record->bRedraw = TRUE;
    ShowNow(record);
  } else if (record->nCountdown == 0) {
    KillTimer(record->hWnd, kGlideTimer);
    record->bGliding = FALSE;
    NotifyValueChanged(record->hWnd);
  } else {
    --record->nCountdown;
  }
  return 0;
}

LRESULT CopyToClipboard(InstrumentRecord* record, LPARAM requested) {
  EnsureRendered(record);
  if (!record->hBuffer) return 0;
  const SIZE own{record->nWidth, record->nHeight};
  const SIZE size = RequestedPictureSize(requested, own, kInstrumentMinCopySize, kInstrumentMaxCopySize);
  CopyBitmapToClipboard(record->hWnd, record->hBuffer, own, size);
  return 0;
}

// ---- Window procedure -----------------------------------------------------------------------------------------------

LRESULT CALLBACK InstrumentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* record = WindowRecord<InstrumentRecord>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window, record);
    case WM_DESTROY: return record ? OnDestroy(window, record) : kNoRecord;
    case WM_SIZE: return record ? OnSize(record) : kNoRecord;
    case WM_ENABLE: return record ? OnEnable(record, wParam != 0) : kNoRecord;
    case WM_SETTEXT: return record ? OnSetText(record, reinterpret_cast<const char*>(lParam)) : kNoRecord;
    case WM_PAINT: return OnPaint(window, record);
    case WM_TIMER: return record ? OnTimer(record, wParam) : kNoRecord;
    case WM_LBUTTONDBLCLK: return record ? CopyToClipboard(record, 0) : kNoRecord;
    case WM_COPY: return record ? CopyToClipboard(record, lParam) : kNoRecord;
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_GETOBJECT: return AnswerGetObject(window, wParam, lParam, ROLE_SYSTEM_INDICATOR, Describe);
    case WM_SYSCOLORCHANGE: return record ? OnCommand(window, record, kCommandRender, 0) : kNoRecord;
    case kControlCommand: return record ? OnCommand(window, record, wParam, lParam) : kNoRecord;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

// ---- Registration ---------------------------------------------------------------------------------------------------

BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kDisplayInstrumentClass, InstrumentProcedure, registerIt);
}

}  // namespace kv
