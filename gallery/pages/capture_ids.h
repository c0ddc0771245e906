// Numbers of the page "Video capture". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_CAPTURE_FIRST (IDC_PAGE_FIRST + 100 * PAGE_INDEX_CAPTURE)
#define IDC_CAPTURE_SCREEN (IDC_CAPTURE_FIRST + 0)
#define IDC_CAPTURE_STATE (IDC_CAPTURE_FIRST + 1)
#define IDC_CAPTURE_SEARCH (IDC_CAPTURE_FIRST + 2)

#define IDS_CAPTURE_FIRST (IDS_PAGE_FIRST + 100 * PAGE_INDEX_CAPTURE)
#define IDS_CAPTURE_NO_DEVICE (IDS_CAPTURE_FIRST + 0)
#define IDS_CAPTURE_STATE (IDS_CAPTURE_FIRST + 1)
#define IDS_CAPTURE_SEARCH (IDS_CAPTURE_FIRST + 2)
