// Numbers of the page "Bitmap control". Read by the resource compiler: plain #defines only.
#pragma once

#define IDC_BITMAP_PLAIN 1300  // and the pictures after it
#define IDC_BITMAP_TRANSPARENT 1301
#define IDC_BITMAP_SQUARE 1302
#define IDC_BITMAP_CHOSEN 1303
#define IDC_BITMAP_BACKDROP 1304
#define IDC_BITMAP_LAST 1304
#define IDC_BITMAP_NAME 1310
#define IDC_BITMAP_BUTTON 1311
#define IDC_BITMAP_EDIT 1312
#define IDC_BITMAP_LOG 1313
#define IDC_BITMAP_CLEAR 1314
#define IDC_BITMAP_LABEL 1320

#define IDS_BITMAP_LEFT 1300
#define IDS_BITMAP_RIGHT 1301
#define IDS_BITMAP_MIDDLE 1302
#define IDS_BITMAP_DOUBLE 1303
#define IDS_BITMAP_BUTTON 1304
#define IDS_BITMAP_TYPED 1305

// 301 is 0x12D and 0455, which the page shows.
#define IDB_EMBLEM 301
