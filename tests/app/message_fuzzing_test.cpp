// Random messages for every window class, with good and bad pointers, in a parent that measures and draws at random,
// sends the control messages from its handlers and occasionally destroys it. The control must not crash, leak memory or
// access state that has been freed; nothing else is tested.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "camera/optical_flow_chart.h"
#include "camview/camera_field.h"
#include "camview/distribution_view.h"
#include "camview/record_store.h"
#include "camview/timeline.h"
#include "camview/window.h"
#include "gallery/pages/mesh_view.h"
#include "kv/controls/display_instrument.h"
#include "kv/controls/horizon/horizon.h"
#include "kv/controls/instrument_block.h"
#include "kv/controls/simple_bitmap.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/export/flight_track_view.h"
#include "kv/framework/control_class.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/classes.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scarce_objects.h"
#include "tests/support/test_window.h"

namespace {

// Memory blocks on separate pages, which no other block gets for a while after they are freed: an access to a freed
// block ends the test.
class GuardedBlocks {
 public:
  static void* Allocate(size_t size) {
    auto* pages = static_cast<char*>(VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (!pages) return nullptr;
    isGuarded_[GranuleOf(pages)] = true;
    return pages + ((0 - size) & 0xFF8);  // ends at the page's end
  }
  static bool Owns(const void* block) { return isGuarded_[GranuleOf(block)]; }
  static void Free(void* block) {
    MEMORY_BASIC_INFORMATION pages{};
    VirtualQuery(block, &pages, sizeof(pages));
    VirtualFree(pages.AllocationBase, 0, MEM_DECOMMIT);
    void*& oldest = freed_[next_++ % ARRAYSIZE(freed_)];
    if (oldest) {
      isGuarded_[GranuleOf(oldest)] = false;
      VirtualFree(oldest, 0, MEM_RELEASE);
    }
    oldest = pages.AllocationBase;
  }

  static inline bool isOn = false;  // for `new`

 private:
  static size_t GranuleOf(const void* address) { return reinterpret_cast<std::uintptr_t>(address) >> 16; }

  static inline bool isGuarded_[1 << 16];
  static inline void* freed_[4000];
  static inline unsigned next_ = 0;
};

}  // namespace

// The program's own: objects that are made while a class is fuzzed get guarded blocks.
void* operator new(size_t size) {
  void* block = GuardedBlocks::isOn ? GuardedBlocks::Allocate(size) : std::malloc(size ? size : 1);
  if (!block) std::abort();
  return block;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return GuardedBlocks::isOn ? GuardedBlocks::Allocate(size) : std::malloc(size ? size : 1);
}
void operator delete(void* block) noexcept {
  if (block && GuardedBlocks::Owns(block)) {
    GuardedBlocks::Free(block);
  } else {
    std::free(block);
  }
}
void operator delete(void* block, size_t) noexcept {
  operator delete(block);
}

namespace kv {
namespace {

using kvtest::GuardedBytes;
using kvtest::PumpMessages;
using kvtest::ReplacedImport;

constexpr UINT kCommand = WM_USER + 3;

constexpr UINT kMessages[] = {kCommand,        kCommand,          kCommand,
                              kCommand,        WM_PAINT,          WM_SIZE,
                              WM_TIMER,        WM_ENABLE,         WM_MOUSEMOVE,
                              WM_LBUTTONDOWN,  WM_LBUTTONUP,      WM_RBUTTONDOWN,
                              WM_RBUTTONUP,    WM_MBUTTONDOWN,    WM_MBUTTONUP,
                              WM_GETDLGCODE,   WM_ERASEBKGND,     WM_COMMAND,
                              WM_HSCROLL,      WM_VSCROLL,        WM_KEYDOWN,
                              LB_SETCOUNT,     WM_SETFOCUS,       WM_KILLFOCUS,
                              LB_RESETCONTENT, WM_CAPTURECHANGED, LB_SETHORIZONTALEXTENT,
                              WM_CANCELMODE};

// Guards the program's records and objects.
class GuardedRecords {
 public:
  GuardedRecords() { GuardedBlocks::isOn = true; }
  ~GuardedRecords() { GuardedBlocks::isOn = false; }

