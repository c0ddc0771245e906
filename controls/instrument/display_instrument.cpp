#include "controls/display_instrument.h"

#include <oleacc.h>
#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument_block.h"
#include "controls/instrument/centre_bar.h"
#include "controls/instrument/compass.h"
#include "controls/instrument/digital.h"
#include "controls/instrument/digits.h"
#include "controls/instrument/gauge.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/record.h"
#include "controls/instrument/segment_bar.h"
#include "controls/instrument/text.h"
#include "controls/instrument/view.h"
#include "framework/accessible.h"
#include "framework/canvas.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/picture.h"
#include "framework/window_record.h"

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
// A reset is no second creation: compass and bar are called "Compass" whatever they were called, and the bar gets a
// decimal place. That is meant; owners who reset give the names and places that they want anew.
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
  record->bRedraw = TRUE;
}

// Without a keep, memory being short, the control shows nothing and still keeps its values.
void MakeBuffers(InstrumentRecord* record) {
  const SIZE size = ClientSize(record->hWnd);
  record->nWidth = size.cx;
  record->nHeight = size.cy;
  record->work.bFaceDrawn = FALSE;
  record->bRedraw = TRUE;
  if (!record->work.keep) record->work.keep = new (std::nothrow) InstrumentKeep;
  InstrumentKeep* keep = record->work.keep;
  if (!keep) return;
  const bool made = keep->buffer.Create(size) && keep->face.Create(size);
  record->hBuffer = made ? keep->buffer.bitmap() : nullptr;
  record->work.hFace = made ? keep->face.bitmap() : nullptr;
}

