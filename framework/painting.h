// Drawing routines that dialogs and controls share. All take a device context and rectangles, know no window, and leave
// the device context as they found it. Colours are COLORREF 0x00BBGGRR. They keep nothing: any thread, with a device
// context and windows of its own.
#pragma once

#include <windows.h>

namespace kv {

// The background blue of the framework's dialogs (red 0x41, green 0x41, blue 0xFF).
inline constexpr COLORREF kDialogBlue = 0xFF4141;

// Blends two colours: channel by channel start + (end - start) * step / steps, truncated towards zero, its magnitude
// masked to 8 bits. Step 0 is `start`, step `steps` is `end`. Returns 0 and writes nothing when `steps` is 0 or
// `result` is not writable.
BOOL BlendColor(COLORREF start, COLORREF end, int steps, int step, COLORREF* result);

// The colour with each channel multiplied by `factor` and limited to 0..255.
COLORREF ShadeColor(COLORREF color, double factor);

// A colour that tells how near `value` is to `full`: green at 0, amber half way, red at and beyond `full`. A negative
// value counts by its magnitude; NaN and a `full` that is not positive give the colour of 0.
COLORREF SeverityColor(double value, double full);

void FillSolid(HDC dc, const RECT& area, COLORREF color);

// Blends from `from` at the left (top) edge to `to` at the right (bottom) edge.
void FillHorizontalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to);
void FillVerticalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to);

// The 3D edge around a display that lies deeper than its panel. Draws the edge just inside `area` and shrinks `area` to
// what lies within (kSunkenEdge pixels on each side, never below an empty rectangle).
inline constexpr int kSunkenEdge = 2;
void DrawSunkenFrame(HDC dc, RECT* area);

// A rounded outline of `width` pixels around `area`, with corners of `radius` pixels; the inside is left alone.
void DrawRoundedFrame(HDC dc, const RECT& area, int radius, int width, COLORREF color);

// Replaces every pixel of exactly `from` by `to`, as nearly as the device shows it. `dc` is a device context compatible
// with the bitmap, which must not be selected into any. Returns 0 if the bitmap cannot be read or written.
BOOL ReplaceBitmapColor(HDC dc, HBITMAP bitmap, COLORREF from, COLORREF to);

// Paints an owner-drawn button: face, edge, the button's own text in white with a dark rim, and a frame while it has
// the focus. Scheme: 2 amber, 3 green, 4 blue. What it keeps between calls is each thread's own.
inline constexpr int kSchemeAmber = 2, kSchemeGreen = 3, kSchemeBlue = 4;
inline constexpr UINT kButtonLit = 1;       // brighter face
inline constexpr UINT kButtonGradient = 2;  // face shaded from top to bottom instead of flat
inline constexpr UINT kButtonPaused = 4;    // two bars at the right, for whom the colours are hard to tell apart
void DrawStatusButton(const DRAWITEMSTRUCT& item, int scheme, UINT flags);

}  // namespace kv
