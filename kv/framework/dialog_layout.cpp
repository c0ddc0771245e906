#include "kv/framework/dialog_layout.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kv/framework/control_class.h"
#include "kv/framework/numbers.h"

namespace kv {

namespace {

// Height of a combo box's window, which includes the list.
constexpr int kComboBoxHeight = 512;

// Calls visit(control, slot number from 1) for each child of the range in child-window order, until it returns false.
template <class Visit>
void VisitControls(HWND dialog, int firstId, int lastId, Visit visit) {
  int slot = 0;
  for (HWND child = GetWindow(dialog, GW_CHILD); IsWindow(child); child = GetWindow(child, GW_HWNDNEXT)) {
    const int id = GetWindowLongA(child, GWL_ID);
    if (id >= firstId && id <= lastId && !visit(child, ++slot)) return;
  }
}

LayoutSlot SlotOfControl(HWND dialog, HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  LayoutSlot slot{place.left, place.top, place.right - place.left, place.bottom - place.top};
  if (ClassifyControl(control) == kControlComboBox) {
    slot.height = static_cast<LONG>(SendMessageA(control, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
  }
  return slot;
}

// The ratio of the present extent to the captured one, both without margins; 1 when the captured one is 0. Stored as a
// fraction and multiplied before it is divided, so that a whole result is exact and a control as wide as the dialog
// stays so.
struct Proportion {
  double present, captured;

  double Of(double length) const { return captured == 0 ? length : length * present / captured; }
};

// The scales of one pass.
struct Scaling {
  Proportion x, y;
  int leftMargin, topMargin;
};

struct FontShape {
  int height, width, weight;
};

// The changes to one control.
struct ControlPlan {
  int x, y, width, height;
  enum { kSameFont, kNewFont, kSystemFont } fontChange;
  FontShape font;   // if there is a new font
  int fieldHeight;  // of a combo box's selection field; otherwise 0
};

ControlPlan PlanControl(ControlKind kind, LONG style, bool hasText, const LayoutSlot& slot, const Scaling& scale) {
  const auto place = [](LONG captured, const Proportion& proportion, int margin) {
    return ToInt(std::trunc(proportion.Of(static_cast<double>(captured) - margin)) + margin);
  };
  ControlPlan plan{
      .x = place(slot.x, scale.x, scale.leftMargin),
      .y = place(slot.y, scale.y, scale.topMargin),
      .width = ToInt(scale.x.Of(slot.width)),
      .height = ToInt(scale.y.Of(slot.height)),
      .fontChange = ControlPlan::kSameFont,
      .font = {},
      .fieldHeight = 0,
  };
  const int height = ToInt(scale.y.Of(14.0));
  const int width = ToInt(scale.x.Of(6.0));
  const int narrowWidth = ToInt(scale.x.Of(4.5));
  const auto useFont = [&plan](FontShape font) {
    plan.fontChange = ControlPlan::kNewFont;
    plan.font = font;
  };
  switch (kind) {
    case kControlStatic:
    case kControlButton:
      if (hasText) useFont({height, width, 600});
      break;
    case kControlEdit:
      if (style & ES_MULTILINE) {
        plan.fontChange = ControlPlan::kSystemFont;
      } else {
        useFont({ToInt(plan.height * 0.85), ToInt(plan.height * 0.3), 600});
      }
      break;
    case kControlComboBox:
      if (style & (CBS_OWNERDRAWFIXED | CBS_OWNERDRAWVARIABLE)) {
        plan.fieldHeight = plan.height;
      } else {
        useFont({height, width, 600});
        plan.fieldHeight = height;
      }
      plan.height = kComboBoxHeight;
      break;
    case kControlTab: useFont({height, narrowWidth, 500}); break;
    case kControlTreeView: useFont({height, narrowWidth, 400}); break;
    case kControlSimpleBitmap:
      if (style & kBitmapSquareByWidth) plan.height = ToInt(scale.x.Of(slot.height));
      if (style & kBitmapSquareByHeight) plan.width = ToInt(scale.y.Of(slot.width));
      break;
    default: break;
  }
  return plan;
}

// The fonts that a pass replaces. Deleted after the pass, because controls may share one.
class ReplacedFonts {
 public:
  ReplacedFonts() = default;
  ~ReplacedFonts() { std::for_each(fonts_.begin(), end_, DeleteObject); }
  ReplacedFonts(const ReplacedFonts&) = delete;
  ReplacedFonts& operator=(const ReplacedFonts&) = delete;

  void Remember(HFONT font) {
    if (!font || IsStock(font) || end_ == fonts_.end() || std::find(fonts_.begin(), end_, font) != end_) return;
    *end_++ = font;
  }

 private:
  static bool IsStock(HFONT font) {
    constexpr int kStockFonts[] = {SYSTEM_FONT, SYSTEM_FIXED_FONT, ANSI_VAR_FONT, ANSI_FIXED_FONT};
    return std::ranges::any_of(kStockFonts, [font](int stock) { return GetStockObject(stock) == font; });
  }

  std::array<HFONT, 1024> fonts_{};
  std::array<HFONT, 1024>::iterator end_ = fonts_.begin();
};

HFONT CreateDialogFont(const FontShape& shape) {
  return CreateFontA(shape.height, shape.width, 0, 0, shape.weight, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_TT_PRECIS,
                     CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS, "Arial Unicode MS");
}

void ChangeFont(HWND control, const ControlPlan& plan, ReplacedFonts* replaced) {
  if (plan.fontChange == ControlPlan::kSameFont) return;
  const bool made = plan.fontChange == ControlPlan::kNewFont;
  const HGDIOBJ font = made ? CreateDialogFont(plan.font) : GetStockObject(SYSTEM_FONT);
  if (!font) return;
  const auto previous = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
  SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  // Controls that get a stock font never have a font created here, so their previous font is not deleted.
  if (made) replaced->Remember(previous);
}

void ScaleControl(HWND control, const LayoutSlot& slot, const Scaling& scale, ReplacedFonts* replaced) {
  const ControlKind kind = ClassifyControl(control);
  const LONG style = GetWindowLongA(control, GWL_STYLE);
  const ControlPlan plan = PlanControl(kind, style, GetWindowTextLengthA(control) > 0, slot, scale);
  ChangeFont(control, plan, replaced);
  if (kind == kControlComboBox) {
    SendMessageA(control, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), plan.fieldHeight);
  }
  MoveWindow(control, plan.x, plan.y, plan.width, plan.height, FALSE);
}

void StoreScale(float* output, double scale) {
  if (!IsBadWritePtr(output, sizeof(*output))) *output = static_cast<float>(scale);
}

// Moves one of two edges if their distance is less than `minimum`. In floating point, because a sender of WM_SIZING may
// pass any rectangle.
BOOL EnforceMinimum(LONG* low, LONG* high, bool moveLow, double minimum) {
  if (static_cast<double>(*high) - *low >= minimum) return FALSE;
  (moveLow ? *low : *high) = ToInt(moveLow ? *high - minimum : *low + minimum);
  return TRUE;
}

}  // namespace

BOOL CaptureLayout(HWND dialog, LayoutSlot* slots, int firstId, int lastId) {
  if (!IsWindow(dialog) || IsBadWritePtr(slots, sizeof(*slots))) return FALSE;
  RECT client{};
  GetClientRect(dialog, &client);
  slots[0] = {client.left, client.top, client.right, client.bottom};
  VisitControls(dialog, firstId, lastId, [&](HWND control, int slot) {
    if (IsBadWritePtr(&slots[slot], sizeof(*slots))) return false;
    slots[slot] = SlotOfControl(dialog, control);
    return true;
  });
  return TRUE;
}

int LayoutSlotOf(HWND dialog, int firstId, int lastId, int id) {
  int found = -1;
  VisitControls(dialog, firstId, lastId, [&](HWND control, int slot) {
    if (GetWindowLongA(control, GWL_ID) != id) return true;
    found = slot;
    return false;
  });
  return found;
}

BOOL ApplyLayout(HWND dialog, int bottomMargin, int leftMargin, int topMargin, int firstId, int lastId,
                 const LayoutSlot* slots, float* scaleX, float* scaleY, BOOL redraw) {
  if (!IsWindow(dialog) || IsBadReadPtr(slots, sizeof(*slots))) return FALSE;
  RECT client{};
  GetClientRect(dialog, &client);
  // In floating point, because margins may be any numbers.
  const double verticalMargins = static_cast<double>(bottomMargin) + topMargin;
  const LayoutSlot& captured = slots[0];
  const Scaling scale{
      .x = {client.right - static_cast<double>(leftMargin), captured.width - static_cast<double>(leftMargin)},
      .y = {client.bottom - verticalMargins, captured.height - verticalMargins},
      .leftMargin = leftMargin,
      .topMargin = topMargin,
  };
  StoreScale(scaleX, scale.x.Of(1));
  StoreScale(scaleY, scale.y.Of(1));
  {
    ReplacedFonts replaced;
    VisitControls(dialog, firstId, lastId, [&](HWND control, int slot) {
      if (IsBadReadPtr(&slots[slot], sizeof(*slots))) return false;
      ScaleControl(control, slots[slot], scale, &replaced);
      return true;
    });
  }
  // With all children: they were moved without repainting, and the dialog may clip them.
  if (redraw) RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  return TRUE;
}

BOOL LimitSizing(UINT edge, RECT* window, int minimumWidth, int minimumHeight) {
  if (edge < WMSZ_LEFT || edge > WMSZ_BOTTOMRIGHT || IsBadWritePtr(window, sizeof(*window))) return FALSE;
  const bool dragsLeft = edge == WMSZ_LEFT || edge == WMSZ_TOPLEFT || edge == WMSZ_BOTTOMLEFT;
  const bool dragsTop = edge == WMSZ_TOP || edge == WMSZ_TOPLEFT || edge == WMSZ_TOPRIGHT;
  const bool dragsWidth = edge != WMSZ_TOP && edge != WMSZ_BOTTOM;
  const bool dragsHeight = edge != WMSZ_LEFT && edge != WMSZ_RIGHT;
  BOOL changed = FALSE;
  if (dragsWidth) changed |= EnforceMinimum(&window->left, &window->right, dragsLeft, minimumWidth);
  if (dragsHeight) changed |= EnforceMinimum(&window->top, &window->bottom, dragsTop, minimumHeight);
  return changed;
}

}  // namespace kv
