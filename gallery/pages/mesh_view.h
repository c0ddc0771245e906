// A window that shows the multirotor: projected and depth-sorted by the library's mesh model, flat-shaded, drawn into a
// picture twice as large, shrunk and shown at once. It turns by itself; the mouse and the
// arrow keys turn it too, the wheel and the keys + and - change its size, Home brings it back. Its window text is its
// name for a screen reader. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

inline constexpr char kMeshViewClass[] = "kvGalleryMeshView";

BOOL RegisterMeshViewClass(HINSTANCE instance, BOOL registerIt);

// Starts or stops the motion.
void RunMeshView(HWND view, BOOL run);

struct MeshViewStatistics {
  int triangles;
  int frames;         // drawn since the window was made
  double frameMs;     // what the latest one took
  double turn, tilt;  // degrees
  double zoom;        // 1 when the craft fills the window
};
// 0 when the window is no such view.
BOOL GetMeshViewStatistics(HWND view, MeshViewStatistics* statistics);

}  // namespace gallery
