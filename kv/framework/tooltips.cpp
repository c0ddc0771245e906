#include "kv/framework/tooltips.h"

#include <commctrl.h>

#include <cstddef>

#include "kv/framework/control_class.h"

namespace kv {

namespace {

// Without the last field, which common controls before version 6 do not know.
constexpr UINT kToolInfoSize = offsetof(TTTOOLINFOW, lpReserved);
static_assert(kToolInfoSize == 44);

bool IsReadableTable(const TooltipEntry* entries, int count) {
  const unsigned long long size = sizeof(TooltipEntry) * static_cast<unsigned long long>(count > 1 ? count : 1);
  return size <= MAXDWORD && !IsBadReadPtr(entries, static_cast<UINT_PTR>(size));
}

void ResolveText(HINSTANCE instance, const TooltipEntry& entry, wchar_t (&text)[kTooltipCharacters]) {
  text[0] = L'\0';
  if (!entry.text) {
    LoadStringW(instance, entry.id, text, kTooltipCharacters);
  } else if (IsBadReadPtr(entry.text, 1)) {
    LoadStringW(instance, reinterpret_cast<UINT>(entry.text), text, kTooltipCharacters);
  } else {
    lstrcpynW(text, entry.text, kTooltipCharacters);
  }
}

}  // namespace

HWND CreateTooltips(HINSTANCE instance, HWND owner, const TooltipEntry* entries, int count) {
  if (!IsWindow(owner) || !IsReadableTable(entries, count)) return nullptr;
  if (!instance) instance = reinterpret_cast<HINSTANCE>(GetWindowLongA(owner, GWL_HINSTANCE));
  const HWND tips = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                                    CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, instance, nullptr);
  if (!tips) return nullptr;

  const bool toolbar = IsOfClass(owner, TOOLBARCLASSNAMEA);
  wchar_t text[kTooltipCharacters];
  TTTOOLINFOW tool{};
  tool.cbSize = kToolInfoSize;
  tool.uFlags = toolbar ? TTF_SUBCLASS : TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = owner;
  tool.hinst = instance;
  tool.lpszText = text;
  for (int i = 0; i < count; ++i) {
    ResolveText(instance, entries[i], text);
    if (text[0] == L'\0') continue;
    if (toolbar) {
      SendMessageW(owner, TB_GETITEMRECT, i, reinterpret_cast<LPARAM>(&tool.rect));
      tool.uId = entries[i].id;
    } else {
      tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(owner, entries[i].id));
    }
    SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  }
  return tips;
}

}  // namespace kv
