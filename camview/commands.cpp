// Menu, buttons and keys.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>

#include "camview/keys_dialog.h"
#include "camview/live_source.h"
#include "camview/playback.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "camview/view.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/version.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr double kSpeeds[] = {0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100};
constexpr int kNormalSpeed = 3;
constexpr double kTrails[] = {0, 0.5, 1, 2, 5, 10};
constexpr double kSpans[] = {1, 5, 10, 30, 60, 600, 3600, 0};

int SpeedIndex(const View& view) {
  return static_cast<int>(std::ranges::lower_bound(kSpeeds, view.playback.speed - 1e-9) - std::begin(kSpeeds));
}

void SelectSpeed(View& view, int index) {
  index = std::clamp(index, 0, static_cast<int>(std::size(kSpeeds)) - 1);
  ChangeSpeed(view, kSpeeds[index]);
  SendDlgItemMessageW(view.window, IDC_SPEED, CB_SETCURSEL, index, 0);
}

void GoToField(const View& view) {
  if (!RecordsOf(view)) return;
  SetFocus(GetDlgItem(view.window, IDC_TIME));
  SendDlgItemMessageW(view.window, IDC_TIME, EM_SETSEL, 0, -1);
}

void MarkShown(View& view) {
  if (!RecordsOf(view)) return;
  const kv::StripTimeRange shown = ShownSpan(view);
  SetMark(view, &shown);
}

// Copies the chart that has the focus, with its values; otherwise the whole image.
void Copy(View& view) {
  const HWND focused = GetFocus();
  for (const int id : {IDC_FIELD, IDC_CHART_X, IDC_CHART_Y}) {
    if (focused == GetDlgItem(view.window, id)) {
      SendMessageW(focused, WM_COPY, 0, 0);
      return;
    }
  }
  CopyImage(view);
}

// Cancels the innermost activity.
void OnEscape(View& view) {
  if (view.isLoading) return view.loader.Cancel();
  if (view.isExporting) return view.exporter.Cancel();
  if (GetFocus() == GetDlgItem(view.window, IDC_TIME)) {
    SetFocus(GetDlgItem(view.window, IDC_TIMELINE));
    view.shownTime.clear();
    return ShowTime(view);
  }
  if (view.isMarked) SetMark(view, nullptr);
}

void ShowAbout(const View& view) {
  kv::ShowMessage(view.window, TextWith(IDS_ABOUT_TEXT, L"" KV_VERSION_TEXT), kv::ResourceText(IDS_CAPTION),
                  MB_ICONINFORMATION);
}

void CloseShown(View& view) {
  if (view.isExporting) return ShowLine(view, StatusMark::kWarning, kv::ResourceText(IDS_EXPORT_RUNS));
  CloseSource(view);
  ShowSource(view);
}

INT_PTR OnControl(View& view, UINT id, UINT code) {
  switch (id) {
    case IDC_CHART_X:
    case IDC_CHART_Y: OnChart(view, static_cast<int>(id), static_cast<WORD>(code)); return TRUE;
    case IDC_TIMELINE: OnTimeline(view, static_cast<WORD>(code)); return TRUE;
    case IDC_SPEED:
      if (code == CBN_SELCHANGE) {
        SelectSpeed(view, static_cast<int>(SendDlgItemMessageW(view.window, IDC_SPEED, CB_GETCURSEL, 0, 0)));
      }
      return TRUE;
    case IDC_TIME:
      // Text that was typed and not entered is discarded.
      if (code == EN_KILLFOCUS) {
        view.shownTime.clear();
        ShowTime(view);
      }
      return TRUE;
    default: return FALSE;
  }
}

bool OnFileCommand(View& view, UINT id) {
  switch (id) {
    case IDM_OPEN: AskRecordingFile(view); return true;
    case IDM_CONNECT: AskPort(view); return true;
    case IDM_CLOSE_SOURCE: CloseShown(view); return true;
    case IDC_RECORD:
    case IDM_RECORD: ToggleRecording(view); return true;
    case IDC_EXPORT:
    case IDM_EXPORT: ExportMarked(view); return true;
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
    case IDM_SLOWER: SelectSpeed(view, SpeedIndex(view) - 1); return true;
    case IDM_FASTER: SelectSpeed(view, SpeedIndex(view) + 1); return true;
    case IDM_NORMAL_SPEED: SelectSpeed(view, kNormalSpeed); return true;
    case IDM_GO_TO: GoToField(view); return true;
    default: return false;
  }
}

