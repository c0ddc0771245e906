// Ids of the panel's instruments, which are also those of their names in the string table, and of its menu.
#pragma once

#define IDC_SPEED 101
#define IDC_HEADING 102
#define IDC_ALTITUDE 103
#define IDC_FUEL 104
#define IDC_CLIMB 105
#define IDC_CLOCK 106
#define IDC_HINT 107
#define IDM_LANGUAGE 201
#define IDM_FIRST_LANGUAGE 300  // and the 23 after it
