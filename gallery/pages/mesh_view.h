// A window that shows the multirotor: projected and depth-sorted by the library's mesh model, flat-shaded, rendered at
// twice the size and scaled down. It rotates by a timer; the mouse and the arrow keys rotate it, the wheel and the keys
// + and - zoom, Home resets it. Its window text is its name for screen readers. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

inline constexpr char kMeshViewClass[] = "kvGalleryMeshView";

BOOL RegisterMeshViewClass(HINSTANCE instance, BOOL registerIt);

// Starts or stops the rotation.
void RunMeshView(HWND view, BOOL run);

struct MeshViewStatistics {
  int triangles;
  int frames;         // drawn since the window was created
  double frameMs;     // time of the last one
  double turn, tilt;  // degrees
  double zoom;        // 1: the craft fills the window
};
// Returns 0 when the window is not such a view.
BOOL GetMeshViewStatistics(HWND view, MeshViewStatistics* statistics);

}  // namespace gallery
