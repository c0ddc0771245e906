#include "kv/toolkit/scaled_dialog.h"

#include <commctrl.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/dialog.h"
#include "kv/framework/guards.h"
#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/framework/window_position.h"
#include "kv/lists/extended_list.h"
#include "kv/resource.h"
#include "kv/toolkit/about_box.h"
#include "kv/toolkit/control_access.h"
#include "kv/toolkit/control_layout.h"
#include "kv/toolkit/copy_key.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/text_tips.h"

namespace kv {

namespace {

constexpr wchar_t kStateProperty[] = L"kvScaledDialog";
constexpr int kTextPx = 14;          // at scale 1 and 96 DPI
constexpr int kMinTextPx = 11;       // at 96 DPI; smaller ones cannot be read
constexpr UINT kAboutItem = 0x9000;  // the system uses the low four bits
constexpr int kMinRowPx = 15;        // of a list: for a text of that height

using SharedDialogState = std::shared_ptr<DialogState>;

// The parameters for opening a dialog; valid until WM_INITDIALOG has been handled. The mark is tested because any
// program may send WM_INITDIALOG.
struct Opening {
  static constexpr DWORD kMark = 0x6B764F70;
  DWORD mark;
  const ScaledDialog& options;
  DialogKind kind;
};

// Converts pixels at 96 DPI.
int AtDpi(HWND dialog, int px) {
  return MulDiv(px, GetDeviceCaps(WindowDc(dialog), LOGPIXELSY), USER_DEFAULT_SCREEN_DPI);
}

INT_PTR CallDialogProcedure(HWND dialog, const DialogState& state, UINT message, WPARAM wParam, LPARAM lParam) {
  return state.options.procedure ? state.options.procedure(dialog, message, wParam, lParam) : FALSE;
}

// The dialog that was asked for last, which most messages are for: looking up its property is a call into the system.
struct LastDialog {
  HWND window;
  const SharedDialogState* state;
} lastDialog{};

// Windows of the dialog class are ANSI windows, which replace characters outside the code page by question marks:
// caption messages bypass the class.
LRESULT CALLBACK WideCaptionProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  const SharedDialogState state = DialogStateOf(dialog);
  if (!state) return DefWindowProcW(dialog, message, wParam, lParam);
  switch (message) {
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH: return DefWindowProcW(dialog, message, wParam, lParam);
    default: break;
  }
  const LRESULT result = CallWindowProcW(state->classProcedure, dialog, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    if (lastDialog.window == dialog) lastDialog = {};
    delete static_cast<SharedDialogState*>(RemovePropW(dialog, kStateProperty));
  }
  return result;
}

// ---- Creation and destruction ---------------------------------------------------------------------------------------

SharedDialogState CreateDialogState(HWND dialog, const Opening& opening) {
  auto state = std::make_shared<DialogState>();
  state->options = opening.options;
  state->kind = opening.kind;
  if (state->options.background != kDefaultBackground)
    state->background = OwnedBrush(CreateSolidBrush(state->options.background));
  SetPropW(dialog, kStateProperty, new SharedDialogState(state));
  state->classProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongW(dialog, GWL_WNDPROC, reinterpret_cast<LONG>(WideCaptionProcedure)));
  if (state->kind == DialogKind::kPage) SetWindowLongW(dialog, GWL_ID, kPageId);
  if (state->options.accelerators) {
    state->accelerators = LoadAcceleratorsW(modules.application, state->options.accelerators);
  }
  return state;
}

