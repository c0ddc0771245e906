#include "kv/controls/horizon/horizon_renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <string>

#include "kv/controls/horizon/horizon.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

constexpr COLORREF kSky = RGB(54, 132, 206), kGround = RGB(136, 92, 46), kRing = RGB(28, 31, 36),
                   kInk = RGB(245, 247, 250), kSymbol = RGB(255, 168, 20), kFlag = RGB(220, 40, 40);
constexpr double kDegreesShown = 27;  // pitch from the symbol to the edge
constexpr double kLadderReach = 0.8;  // so that it does not overlap the roll pointer
constexpr double kMinRadiusWithNumbers = 44, kMinRadiusWithTape = 60, kMinTapeHeight = 16;
constexpr double kWingInner = 0.44, kWingOuter = 0.74, kWingKnee = 0.09;  // of the symbol, relative to the radius
constexpr double kLeastStrip = 0.14;  // sky or ground that remains at every pitch, relative to the radius
constexpr double kSteep = 60;         // degrees of pitch beyond which chevrons point to the horizon
constexpr int kMaxCorners = 260;
constexpr wchar_t kFont[] = L"Arial Unicode MS";

double Wrapped(double degrees, double from) {
  const double turned = std::fmod(degrees - from, 360.0);
  return (turned < 0 ? turned + 360 : turned) + from;
}

// The part of a disc beyond a line at `distance` from its center, in a direction (degrees clockwise from the top).
void FillSegment(Canvas& canvas, PointD center, double radius, double distance, double direction, COLORREF color) {
  if (distance >= radius) return;
  std::array<PointD, kMaxCorners> corners;
  const double half = distance <= -radius ? 180 : Degrees(std::acos(distance / radius));
  const int chords = std::clamp(static_cast<int>(half * 2 / 360 * (kMaxCorners - 1)), 8, kMaxCorners - 1);
  for (int i = 0; i <= chords; ++i) {
    corners[i] = PolarPoint(center, radius, direction - half + 2 * half * i / chords);
  }
  FillPolygon(canvas, {corners.data(), static_cast<size_t>(chords) + 1}, color);
}

}  // namespace

// ---- Geometry

HorizonLayout LayoutHorizon(SIZE size, DWORD style) {
  HorizonLayout layout{};
  layout.round = (style & kHorizonModeBits) != kHorizonRectangular;
  layout.center = {size.cx / 2.0, size.cy / 2.0};
  const double side = std::min(size.cx, size.cy);
  if (side < 4) return layout;
  layout.rim = layout.round ? side / 2 - 0.5 : side / 2;
  layout.ring = layout.round ? layout.rim * 0.94 - 0.5 : layout.rim * 0.92;
  layout.radius = layout.ring * 0.88;
  layout.pixelsPerDegree = layout.radius / kDegreesShown;
  const PointD corners[] = {{layout.center.x - layout.ring, layout.center.y - layout.ring},
                            {layout.center.x + layout.ring, layout.center.y + layout.ring}};
  const RECT whole{0, 0, size.cx, size.cy};
  layout.area =
      layout.round ? BoundsOf(corners, 1, whole) : RECT{2, 2, std::max(2L, size.cx - 2), std::max(2L, size.cy - 2)};
  if ((style & kHorizonTape) && layout.radius >= kMinRadiusWithTape) {
    const double radius = layout.radius, height = std::max(radius * 0.19, kMinTapeHeight);
    const double bottom = layout.round ? layout.center.y + radius * 0.62 + height : layout.area.bottom - 3.0;
    const double down = std::min((bottom - layout.center.y) / radius, 1.0);
    const double half = radius * (layout.round ? std::min(0.62, std::sqrt(1 - down * down)) : 0.62);
    const auto pixel = [](double value) { return static_cast<LONG>(std::lround(value)); };
    layout.tape = {pixel(layout.center.x - half), pixel(bottom - height), pixel(layout.center.x + half), pixel(bottom)};
  }
  return layout;
}

PointD HorizonPoint(const HorizonLayout& layout, double roll, double right, double up) {
  // With the right wing down, the horizon is rotated to the left.
  const double sine = std::sin(Radians(roll)), cosine = std::cos(Radians(roll));
  return {layout.center.x + right * cosine - up * sine, layout.center.y - right * sine - up * cosine};
}

double LadderStep(double pixelsPerDegree) {
  constexpr double kMinPixels = 9;
  for (const double step : {2.5, 5.0}) {
    if (step * pixelsPerDegree >= kMinPixels) return step;
  }
  return 10;
}

