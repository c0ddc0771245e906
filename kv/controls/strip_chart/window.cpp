// The window of a strip chart: painting, mouse and keyboard.
#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <utility>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/control.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/object_control.h"

namespace kv {

namespace {

// Updates the image; returns what has changed in the window.
RECT Refresh(StripChart& chart) {
  StripModel& model = chart.model;
  TakeQueued(chart);
  NoticeSources(model);
  const SIZE size = ClientSize(chart.window);
  const RECT changed = chart.renderer.Update(model, size, chart.redrawAll);
  chart.redrawAll = false;
  if (chart.hovering) model.cursor = TimeAtX(chart.renderer.layoutShown(), chart.pointerX);
  return IsRectEmpty(&changed) || !HasOverlay(model) ? changed : RECT{0, 0, size.cx, size.cy};
}

LRESULT ShowOn(HDC dc, StripChart& chart, const RECT& area, bool focused) {
  const Surface& surface = chart.renderer.WithOverlay(chart.model, chart.zoomed, focused);
  if (!surface.bitmap()) return 0;
  const SelectedObject selected(chart.renderer.memoryDc(), surface.bitmap());
  BitBlt(dc, area.left, area.top, area.right - area.left, area.bottom - area.top, chart.renderer.memoryDc(), area.left,
         area.top, SRCCOPY);
  return 0;
}

}  // namespace

void ShowNow(StripChart& chart) {
  const RECT changed = Refresh(chart);
  if (!IsRectEmpty(&changed)) ShowOn(WindowDc(chart.window), chart, changed, chart.focused);
}

namespace {

constexpr double kKeyPan = 0.1, kKeyZoom = 2, kWheelZoom = 1.25;

bool IsDown(int key) {
  return GetKeyState(key) < 0;
}

// Shows a change by the user and notifies the parent.
LRESULT Changed(StripChart& chart, WORD notification) {
  InvalidateRect(chart.window, nullptr, FALSE);
  PostNotification(chart.window, notification);
  NotifyValueChanged(chart.window);  // last: a hook may destroy the control
  return 0;
}

// ---- Accessibility --------------------------------------------------------------------------------------------------

AccessibleText Describe(const StripChart& chart) {
  const StripModel& model = chart.model;
  AccessibleText text{WindowText(chart.window), {}};
  const bool named = !text.name.empty();
  const StripReading reading = model.cursorShown ? ReadingAt(model, model.cursor) : NewestReading(model);
  const bool isDouble = model.cursorShown && model.cursorBShown;
  const StripReading other = isDouble ? ReadingAt(model, model.cursorB) : reading;
  const StripLayout& layout = chart.renderer.layoutShown();
  for (int i = 0; i < kStripChannels; ++i) {
    if (!IsShown(model.channels[i])) continue;
    const std::wstring name = ChannelName(model.channels[i].info);
    if (!named) text.name += (text.name.empty() ? L"" : L", ") + name;
    if (std::isnan(reading.values[i])) continue;
    const double step = layout.axes ? ReadingStep(layout, i, reading.values[i]) : 0.01;
    const std::wstring unit = ChannelUnit(model.channels[i].info);
    text.value += (text.value.empty() ? L"" : L", ") + name + L" " + TickText(reading.values[i], step) +
                  (unit.empty() ? L"" : L" " + unit);
    if (!isDouble || std::isnan(other.values[i])) continue;
    const double coarse = layout.axes ? std::max(step, ReadingStep(layout, i, other.values[i])) : step;
    text.value += L" (\x0394 " + TickText(other.values[i] - reading.values[i], coarse) + L")";
  }
  if (isDouble) {
    const double step = layout.timeStep > 0 ? layout.timeStep / 100 : 0.01;
    text.value += (text.value.empty() ? L"\x0394 " : L", \x0394 ") +
                  TimeText(model.cursorB - model.cursor, step, TimeFormat::kSeconds);
  }
  return text;
}

// ---- Painting -------------------------------------------------------------------------------------------------------

RECT Whole(const StripChart& chart) {
  const SIZE size = chart.renderer.surface().size();
  return {0, 0, size.cx, size.cy};
}

LRESULT OnPaint(HWND window, StripChart& chart) {
  const RECT changed = Refresh(chart);
  // Before BeginPaint, so that it is painted, too.
  if (!IsRectEmpty(&changed)) InvalidateRect(window, &changed, FALSE);
  const PaintScope paint(window);
  auto* left = ObjectOf<StripChart>(window);  // erasing may have destroyed the control
  return left ? ShowOn(paint.dc(), *left, Whole(*left), left->focused) : 0;
}

LRESULT OnPrint(StripChart& chart, HDC dc) {
  const RECT changed = Refresh(chart);
  if (!IsRectEmpty(&changed)) InvalidateRect(chart.window, &changed, FALSE);
  return ShowOn(dc, chart, Whole(chart), false);
}

LRESULT OnTimer(StripChart& chart, WPARAM timer) {
  if (timer != kShowTimer) return 0;
  KillTimer(chart.window, kShowTimer);
  chart.waiting = false;
  ShowNow(chart);
  return 0;
}

LRESULT OnEnable(StripChart& chart, bool enabled) {
  chart.model.style = enabled ? chart.model.style & ~kStripDisabled : chart.model.style | kStripDisabled;
  RepaintNow(chart.window);
  return 0;
}

// ---- Mouse ----------------------------------------------------------------------------------------------------------

void SelectTimes(StripModel& model, double one, double other) {
  model.selection = {std::min(one, other), std::max(one, other)};
  model.hasSelection = true;
}

// The part between the point where dragging began and this one.
RECT DraggedPart(const StripChart& chart, LONG x, LONG y) {
  const RECT& plot = chart.renderer.layoutShown().plot;
  const auto column = [&](LONG place) { return std::clamp(place, plot.left, plot.right); };
  const auto row = [&](LONG place) { return std::clamp(place, plot.top, plot.bottom); };
  return {column(std::min(x, chart.dragX)), row(std::min(y, chart.dragY)), column(std::max(x, chart.dragX)),
          row(std::max(y, chart.dragY))};
}

LRESULT OnMouseMove(StripChart& chart, LONG x, LONG y) {
  const StripLayout& layout = chart.renderer.layoutShown();
  const LONG width = layout.plot.right - layout.plot.left;
  if (chart.drag == StripChart::Drag::kPan) {
    if (x == chart.dragX || width <= 0) return 0;
    chart.dragged = true;
    PanTime(chart.model, static_cast<double>(chart.dragX - x) / width);
    chart.dragX = x;
    return Changed(chart, kStripNotifyView);
  }
  if (chart.drag == StripChart::Drag::kSelect) {
    const LONG within = std::clamp(x, layout.plot.left, std::max(layout.plot.right - 1, layout.plot.left));
    SelectTimes(chart.model, TimeAtX(layout, chart.dragX), TimeAtX(layout, within));
    return Changed(chart, kStripNotifySelection);
  }
  if (chart.drag == StripChart::Drag::kZoom) {
    chart.zoomed = DraggedPart(chart, x, y);
    InvalidateRect(chart.window, nullptr, FALSE);
    return 0;
  }
  // Windows also sends this message when something changes under a pointer that rests: the cursor may have moved since.
  if (x == chart.pointerX) return 0;
  chart.pointerX = x;
  const bool inside = x >= layout.plot.left && x < layout.plot.right;
  if (!inside && !chart.hovering) return 0;
  if (inside && !chart.hovering) {
    TRACKMOUSEEVENT leave{sizeof(leave), TME_LEAVE, chart.window, 0};
    TrackMouseEvent(&leave);
  }
  chart.hovering = chart.model.cursorShown = inside;
  if (inside) chart.model.cursor = TimeAtX(layout, x);
  return Changed(chart, kStripNotifyCursor);
}

LRESULT OnMouseLeave(StripChart& chart) {
  chart.pointerX = LONG_MIN;
  if (!chart.hovering) return 0;
  chart.hovering = chart.model.cursorShown = false;
  return Changed(chart, kStripNotifyCursor);
}

LRESULT ToggleChannel(StripChart& chart, unsigned channel) {
  if (channel >= kStripChannels || !chart.model.channels[channel].used) return 0;
  chart.model.channels[channel].info.state ^= kStripVisible;
  return Changed(chart, kStripNotifyChannels);
}

LRESULT SetCursorB(StripChart& chart, bool isShown, double time) {
  chart.model.cursorBShown = isShown;
  chart.model.cursorB = time;
  return Changed(chart, kStripNotifyCursorB);
}

// Zooms into the rectangle; after a click, there is none.
LRESULT EndZoom(StripChart& chart) {
  constexpr LONG kLeast = 4;  // pixels
  const RECT part = std::exchange(chart.zoomed, {});
  const StripLayout& layout = chart.renderer.layoutShown();
  if (part.right - part.left < kLeast) return SetCursorB(chart, true, TimeAtX(layout, chart.dragX));
  const double one = TimeAtX(layout, part.left), other = TimeAtX(layout, part.right - 1);
  const double height = std::max(layout.plot.bottom - layout.plot.top, 1L);
  const bool isFlat = part.bottom - part.top < kLeast;
  ZoomInto(chart.model, {std::min(one, other), std::max(one, other)}, layout.axis[0].range,
           isFlat ? 0 : (layout.plot.bottom - part.bottom) / height,
           isFlat ? 1 : (layout.plot.bottom - part.top) / height);
  return Changed(chart, kStripNotifyView);
}

LRESULT OnButtonDown(HWND window, LONG x, LONG y, bool shift, bool control) {
  SetFocus(window);
  // The window that lost the focus or the capture may have destroyed the control.
  if (auto* focused = ObjectOf<StripChart>(window)) {
    const int item = focused->renderer.LegendItemAt({x, y});
    if (item >= 0) return ToggleChannel(*focused, static_cast<unsigned>(item));
  }
  SetCapture(window);
  auto* found = ObjectOf<StripChart>(window);
  if (!found) return 0;
  StripChart& chart = *found;
  chart.drag = shift ? StripChart::Drag::kSelect : control ? StripChart::Drag::kZoom : StripChart::Drag::kPan;
  chart.dragX = x;
  chart.dragY = y;
  chart.dragged = false;
  if (!shift && !control && chart.model.hasSelection) {
    chart.model.hasSelection = false;
    return Changed(chart, kStripNotifySelection);
  }
  return 0;
}

LRESULT OnButtonUp(StripChart& chart) {
  const HWND window = chart.window;
  if (chart.drag == StripChart::Drag::kPan && !chart.dragged) PostNotification(chart.window, kStripNotifyCursorSet);
  const bool isZoom = std::exchange(chart.drag, StripChart::Drag::kNone) == StripChart::Drag::kZoom;
  if (GetCapture() == chart.window) ReleaseCapture();
  auto* left = ObjectOf<StripChart>(window);  // whoever is told of the capture may have destroyed the control
  return left && isZoom ? EndZoom(*left) : 0;
}

LRESULT OnCaptureChanged(StripChart& chart) {
  chart.drag = StripChart::Drag::kNone;
  if (GetCapture()) chart.zoomed = {};  // taken away
  InvalidateRect(chart.window, nullptr, FALSE);
  return 0;
}

LRESULT OnHome(StripChart& chart) {
  ReturnHome(chart.model);
  return Changed(chart, kStripNotifyView);
}

LRESULT OnWheel(StripChart& chart, WPARAM wParam, LPARAM lParam) {
  chart.wheel += GET_WHEEL_DELTA_WPARAM(wParam);
  const int notches = chart.wheel / WHEEL_DELTA;
  if (notches == 0) return 0;
  chart.wheel -= notches * WHEEL_DELTA;
  const StripLayout& layout = chart.renderer.layoutShown();
  POINT place{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  ScreenToClient(chart.window, &place);
  const double width = std::max(layout.plot.right - layout.plot.left, 1L);
  if (wParam & MK_SHIFT) {
    PanTime(chart.model, -notches * kKeyPan);
  } else if (wParam & MK_CONTROL) {
    ZoomValues(chart.model, std::pow(kWheelZoom, notches));
  } else {
    const double about = layout.sweeps ? 1 : std::clamp((place.x - layout.plot.left) / width, 0.0, 1.0);
    ZoomTime(chart.model, std::pow(kWheelZoom, notches), about);
  }
  return Changed(chart, kStripNotifyView);
}

// ---- Keyboard -------------------------------------------------------------------------------------------------------

// Moves the cursor by a column, or selects from its previous position.
LRESULT MoveCursor(StripChart& chart, int columns, bool select) {
  StripModel& model = chart.model;
  const StripLayout& layout = chart.renderer.layoutShown();
  const StripTimeRange shown = ShownTimes(model);
  if (!model.cursorShown) model.cursor = (shown.from + shown.to) / 2;
  const double before = model.cursor, step = layout.secondsPerColumn * columns;
  model.cursor = std::clamp(before + step, shown.from, shown.to);
  model.cursorShown = true;
  chart.hovering = false;
  if (!select) {
    const HWND window = chart.window;
    Changed(chart, kStripNotifyCursor);
    PostNotification(window, kStripNotifyCursorSet);
    return 0;
  }
  // Moves the end of the selection at which the cursor was.
  const double anchor = !model.hasSelection              ? before
                        : before == model.selection.from ? model.selection.to
                                                         : model.selection.from;
  SelectTimes(model, anchor, model.cursor);
  return Changed(chart, kStripNotifySelection);
}

LRESULT OnArrow(StripChart& chart, int direction, bool control, bool shift) {
  if (control || shift) return MoveCursor(chart, control ? direction : direction * 8, shift);
  PanTime(chart.model, direction * kKeyPan);
  return Changed(chart, kStripNotifyView);
}

LRESULT OnZoomKey(StripChart& chart, double factor, bool control) {
  if (control) {
    ZoomValues(chart.model, factor);
  } else {
    ZoomTime(chart.model, factor, (chart.model.view.state & kStripFollow) ? 1 : 0.5);
  }
  return Changed(chart, kStripNotifyView);
}

template <class Step>
LRESULT Take(StripChart& chart, Step step) {
  step(chart.model);
  return Changed(chart, kStripNotifyView);
}

LRESULT OnKey(StripChart& chart, WPARAM key, bool control, bool shift) {
  switch (key) {
    case VK_LEFT: return OnArrow(chart, -1, control, shift);
    case VK_RIGHT: return OnArrow(chart, 1, control, shift);
    case VK_UP: return Take(chart, [](StripModel& model) { PanValues(model, kKeyPan); });
    case VK_DOWN: return Take(chart, [](StripModel& model) { PanValues(model, -kKeyPan); });
    case VK_ADD:
    case VK_OEM_PLUS: return OnZoomKey(chart, kKeyZoom, control);
    case VK_SUBTRACT:
    case VK_OEM_MINUS: return OnZoomKey(chart, 1 / kKeyZoom, control);
    case VK_HOME: return Take(chart, ShowOldest);
    case VK_END: return Take(chart, ShowNewest);
    case VK_SPACE: return Take(chart, [](StripModel& model) { SetFrozen(model, !IsFrozen(model)); });
    case VK_ESCAPE: return OnHome(chart);
    case VK_BACK: return ZoomBack(chart.model) ? Changed(chart, kStripNotifyView) : 0;
    case 'B': return SetCursorB(chart, !chart.model.cursorBShown && chart.model.cursorShown, chart.model.cursor);
    case 'C': return control ? CopyStrip(chart, 0) : 0;
    default: return control ? 0 : ToggleChannel(chart, key >= VK_NUMPAD1 ? key - VK_NUMPAD1 : key - '1');
  }
}

// The dialog gets Escape, unless there is something to remove.
LRESULT DialogKeys(const StripChart& chart, WPARAM key) {
  const bool takesEscape =
      key == VK_ESCAPE && (chart.model.hasSelection || chart.model.cursorShown || chart.model.cursorBShown);
  return DLGC_WANTARROWS | DLGC_WANTCHARS | (takesEscape ? DLGC_WANTMESSAGE : 0);
}

LRESULT OnFocus(StripChart& chart, bool focused) {
  chart.focused = focused;
  InvalidateRect(chart.window, nullptr, FALSE);
  return 0;
}

LRESULT HandleMessage(StripChart& chart, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: return OnPaint(chart.window, chart);
    case WM_GETDLGCODE: return DialogKeys(chart, wParam);
    case WM_SETFOCUS:
    case WM_KILLFOCUS: return OnFocus(chart, message == WM_SETFOCUS);
    case WM_SIZE: RepaintNow(chart.window); return 0;
    case WM_ENABLE: return OnEnable(chart, wParam != 0);
    case WM_TIMER: return OnTimer(chart, wParam);
    case WM_MOUSEMOVE: return OnMouseMove(chart, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    case WM_MOUSELEAVE: return OnMouseLeave(chart);
    case WM_LBUTTONDOWN:
      return OnButtonDown(chart.window, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam), (wParam & MK_SHIFT) != 0,
                          (wParam & MK_CONTROL) != 0);
    case WM_LBUTTONUP: return OnButtonUp(chart);
    case WM_CAPTURECHANGED: return OnCaptureChanged(chart);
    case WM_LBUTTONDBLCLK: return OnHome(chart);
    case WM_MOUSEWHEEL: return OnWheel(chart, wParam, lParam);
    case WM_KEYDOWN: return OnKey(chart, wParam, IsDown(VK_CONTROL), IsDown(VK_SHIFT));
    case WM_COPY: return CopyStrip(chart, lParam);
    case WM_PRINTCLIENT: return OnPrint(chart, reinterpret_cast<HDC>(wParam));
    case WM_SYSCOLORCHANGE: return OnStripCommand(chart, kStripRender, 0);
    case kControlCommand: return OnStripCommand(chart, wParam, lParam);
    default: return DefWindowProcA(chart.window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kStripChartClass,
                              ObjectProcedure<StripChart, ROLE_SYSTEM_CHART, Describe, HandleMessage>, registerIt);
}

}  // namespace kv
