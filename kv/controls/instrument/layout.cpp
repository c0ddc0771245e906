#include "kv/controls/instrument/layout.h"

#include <algorithm>
#include <cstring>

#include "kv/controls/instrument_block.h"

namespace kv {

namespace {

long long AreaOf(const RECT& area) {
  return static_cast<long long>(area.right - area.left) * (area.bottom - area.top);
}

// Two rectangles that nearly fill their union are drawn faster as one.
bool ShouldMerge(const RECT& first, const RECT& second) {
  RECT both;
  UnionRect(&both, &first, &second);
  return AreaOf(both) * 3 <= (AreaOf(first) + AreaOf(second)) * 4;
}

}  // namespace

void InstrumentParts::Add(const RECT& place, DWORD hash) {
  if (count_ < kMaxParts) parts_[count_] = {place, hash};
  count_ = std::min(count_ + 1, kMaxParts + 1);
}

void DirtyRects::Add(RECT area) {
  if (IsRectEmpty(&area)) return;
  // A merged rectangle may have to be merged with another one.
  for (int i = 0; i < count_;) {
    const bool full = count_ == static_cast<int>(areas_.size());
    if (full || ShouldMerge(areas_[i], area)) {
      UnionRect(&area, &area, &areas_[i]);
      areas_[i] = areas_[--count_];
      i = 0;
    } else {
      ++i;
    }
  }
  areas_[count_++] = area;
}

DirtyRects ChangedRects(const InstrumentParts& before, const InstrumentParts& after, const RECT& area) {
  DirtyRects dirty;
  if (!before.complete() || !after.complete()) {
    dirty.Add(area);
    return dirty;
  }
  const auto old = before.all(), now = after.all();
  for (size_t i = 0; i < std::max(old.size(), now.size()); ++i) {
    const bool both = i < old.size() && i < now.size();
    if (both && old[i].hash == now[i].hash && EqualRect(&old[i].place, &now[i].place)) continue;
    for (const auto& parts : {old, now}) {
      RECT seen;
      if (i < parts.size() && IntersectRect(&seen, &parts[i].place, &area)) dirty.Add(seen);
    }
  }
  return dirty;
}

DWORD HashOf(const void* data, size_t size) {
  DWORD hash = 2166136261u;
  for (size_t i = 0; i < size; i += sizeof(DWORD)) {
    DWORD word;
    std::memcpy(&word, static_cast<const BYTE*>(data) + i, sizeof(word));
    hash = (hash ^ word) * 16777619u;
    hash ^= hash >> 15;  // include the high bits
  }
  return hash;
}

const ModeRenderer& RendererOf(DWORD style) {
  switch (style & kInstrumentModeBits) {
    case kModeDigital: return kDigitalRenderer;
    case kModeSegmentBar: return kSegmentBarRenderer;
    case kModeCompass: return kCompassRenderer;
    case kModeCenterBar: return kCenterBarRenderer;
    default: return kGaugeRenderer;
  }
}

}  // namespace kv