HorizonAttitude NormalAttitude(const HorizonAttitude& attitude) {
  HorizonAttitude normal = attitude;
  normal.pitch = std::clamp(attitude.pitch, -90.0f, 90.0f);
  normal.roll = static_cast<float>(Wrapped(attitude.roll, -180));
  normal.slip = std::clamp(attitude.slip, -2.0f, 2.0f);
  normal.heading = static_cast<float>(NormalHeading(attitude.heading));
  if (normal.heading >= 360) normal.heading = 0;  // the float may be
  return normal;
}

bool AnimateAttitude(HorizonAttitude* shown, const HorizonAttitude& target) {
  constexpr double kNear = 0.02;
  bool moving = false;
  const auto move = [&moving](float* value, float goal, double range, bool circle) {
    const double way = circle ? Wrapped(static_cast<double>(goal) - *value, -180) : static_cast<double>(goal) - *value;
    const bool arrives = std::fabs(way) <= kNear || std::fabs(way) > range / 5;
    *value = arrives ? goal : static_cast<float>(*value + way / 10);
    moving |= !arrives;
  };
  move(&shown->pitch, target.pitch, 180, false);
  move(&shown->roll, target.roll, 360, true);
  move(&shown->slip, target.slip, 4, false);
  move(&shown->heading, target.heading, 360, true);
  *shown = NormalAttitude(*shown);
  return moving;
}

// ---- Drawing

COLORREF HorizonRenderer::Shown(COLORREF color) const {
  if (!(style_ & kHorizonDisabled)) return color;
  const int gray = 84 + (GetRValue(color) * 30 + GetGValue(color) * 59 + GetBValue(color) * 11) / 300;
  return RGB(gray, gray, gray);
}

void HorizonRenderer::AddText(Canvas& canvas, const wchar_t* text, PointD place, double height, double degrees,
                              COLORREF color) {
  double width = 0;
  for (const wchar_t* character = text; *character; ++character) {
    std::unique_ptr<GlyphOutline>& glyph = glyphs_[*character % glyphs_.size()];
    if (!glyph) {
      glyph.reset(new (std::nothrow) GlyphOutline);
      if (!glyph) return;
      OutlineOfCharacter(kFont, FW_BOLD, *character, glyph.get());
    }
    width += glyph->advance * height;
  }
  double along = -width / 2;
  for (const wchar_t* character = text; *character; ++character) {
    const GlyphOutline& glyph = *glyphs_[*character % glyphs_.size()];
    AddGlyph(canvas, glyph, place, along + glyph.advance * height / 2, height, degrees, color);
    along += glyph.advance * height;
  }
}

void HorizonRenderer::DrawCase() {
  Canvas canvas(dc_, case_, shape_);
  FillArea(canvas, {0, 0, case_.size().cx, case_.size().cy}, panel_);
  if (!layout_.round) {
    RECT frame{0, 0, case_.size().cx, case_.size().cy};
    DrawSunkenFrame(canvas.dc(), &frame);
    FillArea(canvas, frame, Shown(kRing));
  } else if (layout_.rim > 0) {
    const COLORREF light = Shown(RGB(196, 201, 207)), dark = Shown(RGB(62, 66, 72));
    const double inner = layout_.rim - (layout_.rim - layout_.ring) * 0.55;
    FillGradientDisc(canvas, layout_.center, layout_.rim, light, dark);
    FillGradientDisc(canvas, layout_.center, inner, dark, light);
    FillDisc(canvas, layout_.center, layout_.ring, Shown(kRing));
  }
}

// How far the edge of sky and ground is below the symbol. It always stays in sight.
double HorizonRenderer::EdgeDistance() const {
  const double most = (1 - kLeastStrip) * layout_.radius;
  return std::clamp(attitude_.pitch * layout_.pixelsPerDegree, -most, most);
}

// Whether the symbol, the roll pointer or the tape would cover something of this size.
bool HorizonRenderer::IsCovered(PointD place, double reach) const {
  const double radius = layout_.radius, edge = radius * 0.04, x = std::fabs(place.x - layout_.center.x);
  const double y = place.y - layout_.center.y;
  const bool atWings = x + reach > kWingInner * radius - edge && x - reach < kWingOuter * radius + edge &&
                       y + reach > -edge && y - reach < kWingKnee * radius + edge;
  const bool atPointer = x - reach < radius * 0.1 && y - reach < -radius * 0.82;
  const RECT& tape = layout_.tape;
  const bool atTape = !IsRectEmpty(&tape) && place.x + reach > tape.left && place.x - reach < tape.right &&
                      place.y + reach > tape.top && place.y - reach < tape.bottom;
  return atWings || atPointer || atTape;
}

