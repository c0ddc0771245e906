// The current time in field, charts and timeline, and the marked stretch.
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/ports.h"
#include "camera/text.h"
#include "camview/camera_field.h"
#include "camview/chart_feed.h"
#include "camview/live_source.h"
#include "camview/playback.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "camview/timeline.h"
#include "camview/view.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/strip_charts.h"

namespace camview {

namespace {

constexpr int kCharts[] = {IDC_CHART_X, IDC_CHART_Y};
constexpr long long kMaxTrailRecords = 4096;
// During playback, the time moves to this fraction of the charts, which then scroll.
constexpr double kPlayingPart = 0.85;

LRESULT Send(const View& view, int id, WPARAM command, const void* item) {
  return SendDlgItemMessageA(view.window, id, kv::kControlCommand, command, reinterpret_cast<LPARAM>(item));
}

kv::StripTimeRange WholeOf(const View& view) {
  return {view.playback.begin, view.playback.end};
}

// In the charts of a live port, the pointer only reads values.
void ShowCursors(const View& view) {
  if (IsFollowing(view)) return;
  const double time = ShownTime(view);
  for (const int chart : kCharts) kv::SetStripChartCursor(view.window, chart, RecordsOf(view) ? &time : nullptr);
}

void ShowTimeText(View& view) {
  const HWND edit = GetDlgItem(view.window, IDC_TIME);
  if (GetFocus() == edit) return;
  const std::wstring text = RecordsOf(view) ? TimeAsText(ShownTime(view)) : std::wstring();
  if (text == view.shownTime) return;
  view.shownTime = text;
  SetWindowTextW(edit, text.c_str());
}

void ShowMarks(const View& view) {
  for (const int chart : kCharts) kv::SetStripChartSelection(view.window, chart, view.isMarked ? &view.mark : nullptr);
}

// The charts' span may exceed the whole; it is limited to what fits.
kv::StripTimeRange Fitting(const View& view, kv::StripTimeRange span) {
  const double length = std::max(span.to - span.from, 0.001);
  span.to = std::min(span.to, std::max(view.playback.end, view.playback.begin + length));
  span.from = span.to - length;
  if (span.from < view.playback.begin) span = {view.playback.begin, view.playback.begin + length};
  return span;
}

void FollowCharts(const View& view) {
  for (const int chart : kCharts) kv::FollowStripChart(view.window, chart, view.spanSeconds);
}

}  // namespace

// ---- The time -------------------------------------------------------------------------------------------------------

void ShowField(const View& view) {
  FieldContent content{};
  std::vector<StoredRecord> records;
  const RecordStore* store = RecordsOf(view);
  const double time = ShownTime(view);
  const long long last = store ? store->At(time) : -1;
  if (last >= 0) {
    long long first = view.trailSeconds > 0 ? store->Find(time - view.trailSeconds) : last;
    first = std::max({std::min(first, last), last - kMaxTrailRecords, store->First()});
    records.resize(static_cast<size_t>(last - first + 1));
    store->Read(first, records);
  }
  content.now = IsFollowing(view) ? view.status.now : time;
  // When no more records arrive, the points are no longer known.
  const bool isKnown = !records.empty() && content.now - records.back().seconds <= kJudgeSeconds;
  content.count = isKnown ? static_cast<DWORD>(records.size()) : 0;
  content.records = records.data();
  content.trailSeconds = view.trailSeconds;
  Send(view, IDC_FIELD, kFieldShow, &content);
}

void ShowTime(View& view) {
  ShowField(view);
  ShowCursors(view);
  Send(view, IDC_TIMELINE, kTimelinePosition, &view.playback.position);
  ShowTimeText(view);
}

void ScrollToTime(View& view, bool isPlaying) {
  const kv::StripTimeRange shown = ShownSpan(view);
  const double length = shown.to - shown.from, time = view.playback.position;
  const double last = isPlaying ? shown.from + length * kPlayingPart : shown.to;
  if (time >= shown.from && time <= last) return;
  const double part = isPlaying && time > last && time < last + length ? kPlayingPart : 0.5;
  const kv::StripTimeRange requested = Fitting(view, {time - length * part, time + length * (1 - part)});
  if (requested.from != shown.from) ShowSpan(view, requested);
}

void SeekTo(View& view, double time) {
  if (!RecordsOf(view)) return;
  HoldLive(view, true);
  view.hovered = kNoTime;
  Seek(&view.playback, time);
  ScrollToTime(view, false);
  ShowTime(view);
}

void HoldLive(View& view, bool hold) {
  if (!view.live || view.isHeld == hold) return;
  view.isHeld = hold;
  if (!hold) {
    for (const int chart : kCharts) kv::SetStripChartCursor(view.window, chart, nullptr);
    RefillCharts(view);
  }
  ShowTimelineRange(view);
  ShowPlaying(view);
  ShowTime(view);
}

void StepBy(View& view, int records) {
  const RecordStore* store = RecordsOf(view);
  if (!store) return;
  HoldLive(view, true);
  view.hovered = kNoTime;
  Step(&view.playback, *store, records);
  ScrollToTime(view, false);
  ShowPlaying(view);
  ShowTime(view);
}

void TogglePlay(View& view) {
  if (view.live) return HoldLive(view, !view.isHeld);
  if (!RecordsOf(view)) return;
  view.hovered = kNoTime;
  Advance(&view.playback, camera::Now());
  view.playback.isPlaying ? Pause(&view.playback) : Play(&view.playback);
  ShowPlaying(view);
  UpdateTimer(view);
  ShowTime(view);
}

void ShowPlaying(const View& view) {
  const UINT text = view.live ? (view.isHeld ? IDS_RESUME : IDS_HOLD) : view.playback.isPlaying ? IDS_PAUSE : IDS_PLAY;
  SetDlgItemTextW(view.window, IDC_PLAY, kv::ResourceText(text).c_str());
}

void ChangeSpeed(View& view, double speed) {
  Advance(&view.playback, camera::Now());
  SetSpeed(&view.playback, speed);
}

void OnTimeTyped(View& view) {
  wchar_t text[64] = L"";
  GetDlgItemTextW(view.window, IDC_TIME, text, ARRAYSIZE(text));
  double time = 0;
  if (!ParseTime(camera::Narrow(text), &time)) {
    ShowLine(view, StatusMark::kError, TextWith(IDS_BAD_TIME, text));
    SendDlgItemMessageW(view.window, IDC_TIME, EM_SETSEL, 0, -1);
    return;
  }
  SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
  view.shownTime.clear();
  SeekTo(view, time);
}

// ---- What the charts show -------------------------------------------------------------------------------------------

kv::StripTimeRange ShownSpan(const View& view) {
  kv::StripTimeRange shown{};
  kv::GetStripChartTimes(view.window, IDC_CHART_X, &shown);
  return shown;
}

void ShowSpan(View& view, kv::StripTimeRange span) {
  const RecordStore* store = RecordsOf(view);
  if (!store) return;
  view.spanSeconds = span.to - span.from;
  view.shown = span;
  if (!HasDetails(view.feed, WholeOf(view), span)) {
    FeedCharts(view.window, *store, WholeOf(view), span, &view.feed);
    ShowMarks(view);
    ShowCursors(view);
  }
  for (const int chart : kCharts) kv::ShowStripChartTimes(view.window, chart, span);
  if (!view.isMarked) RequestStatistics(view);
}

void SetSpan(View& view, double seconds) {
  const double whole = view.playback.end - view.playback.begin;
  view.spanSeconds = std::max(seconds > 0 ? seconds : whole, 0.01);
  if (!RecordsOf(view)) return;
  if (IsFollowing(view)) return RefillCharts(view);
  const double time = view.playback.position;
  ShowSpan(view, Fitting(view, {time - view.spanSeconds / 2, time + view.spanSeconds / 2}));
}

void ShowValueRange(View& view) {
  const auto show = [&](int chart, double most) {
    kv::SetStripChartView(view.window, chart, view.spanSeconds, 0, view.fitValues ? 0 : most);
  };
  const kv::StripTimeRange shown = ShownSpan(view);
  show(IDC_CHART_X, kv::kFieldWidth);
  show(IDC_CHART_Y, kv::kFieldHeight);
  if (IsFollowing(view)) return FollowCharts(view);
  ShowSpan(view, shown);
}

void RefillCharts(View& view) {
  const RecordStore* store = RecordsOf(view);
  if (!store) {
    ClearCharts(view.window, &view.feed);
    for (const int chart : kCharts) kv::ShowStripChartTimes(view.window, chart, {0, view.spanSeconds});
    return;
  }
  if (view.live && !store->IsEmpty() && !view.isHeld) {
    view.playback.begin = store->Seconds(store->First());
    view.playback.end = view.playback.position = store->Seconds(store->End() - 1);
  }
  const double end = IsFollowing(view) ? view.playback.end : std::max(view.playback.position, view.spanSeconds);
  view.feed = {};
  ShowSpan(view, Fitting(view, {end - view.spanSeconds, end}));
  if (IsFollowing(view)) FollowCharts(view);
}

void ShowTimelineRange(View& view) {
  const TimelineSpan range{view.playback.begin, std::max(view.playback.begin, view.playback.end)};
  Send(view, IDC_TIMELINE, kTimelineRange, &range);
  std::vector<Stretch> all;
  if (const RecordStore* store = RecordsOf(view)) {
    for (const StretchKind kind : {StretchKind::kSilent, StretchKind::kMalformed, StretchKind::kDamaged}) {
      const std::vector<Stretch>& own = store->Stretches(kind);
      all.insert(all.end(), own.begin(), own.end());
    }
  }
  const TimelineMarks marks{static_cast<DWORD>(all.size()), all.data()};
  Send(view, IDC_TIMELINE, kTimelineShowMarks, &marks);
  SetDlgItemTextW(view.window, IDC_LENGTH,
                  RecordsOf(view) ? TextWith(IDS_OF_LENGTH, TimeAsText(range.to).c_str()).c_str() : L" ");
}

void SetMark(View& view, const kv::StripTimeRange* mark) {
  view.isMarked = mark != nullptr;
  if (mark) {
    view.mark = {std::clamp(mark->from, view.playback.begin, view.playback.end),
                 std::clamp(mark->to, view.playback.begin, view.playback.end)};
  }
  ShowMarks(view);
  const TimelineSpan selection{view.mark.from, view.mark.to};
  Send(view, IDC_TIMELINE, kTimelineSelection | (mark ? 0 : kv::kCommandRemove), &selection);
  RequestStatistics(view);
}

// ---- Notifications --------------------------------------------------------------------------------------------------

namespace {

void OnChartView(View& view, int chart) {
  kv::StripTimeRange shown{}, mark{};
  kv::GetStripChartTimes(view.window, chart, &shown);
  // Escape has removed the mark.
  if (view.isMarked && !kv::GetStripChartSelection(view.window, chart, &mark)) SetMark(view, nullptr);
  if (!RecordsOf(view)) return;
  const bool isNewest = shown.to >= view.playback.end - 1e-6;
  if (IsFollowing(view) && isNewest) {
    view.spanSeconds = shown.to - shown.from;
    if (!HasDetails(view.feed, WholeOf(view), shown)) return RefillCharts(view);
    return FollowCharts(view);
  }
  HoldLive(view, true);
  // Another time is now under the pointer.
  if (!std::isnan(view.hovered) && view.shown.to > view.shown.from) {
    const double part = (view.hovered - view.shown.from) / (view.shown.to - view.shown.from);
    view.hovered = shown.from + part * (shown.to - shown.from);
    view.hovered = std::clamp(view.hovered, view.playback.begin, view.playback.end);
  }
  ShowSpan(view, shown);
  ShowTime(view);
}

void OnChartCursor(View& view, int chart) {
  double time = 0;
  if (!kv::GetStripChartCursor(view.window, chart, &time)) {
    view.hovered = kNoTime;
  } else if (!view.playback.isPlaying && !IsFollowing(view)) {
    view.hovered = std::clamp(time, view.playback.begin, view.playback.end);
  }
  ShowTime(view);
}

}  // namespace

void OnChart(View& view, int chart, WORD code) {
  double time = 0;
  kv::StripTimeRange mark{};
  switch (code) {
    case kv::kStripNotifyView: return OnChartView(view, chart);
    case kv::kStripNotifyCursor: return OnChartCursor(view, chart);
    case kv::kStripNotifySelection:
      return SetMark(view, kv::GetStripChartSelection(view.window, chart, &mark) ? &mark : nullptr);
    case kv::kStripNotifyCursorSet:
      // A live port continues: its charts are clicked to focus them.
      if (!IsFollowing(view) && kv::GetStripChartCursor(view.window, chart, &time)) SeekTo(view, time);
      return;
    default: return;
  }
}

void OnTimeline(View& view, WORD code) {
  double time = 0;
  TimelineSpan selection{};
  switch (code) {
    case kTimelineNotifyPosition:
      Send(view, IDC_TIMELINE, kTimelinePosition | kv::kCommandRead, &time);
      // The first of several pending notifications has done it.
      if (time != view.playback.position) SeekTo(view, time);
      return;
    case kTimelineNotifySelection: {
      const bool isSelected = Send(view, IDC_TIMELINE, kTimelineSelection | kv::kCommandRead, &selection) != 0;
      const kv::StripTimeRange mark{selection.from, selection.to};
      return SetMark(view, isSelected ? &mark : nullptr);
    }
    case kTimelineNotifyBack: return StepBy(view, -1);
    case kTimelineNotifyForward: return StepBy(view, 1);
    default: return;
  }
}

}  // namespace camview