 private:
  static HGLOBAL WINAPI Allocate(UINT, SIZE_T size) { return GuardedBlocks::Allocate(size); }
  static void* WINAPI Lock(HGLOBAL memory) { return memory; }
  static BOOL WINAPI Unlock(HGLOBAL) { return TRUE; }
  static SIZE_T WINAPI Size(HGLOBAL memory) {
    MEMORY_BASIC_INFORMATION pages{};
    VirtualQuery(memory, &pages, sizeof(pages));
    return pages.RegionSize - (static_cast<char*>(memory) - static_cast<char*>(pages.BaseAddress));
  }
  static HGLOBAL WINAPI Free(HGLOBAL memory) {
    GuardedBlocks::Free(memory);
    return nullptr;
  }
  const ReplacedImport allocate_{"GlobalAlloc", reinterpret_cast<void*>(Allocate)},
      lock_{"GlobalLock", reinterpret_cast<void*>(Lock)}, unlock_{"GlobalUnlock", reinterpret_cast<void*>(Unlock)},
      free_{"GlobalFree", reinterpret_cast<void*>(Free)}, size_{"GlobalSize", reinterpret_cast<void*>(Size)};
};

struct ValidCommand {
  WPARAM code;  // 0: none
  std::span<const std::byte> item;
};

// Screen readers are told of changed values in the middle of a message, and may destroy the control then.
unsigned valueChanges;
void CALLBACK OnValueChange(HWINEVENTHOOK, DWORD, HWND control, LONG, LONG, DWORD, DWORD) {
  if (++valueChanges % 8 == 0) DestroyWindow(control);
}

// Good and bad addresses. Wild ones are never mapped: a control may write to the addresses it receives, but not to the
// test's memory.
class Addresses {
 public:
  explicit Addresses(std::mt19937& random) : random_(random) {
    readOnly_.MakeReadOnly();
    for (size_t i = 0; i < kSize; ++i) Change(i);
  }
  ~Addresses() { VirtualFree(wild_, 0, MEM_RELEASE); }
  Addresses(const Addresses&) = delete;
  Addresses& operator=(const Addresses&) = delete;

  LPARAM Any() {
    constexpr unsigned kMany = 7;
    switch (random_() % kMany) {
      case 0: return 0;
      case 1: return 1;
      case 2: return -1;
      case 3: return Of(static_cast<char*>(wild_) + random_() % kWildSize);
      case 4: return Of(readOnly_.data());
      case 5: return Of(writable_.data());
      default: return Of(writable_.as<char>() + kSize - 12);
    }
  }
  LPARAM Holding(std::span<const std::byte> item) {
    std::ranges::copy(item, writable_.as<std::byte>());
    return Of(writable_.data());
  }
  void Change() { Change(random_() % kSize); }

 private:
  static LPARAM Of(const void* pointer) { return reinterpret_cast<LPARAM>(pointer); }
  void Change(size_t i) { writable_.as<unsigned char>()[i] = static_cast<unsigned char>(random_()); }

