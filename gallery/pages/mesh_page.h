// The mesh page: a multirotor drawn from the mesh model, turned by a timer and by the mouse.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
