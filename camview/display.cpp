#include "camview/display.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "camera/events.h"
#include "camera/ports.h"
#include "camview/camera_field.h"
#include "camview/charts.h"
#include "camview/event_table.h"
#include "camview/events_view.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/statistics.h"
#include "camview/statistics_table.h"
#include "camview/status_line.h"
#include "camview/timeline.h"
#include "camview/view_time.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

constexpr int kProgressSteps = 1000;
constexpr double kMessageSeconds = 6;
constexpr double kStatisticsDelay = 0.1;  // not for each step while a selection is dragged or charts scroll
constexpr double kLiveSeconds = 1;        // between two updates of timeline and statistics
constexpr long long kMaxTrailRecords = 4096;

template <class Value, class Shown>
bool IsNew(const Value& value, Shown* shown) {
  if (*shown == value) return false;
  *shown = value;
  return true;
}

LRESULT Send(HWND window, int id, WPARAM command, const void* item) {
  return SendDlgItemMessageA(window, id, kv::kControlCommand, command, reinterpret_cast<LPARAM>(item));
}

void NameControls(HWND window) {
  constexpr std::pair<int, UINT> kNames[] = {{IDC_FIELD, IDS_FIELD_NAME},
                                             {IDC_SCATTER, IDS_SCATTER_NAME},
                                             {IDC_CHART_X, IDS_CHART_X_NAME},
                                             {IDC_CHART_Y, IDS_CHART_Y_NAME},
                                             {IDC_HISTOGRAM_X, IDS_HISTOGRAM_X_NAME},
                                             {IDC_HISTOGRAM_Y, IDS_HISTOGRAM_Y_NAME},
                                             {IDC_INTERVALS, IDS_INTERVALS_NAME},
                                             {IDC_TIMELINE, IDS_TIMELINE_NAME},
                                             {IDC_STATISTICS, IDS_STATISTICS_NAME},
                                             {IDC_EVENTS, IDS_EVENTS_NAME}};
  for (const auto& [id, name] : kNames) kv::NameControl(window, id, kv::ResourceText(name).c_str());
  SendDlgItemMessageW(window, IDC_SPEED, CB_RESETCONTENT, 0, 0);
  for (const double speed : kSpeeds) {
    const std::wstring text = kv::TextWith(IDS_SPEED_OF, kv::NumberText(speed, speed < 1 ? 1 : 0));
    SendDlgItemMessageW(window, IDC_SPEED, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  }
}

// `line`: the figures of the whole line.
StatusLine Describe(const Source& source, const ViewTime& time, const StatusLine& line) {
  const std::wstring work = kv::FileNameOf(source.WorkPath().c_str());
  if (source.IsWorking()) {
    return {StatusMark::kWaiting, kv::TextWith(source.IsExporting() ? IDS_EXPORTING : IDS_LOADING, work)};
  }
  if (source.IsLive()) {
    StatusLine status = DescribeLive(source.Status());
    if (time.isFrozen) status.text += L" " + kv::ResourceText(IDS_LIVE_FROZEN);
    if (!line.text.empty()) status.text += L" " + kv::TextWith(IDS_LINE_IN, LengthAsText(time.end), line.text);
    return status;
  }
  if (source.IsOpen()) {
    StatusLine status = DescribeRecording(source.Loaded(), line);
    if (source.IsGrowing() && time.isFrozen) status.text += L" " + kv::ResourceText(IDS_FILE_FROZEN);
    return status;
  }
  return {StatusMark::kNone, kv::ResourceText(IDS_NOTHING_OPEN)};
}

// The selection or, without one, what is shown.
TimeRange StatisticsRange(const ViewTime& time) {
  return time.selection.value_or(TimeRange{std::max(time.shown.from, time.begin), std::min(time.shown.to, time.end)});
}

// Each kind in ascending order.
std::vector<TimelineMark> MarksOf(const RecordStore& store, const EventTable& events, const ViewTime& time) {
  constexpr std::pair<SectionKind, camera::EventKind> kKinds[] = {
      {SectionKind::kSilent, camera::EventKind::kSilence},
      {SectionKind::kMalformed, camera::EventKind::kMalformed},
      {SectionKind::kDamaged, camera::EventKind::kDamage}};
  std::vector<TimelineMark> marks;
  for (const auto& [kind, mark] : kKinds) {
    for (const Section& section : store.Sections(kind)) marks.push_back({mark, section.from, section.to});
  }
  const double first = store.Seconds(store.First());
  for (const camera::Event& event : events.Events()) {
    // A point that is never seen is probably not there.
    const bool isUnseen = event.kind == camera::EventKind::kUnseen && (event.from > first || event.to < time.end);
    if (isUnseen || event.kind == camera::EventKind::kLoss) marks.push_back({event.kind, event.from, event.to});
  }
  return marks;
}

}  // namespace

