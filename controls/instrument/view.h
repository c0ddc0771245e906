// What the layouts of the display instrument share: colours, lines of text, the dark display well, and the round case
// of gauge and compass. The thread that owns the control.
#pragma once

#include <windows.h>

#include <string_view>

#include "controls/instrument/layout.h"
#include "controls/instrument_block.h"
#include "framework/canvas.h"

namespace kv {

inline bool IsDisabled(const InstrumentAppearance& appearance) {
  return (appearance.style & kInstrumentDisabled) != 0;
}

// The colours of dials. A disabled instrument has the same shapes in greys of little contrast.
struct DialColors {
  COLORREF rimTop, rimBottom;    // metal rim; its inner edge has them exchanged
  COLORREF dialTop, dialBottom;  // dial
  COLORREF ink, faintInk;        // scale and value; minor marks, name and unit
  COLORREF window;               // recessed window behind the value
};
DialColors ColorsOf(const InstrumentAppearance& appearance);

// A block's or zone's colour as the instrument shows it: grey of the same lightness, but subdued, when disabled.
COLORREF ShownColor(const InstrumentAppearance& appearance, COLORREF color);
inline COLORREF DisplayColor(const InstrumentAppearance& appearance) {
  return ShownColor(appearance, appearance.block.color);
}
// Brightness of unlit segments against lit ones.
inline constexpr double kUnlit = 0.2;

// The extent of a text in a font of this cell height and weight.
SIZE MeasureText(std::wstring_view text, int height, int weight);
// The largest cell height up to `height` in which the text fits into `width`, but not below `least`.
int FittingHeight(std::wstring_view text, int height, int least, int width, int weight);
// One line, transparent, vertically centred; `align` is DT_LEFT, DT_CENTER or DT_RIGHT. What does not fit ends in dots.
// With DT_NOCLIP a text may reach out of the area.
void DrawTextLine(Canvas& canvas, HFONT font, std::wstring_view text, RECT area, COLORREF color, UINT align);

// Captions of the rectangular layouts: the block's name in the system's text colour.
int CaptionFontHeight(int governingSide);
void DrawCaption(Canvas& canvas, const RECT& strip, const InstrumentAppearance& appearance, int fontHeight, UINT align);

// A sunken frame around a black display, and what lies within the frame.
void DrawDisplayWell(Canvas& canvas, RECT area);
RECT WithinFrame(RECT area);

// Two gradients across the area: from `edge` at its sides to `color` in the middle.
void FillRounded(Canvas& canvas, const RECT& area, COLORREF edge, COLORREF color);

// Where a round case stands, in pixels.
struct Dial {
  PointD centre;
  double radius;       // outside of the rim
  double innerRadius;  // the face within the rim, to which everything else is in proportion
};
// The largest dial in the middle of the area; radius 0 when there is no room for one.
Dial DialIn(const RECT& area);
// The panel and, on it, the dial's metal rim and face.
void DrawDialCase(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance);

}  // namespace kv
