// Random messages for every window class, see tests/support/message_fuzzing.h.
#include "tests/support/message_fuzzing.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/optical_flow_chart.h"
#include "controls/display_instrument.h"
#include "controls/instrument_block.h"
#include "controls/simple_bitmap.h"
#include "export/flight_track_view.h"
#include "lists/list_navigation.h"
#include "tests/support/scarce_objects.h"
#include "toolkit/classes.h"

namespace kv {
namespace {

struct FuzzedClass {
  const char *test, *className;
  DWORD style;
  std::vector<UINT> own;
};

const std::vector<UINT> kInstrumentOwn{WM_SETTEXT, WM_COPY, WM_DROPFILES, WM_TIMER, WM_TIMER};

const FuzzedClass kFuzzedClasses[] = {
    {"Chart", kChartClass, 0, {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES}},
    {"FlightTrackView", kFlightTrackClass, 0, {WM_CREATE, WM_DESTROY}},
    {"LineRecorder", "kvLineRecorder", 0, {}},
    {"List", kExtendedListClass, WS_VSCROLL, {WM_CREATE, WM_CREATE, WM_DESTROY, WM_COPY, LB_SETCOUNT, LB_SETCOUNT}},
    {"NavigatedList",
     kExtendedListClass,
     0,
     {WM_MOUSEWHEEL, WM_KEYDOWN, LB_SETHORIZONTALEXTENT, LB_SETHORIZONTALEXTENT, LB_SETHORIZONTALEXTENT}},
    {"Bitmap",
     kSimpleBitmapClass,
     kBitmapTransparent,
     {WM_CREATE, WM_DESTROY, WM_SETTEXT, WM_COPY, WM_DROPFILES, WM_LBUTTONDBLCLK}},
    {"Gauge", kDisplayInstrumentClass, kModeGauge, kInstrumentOwn},
    {"Digital", kDisplayInstrumentClass, kModeDigital, kInstrumentOwn},
    {"SegmentBar", kDisplayInstrumentClass, kModeSegmentBar, kInstrumentOwn},
    {"Compass", kDisplayInstrumentClass, kModeCompass, kInstrumentOwn},
    {"CentreBar", kDisplayInstrumentClass, kModeCentreBar, kInstrumentOwn},
};

class MessageFuzzing : public testing::TestWithParam<FuzzedClass> {
 protected:
  static void SetUpTestSuite() {
    RegisterAllClasses(GetModuleHandleA(nullptr), TRUE);
    RegisterChartClass(GetModuleHandleA(nullptr), TRUE);
    parent_ = std::make_unique<kvtest::RecordingParent>(true, 700, 700);
  }
  static void TearDownTestSuite() {
    parent_.reset();
    RegisterChartClass(GetModuleHandleA(nullptr), FALSE);
    RegisterAllClasses(GetModuleHandleA(nullptr), FALSE);
  }
  static inline std::unique_ptr<kvtest::RecordingParent> parent_;
};

TEST_P(MessageFuzzing, LeavesAWorkingControlAndNothingBehind) {
  const FuzzedClass& fuzzed = GetParam();
  kvtest::CreateControl(*parent_, "EDIT", "beneath", 0, {60, 40, 65, 60}, 2);
  kvtest::CreateControl(*parent_, "BUTTON", "beneath", 0, {0, 0, 60, 60}, 3);
  const kvtest::ScarceObjects scarce(100);
  const auto make = [&] {
    const HWND control = kvtest::CreateControl(*parent_, fuzzed.className, "101", fuzzed.style, {0, 0, 100, 85}, 4712);
    if (fuzzed.test == std::string("NavigatedList")) AddListNavigation(control);
    return control;
  };
  kvtest::FuzzMessages(*parent_, make, fuzzed.own);
  EXPECT_TRUE(DestroyWindow(make()));
  while (HWND child = GetWindow(*parent_, GW_CHILD)) DestroyWindow(child);
}

INSTANTIATE_TEST_SUITE_P(Classes, MessageFuzzing, testing::ValuesIn(kFuzzedClasses),
                         [](const auto& tested) { return std::string(tested.param.test); });

}  // namespace
}  // namespace kv
