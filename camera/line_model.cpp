#include "camera/line_model.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

namespace camera {

namespace {

constexpr size_t kWindowRecords = 256;
constexpr double kWindowSeconds = 8;  // a window with kMinWindowRecords is not longer
constexpr size_t kMinWindowRecords = 64;
constexpr size_t kMaxPending = 16;
constexpr int kMaxSkip = 1024;
constexpr double kGivenPower = 4;  // of a rate near the given one
// Arrivals that a USB adapter collects for 16 ms look like those of a camera of that rate.
constexpr double kAdapterRate = 62.5, kAdapterTolerance = 0.1;
constexpr size_t kStepRecords = 16;       // with steps of two or more that show another rate
constexpr double kTie = 0.02;             // for the new one, of two rates at which a record would be regular
constexpr double kSingleCoherence = 0.7;  // required to tell which records are lost
constexpr size_t kLateRecords = 16;       // after which late ones have been made up for
constexpr double kTurn = 2 * std::numbers::pi;

double Turns(double number) {
  return number - std::floor(number + 0.5);  // -0.5 to 0.5
}

// Rounds a number that is small enough for an int; std::round takes several times as long.
int Nearest(double number) {
  constexpr int kAbove = 1 << 20;
  return static_cast<int>(number + kAbove + 0.5) - kAbove;
}

// The unit vector at that fraction of a turn, with an error of 0.003; a record needs one for each window.
std::complex<float> UnitVector(double turns) {
  constexpr int kSteps = 1024;
  static const std::vector<std::complex<float>> table = [] {
    std::vector<std::complex<float>> vectors(kSteps);
    for (int i = 0; i < kSteps; ++i) vectors[i] = std::polar(1.0f, static_cast<float>(kTurn * i / kSteps));
    return vectors;
  }();
  return table[static_cast<unsigned>(static_cast<int>(turns * kSteps + 0.5)) % kSteps];
}

double CosineOf(double turns) {
  return UnitVector(turns - std::floor(turns)).real();
}

// Three records in the time of one have been collected by a program or adapter that was busy: their times show nothing.
bool IsCollected(const std::vector<double>& seconds, size_t i) {
  const size_t end = std::min(i + 3, seconds.size());
  for (size_t last = std::max<size_t>(i, 2); last < end; ++last) {
    if (seconds[last] - seconds[last - 2] < 1 / kMaxRecordRate) return true;
  }
  return false;
}

// The power of noise, by the number of windows, that the strongest of some thousand rates does not exceed.
double NoisePower(size_t windows) {
  const auto count = static_cast<double>(windows);
  return 1 + 8 / std::sqrt(count) + 6 / count;
}

}  // namespace

LineModel::LineModel(double rate) : givenRate_(rate) {}

void LineModel::AddRecord(double seconds, bool isAfterSilence) {
  if (isAfterSilence) CloseWindow();
  if (open_.seconds.empty()) open_.isAfterSilence = isAfterSilence || (windows_.empty() && pending_.empty());
  open_.seconds.push_back(seconds);
  const size_t count = open_.seconds.size();
  const bool isLong = count >= kMinWindowRecords && seconds - open_.seconds.front() >= kWindowSeconds;
  if (count >= kWindowRecords || isLong) CloseWindow();
}

void LineModel::Finish() {
  CloseWindow();
  if (!pending_.empty()) FindRate();
  FlushPending();
}

// ---- Finding the rate -----------------------------------------------------------------------------------------------

// The records' mean position within the period: amplitude 1 if they all arrive at the same position, 0 if anywhere.
LineModel::Wave LineModel::WaveOf(const std::vector<double>& seconds, double rate) {
  std::complex<float> sum = 0;
  size_t count = 0;
  for (size_t i = 0; i < seconds.size(); ++i) {
    if (IsCollected(seconds, i)) continue;
    sum += UnitVector((seconds[i] - seconds.front()) * rate);
    ++count;
  }
  return {std::abs(sum) / static_cast<double>(std::max<size_t>(count, 1)), std::arg(sum) / kTurn};
}

double LineModel::PowerAt(double rate) const {
  double power = 0, count = 0;
  for (const Times& times : pending_) {
    if (times.seconds.size() < kMinRecords) continue;
    const double amplitude = WaveOf(times.seconds, rate).amplitude;
    power += amplitude * amplitude * static_cast<double>(times.seconds.size());
    ++count;
  }
  return count > 0 ? power / count : 0;
}

// Records cannot overtake each other: hardly two of them arrive within the same period. Those of an adapter that
// collects several do.
bool LineModel::IsPlausible(double rate, double amplitude) const {
  if (givenRate_ > 0) return true;
  long long together = 0, all = 0;
  for (const Times& times : pending_) {
    const Wave wave = WaveOf(times.seconds, rate);
    double before = -1;
    for (size_t i = 0; i < times.seconds.size(); ++i) {
      if (IsCollected(times.seconds, i)) continue;
      const double number = std::round((times.seconds[i] - times.seconds.front()) * rate - wave.phase);
      together += number == before;
      ++all;
      before = number;
    }
  }
  const double share = static_cast<double>(together) / static_cast<double>(std::max(all, 1LL));
  return share <= (amplitude > 0.6 ? 0.05 : 0.4);
}

// Returns the lowest rate at which the records arrive about as regularly as at the best one: a multiple of the true
// rate is as regular. Near a given rate, returns the nearest one: where an adapter collects records, others are as
// regular. 0 = none.
double LineModel::BestRate(double from, double to, double step) const {
  const auto steps = static_cast<size_t>((to - from) / step) + 1;
  std::vector<double> powers(steps, 0.0);
  size_t windows = 0, records = 0;
  for (const Times& times : pending_) {
    const size_t count = times.seconds.size();
    if (count < kMinRecords) continue;
    ++windows;
    records += count;
    // Turning each record's vector from rate to rate needs no trigonometry.
    std::vector<std::complex<float>> vectors(count), turns(count);
    for (size_t i = 0; i < count; ++i) {
      const double time = times.seconds[i] - times.seconds.front();
      vectors[i] =
          std::polar(IsCollected(times.seconds, i) ? 0.0f : 1.0f, static_cast<float>(kTurn * Turns(time * from)));
      turns[i] = std::polar(1.0f, static_cast<float>(kTurn * Turns(time * step)));
    }
    for (double& power : powers) {
      float real = 0, imaginary = 0;
      for (size_t i = 0; i < count; ++i) {
        const float x = vectors[i].real(), y = vectors[i].imag();
        real += x;
        imaginary += y;
        vectors[i] = {x * turns[i].real() - y * turns[i].imag(), x * turns[i].imag() + y * turns[i].real()};
      }
      power += (real * real + imaginary * imaginary) / static_cast<double>(count);
    }
  }
  if (windows == 0) return 0;
  const double perWindow = static_cast<double>(records) / static_cast<double>(windows);
  std::vector<std::pair<double, double>> peaks;  // rate, power
  double highest = 0, highestRate = 0;
  for (size_t i = 0; i < steps; ++i) {
    const double power = powers[i] / static_cast<double>(windows);
    const bool isPeak = (i == 0 || powers[i - 1] <= powers[i]) && (i + 1 == steps || powers[i + 1] < powers[i]);
    if (!isPeak || power < (givenRate_ > 0 ? kGivenPower : NoisePower(windows))) continue;
    // The vertex of the parabola through three powers around it.
    double rate = from + static_cast<double>(i) * step;
    for (const double half : {step / 2, step / 4, step / 8}) {
      const double low = PowerAt(rate - half), middle = PowerAt(rate), high = PowerAt(rate + half);
      const double curve = low - 2 * middle + high;
      if (curve < 0) rate += std::clamp(half / 2 * (low - high) / curve, -half, half);
    }
    if (power > highest) highestRate = rate;
    highest = std::max(highest, power);
    if (IsPlausible(rate, std::sqrt(power / perWindow))) peaks.emplace_back(rate, power);
  }
  if (givenRate_ <= 0 && std::abs(highestRate - kAdapterRate) < kAdapterTolerance) return 0;
  double best = 0;
  for (const auto& [rate, power] : peaks) best = std::max(best, power);
  if (best < NoisePower(windows)) return 0;
  double found = 0;
  for (const auto& [rate, power] : peaks) {
    const bool isBetter = found == 0 || (givenRate_ > 0 && std::abs(rate - givenRate_) < std::abs(found - givenRate_));
    if (isBetter && power >= (givenRate_ > 0 ? 0.3 : 0.7) * best) found = rate;
  }
  return found;
}

bool LineModel::FindRate() {
  double fastest = 0, longest = 0;
  for (const Times& times : pending_) {
    const double seconds = times.seconds.back() - times.seconds.front();
    if (times.seconds.size() < kMinRecords || seconds <= 0) continue;
    fastest = std::max(fastest, static_cast<double>(times.seconds.size() - 1) / seconds);
    longest = std::max(longest, seconds);
  }
  if (longest <= 0) return false;
  // The camera sends at least as many records as arrive.
  const double from = givenRate_ > 0 ? givenRate_ * (1 - kGivenTolerance) : std::max(fastest * 0.97, kLowestRate);
  const double to = givenRate_ > 0 ? givenRate_ * (1 + kGivenTolerance) : kHighestRate;
  if (from >= to) return false;
  rate_ = BestRate(from, to, 0.4 / longest);
  if (rate_ <= 0) return false;
  coherence_ = 0;
  size_t records = 0;
  for (const Times& times : pending_) {
    const double amplitude = WaveOf(times.seconds, rate_).amplitude;
    coherence_ += amplitude * amplitude * static_cast<double>(times.seconds.size());
    records += times.seconds.size();
  }
  coherence_ = std::sqrt(coherence_ / static_cast<double>(records));
  return true;
}

// ---- Numbering the records ------------------------------------------------------------------------------------------

void LineModel::CloseWindow() {
  if (open_.seconds.empty()) return;
  Times times = std::exchange(open_, {});
  // A window in which the rate changes is divided where it does.
  while (pending_.empty() && rate_ > 0) {
    if (Follow(times)) return;
    size_t count = times.seconds.size() / 2;
    while (count >= kMinRecords && !Follow(times.First(count))) count /= 2;
    if (count < kMinRecords) {
      count = RecordsBeforeChange(times);
      const Times before = times.First(count);
      if (count > 0) AddRegular(before, WaveOf(before.seconds, rate_));
      times = times.Rest(count);
      break;
    }
    times = times.Rest(count);
  }
  if (windowsToSkip_ > 0) {
    --windowsToSkip_;
    AddIrregular(times);
    return;
  }
  pending_.push_back(std::move(times));
  // Each search takes as long as all windows before it, so it is done for 1, 2, 4, 8 and 16 windows.
  const size_t count = pending_.size();
  if ((count & (count - 1)) != 0) return;
  const bool isFound = FindRate();
  if (!isFound && count < kMaxPending) return;
  skip_ = isFound ? 0 : std::clamp(skip_ * 2, static_cast<int>(kMaxPending), kMaxSkip);
  windowsToSkip_ = skip_;
  FlushPending();
}

// Returns how many of the records still arrive at the times of the last window; 0 if all do.
size_t LineModel::RecordsBeforeChange(const Times& times) const {
  if (windows_.empty() || !windows_.back().isRegular || times.isAfterSilence) return 0;
  const Window& last = windows_.back();
  double gain = 0, best = 0;
  size_t same = 0;
  for (size_t i = 0; i < times.seconds.size(); ++i) {
    gain += CosineOf(last.phase + last.slope * (times.seconds[i] - last.from)) - last.coherence / 2;
    if (gain <= best) continue;
    best = gain;
    same = i + 1;
  }
  return same < times.seconds.size() ? same : 0;
}

void LineModel::FlushPending() {
  for (const Times& times : std::exchange(pending_, {})) Number(times);
}

void LineModel::Number(const Times& times) {
  if (rate_ > 0 && Follow(times)) return;
  if (rate_ <= 0 || times.seconds.size() < 2 * kMinRecords) {
    AddIrregular(times);
    return;
  }
  const size_t half = times.seconds.size() / 2;
  Number(times.First(half));
  Number(times.Rest(half));
}

// Numbers the records by the known rate. Returns false if they do not arrive at that rate.
bool LineModel::Follow(const Times& times) {
  const Wave wave = WaveOf(times.seconds, rate_);
  const auto count = static_cast<double>(times.seconds.size());
  const double power = wave.amplitude * wave.amplitude;
  if (times.seconds.size() >= kMinRecords) {  // fewer prove nothing against it
    const double usual = coherence_ * coherence_;
    if (power < std::max((coherence_ >= kFairCoherence ? 0.64 : 0.3) * usual, 3 / count)) return false;
    if (givenRate_ <= 0 && !HasSteps(times, wave)) return false;
  }
  AddRegular(times, wave);
  return true;
}

// Returns whether the records arrive neither faster than the known rate nor at a fraction of it, such as every second
// time: then the camera more probably sends at another rate.
bool LineModel::HasSteps(const Times& times, const Wave& wave) const {
  const double first = times.seconds.front();
  const auto count = static_cast<double>(times.seconds.size());
  if (count - 1 > 1.03 * rate_ * (times.seconds.back() - first) + 2) return false;
  int divisor = 0, before = Nearest(-wave.phase);
  for (size_t i = 1; i < times.seconds.size(); ++i) {
    const int number = Nearest((times.seconds[i] - first) * rate_ - wave.phase);
    if (divisor != 1) divisor = std::gcd(divisor, number - before);
    before = number;
    if (i % kStepRecords != 0) continue;
    if (divisor > 1) return false;
    divisor = 0;
  }
  return true;
}

void LineModel::AddRegular(const Times& times, const Wave& wave) {
  const Window* last = windows_.empty() ? nullptr : &windows_.back();
  const bool isJoined = last && !times.isAfterSilence;
  const bool isRegular = isJoined && last->isRegular;
  const bool isChange = isRegular && std::abs(last->slope / rate_ - 1) > kGivenTolerance;
  if (isChange && !last_.seconds.empty()) return AddFromChange(times, wave);
  const double from = times.seconds.front();
  const double before = last ? std::round(last->phase + last->slope * (last->to - last->from)) : -1;
  double phase = before + 1 - wave.phase;
  if (isJoined && last->isRegular && last->slope == rate_) {
    const double expected = last->phase + last->slope * (from - last->from);
    phase = std::round(expected + wave.phase) - wave.phase;
    if (last->records >= static_cast<int>(kMinRecords) && times.seconds.size() >= kMinRecords) {
      rate_ += 0.4 * (phase - expected) / std::max(from - last->from, 0.1);
    }
  } else if (isJoined) {
    phase += std::max(std::round((from - last->to) * rate_) - 1, 0.0);
  }
  windows_.push_back({from, times.seconds.back(), phase, rate_, static_cast<float>(wave.amplitude),
                      static_cast<int>(times.seconds.size()), true, isJoined});
  const bool isFull = last_.seconds.size() >= 2 * kWindowRecords && times.seconds.size() >= kMinWindowRecords;
  if (!isRegular || isChange || isFull || last_.seconds.empty()) {
    last_ = {{}, times.isAfterSilence};
    lastWindows_ = 0;
    lossesBefore_ = losses_.size();
  }
  last_.seconds.insert(last_.seconds.end(), times.seconds.begin(), times.seconds.end());
  ++lastWindows_;
  AddLosses(times);
}

// Adds the first window of a new rate, and divides it and the one before it where the rate most probably changed.
void LineModel::AddFromChange(const Times& times, const Wave& wave) {
  const Window old = windows_.back();
  Times all = std::exchange(last_, {});
  const double from = times.seconds.front();
  all.seconds.insert(all.seconds.end(), times.seconds.begin(), times.seconds.end());
  double gain = 0, best = 0;
  size_t change = 0;
  for (size_t i = 0; i < all.seconds.size(); ++i) {
    const double time = all.seconds[i];
    gain += CosineOf(old.phase + old.slope * (time - old.from)) - CosineOf((time - from) * rate_ - wave.phase) - kTie;
    if (gain <= best) continue;
    best = gain;
    change = i + 1;
  }
  windows_.resize(windows_.size() - lastWindows_);
  losses_.resize(lossesBefore_);
  const double rate = std::exchange(rate_, old.slope);
  const Times before = all.First(change);
  if (change > 0) AddRegular(before, WaveOf(before.seconds, rate_));
  last_ = {};
  rate_ = rate;
  if (change == all.seconds.size()) return;
  const Times after = all.Rest(change);
  AddRegular(after, WaveOf(after.seconds, rate_));
}

// Numbers the records consecutively; by a given rate if there is one.
void LineModel::AddIrregular(const Times& times) {
  const double from = times.seconds.front(), to = times.seconds.back();
  const Window* last = windows_.empty() ? nullptr : &windows_.back();
  const bool isJoined = last && !times.isAfterSilence, isGiven = givenRate_ > 0;
  const double before = last ? std::round(last->phase + last->slope * (last->to - last->from)) : -1;
  const double phase = isJoined && isGiven
                           ? last->phase + last->slope * (last->to - last->from) + (from - last->to) * givenRate_
                           : before + 1;
  const auto records = static_cast<double>(times.seconds.size());
  const double slope = isGiven ? givenRate_ : to > from ? (records - 1) / (to - from) : 0;
  windows_.push_back({from, to, phase, slope, 0, static_cast<int>(times.seconds.size()), isGiven, isJoined});
}

// Adds the losses of the last window.
void LineModel::AddLosses(const Times& times) {
  const Window& window = windows_.back();
  if (window.coherence < kSingleCoherence) return;
  const double base = std::floor(window.phase), phase = window.phase - base;
  const auto numberAt = [&](double time) { return Nearest(phase + window.slope * (time - window.from)); };
  const size_t count = times.seconds.size();
  // Each record's number less those of the records before it in the window: rises where records are missing.
  std::vector<int> excess(count);
  for (size_t i = 0; i < count; ++i) excess[i] = numberAt(times.seconds[i]) - static_cast<int>(i);
  double before = times.seconds.front();
  int level = excess.front();
  if (window.isJoined) {
    const Window& last = windows_[windows_.size() - 2];
    before = last.to;
    level = Nearest(std::round(last.phase + last.slope * (last.to - last.from)) - base) + 1;
  }
  for (size_t i = 0; i < count; before = times.seconds[i++]) {
    if (excess[i] == level) continue;
    // Records that are late leave numbers out, which those after them make up for.
    const auto soon = std::span(excess).subspan(i, std::min(kLateRecords, count - i));
    const auto [lowest, highest] = std::ranges::minmax(soon);
    const int lost = lowest - level;
    if (lost > 0 && losses_.size() < kMaxLosses) losses_.push_back({before, times.seconds[i], lost});
    hasMoreLosses_ |= lost > 0 && losses_.size() == kMaxLosses;
    level = std::clamp(level, lowest, highest);
  }
}

}  // namespace camera
