#include "camview/window.h"

#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "camera/ports.h"
#include "camera/text.h"
#include "camview/camera_field.h"
#include "camview/chart_feed.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/status_line.h"
#include "camview/timeline.h"
#include "camview/view.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

constexpr UINT kStart = WM_APP + 1;  // opens the source in the command line
constexpr UINT_PTR kTickTimer = 1;
constexpr UINT kTickMs = 50;
constexpr int kProgressSteps = 1000;
constexpr double kLineSeconds = 6;
constexpr char kTrailName[] = "Camview.TrailMs", kSpanName[] = "Camview.SpanMs", kFitName[] = "Camview.FitValues";

// ---- Life -----------------------------------------------------------------------------------------------------------

INT_PTR OnInit(HWND window, LPARAM options) {
  auto view = std::make_unique<View>();
  view->window = window;
  view->trailSeconds = NumberSetting(kTrailName, 1000) / 1000.0;
  view->spanSeconds = std::max(NumberSetting(kSpanName, 10000), 10) / 1000.0;
  view->fitValues = NumberSetting(kFitName, 0) != 0;
  SetWindowLongW(window, DWL_USER, reinterpret_cast<LONG>(view.release()));
  SendDlgItemMessageW(window, IDC_PROGRESS, PBM_SETRANGE32, 0, kProgressSteps);
  for (const int chart : {IDC_CHART_X, IDC_CHART_Y}) {
    SendDlgItemMessageA(window, chart, kv::kControlCommand, kv::kStripStyle,
                        reinterpret_cast<LPARAM>(&kv::kStripNoStatistics));
  }
  InitStatistics(window);
  DragAcceptFiles(window, TRUE);
  PostMessageW(window, kStart, 0, options);
  return TRUE;
}

INT_PTR OnStart(View& view, const StartOptions& options) {
  ShowValueRange(view);
  ShowSource(view);
  if (options.port > 0) ConnectTo(view, options.port);
  if (!options.path.empty()) OpenRecordingFile(view, options.path);
  return TRUE;
}

INT_PTR OnClose(View& view) {
  if (!view.isExporting) return FALSE;
  const int answer = kv::ShowMessage(view.window, kv::ResourceText(IDS_CLOSE_EXPORT), kv::ResourceText(IDS_CAPTION),
                                     MB_ICONQUESTION | MB_YESNO);
  return answer != IDYES;
}

INT_PTR OnDestroy(View& view) {
  RememberNumber(kTrailName, static_cast<int>(view.trailSeconds * 1000));
  RememberNumber(kSpanName, static_cast<int>(std::min(view.spanSeconds, 1e6) * 1000));
  RememberNumber(kFitName, view.fitValues);
  const HWND window = view.window;
  KillTimer(window, kTickTimer);
  SetWindowLongW(window, DWL_USER, 0);
  delete &view;
  return FALSE;
}

INT_PTR OnTick(View& view) {
  TickWork(view);
  TickLive(view);
  TickPlayback(view);
  TickStatistics(view);
  if (!std::isnan(view.lineUntil) && camera::Now() >= view.lineUntil) {
    view.lineUntil = kNoTime;
    if (view.recording.store) ShowRecordingLine(view);
  }
  UpdateTimer(view);
  return TRUE;
}

// ---- Source --------------------------------------------------------------------------------------------------

void ShowCaption(const View& view) {
  std::wstring source;
  if (view.live) source = L"COM" + std::to_wstring(view.status.port);
  if (view.recording.store) source = kv::FileNameOf(camera::Wide(view.recording.path).c_str());
  SetWindowTextW(view.window, source.empty() ? kv::ResourceText(IDS_CAPTION).c_str()
                                             : TextWith(IDS_CAPTION_OF, source.c_str()).c_str());
}