void HorizonRenderer::DrawGround(Canvas& canvas) {
  const double distance = EdgeDistance();
  const double roll = attitude_.roll;
  if (layout_.round) {
    FillSegment(canvas, layout_.center, layout_.radius, -distance, -roll, Shown(kSky));
    FillSegment(canvas, layout_.center, layout_.radius, distance, 180 - roll, Shown(kGround));
    return;
  }
  const double beyond = static_cast<double>(surface_.size().cx) + surface_.size().cy;
  FillArea(canvas, layout_.area, Shown(kSky));
  const PointD ground[] = {HorizonPoint(layout_, roll, -beyond, -distance),
                           HorizonPoint(layout_, roll, beyond, -distance),
                           HorizonPoint(layout_, roll, beyond, -distance - 3 * beyond),
                           HorizonPoint(layout_, roll, -beyond, -distance - 3 * beyond)};
  FillPolygon(canvas, ground, Shown(kGround));
}

void HorizonRenderer::AddRung(Canvas& canvas, double degrees) {
  const double radius = layout_.radius, roll = attitude_.roll, height = std::max(7.0, radius * 0.085);
  const double up = (degrees - attitude_.pitch) * layout_.pixelsPerDegree;
  const bool ten = std::fmod(degrees, 10) == 0, five = std::fmod(degrees, 5) == 0;
  if (degrees == 0 || (!ten && std::fabs(degrees) > kSteep)) return;
  const double half = radius * (ten ? 0.22 : five ? 0.12 : 0.065);
  const PointD left = HorizonPoint(layout_, roll, -half, up), right = HorizonPoint(layout_, roll, half, up);
  const RECT& tape = layout_.tape;
  const auto onTape = [&](const PointD& end) {
    return !IsRectEmpty(&tape) && end.y > tape.top - 2 && end.x > tape.left - 2 && end.x < tape.right + 2;
  };
  if (onTape(left) || onTape(right)) return;
  AddLine(canvas, left, right, std::max(1.0, radius / 110));
  if (!ten || radius < kMinRadiusWithNumbers) return;
  wchar_t text[8];
  FormatBounded(text, sizeof(text), L"%d", std::abs(static_cast<int>(degrees)));
  for (const double side : {-1.0, 1.0}) {
    // A number that is half covered could be read as another one.
    const PointD place = HorizonPoint(layout_, roll, side * (half + height * 1.1), up);
    if (!IsCovered(place, height * 0.7)) AddText(canvas, text, place, height, -roll, Shown(kInk));
  }
}

void HorizonRenderer::DrawLadder(Canvas& canvas) {
  const double radius = layout_.radius, roll = attitude_.roll, pitch = attitude_.pitch;
  const double step = LadderStep(layout_.pixelsPerDegree), horizon = -EdgeDistance();
  BeginShape(canvas);
  const double half =
      layout_.round ? std::sqrt(radius * radius - horizon * horizon) : surface_.size().cx + surface_.size().cy;
  AddLine(canvas, HorizonPoint(layout_, roll, -half, horizon), HorizonPoint(layout_, roll, half, horizon),
          std::max(1.5, radius / 73));
  const double shown = kLadderReach * radius / layout_.pixelsPerDegree;
  const int first = static_cast<int>(std::ceil(std::max(-90.0, pitch - shown) / step));
  const int last = static_cast<int>(std::floor(std::min(90.0, pitch + shown) / step));
  for (int i = first; i <= last; ++i) AddRung(canvas, i * step);
  FillShape(canvas, Shown(kInk));
}

