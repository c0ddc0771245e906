// Reads the samples of a strip chart back and saves them.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/framework/output_file.h"
#include "kv/toolkit/control_access.h"
#include "kv/toolkit/strip_charts.h"

namespace kv {

namespace {

bool Read(HWND chart, WPARAM code, int channel, void* item) {
  return SendMessageA(chart, kControlCommand, MAKEWPARAM(code | kCommandRead, channel),
                      reinterpret_cast<LPARAM>(item)) != 0;
}

void AddField(const std::string& text, std::string* line) {
  if (!line->empty()) *line += ',';
  if (text.find_first_of(",\"\n") == std::string::npos) {
    *line += text;
    return;
  }
  *line += '"';
  for (const char character : text) *line += character == '"' ? std::string("\"\"") : std::string(1, character);
  *line += '"';
}

std::string NumberField(double value) {
  char text[40] = "";
  if (std::isfinite(value)) FormatBoundedA(text, sizeof(text), "%.15g", value);
  return text;
}

struct Column {
  std::string name;
  std::vector<StripSample> samples;
  size_t next = 0;
};

std::vector<Column> ColumnsOf(HWND dialog, int id, HWND chart, const StripTimeRange* range) {
  std::vector<Column> columns;
  for (int i = 0; i < kStripChannels; ++i) {
    StripChannel info{};
    Column column;
    if (!Read(chart, kStripChannel, i, &info) || !GetStripChartSamples(dialog, id, i, range, &column.samples)) continue;
    column.name = info.name;
    if (*info.unit) column.name += std::string(" (") + info.unit + ")";
    columns.push_back(std::move(column));
  }
  return columns;
}

// The next row; empty after the last one.
std::string NextRow(std::vector<Column>* columns) {
  double time = HUGE_VAL;
  for (const Column& each : *columns) {
    if (each.next < each.samples.size()) time = std::min(time, each.samples[each.next].time);
  }
  if (time == HUGE_VAL) return {};
  std::string row = NumberField(time);
  for (Column& each : *columns) {
    const bool isHere = each.next < each.samples.size() && each.samples[each.next].time == time;
    AddField(isHere ? NumberField(each.samples[each.next++].value) : std::string(), &row);
  }
  return row;
}

}  // namespace

BOOL GetStripChartSamples(HWND dialog, int id, int channel, const StripTimeRange* range,
                          std::vector<StripSample>* samples) {
  HWND chart = ControlOfClass(dialog, id, kStripChartClass);
  const StripTimeRange all{-kStripMaxTime, kStripMaxTime}, wanted = range ? *range : all;
  StripReadBack item{.from = wanted.from, .to = wanted.to};
  if (!chart || !Read(chart, kStripReadBack, channel, &item)) return FALSE;
  samples->resize(item.count);
  item.capacity = item.count;
  item.samples = samples->data();
  return Read(chart, kStripReadBack, channel, &item);
}

BOOL SaveStripChartCsv(HWND dialog, int id, const wchar_t* path, const StripTimeRange* range) {
  constexpr size_t kBufferBytes = 1 << 16;
  HWND chart = ControlOfClass(dialog, id, kStripChartClass);
  SetLastError(ERROR_INVALID_PARAMETER);
  if (!chart || !IsReadableText(path)) return FALSE;
  std::vector<Column> columns = ColumnsOf(dialog, id, chart, range);
  std::string text = "s";
  for (const Column& column : columns) AddField(column.name, &text);
  OutputFile file;
  if (!file.Create(path)) return FALSE;
  for (std::string row = NextRow(&columns); !row.empty(); row = NextRow(&columns)) {
    text.append("\r\n").append(row);
    if (text.size() < kBufferBytes) continue;
    if (!file.Append(text)) return FALSE;
    text.clear();
  }
  return file.Append(text + "\r\n") && file.Publish();
}

}  // namespace kv
