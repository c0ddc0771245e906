#include "camview/window.h"

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <memory>
#include <string>

#include "camera/ports.h"
#include "camview/camera_field.h"
#include "camview/commands.h"
#include "camview/context_menu.h"
#include "camview/display.h"
#include "camview/distribution_view.h"
#include "camview/live_source.h"
#include "camview/menu.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/settings.h"
#include "camview/source.h"
#include "camview/timeline.h"
#include "camview/view_time.h"
#include "kv/framework/file_path.h"
#include "kv/framework/tooltips.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

const kv::TooltipEntry kTips[] = {{IDC_STATISTICS, MAKEINTRESOURCEW(IDS_STATISTICS_TIP)},
                                  {IDC_PLAY, MAKEINTRESOURCEW(IDS_PLAY_TIP)},
                                  {IDC_STEP_BACK, MAKEINTRESOURCEW(IDS_STEP_BACK_TIP)},
                                  {IDC_STEP_FORWARD, MAKEINTRESOURCEW(IDS_STEP_FORWARD_TIP)},
                                  {IDC_EVENT_BACK, MAKEINTRESOURCEW(IDS_EVENT_BACK_TIP)},
                                  {IDC_EVENT_FORWARD, MAKEINTRESOURCEW(IDS_EVENT_FORWARD_TIP)},
                                  {IDC_SPEED, MAKEINTRESOURCEW(IDS_SPEED_TIP)},
                                  {IDC_TIME, MAKEINTRESOURCEW(IDS_TIME_TIP)},
                                  {IDC_RATE, MAKEINTRESOURCEW(IDS_RATE_TIP)},
                                  {IDC_EXPORT, MAKEINTRESOURCEW(IDS_EXPORT_TIP)},
                                  {IDC_RECORD, MAKEINTRESOURCEW(IDS_RECORD_TIP)},
                                  {IDC_TIMELINE, MAKEINTRESOURCEW(IDS_TIMELINE_TIP)}};

constexpr UINT kStart = WM_APP + 1;  // opens the source in the command line
constexpr UINT_PTR kTickTimer = 1;
constexpr UINT kTickMs = 50, kWatchMs = 500;
constexpr char kTrailName[] = "Camview.TrailMs", kSpanName[] = "Camview.SpanMs", kFitName[] = "Camview.FitValues",
               kEventsName[] = "Camview.Events";
constexpr char kLeftName[] = "Camview.Left", kRightName[] = "Camview.Right";

INT_PTR OnInit(HWND window, LPARAM options) {
  auto view = std::make_unique<View>(window);
  view->options = {.trailSeconds = NumberSetting(kTrailName, 1000) / 1000.0,
                   .fitValues = NumberSetting(kFitName, 0) != 0,
                   .showEvents = NumberSetting(kEventsName, 0) != 0,
                   .left = static_cast<LeftView>(NumberSetting(kLeftName, 0) % kLeftViews),
                   .right = static_cast<RightView>(NumberSetting(kRightName, 0) % kRightViews)};
  view->time.liveSpan = std::max(NumberSetting(kSpanName, 10000), 10) / 1000.0;
  view->time.shown = {0, view->time.liveSpan};
  SetWindowLongW(window, DWL_USER, reinterpret_cast<LONG>(view.release()));
  DragAcceptFiles(window, TRUE);
  PostMessageW(window, kStart, 0, options);
  return TRUE;
}

INT_PTR OnStart(View& view, const StartOptions& options) {
  Update(view);
  if (options.port > 0) Connect(view, options.port);
  if (!options.path.empty()) OpenFile(view, options.path);
  return TRUE;
}

INT_PTR OnClose(View& view) {
  if (!view.source.IsExporting()) return FALSE;
  const int choice = kv::ShowMessage(view.window, kv::ResourceText(IDS_CLOSE_EXPORT), kv::ResourceText(IDS_CAPTION),
                                     MB_ICONQUESTION | MB_YESNO);
  return choice != IDYES;
}

// Completes a recording, so that it has its end if the session does.
INT_PTR OnSave(View& view) {
  if (view.source.Recording().state == LiveRecordingState::kOn) view.source.StopRecording();
  StoreNumber(kTrailName, static_cast<int>(view.options.trailSeconds * 1000));
  StoreNumber(kSpanName, static_cast<int>(std::min(view.time.liveSpan, 1e6) * 1000));
  StoreNumber(kFitName, view.options.fitValues);
  StoreNumber(kEventsName, view.options.showEvents);
  StoreNumber(kLeftName, static_cast<int>(view.options.left));
  StoreNumber(kRightName, static_cast<int>(view.options.right));
  return TRUE;
}

INT_PTR OnDestroy(View& view) {
  const HWND window = view.window;
  KillTimer(window, kTickTimer);
  SetWindowLongW(window, DWL_USER, 0);
  delete &view;
  return FALSE;
}

