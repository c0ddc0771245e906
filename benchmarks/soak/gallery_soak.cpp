// The gallery under random input from a seed.
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "benchmarks/soak/soak.h"
#include "camera/ports.h"
#include "gallery/resource_ids.h"

namespace soak {

namespace {

constexpr int kLanguages = 24;

// A dialog or message box of the gallery gets only safe input: a random click or Delete in a file dialog could delete a
// user's file.
bool DismissDialog(Soak* soak) {
  HWND dialog = soak->program->Find(L"#32770", nullptr);
  if (!dialog) return false;
  SetForegroundWindow(dialog);
  Sleep(50);
  bool hasName = false;
  for (const char* name : {"Edit", "ComboBoxEx32", "ComboBox"}) {
    hasName = hasName || FindWindowExA(dialog, nullptr, name, nullptr);
  }
  Note(soak, hasName ? "file dialog" : "message");
  if (hasName && Below(soak, 3) == 0) {
    for (const char letter : {'S', 'O', 'A', 'K'}) PressKey(letter);
    PressKey('0' + Below(soak, 10));
    PressKey(VK_RETURN);
  } else {
    PressKey(!hasName && Below(soak, 2) ? VK_RETURN : VK_ESCAPE);
  }
  return true;
}

// A point of the gallery's window that the mouse can reach.
bool FindPoint(Soak* soak, HWND area, POINT* point) {
  RECT box{};
  GetWindowRect(area, &box);
  if (box.right <= box.left || box.bottom <= box.top) return false;
  *point = {box.left + Below(soak, box.right - box.left), box.top + Below(soak, box.bottom - box.top)};
  DWORD id = 0;
  GetWindowThreadProcessId(WindowFromPoint(*point), &id);
  // Except the close box, which would end the run.
  const LRESULT part = SendMessageA(soak->window, WM_NCHITTEST, 0, MAKELPARAM(point->x, point->y));
  return id == GetProcessId(soak->program->process()) && part != HTCLOSE && part != HTSYSMENU;
}

void UseMouse(Soak* soak, HWND area) {
  const auto press = [](DWORD flags, int wheel = 0) { mouse_event(flags, 0, 0, static_cast<DWORD>(wheel), 0); };
  POINT point{}, end{};
  if (!FindPoint(soak, area, &point)) return;
  SetCursorPos(point.x, point.y);
  const int choice = Below(soak, 10);
  if (choice < 5) {
    Note(soak, "click", point);
    press(MOUSEEVENTF_LEFTDOWN);
    press(MOUSEEVENTF_LEFTUP);
  } else if (choice == 5) {
    Note(soak, "right click", point);
    press(MOUSEEVENTF_RIGHTDOWN);
    press(MOUSEEVENTF_RIGHTUP);
  } else if (choice < 8) {
    Note(soak, "wheel", point);
    press(MOUSEEVENTF_WHEEL, Below(soak, 2) ? WHEEL_DELTA : -WHEEL_DELTA);
  } else if (FindPoint(soak, area, &end)) {
    Note(soak, "drag", point, end);
    press(MOUSEEVENTF_LEFTDOWN);
    for (int step = 1; step <= 5; ++step) {
      SetCursorPos(point.x + (end.x - point.x) * step / 5, point.y + (end.y - point.y) * step / 5);
      Sleep(5);
    }
    press(MOUSEEVENTF_LEFTUP);
  }
}

void UseKeys(Soak* soak) {
  constexpr int kKeys[] = {VK_TAB,  VK_TAB,  VK_UP,  VK_DOWN,  VK_LEFT,     VK_RIGHT,  VK_PRIOR,
                           VK_NEXT, VK_HOME, VK_END, VK_SPACE, VK_RETURN,   VK_ESCAPE, VK_F1,
                           VK_BACK, 'A',     'Z',    '7',      VK_OEM_COMMA};
  SetForegroundWindow(soak->window);
  for (int count = 1 + Below(soak, 4); count > 0; --count) {
    const int key = kKeys[Below(soak, static_cast<int>(std::size(kKeys)))];
    const bool shift = Below(soak, 4) == 0, control = Below(soak, 10) == 0;
    Note(soak, "key", {key, shift + 2 * control});
    PressKey(key, shift, control);
  }
}

void DoSomething(Soak* soak) {
  if (DismissDialog(soak)) return;
  const int choice = Below(soak, 100);
  if (choice < 45) {
    UseMouse(soak, soak->window);
  } else if (choice < 60) {
    UseMouse(soak, GetDlgItem(soak->window, IDC_PAGE_LIST));
  } else if (choice < 85) {
    UseKeys(soak);
  } else if (choice < 90) {
    const int language = Below(soak, kLanguages);
    Note(soak, "language", {language, 0});
    PostMessageA(soak->window, WM_COMMAND, static_cast<WPARAM>(IDM_LANGUAGE_FIRST + language), 0);
  } else if (choice < 97) {
    Note(soak, "window");
    MoveWindowAbout(soak);
  } else {
    Note(soak, "surroundings");
    ChangeSurroundings(soak);
  }
}

// Releases a gallery that has ended or hangs, and reports an unexpected end. Keeps the longest watch.
bool End(Soak* soak, std::unique_ptr<ProcessWatch>* longest) {
  DWORD code = 0;
  GetExitCodeProcess(soak->program->process(), &code);
  soak->watch->Stop();
  if (code != 0) {
    std::printf("  it %s, exit code %08lX; the last actions were:\n", code == STILL_ACTIVE ? "hangs" : "crashed", code);
    for (const std::string& action : soak->actions) std::printf("    %s\n", action.c_str());
  }
  const bool isGood = code == 0 && soak->watch->Hangs() == 0;
  if (!*longest || soak->watch->Samples().size() > (*longest)->Samples().size()) *longest = std::move(soak->watch);
  soak->program.reset();
  return isGood;
}

}  // namespace

int SoakGallery(double seconds, std::uint32_t seed) {
  Soak soak;
  soak.random.seed(seed);
  std::unique_ptr<ProcessWatch> longest;
  long failures = 0, ends = 0, close = -1;
  bool isUp = Start(&soak, KV_GALLERY_EXE);
  if (!isUp) return std::puts("gallery: it did not start"), 1;
  const double start = camera::Now();
  while (isUp && camera::Now() < start + seconds) {
    DoSomething(&soak);
    Sleep(10UL + static_cast<DWORD>(Below(&soak, 60)));
    if (soak.program->isRunning() && soak.watch->Hangs() == 0) continue;
    ++ends;
    failures += !End(&soak, &longest);
    isUp = Start(&soak, KV_GALLERY_EXE);
  }
  if (isUp) {
    // Close open dialogs first.
    for (int tries = 0; tries < 20 && DismissDialog(&soak); ++tries) Sleep(200);
    close = CloseMs(*soak.program, soak.window);
    failures += !End(&soak, &longest);
  }
  std::printf("\nThe gallery, %.0f s, seed %u\n", camera::Now() - start, seed);
  PrintCounts(soak);
  longest->Print();
  std::printf("  %-30s%ld\n  %-30s%ld ms\n  %-30s%ld\n", "ended by its menu or keys", ends, "last close", close,
              "crashes and hangs", failures);
  return close < 0 || failures > 0;
}

}  // namespace soak
