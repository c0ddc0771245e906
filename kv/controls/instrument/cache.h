// The caches of display instruments. All instruments of a thread share a device context, fonts and glyph outlines,
// which are created on first use and released when the thread ends. Each instrument has one bitmap.
#pragma once

#include <windows.h>

#include <memory>

#include "kv/controls/instrument/layout.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/guards.h"

namespace kv {

inline constexpr wchar_t kInstrumentFont[] = L"Arial Unicode MS";

// The calling thread's device context and shape buffer. Null when allocation fails; then nothing can be rendered, and
// the functions below must not be called.
struct DrawingTools {
  MemoryDc dc{nullptr};
  CoverageShape shape;
};
DrawingTools* InstrumentTools();

// `height` is that of the character cell; width 0 is the font's default. The cache owns the font, which is valid until
// 48 other fonts have been requested.
HFONT InstrumentFont(int height, int width, int weight);

// The outline of a bold character. With outlines, the letters of a compass card rotate smoothly without a font for each
// angle; large numbers are drawn faster, too. Null when the font has no outline, allocation fails, or more than 48
// characters have been requested.
const GlyphOutline* InstrumentGlyph(wchar_t character);

// The cache of one instrument.
struct InstrumentCache {
  Surface buffer;                       // of client size
  std::unique_ptr<DWORD[]> background;  // the pixels of the background layer, of the same size
  InstrumentParts parts;                // the parts that are drawn in the buffer
};

}  // namespace kv
