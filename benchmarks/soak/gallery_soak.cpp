// The gallery under random, but seeded, real input.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include "benchmarks/soak/process_watch.h"
#include "benchmarks/soak/program.h"
#include "benchmarks/soak/soaks.h"
#include "camera/ports.h"
#include "camera/text.h"
#include "gallery/resource_ids.h"

namespace soak {

namespace {

constexpr int kLanguages = 24;
constexpr size_t kActionsTold = 25;

struct GallerySoak {
  std::string folder;
  Program gallery;
  std::unique_ptr<ProcessWatch> watch, longestWatch;
  std::mt19937 random;
  std::deque<std::string> actions;  // the last ones, for whoever looks for the reason of a fall
  long clicks = 0, keys = 0, wheels = 0, drags = 0, dialogs = 0, languages = 0, pages = 0, windows = 0;
  long starts = 0, exits = 0, crashes = 0, hangs = 0;
  double longestAnswer = 0;
};

void Note(GallerySoak* soak, const char* what, int a = 0, int b = 0) {
  soak->actions.push_back(camera::Format("%s %d %d", what, a, b));
  if (soak->actions.size() > kActionsTold) soak->actions.pop_front();
}

// A window that the gallery has opened on top of its own: a file dialog, a message.
struct FoundDialog {
  DWORD id;
  HWND window;
};

BOOL CALLBACK TakeDialog(HWND window, LPARAM parameter) {
  auto* found = reinterpret_cast<FoundDialog*>(parameter);
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  char name[16] = "";
  GetClassNameA(window, name, sizeof(name));
  if (id != found->id || !IsWindowVisible(window) || std::strcmp(name, "#32770") != 0) return TRUE;
  found->window = window;
  return FALSE;
}

// Dialogs get only what is safe: a random click or Delete in a file dialog could cost somebody a file.
bool AnswerDialog(GallerySoak* soak) {
  FoundDialog found{soak->gallery.id, nullptr};
  EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&found));
  if (!found.window) return false;
  ++soak->dialogs;
  SetForegroundWindow(found.window);
  Sleep(50);
  const bool hasName = FindWindowExA(found.window, nullptr, "Edit", nullptr) ||
                       FindWindowExA(found.window, nullptr, "ComboBoxEx32", nullptr) ||
                       FindWindowExA(found.window, nullptr, "ComboBox", nullptr);
  Note(soak, hasName ? "file dialog" : "message");
  if (hasName && Below(&soak->random, 3) == 0) {
    for (const char letter : {'S', 'O', 'A', 'K'}) PressKey(static_cast<WORD>(letter));
    PressKey(static_cast<WORD>('0' + Below(&soak->random, 10)));
    PressKey(VK_RETURN);
  } else if (!hasName && Below(&soak->random, 2)) {
    PressKey(VK_RETURN);
  } else {
    PressKey(VK_ESCAPE);
  }
  return true;
}

// A place of the gallery's own that the mouse can reach.
bool FindPlace(GallerySoak* soak, HWND area, POINT* place) {
  RECT box{};
  GetWindowRect(area, &box);
  if (box.right <= box.left || box.bottom <= box.top) return false;
  *place = {box.left + Below(&soak->random, box.right - box.left),
            box.top + Below(&soak->random, box.bottom - box.top)};
  DWORD id = 0;
  GetWindowThreadProcessId(WindowFromPoint(*place), &id);
  // Not its caption: the close box is a fair wish of a person, but ends the run.
  const LRESULT part = SendMessageA(soak->gallery.window, WM_NCHITTEST, 0, MAKELPARAM(place->x, place->y));
  return id == soak->gallery.id && part != HTCLOSE && part != HTSYSMENU;
}

void UseMouse(GallerySoak* soak, HWND area) {
  POINT place{};
  if (!FindPlace(soak, area, &place)) return;
  MoveMouse(place);
  const int choice = Below(&soak->random, 10);
  if (choice < 5) {
    ++soak->clicks;
    Note(soak, "click", place.x, place.y);
    PressMouse(MOUSEEVENTF_LEFTDOWN);
    PressMouse(MOUSEEVENTF_LEFTUP);
  } else if (choice == 5) {
    ++soak->clicks;
    Note(soak, "right click", place.x, place.y);
    PressMouse(MOUSEEVENTF_RIGHTDOWN);
    PressMouse(MOUSEEVENTF_RIGHTUP);
  } else if (choice < 8) {
    ++soak->wheels;
    Note(soak, "wheel", place.x, place.y);
    PressMouse(MOUSEEVENTF_WHEEL, Below(&soak->random, 2) ? WHEEL_DELTA : -WHEEL_DELTA);
  } else {
    ++soak->drags;
    POINT end{};
    if (!FindPlace(soak, area, &end)) return;
    Note(soak, "drag from", place.x, place.y);
    Note(soak, "  to", end.x, end.y);
    PressMouse(MOUSEEVENTF_LEFTDOWN);
    for (int step = 1; step <= 5; ++step) {
      MoveMouse({place.x + (end.x - place.x) * step / 5, place.y + (end.y - place.y) * step / 5});
      Sleep(5);
    }
    PressMouse(MOUSEEVENTF_LEFTUP);
  }
}

