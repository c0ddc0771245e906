// camview's window. Main thread only.
#pragma once

#include <string>

#include "framework/language.h"
#include "toolkit/scaled_dialog.h"

namespace camview {

inline constexpr wchar_t kFileStem[] = L"camview";  // of the language libraries

struct StartOptions {
  std::wstring path;  // of a recording to open; ""
  int port = 0;       // to connect to
  int language = kv::kStoredLanguage;
};

// The window, for kv::RunDialog; `options` must live as long as it. The window classes of this folder are registered by
// RegisterControls (non-zero) before and unregistered after; it returns 0 when that fails.
kv::ScaledDialog MainWindow(const StartOptions& options);
BOOL RegisterControls(HINSTANCE instance, BOOL registerThem);

}  // namespace camview
