// Numbers of the page "Display instruments". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_INSTRUMENTS_FIRST (IDC_PAGE_FIRST + 400)
#define IDC_INSTRUMENTS (IDC_INSTRUMENTS_FIRST + 0)  // the instruments in the order of their table
#define IDC_INSTRUMENTS_GLIDE (IDC_INSTRUMENTS_FIRST + 80)
#define IDC_INSTRUMENTS_VALID (IDC_INSTRUMENTS_FIRST + 81)
#define IDC_INSTRUMENTS_ENABLED (IDC_INSTRUMENTS_FIRST + 82)
#define IDC_INSTRUMENTS_HINT (IDC_INSTRUMENTS_FIRST + 83)

// The instruments' names; as UTF-8 they have room for 31 bytes.
#define IDS_INSTRUMENTS_NAME (IDS_PAGE_FIRST + 400)
