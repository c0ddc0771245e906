#include "gallery/pages.h"

#include <cmath>
#include <string>

#include "camera/camera_record.h"
#include "camera/optical_flow_chart.h"
#include "gallery/resource_ids.h"
#include "kv/framework/control_class.h"
#include "kv/framework/numbers.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr DWORD kAllPoints = 15;

// The clock of the simulation, which stops while it is paused.
double seconds;

// The position of a point: each follows a curve well within the field.
kv::CameraPoint PointAt(int index, double time) {
  constexpr double kTurnsX[] = {0.5, 0.9, -0.7, 0.35}, kTurnsY[] = {0.5, 0.45, 1.05, -0.7};
  const double size = 110.0 + 75.0 * index;
  return {kv::ToInt(512 + 1.3 * size * std::cos(kTurnsX[index] * time + index)),
          kv::ToInt(384 + size * std::sin(kTurnsY[index] * time))};
}

void Exchange(HWND page, WPARAM flags, kv::FlowPoints* points) {
  SendDlgItemMessageA(page, IDC_CHART_VIEW, kv::kControlCommand, kv::kChartPoints | flags,
                      reinterpret_cast<LPARAM>(points));
}

// Shows the points that the chart returns.
void ShowPositions(HWND page) {
  kv::FlowPoints shown{};
  Exchange(page, kv::kCommandRead, &shown);
  for (int i = 0; i < kv::kPointCount; ++i) {
    const bool visible = (shown.mask & 1u << i) != 0;
    const std::wstring text = kv::TextWith(IDS_CHART_POSITION, shown.points[i].x, shown.points[i].y);
    SetDlgItemTextW(page, IDC_CHART_PLACE + i, visible ? text.c_str() : L"-");
  }
}

void ShowPoints(HWND page) {
  kv::FlowPoints points{};
  for (int i = 0; i < kv::kPointCount; ++i) {
    points.points[i] = PointAt(i, seconds);
    if (kv::IsChecked(page, IDC_CHART_POINT + i)) points.mask |= 1u << i;
  }
  kv::FlowPoints hidden{.mask = kAllPoints & ~points.mask, .points = {}};
  Exchange(page, kv::kCommandRemove, &hidden);
  Exchange(page, kv::kCommandRedraw, &points);
  ShowPositions(page);
}

void OnTick(HWND page) {
  if (kv::IsChecked(page, IDC_CHART_PAUSE)) return;
  seconds += kChartTickMs / 1000.0;
  ShowPoints(page);
}

void Clear(HWND page) {
  CheckDlgButton(page, IDC_CHART_PAUSE, BST_CHECKED);
  SendDlgItemMessageA(page, IDC_CHART_VIEW, kv::kControlCommand, kv::kChartClear, 0);
  ShowPositions(page);
}

void CopyChart(HWND page) {
  const DWORD before = GetClipboardSequenceNumber();
  SendDlgItemMessageA(page, IDC_CHART_VIEW, WM_COPY, 0, MAKELPARAM(kv::kFieldWidth, kv::kFieldHeight));
  const bool copied = GetClipboardSequenceNumber() != before;
  kv::SetControlText(page, IDC_CHART_RESULT, copied ? IDS_CHART_COPIED : IDS_CHART_NOT_COPIED);
}

void OnInit(HWND page) {
  for (int i = 0; i < kv::kPointCount; ++i) CheckDlgButton(page, IDC_CHART_POINT + i, BST_CHECKED);
}

void OnTextsChanged(HWND page) {
  kv::SetControlText(page, IDC_CHART_RESULT, IDS_CHART_NOTHING_COPIED);
  kv::NameControl(page, IDC_CHART_VIEW, kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_CHART).c_str());
  ShowPositions(page);
}

void OnCommand(HWND page, int controlId) {
  switch (controlId) {
    case IDC_CHART_CLEAR: Clear(page); break;
    case IDC_CHART_COPY: CopyChart(page); break;
    case IDC_CHART_POINT:
    case IDC_CHART_POINT + 1:
    case IDC_CHART_POINT + 2:
    case IDC_CHART_POINT + 3: ShowPoints(page); break;
    default: break;
  }
}

}  // namespace

INT_PTR CALLBACK ChartPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_TIMER: OnTick(page); return TRUE;
    case WM_COMMAND: OnCommand(page, LOWORD(wParam)); return TRUE;
    case kv::kLanguageChanged: OnTextsChanged(page); return TRUE;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
