// The modes of the display instrument, and what they share.
//
// Each mode draws two layers. The background layer does not depend on the value (panel, caption, dial, scale); the
// control caches it. The value layer is drawn over a copy of the background layer, in parts. A part has a rectangle,
// data, and a function that draws it only from the appearance and the data. Therefore a part is drawn again only if its
// rectangle or the hash of its data has changed. The thread that owns the control.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <span>
#include <type_traits>

#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"

namespace kv {

// The system colors that instruments use.
inline constexpr int kSystemColors[] = {COLOR_BTNFACE,     COLOR_BTNTEXT, COLOR_GRAYTEXT,   COLOR_3DSHADOW,
                                        COLOR_3DHIGHLIGHT, COLOR_3DLIGHT, COLOR_3DDKSHADOW, COLOR_WINDOWFRAME};

// Everything on which the background layer depends; compared byte by byte.
struct InstrumentAppearance {
  RECT area;  // the whole control
  DWORD style;
  COLORREF colors[ARRAYSIZE(kSystemColors)];
  InstrumentBlock block;  // without the current value; kInstrumentNoValue is set if there is no valid value
  // Of a gauge, computed when the background is drawn: the length of the needle's body in pixels, and the power of ten
  // by which the value is divided.
  float reach;
  int valueExponent;
};
static_assert(sizeof(InstrumentAppearance) == 60 + sizeof(InstrumentBlock));

// The parts of a value layer, in order. While the background does not change, the lists of an instrument have the same
// parts in the same order, but parts at the end may be added or removed.
class InstrumentParts {
 public:
  static constexpr int kMaxParts = 192;
  struct Part {
    RECT place;
    DWORD hash;  // of the data
  };
  // A list is incomplete after more than kMaxParts calls.
  void Add(const RECT& place, DWORD hash);
  bool complete() const { return count_ <= kMaxParts; }
  std::span<const Part> all() const { return {parts_.data(), static_cast<size_t>(count_)}; }

 private:
  std::array<Part, kMaxParts> parts_;
  int count_ = 0;
};

// A few rectangles that together contain all added ones.
class DirtyRects {
 public:
  void Add(RECT area);
  const RECT* begin() const { return areas_.data(); }
  const RECT* end() const { return areas_.data() + count_; }
  bool empty() const { return count_ == 0; }

 private:
  std::array<RECT, 6> areas_;
  int count_ = 0;
};

// The rectangles of `area` that must be redrawn when the parts of a value layer change.
DirtyRects ChangedRects(const InstrumentParts& before, const InstrumentParts& after, const RECT& area);

// A hash of `size` bytes, a multiple of four.
DWORD HashOf(const void* data, size_t size);

// Receives the parts of a value layer: adds them to a list, or draws those within the clip on a canvas.
class ValueLayer {
 public:
  ValueLayer(const InstrumentAppearance& appearance, InstrumentParts* list) : appearance_(appearance), list_(list) {}
  ValueLayer(const InstrumentAppearance& appearance, Canvas* canvas) : appearance_(appearance), canvas_(canvas) {}

  const InstrumentAppearance& appearance() const { return appearance_; }
  // Whether a part with this rectangle would be omitted.
  bool Skips(const RECT& place) const { return canvas_ && canvas_->Hides(place); }

  // `draw` is clipped to the rectangle.
  template <class Data>
  void Add(const RECT& place, const Data& data, void (*draw)(Canvas&, const InstrumentAppearance&, const Data&)) {
    static_assert(std::is_trivially_copyable_v<Data> && sizeof(Data) % sizeof(DWORD) == 0);
    if (list_) return list_->Add(place, HashOf(&data, sizeof(data)));
    const RECT clip = canvas_->clip();
    RECT seen;
    if (!IntersectRect(&seen, &clip, &place)) return;
    canvas_->ClipTo(seen);
    draw(*canvas_, appearance_, data);
    canvas_->ClipTo(clip);
  }

 private:
  const InstrumentAppearance& appearance_;
  InstrumentParts* list_ = nullptr;
  Canvas* canvas_ = nullptr;
};

struct ModeRenderer {
  void (*drawBackground)(Canvas& canvas, InstrumentAppearance& appearance);
  // Adds the parts that show the block's current value; `text` is the text of a digital readout.
  void (*addParts)(ValueLayer& layer, const InstrumentBlock& block, const char* text);
};
extern const ModeRenderer kGaugeRenderer, kDigitalRenderer, kSegmentBarRenderer, kCompassRenderer, kCenterBarRenderer;

// The renderer of the style's mode.
const ModeRenderer& RendererOf(DWORD style);

}  // namespace kv
