#include "camview/statistics_table.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "camera/noise.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"
#include "camview/resource_ids.h"
#include "camview/statistics.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr wchar_t kNone[] = L"\x2013";  // what was not measured

const kv::ListColumn kColumns[] = {
    {MAKEINTRESOURCEW(IDS_COLUMN_POINT), 50, DT_CENTER}, {MAKEINTRESOURCEW(IDS_COLUMN_SEEN), 75, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_RANGE), 90, DT_CENTER}, {MAKEINTRESOURCEW(IDS_COLUMN_PEAK), 90, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_SPREAD), 80, DT_RIGHT}, {MAKEINTRESOURCEW(IDS_COLUMN_NOISE), 80, DT_RIGHT}};

std::wstring NameOf(int channel) {
  return std::to_wstring(channel / 2 + 1) + (channel % 2 ? L" y" : L" x");
}

std::wstring SeenText(const camera::RecordSums& sums, int point) {
  if (sums.records == 0) return kNone;
  // Neither rounds up to 100 % nor down to 0 %.
  const double percent = camera::SeenShare(sums, point) * 100;
  const double shown = percent <= 0 || percent >= 100 ? percent : std::clamp(percent, 0.1, 99.9);
  return kv::NumberText(shown, 1) + L" %";
}

std::wstring NoiseText(const camera::CoordinateNoise& noise) {
  const camera::NoiseFigure figure = camera::NoiseOf(noise);
  if (figure.differences == 0) return kNone;
  return (figure.isBelow ? L"< " : L"") + kv::NumberText(figure.noise, 2);
}

std::wstring CellText(const camera::RecordSums& sums, int channel, int column) {
  const int point = channel / 2;
  const camera::PointSummary& summary = sums.points[point];
  const camera::Spread& spread = channel % 2 ? summary.y : summary.x;
  if (column == 0) return NameOf(channel);
  if (column == 1) return channel % 2 ? std::wstring() : SeenText(sums, point);
  if (summary.seen == 0 || (summary.seen < 2 && column > 2)) return kNone;
  switch (column) {
    case 2: return std::to_wstring(spread.lowest) + L" \x2013 " + std::to_wstring(spread.highest);
    case 3: return std::to_wstring(spread.highest - spread.lowest);
    case 4: return kv::NumberText(camera::Deviation(spread, summary.seen), 2);
    default: return NoiseText(channel % 2 ? sums.noise[point].y : sums.noise[point].x);
  }
}

}  // namespace

void DrawStatisticsRow(const DRAWITEMSTRUCT& item, const SelectionStatistics* statistics) {
  const auto text = [&](UINT row, int column) {
    if (statistics) return CellText(statistics->sums, static_cast<int>(row), column);
    return column == 0 ? NameOf(static_cast<int>(row)) : std::wstring();
  };
  // Larger than a list's usual text: all rows are always in view.
  kv::DrawListRow(item, kColumns, text, {}, static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10);
}

}  // namespace camview
