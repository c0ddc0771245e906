// Shared by the modes of the display instrument: colors, lines of text, the black display, and the round case of gauge
// and compass. The thread that owns the control.
#pragma once

#include <windows.h>

#include <string_view>

#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"

namespace kv {

inline bool IsDisabled(const InstrumentAppearance& appearance) {
  return (appearance.style & kInstrumentDisabled) != 0;
}

// The colors of dials. A disabled instrument has the same shapes in low-contrast grays.
struct DialColors {
  COLORREF rimTop, rimBottom;    // metal rim; exchanged for its inner edge
  COLORREF dialTop, dialBottom;  // dial
  COLORREF ink, faintInk;        // scale and value; minor marks, name and unit
  COLORREF window;               // recessed window behind the value
};
DialColors ColorsOf(const InstrumentAppearance& appearance);

// The color with which an instrument draws a block's or zone's color: when disabled, a subdued gray of the same
// lightness.
COLORREF ShownColor(const InstrumentAppearance& appearance, COLORREF color);
inline COLORREF DisplayColor(const InstrumentAppearance& appearance) {
  return ShownColor(appearance, appearance.block.color);
}
// Brightness of unlit segments relative to lit ones.
inline constexpr double kUnlit = 0.2;

// The extent of a text in a font of this cell height and weight.
SIZE MeasureText(std::wstring_view text, int height, int weight);
// The largest cell height, from `least` to `height`, with which the text fits into `width`.
int FittingHeight(std::wstring_view text, int height, int least, int width, int weight);
// Draws one line with a transparent background, vertically centered; `align` is DT_LEFT, DT_CENTER or DT_RIGHT. A text
// that does not fit ends in an ellipsis, or extends beyond the area with DT_NOCLIP.
void DrawTextLine(Canvas& canvas, HFONT font, std::wstring_view text, RECT area, COLORREF color, UINT align);

// The caption of rectangular modes: its font height; draws the block's name in the system's text color. With
// kInstrumentFitted it grows with the control, has the font's own proportions, and is always centered.
inline constexpr int kMinHeightWithCaption = 24;
int CaptionFontHeight(int governingSide, DWORD style);
void DrawCaption(Canvas& canvas, const RECT& strip, const InstrumentAppearance& appearance, int fontHeight, UINT align);

// A black display with a sunken frame: draws it; the area within the frame.
void DrawDisplayWell(Canvas& canvas, RECT area);
RECT WithinFrame(RECT area);

// Draws a bar as if rounded: two gradients across it, from `edge` at both sides to `color` in the middle.
void FillRounded(Canvas& canvas, const RECT& area, bool vertical, COLORREF edge, COLORREF color);

// The geometry of a round case, in pixels.
struct Dial {
  PointD center;
  double radius;       // outside of the rim
  double innerRadius;  // of the dial within the rim; other sizes are relative to it
};
// The largest dial, centered in the area; radius 0 when there is no space.
Dial DialIn(const RECT& area);
// Draws the panel, the dial's metal rim and the dial.
void DrawDialCase(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance);

}  // namespace kv
