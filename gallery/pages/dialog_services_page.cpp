#include "gallery/pages.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/framework/calendar.h"
#include "kv/framework/dialog.h"
#include "kv/framework/window_position.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr char kVisitsName[] = "Gallery.DialogServicesVisits";
constexpr char kPositionName[] = "Gallery.Remembered";

constexpr int kTrackbarMax = 100;
constexpr int kMinIntervals = 1, kMaxIntervals = 20, kScrollPage = 4;

// ---- One control of each kind ---------------------------------------------------------------------------------------

void FillSamples(HWND page) {
  const HWND combo = GetDlgItem(page, IDC_SERVICES_COMBO), list = GetDlgItem(page, IDC_SERVICES_LIST);
  const HWND tab = GetDlgItem(page, IDC_SERVICES_TAB), tree = GetDlgItem(page, IDC_SERVICES_TREE);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  SendMessageW(list, LB_RESETCONTENT, 0, 0);
  SendMessageW(tab, TCM_DELETEALLITEMS, 0, 0);
  SendMessageW(tree, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
  HTREEITEM first = TVI_ROOT;
  for (int i = 0; i < 3; ++i) {
    std::wstring text = kv::ResourceText(IDS_SERVICES_SAMPLE + i);
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    TCITEMW tabItem{};
    tabItem.mask = TCIF_TEXT;
    tabItem.pszText = text.data();
    if (i < 2) SendMessageW(tab, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&tabItem));
    TVINSERTSTRUCTW treeItem{};
    treeItem.hParent = i == 2 ? first : TVI_ROOT;
    treeItem.item.mask = TVIF_TEXT;
    treeItem.item.pszText = text.data();
    const LRESULT inserted = SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&treeItem));
    if (i == 0) first = reinterpret_cast<HTREEITEM>(inserted);
  }
  SetDlgItemTextW(page, IDC_SERVICES_EDIT, kv::ResourceText(IDS_SERVICES_SAMPLE).c_str());
  SendMessageW(combo, CB_SETCURSEL, 0, 0);
}

void ShowScale(HWND page) {
  const kv::DialogScale scale = kv::ScaleOf(page);
  kv::SetControlText(page, IDC_SERVICES_SCALE, IDS_SERVICES_SCALE, kv::NumberText(scale.x, 2),
                     kv::NumberText(scale.y, 2));
}

// ---- Trackbar and scroll bar ----------------------------------------------------------------------------------------

void SetIntervals(HWND page, int intervals) {
  // The largest position of a scroll bar is a page before its maximum.
  kv::SetScrollBarControl(GetDlgItem(page, IDC_SERVICES_SCROLL), kMinIntervals, kMaxIntervals + kScrollPage - 1,
                          kScrollPage, intervals);
  kv::SetTrackbarTicks(GetDlgItem(page, IDC_SERVICES_TRACKBAR), 0, kTrackbarMax, intervals);
  kv::SetControlText(page, IDC_SERVICES_INTERVALS, IDS_SERVICES_INTERVALS, intervals);
}

int Intervals(HWND page, int field) {
  SCROLLINFO info{};
  info.cbSize = sizeof(info);
  info.fMask = SIF_ALL;
  GetScrollInfo(GetDlgItem(page, IDC_SERVICES_SCROLL), SB_CTL, &info);
  return field == SB_THUMBTRACK ? info.nTrackPos : info.nPos;
}

void ShowTrackbarValue(HWND page) {
  kv::SetControlText(page, IDC_SERVICES_VALUE, IDS_SERVICES_VALUE,
                     static_cast<int>(SendDlgItemMessageA(page, IDC_SERVICES_TRACKBAR, TBM_GETPOS, 0, 0)));
}

void OnScroll(HWND page, HWND control, int code) {
  if (control != GetDlgItem(page, IDC_SERVICES_SCROLL)) return ShowTrackbarValue(page);
  int intervals = Intervals(page, code);
  switch (code) {
    case SB_LINELEFT: intervals -= 1; break;
    case SB_LINERIGHT: intervals += 1; break;
    case SB_PAGELEFT: intervals -= kScrollPage; break;
    case SB_PAGERIGHT: intervals += kScrollPage; break;
    case SB_THUMBTRACK: break;
    default: return;
  }
  SetIntervals(page, std::clamp(intervals, kMinIntervals, kMaxIntervals));
}

// ---- Window memory --------------------------------------------------------------------------------------------------

void ShowVisits(HWND page) {
  DWORD visits = 0;
  kv::WindowNumber(kVisitsName, &visits, kv::kPositionRestore);
  kv::SetControlText(page, IDC_SERVICES_VISITS, IDS_SERVICES_VISITS, visits);
}

void CountVisit(HWND page) {
  DWORD visits = 0;
  kv::WindowNumber(kVisitsName, &visits, kv::kPositionRestore);
  ++visits;
  kv::WindowNumber(kVisitsName, &visits, kv::kPositionSave);
  ShowVisits(page);
}

void RememberPosition(HWND page) {
  const HWND frame = GetParent(page);
  if (!kv::WindowPosition(frame, kPositionName, kv::kPositionSave)) {
    return kv::SetControlText(page, IDC_SERVICES_PLACE, IDS_SERVICES_NOT_NORMAL);
  }
  RECT place{};
  GetWindowRect(frame, &place);
  kv::SetControlText(page, IDC_SERVICES_PLACE, IDS_SERVICES_PLACE, place.left, place.top, place.right, place.bottom);
}

