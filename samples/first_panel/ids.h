#define IDC_GAUGE 101
#define IDC_CHART 102
#define IDC_SAVE 103
#define IDC_STATUS 104
