// Numbers that the gallery's code and resource scripts share. The resource compiler reads this file: plain #defines
// only.
//
// Texts: page n (from 0, in the order of the table in pages.cpp) has its title at IDS_TITLE_FIRST + n and its
// description at IDS_DESCRIPTION_FIRST + n. A page's own texts and controls take a range of 100 from IDS_PAGE_FIRST +
// 100 * n and IDC_PAGE_FIRST + 100 * n.
#pragma once

#define IDI_GALLERY 1
#define IDI_GALLERY_SMALL 2

#define IDC_PAGE_LIST 100

#define IDM_GALLERY_EXIT 200
#define IDM_GALLERY_ABOUT 201

#define IDS_GALLERY_CAPTION 1
#define IDS_ABOUT_CAPTION 2
#define IDS_ABOUT_TEXT 3
#define IDS_LIST_TIP 4

#define IDS_TITLE_FIRST 100
#define IDS_DESCRIPTION_FIRST 200
#define IDS_PAGE_FIRST 1000

// Controls of pages lie in this range; the layout scaling applies to all of it.
#define IDC_PAGE_FIRST 1000
#define IDC_PAGE_LAST 9999
