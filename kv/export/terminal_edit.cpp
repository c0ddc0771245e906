#include "kv/export/terminal_edit.h"

#include <richedit.h>

namespace kv {

namespace {

// The control distinguishes versions of the struct by its size: this is the 8-bit second version.
static_assert(sizeof(CHARFORMAT2A) == 84);
static_assert(sizeof(CHARFORMATA) == 60);  // the first version, a prefix of the second

constexpr DWORD kFormatMask =
    CFM_SIZE | CFM_COLOR | CFM_FACE | CFM_CHARSET | CFM_BACKCOLOR | CFM_WEIGHT | CFM_STYLE | CFM_STRIKEOUT;
static_assert(kFormatMask == 0xEC480008);

constexpr DWORD kEditStyle = SES_EXTENDBACKCOLOR | SES_USECRLF | SES_XLTCRCRLFTOCR;
static_assert(kEditStyle == 16420);

constexpr DWORD kEventMask = ENM_CHANGE | ENM_KEYEVENTS | ENM_MOUSEEVENTS | ENM_DROPFILES;
static_assert(kEventMask == 0x130001);

constexpr DWORD kOptions = ECO_AUTOWORDSELECTION | ECO_AUTOVSCROLL | ECO_AUTOHSCROLL | ECO_NOHIDESEL | ECO_WANTRETURN;
static_assert(kOptions == 4545);

constexpr LONG kTextHeightTwips = 192;

CHARFORMAT2A TerminalFormat() {
  CHARFORMAT2A format{};
  format.cbSize = sizeof(format);
  format.dwMask = kFormatMask;
  format.dwEffects = CFE_BOLD;
  format.yHeight = kTextHeightTwips;
  format.crTextColor = kTerminalGreen;
  format.bCharSet = ANSI_CHARSET;
  format.bPitchAndFamily = FIXED_PITCH | FF_SWISS;
  lstrcpyA(format.szFaceName, "Terminal");
  format.wWeight = FW_BOLD;
  format.crBackColor = kTerminalBlack;
  return format;
}
static_assert((FIXED_PITCH | FF_SWISS) == 0x21);

}  // namespace

BOOL styleTerminalEdit(HWND edit) {
  if (!IsWindow(edit)) return 1;
  SETTEXTEX plainText{.flags = ST_DEFAULT, .codepage = CP_ACP};
  SendMessageA(edit, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&plainText), reinterpret_cast<LPARAM>(""));
  SendMessageA(edit, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), TRUE);
  SendMessageA(edit, EM_SETBKGNDCOLOR, 0, kTerminalBlack);
  SendMessageA(edit, EM_SETEDITSTYLE, kEditStyle, kEditStyle);
  CHARRANGE all{.cpMin = 0, .cpMax = -1};
  SendMessageA(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&all));
  CHARFORMAT2A format = TerminalFormat();
  SendMessageA(edit, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
  const LRESULT events = SendMessageA(edit, EM_GETEVENTMASK, 0, 0);
  SendMessageA(edit, EM_SETEVENTMASK, 0, events | kEventMask);
  SendMessageA(edit, EM_SETOPTIONS, ECOOP_SET, kOptions);
  InvalidateRect(edit, nullptr, TRUE);
  return 1;
}

}  // namespace kv
