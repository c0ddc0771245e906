// What the layouts of the display instrument share: what they are given, their colours and their text.
//
// Every layout draws in two layers. The face is what stays while the value changes (panel, caption, dial, scale); the
// control keeps it as a picture. The value layer is drawn over a copy of the face and reads the current value; its
// parts tell where two values look different, so that only there it is drawn anew. The thread that owns the control.
#pragma once

#include <windows.h>

#include <string_view>

#include "controls/instrument_block.h"
#include "controls/instrument/cache.h"
#include "framework/canvas.h"

namespace kv {

struct InstrumentView {
  const InstrumentBlock& block;
  DWORD style;
  const SYSTEMTIME& time;
  const char* text;      // digital read-out: what it shows
  InstrumentKeep& keep;  // fonts and outlines
};

// Draws within the canvas's clip; whatever the clip, each pixel comes out the same.
using DrawLayer = void (*)(Canvas& canvas, const RECT& area, const InstrumentView& view);
using ListParts = void (*)(HDC dc, const RECT& area, const InstrumentView& view, InstrumentParts* parts);

inline bool IsDisabled(const InstrumentView& view) {
  return (view.style & kInstrumentDisabled) != 0;
}

// The colours of dials. A disabled instrument has the same shapes in greys of little contrast.
struct DialColors {
  COLORREF rimTop, rimBottom;    // metal rim; its inner edge has them exchanged
  COLORREF faceTop, faceBottom;  // dial
  COLORREF ink, faintInk;        // scale and value; minor marks, name and unit
  COLORREF window;               // recessed window behind the value
};
DialColors ColorsOf(const InstrumentView& view);

// A block's or zone's colour as the instrument shows it: grey of the same lightness, but subdued, when disabled.
COLORREF ShownColor(const InstrumentView& view, COLORREF color);
inline COLORREF DisplayColor(const InstrumentView& view) {
  return ShownColor(view, view.block.color);
}
// Brightness of unlit segments against lit ones.
inline constexpr double kUnlit = 0.2;

inline constexpr wchar_t kInstrumentFont[] = L"Arial Unicode MS";

SIZE TextSize(HDC dc, HFONT font, std::wstring_view text);
// One line, transparent, vertically centred; `align` is DT_LEFT, DT_CENTER or DT_RIGHT. What does not fit ends in dots.
// With DT_NOCLIP a text may reach out of the area.
void DrawTextLine(Canvas& canvas, HFONT font, std::wstring_view text, RECT area, COLORREF color, UINT align);
// The largest font of at most `height` in which the text fits into `width`, but not below `least`.
HFONT FittingFont(HDC dc, InstrumentFonts& fonts, std::wstring_view text, int height, int least, int width, int weight);
DWORD LookOf(std::wstring_view text);

// Captions of the rectangular layouts: the block's name in the system's text colour.
int CaptionFontHeight(int governingSide);
void DrawCaption(Canvas& canvas, const RECT& strip, const InstrumentView& view, int fontHeight, UINT align);

// A sunken frame around a black display; returns what lies within the frame.
RECT DrawDisplayWell(Canvas& canvas, RECT area);

}  // namespace kv
