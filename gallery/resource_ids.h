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

// The places of the pages in the table of pages.cpp, and their controls.
#define PAGE_NMEA 1
#define PAGE_DDE 2

#define IDC_NMEA_FIRST (IDC_PAGE_FIRST + 100 * PAGE_NMEA)
#define IDC_NMEA_LATITUDE (IDC_NMEA_FIRST + 0)
#define IDC_NMEA_LONGITUDE (IDC_NMEA_FIRST + 1)
#define IDC_NMEA_SPEED (IDC_NMEA_FIRST + 2)
#define IDC_NMEA_COURSE (IDC_NMEA_FIRST + 3)
#define IDC_NMEA_TERMINAL (IDC_NMEA_FIRST + 4)
#define IDC_NMEA_MOVING (IDC_NMEA_FIRST + 5)
#define IDC_NMEA_CLEAR (IDC_NMEA_FIRST + 6)
#define IDC_NMEA_HOME_PAGE (IDC_NMEA_FIRST + 7)
#define IDC_NMEA_WAYPOINT_PAGE (IDC_NMEA_FIRST + 8)
#define IDC_NMEA_LABEL_LATITUDE (IDC_NMEA_FIRST + 10)
#define IDC_NMEA_LABEL_LONGITUDE (IDC_NMEA_FIRST + 11)
#define IDC_NMEA_LABEL_SPEED (IDC_NMEA_FIRST + 12)
#define IDC_NMEA_LABEL_COURSE (IDC_NMEA_FIRST + 13)

#define IDC_DDE_FIRST (IDC_PAGE_FIRST + 100 * PAGE_DDE)
#define IDC_DDE_INSTANCE (IDC_DDE_FIRST + 0)
#define IDC_DDE_SYSTEM (IDC_DDE_FIRST + 1)
#define IDC_DDE_WORKBOOK (IDC_DDE_FIRST + 2)
#define IDC_DDE_OPEN (IDC_DDE_FIRST + 3)
#define IDC_DDE_CLOSE (IDC_DDE_FIRST + 4)
#define IDC_DDE_SERVICE (IDC_DDE_FIRST + 5)
#define IDC_DDE_TOPIC (IDC_DDE_FIRST + 6)
#define IDC_DDE_CONNECT (IDC_DDE_FIRST + 7)
#define IDC_DDE_DISCONNECT (IDC_DDE_FIRST + 8)
#define IDC_DDE_ITEM (IDC_DDE_FIRST + 9)
#define IDC_DDE_REQUEST (IDC_DDE_FIRST + 10)
#define IDC_DDE_TEXT (IDC_DDE_FIRST + 11)
#define IDC_DDE_POKE (IDC_DDE_FIRST + 12)
#define IDC_DDE_EXECUTE (IDC_DDE_FIRST + 13)
#define IDC_DDE_COMMA (IDC_DDE_FIRST + 14)
#define IDC_DDE_LOG (IDC_DDE_FIRST + 15)
#define IDC_DDE_GROUP_LINK (IDC_DDE_FIRST + 20)
#define IDC_DDE_GROUP_CONVERSATION (IDC_DDE_FIRST + 21)
#define IDC_DDE_LABEL_INSTANCE (IDC_DDE_FIRST + 22)
#define IDC_DDE_LABEL_SYSTEM (IDC_DDE_FIRST + 23)
#define IDC_DDE_LABEL_WORKBOOK (IDC_DDE_FIRST + 24)
#define IDC_DDE_LABEL_SERVICE (IDC_DDE_FIRST + 25)
#define IDC_DDE_LABEL_TOPIC (IDC_DDE_FIRST + 26)
#define IDC_DDE_LABEL_ITEM (IDC_DDE_FIRST + 27)
#define IDC_DDE_LABEL_TEXT (IDC_DDE_FIRST + 28)