// ---- Calendar -------------------------------------------------------------------------------------------------------

void ShowTime(HWND page, int controlId, const SYSTEMTIME& time) {
  kv::SetControlText(page, controlId, IDS_SERVICES_TIME, kv::DateText(time), kv::TimeText(time, false));
}

void ShowCalendar(HWND page) {
  const auto field = [page](int controlId) {
    return static_cast<WORD>(std::min<UINT>(GetDlgItemInt(page, controlId, nullptr, FALSE), MAXWORD));
  };
  SYSTEMTIME time{};
  time.wYear = field(IDC_SERVICES_YEAR);
  time.wMonth = field(IDC_SERVICES_MONTH);
  time.wDay = field(IDC_SERVICES_DAY);
  time.wHour = field(IDC_SERVICES_HOUR);

  constexpr double kHoursPerDay = 24;
  const double number = kv::DayNumber(&time) + time.wHour / kHoursPerDay;
  SetDlgItemTextW(page, IDC_SERVICES_NUMBER, kv::NumberText(number, 3).c_str());
  SetDlgItemInt(page, IDC_SERVICES_WEEK, kv::WeekNumber(number), TRUE);

  SYSTEMTIME back{};
  kv::DayNumberToTime(number, &back);
  // An hour is not a round fraction of a day: rounding restores it.
  kv::DayFractionToTime(number, &back);
  ShowTime(page, IDC_SERVICES_BACK, back);
  const std::wstring weekday = kv::ResourceText(IDS_SERVICES_SUNDAY + back.wDayOfWeek);
  if (kv::IsLeapYear(back.wYear)) {
    kv::SetControlText(page, IDC_SERVICES_WEEKDAY, IDS_SERVICES_LEAP_YEAR, weekday);
  } else {
    SetDlgItemTextW(page, IDC_SERVICES_WEEKDAY, weekday.c_str());
  }

  SYSTEMTIME later{};
  kv::AddDays(&time, GetDlgItemInt(page, IDC_SERVICES_ADD, nullptr, FALSE), &later);
  // Some counted days are not dates: December 32nd and January 0th.
  later.wDay = std::max<WORD>(later.wDay, 1);
  kv::NormalizeTime(&later);
  ShowTime(page, IDC_SERVICES_LATER, later);
  kv::NormalizeTime(&time);
  ShowTime(page, IDC_SERVICES_NORMAL, time);
}

void PrepareCalendar(HWND page) {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  const struct {
    int controlId, largest, value;
  } kFields[] = {
      {IDC_SERVICES_YEAR, 9999, now.wYear}, {IDC_SERVICES_MONTH, 99, now.wMonth}, {IDC_SERVICES_DAY, 999, now.wDay},
      {IDC_SERVICES_HOUR, 999, now.wHour},  {IDC_SERVICES_ADD, 9999, 30},
  };
  for (const auto& field : kFields) {
    const HWND spin = GetDlgItem(page, field.controlId + 1);
    SendMessageA(spin, UDM_SETBUDDY, reinterpret_cast<WPARAM>(GetDlgItem(page, field.controlId)), 0);
    SendMessageA(spin, UDM_SETRANGE32, 0, field.largest);
    SendMessageA(spin, UDM_SETPOS32, 0, field.value);
  }
}

// ---- Messages -------------------------------------------------------------------------------------------------------

void OnInit(HWND page) {
  PrepareCalendar(page);
  SetIntervals(page, 8);
  SendDlgItemMessageA(page, IDC_SERVICES_TRACKBAR, TBM_SETPOS, TRUE, 40);
}

void OnTextsChanged(HWND page) {
  FillSamples(page);
  ShowScale(page);
  ShowTrackbarValue(page);
  SetIntervals(page, Intervals(page, SB_ENDSCROLL));
  ShowVisits(page);
  kv::SetControlText(page, IDC_SERVICES_PLACE, IDS_SERVICES_NO_PLACE);
  ShowCalendar(page);
}

void OnCommand(HWND page, int controlId, int code) {
  switch (controlId) {
    case IDC_SERVICES_REMEMBER: RememberPosition(page); break;
    case IDC_SERVICES_RETURN: kv::WindowPosition(GetParent(page), kPositionName, kv::kPositionRestore); break;
    case IDC_SERVICES_YEAR:
    case IDC_SERVICES_MONTH:
    case IDC_SERVICES_DAY:
    case IDC_SERVICES_HOUR:
    case IDC_SERVICES_ADD:
      if (code == EN_CHANGE) ShowCalendar(page);
      break;
    default: break;
  }
}

}  // namespace

INT_PTR CALLBACK DialogServicesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_SIZE: ShowScale(page); break;
    case WM_HSCROLL: OnScroll(page, reinterpret_cast<HWND>(lParam), LOWORD(wParam)); return TRUE;
    case WM_COMMAND: OnCommand(page, LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case kv::kPageShown:
      if (wParam) CountVisit(page);
      return TRUE;
    case kv::kLanguageChanged: OnTextsChanged(page); return TRUE;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
