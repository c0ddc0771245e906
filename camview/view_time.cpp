#include "camview/view_time.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "camera/text.h"
#include "camview/record_store.h"

namespace camview {

namespace {

// During playback, the position moves to this fraction of what the charts show, which then scroll.
constexpr double kPlayingPart = 0.85;

// A live port begins at the left edge of the charts, until they are full.
void ShowEnd(ViewTime* time) {
  if (time->showsAll) {
    // In steps, because the charts are drawn anew for each.
    constexpr double kStep = 1.1, kShortest = 10;
    const double length = std::max(time->end - time->begin, kShortest);
    const double shown = time->shown.Length();
    const bool fits =
        time->shown.from == time->begin && time->shown.to >= time->end && shown > 0 && shown <= length * kStep;
    if (!fits) time->shown = {time->begin, time->begin + length * kStep};
    return;
  }
  const double to = std::max(time->end, time->begin + time->liveSpan);
  time->shown = {to - time->liveSpan, to};
}

// Scrolls the charts to the position.
void ScrollToPosition(ViewTime* time) {
  const TimeRange shown = time->shown;
  const double length = shown.Length(), position = time->position;
  const double last = time->isPlaying ? shown.from + length * kPlayingPart : shown.to;
  if (position >= shown.from && position <= last) return;
  if (time->showsAll) return ShowSeconds(time, 0);
  const bool isNext = time->isPlaying && position > last && position < last + length;
  const double part = isNext ? kPlayingPart : 0.5;
  ShowRange(time, {position - length * part, position + length * (1 - part)});
}

void MoveTo(ViewTime* time, double position) {
  Freeze(time, true);
  time->hovered = kNoTime;
  time->position = std::clamp(position, time->begin, time->end);
  ScrollToPosition(time);
}

}  // namespace

void Restart(ViewTime* time, TimeRange whole, bool isLive) {
  *time = {
      .speed = time->speed, .clock = time->clock, .isLive = isLive, .liveSpan = time->liveSpan, .showsAll = !isLive};
  Grow(time, whole);
  time->position = whole.from;
  if (isLive || whole.Length() <= 0) return ShowEnd(time);
  ShowSeconds(time, 0);
}

void Grow(ViewTime* time, TimeRange whole) {
  time->begin = whole.from;
  time->end = std::max(whole.from, whole.to);
  if (!time->IsFollowing()) return;
  time->position = time->end;
  ShowEnd(time);
}

void SetLive(ViewTime* time, bool isLive) {
  if (time->isLive == isLive) return;
  time->isLive = isLive;
  if (isLive) {
    time->isFrozen = time->isPlaying || time->position < time->end;
    if (!time->showsAll) time->liveSpan = std::max(time->shown.Length(), kShortestShown);
  } else if (time->showsAll) {
    ShowSeconds(time, 0);
  }
}

void Advance(ViewTime* time, double clock) {
  if (time->isPlaying) {
    time->position += std::max(clock - time->clock, 0.0) * time->speed;
    if (time->position >= time->end) {
      time->position = time->end;
      time->isPlaying = time->isFrozen = false;
    }
    ScrollToPosition(time);
  }
  time->clock = clock;
}

void Play(ViewTime* time) {
  time->hovered = kNoTime;
  if (time->position >= time->end) time->position = time->begin;
  time->isPlaying = time->begin < time->end;
}

void Pause(ViewTime* time) {
  time->isPlaying = false;
}

void Seek(ViewTime* time, double position) {
  // What grows may have grown since the user has seen its end.
  constexpr double kSinceSeen = 0.1;
  if (time->isLive && position >= time->end - kSinceSeen) return Freeze(time, false);
  MoveTo(time, position);
}

void SetSpeed(ViewTime* time, double speed) {
  time->speed = std::clamp(speed, kSlowest, kFastest);
}

void Step(ViewTime* time, const RecordStore& store, int by) {
  Pause(time);
  if (store.IsEmpty()) return;
  const long long shown = store.At(time->position);
  // Before the first record, the next one is the first.
  long long number = (shown < 0 ? store.First() - 1 : shown) + by;
  // Backwards from between two records, the first step goes to the record that is shown.
  if (by < 0 && shown >= 0 && store.Seconds(shown) < time->position - 1e-6) ++number;
  MoveTo(time, store.Seconds(std::clamp(number, store.First(), store.End() - 1)));
}

void Freeze(ViewTime* time, bool freeze) {
  if (!time->isLive || time->isFrozen == freeze) return;
  time->isFrozen = freeze;
  time->hovered = kNoTime;
  if (freeze) return;
  time->isPlaying = false;
  Grow(time, {time->begin, time->end});
}

void Select(ViewTime* time, TimeRange selection) {
  time->selection = {std::clamp(selection.from, time->begin, time->end),
                     std::clamp(selection.to, time->begin, time->end)};
}

void SelectAndShow(ViewTime* time, TimeRange selection) {
  constexpr double kMargin = 0.05;  // at each side, so that its ends are seen
  MoveTo(time, selection.from);
  Select(time, selection);
  const double margin = time->selection->Length() * kMargin;
  ShowRange(time, {time->selection->from - margin, time->selection->to + margin});
}

void SetCursorB(ViewTime* time, double at) {
  time->cursorB = std::clamp(at, time->begin, time->end);
}

void ShowRange(ViewTime* time, TimeRange range) {
  time->showsAll = false;
  const double length = std::max(range.Length(), kShortestShown);
  if (time->isLive) time->liveSpan = length;
  if (time->IsFollowing()) return ShowEnd(time);
  range.to = std::min(range.to, std::max(time->end, time->begin + length));
  range.from = range.to - length;
  if (range.from < time->begin) range = {time->begin, time->begin + length};
  time->shown = range;
}

void ShowSeconds(ViewTime* time, double seconds) {
  if (seconds <= 0) {
    time->showsAll = true;
    if (time->IsFollowing()) return ShowEnd(time);
    time->shown = {time->begin, std::max(time->end, time->begin + kShortestShown)};
    return;
  }
  ShowRange(time, {time->position - seconds / 2, time->position + seconds / 2});
}

void ShowByUser(ViewTime* time, TimeRange range) {
  constexpr double kRounding = 1e-6;
  time->showsAll = !time->IsFollowing() && range.from <= time->begin && range.to >= time->end;
  if (time->IsFollowing() && range.to >= time->end - kRounding) {
    time->liveSpan = std::max(range.Length(), kShortestShown);
    return ShowEnd(time);
  }
  const double hovered = time->hovered;
  Freeze(time, true);
  // Another time is now under the pointer.
  if (!std::isnan(hovered) && time->shown.Length() > 0) {
    const double part = (hovered - time->shown.from) / time->shown.Length();
    time->hovered = std::clamp(range.from + part * range.Length(), time->begin, time->end);
  }
  if (time->isLive) time->liveSpan = range.Length();
  time->shown = range;
}

bool ParseTime(std::string_view text, double* seconds) {
  const size_t begin = text.find_first_not_of(' ');
  if (begin == text.npos) return false;
  text = text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
  double total = 0;
  for (int parts = 1;; ++parts) {
    const size_t colon = text.find(':');
    const bool isLast = colon == text.npos;
    std::string part(text.substr(0, colon));
    std::ranges::replace(part, ',', '.');
    const bool isNumber = part.find_first_not_of(isLast ? "0123456789." : "0123456789") == part.npos &&
                          part.find_first_of("0123456789") != part.npos && std::ranges::count(part, '.') <= 1;
    const double value = std::strtod(part.c_str(), nullptr);
    if (!isNumber || (parts > 1 && value >= 60)) return false;
    total = total * 60 + value;
    if (isLast) break;
    if (parts == 3) return false;
    text.remove_prefix(colon + 1);
  }
  *seconds = total;
  return std::isfinite(total);
}

bool ParseTimeRange(std::string_view text, TimeRange* range) {
  for (const std::string_view sign : {"-", "\xE2\x80\x93", "..", "+"}) {
    const size_t at = text.find(sign);
    if (at == text.npos) continue;
    TimeRange parsed;
    if (!ParseTime(text.substr(0, at), &parsed.from) || !ParseTime(text.substr(at + sign.size()), &parsed.to))
      return false;
    if (sign == "+") parsed.to += parsed.from;
    *range = parsed;
    return true;
  }
  return false;
}

std::string FormatTime(double seconds, int decimals) {
  const double unit = std::pow(10.0, std::clamp(decimals, 0, 6));
  const auto units = std::llround(std::max(seconds, 0.0) * unit);
  const auto perSecond = static_cast<long long>(unit);
  const long long whole = units / perSecond;
  std::string text =
      whole >= 3600 ? camera::Format("%lld:%02lld", whole / 3600, whole / 60 % 60) : camera::Format("%lld", whole / 60);
  text += camera::Format(":%02lld", whole % 60);
  if (decimals > 0) text += camera::Format(".%0*lld", decimals, units % perSecond);
  return text;
}

}  // namespace camview
