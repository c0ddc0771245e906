#include "framework/guards.h"

#include <gtest/gtest.h>

#include "framework/window_record.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Guards, OwnedObjectIsDeletedOnceAndReleasedOnesSurvive) {
  HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
  {
    const OwnedBrush owned(brush);
    EXPECT_EQ(static_cast<DWORD>(OBJ_BRUSH), GetObjectType(brush));
  }
  EXPECT_EQ(0u, GetObjectType(brush));

  HBRUSH kept = CreateSolidBrush(RGB(4, 5, 6));
  {
    OwnedBrush owned(kept);
    OwnedBrush moved(std::move(owned));
    EXPECT_EQ(nullptr, static_cast<HBRUSH>(owned));
    moved.Release();
  }
  EXPECT_EQ(static_cast<DWORD>(OBJ_BRUSH), GetObjectType(kept));
  DeleteObject(kept);
}

TEST(Guards, SelectionEndsBeforeTheObjectIsDeleted) {
  kvtest::Picture picture(8, 8);
  HGDIOBJ before = GetCurrentObject(picture.dc(), OBJ_PEN);
  HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
  {
    const OwnedPen owned(pen);
    const SelectedObject selected(picture.dc(), owned);
    EXPECT_EQ(static_cast<HGDIOBJ>(pen), GetCurrentObject(picture.dc(), OBJ_PEN));
  }
  EXPECT_EQ(before, GetCurrentObject(picture.dc(), OBJ_PEN));
  EXPECT_EQ(0u, GetObjectType(pen));
}

TEST(Guards, PaintScopeValidatesTheWindow) {
  kvtest::RecordingParent parent(true);
  InvalidateRect(parent, nullptr, TRUE);
  ASSERT_TRUE(GetUpdateRect(parent, nullptr, FALSE));
  { const PaintScope paint(parent); }
  EXPECT_FALSE(GetUpdateRect(parent, nullptr, FALSE));
}

TEST(Guards, LockedMemoryUnlocksAtTheEnd) {
  HGLOBAL memory = GlobalAlloc(GHND, 16);
  {
    const LockedMemory locked(memory);
    ASSERT_NE(nullptr, locked.address());
    EXPECT_EQ(1u, GlobalFlags(memory) & GMEM_LOCKCOUNT);
  }
  EXPECT_EQ(0u, GlobalFlags(memory) & GMEM_LOCKCOUNT);
  GlobalFree(memory);
  EXPECT_EQ(nullptr, LockedMemory(nullptr).address());
}

TEST(Guards, RegistryKeyOpensOnlyWhatExists) {
  EXPECT_EQ(nullptr, static_cast<HKEY>(RegistryKey::Open("Software\\korvel\\GuardTest")));
  EXPECT_NE(nullptr, static_cast<HKEY>(RegistryKey::Create("Software\\korvel\\GuardTest")));
  EXPECT_NE(nullptr, static_cast<HKEY>(RegistryKey::Open("Software\\korvel\\GuardTest")));
}

struct SampleRecord {
  HGLOBAL hMemory;
  int value;
};

TEST(WindowRecord, LivesInTheUserDataAndStartsZeroed) {
  HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
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
  SetWindowLongA(window, GWL_USERDATA, 0);
  DestroyWindow(window);
}

}  // namespace
}  // namespace kv