void UseKeys(GallerySoak* soak) {
  constexpr WORD kKeys[] = {VK_TAB,  VK_TAB,  VK_UP,  VK_DOWN,  VK_LEFT,     VK_RIGHT,  VK_PRIOR,
                            VK_NEXT, VK_HOME, VK_END, VK_SPACE, VK_RETURN,   VK_ESCAPE, VK_F1,
                            VK_BACK, 'A',     'Z',    '7',      VK_OEM_COMMA};
  SetForegroundWindow(soak->gallery.window);
  for (int count = 1 + Below(&soak->random, 4); count > 0; --count) {
    ++soak->keys;
    const WORD key = kKeys[Below(&soak->random, static_cast<int>(std::size(kKeys)))];
    const bool shift = Below(&soak->random, 4) == 0, control = Below(&soak->random, 10) == 0;
    Note(soak, "key", key, shift + 2 * control);
    PressKey(key, shift, control);
  }
}

void DoSomething(GallerySoak* soak) {
  HWND frame = soak->gallery.window;
  if (AnswerDialog(soak)) return;
  const int choice = Below(&soak->random, 100);
  if (choice < 45) {
    UseMouse(soak, frame);
  } else if (choice < 60) {
    ++soak->pages;
    UseMouse(soak, GetDlgItem(frame, IDC_PAGE_LIST));
  } else if (choice < 85) {
    UseKeys(soak);
  } else if (choice < 90) {
    ++soak->languages;
    const int language = Below(&soak->random, kLanguages);
    Note(soak, "language", language);
    PostMessageA(frame, WM_COMMAND, static_cast<WPARAM>(IDM_LANGUAGE_FIRST + language), 0);
  } else if (choice < 97) {
    ++soak->windows;
    Note(soak, "window moved, sized, minimised or restored");
    MoveWindowAbout(frame, &soak->random);
  } else {
    Note(soak, "surroundings changed");
    ChangeSurroundings(frame, &soak->random);
  }
}

bool Start(GallerySoak* soak) {
  ++soak->starts;
  soak->gallery = StartProgram(KV_GALLERY_EXE, soak->folder.c_str());
  if (!soak->gallery.window) return false;
  soak->watch = std::make_unique<ProcessWatch>(soak->gallery.process, soak->gallery.window);
  return true;
}

void TellLastActions(const GallerySoak& soak, const char* what) {
  std::printf("  %s; the last actions were:\n", what);
  for (const std::string& action : soak.actions) std::printf("    %s\n", action.c_str());
  std::fflush(stdout);
}

// Takes leave of a gallery that ended by itself, or that hangs.
void End(GallerySoak* soak) {
  DWORD code = 0;
  if (IsRunning(soak->gallery)) {
    ++soak->hangs;
    TellLastActions(*soak, "it hangs");
  } else if (GetExitCodeProcess(soak->gallery.process, &code) && code == 0) {
    ++soak->exits;
  } else {
    ++soak->crashes;
    TellLastActions(*soak, camera::Format("it crashed, exit code %08lX", code).c_str());
  }
  soak->longestAnswer = std::max(soak->longestAnswer, soak->watch->LongestAnswer());
  if (!soak->longestWatch || soak->watch->Samples().size() > soak->longestWatch->Samples().size()) {
    soak->longestWatch = std::move(soak->watch);
  }
  soak->watch.reset();
  DropProgram(&soak->gallery);
}

void PrintTable(const GallerySoak& soak, long close) {
  std::printf("  clicks %ld, keys %ld, wheel %ld, drags %ld, page list %ld, languages %ld, window %ld, dialogs %ld\n",
              soak.clicks, soak.keys, soak.wheels, soak.drags, soak.pages, soak.languages, soak.windows, soak.dialogs);
  std::printf("  starts                        %ld, of which ended by its own menu or keys %ld\n", soak.starts,
              soak.exits);
  if (soak.longestWatch) PrintWatch(*soak.longestWatch);
  std::printf("  longest answer of all runs    %.0f ms\n", soak.longestAnswer);
  std::printf("  last close                    %ld ms\n", close);
  std::printf("  hangs                         %ld\n  crashes                       %ld\n", soak.hangs, soak.crashes);
}

}  // namespace

int SoakGallery(double seconds, std::uint32_t seed) {
  GallerySoak soak;
  soak.random.seed(seed);
  char folder[MAX_PATH];
  GetTempPathA(sizeof(folder), folder);
  soak.folder = std::string(folder) + "tarnwick soak";
  CreateDirectoryA(soak.folder.c_str(), nullptr);
  if (!Start(&soak)) return std::puts("gallery: it did not start"), 1;
  const double start = camera::Now();
  bool isUp = true;
  while (isUp && camera::Now() < start + seconds) {
    DoSomething(&soak);
    Sleep(10UL + static_cast<DWORD>(Below(&soak.random, 60)));
    if (IsRunning(soak.gallery) && soak.watch->Hangs() == 0) continue;
    End(&soak);
    isUp = Start(&soak);
  }
  long close = -1;
  if (isUp) {
    // What is still open in front of it gets its answer first.
    for (int tries = 0; tries < 20 && AnswerDialog(&soak); ++tries) Sleep(200);
    close = CloseProgram(&soak.gallery);
    if (close < 0) TellLastActions(soak, "it did not close");
    const long exits = soak.exits;
    End(&soak);
    soak.exits = exits;
  }
  RestoreColours();
  std::printf("\nThe gallery, %.0f s, seed %u\n", camera::Now() - start, seed);
  PrintTable(soak, close);
  return close < 0 || soak.hangs > 0 || soak.crashes > 0;
}

}  // namespace soak
