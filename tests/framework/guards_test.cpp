#include "framework/guards.h"

#include <gtest/gtest.h>

#include "framework/window_record.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Guards, DeleteWhatTheyOwnOnceAndAfterItsSelection) {
  kvtest::Picture picture(8, 8);
  const HGDIOBJ before = GetCurrentObject(picture.dc(), OBJ_PEN);
  const HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
  const HBRUSH kept = CreateSolidBrush(RGB(4, 5, 6));
  {
    const OwnedPen owned(pen);
    const SelectedObject selected(picture.dc(), owned);
    EXPECT_EQ(static_cast<HGDIOBJ>(pen), GetCurrentObject(picture.dc(), OBJ_PEN));
    OwnedBrush first(kept);
    OwnedBrush moved(std::move(first));
    EXPECT_EQ(nullptr, static_cast<HBRUSH>(first));
    moved.Release();
  }
  EXPECT_EQ(before, GetCurrentObject(picture.dc(), OBJ_PEN));
  EXPECT_EQ(0u, GetObjectType(pen));
  EXPECT_TRUE(DeleteObject(kept));
}

TEST(Guards, PaintScopeValidatesTheWindow) {
  kvtest::RecordingParent parent(true);
  InvalidateRect(parent, nullptr, TRUE);
  ASSERT_TRUE(GetUpdateRect(parent, nullptr, FALSE));
  { const PaintScope paint(parent); }
  EXPECT_FALSE(GetUpdateRect(parent, nullptr, FALSE));
}

TEST(Guards, LockedMemoryUnlocksAndKeysOpenOnlyWhatExists) {
  HGLOBAL memory = GlobalAlloc(GHND, 16);
  {
    const LockedMemory locked(memory);
    ASSERT_NE(nullptr, locked.address());
    EXPECT_EQ(1u, GlobalFlags(memory) & GMEM_LOCKCOUNT);
  }
  EXPECT_EQ(0u, GlobalFlags(memory) & GMEM_LOCKCOUNT);
  GlobalFree(memory);

  constexpr char kKey[] = "Software\\korvel\\GuardTest";
  RegDeleteKeyA(HKEY_CURRENT_USER, kKey);
  EXPECT_FALSE(RegistryKey::Open(kKey));
  EXPECT_TRUE(RegistryKey::Create(kKey) && RegistryKey::Open(kKey));
}

struct SampleRecord {
  HGLOBAL hMemory;
  int value;
};

TEST(WindowRecord, LivesInTheUserDataAndStartsZeroed) {
  const kvtest::RecordingParent parent;
  HWND window = kvtest::CreateControl(parent, "STATIC", "", 0, {0, 0, 10, 10}, 1);
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
  auto* record = CreateWindowRecord<SampleRecord>(window);
  ASSERT_NE(nullptr, record);
  EXPECT_EQ(0, record->value);
  EXPECT_EQ(record, WindowRecord<SampleRecord>(window));
  HGLOBAL memory = record->hMemory;
  DestroyWindowRecord(window, record);
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
  EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), GlobalFlags(memory));

  kvtest::GuardedBytes tooSmall(sizeof(SampleRecord) - 1);
  SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(tooSmall.data()));
  EXPECT_EQ(nullptr, WindowRecord<SampleRecord>(window));
}

}  // namespace
}  // namespace kv
