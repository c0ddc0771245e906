// Numbers of the panel's controls. Those of the instruments are also those of their names in the string table.
#pragma once

#define IDC_SPEED 101
#define IDC_HEADING 102
#define IDC_ALTITUDE 103
#define IDC_FUEL 104
#define IDC_CLIMB 105
#define IDC_CLOCK 106
#define IDC_LANGUAGE 109
#define IDC_ENGLISH 110
#define IDC_GERMAN 111
