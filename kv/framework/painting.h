// Drawing functions shared by dialogs and controls. They take a device context and rectangles, access no window, and
// restore the device context. Colors are COLORREF 0x00BBGGRR. Any thread, with its own device contexts and windows.
#pragma once

#include <windows.h>

namespace kv {

// The background blue of the framework's dialogs (red 0x41, green 0x41, blue 0xFF).
inline constexpr COLORREF kDialogBlue = 0xFF4141;

// Blends two colors: each channel is start + (end - start) * step / steps, truncated toward zero, with the magnitude
// masked to 8 bits. Step 0 gives `start`, step `steps` gives `end`. Returns 0 and writes nothing when `steps` is 0 or
// `result` is not writable.
BOOL BlendColor(COLORREF start, COLORREF end, int steps, int step, COLORREF* result);

// The same with `percent` steps of 100.
COLORREF MixColors(COLORREF start, COLORREF end, int percent);

// Whether the user has turned on high contrast. Then use only system colors.
bool IsHighContrast();

// Returns the color with each channel multiplied by `factor` and clamped to 0..255.
COLORREF ShadeColor(COLORREF color, double factor);

// Returns a color for `value` relative to `full`: green at 0, amber at half, red at and above `full`. The magnitude of
// a negative value is used; NaN, and a `full` that is not positive, give the color for 0.
COLORREF SeverityColor(double value, double full);

void FillSolid(HDC dc, const RECT& area, COLORREF color);

// Blends from `from` at the left (top) edge to `to` at the right (bottom) edge.
void FillHorizontalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to);
void FillVerticalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to);

// Draws the 3D edge of a recessed display just inside `area`, and reduces `area` by kSunkenEdge pixels on each side
// (never below an empty rectangle).
inline constexpr int kSunkenEdge = 2;
void DrawSunkenFrame(HDC dc, RECT* area);

// Draws a rounded outline of `width` pixels around `area`, with corners of `radius` pixels. The interior is not filled.
void DrawRoundedFrame(HDC dc, const RECT& area, int radius, int width, COLORREF color);

// Draws the dotted frame of the keyboard focus just inside `area`.
void DrawFocusFrame(HDC dc, const RECT& area);

// Replaces every pixel of exactly the color `from` with `to`, or the nearest color of the device. `dc` must be
// compatible with the bitmap, which must not be selected into any device context. Returns 0 if the bitmap cannot be
// read or written.
BOOL ReplaceBitmapColor(HDC dc, HBITMAP bitmap, COLORREF from, COLORREF to);

// Paints an owner-drawn button: face, edge, text in white with a dark rim, and a focus frame. Scheme: 2 amber, 3 green,
// 4 blue. Buffers are cached per thread.
inline constexpr int kSchemeAmber = 2, kSchemeGreen = 3, kSchemeBlue = 4;
inline constexpr UINT kButtonLit = 1;       // brighter
inline constexpr UINT kButtonGradient = 2;  // vertical gradient instead of one color
inline constexpr UINT kButtonPaused = 4;    // two bars at the right, for users who cannot distinguish the colors
void DrawStatusButton(const DRAWITEMSTRUCT& item, int scheme, UINT flags);

}  // namespace kv