bool OnViewCommand(View& view, UINT id) {
  if (id >= IDM_TRAIL_FIRST && id < IDM_TRAIL_FIRST + std::size(kTrails)) {
    view.trailSeconds = kTrails[id - IDM_TRAIL_FIRST];
    ShowTime(view);
    return true;
  }
  if (id >= IDM_SPAN_FIRST && id < IDM_SPAN_FIRST + std::size(kSpans)) {
    SetSpan(view, kSpans[id - IDM_SPAN_FIRST]);
    return true;
  }
  switch (id) {
    case IDM_MARK_SHOWN: MarkShown(view); return true;
    case IDM_REMOVE_MARK: SetMark(view, nullptr); return true;
    case IDM_FIT_VALUES:
      view.fitValues = !view.fitValues;
      ShowValueRange(view);
      return true;
    case IDM_KEYS: ShowKeys(view.window); return true;
    case IDM_ABOUT: ShowAbout(view); return true;
    default: return false;
  }
}

template <size_t size>
void CheckOne(HMENU menu, UINT first, const double (&values)[size], double chosen) {
  const auto* found = std::ranges::find_if(values, [&](double value) { return std::fabs(value - chosen) < 1e-6; });
  const auto index = static_cast<UINT>(found - values);
  for (UINT i = 0; i < size; ++i) CheckMenuItem(menu, first + i, MF_UNCHECKED);
  if (index < size) CheckMenuRadioItem(menu, first, first + size - 1, first + index, MF_BYCOMMAND);
}

}  // namespace

INT_PTR OnCommand(View& view, UINT id, UINT code) {
  if (id == IDCANCEL || id == IDC_CANCEL_WORK) {
    OnEscape(view);
    return TRUE;
  }
  if (id == IDOK) {
    if (GetFocus() == GetDlgItem(view.window, IDC_TIME)) OnTimeTyped(view);
    return TRUE;
  }
  if (OnControl(view, id, code)) return TRUE;
  return OnFileCommand(view, id) || OnPlayCommand(view, id) || OnViewCommand(view, id);
}

void PrepareMenu(const View& view, HMENU menu) {
  const bool isOpen = RecordsOf(view) != nullptr, isLive = IsLive(view);
  const auto enable = [&](UINT id, bool enabled) {
    EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
  };
  enable(IDM_CLOSE_SOURCE, isOpen || isLive);
  enable(IDM_RECORD, isLive);
  enable(IDM_EXPORT, isOpen && view.isMarked && !view.isExporting);
  for (const UINT id : {IDM_PLAY, IDM_STEP_BACK, IDM_STEP_FORWARD, IDM_GO_TO, IDM_MARK_SHOWN}) enable(id, isOpen);
  for (const UINT id : {IDM_SLOWER, IDM_FASTER, IDM_NORMAL_SPEED}) enable(id, isOpen && !isLive);
  enable(IDM_REMOVE_MARK, view.isMarked);
  CheckMenuItem(menu, IDM_FIT_VALUES, view.fitValues ? MF_CHECKED : MF_UNCHECKED);
  const bool isRecording = view.status.recording == LiveRecordingState::kOn;
  CheckMenuItem(menu, IDM_RECORD, isRecording ? MF_CHECKED : MF_UNCHECKED);
  CheckOne(menu, IDM_TRAIL_FIRST, kTrails, view.trailSeconds);
  const double whole = view.playback.end - view.playback.begin;
  CheckOne(menu, IDM_SPAN_FIRST, kSpans, isOpen && view.spanSeconds == whole ? 0 : view.spanSeconds);
}

void FillSpeeds(const View& view) {
  const HWND combo = GetDlgItem(view.window, IDC_SPEED);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const double speed : kSpeeds) {
    const std::wstring text = TextWith(IDS_SPEED_OF, kv::NumberText(speed, speed < 1 ? 1 : 0).c_str());
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  }
  SendMessageW(combo, CB_SETCURSEL, SpeedIndex(view), 0);
}

}  // namespace camview
