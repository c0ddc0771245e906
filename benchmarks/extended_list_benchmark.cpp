// Measures redraws of the extended list: each requests one header and one screenful of rows, with a hundred rows or ten
// million, at the beginning, the middle and the end; horizontal scrolling requests none.
//
//   extended_list_benchmark [REDRAWS]
//
// Each line: the scroll position, the rows requested by one redraw, its median and slowest time.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "camera/ports.h"
#include "kv/lists/extended_list.h"

namespace {

constexpr int kWidth = 1000, kHeight = 700, kColumns = 8, kColumnWidth = 120;

long rowsAsked = 0;

void DrawRow(const DRAWITEMSTRUCT& item) {
  ++rowsAsked;
  for (int i = 0; i < kColumns; ++i) {
    wchar_t text[32];
    const int length = _snwprintf(text, ARRAYSIZE(text), L"%u", item.itemID * kColumns + i);
    ExtTextOutW(item.hDC, i * kColumnWidth, item.rcItem.top, 0, nullptr, text, length, nullptr);
  }
}

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_MEASUREITEM: return TRUE;  // the default row height
    case WM_DRAWITEM: DrawRow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

void Measure(HWND list, const char* what, int redraws, UINT message, WPARAM wParam) {
  std::vector<double> times;
  rowsAsked = 0;
  for (int i = 0; i < redraws; ++i) {
    const double start = camera::Now();
    SendMessageA(list, message, wParam, 0);
    GdiFlush();
    times.push_back((camera::Now() - start) * 1000);
  }
  std::ranges::sort(times);
  std::printf("%-12s %5.1f rows requested   median %7.3f ms   slowest %7.3f ms\n", what,
              static_cast<double>(rowsAsked) / redraws, times[times.size() / 2], times.back());
}

void MeasureList(HWND list, UINT rowCount, int redraws) {
  SendMessageA(list, LB_SETCOUNT, rowCount, 0);
  SendMessageA(list, WM_SIZE, SIZE_RESTORED, 0);
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_RANGE};
  GetScrollInfo(list, SB_VERT, &bar);
  std::printf("%u rows\n", rowCount);
  SetScrollPos(list, SB_VERT, 0, FALSE);
  Measure(list, "  beginning", redraws, WM_VSCROLL, SB_ENDSCROLL);
  SetScrollPos(list, SB_VERT, bar.nMax / 2, FALSE);
  Measure(list, "  middle", redraws, WM_VSCROLL, SB_ENDSCROLL);
  SetScrollPos(list, SB_VERT, bar.nMax, FALSE);
  Measure(list, "  end", redraws, WM_VSCROLL, SB_ENDSCROLL);
  Measure(list, "  sideways", redraws, WM_HSCROLL, SB_THUMBPOSITION);
}

}  // namespace

int main(int argc, char** argv) {
  const int redraws = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 200;
  HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSA parentClass{};
  parentClass.lpfnWndProc = ParentProcedure;
  parentClass.hInstance = instance;
  parentClass.lpszClassName = "kvBenchmarkParent";
  if (!RegisterClassA(&parentClass) || !kv::RegisterExtendedListClass(instance, TRUE)) return 1;
  HWND parent = CreateWindowA(parentClass.lpszClassName, "extended list", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight,
                              nullptr, nullptr, instance, nullptr);
  HWND list = CreateWindowA(kv::kExtendedListClass, "", WS_CHILD | WS_VISIBLE | WS_HSCROLL | WS_VSCROLL, 0, 0, kWidth,
                            kHeight, parent, nullptr, instance, nullptr);
  if (!list) return 1;
  for (UINT rowCount : {100u, 10000000u}) MeasureList(list, rowCount, redraws);
  DestroyWindow(parent);
  return 0;
}
