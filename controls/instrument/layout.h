// The layouts of the display instrument, and what they have in common.
//
// Every layout draws in two layers. The face is what stays while the value changes (panel, caption, dial, scale); the
// control keeps it as a picture. The value layer is drawn over a copy of the face, in parts: a part has a place, data
// and a function that draws it from nothing but the face's description and these data. So what a part looks like is a
// hash of its data, and where neither that nor the place changed, nothing has to be drawn. The thread that owns the
// control.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <span>
#include <type_traits>

#include "controls/instrument_block.h"
#include "framework/canvas.h"

namespace kv {

// The system's colours that faces read.
inline constexpr int kSystemColors[] = {COLOR_BTNFACE,     COLOR_BTNTEXT, COLOR_GRAYTEXT,   COLOR_3DSHADOW,
                                        COLOR_3DHIGHLIGHT, COLOR_3DLIGHT, COLOR_3DDKSHADOW, COLOR_WINDOWFRAME};

// All that a face depends on; compared byte by byte.
struct InstrumentAppearance {
  RECT area;  // the whole control
  DWORD style;
  COLORREF colors[ARRAYSIZE(kSystemColors)];
  InstrumentBlock block;  // without its current value; kInstrumentNoValue is set whenever there is none to show
  float reach;            // of a gauge's needle, in pixels; found when the face is drawn
};
static_assert(sizeof(InstrumentAppearance) == 56 + sizeof(InstrumentBlock));

// The parts of a value layer in their order. Both lists of an instrument whose face stayed have the same parts in the
// same order; parts may come and go at the end.
class InstrumentParts {
 public:
  static constexpr int kMaxParts = 128;
  struct Part {
    RECT place;
    DWORD hash;  // of what it looks like
  };
  // One part more than can be held makes the list incomplete.
  void Add(const RECT& place, DWORD hash);
  bool complete() const { return count_ <= kMaxParts; }
  std::span<const Part> all() const { return {parts_.data(), static_cast<size_t>(count_)}; }

 private:
  std::array<Part, kMaxParts> parts_;
  int count_ = 0;
};

// A few rectangles that do not overlap and together hold all that was added.
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

// What has to be drawn anew of `area` when the parts of a value layer change.
DirtyRects ChangedRects(const InstrumentParts& before, const InstrumentParts& after, const RECT& area);

// A number for all bytes of something, which are a multiple of four.
DWORD HashOf(const void* data, size_t size);

// Takes the parts of a value layer: either into a list or, those within its clip, onto a canvas.
class ValueLayer {
 public:
  ValueLayer(const InstrumentAppearance& appearance, InstrumentParts* list) : appearance_(appearance), list_(list) {}
  ValueLayer(const InstrumentAppearance& appearance, Canvas* canvas) : appearance_(appearance), canvas_(canvas) {}

  const InstrumentAppearance& appearance() const { return appearance_; }
  // Whether a part at this place would be left out.
  bool Skips(const RECT& place) const { return canvas_ && canvas_->Hides(place); }

  // `draw` is confined to the place.
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
  // Adds the parts that show the block's current value; `text` is what a digital readout shows.
  void (*addParts)(ValueLayer& layer, const InstrumentBlock& block, const char* text);
};
extern const ModeRenderer kGaugeRenderer, kDigitalRenderer, kSegmentBarRenderer, kCompassRenderer, kCentreBarRenderer;

// The layout of a control with these style bits.
const ModeRenderer& RendererOf(DWORD style);

}  // namespace kv
