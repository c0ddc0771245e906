#include "tests/support/accessible_text.h"

#include <oleacc.h>

namespace kvtest {

HeardText HearWindow(HWND window) {
  void* object = nullptr;
  HeardText heard{};
  if (AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), &object) != S_OK) {
    return heard;
  }
  auto* control = static_cast<IAccessible*>(object);
  VARIANT self{}, role{};
  self.vt = VT_I4;
  BSTR text = nullptr;
  if (control->get_accName(self, &text) == S_OK) heard.name = text;
  SysFreeString(text);
  text = nullptr;
  if (control->get_accValue(self, &text) == S_OK) heard.value = text;
  SysFreeString(text);
  if (control->get_accRole(self, &role) == S_OK) heard.role = role.lVal;
  control->Release();
  return heard;
}

}  // namespace kvtest