void DeleteBuffers(InstrumentRecord* record) {
  delete record->work.keep;
  record->work.keep = nullptr;
  record->hBuffer = record->work.hFace = nullptr;
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

struct Layout {
  DrawLayer face, value;
  ListParts parts;
};

Layout LayoutOf(DWORD mode) {
  switch (mode) {
    case kModeDigital: return {DrawDigitalFace, DrawDigitalValue, ListDigitalParts};
    case kModeSegmentBar: return {DrawSegmentBarFace, DrawSegmentBarValue, ListSegmentBarParts};
    case kModeCompass: return {DrawCompassFace, DrawCompassValue, ListCompassParts};
    case kModeCentreBar: return {DrawCentreBarFace, DrawCentreBarValue, ListCentreBarParts};
    default: return {DrawGaugeFace, DrawGaugeValue, ListGaugeParts};
  }
}

void StoreShownText(InstrumentRecord* record) {
  const FixedText text = DigitalText(record->block, record->dwStyle, record->time);
  const size_t length = std::min(text.size(), kShownTextSize - 1);
  std::transform(text.begin(), text.begin() + length, record->szText,
                 [](wchar_t character) { return static_cast<char>(character); });
  record->szText[length] = '\0';
}

InstrumentFaceKey FaceKeyOf(const InstrumentRecord& record) {
  InstrumentFaceKey key{record.dwStyle, ReadingOf(record.block).valid, {}, record.block};
  std::ranges::transform(kFaceColors, key.colors, GetSysColor);
  key.block.current = 0;
  return key;
}

bool FaceIsCurrent(const InstrumentRecord& record, const InstrumentFaceKey& key) {
  return record.work.bFaceDrawn && memcmp(&record.work.faceKey, &key, sizeof(key)) == 0;
}

void RenderFace(InstrumentRecord* record, const InstrumentFaceKey& key, const RECT& area, const InstrumentView& view) {
  InstrumentKeep& keep = *record->work.keep;
  Canvas canvas(keep.dc, keep.face, keep.shape);
  LayoutOf(ModeOf(*record)).face(canvas, area, view);
  record->work.faceKey = key;
  record->work.bFaceDrawn = TRUE;
}

// Brings the back buffer up to date, if it is not, and tells what changed of it.
Damage Render(InstrumentRecord* record) {
  const InstrumentFaceKey key = FaceKeyOf(*record);
  const bool anew = !FaceIsCurrent(*record, key);
  if (!record->bRedraw && !anew) return {};
  record->bRedraw = FALSE;
  if (!record->hBuffer) return {};
  ++record->work.renderings;
  if (ModeOf(*record) == kModeDigital) StoreShownText(record);
  InstrumentKeep& keep = *record->work.keep;
  const InstrumentView view{record->block, record->dwStyle, record->time, record->szText, keep};
  const RECT area{0, 0, record->nWidth, record->nHeight};
  const Layout layout = LayoutOf(ModeOf(*record));
  if (anew) RenderFace(record, key, area, view);
  const InstrumentParts before = keep.parts;
  keep.parts.Clear();
  layout.parts(keep.dc, area, view, &keep.parts);
  Damage damage = DamageBetween(before, keep.parts, area);
  if (anew) damage.Add(area);
  for (const RECT& changed : damage) {
    Canvas canvas(keep.dc, keep.buffer, keep.shape);
    canvas.ClipTo(changed);
    CopyFrom(canvas, keep.face);
    layout.value(canvas, area, view);
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
  const bool changed = damage.begin() != damage.end();
  RedrawWindow(record->hWnd, nullptr, changed ? RegionOf(damage) : OwnedRegion(),
               RDW_UPDATENOW | RDW_NOCHILDREN | (changed ? RDW_INVALIDATE : 0u));
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

bool MoveTo(InstrumentRecord* record, float value, bool glide) {
  if (value == record->block.current || value == record->target) return false;
  record->target = value;
  if (glide) {
    StartGliding(record);
  } else {
    record->block.current = value;
  }
  return true;
}

bool ExchangeValue(InstrumentRecord* record, WPARAM wParam, LPARAM address) {
  InstrumentBlock& block = record->block;
  if (wParam & kCommandRead) return ReadOut(block.current, address);
  float value = 0;
  bool changed = true;
  if (!TakeIn(address, &value) || std::isnan(value)) {
    block.state |= kInstrumentNoValue;
  } else {
    // A value that comes back after none must show again even if it is still the old one.
    changed = (block.state & kInstrumentNoValue) != 0;
    block.state &= ~kInstrumentNoValue;
    changed |= MoveTo(record, ClampToRange(block, value), (wParam & kValueGlide) != 0);
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

LRESULT OnCommand(InstrumentRecord* record, WPARAM wParam, LPARAM lParam) {
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
  TellValueChanged(record->hWnd);
  if (wParam & kCommandRedraw) {
    ShowNow(record);
  } else {
    InvalidateRect(record->hWnd, nullptr, FALSE);
  }
  return 0;
}

// ---- For screen readers ---------------------------------------------------------------------------------------------

FixedText SpokenValue(const InstrumentRecord& record) {
  const InstrumentReading reading = ReadingOf(record.block);
  if (!reading.valid) return {};
  const int places = record.block.format & kFormatPlaces;
  const FixedText unit = UnitOf(record.block);
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
  return {std::wstring(NameOf(record->block).view()), std::wstring(SpokenValue(*record).view())};
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window) {
  auto* record = CreateWindowRecord<InstrumentRecord>(window);
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
  DeleteBuffers(record);
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
  if (!record) return kNoRecord;
  if (!record->hBuffer) return 0;
  const SIZE client = ClientSize(window);
  HDC source = record->work.keep->dc;
  const SelectedObject selected(source, record->hBuffer);
  SetStretchBltMode(paint.dc(), COLORONCOLOR);
  StretchBlt(paint.dc(), 0, 0, client.cx, client.cy, source, 0, 0, record->nWidth, record->nHeight, SRCCOPY);
  return 0;
}

LRESULT OnTimer(InstrumentRecord* record, WPARAM timer) {
  if (timer != kGlideTimer) return 0;
  const GlideStep step = NextGlideStep(record->block, record->target);
  if (step.moving) {
    record->block.current = step.current;
    record->bRedraw = TRUE;
    ShowNow(record);
  } else if (record->nCountdown == 0) {
    KillTimer(record->hWnd, kGlideTimer);
    record->bGliding = FALSE;
    TellValueChanged(record->hWnd);
  } else {
    --record->nCountdown;
  }
  return 0;
}

LRESULT CopyToClipboard(InstrumentRecord* record, LPARAM requested) {
  EnsureRendered(record);
  if (!record->hBuffer) return 0;
  const SIZE own{record->nWidth, record->nHeight};
  const SIZE size = RequestedPictureSize(requested, own, kInstrumentSmallestPicture, kInstrumentLargestPicture);
  OwnedBitmap picture(CreateWindowBitmap(record->hWnd, size));
  if (!picture) return 0;
  {
    const MemoryDc dc(nullptr);
    const SelectedObject selected(dc, picture);
    ShowBitmap(dc, {0, 0, size.cx, size.cy}, record->hBuffer, own);
  }
  GiveBitmapToClipboard(record->hWnd, picture.Release());
  return 0;
}

// ---- Window procedure -----------------------------------------------------------------------------------------------

LRESULT CALLBACK InstrumentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* record = WindowRecord<InstrumentRecord>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window);
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
    case WM_SYSCOLORCHANGE: return record ? OnCommand(record, kCommandRender, 0) : kNoRecord;
    case kControlCommand: return record ? OnCommand(record, wParam, lParam) : kNoRecord;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

// ---- Registration ---------------------------------------------------------------------------------------------------

BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kDisplayInstrumentClass, InstrumentProcedure, registerIt);
}

}  // namespace kv