int SpeedIndex(double speed) {
  return static_cast<int>(std::ranges::lower_bound(kSpeeds, speed - 1e-9) - std::begin(kSpeeds));
}

Display::Display(HWND window, const Source& source)
    : window_(window), fieldWindow_(GetDlgItem(window, IDC_FIELD)), charts_(window, source), distributions_(window) {
  SendDlgItemMessageW(window, IDC_PROGRESS, PBM_SETRANGE32, 0, kProgressSteps);
  const HWND list = GetDlgItem(window, IDC_STATISTICS);
  kv::AddListNavigation(list);
  SendMessageW(list, LB_SETCOUNT, kChannels, 0);
  kv::AddListNavigation(GetDlgItem(window, IDC_EVENTS));
}

void Display::Forget() {
  texts_.clear();
  line_ = recordingLine_ = message_ = {};
  isNamed_ = false;
  speed_ = -1;
  statisticsKey_.reset();
  eventsVersion_.reset();
  eventRow_.reset();
  distributions_.Forget();
}

void Display::Say(StatusMark mark, const std::wstring& text) {
  message_ = {mark, text};
  messageUntil_ = camera::Now() + kMessageSeconds;
}

void Display::Refresh(const Source& source, const ViewTime& time, EventTable* events, const DisplayOptions& options) {
  if (!isNamed_) {
    NameControls(window_);
    charts_.Describe();
  }
  isNamed_ = true;
  const double now = camera::Now();
  // While a port is followed, most of the window changes once a second.
  isLiveTurn_ = !time.IsFollowing() || now >= liveDue_;
  if (isLiveTurn_) liveDue_ = now + kLiveSeconds;
  SetVisible(IDC_STATISTICS, !options.showEvents);
  SetVisible(IDC_EVENTS, options.showEvents);
  ShowSource(source, time);
  ShowWork(source);
  ShowEvents(source, time, events);
  ShowStatus(source, time);
  ShowViews(options);
  ShowCharts(source, time, options);
  ShowField(source, time, options);
  ShowTimeline(source, time, *events);
  ShowTimeText(source, time);
  SetTypedText(IDC_RATE, RateAsText(source.Rate()));
  ShowStatistics(source, time);
  distributions_.Show({.source = source.Number(),
                       .store = source.Records(),
                       .range = StatisticsRange(time),
                       .isScatter = options.left == LeftView::kScatter,
                       .isHistogram = options.right == RightView::kHistograms,
                       .isFollowing = time.IsFollowing(),
                       .isTurn = isLiveTurn_});
}

// ---- Controls -------------------------------------------------------------------------------------------------------

void Display::SetText(int id, const std::wstring& text) {
  if (IsNew(text, &texts_[id])) SetDlgItemTextW(window_, id, text.c_str());
}

// What is being typed stays; what was not entered is discarded.
void Display::SetTypedText(int id, const std::wstring& text) {
  if (GetFocus() != GetDlgItem(window_, id)) return SetText(id, text);
  texts_.erase(id);
}

void Display::Enable(int id, bool enabled) {
  if (IsNew(enabled, &enabled_[id])) kv::EnableControl(window_, id, enabled);
}

void Display::SetVisible(int id, bool visible) {
  if (IsNew(visible, &visible_[id])) ShowWindow(GetDlgItem(window_, id), visible ? SW_SHOW : SW_HIDE);
}

// Of controls at one place; the focus stays there.
void Display::ShowOneOf(std::initializer_list<int> ids, int shown) {
  SetVisible(shown, true);
  for (const int id : ids) {
    if (id == shown || visible_[id] == false) continue;
    if (GetFocus() == GetDlgItem(window_, id)) SetFocus(GetDlgItem(window_, shown));
    SetVisible(id, false);
  }
}