// Between the tens of a steep climb or dive, pointing to the horizon.
void HorizonRenderer::DrawChevrons(Canvas& canvas) {
  const double radius = layout_.radius, roll = attitude_.roll, width = std::max(1.5, radius * 0.035);
  const double half = radius * 0.15, rise = 3.2 * layout_.pixelsPerDegree;
  for (const double wider : {std::max(1.0, radius / 90), 0.0}) {
    BeginShape(canvas);
    for (double degrees = kSteep + 5; degrees < 90; degrees += 10) {
      const double to = attitude_.pitch < 0 ? -1 : 1, up = to * degrees - attitude_.pitch;
      const double tip = up * layout_.pixelsPerDegree - to * rise / 2;
      if (std::fabs(tip) > kLadderReach * radius) continue;
      const PointD middle = HorizonPoint(layout_, roll, 0, tip);
      if (IsCovered(middle, rise)) continue;
      for (const double side : {-1.0, 1.0}) {
        AddLine(canvas, middle, HorizonPoint(layout_, roll, side * half, tip + to * rise), width + 2 * wider);
      }
    }
    FillShape(canvas, Shown(wider > 0 ? RGB(20, 20, 22) : kFlag));
  }
}

// The ring covers parts of the ladder outside the disc. The scale rotates with the horizon; its pointer is fixed.
void HorizonRenderer::DrawRollScale(Canvas& canvas) {
  const double radius = layout_.radius, size = std::max(4.0, radius * 0.09);
  if (layout_.round) FillAnnularSector(canvas, layout_.center, radius, layout_.ring, 0, 360, Shown(kRing));
  const double room = layout_.ring - radius, foot = radius + 0.5, roll = attitude_.roll;
  BeginShape(canvas);
  for (const int degrees : {10, 20, 30, 45, 60, 90}) {
    const bool major = degrees % 30 == 0;
    const double outer = radius + room * (major ? 0.85 : 0.45);
    for (const int side : {-1, 1}) {
      const double angle = side * degrees - roll;
      AddLine(canvas, PolarPoint(layout_.center, foot, angle), PolarPoint(layout_.center, outer, angle),
              std::max(1.0, radius / (major ? 50 : 110)));
    }
  }
  const double breadth = Degrees(room * 0.6 / radius);
  const PointD zero[] = {PolarPoint(layout_.center, foot, -roll),
                         PolarPoint(layout_.center, radius + room * 0.9, -roll - breadth),
                         PolarPoint(layout_.center, radius + room * 0.9, -roll + breadth)};
  canvas.shape().AddContour(zero);
  FillShape(canvas, Shown(kInk));
  const PointD top{layout_.center.x, layout_.center.y - radius + 1};
  const PointD pointer[] = {top, {top.x + size * 0.75, top.y + size * 1.2}, {top.x - size * 0.75, top.y + size * 1.2}};
  FillPolygon(canvas, pointer, Shown(kSymbol));
  const double left = top.x - size * 0.75 + attitude_.slip * size * 1.5, high = top.y + size * 1.4;
  const PointD slip[] = {
      {left, high}, {left + size * 1.5, high}, {left + size * 1.5, high + size * 0.4}, {left, high + size * 0.4}};
  FillPolygon(canvas, slip, Shown(kSymbol));
}

// Draws the shape twice: first dark and wider, so that it contrasts with sky, ground and ladder.
void HorizonRenderer::DrawSymbol(Canvas& canvas) {
  const PointD& center = layout_.center;
  const double radius = layout_.radius, width = std::max(2.0, radius * 0.04), knee = radius * kWingKnee;
  for (const double wider : {std::max(1.0, radius / 70), 0.0}) {
    BeginShape(canvas);
    for (const double side : {-1.0, 1.0}) {
      const auto at = [&](double right, double down) { return PointD{center.x + side * right, center.y + down}; };
      const double inner = radius * kWingInner;
      AddLine(canvas, at(radius * kWingOuter + wider, 0), at(inner - width / 2 - wider, 0), width + 2 * wider);
      AddLine(canvas, at(inner, -width / 2), at(inner, knee + wider), width + 2 * wider);
    }
    AddLine(canvas, {center.x - width / 2 - wider, center.y}, {center.x + width / 2 + wider, center.y},
            width + 2 * wider);
    FillShape(canvas, wider > 0 ? Shown(RGB(20, 20, 22)) : Shown(kSymbol));
  }
}

