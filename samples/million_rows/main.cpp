// A million rows in a dialog that scales: keyboard and wheel, one selected row, and sorting by a click on the header.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "ids.h"
#include "kv/kv.h"

namespace {

constexpr UINT kRows = 1000000;

struct Reading {
  double values[3];  // number, degrees Celsius, percent
};

constexpr kv::ListColumn kColumns[] = {
    {L"Reading", 120, DT_RIGHT}, {L"Temperature (°C)", 160, DT_RIGHT}, {L"Humidity (%)", 140, DT_RIGHT}};

std::vector<Reading> readings;
kv::ListSorting sorting{.column = 0};

void MakeReadings() {
  std::mt19937 random(1);
  for (double number = 1; number <= kRows; ++number) {
    readings.push_back({number, random() % 600 / 10.0 - 20, random() % 1001 / 10.0});
  }
}

std::wstring CellText(UINT row, int column) {
  wchar_t text[16];
  kv::FormatBounded(text, sizeof(text), column == 0 ? L"%.0f" : L"%.1f", readings[row].values[column]);
  return text;
}

void SortByClick(HWND list) {
  sorting = kv::NextSorting(sorting, kv::ClickedListColumn(list, kColumns));
  std::ranges::stable_sort(readings, [](const Reading& a, const Reading& b) {
    const double first = a.values[sorting.column], second = b.values[sorting.column];
    return sorting.descending ? second < first : first < second;
  });
  kv::RedrawList(list);
}

void ShowSelection(HWND dialog) {
  const UINT row = kv::SelectedListRow(GetDlgItem(dialog, IDC_READINGS));
  if (row == kv::kNoRow) return;
  wchar_t text[80];
  kv::FormatBounded(text, sizeof(text), L"Row %u of %u: reading %.0f", row + 1, kRows, readings[row].values[0]);
  SetDlgItemTextW(dialog, IDC_STATUS, text);
}

INT_PTR CALLBACK Readings(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  HWND list = GetDlgItem(dialog, IDC_READINGS);
  switch (message) {
    case WM_INITDIALOG:
      kv::AddListNavigation(list);
      SendMessageA(list, LB_SETCOUNT, kRows, 0);
      return TRUE;
    case WM_DRAWITEM:
      kv::DrawListRow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam), kColumns, CellText, sorting);
      return TRUE;
    case WM_COMMAND:
      if (HIWORD(wParam) == kv::kListHeader) SortByClick(list);
      ShowSelection(dialog);
      return FALSE;
    default: return FALSE;
  }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  MakeReadings();
  return kv::RunDialog(
      instance,
      {.templateName = L"READINGS", .procedure = Readings, .positionName = "Samples.Readings", .version = L"1.0"});
}
