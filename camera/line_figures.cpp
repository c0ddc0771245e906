// The figures of a line model.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

#include "camera/line_model.h"

namespace camera {

namespace {

constexpr double kClearCoherence = 0.8;
constexpr double kChangeRecords = 20;  // how exactly the place is found where the rate changes
constexpr double kMaxIrregularShare = 0.1;

}  // namespace

const LineModel::Window* LineModel::WindowAt(double seconds) const {
  const auto next = std::ranges::upper_bound(windows_, seconds, {}, &Window::from);
  return next == windows_.begin() ? nullptr : &*std::prev(next);
}

// Returns the number of the record that arrived at that time.
long long LineModel::NumberAt(double seconds) const {
  const Window* window = WindowAt(seconds);
  double number =
      window ? std::round(window->phase + window->slope * (std::min(seconds, window->to) - window->from)) : -1;
  if (window && window != &windows_.back()) return static_cast<long long>(number);
  // Records that are not evaluated yet are numbered consecutively.
  const auto count = [&](const std::vector<double>& times) {
    return static_cast<double>(std::ranges::upper_bound(times, seconds) - times.begin());
  };
  for (const Times& times : pending_) number += count(times.seconds);
  return static_cast<long long>(number + count(open_.seconds));
}

// Widens the bounds by what is uncertain in this share (0 to 1) of a window.
void LineModel::AddBounds(const Window& window, double share, LineFigures* figures) const {
  const double records = window.records * share;
  const double capacity = (window.to - window.from) * share * kHighestRate;
  if (!window.isRegular) {
    figures->lostAtMost += std::llround(std::max(capacity - records, 0.0));
    return;
  }
  const double unsure = window.coherence == 0 ? 0.005 * window.slope * (window.to - window.from) * share : 0;
  figures->lostAtLeast -= std::llround(std::ceil(unsure));
  figures->lostAtMost += std::llround(std::ceil(unsure));
  if (givenRate_ > 0) return;
  const double multiple = std::floor(kHighestRate / window.slope);
  if (multiple < 2) return;
  figures->mayLoseRegularly = true;
  figures->lostAtMost += std::llround((multiple - 1) * records);
}

LineFigures LineModel::Figures(const Selection& selection) const {
  LineFigures figures;
  const double from = selection.from, to = selection.to;
  figures.seconds = std::max(to - from, 0.0);
  figures.records = selection.records;
  if (figures.seconds > 0) figures.recordsPerSecond = static_cast<double>(figures.records) / figures.seconds;
  for (auto silence = std::ranges::upper_bound(silences_, from, {}, &Silence::to);
       silence != silences_.end() && silence->from < to; ++silence) {
    const double begin = std::max(silence->from, from), seconds = std::min(silence->to, to) - begin;
    if (seconds <= 0) continue;
    ++figures.silences;
    figures.silentSeconds += seconds;
    if (seconds <= figures.longestSilence) continue;
    figures.longestSilence = seconds;
    figures.longestSilenceFrom = begin;
  }
  if (selection.records <= 0) return figures;
  const long long before = selection.before >= 0 ? NumberAt(selection.before) : NumberAt(selection.first) - 1;
  figures.lost = NumberAt(selection.last) - before - selection.records;
  long long bound = 0;
  double irregular = 0, all = 0, rates = 0, regular = 0;
  for (auto window = std::ranges::lower_bound(windows_, from, {}, &Window::to);
       window != windows_.end() && window->from <= to; ++window) {
    const double seconds = window->to - window->from;
    const double share =
        seconds > 0 ? std::max(std::min(window->to, to) - std::max(window->from, from), 0.0) / seconds : 1;
    AddBounds(*window, share, &figures);
    const double records = window->records * share;
    all += records;
    irregular += window->isRegular ? 0 : records;
    regular += window->isRegular ? records : 0;
    rates += window->isRegular ? records * window->slope : 0;
    const bool isFirst = !window->isJoined || window == windows_.begin();
    if (isFirst || !window->isRegular) {
      bound += window->coherence >= kClearCoherence ? 0 : window->coherence >= kFairCoherence ? 1 : 2;
    }
    const double change = isFirst ? 0 : std::abs(window->slope / std::prev(window)->slope - 1);
    if (window->isRegular && change > kGivenTolerance)
      bound +=
          std::llround(kChangeRecords / std::max(std::min(window->coherence, std::prev(window)->coherence), 0.15f));
  }
  figures.lostAtLeast = std::max(figures.lostAtLeast + figures.lost - bound, 0LL);
  figures.lostAtMost = std::max(figures.lostAtMost + figures.lost + bound, figures.lostAtLeast);
  if (regular > 0) figures.rate = givenRate_ > 0 && coherence_ == 0 ? givenRate_ : rates / regular;
  const bool isIrregular = irregular > kMaxIrregularShare * all;
  figures.basis = regular == 0 && all < kMinRecords ? LossBasis::kTooFew
                  : isIrregular                     ? LossBasis::kIrregular
                  : givenRate_ > 0                  ? LossBasis::kGiven
                                                    : LossBasis::kEstimated;
  return figures;
}

}  // namespace camera
