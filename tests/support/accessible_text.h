// What a screen reader hears of a window: the answers of its IAccessible.
#pragma once

#include <windows.h>

#include <string>

namespace kvtest {

struct HeardText {
  std::wstring name, value;
  LONG role;
  bool operator==(const HeardText&) const = default;
};
HeardText HearWindow(HWND window);

}  // namespace kvtest
