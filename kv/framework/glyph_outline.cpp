#include "kv/framework/glyph_outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"

namespace kv {

namespace {

constexpr int kEmHeight = 1024;        // large enough to make rounding invisible
constexpr double kFlatness = 0.0015;   // the largest distance of a line to its curve, in heights of capitals
constexpr int kMaxLinesPerCurve = 12;  // of a quadratic curve; cubic ones, which are longer, have kLinesPerCubic
constexpr int kLinesPerCubic = 8;

// Converts the data of GetGlyphOutlineW to points of an outline.
class OutlineWriter {
 public:
  OutlineWriter(GlyphOutline* outline, double capitalHeight, double middle)
      : outline_(outline), unit_(capitalHeight), middle_(middle) {}

  bool Add(const PointD& point) {
    if (count_ == GlyphOutline::kMaxPoints) return false;
    const double x = (point.x - middle_) / unit_, y = 0.5 - point.y / unit_;
    outline_->points[count_++] = {static_cast<float>(x), static_cast<float>(y)};
    last_ = point;
    return true;
  }

  // Adds a curve from the last point with one or two control points.
  bool AddCurve(const PointD& first, const PointD& second, const PointD& end, int lines) {
    const PointD start = last_;
    for (int i = 1; i <= lines; ++i) {
      const double t = static_cast<double>(i) / lines, u = 1 - t;
      const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
      if (!Add({a * start.x + b * first.x + c * second.x + d * end.x,
                a * start.y + b * first.y + c * second.y + d * end.y})) {
        return false;
      }
    }
    return true;
  }
  bool AddQuadratic(const PointD& control, const PointD& end) {
    const auto toward = [&control](const PointD& from) {
      return PointD{from.x + (control.x - from.x) * 2 / 3, from.y + (control.y - from.y) * 2 / 3};
    };
    const double bulge = std::hypot(last_.x - 2 * control.x + end.x, last_.y - 2 * control.y + end.y) / 4 / unit_;
    const int lines = static_cast<int>(std::ceil(std::sqrt(bulge / kFlatness)));
    return AddCurve(toward(last_), toward(end), end, std::clamp(lines, 1, kMaxLinesPerCurve));
  }

  bool EndFigure() {
    if (outline_->contours == GlyphOutline::kMaxContours) return false;
    outline_->ends[outline_->contours++] = count_;
    return true;
  }

 private:
  GlyphOutline* outline_;
  double unit_, middle_;
  int count_ = 0;
  PointD last_{};
};

PointD PointOf(const POINTFX& point) {
  return {point.x.value + point.x.fract / 65536.0, point.y.value + point.y.fract / 65536.0};
}

bool AddPolyCurve(OutlineWriter& writer, const TTPOLYCURVE& curve) {
  const auto point = [&curve](int i) { return PointOf(curve.apfx[i]); };
  if (curve.wType == TT_PRIM_LINE) {
    for (int i = 0; i < curve.cpfx; ++i) {
      if (!writer.Add(point(i))) return false;
    }
  } else if (curve.wType == TT_PRIM_QSPLINE) {
    // The curve passes through the middle of two control points; the last point ends it.
    for (int i = 0; i + 1 < curve.cpfx; ++i) {
      const PointD control = point(i), next = point(i + 1);
      const PointD middle{(control.x + next.x) / 2, (control.y + next.y) / 2};
      if (!writer.AddQuadratic(control, i + 2 < curve.cpfx ? middle : next)) return false;
    }
  } else {
    for (int i = 0; i + 2 < curve.cpfx; i += 3) {
      if (!writer.AddCurve(point(i), point(i + 1), point(i + 2), kLinesPerCubic)) return false;
    }
  }
  return true;
}

bool AddContours(OutlineWriter& writer, const std::byte* data, size_t size) {
  for (const std::byte* end = data + size; data < end;) {
    const auto& header = *reinterpret_cast<const TTPOLYGONHEADER*>(data);
    if (!writer.Add(PointOf(header.pfxStart))) return false;
    const std::byte* figureEnd = data + header.cb;
    for (data += sizeof(header); data < figureEnd;) {
      const auto& curve = *reinterpret_cast<const TTPOLYCURVE*>(data);
      if (!AddPolyCurve(writer, curve)) return false;
      data += offsetof(TTPOLYCURVE, apfx) + curve.cpfx * sizeof(POINTFX);
    }
    if (!writer.EndFigure()) return false;
  }
  return true;
}

}  // namespace

bool OutlineOfCharacter(const wchar_t* faceName, int weight, wchar_t character, GlyphOutline* outline) {
  outline->contours = 0;
  outline->advance = 0;
  const MemoryDc dc(nullptr);
  const OwnedFont font(CreateFontW(-kEmHeight, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                   OUT_TT_ONLY_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS,
                                   faceName));
  const SelectedObject selected(dc, font);
  const MAT2 identity{{0, 1}, {0, 0}, {0, 0}, {0, 1}};
  GLYPHMETRICS capital{}, metrics{};
  alignas(8) std::byte data[8192];
  if (GetGlyphOutlineW(dc, L'H', GGO_METRICS, &capital, 0, nullptr, &identity) == GDI_ERROR ||
      capital.gmptGlyphOrigin.y <= 0) {
    return false;
  }
  const DWORD size = GetGlyphOutlineW(dc, character, GGO_NATIVE, &metrics, sizeof(data), data, &identity);
  if (size == GDI_ERROR || size == 0 || size > sizeof(data)) return false;
  const double unit = capital.gmptGlyphOrigin.y;
  OutlineWriter writer(outline, unit, metrics.gmCellIncX / 2.0);
  outline->advance = metrics.gmCellIncX / unit;
  if (AddContours(writer, data, size)) return true;
  outline->contours = 0;
  return false;
}

void FillGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD center, double along, double height, double degrees,
               const Paint& paint, double stretch) {
  BeginShape(canvas);
  AddGlyph(canvas, glyph, center, along, height, degrees, paint, stretch);
  FillShape(canvas, paint);
}

void AddGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD center, double along, double height, double degrees,
              const Paint& paint, double stretch) {
  if (glyph.contours == 0) return;
  if (!canvas.shape().HasCapacityFor(glyph.ends[glyph.contours - 1])) {
    FillShape(canvas, paint);
    BeginShape(canvas);
  }
  const double radians = Radians(degrees), cosine = std::cos(radians), sine = std::sin(radians);
  std::array<PointD, GlyphOutline::kMaxPoints> corners;
  for (int contour = 0, from = 0; contour < glyph.contours; from = glyph.ends[contour++]) {
    for (int i = from; i < glyph.ends[contour]; ++i) {
      const double x = glyph.points[i].x * height * stretch + along, y = glyph.points[i].y * height;
      corners[i] = {center.x + x * cosine - y * sine, center.y + x * sine + y * cosine};
    }
    canvas.shape().AddContour({&corners[from], static_cast<size_t>(glyph.ends[contour] - from)});
  }
}

}  // namespace kv
