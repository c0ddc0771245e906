// camview's window: what is open, where in its time we are, and what is shown of it. Main thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "camview/display.h"
#include "camview/event_table.h"
#include "camview/source.h"
#include "camview/view_time.h"
#include "kv/framework/language.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

inline constexpr wchar_t kFileStem[] = L"camview";  // of the language libraries

struct StartOptions {
  std::wstring path;  // of a recording to open; ""
  int port = 0;       // to connect to
  int language = kv::kStoredLanguage;
};

// Commands change source, time and options; then Update brings the display in line.
struct View {
  explicit View(HWND dialog) : window(dialog), display(dialog, source) {}

  HWND window;
  Source source;
  ViewTime time;
  EventTable events;
  DisplayOptions options;
  Display display;
  std::vector<std::wstring> recentFiles;  // as the menu shows them
  unsigned shownSource = 0;               // whose range `time` has
  UINT tickMs = 0;                        // of the timer; 0: it does not run
  bool isUpdating = false, isOutdated = false;
};

// Returns the window's state; null before it is created and after it is destroyed.
View* ViewOf(HWND window);

// Updates the range of `time` and all that is shown, and runs the timer while something changes by itself.
void Update(View& view);

// Returns the window for kv::RunDialog; `options` must outlive it. RegisterControls registers (`registerThem` not 0)
// the window classes of this folder before, and unregisters them after; it returns 0 on failure.
kv::ScaledDialog MainWindow(const StartOptions& options);
BOOL RegisterControls(HINSTANCE instance, BOOL registerThem);

}  // namespace camview
