#include "controls/instrument/cache.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "controls/instrument/view.h"
#include "framework/glyph_outline.h"

namespace kv {

namespace {

long long AreaOf(const RECT& area) {
  return static_cast<long long>(area.right - area.left) * (area.bottom - area.top);
}

RECT UnionOf(const RECT& first, const RECT& second) {
  return {std::min(first.left, second.left), std::min(first.top, second.top), std::max(first.right, second.right),
          std::max(first.bottom, second.bottom)};
}

// Two places that overlap or nearly fill their union are cheaper in one.
bool BelongTogether(const RECT& first, const RECT& second) {
  RECT common;
  return IntersectRect(&common, &first, &second) ||
         AreaOf(UnionOf(first, second)) * 3 <= (AreaOf(first) + AreaOf(second)) * 4;
}

}  // namespace

HFONT InstrumentFonts::Get(int height, int width, int weight) {
  ++uses_;
  KeptFont* oldest = fonts_.data();
  for (KeptFont& kept : fonts_) {
    if (kept.font && kept.height == height && kept.width == width && kept.weight == weight) {
      kept.lastUse = uses_;
      return kept.font;
    }
    if (kept.lastUse < oldest->lastUse) oldest = &kept;
  }
  oldest->font.Reset(CreateFontW(std::max(height, 1), std::max(width, 0), 0, 0, weight, FALSE, FALSE, FALSE,
                                 DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                                 VARIABLE_PITCH | FF_SWISS, kInstrumentFont));
  oldest->height = height;
  oldest->width = width;
  oldest->weight = weight;
  oldest->lastUse = uses_;
  return oldest->font;
}

const GlyphOutline* InstrumentGlyphs::Get(wchar_t character) {
  for (KeptGlyph& kept : glyphs_) {
    if (!kept.outline) {
      kept.outline.reset(new (std::nothrow) GlyphOutline);
      kept.character = character;
      if (kept.outline) OutlineOfCharacter(kInstrumentFont, FW_BOLD, character, kept.outline.get());
    }
    if (kept.character == character) return kept.outline && kept.outline->figures ? kept.outline.get() : nullptr;
  }
  return nullptr;
}

void InstrumentParts::Add(const RECT& place, DWORD look) {
  if (count_ < kMost) parts_[count_] = {place, look};
  count_ = std::min(count_ + 1, kMost + 1);
}

void Damage::Add(RECT area) {
  if (IsRectEmpty(&area)) return;
  // What it takes up grows, and may then belong together with another.
  for (int i = 0; i < count_;) {
    const bool full = count_ == static_cast<int>(areas_.size());
    if (full || BelongTogether(areas_[i], area)) {
      area = UnionOf(area, areas_[i]);
      areas_[i] = areas_[--count_];
      i = 0;
    } else {
      ++i;
    }
  }
  areas_[count_++] = area;
}

Damage DamageBetween(const InstrumentParts& before, const InstrumentParts& after, const RECT& area) {
  Damage damage;
  if (!before.complete() || !after.complete()) {
    damage.Add(area);
    return damage;
  }
  const auto add = [&](const InstrumentPart& part) {
    RECT seen;
    if (IntersectRect(&seen, &part.place, &area)) damage.Add(seen);
  };
  const auto old = before.all(), now = after.all();
  for (size_t i = 0; i < std::max(old.size(), now.size()); ++i) {
    const bool same =
        i < old.size() && i < now.size() && old[i].look == now[i].look && EqualRect(&old[i].place, &now[i].place);
    if (!same && i < old.size()) add(old[i]);
    if (!same && i < now.size()) add(now[i]);
  }
  return damage;
}

DWORD LookOf(const void* data, size_t size, DWORD seed) {
  const auto* bytes = static_cast<const BYTE*>(data);
  for (size_t i = 0; i < size; ++i) seed = (seed ^ bytes[i]) * 16777619u;
  return seed;
}

}  // namespace kv
