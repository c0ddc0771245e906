// Repainting at once what is repainted many times a second. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Invalidates a window that has no children, or a part of it, erasing, and paints it before returning. Not asking for
// children saves a call into the system each time.
inline void RepaintWithoutChildren(HWND window, HRGN part = nullptr) {
  RedrawWindow(window, nullptr, part, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_NOCHILDREN);
}

}  // namespace kv
