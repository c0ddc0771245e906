#pragma once

#define IDC_LABEL 101
#define IDC_EDIT 102
#define IDC_ROWS 103
#define IDC_EMPTY 104
#define IDC_LINES 105
#define IDC_COMBO 106
#define IDC_OUTSIDE 201
#define IDM_KEY 301
#define IDS_BOTH 1
#define IDS_ENGLISH_ONLY 2
#define IDS_REJECTED 3