// ---- Source ---------------------------------------------------------------------------------------------------------

void Display::ShowSource(const Source& source, const ViewTime& time) {
  constexpr int kWindow = 0;  // no control has it
  const std::wstring name = kv::FileNameOf(source.Name().c_str());
  const std::wstring caption = name.empty() ? kv::ResourceText(IDS_CAPTION) : kv::TextWith(IDS_CAPTION_OF, name);
  if (IsNew(caption, &texts_[kWindow])) SetWindowTextW(window_, caption.c_str());
  const bool isOpen = source.IsOpen(), isLive = source.IsLive();
  for (const int id : {IDC_PLAY, IDC_STEP_BACK, IDC_STEP_FORWARD, IDC_EVENT_BACK, IDC_EVENT_FORWARD, IDC_TIME})
    Enable(id, isOpen);
  Enable(IDC_SPEED, isOpen && !isLive);
  Enable(IDC_EXPORT, source.Records() && time.selection && !source.IsWorking());
  SetVisible(IDC_RECORD, isLive);
  const UINT follow = time.isFrozen ? IDS_RESUME : IDS_FREEZE;
  const UINT play = time.isPlaying ? IDS_PAUSE : time.isLive ? follow : IDS_PLAY;
  SetText(IDC_PLAY, kv::ResourceText(play));
  const bool isRecording = source.Recording().state == LiveRecordingState::kOn;
  SetText(IDC_RECORD, kv::ResourceText(isRecording ? IDS_STOP_RECORDING : IDS_RECORD));
  if (IsNew(SpeedIndex(time.speed), &speed_)) {
    SendDlgItemMessageW(window_, IDC_SPEED, CB_SETCURSEL, static_cast<WPARAM>(speed_), 0);
  }
}

void Display::ShowWork(const Source& source) {
  for (const int id : {IDC_PROGRESS, IDC_CANCEL_WORK}) SetVisible(id, source.IsWorking());
  const int progress = source.IsWorking() ? static_cast<int>(source.Progress() * kProgressSteps) : 0;
  if (IsNew(progress, &progress_)) {
    SendDlgItemMessageW(window_, IDC_PROGRESS, PBM_SETPOS, static_cast<WPARAM>(progress), 0);
  }
}

void Display::ShowStatus(const Source& source, const ViewTime& time) {
  if (!message_.text.empty() && camera::Now() >= messageUntil_) message_ = {};
  const auto show = [&](int id, const StatusLine& line, StatusLine* shown) {
    if (!IsNew(line, shown)) return;
    SetText(id, line.text);
    InvalidateRect(GetDlgItem(window_, id), nullptr, FALSE);
  };
  show(IDC_STATUS, message_.text.empty() ? Describe(source, time, wholeLine_) : message_, &line_);
  show(IDC_RECORDING, DescribeLiveRecording(source.Recording()), &recordingLine_);
  const bool hasRecordingLine = !recordingLine_.text.empty() && !source.IsWorking();
  const bool isShort = source.IsWorking() || hasRecordingLine;
  SetVisible(IDC_RECORDING, hasRecordingLine);
  if (IsNew(isShort, &isShort_)) PlaceStatus();
}

