#include "camview/commands.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/text.h"
#include "camview/charts.h"
#include "camview/dialogs.h"
#include "camview/display.h"
#include "camview/events_view.h"
#include "camview/exporter.h"
#include "camview/image.h"
#include "camview/live_source.h"
#include "camview/menu.h"
#include "camview/recent_files.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/source.h"
#include "camview/status_line.h"
#include "camview/timeline.h"
#include "camview/typed_fields.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/export/web_links.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/framework/version.h"
#include "kv/toolkit/about_box.h"
#include "kv/toolkit/ask_path.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/languages.h"

namespace camview {

namespace {

constexpr wchar_t kRecordingExtension[] = L".twr", kCsvExtension[] = L".csv";

std::wstring Text(UINT id) {
  return kv::ResourceText(id);
}

void Warn(const View& view, const std::wstring& text) {
  kv::ShowMessage(view.window, text, Text(IDS_CAPTION), MB_ICONWARNING);
}

// Returns whether the source for which a dialog was opened is still open; otherwise says that it is not.
bool IsStillOpen(View& view, unsigned source) {
  if (view.source.Number() == source) return true;
  view.display.Say(StatusMark::kWarning, Text(IDS_SOURCE_CHANGED));
  Update(view);
  return false;
}

bool IsExtension(const std::wstring& path, const wchar_t* extension) {
  return lstrcmpiW(kv::ExtensionOf(path.c_str()), extension) == 0;
}

std::wstring WithoutExtension(const std::wstring& path) {
  return path.substr(0, static_cast<size_t>(kv::ExtensionOf(path.c_str()) - path.c_str()));
}

// ---- Source ---------------------------------------------------------------------------------------------------------

void AskRecording(View& view) {
  std::wstring path = FolderOf(Setting::kRecordings) + L"*" + kRecordingExtension;
  if (kv::AskOpenPath(view.window, Text(IDS_OPEN_TITLE).c_str(), &path)) OpenFile(view, path);
}

void AskPort(View& view) {
  const int port = AskForPort(view.window);
  if (port > 0) Connect(view, port);
}

void CloseShown(View& view) {
  if (!view.source.Close()) view.display.Say(StatusMark::kWarning, Text(IDS_EXPORT_RUNS));
}

std::wstring ProposedRecording(const Source& source) {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  wchar_t name[64] = L"";
  kv::FormatBounded(name, sizeof(name), L"%s %04d-%02d-%02d %02d.%02d.%02d.twr", source.Name().c_str(), now.wYear,
                    now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
  return FolderOf(Setting::kRecordings) + name;
}

void ToggleRecording(View& view) {
  Source& source = view.source;
  if (!source.IsLive()) return;
  if (source.Recording().state == LiveRecordingState::kOn) return source.StopRecording();
  const unsigned number = source.Number();
  std::wstring path = ProposedRecording(source);
  if (!kv::AskSavePath(view.window, Text(IDS_RECORD_TITLE).c_str(), &path)) return;
  if (!IsStillOpen(view, number)) return;
  StoreFolder(Setting::kRecordings, path);
  DWORD error = 0;
  if (source.StartRecording(path, &error)) return;
  Warn(view, kv::TextWith(IDS_RECORDING_FAILED, kv::FileNameOf(path.c_str()), kv::ErrorText(error)));
}

// Returns "FOLDER\NAME 1.15-1.20.csv" for a range of FOLDER\NAME.twr.
std::wstring ProposedTarget(const Source& source, TimeRange range) {
  std::string times = FormatTime(range.from, 0) + "-" + FormatTime(range.to, 0);
  std::ranges::replace(times, ':', '.');
  return ProposedPath(source) + L" " + camera::Wide(times) + kCsvExtension;
}

void ExportSelection(View& view) {
  Source& source = view.source;
  if (!source.Records() || !view.time.selection || source.IsWorking()) return;
  const TimeRange range = *view.time.selection;
  const unsigned number = source.Number();
  std::wstring path = ProposedTarget(source, range);
  if (!AskTarget(view, IDS_EXPORT_TITLE, &path, kRecordingExtension)) return;
  if (!IsStillOpen(view, number)) return;
  if (!source.StartExport(range, path, !IsExtension(path, kRecordingExtension))) {
    view.display.Say(StatusMark::kError, kv::TextWith(IDS_NOT_SAVED, kv::FileNameOf(path.c_str())));
  }
}

void SayExported(View& view) {
  const ExportResult& result = view.source.Export().Result();
  const std::wstring path = camera::Wide(view.source.Export().Task().target);
  const wchar_t* name = kv::FileNameOf(path.c_str());
  if (result.isDone) {
    return view.display.Say(StatusMark::kGood, kv::TextWith(IDS_EXPORTED, RecordsAsText(result.records), name));
  }
  std::wstring reason;
  switch (result.failure) {
    case ExportFailure::kNone: return view.display.Say(StatusMark::kNone, Text(IDS_EXPORT_CANCELED));
    case ExportFailure::kSystem: reason = kv::ErrorText(result.systemError); break;
    case ExportFailure::kTargetIsSource: reason = Text(IDS_REASON_IS_SOURCE); break;
    case ExportFailure::kSourceIsShorter: reason = Text(IDS_REASON_SHORTER); break;
  }
  view.display.Say(StatusMark::kError, kv::TextWith(IDS_EXPORT_FAILED, name, reason));
}

// ---- Copying --------------------------------------------------------------------------------------------------------

// Copies the control that has the focus, with its values; otherwise the whole image.
void Copy(View& view) {
  const HWND focused = GetFocus();
  for (const int id :
       {IDC_FIELD, IDC_SCATTER, IDC_CHART_X, IDC_CHART_Y, IDC_HISTOGRAM_X, IDC_HISTOGRAM_Y, IDC_INTERVALS}) {
    if (focused == GetDlgItem(view.window, id)) {
      SendMessageW(focused, WM_COPY, 0, 0);
      return;
    }
  }
  if (focused == GetDlgItem(view.window, IDC_EVENTS)) return CopyEvents(view);
  CopyImage(view);
}

// ---- Time -----------------------------------------------------------------------------------------------------------

void StepBy(View& view, int records) {
  if (const RecordStore* store = view.source.Records()) Step(&view.time, *store, records);
}

void TogglePlay(View& view) {
  ViewTime& time = view.time;
  if (time.isLive && !time.isPlaying) return Freeze(&time, !time.isFrozen);
  if (!view.source.Records()) return;
  Advance(&time, camera::Now());
  time.isPlaying ? Pause(&time) : Play(&time);
}

void SelectSpeed(View& view, int index) {
  Advance(&view.time, camera::Now());
  SetSpeed(&view.time, kSpeeds[std::clamp(index, 0, static_cast<int>(std::size(kSpeeds)) - 1)]);
}

void GoToField(const View& view) {
  if (!view.source.Records()) return;
  SetFocus(GetDlgItem(view.window, IDC_TIME));
  SendDlgItemMessageW(view.window, IDC_TIME, EM_SETSEL, 0, -1);
}

// Sets the second cursor where the first one is, or removes it.
void ToggleCursorB(View& view) {
  ViewTime& time = view.time;
  if (!view.source.Records()) return;
  if (time.cursorB) return time.cursorB.reset();
  double at = time.Shown();
  // In the charts of a followed port, the first cursor is at the pointer.
  if (time.IsFollowing()) {
    const Charts& charts = view.display.charts();
    for (const int chart : kCharts) {
      if (charts.CursorOf(chart, &at)) break;
    }
  }
  SetCursorB(&time, at);
}

// Shows the statistics, or the events in their place.
void ShowEvents(View& view, bool show) {
  const HWND hidden = GetDlgItem(view.window, show ? IDC_STATISTICS : IDC_EVENTS);
  const bool hadFocus = GetFocus() == hidden;
  view.options.showEvents = show;
  Update(view);
  if (show || hadFocus) SetFocus(GetDlgItem(view.window, show ? IDC_EVENTS : IDC_STATISTICS));
}

// Cancels the innermost activity. Escape is an accelerator, so that work is canceled whichever control has the focus.
void OnEscape(View& view) {
  if (view.source.IsWorking()) return view.source.CancelWork();
  const HWND focused = GetFocus();
  const int id = GetDlgCtrlID(focused);
  if (id == IDC_TIME || id == IDC_RATE) {
    SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
  } else if ((id == IDC_SCATTER || id == IDC_HISTOGRAM_X || id == IDC_HISTOGRAM_Y) &&
             SendMessageW(focused, WM_GETDLGCODE, VK_ESCAPE, 0) & DLGC_WANTMESSAGE) {
    SendMessageW(focused, WM_KEYDOWN, VK_ESCAPE, 0);
  } else {
    view.time.selection.reset();
    view.time.cursorB.reset();
  }
}

// ---- Notifications of controls --------------------------------------------------------------------------------------

bool IsUnderPointer(HWND control) {
  POINT point{};
  return GetCapture() == control || (GetCursorPos(&point) && WindowFromPoint(point) == control);
}

void OnChart(View& view, int chart, UINT code) {
  ViewTime& time = view.time;
  const Charts& charts = view.display.charts();
  double cursor = 0;
  const bool hasCursor = charts.CursorOf(chart, &cursor);
  if (!view.source.Records()) return;
  switch (code) {
    case kv::kStripNotifyView:
      // Escape has removed the selection and the second cursor.
      if (!charts.SelectionOf(chart)) time.selection.reset();
      if (!charts.CursorBOf(chart)) time.cursorB.reset();
      ShowByUser(&time, charts.ShownBy(chart));
      break;
    case kv::kStripNotifyCursor:
      // In the charts of a followed port, the pointer only reads values.
      if (time.isPlaying || time.IsFollowing()) return;
      // This notification may be older than the pointer's leaving, after which another chart has shown its cursor here.
      time.hovered = hasCursor && IsUnderPointer(GetDlgItem(view.window, chart))
                         ? std::clamp(cursor, time.begin, time.end)
                         : kNoTime;
      break;
    case kv::kStripNotifyCursorB:
      time.cursorB.reset();
      if (const std::optional<double> at = charts.CursorBOf(chart)) SetCursorB(&time, *at);
      break;
    case kv::kStripNotifySelection:
      time.selection.reset();
      if (const std::optional<TimeRange> selection = charts.SelectionOf(chart)) Select(&time, *selection);
      break;
    case kv::kStripNotifyCursorSet:
      // A followed port continues: its charts are clicked to focus them.
      if (time.IsFollowing() || !hasCursor) return;
      Seek(&time, cursor);
      break;
    default: return;
  }
  view.display.SetChartsChanged();
}

void OnTimeline(View& view, UINT code) {
  double position = 0;
  TimeRange selection{};
  const auto read = [&](WPARAM item, void* value) {
    return SendDlgItemMessageA(view.window, IDC_TIMELINE, kv::kControlCommand, item | kv::kCommandRead,
                               reinterpret_cast<LPARAM>(value)) != 0;
  };
  switch (code) {
    case kTimelineNotifyPosition:
      // The first of several pending notifications has done it.
      if (!view.source.Records() || !read(kTimelinePosition, &position) || position == view.time.position) return;
      return Seek(&view.time, position);
    case kTimelineNotifySelection:
      view.time.selection.reset();
      if (read(kTimelineSelection, &selection)) Select(&view.time, selection);
      return;
    case kTimelineNotifyBack: return StepBy(view, -1);
    case kTimelineNotifyForward: return StepBy(view, 1);
    default: return;
  }
}

bool OnControl(View& view, UINT id, UINT code) {
  switch (id) {
    case IDC_CHART_X:
    case IDC_CHART_Y:
    case IDC_INTERVALS: OnChart(view, static_cast<int>(id), code); return true;
    case IDC_TIMELINE: OnTimeline(view, code); return true;
    case IDC_EVENTS: OnEventList(view, code); return true;
    case IDC_SPEED:
      if (code == CBN_SELCHANGE) {
        SelectSpeed(view, static_cast<int>(SendDlgItemMessageW(view.window, IDC_SPEED, CB_GETCURSEL, 0, 0)));
      }
      return true;
    case IDC_TIME:
    case IDC_RATE: return true;
    default: return false;
  }
}

// ---- Menu -----------------------------------------------------------------------------------------------------------

bool OnFileCommand(View& view, UINT id) {
  if (id >= IDM_RECENT_FIRST && id < IDM_RECENT_FIRST + kMaxRecentFiles) {
    const size_t number = id - IDM_RECENT_FIRST;
    if (number < view.recentFiles.size()) OpenFile(view, std::wstring(view.recentFiles[number]));
    return true;
  }
  switch (id) {
    case IDM_OPEN: AskRecording(view); return true;
    case IDM_CONNECT: AskPort(view); return true;
    case IDM_CLOSE_SOURCE: CloseShown(view); return true;
    case IDC_RECORD:
    case IDM_RECORD: ToggleRecording(view); return true;
    case IDC_EXPORT:
    case IDM_EXPORT: ExportSelection(view); return true;
    case IDM_EXPORT_EVENTS: ExportEvents(view); return true;
    case IDM_SAVE_IMAGE: SaveImage(view); return true;
    case IDM_COPY: Copy(view); return true;
    case IDM_COPY_IMAGE: CopyImage(view); return true;
    case IDM_EXIT: PostMessageW(view.window, WM_CLOSE, 0, 0); return true;
    default: return false;
  }
}

bool OnPlayCommand(View& view, UINT id) {
  switch (id) {
    case IDC_PLAY:
    case IDM_PLAY: TogglePlay(view); return true;
    case IDC_STEP_BACK:
    case IDM_STEP_BACK: StepBy(view, -1); return true;
    case IDC_STEP_FORWARD:
    case IDM_STEP_FORWARD: StepBy(view, 1); return true;
    case IDM_SLOWER: SelectSpeed(view, SpeedIndex(view.time.speed) - 1); return true;
    case IDM_FASTER: SelectSpeed(view, SpeedIndex(view.time.speed) + 1); return true;
    case IDM_NORMAL_SPEED: SelectSpeed(view, SpeedIndex(1)); return true;
    case IDM_GO_TO: GoToField(view); return true;
    case IDC_EVENT_BACK:
    case IDM_EVENT_BACK: GoToEvent(view, false); return true;
    case IDC_EVENT_FORWARD:
    case IDM_EVENT_FORWARD: GoToEvent(view, true); return true;
    default: return false;
  }
}

bool OnViewCommand(View& view, UINT id) {
  if (id >= IDM_TRAIL_FIRST && id < IDM_TRAIL_FIRST + std::size(kTrails)) {
    view.options.trailSeconds = kTrails[id - IDM_TRAIL_FIRST];
    return true;
  }
  if (id >= IDM_SPAN_FIRST && id < IDM_SPAN_FIRST + std::size(kSpans)) {
    ShowSeconds(&view.time, kSpans[id - IDM_SPAN_FIRST]);
    return true;
  }
  if (id >= IDM_LEFT_FIRST && id < IDM_LEFT_FIRST + kLeftViews) {
    view.options.left = static_cast<LeftView>(id - IDM_LEFT_FIRST);
    return true;
  }
  if (id >= IDM_RIGHT_FIRST && id < IDM_RIGHT_FIRST + kRightViews) {
    view.options.right = static_cast<RightView>(id - IDM_RIGHT_FIRST);
    return true;
  }
  switch (id) {
    case IDM_SELECT_SHOWN:
      if (view.source.Records()) Select(&view.time, view.time.shown);
      return true;
    case IDM_REMOVE_SELECTION: view.time.selection.reset(); return true;
    case IDM_CURSOR_B: ToggleCursorB(view); return true;
    case IDM_SHOW_STATISTICS: ShowEvents(view, false); return true;
    case IDM_SHOW_EVENTS: ShowEvents(view, true); return true;
    case IDM_TOGGLE_EVENTS: ShowEvents(view, !view.options.showEvents); return true;
    case IDM_FIT_VALUES: view.options.fitValues = !view.options.fitValues; return true;
    case IDM_KEYS: ShowKeys(view.window); return true;
    case IDM_ABOUT:
      kv::ShowAboutBox(view.window,
                       {.caption = Text(IDS_CAPTION),
                        .name = Text(IDS_CAPTION) + std::wstring(L" " KV_VERSION_TEXT),
                        .description = Text(IDS_ABOUT_TEXT),
                        .rights = L"\u00A9 2008-2026 korvel\nMIT License",
                        .address = std::wstring(std::begin(kv::kHomePageAddress), std::end(kv::kHomePageAddress) - 1),
                        .icon = IDI_CAMVIEW});
      return true;
    default: return false;
  }
}

}  // namespace

std::wstring ProposedPath(const Source& source) {
  return source.IsLive() ? FolderOf(Setting::kRecordings) + source.Name() : WithoutExtension(source.Name());
}

bool AskTarget(View& view, UINT title, std::wstring* path, const wchar_t* otherExtension) {
  if (!kv::AskSavePath(view.window, Text(title).c_str(), path, otherExtension)) return false;
  if (view.source.IsLive() || !camera::IsSameFile(camera::Narrow(*path), camera::Narrow(view.source.Name())))
    return true;
  view.display.Say(StatusMark::kError,
                   kv::TextWith(IDS_EXPORT_FAILED, kv::FileNameOf(path->c_str()), Text(IDS_REASON_IS_SOURCE)));
  return false;
}

void OpenFile(View& view, const std::wstring& path) {
  if (view.source.IsExporting()) {
    view.display.Say(StatusMark::kWarning, Text(IDS_EXPORT_RUNS));
  } else if (!view.source.OpenRecording(path)) {
    view.display.Say(StatusMark::kError, kv::TextWith(IDS_FILE_UNREADABLE, kv::FileNameOf(path.c_str()), L""));
  } else {
    view.display.TakeBack();
    StoreFolder(Setting::kRecordings, path);
  }
  Update(view);
}

void Connect(View& view, int port) {
  if (view.source.OpenPort(port)) {
    SetFocus(GetDlgItem(view.window, IDC_PLAY));
  } else {
    view.display.Say(StatusMark::kWarning, Text(IDS_EXPORT_RUNS));
  }
  Update(view);
}

void OnNews(View& view, SourceNews news) {
  const auto& rejected = view.source.Rejected();
  StatusLine warning;
  switch (news) {
    case SourceNews::kNone: break;
    case SourceNews::kOpened:
      AddRecentFile(view.source.Name());
      SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
      break;
    case SourceNews::kLoadCanceled: view.display.Say(StatusMark::kNone, Text(IDS_LOADING_CANCELED)); break;
    case SourceNews::kLoadRejected:
      warning = DescribeRecording(rejected);
      view.display.Say(warning.mark, warning.text);
      if (rejected.systemError == ERROR_FILE_NOT_FOUND || rejected.systemError == ERROR_PATH_NOT_FOUND)
        RemoveRecentFile(camera::Wide(rejected.path));
      break;
    case SourceNews::kExported: SayExported(view); break;
    // The line at the bottom is too short for the whole reason.
    case SourceNews::kRecordingFailed: warning = DescribeLiveRecording(view.source.Recording()); break;
  }
  Update(view);
  if (!warning.text.empty()) Warn(view, warning.text);
}

INT_PTR OnCommand(View& view, UINT id, UINT code) {
  const HWND window = view.window;
  bool isHandled = true;
  if (id == IDCANCEL) {
    OnEscape(view);
  } else if (id == IDC_CANCEL_WORK) {
    view.source.CancelWork();
  } else if (id == IDOK) {
    if (GetFocus() == GetDlgItem(window, IDC_TIME)) OnTimeTyped(view);
    if (GetFocus() == GetDlgItem(window, IDC_RATE)) OnRateTyped(view);
  } else {
    isHandled =
        OnControl(view, id, code) || OnFileCommand(view, id) || OnPlayCommand(view, id) || OnViewCommand(view, id);
  }
  // A dialog may have been open for long.
  if (isHandled && ViewOf(window)) Update(view);
  return isHandled;
}

}  // namespace camview
