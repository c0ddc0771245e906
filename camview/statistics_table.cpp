#include "camview/statistics_table.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "camera/line_model.h"
#include "camera/noise.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"
#include "camview/resource_ids.h"
#include "camview/statistics.h"
#include "camview/status_line.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr wchar_t kNone[] = L"\x2013";  // what was not measured

const kv::ListColumn kColumns[] = {
    {MAKEINTRESOURCEW(IDS_COLUMN_POINT), 54, DT_CENTER}, {MAKEINTRESOURCEW(IDS_COLUMN_SEEN), 75, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_RANGE), 90, DT_CENTER}, {MAKEINTRESOURCEW(IDS_COLUMN_PEAK), 86, DT_RIGHT},
    {MAKEINTRESOURCEW(IDS_COLUMN_SPREAD), 80, DT_RIGHT}, {MAKEINTRESOURCEW(IDS_COLUMN_NOISE), 80, DT_RIGHT}};

std::wstring NameOf(int channel) {
  return std::to_wstring(channel / 2 + 1) + (channel % 2 ? L" y" : L" x");
}

std::wstring SeenText(const camera::RecordSums& sums, int point) {
  const double share = camera::SeenShare(sums, point);
  return share < 0 ? kNone : kv::NumberText(camera::PercentOf(share), 1) + L" %";
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

std::wstring CountText(long long count) {
  return kv::NumberText(static_cast<double>(std::max(count, 0LL)));
}

// `isShort`: without range and share.
std::wstring LossesAsText(const camera::LineFigures& line, bool isShort) {
  const std::wstring lost = CountText(line.lost);
  const double percent = 100 * static_cast<double>(std::max(line.lost, 0LL)) /
                         static_cast<double>(std::max(line.lost + line.records, 1LL));
  switch (line.basis) {
    case camera::LossBasis::kTooFew: return kv::ResourceText(IDS_LOST_TOO_FEW);
    case camera::LossBasis::kIrregular: return kv::ResourceText(IDS_LOST_IRREGULAR);
    case camera::LossBasis::kGiven:
      if (!isShort && line.lostAtLeast != line.lostAtMost) break;
      return kv::TextWith(IDS_LOST_GIVEN, lost, kv::NumberText(percent, 1));
    case camera::LossBasis::kEstimated: break;
  }
  if (line.mayLoseRegularly) return kv::TextWith(IDS_LOST_MAY_BE_REGULAR, lost);
  if (line.lostAtMost <= 0) return kv::ResourceText(IDS_LOST_NONE);
  if (line.lost <= 0) return kv::TextWith(IDS_LOST_AT_MOST, CountText(line.lostAtMost));
  if (isShort || line.lostAtLeast == line.lostAtMost) return kv::TextWith(IDS_LOST_ABOUT, lost);
  return kv::TextWith(IDS_LOST_BETWEEN, lost, CountText(line.lostAtLeast), CountText(line.lostAtMost));
}

}  // namespace

std::wstring CountsAsText(const camera::LineFigures& line) {
  if (line.seconds <= 0) return RecordsAsText(line.records);
  return kv::TextWith(IDS_STATISTICS_COUNTS, RecordsAsText(line.records), kv::NumberText(line.recordsPerSecond, 1)) +
         L"; " + LossesAsText(line, false);
}

std::wstring SilencesAsText(const camera::LineFigures& line) {
  if (line.silences == 0) return kv::ResourceText(IDS_SILENCES_NONE);
  const std::wstring all = kv::NumberText(line.silentSeconds, 3), at = TimeAsText(line.longestSilenceFrom, 1);
  const std::wstring percent = kv::NumberText(line.seconds > 0 ? 100 * line.silentSeconds / line.seconds : 0, 1);
  if (line.silences == 1) return kv::TextWith(IDS_SILENCES_ONE, all, percent, at);
  return kv::TextWith(IDS_SILENCES, kv::NumberText(static_cast<double>(line.silences)), all, percent,
                      kv::NumberText(line.longestSilence, 3), at);
}

StatusLine DescribeLine(const camera::LineFigures& line) {
  const bool isWhole = line.lostAtLeast <= 0 && line.silences == 0;
  StatusLine described{isWhole ? StatusMark::kGood : StatusMark::kWarning,
                       line.basis == camera::LossBasis::kTooFew ? L"" : LossesAsText(line, true)};
  if (line.silences == 0) return described;
  const std::wstring seconds = kv::NumberText(line.silentSeconds, 1), count = CountText(line.silences);
  if (!described.text.empty()) described.text += L"; ";
  described.text += line.silences == 1 ? kv::TextWith(IDS_SILENCES_SHORT_ONE, seconds)
                                       : kv::TextWith(IDS_SILENCES_SHORT, count, seconds);
  return described;
}

void DrawStatisticsRow(const DRAWITEMSTRUCT& item, const SelectionStatistics* statistics) {
  const auto text = [&](UINT row, int column) {
    if (statistics) return CellText(statistics->sums, static_cast<int>(row), column);
    return column == 0 ? NameOf(static_cast<int>(row)) : std::wstring();
  };
  // Larger than a list's usual text: all rows are always in view.
  kv::DrawListRow(item, kColumns, text, {}, static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10);
}

}  // namespace camview