void HorizonRenderer::DrawTape(Canvas& canvas) {
  const RECT& tape = layout_.tape;
  const RECT before = canvas.clip();
  RECT clip;
  if (!IntersectRect(&clip, &tape, &before)) return;
  canvas.ClipTo(clip);
  FillArea(canvas, tape, Shown(kRing));
  const double height = tape.bottom - tape.top, middle = (tape.left + tape.right) / 2.0, perDegree = height / 9;
  const double text = height * 0.42, heading = attitude_.heading;
  const int shown = static_cast<int>((tape.right - tape.left) / 2.0 / perDegree) + 10;
  const int first = static_cast<int>(std::floor((heading - shown) / 5));
  BeginShape(canvas);
  for (int i = first; i * 5 <= heading + shown; ++i) {
    const double x = middle + (i * 5 - heading) * perDegree;
    const int bearing = (i * 5 % 360 + 360) % 360;
    AddLine(canvas, {x, static_cast<double>(tape.top)}, {x, tape.top + height * (bearing % 10 ? 0.16 : 0.26)},
            std::max(1.0, height / 26));
    // A number that the edge would cut reads as another one.
    if (bearing % 10 || std::fabs(x - middle) + text * 0.6 > (tape.right - tape.left) / 2.0) continue;
    wchar_t label[8];
    FormatBounded(label, sizeof(label), L"%02d", bearing / 10);
    if (bearing % 90 == 0) FormatBounded(label, sizeof(label), L"%c", L"NESW"[bearing / 90]);
    AddText(canvas, label, {x, tape.bottom - height * 0.36}, text, 0, Shown(kInk));
  }
  FillShape(canvas, Shown(kInk));
  // No longer than the ticks, so that it does not cover the number.
  const LONG reach = tape.top + ToInt(height * 0.34), index = ToInt(middle), thick = std::max(1, ToInt(height / 36));
  FillArea(canvas, {index - thick, tape.top, index + thick, reach}, Shown(kSymbol));
  canvas.ClipTo(before);
}

void HorizonRenderer::DrawFlag(Canvas& canvas) {
  const double radius = layout_.radius, half = radius * 0.13;
  const HorizonLayout& layout = layout_;
  const auto place = [&](double right, double up) { return HorizonPoint(layout, 30, right, up); };
  const double length = layout.round ? radius * 0.97 : radius * 1.2;
  FillLine(canvas, place(-length, 0), place(length, 0), 2 * half, Shown(kFlag));
  BeginShape(canvas);
  for (double x = -length; x + half < length; x += 2 * half) {
    const PointD stripe[] = {place(x, half), place(x + half * 0.8, half), place(x + half * 1.3, -half),
                             place(x + half * 0.5, -half)};
    canvas.shape().AddContour(stripe);
  }
  FillShape(canvas, Shown(kInk));
}

void HorizonRenderer::DrawAttitude(Canvas& canvas) {
  CopyFrom(canvas, case_);
  RECT face;
  if (layout_.radius <= 0 || !IntersectRect(&face, &layout_.area, &canvas.clip())) return;
  canvas.ClipTo(face);
  if (attitude_.state & kHorizonNoValue) {
    if (layout_.round) FillDisc(canvas, layout_.center, layout_.radius, Shown(RGB(70, 74, 80)));
    DrawSymbol(canvas);
    DrawFlag(canvas);
    return;
  }
  DrawGround(canvas);
  DrawLadder(canvas);
  DrawChevrons(canvas);
  DrawRollScale(canvas);
  DrawSymbol(canvas);
  if (!IsRectEmpty(&layout_.tape)) DrawTape(canvas);
}

RECT HorizonRenderer::Update(const HorizonAttitude& attitude, DWORD style, SIZE size, bool redrawAll) {
  const COLORREF panel = GetSysColor(COLOR_BTNFACE);
  const bool resized = surface_.Resize(size);
  redrawAll = redrawAll || resized || style != style_ || panel != panel_;
  const HorizonAttitude before = attitude_;
  attitude_ = attitude;
  if (redrawAll) {
    if (resized && !case_.Create(size)) surface_.Reset();
    if (!surface_.bitmap()) return {};
    style_ = style;
    panel_ = panel;
    layout_ = LayoutHorizon(size, style);
    DrawCase();
  }
  if (!surface_.bitmap()) return {};
  const RECT whole{0, 0, size.cx, size.cy};
  const bool turned = before.pitch != attitude.pitch || before.roll != attitude.roll || before.slip != attitude.slip ||
                      before.state != attitude.state;
  RECT changed = redrawAll ? whole : turned ? layout_.area : before.heading != attitude.heading ? layout_.tape : RECT{};
  if ((attitude.state & before.state & kHorizonNoValue) && !redrawAll) changed = {};
  if (IsRectEmpty(&changed)) return {};
  Canvas canvas(dc_, surface_, shape_);
  canvas.ClipTo(changed);
  DrawAttitude(canvas);
  return changed;
}

}  // namespace kv
