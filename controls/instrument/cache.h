// What a display instrument keeps from one rendering to the next, so that a new value costs only what moved. One
// control owns it, and only that control's thread uses it: nothing here is shared.
#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <span>

#include "framework/canvas.h"
#include "framework/glyph_outline.h"
#include "framework/guards.h"

namespace kv {

// The instruments' fonts, made when they are first asked for.
class InstrumentFonts {
 public:
  // `height` is that of the character cell; width 0 is the font's own. The font stays the keeper's, and is good until
  // sixteen others have been asked for.
  HFONT Get(int height, int width, int weight);

 private:
  struct KeptFont {
    OwnedFont font = OwnedFont();
    int height = 0, width = 0, weight = 0;
    DWORD lastUse = 0;
  };
  std::array<KeptFont, 16> fonts_;
  DWORD uses_ = 0;
};

// Outlines of single characters, read when they are first asked for. A compass card turns at every step: as outlines
// its letters do so smoothly and need no font for every angle. Large numbers cost less this way, too.
class InstrumentGlyphs {
 public:
  // Null when the font has no such outline, memory is short, or more than two dozen characters were asked for.
  const GlyphOutline* Get(wchar_t character);

 private:
  struct KeptGlyph {
    wchar_t character = 0;
    std::unique_ptr<GlyphOutline> outline;
  };
  std::array<KeptGlyph, 24> glyphs_;
};

// A part of a value layer: where it stands, and a number that changes with what it looks like.
struct InstrumentPart {
  RECT place;
  DWORD look;
};

// The parts of a value layer in their order. Both lists of an instrument whose face stayed have the same parts in the
// same order; parts may come and go at the end.
class InstrumentParts {
 public:
  static constexpr int kMost = 128;
  // One part more than can be held makes the list incomplete.
  void Add(const RECT& place, DWORD look);
  void Clear() { count_ = 0; }
  bool complete() const { return count_ <= kMost; }
  std::span<const InstrumentPart> all() const { return {parts_.data(), static_cast<size_t>(count_)}; }

 private:
  std::array<InstrumentPart, kMost> parts_;
  int count_ = 0;
};

// A few rectangles that do not overlap and together hold all that was added.
class Damage {
 public:
  void Add(RECT area);
  const RECT* begin() const { return areas_.data(); }
  const RECT* end() const { return areas_.data() + count_; }

 private:
  std::array<RECT, 6> areas_;
  int count_ = 0;
};

// What has to be drawn anew of `area` when the parts of a value layer change.
Damage DamageBetween(const InstrumentParts& before, const InstrumentParts& after, const RECT& area);

// A number for what something looks like, from all of its bytes.
DWORD LookOf(const void* data, size_t size, DWORD seed = 2166136261u);
template <class Item>
DWORD LookOf(const Item& item) {
  return LookOf(&item, sizeof(item));
}

struct InstrumentKeep {
  Surface buffer, face;  // of client size
  MemoryDc dc{nullptr};
  CoverageShape shape;
  InstrumentFonts fonts;
  InstrumentGlyphs glyphs;
  InstrumentParts parts;  // that the buffer shows
};

}  // namespace kv
