#include "camview/statistics_table.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "camera/record_stream.h"
#include "camview/resource_ids.h"
#include "camview/statistics.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

const kv::ListColumn kColumns[] = {
    {MAKEINTRESOURCEW(IDS_COLUMN_POINT), 50, DT_CENTER},   {MAKEINTRESOURCEW(IDS_COLUMN_SEEN), 70, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_X), 90, DT_CENTER},       {MAKEINTRESOURCEW(IDS_COLUMN_Y), 90, DT_CENTER},
    {MAKEINTRESOURCEW(IDS_COLUMN_JITTER_X), 80, DT_RIGHT}, {MAKEINTRESOURCEW(IDS_COLUMN_JITTER_Y), 80, DT_RIGHT}};

std::wstring RangeText(const camera::Spread& spread) {
  return std::to_wstring(spread.lowest) + L" \x2013 " + std::to_wstring(spread.highest);
}

std::wstring CellText(const SelectionStatistics& statistics, int point, int column) {
  const camera::PointSummary& summary = statistics.sums.points[point];
  if (column == 0) return std::to_wstring(point + 1);
  if (column == 1) {
    if (statistics.sums.records == 0) return L"\x2013";
    // Neither rounds up to 100 % nor down to 0 %.
    const double percent = camera::SeenShare(statistics.sums, point) * 100;
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

}  // namespace

void DrawStatisticsRow(const DRAWITEMSTRUCT& item, const SelectionStatistics* statistics) {
  const auto text = [&](UINT row, int column) {
    if (statistics) return CellText(*statistics, static_cast<int>(row), column);
    return column == 0 ? std::to_wstring(row + 1) : std::wstring();
  };
  // Larger than a list's usual text: all rows are always in view.
  kv::DrawListRow(item, kColumns, text, {}, static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10);
}

}  // namespace camview
