#include "tools/fake_camera/fake_frame.h"

#include <algorithm>
#include <cstdint>

namespace fakecamera {

namespace {

constexpr std::uint32_t kBars[] = {0xC0C0C0, 0xC0C000, 0x00C0C0, 0x00C000, 0xC000C0, 0xC00000, 0x0000C0};
constexpr int kBarCount = 7;

// Seven segments of a digit: top, upper left, upper right, middle, lower left, lower right, bottom.
constexpr std::uint8_t kSegments[10] = {0x77, 0x24, 0x5D, 0x6D, 0x2E, 0x6B, 0x7B, 0x25, 0x7F, 0x6F};

// Whether the digit's stroke covers a point of its box of 6 x 10 units.
bool IsStroke(int digit, int column, int row) {
  const std::uint8_t lit = kSegments[digit];
  const bool inner = column > 0 && column < 5;
  if (row == 0) return inner && (lit & 0x01);
  if (row == 9) return inner && (lit & 0x40);
  if (row == 4 || row == 5) return inner && (lit & 0x08);
  if (column == 0) return lit & (row < 4 ? 0x02 : 0x10);
  return column == 5 && (lit & (row < 4 ? 0x04 : 0x20));
}

bool IsCounter(LONG x, LONG y, int frame, LONG width, LONG height) {
  constexpr int kDigits = 5, kPitch = 8;
  const LONG unit = std::max<LONG>(1, height / 60);
  const LONG column = (x - (width - kDigits * kPitch * unit) / 2) / unit;
  const LONG row = (y - height * 13 / 16) / unit;
  if (x < (width - kDigits * kPitch * unit) / 2 || column >= kDigits * kPitch || y < height * 13 / 16 || row > 9) {
    return false;
  }
  for (LONG place = column / kPitch; place < kDigits - 1; ++place) frame /= 10;
  return column % kPitch < 6 && IsStroke(frame % 10, static_cast<int>(column % kPitch), static_cast<int>(row));
}

}  // namespace

std::uint32_t Pixel(LONG x, LONG y, int frame, LONG width, LONG height) {
  if (IsCounter(x, y, frame, width, height)) return 0xFFFFFF;
  if (y >= height * 3 / 4) return static_cast<std::uint32_t>(x * 96 / width) * 0x10101;
  return kBars[(x * kBarCount / width + frame / 8) % kBarCount];
}

}  // namespace fakecamera
