// What display instruments keep from one rendering to the next. What costs GDI objects is shared by all instruments of
// a thread: a device context, fonts and the outlines of characters, made when they are first asked for and kept until
// the thread ends. An instrument itself has one bitmap.
#pragma once

#include <windows.h>

#include <memory>

#include "controls/instrument/layout.h"
#include "framework/canvas.h"
#include "framework/coverage.h"
#include "framework/glyph_outline.h"
#include "framework/guards.h"

namespace kv {

inline constexpr wchar_t kInstrumentFont[] = L"Arial Unicode MS";

// The calling thread's device context and room for shapes. Null when memory is short; nothing can be rendered then, and
// the functions below must not be called.
struct DrawingTools {
  MemoryDc dc{nullptr};
  CoverageShape shape;
};
DrawingTools* InstrumentTools();

// `height` is that of the character cell; width 0 is the font's own. The font belongs to the cache, and is good until
// 48 others have been asked for.
HFONT InstrumentFont(int height, int width, int weight);

// The outline of a character in bold type: a compass card turns at every step, and as outlines its letters do so
// smoothly and need no font for every angle; large numbers cost less this way, too. Null when the font has no such
// outline, memory is short, or more than four dozen characters were asked for.
const GlyphOutline* InstrumentGlyph(wchar_t character);

// What belongs to one instrument.
struct InstrumentCache {
  Surface buffer;                       // of client size
  std::unique_ptr<DWORD[]> background;  // the pixels of the background layer, as many
  InstrumentParts parts;                // that the buffer shows
};

}  // namespace kv