  static constexpr size_t kSize = 512, kWildSize = 1 << 20;
  std::mt19937& random_;
  GuardedBytes readOnly_{kSize}, writable_{kSize};
  void* const wild_ = VirtualAlloc(nullptr, kWildSize, MEM_RESERVE, PAGE_NOACCESS);
};

// `make` creates the control, and another one when it has been destroyed. `own` are further messages that the control
// handles, `valid` is a command that it accepts. Messages that would pass a wild pointer to Windows instead of the
// control are omitted. Sizes are below 300 pixels. The environment variable KV_FUZZ sets the number of messages.
void FuzzMessages(kvtest::RecordingParent& parent, const std::function<HWND()>& make, const std::vector<UINT>& own,
                  const ValidCommand& valid) {
  const GuardedRecords guard;
  const HWINEVENTHOOK hook =
      SetWinEventHook(EVENT_OBJECT_VALUECHANGE, EVENT_OBJECT_VALUECHANGE, GetModuleHandleA(nullptr), OnValueChange,
                      GetCurrentProcessId(), 0, WINEVENT_INCONTEXT);
  std::vector<UINT> messages(std::begin(kMessages), std::end(kMessages));
  messages.insert(messages.end(), own.begin(), own.end());
  std::mt19937 random(20080714);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  const auto anyMessage = [&] { return messages[below(static_cast<unsigned>(messages.size()))]; };
  Addresses addresses(random);

  HWND control = make();
  int depth = 0;
  const auto send = [&] {
    constexpr WPARAM kMasks[] = {0xFFFFFFFF, 0xFFFFFF1F,
                                 0x1F};  // small numbers more often, because most codes are small
    if (valid.code && below(8) == 0) {
      const WPARAM flags = random() & (kCommandRedraw | kHorizonAnimate);
      SendMessageA(control, kCommand, valid.code | flags, addresses.Holding(valid.item));
      return;
    }
    const UINT message = anyMessage();
    const bool isSize = message == WM_SIZE || message == WM_COPY;
    LPARAM lParam = isSize ? MAKELPARAM(below(300), below(300)) : addresses.Any();
    // The system reads the MSG of this message, to convert it for a Unicode window.
    if (message == WM_GETDLGCODE && IsWindowUnicode(control)) lParam = 0;
    const WPARAM wParam = message == WM_TIMER ? below(8) : random() & kMasks[below(ARRAYSIZE(kMasks))];
    SendMessageA(control, message, wParam, lParam);
  };
  parent.Answer([&](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT*) {
    parent.seen().clear();
    if (message != WM_MEASUREITEM && message != WM_DRAWITEM && message != WM_COMMAND && message != WM_DROPFILES) {
      return false;
    }
    if (message == WM_MEASUREITEM) {
      const UINT height = random();
      reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = height % 8 ? 12 + height % 50 : height;
    }
    const unsigned dice = below(64);
    if (dice == 0) DestroyWindow(control);
    if (dice < 3 && depth < 2) {
      ++depth;
      send();
      --depth;
    }
    return true;
  });
  const auto memoryInUse = [&] {
    DestroyWindow(control);
    PumpMessages();
    return kvtest::MemoryInUse();
  };
  const char* asked = std::getenv("KV_FUZZ");
  const int length = asked ? std::atoi(asked) : 5000;
  SIZE_T inUse = 0;
  for (int i = 0; i < length; ++i) {
    if (i == length / 2) inUse = memoryInUse();
    if (!IsWindow(control)) control = make();
    if (below(500) == 0) MoveWindow(control, 0, 0, below(300), below(300), TRUE);
    if (below(16) == 0) ShowScrollBar(control, SB_BOTH, FALSE);  // otherwise a bar appears only once
    send();
    addresses.Change();
    if (i % 64 == 0) PumpMessages();
  }
  EXPECT_LT(memoryInUse(), inUse + (4 << 20));  // tolerance for the system's own allocations
  parent.Answer(nullptr);
  UnhookWinEvent(hook);
}

struct FuzzedClass {
  const char *test, *className;
  DWORD style;
  std::vector<UINT> own;
  ValidCommand valid;
};

constexpr HorizonAttitude kAttitudes[] = {{kHorizonVersion, 0, 3, 5, 0.1f, 275}};
const camview::StoredRecord kRecords[] = {{.seconds = 1}, {.seconds = 2}};
const camview::FieldContent kContents[] = {{ARRAYSIZE(kRecords), kRecords, 2, 1}};
constexpr DWORD kCounts[] = {3, 0, 9};
constexpr camview::DistributionContent kDistributions[] = {{{{510, 0, 3, 1, kCounts}, {}, {0, 0, 3, 1, kCounts}}}};
constexpr StripSample kSamples[] = {{1, 2}, {3, 4}};
const StripSamples kAppended[] = {{ARRAYSIZE(kSamples), kSamples}};

const std::vector<UINT> kInstrumentOwn{WM_SETTEXT, WM_COPY, WM_DROPFILES, WM_TIMER, WM_TIMER};

const FuzzedClass kFuzzedClasses[] = {
    {"Chart", kChartClass, 0, {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES}},
    {"CameraField",
     camview::kCameraFieldClass,
     0,
     {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES, WM_KEYDOWN},
     {camview::kFieldShow, std::as_bytes(std::span(kContents))}},
    {"Distribution",
     camview::kDistributionClass,
     camview::kDistributionOfX,
     {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES, WM_KEYDOWN, WM_KEYDOWN, WM_MOUSELEAVE, WM_LBUTTONDBLCLK},
     {camview::kDistributionShow, std::as_bytes(std::span(kDistributions))}},
    {"Timeline",
     camview::kTimelineClass,
     0,
     {WM_CREATE, WM_DESTROY, WM_DROPFILES, WM_KEYDOWN, WM_KEYDOWN, WM_MOUSEWHEEL}},
    {"FlightTrackView", kFlightTrackClass, 0, {WM_CREATE, WM_DESTROY}},
    {"Horizon",
     kHorizonClass,
     kHorizonTape,
     {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES, WM_TIMER, WM_TIMER},
     {kHorizonValue, std::as_bytes(std::span(kAttitudes))}},
    {"StripChart",
     kStripChartClass,
     kStripSeparateAxes,
     {WM_CREATE, WM_DESTROY, WM_COPY, WM_DROPFILES, WM_TIMER, WM_KEYDOWN, WM_MOUSEWHEEL, WM_MOUSELEAVE,
      WM_LBUTTONDBLCLK},
     {kStripAppend, std::as_bytes(std::span(kAppended))}},
    {"MeshView",
     gallery::kMeshViewClass,
     0,
     {WM_CREATE, WM_DESTROY, WM_DROPFILES, WM_TIMER, WM_KEYDOWN, WM_MOUSEWHEEL}},
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
    {"CenterBar", kDisplayInstrumentClass, kModeCenterBar, kInstrumentOwn},
};

class MessageFuzzing : public testing::TestWithParam<FuzzedClass> {
 protected:
  static void SetUpTestSuite() {
    RegisterAllClasses(GetModuleHandleA(nullptr), TRUE);
    RegisterChartClass(GetModuleHandleA(nullptr), TRUE);
    camview::RegisterControls(GetModuleHandleA(nullptr), TRUE);
    gallery::RegisterMeshViewClass(GetModuleHandleA(nullptr), TRUE);
    parent_ = std::make_unique<kvtest::RecordingParent>(true, 700, 700);
  }
  static void TearDownTestSuite() {
    parent_.reset();
    gallery::RegisterMeshViewClass(GetModuleHandleA(nullptr), FALSE);
    camview::RegisterControls(GetModuleHandleA(nullptr), FALSE);
    RegisterChartClass(GetModuleHandleA(nullptr), FALSE);
    RegisterAllClasses(GetModuleHandleA(nullptr), FALSE);
  }
  static inline std::unique_ptr<kvtest::RecordingParent> parent_;
};

TEST_P(MessageFuzzing, LeavesAWorkingControlAndNoLeaks) {
  const FuzzedClass& fuzzed = GetParam();
  kvtest::CreateControl(*parent_, "EDIT", "behind", 0, {60, 40, 65, 60}, 2);
  kvtest::CreateControl(*parent_, "BUTTON", "behind", 0, {0, 0, 60, 60}, 3);
  const kvtest::ScarceObjects scarce(100);
  const auto make = [&] {
    const HWND control = kvtest::CreateControl(*parent_, fuzzed.className, "101", fuzzed.style, {0, 0, 100, 85}, 4712);
    if (fuzzed.test == std::string("NavigatedList")) AddListNavigation(control);
    return control;
  };
  FuzzMessages(*parent_, make, fuzzed.own, fuzzed.valid);
  EXPECT_TRUE(DestroyWindow(make()));
  while (HWND child = GetWindow(*parent_, GW_CHILD)) DestroyWindow(child);
}

INSTANTIATE_TEST_SUITE_P(Classes, MessageFuzzing, testing::ValuesIn(kFuzzedClasses),
                         [](const auto& tested) { return std::string(tested.param.test); });

}  // namespace
}  // namespace kv
