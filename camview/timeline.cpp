#include "camview/timeline.h"

#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "camera/events.h"
#include "camera/text.h"
#include "camview/view_time.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/object_control.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_state.h"

namespace camview {

namespace {

constexpr double kPage = 1 / 20.0;
constexpr LONG kShortestPx = 2;

struct Timeline {
  HWND window;
  TimeRange range{0, 0};
  double position = 0;
  bool isSelected = false;
  TimeRange selection{0, 0}, visible{0, 0};
  std::vector<TimelineMark> marks;
  bool isDragging = false, isSelecting = false;
  double anchor = 0;  // the fixed end of the selection
  LONG wheel = 0;
  bool isDirty = true;  // `background` must be drawn
  kv::Surface background, surface;
  kv::CoverageShape shape;
  kv::MemoryDc dc{nullptr};
};

// ---- Layout ---------------------------------------------------------------------------------------------------------

double Within(const TimeRange& range, double time) {
  return std::clamp(time, range.from, range.to);
}

struct TimelineLayout {
  RECT track;      // between the ends of the range
  double thumbPx;  // half its width
};

TimelineLayout LayoutTimeline(SIZE size) {
  const double thumb = std::clamp(size.cy / 5.0, 4.0, 10.0);
  const LONG margin = static_cast<LONG>(std::ceil(thumb)) + 3, space = std::max<LONG>(size.cy / 6, 2);
  const LONG right = std::max<LONG>(size.cx - margin, margin), bottom = std::max(size.cy - space, space);
  return {{margin, space, right, bottom}, thumb};
}

LONG XOfTime(const TimelineLayout& layout, const TimeRange& range, double time) {
  const double length = range.to - range.from, width = layout.track.right - layout.track.left;
  if (!(length > 0)) return layout.track.left;
  return layout.track.left + static_cast<LONG>(std::clamp((time - range.from) / length, 0.0, 1.0) * width);
}

double TimeAtX(const TimelineLayout& layout, const TimeRange& range, LONG x) {
  const LONG width = std::max(layout.track.right - layout.track.left, 1L);
  const double part = std::clamp(static_cast<double>(x - layout.track.left) / width, 0.0, 1.0);
  return range.from + (range.to - range.from) * part;
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

struct TimelineColors {
  COLORREF panel, track, edge, thumb, selection;
  std::array<COLORREF, camera::kEventKinds> kinds;
};

TimelineColors ColorsOfTimeline() {
  const bool contrast = kv::IsHighContrast();
  TimelineColors colors{};
  colors.panel = GetSysColor(COLOR_BTNFACE);
  colors.track = GetSysColor(COLOR_WINDOW);
  colors.edge = GetSysColor(contrast ? COLOR_WINDOWTEXT : COLOR_BTNSHADOW);
  colors.thumb = GetSysColor(contrast ? COLOR_WINDOWTEXT : COLOR_BTNTEXT);
  colors.selection = GetSysColor(COLOR_HIGHLIGHT);
  colors.kinds = {RGB(120, 120, 120), RGB(150, 40, 170), RGB(220, 130, 0), RGB(200, 30, 30), RGB(40, 100, 190)};
  if (contrast) colors.kinds.fill(GetSysColor(COLOR_WINDOWTEXT));
  return colors;
}

LONG HeightOf(camera::EventKind kind, LONG track) {
  switch (kind) {
    case camera::EventKind::kSilence: return track / 3;
    case camera::EventKind::kLoss: return track * 2 / 3;
    case camera::EventKind::kMalformed: return track / 2;
    case camera::EventKind::kUnseen: return track * 4 / 9;
    default: return track;
  }
}

// Draws a mark from the bottom, with the height and pattern of its kind.
void DrawMark(kv::Canvas& canvas, const RECT& track, const TimelineColors& colors, camera::EventKind kind, LONG from,
              LONG to) {
  constexpr LONG kDash = 5, kPause = 3, kComb = 4;
  const COLORREF color = colors.kinds[static_cast<size_t>(kind)];
  const RECT bar{from, track.bottom - HeightOf(kind, track.bottom - track.top), to, track.bottom};
  if (kind == camera::EventKind::kUnseen) {
    for (LONG x = from; x < to; x += kDash + kPause)
      kv::FillArea(canvas, {x, bar.top, std::min(x + kDash, to), bar.top + 2}, color);
    return;
  }
  if (kind == camera::EventKind::kLoss) {
    for (LONG x = from; x < to; x += kComb) kv::FillArea(canvas, {x, bar.top, x + kShortestPx, bar.bottom}, color);
    return;
  }
  kv::FillArea(canvas, bar, color);
  if (to - from <= 2 * kShortestPx) return;
  if (kind == camera::EventKind::kSilence)
    kv::FillArea(canvas, {from + 1, bar.top + 1, to - 1, bar.bottom}, colors.track);
  if (kind != camera::EventKind::kDamage) return;
  const RECT whole = canvas.clip();
  const LONG height = track.bottom - track.top;
  canvas.ClipTo({from + 1, track.top, to - 1, track.bottom});
  for (LONG x = from - height; x < to; x += 6) {
    kv::FillLine(canvas, {x + 0.0, track.bottom + 0.0}, {x + 0.0 + height, track.top + 0.0}, 1.2, colors.track);
  }
  canvas.ClipTo(whole);
}

void DrawFace(Timeline& timeline, const TimelineLayout& layout, const TimelineColors& colors) {
  kv::Canvas canvas(timeline.dc, timeline.background, timeline.shape);
  const RECT& track = layout.track;
  const SIZE size = timeline.background.size();
  kv::FillArea(canvas, {0, 0, size.cx, size.cy}, colors.panel);
  kv::FillArea(canvas, {track.left - 1, track.top - 1, track.right + 1, track.bottom + 1}, colors.edge);
  kv::FillArea(canvas, track, colors.track);
  canvas.ClipTo(track);
  using enum camera::EventKind;
  // More severe kinds are drawn over others; of those at the same pixel one is drawn.
  for (const camera::EventKind kind : {kSilence, kUnseen, kLoss, kMalformed, kDamage}) {
    LONG from = 0, to = 0;
    for (const TimelineMark& mark : timeline.marks) {
      if (mark.kind != kind) continue;
      // Also a mark at the end is seen.
      const LONG left = std::min(XOfTime(layout, timeline.range, mark.from), track.right - kShortestPx);
      const LONG right = std::max(XOfTime(layout, timeline.range, mark.to), left + kShortestPx);
      if (left > to || to == from) {
        if (to > from) DrawMark(canvas, track, colors, kind, from, to);
        from = left;
      }
      to = std::max(to, right);
    }
    if (to > from) DrawMark(canvas, track, colors, kind, from, to);
  }
}

void DrawThumb(kv::Canvas& canvas, const TimelineLayout& layout, const TimelineColors& colors, LONG x) {
  const double half = layout.thumbPx, top = 1, bottom = canvas.surface().size().cy - 1.0, middle = x + 0.5;
  kv::FillPolygon(canvas,
                  std::array<kv::PointD, 3>{{{middle - half, top}, {middle + half, top}, {middle, top + half * 1.4}}},
                  colors.thumb);
  kv::FillPolygon(
      canvas,
      std::array<kv::PointD, 3>{{{middle + half, bottom}, {middle - half, bottom}, {middle, bottom - half * 1.4}}},
      colors.thumb);
  kv::FillArea(canvas, {x - 1, layout.track.top - 1, x + 2, layout.track.bottom + 1}, colors.track);
  kv::FillArea(canvas, {x, layout.track.top - 1, x + 1, layout.track.bottom + 1}, colors.thumb);
}

// Above the track's middle, so that it hides few marks.
void DrawVisible(kv::Canvas& canvas, const RECT& track, COLORREF color, LONG left, LONG right) {
  const LONG thickness = 2, foot = (track.bottom - track.top) / 3;
  right = std::max(right, left + 2 * thickness);
  kv::FillArea(canvas, {left, track.top, right, track.top + thickness}, color);
  kv::FillArea(canvas, {left, track.top, left + thickness, track.top + foot}, color);
  kv::FillArea(canvas, {right - thickness, track.top, right, track.top + foot}, color);
}

bool Render(Timeline& timeline, bool isFocused) {
  const SIZE size = kv::ClientSize(timeline.window);
  if (timeline.surface.Resize(size)) timeline.isDirty = timeline.background.Create(size);
  if (!timeline.surface.bitmap() || !timeline.background.bitmap()) return false;
  const TimelineLayout layout = LayoutTimeline(size);
  const TimelineColors colors = ColorsOfTimeline();
  if (timeline.isDirty) DrawFace(timeline, layout, colors);
  timeline.isDirty = false;
  kv::Canvas canvas(timeline.dc, timeline.surface, timeline.shape);
  kv::CopyFrom(canvas, timeline.background);
  const RECT& track = layout.track;
  if (timeline.isSelected) {
    const LONG left = XOfTime(layout, timeline.range, timeline.selection.from);
    const LONG right = std::min(std::max(XOfTime(layout, timeline.range, timeline.selection.to), left + 1), size.cx);
    canvas.FinishGdi();
    kv::BlendArea(timeline.surface, {left, track.top, right, track.bottom}, colors.selection, 90);
    kv::FillArea(canvas, {left, track.bottom - 3, right, track.bottom}, colors.selection);
  }
  const TimeRange visible{Within(timeline.range, timeline.visible.from), Within(timeline.range, timeline.visible.to)};
  if (visible.Length() > 0 && visible != timeline.range) {
    DrawVisible(canvas, track, colors.edge, XOfTime(layout, timeline.range, visible.from),
                XOfTime(layout, timeline.range, visible.to));
  }
  if (timeline.range.to > timeline.range.from) {
    DrawThumb(canvas, layout, colors, XOfTime(layout, timeline.range, timeline.position));
  }
  if (isFocused) kv::DrawFocusFrame(canvas.dc(), {0, 0, size.cx, size.cy});
  return true;
}

void ShowOn(Timeline& timeline, HDC dc, bool isFocused) {
  if (Render(timeline, isFocused)) timeline.surface.Show(dc, timeline.dc);
}

// ---- Changes --------------------------------------------------------------------------------------------------------

LRESULT Repaint(Timeline& timeline) {
  InvalidateRect(timeline.window, nullptr, FALSE);
  return 0;
}

LRESULT RepaintAll(Timeline& timeline) {
  timeline.isDirty = true;
  return Repaint(timeline);
}

LRESULT Tell(Timeline& timeline, WORD code) {
  Repaint(timeline);
  kv::PostNotification(timeline.window, code);
  kv::NotifyValueChanged(timeline.window);  // last: a hook may destroy the control
  return 0;
}

void SelectTo(Timeline& timeline, double time) {
  timeline.selection = {std::min(timeline.anchor, time), std::max(timeline.anchor, time)};
  timeline.isSelected = true;
}

// Moves the position by the user, or selects from the previous one.
LRESULT MoveTo(Timeline& timeline, double time, bool select) {
  time = Within(timeline.range, time);
  if (!select) {
    timeline.position = time;
    return Tell(timeline, kTimelineNotifyPosition);
  }
  if (!timeline.isSelected) timeline.anchor = timeline.position;
  timeline.position = time;
  SelectTo(timeline, time);
  kv::PostNotification(timeline.window, kTimelineNotifyPosition);
  return Tell(timeline, kTimelineNotifySelection);
}

LRESULT RemoveSelection(Timeline& timeline) {
  if (!timeline.isSelected) return 0;
  timeline.isSelected = false;
  return Tell(timeline, kTimelineNotifySelection);
}

// ---- Commands -------------------------------------------------------------------------------------------------------

bool IsSpan(const TimeRange& span) {
  return std::isfinite(span.from) && std::isfinite(span.to) && span.from <= span.to;
}

bool ExchangeRange(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  if (wParam & kv::kCommandRead) return kv::CopyItemOut(timeline.range, lParam);
  TimeRange range;
  if (!kv::CopyItemIn(lParam, &range) || !IsSpan(range)) return false;
  timeline.range = range;
  timeline.position = Within(range, timeline.position);
  timeline.selection = {Within(range, timeline.selection.from), Within(range, timeline.selection.to)};
  timeline.isDirty = true;
  return true;
}

bool ExchangePosition(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  if (wParam & kv::kCommandRead) return kv::CopyItemOut(timeline.position, lParam);
  double position = 0;
  if (!kv::CopyItemIn(lParam, &position) || !std::isfinite(position)) return false;
  timeline.position = Within(timeline.range, position);
  return true;
}

bool SetMarks(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  TimelineMarks item;
  if ((wParam & kv::kCommandRead) || !kv::CopyItemIn(lParam, &item) || item.count > kTimelineMaxMarks ||
      (item.count && IsBadReadPtr(item.marks, item.count * sizeof(TimelineMark)))) {
    return false;
  }
  std::vector<TimelineMark> taken(item.marks, item.marks + item.count);
  for (const TimelineMark& mark : taken) {
    const int kind = static_cast<int>(mark.kind);
    if (kind < 0 || kind >= camera::kEventKinds || !IsSpan({mark.from, mark.to})) return false;
  }
  timeline.marks = std::move(taken);
  timeline.isDirty = true;
  return true;
}

bool ExchangeVisible(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  if (wParam & kv::kCommandRead) return kv::CopyItemOut(timeline.visible, lParam);
  TimeRange visible;
  if (!kv::CopyItemIn(lParam, &visible) || !IsSpan(visible)) return false;
  timeline.visible = visible;
  return true;
}

bool ExchangeSelection(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  if (wParam & kv::kCommandRead) return timeline.isSelected && kv::CopyItemOut(timeline.selection, lParam);
  if (wParam & kv::kCommandRemove) {
    timeline.isSelected = false;
    return true;
  }
  TimeRange selection;
  if (!kv::CopyItemIn(lParam, &selection) || !IsSpan(selection)) return false;
  timeline.selection = {Within(timeline.range, selection.from), Within(timeline.range, selection.to)};
  timeline.isSelected = true;
  timeline.anchor = timeline.selection.from;
  return true;
}

bool DoCommand(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  switch (LOBYTE(wParam)) {
    case kTimelineRange: return ExchangeRange(timeline, wParam, lParam);
    case kTimelinePosition: return ExchangePosition(timeline, wParam, lParam);
    case kTimelineShowMarks: return SetMarks(timeline, wParam, lParam);
    case kTimelineVisible: return ExchangeVisible(timeline, wParam, lParam);
    case kTimelineSelection: return ExchangeSelection(timeline, wParam, lParam);
    default: return false;
  }
}

LRESULT OnCommand(Timeline& timeline, WPARAM wParam, LPARAM lParam) {
  if (!DoCommand(timeline, wParam, lParam)) return FALSE;
  if (wParam & kv::kCommandRead) return TRUE;
  Repaint(timeline);
  const HWND window = timeline.window;
  kv::NotifyValueChanged(window);  // a hook may destroy the control
  if (wParam & kv::kCommandRedraw) UpdateWindow(window);
  return TRUE;
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnPaint(HWND window) {
  const kv::PaintScope paint(window);
  auto* timeline = kv::ObjectOf<Timeline>(window);  // erasing may have destroyed the control
  if (timeline) ShowOn(*timeline, paint.dc(), GetFocus() == window);
  return 0;
}

LRESULT OnButtonDown(HWND window, LONG x, bool shift) {
  SetFocus(window);
  SetCapture(window);
  auto* timeline = kv::ObjectOf<Timeline>(window);  // the window that lost the focus may have destroyed the control
  if (!timeline) return 0;
  const double time = TimeAtX(LayoutTimeline(kv::ClientSize(window)), timeline->range, x);
  timeline->isDragging = true;
  timeline->isSelecting = shift;
  if (!shift) return MoveTo(*timeline, time, false);
  timeline->anchor = Within(timeline->range, time);
  return RemoveSelection(*timeline);
}

LRESULT OnMouseMove(Timeline& timeline, LONG x) {
  if (!timeline.isDragging) return 0;
  const double time =
      Within(timeline.range, TimeAtX(LayoutTimeline(kv::ClientSize(timeline.window)), timeline.range, x));
  if (!timeline.isSelecting) return time == timeline.position ? 0 : MoveTo(timeline, time, false);
  SelectTo(timeline, time);
  return Tell(timeline, kTimelineNotifySelection);
}

LRESULT OnButtonUp(Timeline& timeline) {
  timeline.isDragging = false;
  if (GetCapture() == timeline.window) ReleaseCapture();
  return 0;
}

LRESULT OnWheel(Timeline& timeline, WPARAM wParam) {
  timeline.wheel += GET_WHEEL_DELTA_WPARAM(wParam);
  const LONG notches = timeline.wheel / WHEEL_DELTA;
  timeline.wheel -= notches * WHEEL_DELTA;
  if (notches) kv::PostNotification(timeline.window, notches > 0 ? kTimelineNotifyBack : kTimelineNotifyForward);
  return 0;
}

LRESULT OnKey(Timeline& timeline, WPARAM key, bool shift) {
  const double length = timeline.range.to - timeline.range.from, position = timeline.position;
  switch (key) {
    case VK_LEFT:
    case VK_DOWN:
    case VK_RIGHT:
    case VK_UP: {
      const bool forward = key == VK_RIGHT || key == VK_UP;
      if (shift) return MoveTo(timeline, position + (forward ? length : -length) / 1000, true);
      kv::PostNotification(timeline.window, forward ? kTimelineNotifyForward : kTimelineNotifyBack);
      return 0;
    }
    case VK_PRIOR: return MoveTo(timeline, position - length * kPage, shift);
    case VK_NEXT: return MoveTo(timeline, position + length * kPage, shift);
    case VK_HOME: return MoveTo(timeline, timeline.range.from, shift);
    case VK_END: return MoveTo(timeline, timeline.range.to, shift);
    default: return 0;
  }
}

kv::AccessibleText Describe(const Timeline& timeline) {
  return {kv::WindowText(timeline.window), camera::Wide(FormatTime(timeline.position, 3))};
}

LRESULT HandleMessage(Timeline& timeline, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
    case WM_SYSCOLORCHANGE: return RepaintAll(timeline);
    case WM_SETFOCUS:
    case WM_KILLFOCUS: return Repaint(timeline);
    case WM_PAINT: return OnPaint(timeline.window);
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_LBUTTONDOWN: return OnButtonDown(timeline.window, GET_X_LPARAM(lParam), (wParam & MK_SHIFT) != 0);
    case WM_MOUSEMOVE: return OnMouseMove(timeline, GET_X_LPARAM(lParam));
    case WM_LBUTTONUP: return OnButtonUp(timeline);
    case WM_CAPTURECHANGED: timeline.isDragging = false; return 0;
    case WM_MOUSEWHEEL: return OnWheel(timeline, wParam);
    case WM_KEYDOWN: return OnKey(timeline, wParam, GetKeyState(VK_SHIFT) < 0);
    case WM_PRINTCLIENT: ShowOn(timeline, reinterpret_cast<HDC>(wParam), false); return 0;
    case kv::kControlCommand: return OnCommand(timeline, wParam, lParam);
    default: return DefWindowProcA(timeline.window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterTimelineClass(HINSTANCE instance, BOOL registerIt) {
  return kv::RegisterControlClass(
      instance, kTimelineClass, kv::ObjectProcedure<Timeline, ROLE_SYSTEM_SLIDER, Describe, HandleMessage>, registerIt);
}

}  // namespace camview
