// Numbers that the gallery's code and resource scripts share. The resource compiler reads this file: plain #defines
// only.
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
#define IDS_HELP_TEXT 5
#define IDS_HELP_REFUSED 6

// The pages, in the order of the list and of the table in pages.cpp.
#define PAGE_INDEX_OVERVIEW 0
#define PAGE_INDEX_DIALOG_SERVICES 1
#define PAGE_INDEX_CHART 2
#define PAGE_INDEX_BITMAP 3
#define PAGE_INDEX_INSTRUMENTS 4
#define PAGE_INDEX_LIST 5
#define PAGE_INDEX_MESH 6
#define PAGE_INDEX_CAPTURE 7
#define PAGE_INDEX_FLIGHT 8
#define PAGE_INDEX_NMEA 9
#define PAGE_INDEX_DDE 10
#define PAGE_INDEX_LANGUAGE 11
#define PAGE_INDEX_FILES 12
#define PAGE_INDEX_NOTICES 13

// Texts: page n has its title at IDS_TITLE_FIRST + n and its description at IDS_DESCRIPTION_FIRST + n.
#define IDS_TITLE_FIRST 100
#define IDS_DESCRIPTION_FIRST 200

// A page's own texts and controls, in gallery/pages/NAME_ids.h, take a range of 100 each from IDS_PAGE_FIRST + 100 * n
// and IDC_PAGE_FIRST + 100 * n. The layout scaling applies to all controls up to IDC_PAGE_LAST.
#define IDS_PAGE_FIRST 1000
#define IDC_PAGE_FIRST 1000
#define IDC_PAGE_LAST 9999

// A control or menu item has its English text in its template; its text in another language is the one at TEXT_OF(its
// id) of the language library.
#define TEXT_OF(id) (20000 + (id))
