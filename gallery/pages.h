// The pages, in the order of the list, and which of them exist as windows. Main thread only.
#pragma once

#include <windows.h>

#include <span>

#include "gallery/page.h"

namespace gallery {

std::span<const Page> AllPages();

// The index of a page by name; -1 when there is none.
int PageIndex(const wchar_t* name);

// The page's window as a child of `frame`, made if need be; null when its template fails.
HWND PageWindow(HWND frame, int index);
// The page's window if it exists.
HWND ExistingPageWindow(int index);
// The description of a page's window; null for other windows.
const Page* PageOf(HWND window);

}  // namespace gallery
