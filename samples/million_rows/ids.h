#pragma once

#define IDC_READINGS 101
#define IDC_STATUS 102