// The status line has the window's width unless there is a control at its right.
void PlaceStatus(const View& view) {
  const bool isShort = view.isLoading || view.isExporting || !view.recordingLine.text.empty();
  RECT status{}, right{};
  GetWindowRect(GetDlgItem(view.window, IDC_STATUS), &status);
  GetWindowRect(GetDlgItem(view.window, IDC_RECORDING), &right);
  const LONG height = status.bottom - status.top;
  // In a mirrored window, the control at the end of the line is at its left in screen coordinates.
  const bool isMirrored = status.left > right.left;
  const LONG whole = isMirrored ? status.right - right.left : right.right - status.left;
  const LONG beside = isMirrored ? status.right - right.right : right.left - status.left;
  SetWindowPos(GetDlgItem(view.window, IDC_STATUS), nullptr, 0, 0, isShort ? beside - height / 2 : whole, height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  ShowWindow(GetDlgItem(view.window, IDC_RECORDING),
             isShort && !view.isLoading && !view.isExporting ? SW_SHOW : SW_HIDE);
}

void EnableControls(const View& view) {
  const bool isOpen = view.live || view.recording.store;
  for (const int id : {IDC_PLAY, IDC_STEP_BACK, IDC_STEP_FORWARD, IDC_TIME}) {
    kv::EnableControl(view.window, id, isOpen);
  }
  kv::EnableControl(view.window, IDC_SPEED, isOpen && !view.live);
  kv::EnableControl(view.window, IDC_EXPORT, isOpen && view.isMarked && !view.isExporting);
  kv::EnableControl(view.window, IDC_RECORD, view.live != nullptr);
}

INT_PTR OnLanguageChanged(View& view) {
  const HWND window = view.window;
  kv::NameControl(window, IDC_FIELD, kv::ResourceText(IDS_FIELD_NAME).c_str());
  kv::NameControl(window, IDC_CHART_X, kv::ResourceText(IDS_CHART_X_NAME).c_str());
  kv::NameControl(window, IDC_CHART_Y, kv::ResourceText(IDS_CHART_Y_NAME).c_str());
  kv::NameControl(window, IDC_TIMELINE, kv::ResourceText(IDS_TIMELINE_NAME).c_str());
  kv::NameControl(window, IDC_STATISTICS, kv::ResourceText(IDS_STATISTICS_NAME).c_str());
  DescribeCharts(window);
  FillSpeeds(view);
  view.shownTime.clear();
  view.line = view.recordingLine = {};
  ShowCaption(view);
  ShowPlaying(view);
  RefillCharts(view);
  ShowTimelineRange(view);
  ShowTime(view);
  RequestStatistics(view);
  if (!RecordsOf(view)) ShowLine(view, StatusMark::kNone, kv::ResourceText(IDS_NOTHING_OPEN));
  if (view.recording.store) ShowRecordingLine(view);
  SetDlgItemTextW(window, IDC_RECORD, kv::ResourceText(IDS_RECORD).c_str());
  ShowRecordingState(view);
  return TRUE;
}

INT_PTR OnDropFiles(View& view, HDROP drop) {
  wchar_t path[kv::kPathCharacters] = L"";
  const UINT length = DragQueryFileW(drop, 0, path, ARRAYSIZE(path));
  DragFinish(drop);
  if (length > 0) OpenRecordingFile(view, path);
  return TRUE;
}

INT_PTR OnDrawItem(const View& view, const DRAWITEMSTRUCT& item) {
  switch (item.CtlID) {
    case IDC_STATISTICS: return DrawStatistics(view, item);
    case IDC_STATUS: DrawStatusLine(item, view.line); return TRUE;
    case IDC_RECORDING: DrawStatusLine(item, view.recordingLine); return TRUE;
    default: return FALSE;
  }
}

INT_PTR CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) return OnInit(window, lParam);
  View* view = ViewOf(window);
  if (!view) return FALSE;
  switch (message) {
    case kStart: return OnStart(*view, *reinterpret_cast<const StartOptions*>(lParam));
    case WM_SIZE: PlaceStatus(*view); return FALSE;
    case WM_TIMER: return wParam == kTickTimer ? OnTick(*view) : FALSE;
    case WM_COMMAND: return OnCommand(*view, LOWORD(wParam), HIWORD(wParam));
    case WM_INITMENUPOPUP: PrepareMenu(*view, reinterpret_cast<HMENU>(wParam)); return TRUE;
    case WM_DRAWITEM: return OnDrawItem(*view, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_DROPFILES: return OnDropFiles(*view, reinterpret_cast<HDROP>(wParam));
    case WM_CLOSE: return OnClose(*view);
    case WM_DESTROY: return OnDestroy(*view);
    case kv::kLanguageChanged: return OnLanguageChanged(*view);
    default: return FALSE;
  }
}

}  // namespace

