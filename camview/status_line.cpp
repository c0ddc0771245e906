#include "camview/status_line.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "camera/events.h"
#include "camera/text.h"
#include "camview/live_source.h"
#include "camview/recording_follower.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/view_time.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

COLORREF ColorOf(StatusMark mark) {
  if (kv::IsHighContrast()) return GetSysColor(COLOR_BTNTEXT);
  switch (mark) {
    case StatusMark::kGood: return RGB(20, 140, 50);
    case StatusMark::kWarning: return RGB(205, 125, 0);
    case StatusMark::kError:
    case StatusMark::kRecording: return RGB(205, 25, 25);
    default: return GetSysColor(COLOR_GRAYTEXT);
  }
}

// Check mark, ring, exclamation mark in a triangle, cross in a square, disc.
void DrawMark(kv::Canvas& canvas, StatusMark mark, kv::PointD at, double r, COLORREF background) {
  const COLORREF color = ColorOf(mark);
  switch (mark) {
    case StatusMark::kNone: return;
    case StatusMark::kGood:
      kv::FillDisc(canvas, at, r, color);
      kv::FillLine(canvas, {at.x - r * 0.5, at.y}, {at.x - r * 0.1, at.y + r * 0.42}, r * 0.3, background);
      kv::FillLine(canvas, {at.x - r * 0.15, at.y + r * 0.45}, {at.x + r * 0.5, at.y - r * 0.4}, r * 0.3, background);
      return;
    case StatusMark::kWaiting:
      kv::FillDisc(canvas, at, r, color);
      kv::FillDisc(canvas, at, r * 0.62, background);
      return;
    case StatusMark::kWarning: {
      const std::array<kv::PointD, 3> corners{
          {{at.x, at.y - r}, {at.x + r * 1.1, at.y + r * 0.9}, {at.x - r * 1.1, at.y + r * 0.9}}};
      kv::FillPolygon(canvas, corners, color);
      kv::FillLine(canvas, {at.x, at.y - r * 0.4}, {at.x, at.y + r * 0.3}, r * 0.28, background);
      kv::FillLine(canvas, {at.x, at.y + r * 0.45}, {at.x, at.y + r * 0.72}, r * 0.28, background);
      return;
    }
    case StatusMark::kError: {
      const double s = r * 0.9, c = r * 0.45;
      const std::array<kv::PointD, 4> corners{
          {{at.x - s, at.y - s}, {at.x + s, at.y - s}, {at.x + s, at.y + s}, {at.x - s, at.y + s}}};
      kv::FillPolygon(canvas, corners, color);
      kv::FillLine(canvas, {at.x - c, at.y - c}, {at.x + c, at.y + c}, r * 0.28, background);
      kv::FillLine(canvas, {at.x - c, at.y + c}, {at.x + c, at.y - c}, r * 0.28, background);
      return;
    }
    case StatusMark::kRecording: kv::FillDisc(canvas, at, r * 0.9, color); return;
  }
}

// A count with a singular or plural text.
std::wstring CountedText(long long count, UINT one, UINT many) {
  return count == 1 ? kv::ResourceText(one) : kv::TextWith(many, kv::NumberText(static_cast<double>(count)));
}

void AddCounted(std::wstring* text, long long count, UINT one, UINT many) {
  if (count > 0) *text += L" " + CountedText(count, one, many);
}

// Why a recording has no end.
std::wstring DescribeMissingEnd(const LoadedRecording& recording, const std::wstring& why) {
  switch (recording.following) {
    case FollowState::kGrowing: return L" " + kv::ResourceText(IDS_FILE_GROWING);
    case FollowState::kGone: return L" " + kv::ResourceText(IDS_FILE_GONE);
    case FollowState::kReplaced: return L" " + kv::ResourceText(IDS_FILE_REPLACED);
    case FollowState::kFailed: return L" " + kv::TextWith(IDS_FILE_RETRIED, why);
    default: return recording.isTruncated ? L" " + kv::ResourceText(IDS_FILE_TRUNCATED) : std::wstring();
  }
}

// With the decimal sign of the language.
std::wstring InLanguage(const std::string& number) {
  std::wstring text = camera::Wide(number);
  if (const std::wstring sign = kv::DecimalSign(); !sign.empty()) std::ranges::replace(text, L'.', sign[0]);
  return text;
}

std::wstring NameOfFile(const std::string& path) {
  return kv::FileNameOf(camera::Wide(path).c_str());
}

}  // namespace

