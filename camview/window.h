// camview's window. Main thread only.
#pragma once

#include <string>

#include "kv/framework/language.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

inline constexpr wchar_t kFileStem[] = L"camview";  // of the language libraries

struct StartOptions {
  std::wstring path;  // of a recording to open; ""
  int port = 0;       // to connect to
  int language = kv::kStoredLanguage;
};

// Returns the window for kv::RunDialog; `options` must outlive it. RegisterControls registers (`registerThem` not 0)
// the window classes of this folder before, and unregisters them after; it returns 0 on failure.
kv::ScaledDialog MainWindow(const StartOptions& options);
BOOL RegisterControls(HINSTANCE instance, BOOL registerThem);

}  // namespace camview