// On a screen that is smaller, the system has created the window smaller than its template.
void RestoreTemplateSize(HWND dialog, const wchar_t* templateName) {
  HRSRC resource = FindResourceW(modules.application, templateName, MAKEINTRESOURCEW(5));  // RT_DIALOG, in wide form
  const auto* words = static_cast<const WORD*>(LockResource(LoadResource(modules.application, resource)));
  if (!words) return;
  // Width and height follow the number of controls and the position.
  const WORD* size = words + (words[1] == 0xFFFF ? 11 : 7);
  RECT area{0, 0, static_cast<short>(size[0]), static_cast<short>(size[1])};
  if (!MapDialogRect(dialog, &area)) return;
  const SIZE present = SizeOf(dialog), client = ClientSize(dialog);
  if (client.cx >= area.right && client.cy >= area.bottom) return;
  SetWindowPos(dialog, nullptr, 0, 0, present.cx - client.cx + area.right, present.cy - client.cy + area.bottom,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Enlarges the window by the height of the menu bar.
void AddMenu(HWND dialog, DialogState& state) {
  if (!state.options.menu || state.kind == DialogKind::kPage) return;
  const LONG before = ClientSize(dialog).cy;
  ReplaceMenu(dialog, state);
  const SIZE size = SizeOf(dialog);
  SetWindowPos(dialog, nullptr, 0, 0, size.cx, size.cy + before - ClientSize(dialog).cy,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

std::wstring AboutTitle() {
  const std::wstring title = ResourceText(KV_ABOUT);
  return title.empty() ? L"About" : title;
}

void NameAboutItem(HMENU menu) {
  ModifyMenuW(menu, kAboutItem, MF_BYCOMMAND | MF_STRING, kAboutItem, (AboutTitle() + L"...").c_str());
}

void AddAboutItem(HWND dialog, const DialogState& state) {
  if (!state.options.version || state.kind == DialogKind::kPage) return;
  const HMENU menu = GetSystemMenu(dialog, FALSE);
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu, MF_STRING, kAboutItem, L"");
  NameAboutItem(menu);
}

void SaveState(HWND dialog, const DialogState& state, bool endsSession) {
  if (state.kind != DialogKind::kPage) SavePosition(dialog, state.options);
  CallDialogProcedure(dialog, state, kSaveState, endsSession, 0);
}

// The process may end as soon as this returns, whatever the dialog is waiting for.
INT_PTR OnSessionEnd(HWND dialog, const DialogState& state) {
  for (const DialogPage& page : std::vector(state.pages)) {
    if (const SharedDialogState pageState = DialogStateOf(page.window)) SaveState(page.window, *pageState, true);
  }
  SaveState(dialog, state, true);
  PostQuitMessage(0);
  return TRUE;
}

INT_PTR OnInit(HWND dialog, const Opening& opening) {
  const SharedDialogState state = CreateDialogState(dialog, opening);
  const ScaledDialog& options = state->options;
  SetTextsOfLanguage(dialog, options.templateName);
  if (state->kind != DialogKind::kPage) RestoreTemplateSize(dialog, options.templateName);
  AddMenu(dialog, *state);
  AddAboutItem(dialog, *state);
  const SIZE asInTemplate = SizeOf(dialog);
  // Not so small that texts would be.
  const auto minimum = [](LONG chosen, LONG ofTemplate) {
    return chosen ? std::max<LONG>(chosen, MulDiv(ofTemplate, kMinTextPx, kTextPx)) : ofTemplate;
  };
  state->minimumSize = {minimum(options.minimumSize.cx, asInTemplate.cx),
                        minimum(options.minimumSize.cy, asInTemplate.cy)};
  const INT_PTR result =
      CallDialogProcedure(dialog, *state, WM_INITDIALOG, reinterpret_cast<WPARAM>(GetFocus()), options.parameter);
  AssignFonts(dialog);
  VisitChildren(dialog, AddCopyKey);
  VisitChildren(dialog, FitInstrument);
  CaptureControls(dialog, *state);
  state->textTips = CreateTextTips(dialog);
  ShowLanguage(dialog);
  // The procedure may have destroyed the dialog, here or before.
  if (!DialogStateOf(dialog)) return result;
  if (state->kind == DialogKind::kModeless) ModelessDialogs(dialog, nullptr, kModelessAdd);
  if (state->kind != DialogKind::kPage) RestorePosition(dialog, *state);
  const SIZE client = ClientSize(dialog);
  SendMessageW(dialog, WM_SIZE, IsZoomed(dialog) ? SIZE_MAXIMIZED : SIZE_RESTORED, MAKELPARAM(client.cx, client.cy));
  if (state->kind != DialogKind::kPage) RunTicks(dialog, true);
  return state->kind == DialogKind::kPage ? FALSE : result;
}

void OnDestroy(HWND dialog, DialogState& state) {
  VisitChildren(dialog, [&](HWND child) {
    const HFONT font = FontOf(child);
    if (font != state.listFont) state.fonts.emplace_back(font);
  });
  SaveState(dialog, state, false);
  if (state.kind == DialogKind::kModeless) ModelessDialogs(dialog, nullptr, kModelessRemove);
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

void OnPaint(HWND dialog, const DialogState& state) {
  const PaintScope paint(dialog);
  RECT client{};
  GetClientRect(dialog, &client);
  FillRect(paint.dc(), &client, state.background ? state.background : GetSysColorBrush(COLOR_BTNFACE));
}

// On a custom background, texts are black or white, depending on contrast.
INT_PTR OnControlColor(const DialogState& state, HDC dc, HWND control) {
  // Wine's labels and buttons do not set their reading order.
  if (GetWindowLongW(control, GWL_EXSTYLE) & WS_EX_RTLREADING) SetTextAlign(dc, GetTextAlign(dc) | TA_RTLREADING);
  const COLORREF color = state.background ? state.options.background : GetSysColor(COLOR_BTNFACE);
  const int lightness = 30 * GetRValue(color) + 59 * GetGValue(color) + 11 * GetBValue(color);
  const COLORREF readable = lightness < 100 * 128 ? RGB(255, 255, 255) : RGB(0, 0, 0);
  SetTextColor(dc, state.background ? readable : GetSysColor(COLOR_BTNTEXT));
  SetBkColor(dc, color);
  return reinterpret_cast<INT_PTR>(state.background ? static_cast<HBRUSH>(state.background)
                                                    : GetSysColorBrush(COLOR_BTNFACE));
}

INT_PTR OnSystemColors(HWND dialog, WPARAM wParam, LPARAM lParam) {
  VisitChildren(dialog, [&](HWND child) { SendMessageW(child, WM_SYSCOLORCHANGE, wParam, lParam); });
  RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  return TRUE;
}

INT_PTR ReturnDialogResult(HWND dialog, LONG result) {
  SetWindowLongW(dialog, DWL_MSGRESULT, result);
  return TRUE;
}

INT_PTR OnMinimumSize(HWND dialog, const DialogState& state, MINMAXINFO* limits) {
  if (IsBadWritePtr(limits, sizeof(*limits))) return FALSE;
  const SIZE minimum = FitToWorkArea(dialog, state.minimumSize);
  limits->ptMinTrackSize = {minimum.cx, minimum.cy};
  // While it is being created, the controls are where the template has them.
  if (!state.minimumSize.cx) limits->ptMaxTrackSize = {SHRT_MAX, SHRT_MAX};
  return TRUE;
}

// Rows of an extended list scale with the dialog and the DPI, as texts do.
INT_PTR OnMeasure(HWND dialog, const DialogState& state, MEASUREITEMSTRUCT* request) {
  if (IsBadWritePtr(request, sizeof(*request))) return FALSE;
  const HWND control = GetDlgItem(dialog, static_cast<int>(request->CtlID));
  if (!IsOfClass(control, kExtendedListClass)) return FALSE;
  const int height = AtDpi(dialog, static_cast<int>(request->itemHeight));
  request->itemHeight = static_cast<UINT>(
      std::max(AtDpi(dialog, kMinRowPx), static_cast<int>(static_cast<float>(height) * state.scale.y)));
  return TRUE;
}

INT_PTR OnNotify(const DialogState& state, LPARAM lParam) {
  if (IsBadReadPtr(reinterpret_cast<const void*>(lParam), sizeof(NMHDR))) return FALSE;
  const NMHDR head = NotificationOf(lParam);
  if (head.code != TTN_GETDISPINFOW || head.hwndFrom != state.textTips) return FALSE;
  ProvideTextTip(state, lParam);
  return TRUE;
}

INT_PTR OnClose(HWND dialog, const DialogState& state, INT_PTR result) {
  if (state.kind == DialogKind::kPage) return TRUE;
  if (state.kind == DialogKind::kModal) return EndDialog(dialog, result);
  if (IsWindowEnabled(dialog)) return DestroyWindow(dialog);
  // The function that opened a box is still on the stack.
  return SetForegroundWindow(GetLastActivePopup(dialog));
}

INT_PTR OnCommand(HWND dialog, const DialogState& state, WORD id) {
  const LanguageMenu& menu = state.options.languageMenu;
  if (menu.item && id >= menu.firstCommand && id < menu.firstCommand + kLanguageCount) {
    SwitchLanguage(nullptr, nullptr, static_cast<int>(id - menu.firstCommand));
    return TRUE;
  }
  if (state.kind != DialogKind::kModal || (id != IDOK && id != IDCANCEL)) return FALSE;
  return OnClose(dialog, state, id);
}

INT_PTR OnSystemCommand(HWND dialog, const DialogState& state, WPARAM command) {
  if ((command & 0xFFF0) != kAboutItem || !state.options.version) return FALSE;
  ShowAboutBox(dialog, {.caption = AboutTitle(), .name = WindowText(dialog) + L" " + state.options.version});
  return TRUE;
}

// Handles messages for which the dialog's procedure returned FALSE.
INT_PTR HandleDefault(HWND dialog, const DialogState& state, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT: OnPaint(dialog, state); return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: return OnControlColor(state, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_SYSCOLORCHANGE: return OnSystemColors(dialog, wParam, lParam);  // sent only to top-level windows
    case WM_GETMINMAXINFO: return OnMinimumSize(dialog, state, reinterpret_cast<MINMAXINFO*>(lParam));
    case WM_ENDSESSION: return wParam && OnSessionEnd(dialog, state);
    case WM_MEASUREITEM: return OnMeasure(dialog, state, reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
    // Controls would query the dialog's class, which is an ANSI class.
    case WM_NOTIFYFORMAT: return ReturnDialogResult(dialog, NFR_UNICODE);
    case WM_NOTIFY: return OnNotify(state, lParam);
    case WM_COMMAND: return OnCommand(dialog, state, LOWORD(wParam));
    case WM_SYSCOMMAND: return OnSystemCommand(dialog, state, wParam);
    case WM_INITMENUPOPUP:  // the language may have changed
      if (HIWORD(lParam) && state.options.version) NameAboutItem(reinterpret_cast<HMENU>(wParam));
      return FALSE;
    case WM_CLOSE: OnClose(dialog, state, IDCANCEL); return TRUE;
    default: return FALSE;
  }
}

INT_PTR CALLBACK ScaledDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  const SharedDialogState state = DialogStateOf(dialog);
  if (!state) {
    const auto* opening = reinterpret_cast<const Opening*>(lParam);
    const bool isOurs =
        message == WM_INITDIALOG && !IsBadReadPtr(opening, sizeof(*opening)) && opening->mark == Opening::kMark;
    return isOurs ? OnInit(dialog, *opening) : FALSE;
  }
  const bool isSize = message == WM_SIZE && wParam != SIZE_MINIMIZED;
  if (isSize) PlaceControls(dialog, *state);
  if (message == WM_DESTROY) OnDestroy(dialog, *state);
  const INT_PTR result = CallDialogProcedure(dialog, *state, message, wParam, lParam);
  if (isSize) PlacePage(dialog, *state);
  return result || !DialogStateOf(dialog) ? result : HandleDefault(dialog, *state, message, wParam, lParam);
}

}  // namespace

DialogState::~DialogState() {
  for (HBITMAP bitmap : languageBitmaps) {
    if (bitmap) DeleteObject(bitmap);
  }
}

std::shared_ptr<DialogState> DialogStateOf(HWND dialog) {
  if (dialog && dialog == lastDialog.window) return *lastDialog.state;
  const auto* holder = static_cast<const SharedDialogState*>(GetPropW(dialog, kStateProperty));
  if (!holder) return nullptr;
  lastDialog = {dialog, holder};
  return *holder;
}

void RunTicks(HWND dialog, bool run) {
  const SharedDialogState state = DialogStateOf(dialog);
  if (!state || !state->options.tickMs) return;
  if (!run) {
    KillTimer(dialog, kTickTimer);
    return;
  }
  SetTimer(dialog, kTickTimer, state->options.tickMs, nullptr);
  if (state->kind == DialogKind::kPage) SendMessageW(dialog, WM_TIMER, kTickTimer, 0);
}

HWND CreateScaledDialog(HWND owner, const ScaledDialog& dialog, DialogKind kind) {
  const Opening opening{Opening::kMark, dialog, kind};
  HWND window = CreateDialogParamW(modules.application, dialog.templateName, owner, ScaledDialogProcedure,
                                   reinterpret_cast<LPARAM>(&opening));
  if (!window) ReportMissing(dialog.templateName);
  return window;
}

HWND OpenDialog(HWND owner, const ScaledDialog& dialog) {
  HWND window = CreateScaledDialog(owner, dialog, DialogKind::kModeless);
  if (window) ShowWindow(window, SW_SHOW);
  return window;
}

INT_PTR RunModalDialog(HWND owner, const ScaledDialog& dialog) {
  const Opening opening{Opening::kMark, dialog, DialogKind::kModal};
  const INT_PTR result = DialogBoxParamW(modules.application, dialog.templateName, owner, ScaledDialogProcedure,
                                         reinterpret_cast<LPARAM>(&opening));
  if (result == -1) ReportMissing(dialog.templateName);
  return result;
}

DialogScale ScaleOf(HWND dialog) {
  const SharedDialogState state = DialogStateOf(dialog);
  return state ? state->scale : DialogScale{1, 1};
}

int TextHeightOf(HWND dialog) {
  const DialogScale scale = ScaleOf(dialog);
  const int scaled = static_cast<int>(static_cast<float>(AtDpi(dialog, kTextPx)) * std::min(scale.x, scale.y));
  return std::max(scaled, AtDpi(dialog, kMinTextPx));
}

void EnableControl(HWND dialog, int id, bool enabled) {
  const HWND control = GetDlgItem(dialog, id);
  if (!enabled && GetFocus() == control) SetFocus(GetNextDlgTabItem(dialog, control, FALSE));
  EnableWindow(control, enabled);
}

bool IsChecked(HWND dialog, int id) {
  return IsDlgButtonChecked(dialog, id) == BST_CHECKED;
}

void NameControl(HWND dialog, int id, const wchar_t* name) {
  DefWindowProcW(GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
}

NMHDR NotificationOf(LPARAM lParam) {
  NMHDR head;
  std::memcpy(&head, reinterpret_cast<const void*>(lParam), sizeof(head));
  return head;
}

}  // namespace kv
