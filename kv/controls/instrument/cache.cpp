#include "kv/controls/instrument/cache.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "kv/framework/glyph_outline.h"
#include "kv/framework/guards.h"
#include "kv/framework/per_thread.h"

namespace kv {

namespace {

struct CachedFont {
  OwnedFont font = OwnedFont();
  int height = 0, width = 0, weight = 0;
  DWORD lastUse = 0;
};

struct CachedGlyph {
  wchar_t character = 0;
  std::unique_ptr<GlyphOutline> outline;
};

struct SharedByThread : DrawingTools {
  std::array<CachedFont, 48> fonts;
  std::array<CachedGlyph, 48> glyphs;
  DWORD uses = 0;
};

}  // namespace

DrawingTools* InstrumentTools() {
  return OfThread<SharedByThread>();
}

HFONT InstrumentFont(int height, int width, int weight) {
  SharedByThread& shared = *OfThread<SharedByThread>();
  ++shared.uses;
  CachedFont* oldest = shared.fonts.data();
  for (CachedFont& cached : shared.fonts) {
    if (cached.font && cached.height == height && cached.width == width && cached.weight == weight) {
      cached.lastUse = shared.uses;
      return cached.font;
    }
    if (cached.lastUse < oldest->lastUse) oldest = &cached;
  }
  oldest->font.Reset(CreateFontW(std::max(height, 1), std::max(width, 0), 0, 0, weight, FALSE, FALSE, FALSE,
                                 DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                                 VARIABLE_PITCH | FF_SWISS, kInstrumentFont));
  oldest->height = height;
  oldest->width = width;
  oldest->weight = weight;
  oldest->lastUse = shared.uses;
  return oldest->font;
}

const GlyphOutline* InstrumentGlyph(wchar_t character) {
  for (CachedGlyph& cached : OfThread<SharedByThread>()->glyphs) {
    if (!cached.outline) {
      cached.outline.reset(new (std::nothrow) GlyphOutline);
      cached.character = character;
      if (cached.outline) OutlineOfCharacter(kInstrumentFont, FW_BOLD, character, cached.outline.get());
    }
    if (cached.character == character)
      return cached.outline && cached.outline->contours ? cached.outline.get() : nullptr;
  }
  return nullptr;
}

}  // namespace kv
