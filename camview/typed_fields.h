// What the user has typed into the fields for time and rate, when Enter is pressed: it is done, or refused with the
// reason. Main thread only.
#pragma once

#include "camview/window.h"

namespace camview {

// Goes to a time, or selects a range.
void OnTimeTyped(View& view);
void OnRateTyped(View& view);

}  // namespace camview