INT_PTR OnTick(View& view) {
  const SourceNews news = view.source.Tick();
  Advance(&view.time, camera::Now());
  Update(view);
  // May show a message box.
  if (news != SourceNews::kNone) OnNews(view, news);
  return TRUE;
}

INT_PTR OnLanguageChanged(View& view) {
  view.display.Forget();
  Update(view);
  return TRUE;
}

// The system drops files on a window that a modal dialog has disabled, too.
INT_PTR OnDropFiles(View& view, HDROP drop) {
  wchar_t path[kv::kPathCharacters] = L"";
  const UINT length = DragQueryFileW(drop, 0, path, ARRAYSIZE(path));
  DragFinish(drop);
  if (length > 0 && IsWindowEnabled(view.window)) OpenFile(view, path);
  return TRUE;
}

INT_PTR CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) return OnInit(window, lParam);
  View* view = ViewOf(window);
  if (!view) return FALSE;
  switch (message) {
    case kStart: return OnStart(*view, *reinterpret_cast<const StartOptions*>(lParam));
    case WM_SIZE: view->display.PlaceStatus(); return FALSE;
    case WM_TIMER: return wParam == kTickTimer ? OnTick(*view) : FALSE;
    case WM_COMMAND: return OnCommand(*view, LOWORD(wParam), HIWORD(wParam));
    case WM_INITMENUPOPUP: PrepareMenu(*view, reinterpret_cast<HMENU>(wParam)); return TRUE;
    case WM_CONTEXTMENU: return ShowContextMenu(window, reinterpret_cast<HWND>(wParam), lParam);
    case WM_DRAWITEM: return view->display.Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_DROPFILES: return OnDropFiles(*view, reinterpret_cast<HDROP>(wParam));
    case WM_CLOSE: return OnClose(*view);
    case kv::kSaveState: return OnSave(*view);
    case WM_DESTROY: return OnDestroy(*view);
    case kv::kLanguageChanged: return OnLanguageChanged(*view);
    default: return FALSE;
  }
}

void UpdateTimer(View& view) {
  const bool moves = view.source.IsBusy() || view.time.isPlaying || view.display.IsPending();
  const UINT tickMs = moves ? kTickMs : view.source.IsFollowed() ? kWatchMs : 0;
  if (tickMs == view.tickMs) return;
  view.tickMs = tickMs;
  if (tickMs > 0) {
    // Without a procedure, which Wine 10 does not call from the message loop of a dialog.
    SetTimer(view.window, kTickTimer, tickMs, nullptr);
  } else {
    KillTimer(view.window, kTickTimer);
  }
}

}  // namespace

View* ViewOf(HWND window) {
  return reinterpret_cast<View*>(GetWindowLongW(window, DWL_USER));
}

void Update(View& view) {
  // Controls that are changed may notify the window.
  view.isOutdated = true;
  if (view.isUpdating) return;
  view.isUpdating = true;
  while (view.isOutdated) {
    view.isOutdated = false;
    const Source& source = view.source;
    if (view.shownSource != source.Number()) {
      view.shownSource = source.Number();
      Restart(&view.time, source.Whole(), source.IsLive());
      const RecordStore* store = source.Records();
      if (store && !source.IsLive()) Seek(&view.time, store->Seconds(store->First()));
    }
    const TimeRange whole = source.Whole();
    const bool grows = source.IsLive() || source.IsGrowing();
    // Also with the last part of a recording.
    if (grows || whole.to > view.time.end) SetLive(&view.time, true);
    Grow(&view.time, whole);
    SetLive(&view.time, grows);
    view.display.Refresh(source, view.time, &view.events, view.options);
  }
  view.isUpdating = false;
  UpdateTimer(view);
}

kv::ScaledDialog MainWindow(const StartOptions& options) {
  return {
      .templateName = L"CAMVIEW",
      .procedure = WindowProcedure,
      .parameter = reinterpret_cast<LPARAM>(&options),
      .positionName = "Camview.Main",
      .maximizedName = "Camview.Maximized",
      .minimumSize = {900, 640},
      .tips = kTips,
      .menu = L"CAMVIEW",
      .languageMenu = {IDM_LANGUAGE_MENU, IDM_LANGUAGE_FIRST, IDB_LANGUAGE_FIRST},
      .accelerators = L"CAMVIEW",
      .languages = kFileStem,
      .language = options.language,
  };
}

BOOL RegisterControls(HINSTANCE instance, BOOL registerThem) {
  const BOOL field = RegisterCameraFieldClass(instance, registerThem);
  const BOOL distribution = RegisterDistributionClass(instance, registerThem);
  return RegisterTimelineClass(instance, registerThem) && field && distribution;
}

}  // namespace camview
