#include "camview/playback.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "camera/text.h"
#include "camview/record_store.h"

namespace camview {

void Advance(Playback* playback, double clock) {
  if (playback->isPlaying) {
    playback->position += std::max(clock - playback->clock, 0.0) * playback->speed;
    if (playback->position >= playback->end) {
      playback->position = playback->end;
      playback->isPlaying = false;
    }
  }
  playback->clock = clock;
}

void Play(Playback* playback) {
  if (playback->position >= playback->end) playback->position = playback->begin;
  playback->isPlaying = playback->begin < playback->end;
}

void Pause(Playback* playback) {
  playback->isPlaying = false;
}

void Seek(Playback* playback, double position) {
  playback->position = std::clamp(position, playback->begin, std::max(playback->begin, playback->end));
}

void SetSpeed(Playback* playback, double speed) {
  playback->speed = std::clamp(speed, kSlowest, kFastest);
}

void Step(Playback* playback, const RecordStore& store, int by) {
  Pause(playback);
  if (store.IsEmpty()) return;
  const long long shown = store.At(playback->position);
  // Before the first record, the next one is the first.
  long long number = (shown < 0 ? store.First() - 1 : shown) + by;
  // Backwards from between two records, the first step goes to the record that is shown.
  if (by < 0 && shown >= 0 && store.Seconds(shown) < playback->position - 1e-6) ++number;
  Seek(playback, store.Seconds(std::clamp(number, store.First(), store.End() - 1)));
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

std::string FormatTime(double seconds, int decimals, char sign) {
  const double unit = std::pow(10.0, std::clamp(decimals, 0, 6));
  const auto units = std::llround(std::max(seconds, 0.0) * unit);
  const auto perSecond = static_cast<long long>(unit);
  const long long whole = units / perSecond;
  std::string text =
      whole >= 3600 ? camera::Format("%lld:%02lld", whole / 3600, whole / 60 % 60) : camera::Format("%lld", whole / 60);
  text += camera::Format(":%02lld", whole % 60);
  if (decimals > 0) text += camera::Format("%c%0*lld", sign, decimals, units % perSecond);
  return text;
}

}  // namespace camview