void DrawStatusLine(const DRAWITEMSTRUCT& item, const StatusLine& line) {
  const RECT& area = item.rcItem;
  const SIZE size{area.right - area.left, area.bottom - area.top};
  kv::Surface surface;
  const kv::MemoryDc memory(item.hDC);
  static kv::CoverageShape shape;
  if (!surface.Create(size)) return;
  {
    kv::Canvas canvas(memory, surface, shape);
    const COLORREF background = GetSysColor(COLOR_BTNFACE);
    kv::FillArea(canvas, {0, 0, size.cx, size.cy}, background);
    const double radius = size.cy * 0.36;
    DrawMark(canvas, line.mark, {size.cy * 0.5 + 1, size.cy * 0.5}, radius, background);
    const bool strong = line.mark == StatusMark::kRecording;
    const kv::OwnedFont font = kv::MakeFont(kv::TextHeightOf(GetParent(item.hwndItem)), strong ? FW_BOLD : FW_NORMAL);
    const kv::SelectedObject selected(canvas.dc(), font);
    SetBkMode(canvas.dc(), TRANSPARENT);
    SetTextColor(canvas.dc(), strong ? ColorOf(line.mark) : GetSysColor(COLOR_BTNTEXT));
    const LONG left = line.mark == StatusMark::kNone ? 2 : size.cy * 5 / 4;
    kv::DrawFitted(canvas.dc(), line.text, {left, 0, size.cx, size.cy}, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
  }
  const kv::SelectedObject selected(memory, surface.bitmap());
  BitBlt(item.hDC, area.left, area.top, size.cx, size.cy, memory, 0, 0, SRCCOPY);
}

std::wstring RecordsAsText(long long count) {
  return CountedText(count, IDS_RECORDS_ONE, IDS_RECORDS);
}

std::wstring BytesAsText(long long count) {
  return CountedText(count, IDS_EVENT_BYTES_ONE, IDS_EVENT_BYTES);
}

std::wstring ClockAsText(std::uint64_t fileTime) {
  const FILETIME utc{static_cast<DWORD>(fileTime), static_cast<DWORD>(fileTime >> 32)};
  SYSTEMTIME universal{}, local{};
  if (!FileTimeToSystemTime(&utc, &universal) || !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local))
    return {};
  return kv::DateText(local) + L" " + kv::TimeText(local, true);
}

std::wstring TimeAsText(double seconds, int decimals) {
  return InLanguage(FormatTime(seconds, decimals));
}

std::wstring RateAsText(double rate) {
  return rate > 0 ? InLanguage(camera::Format("%.6g", rate)) : std::wstring();
}

std::wstring LengthAsText(double seconds) {
  constexpr double kMinute = 60;
  if (seconds >= kMinute) return TimeAsText(std::floor(seconds), 0);
  return kv::TextWith(IDS_SECONDS, kv::NumberText(std::floor(std::max(seconds, 0.0))));
}

StatusLine DescribeRecording(const LoadedRecording& recording, const StatusLine& figures) {
  const std::wstring name = NameOfFile(recording.path), why = kv::ErrorText(recording.systemError);
  const auto rejected = [&](UINT id) { return StatusLine{StatusMark::kError, kv::TextWith(id, name, why)}; };
  StatusLine line{StatusMark::kGood, {}};
  switch (recording.outcome) {
    case LoadOutcome::kUnreadable: return rejected(IDS_FILE_UNREADABLE);
    case LoadOutcome::kEmpty: return rejected(IDS_FILE_EMPTY);
    case LoadOutcome::kForeign: return rejected(IDS_FILE_FOREIGN);
    case LoadOutcome::kOtherVersion: return rejected(IDS_FILE_OTHER_VERSION);
    case LoadOutcome::kComplete: break;
    case LoadOutcome::kCanceled: line.text = kv::ResourceText(IDS_FILE_CANCELED) + L" "; break;
    case LoadOutcome::kReadFailed: line.text = kv::TextWith(IDS_FILE_READ_FAILED, why) + L" "; break;
    case LoadOutcome::kTooLong: line.text = kv::ResourceText(IDS_FILE_TOO_LONG) + L" "; break;
    case LoadOutcome::kOutOfMemory: line.text = kv::ResourceText(IDS_FILE_NO_MEMORY) + L" "; break;
  }
  const bool isComplete = recording.outcome == LoadOutcome::kComplete;
  const std::wstring missing = isComplete ? DescribeMissingEnd(recording, why) : std::wstring();
  if (recording.records == 0) {
    StatusLine none = rejected(IDS_FILE_NO_RECORDS);
    none.text += missing;
    return none;
  }
  const std::wstring records = RecordsAsText(recording.records), seconds = TimeAsText(recording.seconds, 1);
  line.text += figures.text.empty() ? kv::TextWith(IDS_FILE_WHOLE, records, seconds)
                                    : kv::TextWith(IDS_FILE_WHOLE_LINE, records, seconds, figures.text);
  if (recording.header.startTime > 0) {
    line.text += L" " + kv::TextWith(IDS_RECORDED_AT, static_cast<int>(recording.header.port),
                                     ClockAsText(recording.header.startTime));
  }
  const size_t whole = line.text.size();
  if (!recording.hasHeader) line.text += L" " + kv::ResourceText(IDS_FILE_NO_HEADER);
  AddCounted(&line.text, recording.damageCount, IDS_FILE_DAMAGED_ONE, IDS_FILE_DAMAGED);
  AddCounted(&line.text, recording.malformedSections, IDS_FILE_MALFORMED_ONE, IDS_FILE_MALFORMED);
  AddCounted(&line.text, recording.invalidRecords, IDS_FILE_INVALID_ONE, IDS_FILE_INVALID);
  if (recording.following != FollowState::kGrowing) line.text += missing;
  if (line.text.size() > whole || !isComplete || figures.mark == StatusMark::kWarning) line.mark = StatusMark::kWarning;
  if (recording.following == FollowState::kGrowing) line.text += missing;
  return line;
}

