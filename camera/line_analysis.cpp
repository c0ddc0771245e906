#include "camera/line_analysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "camera/camera_port.h"
#include "camera/camera_record.h"

namespace camera {

// ---- Baud rate of a camera ------------------------------------------------------------------------------------------

namespace {

constexpr size_t kMinBytes = 24;
constexpr size_t kMinTextBytes = 12;
constexpr int kModelRecords = 100;
// The maximum divergence of received bytes from the model, in nats; random bytes and plain text exceed 4.
constexpr double kMaxDistance = 1.2;
constexpr double kUnknownByte = 1e-4;

using Shares = std::array<double, 256>;

Shares SharesOf(std::string_view bytes) {
  Shares shares{};
  for (const char byte : bytes) shares[static_cast<unsigned char>(byte)] += 1.0 / static_cast<double>(bytes.size());
  return shares;
}

// Byte frequencies of records with varied digits, received one by one at another rate, as from a camera that pauses
// between them.
Shares SharesOfRecords(int sentRate, int receiverRate) {
  std::mt19937 random(1);
  std::string received;
  for (int i = 0; i < kModelRecords; ++i) {
    kv::CameraPoint points[kv::kPointCount];
    for (kv::CameraPoint& point : points) {
      const bool isHidden = random() % 4 == 0;
      point.x = isHidden ? kv::kNoPoint : static_cast<LONG>(random() % kv::kFieldWidth);
      point.y = isHidden ? kv::kNoPoint : static_cast<LONG>(random() % kv::kFieldHeight);
    }
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    received += ReceiveAtRate(std::string_view(record, sizeof(record)), sentRate, receiverRate);
  }
  return SharesOf(received);
}

// The Kullback-Leibler divergence of `seen` from `model`: 0 for equal frequencies.
double Distance(const Shares& seen, const Shares& model) {
  double distance = 0;
  for (size_t i = 0; i < seen.size(); ++i) {
    if (seen[i] > 0) distance += seen[i] * std::log(seen[i] / std::max(model[i], kUnknownByte));
  }
  return distance;
}

// Returns the level of the line (true = idle) during the sender's bit number `bit`.
bool LevelAt(std::string_view sent, std::int64_t bit) {
  const auto index = static_cast<size_t>(bit / 10);
  if (index >= sent.size()) return true;
  const int position = static_cast<int>(bit % 10);
  if (position == 0) return false;
  return position == 9 || ((static_cast<unsigned char>(sent[index]) >> (position - 1)) & 1);
}

}  // namespace

std::string ReceiveAtRate(std::string_view sent, int sentRate, int receiverRate) {
  // In units in which a bit of either side, and half of it, are integers.
  const std::int64_t sentBit = 2LL * receiverRate, receiverBit = 2LL * sentRate;
  const auto bits = static_cast<std::int64_t>(sent.size()) * 10;
  const auto level = [&](std::int64_t time) { return LevelAt(sent, time / sentBit); };
  std::string received;
  for (std::int64_t bit = 0; bit < bits;) {
    if (LevelAt(sent, bit)) {
      ++bit;
      continue;
    }
    std::int64_t sample = bit * sentBit + receiverBit / 2;
    int byte = 0;
    for (int i = 0; i < 8; ++i) byte |= level(sample += receiverBit) << i;
    received += static_cast<char>(byte);
    // Continues at the middle of the stop bit or, if it is missing, when the line is idle again.
    bit = (sample + receiverBit) / sentBit;
    while (bit < bits && !LevelAt(sent, bit)) ++bit;
  }
  return received;
}

std::vector<int> GuessRates(std::string_view received, int receiverRate) {
  if (received.size() < kMinBytes) return {};
  const Shares seen = SharesOf(received);
  std::vector<std::pair<double, int>> likely;
  for (const int rate : kUsualRates) {
    if (rate == receiverRate) continue;
    const double distance = Distance(seen, SharesOfRecords(rate, receiverRate));
    if (distance < kMaxDistance) likely.emplace_back(distance, rate);
  }
  std::ranges::sort(likely);
  std::vector<int> rates;
  rates.reserve(likely.size());
  for (const auto& [distance, rate] : likely) rates.push_back(rate);
  return rates;
}

bool LooksLikeRecords(std::string_view bytes) {
  if (bytes.size() < kMinTextBytes || bytes.find_first_not_of("0123456789, +-\r\n") != bytes.npos) return false;
  size_t commas = 0, strange = 0, before = bytes.npos;
  for (size_t at = bytes.find(','); at != bytes.npos; before = at, at = bytes.find(',', at + 1)) {
    ++commas;
    // Commas are five bytes apart within a record, and eleven from one record to the next.
    if (before != bytes.npos && at - before != 5 && at - before != 11) ++strange;
  }
  return commas >= 2 && strange == 0;
}

bool LooksLikeText(std::string_view bytes) {
  const auto prints = std::ranges::count_if(bytes, [](unsigned char byte) {
    return (byte >= ' ' && byte < 0x7F) || byte == '\r' || byte == '\n' || byte == '\t';
  });
  return !bytes.empty() && static_cast<double>(prints) >= 0.9 * static_cast<double>(bytes.size());
}

// ---- Probability that the button finds the camera -------------------------------------------------------------------

namespace {

constexpr double kReadGap = 0.005;
constexpr int kReadBytes = 64;
constexpr double kReadTimeout = kv::kReplyTimeoutMs / 1000.0;

struct Read {
  int bytes;
  double end;
};

// Returns the read that starts with the bytes of `first`.
Read ReadFrom(std::span<const Arrival> arrivals, size_t first) {
  int bytes = 0;
  for (size_t i = first;; ++i) {
    bytes += arrivals[i].bytes;
    if (bytes >= kReadBytes) return {kReadBytes, arrivals[i].seconds};
    const bool isLast = i + 1 == arrivals.size();
    if (isLast || arrivals[i + 1].seconds - arrivals[i].seconds > kReadGap) {
      return {bytes, arrivals[i].seconds + kReadGap};
    }
  }
}

}  // namespace

double DetectionProbability(std::span<const Arrival> arrivals, double from, double to) {
  double found = 0, all = 0, before = from;
  for (size_t i = 0; i < arrivals.size(); ++i) {
    // All reads that start between the previous arrival and this one return the same bytes; those that start too early
    // time out.
    const double now = arrivals[i].seconds;
    const Read read = ReadFrom(arrivals, i);
    // A read that is truncated by the end of the time is not counted.
    if (read.end > to) break;
    all += now - before;
    if (read.bytes > static_cast<int>(kv::kSilentPortBytes)) {
      found += std::max(0.0, now - std::max(before, read.end - kReadTimeout));
    }
    before = now;
  }
  return all > 0 ? found / all : 0;
}

}  // namespace camera