// The status line has the window's width unless there is a control at its right.
void Display::PlaceStatus() const {
  RECT status{}, right{};
  GetWindowRect(GetDlgItem(window_, IDC_STATUS), &status);
  GetWindowRect(GetDlgItem(window_, IDC_RECORDING), &right);
  const LONG height = status.bottom - status.top;
  // In a mirrored window, the control at the end of the line is at its left in screen coordinates.
  const bool isMirrored = status.left > right.left;
  const LONG whole = isMirrored ? status.right - right.left : right.right - status.left;
  const LONG beside = isMirrored ? status.right - right.right : right.left - status.left;
  const LONG width = isShort_.value_or(false) ? beside - height / 2 : whole;
  SetWindowPos(GetDlgItem(window_, IDC_STATUS), nullptr, 0, 0, width, height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool Display::Draw(const DRAWITEMSTRUCT& item) const {
  switch (item.CtlID) {
    case IDC_STATISTICS: DrawStatisticsRow(item, statistics_ ? &*statistics_ : nullptr); return true;
    case IDC_EVENTS:
      if (events_) DrawEventRow(item, *events_);
      return true;
    case IDC_STATUS: DrawStatusLine(item, line_); return true;
    case IDC_RECORDING: DrawStatusLine(item, recordingLine_); return true;
    default: return false;
  }
}

// ---- Records --------------------------------------------------------------------------------------------------------

void Display::ShowViews(const DisplayOptions& options) {
  const bool isHistogram = options.right == RightView::kHistograms;
  ShowOneOf({IDC_FIELD, IDC_SCATTER}, options.left == LeftView::kScatter ? IDC_SCATTER : IDC_FIELD);
  ShowOneOf({IDC_CHART_X, IDC_HISTOGRAM_X}, isHistogram ? IDC_HISTOGRAM_X : IDC_CHART_X);
  ShowOneOf({IDC_CHART_Y, IDC_HISTOGRAM_Y, IDC_INTERVALS}, isHistogram                              ? IDC_HISTOGRAM_Y
                                                           : options.right == RightView::kIntervals ? IDC_INTERVALS
                                                                                                    : IDC_CHART_Y);
}

void Display::ShowField(const Source& source, const ViewTime& time, const DisplayOptions& options) {
  if (options.left != LeftView::kField) return field_.reset();
  const RecordStore* store = source.Records();
  const double shown = time.Shown(), now = time.IsFollowing() && source.IsLive() ? source.Status().now : shown;
  const long long last = store ? store->At(shown) : -1;
  const FieldKey key{source.Number(), last, shown, now, options.trailSeconds};
  if (!IsNew(key, &field_)) return;
  fieldRecords_.clear();
  if (last >= 0) {
    long long first = options.trailSeconds > 0 ? store->Find(shown - options.trailSeconds) : last;
    first = std::max({std::min(first, last), last - kMaxTrailRecords, store->First()});
    fieldRecords_.resize(static_cast<size_t>(last - first + 1));
    store->Read(first, fieldRecords_);
    // When no more records arrive, the points are no longer known.
    if (now - fieldRecords_.back().seconds > kJudgeSeconds) fieldRecords_.clear();
  }
  const FieldContent content{static_cast<DWORD>(fieldRecords_.size()), fieldRecords_.data(), now, options.trailSeconds};
  SendMessageA(fieldWindow_, kv::kControlCommand, kFieldShow | kv::kCommandRedraw, reinterpret_cast<LPARAM>(&content));
}

void Display::ShowCharts(const Source& source, const ViewTime& time, const DisplayOptions& options) {
  const double now = camera::Now();
  // The charts cost more than the field, and more images a second would not be seen.
  constexpr double kChartSeconds = 0.075;
  if (time.IsFollowing() && now < chartsDue_) return;
  chartsDue_ = now + kChartSeconds;
  const RecordStore* store = source.Records();
  charts_.Show({.source = source.Number(),
                .store = store,
                .records = store ? store->End() : 0,
                .whole = {time.begin, time.end},
                .shown = time.shown,
                .isFollowing = time.IsFollowing(),
                .cursor = time.Shown(),
                .cursorB = time.cursorB,
                .selection = time.selection,
                .fitValues = options.fitValues,
                .isVisible = {options.right != RightView::kHistograms, options.right == RightView::kCharts,
                              options.right == RightView::kIntervals}});
}

void Display::ShowTimeline(const Source& source, const ViewTime& time, const EventTable& events) {
  if (!isLiveTurn_) return;
  const TimeRange range{time.begin, time.end};
  if (IsNew(range, &timelineRange_)) Send(window_, IDC_TIMELINE, kTimelineRange, &range);
  if (IsNew(events.Version(), &marksVersion_)) {
    const RecordStore* store = source.Records();
    const std::vector<TimelineMark> list = store ? MarksOf(*store, events, time) : std::vector<TimelineMark>();
    const TimelineMarks marks{static_cast<DWORD>(list.size()), list.data()};
    Send(window_, IDC_TIMELINE, kTimelineShowMarks, &marks);
  }
  if (IsNew(time.shown, &timelineVisible_)) Send(window_, IDC_TIMELINE, kTimelineVisible, &time.shown);
  if (IsNew(time.position, &timelinePosition_)) Send(window_, IDC_TIMELINE, kTimelinePosition, &time.position);
  if (IsNew(time.selection, &timelineSelection_)) {
    const TimeRange selection = time.selection.value_or(TimeRange{});
    Send(window_, IDC_TIMELINE, kTimelineSelection | (time.selection ? 0 : kv::kCommandRemove), &selection);
  }
}

void Display::ShowTimeText(const Source& source, const ViewTime& time) {
  if (!isLiveTurn_) return;
  const bool isOpen = source.IsOpen();
  SetText(IDC_LENGTH, isOpen ? kv::TextWith(IDS_OF_LENGTH, TimeAsText(time.end)) : L" ");
  SetTypedText(IDC_TIME, isOpen ? TimeAsText(time.Shown()) : L"");
}

// ---- Statistics -----------------------------------------------------------------------------------------------------

void Display::ShowStatistics(const Source& source, const ViewTime& time) {
  const RecordStore* store = source.Records();
  const TimeRange range = StatisticsRange(time);
  const bool isSelected = time.selection.has_value();
  const StatisticsKey key{source.Number(), store ? store->At(range.to) : -1, isSelected, range.from,
                          range.to,        store ? store->LineRevision() : 0};
  if (statisticsKey_ == key || !isLiveTurn_) {
    if (statisticsKey_ == key) isStatisticsDue_ = false;
    return;
  }
  const double now = camera::Now();
  if (!isStatisticsDue_) statisticsDue_ = now + (time.IsFollowing() ? 0 : kStatisticsDelay);
  isStatisticsDue_ = now < statisticsDue_;
  if (isStatisticsDue_) return;
  statisticsKey_ = key;
  statistics_.reset();
  std::wstring summary = L" ", counts = L" ", silences = L" ";
  if (store) {
    statistics_ = ComputeStatistics(*store, range.from, range.to);
    summary = kv::TextWith(isSelected ? IDS_STATISTICS_SELECTED : IDS_STATISTICS_SHOWN, TimeAsText(range.from),
                           TimeAsText(range.to), kv::NumberText(range.Length(), 3));
    counts = CountsAsText(statistics_->line);
    silences = SilencesAsText(statistics_->line);
  }
  SetText(IDC_SUMMARY, summary);
  SetText(IDC_COUNTS, counts);
  SetText(IDC_SILENCES, silences);
  kv::RedrawList(GetDlgItem(window_, IDC_STATISTICS));
}

// ---- Events ---------------------------------------------------------------------------------------------------------

void Display::ShowEvents(const Source& source, const ViewTime& time, EventTable* events) {
  events_ = events;
  const double now = camera::Now();
  if (!time.isLive || eventsSource_ != source.Number() || now >= eventsDue_) {
    eventsDue_ = now + kLiveSeconds;
    eventsSource_ = source.Number();
    const RecordStore* store = source.Records();
    events->Update(source.Number(), store, time.end);
    if (eventsVersion_ != events->Version())
      wholeLine_ = store ? DescribeLine(LineFiguresOf(*store, time.begin, time.end)) : StatusLine();
  }
  ShowEventRows(time, *events);
}

void Display::ShowEventRows(const ViewTime& time, const EventTable& events) {
  if (!isLiveTurn_) return;
  const HWND list = GetDlgItem(window_, IDC_EVENTS);
  const bool isChanged = IsNew(events.Version(), &eventsVersion_);
  if (isChanged) SendMessageW(list, LB_SETCOUNT, EventRows(events), 0);
  const UINT row = static_cast<UINT>(events.Current(time.position).value_or(kv::kNoRow));
  if (eventRow_ == row && (!isChanged || kv::SelectedListRow(list) == row)) return;
  // While a port is followed, a list that the user has scrolled back stays where it is.
  const UINT lowest = kv::ListRowAt(list, {0, kv::ClientSize(list).cy - 1});
  const UINT last = eventRow_.value_or(kv::kNoRow);
  if (time.IsFollowing() && last != kv::kNoRow && lowest != kv::kNoRow && lowest < last) return;
  eventRow_ = row;
  kv::SelectListRow(list, row);
  if (row == kv::kNoRow) kv::ScrollListTo(list, 0);  // before the first event
  NameEventRow(list, events);
}

}  // namespace camview
