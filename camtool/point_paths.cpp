#include "camtool/point_paths.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "kv/framework/numbers.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

// ---- The built-in curves --------------------------------------------------------------------------------------------

namespace {

struct Curve {
  double centerX, centerY, radiusX, radiusY;  // camera units
  double turnsX, turnsY;                      // turns a minute
  double phase;                               // turns
  double hiddenFrom;                          // seconds into the cycle at which the point disappears
};

constexpr double kCycleSeconds = 24;
constexpr double kHiddenSeconds = 3;

constexpr Curve kCurves[kv::kPointCount] = {
    {512, 384, 440, 300, 6, 4, 0.00, 5},
    {320, 300, 250, 220, 9, 6, 0.25, 11},
    {720, 460, 240, 240, 7, 7, 0.50, 17},
    {512, 384, 180, 320, 5, 10, 0.75, 23},
};

double Wave(double turns) {
  return std::sin(2 * kv::kPi * turns);
}

bool IsHidden(const Curve& curve, double seconds) {
  return std::fmod(seconds + kCycleSeconds - curve.hiddenFrom, kCycleSeconds) < kHiddenSeconds;
}

}  // namespace

void PointsAt(double seconds, kv::CameraPoint (&points)[kv::kPointCount]) {
  for (int i = 0; i < kv::kPointCount; ++i) {
    const Curve& curve = kCurves[i];
    if (IsHidden(curve, seconds)) {
      points[i] = {kv::kNoPoint, kv::kNoPoint};
      continue;
    }
    const double minutes = seconds / 60;
    points[i] = {std::lround(curve.centerX + curve.radiusX * Wave(curve.turnsX * minutes + curve.phase)),
                 std::lround(curve.centerY + curve.radiusY * Wave(curve.turnsY * minutes))};
  }
}

// ---- Paths from a file ----------------------------------------------------------------------------------------------

namespace {

constexpr std::string_view kBlanks = " \t\r\"";

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> SplitColumns(std::string_view line) {
  // The separator depends on the spreadsheet's locale; a line with several kinds is split at the first of these.
  char separator = ',';
  for (const char candidate : {'\t', ';'}) {
    if (line.find(candidate) != line.npos) separator = candidate;
  }
  std::vector<std::string_view> columns;
  for (;;) {
    const size_t end = line.find(separator);
    columns.push_back(Trimmed(line.substr(0, end)));
    if (end == line.npos) return columns;
    line.remove_prefix(end + 1);
  }
}

bool ReadCoordinate(std::string_view text, LONG* coordinate, std::string* error) {
  double number = kv::kNoPoint;
  if (!text.empty() && !kv::ParseNumber(text, &number)) {
    *error = "\"" + std::string(text) + "\" is not a number";
    return false;
  }
  *coordinate = number >= 0 && number <= kv::kNoPoint ? std::lround(number) : -1;
  if (*coordinate >= 0) return true;
  *error = "\"" + std::string(text) + "\" is not within 0 to 1023";
  return false;
}

bool ReadRow(const std::vector<std::string_view>& columns, bool hasTimes, PathRow* row, std::string* error) {
  if (columns.size() > 2 * kv::kPointCount + (hasTimes ? 1 : 0)) {
    *error = "more than four points";
    return false;
  }
  if ((columns.size() % 2 == 1) != hasTimes) {
    *error = hasTimes ? "the time is missing, or a coordinate" : "a coordinate is missing";
    return false;
  }
  if (hasTimes && (!kv::ParseNumber(columns[0], &row->seconds) || row->seconds < 0 || row->seconds > 1e9)) {
    *error = "\"" + std::string(columns[0]) + "\" is not a time in seconds";
    return false;
  }
  std::ranges::fill(row->points, kv::CameraPoint{kv::kNoPoint, kv::kNoPoint});
  for (size_t i = hasTimes; i < columns.size(); ++i) {
    kv::CameraPoint& point = row->points[(i - hasTimes) / 2];
    if (!ReadCoordinate(columns[i], (i - hasTimes) % 2 ? &point.y : &point.x, error)) return false;
  }
  return true;
}

bool IsHeading(const std::vector<std::string_view>& columns) {
  double number = 0;
  return std::ranges::none_of(columns, [&](std::string_view text) { return kv::ParseNumber(text, &number); }) &&
         std::ranges::any_of(columns, [](std::string_view text) { return !text.empty(); });
}

bool AddRow(std::string_view line, PointPath* path, std::string* error) {
  const std::vector<std::string_view> columns = SplitColumns(line);
  if (path->rows.empty()) path->hasTimes = columns.size() % 2 == 1;
  PathRow row{};
  if (!ReadRow(columns, path->hasTimes, &row, error)) return false;
  if (!path->rows.empty() && path->hasTimes && row.seconds < path->rows.back().seconds) {
    *error = "the time is before that of the row above";
    return false;
  }
  path->rows.push_back(row);
  return true;
}

}  // namespace

bool ParsePath(std::string_view text, PointPath* path, std::string* error) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  bool mayBeHeading = true;
  for (long line = 1; !text.empty(); ++line) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view content = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (Trimmed(content).empty()) continue;
    if (std::exchange(mayBeHeading, false) && IsHeading(SplitColumns(content))) continue;
    if (!AddRow(content, path, error)) {
      *error = "line " + std::to_string(line) + ": " + *error;
      return false;
    }
  }
  if (!path->rows.empty()) return true;
  *error = "no points found";
  return false;
}

void PointsOnPath(const PointPath& path, double seconds, long record, kv::CameraPoint (&points)[kv::kPointCount]) {
  const size_t count = path.rows.size();
  size_t index = static_cast<size_t>(record) % count;
  if (path.hasTimes) {
    const double first = path.rows.front().seconds, last = path.rows.back().seconds;
    const double step = count > 1 ? last - path.rows[count - 2].seconds : 0;
    const double length = last - first + step;
    const double now = length > 0 ? first + std::fmod(seconds, length) : first;
    const auto next = std::ranges::upper_bound(path.rows, now, {}, &PathRow::seconds);
    index = next == path.rows.begin() ? 0 : static_cast<size_t>(next - path.rows.begin()) - 1;
  }
  std::copy(std::begin(path.rows[index].points), std::end(path.rows[index].points), std::begin(points));
}

}  // namespace camtool
