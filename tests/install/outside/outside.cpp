// Shows a dialog of the library with an instrument, checks its image, and exits: with 0 if everything is right,
// otherwise with the number of the first failed check.
#include "kv/controls/display_instrument.h"
#include "kv/framework/dialog.h"
#include "kv/framework/language.h"
#include "kv/framework/version.h"

#include <cstring>

#include "framework/language.h"

namespace {

INT_PTR CALLBACK DialogProcedure(HWND, UINT message, WPARAM, LPARAM) {
  return message == WM_INITDIALOG;
}

// Whether the window shows more than one color.
bool ShowsSomething(HWND window) {
  RECT rect;
  GetClientRect(window, &rect);
  HDC dc = GetDC(window);
  const COLORREF corner = GetPixel(dc, 0, 0);
  bool differs = false;
  for (int x = 0; x < rect.right; ++x) differs |= GetPixel(dc, x, rect.bottom / 2) != corner;
  ReleaseDC(window, dc);
  return differs;
}

int Run(HINSTANCE instance) {
  if (std::strcmp(KV_VERSION_TEXT, EXPECTED_VERSION) != 0) return 1;
  if (!kv::RegisterDialogClass(instance, TRUE) || !kv::RegisterDisplayInstrumentClass(instance, TRUE)) return 2;
  HWND dialog = CreateDialogParamA(instance, "DLG_OUTSIDE", nullptr, DialogProcedure, 0);
  if (dialog == nullptr) return 3;
  wchar_t text[64];
  if (LoadStringW(instance, 1, text, 64) == 0 || std::wcscmp(text, L"H\u00F6he \u2013 \u038E\u03C8\u03BF\u03C2") != 0)
    return 4;
  HWND instrument = GetDlgItem(dialog, 100);
  float value = 42;
  float shown = 0;
  SendMessageA(instrument, kv::kControlCommand, kv::kCommandValue | kv::kCommandRedraw,
               reinterpret_cast<LPARAM>(&value));
  SendMessageA(instrument, kv::kControlCommand, kv::kCommandValue | kv::kCommandRead, reinterpret_cast<LPARAM>(&shown));
  if (shown != value) return 5;
  if (!ShowsSomething(instrument)) return 6;
  int language = kGreek;
  HMODULE greek = kv::LoadLanguageResources(instance, L"outside", L"Outside", &language);
  if (greek == instance || LoadStringW(greek, 1, text, 64) == 0 || std::wcscmp(text, L"\u038E\u03C8\u03BF\u03C2") != 0)
    return 7;
  DestroyWindow(dialog);
  return 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return Run(instance);
}
