#include "kv/toolkit/control_layout.h"

#include <commctrl.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "kv/framework/control_class.h"
#include "kv/framework/dialog_layout.h"
#include "kv/framework/guards.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/mirroring.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/text_tips.h"

namespace kv {

namespace {

bool IsInRange(const ScaledDialog& options, HWND control) {
  const int id = GetDlgCtrlID(control);
  return id >= options.firstId && id <= std::min(options.lastId, kPageId - 1);
}

bool TakesListFont(HWND control) {
  const LONG style = GetWindowLongW(control, GWL_STYLE);
  switch (ClassifyControl(control)) {
    case kControlListBox: return !(style & LBS_OWNERDRAWFIXED);
    case kControlEdit: return style & ES_MULTILINE && IsOfClass(control, "EDIT");
    default: return IsOfClass(control, WC_LISTVIEWA);
  }
}

bool IsLabel(HWND control) {
  return ClassifyControl(control) == kControlStatic && (GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) <= SS_RIGHT;
}

// Beside a field or a box, a label is on the same line at every size of the dialog.
void CenterOneLineLabel(HWND dialog, HWND control) {
  if (!IsLabel(control) || SizeOf(control).cy >= 2 * TextHeightOf(dialog)) return;
  SetWindowLongW(control, GWL_STYLE, GetWindowLongW(control, GWL_STYLE) | SS_CENTERIMAGE);
}

// Scaling skips labels without text, which would then show a later text in the template's font: they get a blank. Lines
// and rectangles must not get one: they store no font, so each scaling would create another one.
void FillEmptyLabel(HWND control) {
  if (IsLabel(control) && GetWindowTextLengthW(control) == 0) SetWindowTextW(control, L" ");
}

// The framework stretches fonts with the dialog, and those of edit controls with their height. Here all texts of a
// dialog have one size and the font's own proportions.
void UnstretchFont(HWND control, int textPx) {
  LOGFONTW font{};
  const HFONT former = FontOf(control);
  if (!GetObjectW(former, sizeof(font), &font) || font.lfWidth == 0) return;
  font.lfHeight = textPx;
  font.lfWidth = 0;
  font.lfWeight = FW_NORMAL;
  SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(CreateFontIndirectW(&font)), FALSE);
  DeleteObject(former);
}

// Edit controls align their text to the top. In a dialog larger than its template they are therefore only as high as
// the text requires, and centered.
void UnstretchField(HWND dialog, HWND control, const DialogScale& scale, int textPx) {
  const bool isField = ClassifyControl(control) == kControlEdit && !(GetWindowLongW(control, GWL_STYLE) & ES_MULTILINE);
  if (!isField && !IsOfClass(control, UPDOWN_CLASSA)) return;
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  constexpr float kEdges = 6;  // at least
  const float height = static_cast<float>(place.bottom - place.top), text = static_cast<float>(textPx);
  const float needed = std::max(height / scale.y + text - text / std::min(scale.x, scale.y), text + kEdges);
  const LONG excess = static_cast<LONG>(height - needed);
  if (excess <= 0) return;
  MoveWindow(control, place.left, place.top + excess / 2, place.right - place.left, place.bottom - place.top - excess,
             FALSE);
}

// The framework gives a combo box's field the height of its text: it is centered in its place, too.
void CenterComboBox(HWND dialog, HWND control, const DialogState& state) {
  if (ClassifyControl(control) != kControlComboBox) return;
  if ((GetWindowLongW(control, GWL_STYLE) & CBS_DROPDOWNLIST) == CBS_SIMPLE) return;
  const ScaledDialog& options = state.options;
  const int slot = LayoutSlotOf(dialog, options.firstId, std::min(options.lastId, kPageId - 1), GetDlgCtrlID(control));
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  const LONG height = place.bottom - place.top,
             edges = height - static_cast<LONG>(SendMessageW(control, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
  const LONG excess = static_cast<LONG>(static_cast<float>(state.slots[slot].height + edges) * state.scale.y) - height;
  if (excess <= 0) return;
  SetWindowPos(control, nullptr, place.left, place.top + excess / 2, 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW);
}

// A list's previous font is its copy of the template's, or the previous common font of the lists.
void ScaleTexts(HWND dialog, DialogState& state) {
  const int textPx = TextHeightOf(dialog);
  OwnedFont font = MakeFont(textPx, FW_NORMAL);
  VisitChildren(dialog, [&](HWND control) {
    if (!IsInRange(state.options, control)) return;
    UnstretchField(dialog, control, state.scale, textPx);
    if (!TakesListFont(control)) {
      UnstretchFont(control, textPx);
      return CenterComboBox(dialog, control, state);
    }
    const HFONT former = FontOf(control);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(static_cast<HFONT>(font)), FALSE);
    if (former != state.listFont) DeleteObject(former);
    if (ClassifyControl(control) == kControlListBox) SendMessageW(control, LB_SETITEMHEIGHT, 0, textPx + 2);
  });
  state.listFont = std::move(font);
}

}  // namespace

SIZE SizeOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

HFONT FontOf(HWND control) {
  return reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
}

void AssignFonts(HWND dialog) {
  VisitChildren(dialog, [](HWND child) {
    LOGFONTW description{};
    if (!GetObjectW(FontOf(child), sizeof(description), &description)) return;
    if (HFONT copy = CreateFontIndirectW(&description)) {
      SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(copy), FALSE);
    }
  });
}

void CaptureControls(HWND dialog, DialogState& state) {
  size_t controls = 0;
  VisitChildren(dialog, [&](HWND child) {
    controls += IsInRange(state.options, child);
    CenterOneLineLabel(dialog, child);
    if (SendMessageW(child, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) state.hasDefaultButton = true;
  });
  state.slots.resize(controls + 1);
  CaptureLayout(dialog, state.slots.data(), state.options.firstId, std::min(state.options.lastId, kPageId - 1));
}

void PlaceControls(HWND dialog, DialogState& state) {
  const ScaledDialog& options = state.options;
  size_t controls = 0;
  VisitChildren(dialog, [&](HWND child) {
    if (!IsInRange(options, child)) return;
    ++controls;
    FillEmptyLabel(child);
  });
  // A control that was created after the capture has no slot: ApplyLayout would read beyond the last one.
  if (controls + 1 > state.slots.size()) return;
  ApplyLayout(dialog, options.bottomMargin, options.leftMargin, options.topMargin, options.firstId,
              std::min(options.lastId, kPageId - 1), state.slots.data(), &state.scale.x, &state.scale.y, FALSE);
  ScaleTexts(dialog, state);
  FixMirroredDialog(dialog);
  MoveTextTips(dialog, state.textTips);
  // RDW_ALLCHILDREN: dialogs clip their controls, which have been moved without being painted.
  RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

}  // namespace kv
