// The table of statistics for the marked stretch or the visible span.
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "camera/camera_record.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/statistics.h"
#include "camview/status_line.h"
#include "camview/view.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

constexpr double kDelaySeconds = 0.1;  // seconds; avoids computing each step while a mark is dragged or charts scroll

const kv::ListColumn kColumns[] = {
    {MAKEINTRESOURCEW(IDS_COLUMN_POINT), 50, DT_CENTER},   {MAKEINTRESOURCEW(IDS_COLUMN_SEEN), 70, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_X), 90, DT_CENTER},       {MAKEINTRESOURCEW(IDS_COLUMN_Y), 90, DT_CENTER},
    {MAKEINTRESOURCEW(IDS_COLUMN_JITTER_X), 80, DT_RIGHT}, {MAKEINTRESOURCEW(IDS_COLUMN_JITTER_Y), 80, DT_RIGHT}};

std::wstring RangeText(const camera::Spread& spread) {
  return std::to_wstring(spread.lowest) + L" \x2013 " + std::to_wstring(spread.highest);
}

std::wstring CellText(const StretchStatistics& statistics, int point, int column) {
  const camera::PointSummary& summary = statistics.points[point];
  if (column == 0) return std::to_wstring(point + 1);
  if (column == 1) {
    if (statistics.records == 0) return L"\x2013";
    // Neither rounds up to 100 % nor down to 0 %.
    const double percent = SeenShare(statistics, point) * 100;
    const double shown = percent <= 0 || percent >= 100 ? percent : std::clamp(percent, 0.1, 99.9);
    return kv::NumberText(shown, 1) + L" %";
  }
  if (summary.seen == 0) return L"\x2013";
  switch (column) {
    case 2: return RangeText(summary.x);
    case 3: return RangeText(summary.y);
    case 4: return kv::NumberText(camera::Deviation(summary.x, summary.seen), 2);
    default: return kv::NumberText(camera::Deviation(summary.y, summary.seen), 2);
  }
}

void Compute(View& view) {
  const RecordStore* store = RecordsOf(view);
  view.hasStatistics = store && !store->IsEmpty();
  std::wstring summary = L" ", counts = L" ";
  if (view.hasStatistics) {
    const kv::StripTimeRange shown = ShownSpan(view);
    const kv::StripTimeRange stretch = view.isMarked ? view.mark
                                                     : kv::StripTimeRange{std::max(shown.from, view.playback.begin),
                                                                          std::min(shown.to, view.playback.end)};
    view.statistics = ComputeStatistics(*store, stretch.from, stretch.to);
    summary = TextWith(view.isMarked ? IDS_STATISTICS_MARKED : IDS_STATISTICS_SHOWN, TimeAsText(stretch.from).c_str(),
                       TimeAsText(stretch.to).c_str(), kv::NumberText(stretch.to - stretch.from, 3).c_str());
    counts = TextWith(IDS_STATISTICS_COUNTS, kv::NumberText(static_cast<double>(view.statistics.records)).c_str(),
                      kv::NumberText(view.statistics.recordsPerSecond, 1).c_str(),
                      kv::NumberText(static_cast<double>(view.statistics.lostRecords)).c_str());
  }
  SetDlgItemTextW(view.window, IDC_SUMMARY, summary.c_str());
  SetDlgItemTextW(view.window, IDC_COUNTS, counts.c_str());
  kv::RedrawList(GetDlgItem(view.window, IDC_STATISTICS));
}

}  // namespace

void InitStatistics(HWND window) {
  const HWND list = GetDlgItem(window, IDC_STATISTICS);
  kv::AddListNavigation(list);
  SendMessageW(list, LB_SETCOUNT, kv::kPointCount, 0);
}

void RequestStatistics(View& view) {
  if (std::isnan(view.statisticsDue)) view.statisticsDue = camera::Now() + kDelaySeconds;
  kv::EnableControl(view.window, IDC_EXPORT, view.isMarked && !view.isExporting);
  UpdateTimer(view);
}

void TickStatistics(View& view) {
  if (std::isnan(view.statisticsDue) || camera::Now() < view.statisticsDue) return;
  view.statisticsDue = kNoTime;
  Compute(view);
}

INT_PTR DrawStatistics(const View& view, const DRAWITEMSTRUCT& item) {
  const auto text = [&](UINT row, int column) {
    if (view.hasStatistics) return CellText(view.statistics, static_cast<int>(row), column);
    return column == 0 ? std::to_wstring(row + 1) : std::wstring();
  };
  // Larger than a list's usual text: all rows are always in view.
  kv::DrawListRow(item, kColumns, text, {}, static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10);
  return TRUE;
}

}  // namespace camview
