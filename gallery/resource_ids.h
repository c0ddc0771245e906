// Numbers that the gallery's code and resource scripts share. The resource compiler reads this file: plain #defines
// only.
//
// Texts: page n (from 0, in the order of the table in pages.cpp) has its title at IDS_TITLE_FIRST + n and its
// description at IDS_DESCRIPTION_FIRST + n. A page's own texts and controls take a range of 100 from IDS_PAGE_FIRST +
// 100 * n and IDC_PAGE_FIRST + 100 * n. A control or menu item has its English text in its template; its text in
// another language is the one at TEXT_OF(its id) of the language library.
#pragma once

#define IDI_GALLERY 1
#define IDI_GALLERY_SMALL 2

#define IDC_PAGE_LIST 100

#define IDM_GALLERY_EXIT 200
#define IDM_GALLERY_ABOUT 201
#define IDM_GALLERY_HELP 202
#define IDM_GALLERY_FILE_MENU 203
#define IDM_GALLERY_LANGUAGE_MENU 204
#define IDM_GALLERY_HELP_MENU 205

// One for each of 24 languages; two bitmaps for each.
#define IDM_LANGUAGE_FIRST 300
#define IDB_LANGUAGE_FIRST 400

#define IDS_GALLERY_CAPTION 1
#define IDS_ABOUT_CAPTION 2
#define IDS_ABOUT_TEXT 3
#define IDS_LIST_TIP 4

#define IDS_TITLE_FIRST 100
#define IDS_DESCRIPTION_FIRST 200
#define IDS_PAGE_FIRST 1000

#define IDC_OVERVIEW_TEXT 1000
#define IDC_OVERVIEW_INDEX 1001

// Controls of pages lie in this range; the layout scaling applies to all of it.
#define IDC_PAGE_FIRST 1000
#define IDC_PAGE_LAST 9999

#define TEXT_OF(id) (20000 + (id))

// The pages' numbers.
#define OVERVIEW_PAGE 0
#define DIALOG_SERVICES_PAGE 1
#define CHART_PAGE 2
#define LANGUAGE_PAGE 3
#define FILES_PAGE 4
#define NOTICES_PAGE 5