StatusLine DescribeLive(const LiveStatus& status) {
  const std::wstring since = LengthAsText(status.now - status.since);
  const auto line = [&](StatusMark mark, UINT id) { return StatusLine{mark, kv::TextWith(id, status.port, since)}; };
  switch (status.state) {
    case LiveState::kOpening: return line(StatusMark::kWaiting, IDS_LIVE_OPENING);
    case LiveState::kAbsent: return line(StatusMark::kWarning, IDS_LIVE_ABSENT);
    case LiveState::kBusy:
      if (status.holder.empty()) return line(StatusMark::kError, IDS_LIVE_BUSY);
      return {StatusMark::kError, kv::TextWith(IDS_LIVE_BUSY_WITH, status.port, camera::Wide(status.holder))};
    case LiveState::kAccessDenied: return line(StatusMark::kError, IDS_LIVE_DENIED);
    case LiveState::kUnusable: return {StatusMark::kError, kv::TextWith(IDS_LIVE_UNUSABLE, status.port, status.error)};
    case LiveState::kGone: return line(StatusMark::kWarning, IDS_LIVE_GONE);
    case LiveState::kSilent: return line(StatusMark::kWarning, IDS_LIVE_SILENT);
    case LiveState::kMalformed: return line(StatusMark::kWarning, IDS_LIVE_MALFORMED);
    case LiveState::kDark: return line(StatusMark::kWarning, IDS_LIVE_DARK);
    case LiveState::kRecords: break;
  }
  return {StatusMark::kGood, kv::TextWith(IDS_LIVE_RECORDS, status.port, kv::NumberText(status.recordsPerSecond))};
}

StatusLine DescribeLiveRecording(const LiveRecording& recording) {
  const std::wstring name = NameOfFile(recording.path), length = LengthAsText(recording.seconds);
  switch (recording.state) {
    case LiveRecordingState::kNone: return {};
    case LiveRecordingState::kOn: return {StatusMark::kRecording, kv::TextWith(IDS_RECORDING_TO, name, length)};
    case LiveRecordingState::kFailed:
      return {StatusMark::kError, kv::TextWith(IDS_RECORDING_FAILED, name, kv::ErrorText(recording.systemError))};
    case LiveRecordingState::kComplete: break;
  }
  if (recording.hasKeptFile) return {StatusMark::kWarning, kv::TextWith(IDS_RECORDED_NOTHING, name)};
  return {StatusMark::kNone, kv::TextWith(IDS_RECORDED_TO, name, length)};
}

std::wstring DescribeEvent(const camera::Event& event) {
  const std::wstring length = kv::NumberText(event.to - event.from, 3);
  const std::wstring amount = kv::NumberText(static_cast<double>(event.amount));
  switch (event.kind) {
    case camera::EventKind::kSilence: return kv::TextWith(IDS_EVENT_SILENCE, length);
    case camera::EventKind::kLoss: return kv::TextWith(IDS_EVENT_LOSS, length, amount);
    case camera::EventKind::kMalformed: return kv::TextWith(IDS_EVENT_MALFORMED, length, amount);
    case camera::EventKind::kDamage: return kv::TextWith(IDS_EVENT_DAMAGE, length, BytesAsText(event.amount));
    case camera::EventKind::kUnseen: return kv::TextWith(IDS_EVENT_UNSEEN, length, event.point + 1);
  }
  return {};
}

}  // namespace camview
