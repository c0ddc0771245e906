// An image of field, charts and timeline, for the clipboard and for a file. Main thread only.
#pragma once

#include "camview/window.h"

namespace camview {

// Copies the image to the clipboard, or saves it in a file that the user chooses, and says what has become of it.
void CopyImage(View& view);
void SaveImage(View& view);

}  // namespace camview