View* ViewOf(HWND window) {
  return reinterpret_cast<View*>(GetWindowLongW(window, DWL_USER));
}

const RecordStore* RecordsOf(const View& view) {
  const RecordStore* store = view.live ? view.received.get() : view.recording.store.get();
  return store && !store->IsEmpty() ? store : nullptr;
}

void CloseSource(View& view) {
  SetMark(view, nullptr);
  view.recording = {};
  view.live.reset();
  view.received.reset();
  view.batch = {};
  view.status = {};
  view.isHeld = false;
  view.playback = {.speed = view.playback.speed, .clock = camera::Now()};
  view.hovered = kNoTime;
  view.hasStatistics = false;
  view.lineUntil = kNoTime;
  ClearCharts(view.window, &view.feed);
  ShowRecordingState(view);
}

void ShowRecordingState(View& view) {
  const StatusLine before = view.recordingLine;
  SetStatusLine(view.window, IDC_RECORDING, DescribeLiveRecording(view.status), &view.recordingLine);
  if (before.text.empty() != view.recordingLine.text.empty()) PlaceStatus(view);
  if (before.mark == view.recordingLine.mark) return;
  const bool isRecording = view.recordingLine.mark == StatusMark::kRecording;
  SetDlgItemTextW(view.window, IDC_RECORD, kv::ResourceText(isRecording ? IDS_STOP_RECORDING : IDS_RECORD).c_str());
}

void ShowSource(View& view) {
  ShowCaption(view);
  EnableControls(view);
  ShowWindow(GetDlgItem(view.window, IDC_RECORD), view.live ? SW_SHOW : SW_HIDE);
  ShowPlaying(view);
  RefillCharts(view);
  ShowTimelineRange(view);
  ShowTime(view);
  RequestStatistics(view);
  if (view.recording.store) ShowRecordingLine(view);
  if (!view.live && !view.recording.store && !view.isLoading) {
    ShowLine(view, StatusMark::kNone, kv::ResourceText(IDS_NOTHING_OPEN));
  }
  view.lineUntil = kNoTime;
  UpdateTimer(view);
}

void ShowWork(const View& view) {
  const bool isWorking = view.isLoading || view.isExporting;
  for (const int id : {IDC_PROGRESS, IDC_CANCEL_WORK}) {
    ShowWindow(GetDlgItem(view.window, id), isWorking ? SW_SHOW : SW_HIDE);
  }
  SendDlgItemMessageW(view.window, IDC_PROGRESS, PBM_SETPOS, 0, 0);
  PlaceStatus(view);
  EnableControls(view);
}

void UpdateTimer(View& view) {
  const bool moves = view.isLoading || view.isExporting || view.live || view.playback.isPlaying ||
                     !std::isnan(view.statisticsDue) || !std::isnan(view.lineUntil);
  if (moves == view.isTicking) return;
  view.isTicking = moves;
  if (moves) {
    SetTimer(view.window, kTickTimer, kTickMs, nullptr);
  } else {
    KillTimer(view.window, kTickTimer);
  }
}

void ShowLine(View& view, StatusMark mark, const std::wstring& text) {
  SetStatusLine(view.window, IDC_STATUS, {mark, text}, &view.line);
  const bool isLasting = !RecordsOf(view) && !view.live;
  view.lineUntil = isLasting || view.isLoading || view.isExporting ? kNoTime : camera::Now() + kLineSeconds;
  UpdateTimer(view);
}

kv::ScaledDialog MainWindow(const StartOptions& options) {
  return {
      .templateName = L"CAMVIEW",
      .procedure = WindowProcedure,
      .parameter = reinterpret_cast<LPARAM>(&options),
      .positionName = "Camview.Main",
      .maximisedName = "Camview.Maximised",
      .minimumSize = {760, 520},
      .menu = L"CAMVIEW",
      .languageMenu = {IDM_LANGUAGE_MENU, IDM_LANGUAGE_FIRST, IDB_LANGUAGE_FIRST},
      .accelerators = L"CAMVIEW",
      .languages = kFileStem,
      .language = options.language,
  };
}

BOOL RegisterControls(HINSTANCE instance, BOOL registerThem) {
  const BOOL field = RegisterCameraFieldClass(instance, registerThem);
  return RegisterTimelineClass(instance, registerThem) && field;
}

}  // namespace camview
