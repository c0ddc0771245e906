// Operates Tarnwick and the gallery with random input, each for the given time. Prints a table for each; exits with 0
// when nothing crashed, hung or failed to close.
//
//   soak [SECONDS] [--seed NUMBER] [--only tool|gallery]     by default 600 s and seed 1
#include "benchmarks/soak/soak.h"

#include <psapi.h>
#include <timeapi.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "camera/ports.h"
#include "camera/text.h"
#include "tests/support/running_program.h"

namespace soak {

namespace {

constexpr DWORD kHangMs = 10000;
constexpr size_t kMaxActions = 25;
constexpr int kColors[] = {COLOR_BTNFACE, COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_HIGHLIGHT};

std::array<DWORD, 4> HandleCounts(HANDLE process) {
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(process, &memory, sizeof(memory));
  DWORD handles = 0;
  GetProcessHandleCount(process, &handles);
  return {static_cast<DWORD>(memory.PagefileUsage / 1024), GetGuiResources(process, GR_GDIOBJECTS),
          GetGuiResources(process, GR_USEROBJECTS), handles};
}

}  // namespace

// ---- The watch ------------------------------------------------------------------------------------------------------

ProcessWatch::ProcessWatch(HANDLE process, HWND window)
    : process_(process), window_(window), thread_([this] { Watch(); }) {}

void ProcessWatch::Stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

void ProcessWatch::Watch() {
  const double start = camera::Now();
  for (int second = 0; !stop_; ++second) {
    while (!stop_ && camera::Now() < start + second) Sleep(20);
    if (stop_ || WaitForSingleObject(process_, 0) == WAIT_OBJECT_0) return;
    const bool mayScan = isConnecting;
    const double asked = camera::Now();
    DWORD_PTR response = 0;
    const bool responded = SendMessageTimeoutA(window_, WM_NULL, 0, 0, SMTO_NORMAL, kHangMs, &response) != 0;
    const double took = (camera::Now() - asked) * 1000;
    if (responded) {
      samples_.push_back({took, mayScan || isConnecting, HandleCounts(process_)});
    } else {
      hangs_ += took >= kHangMs && WaitForSingleObject(process_, 0) != WAIT_OBJECT_0;
    }
  }
}

void ProcessWatch::Print() const {
  double longest[2] = {};
  for (const Sample& sample : samples_) longest[sample.mayScan] = std::max(longest[sample.mayScan], sample.responseMs);
  std::printf("  response to WM_NULL           longest %.0f ms (while connecting %.0f ms)\n", longest[0], longest[1]);
  std::printf("  hangs of 10 s or more         %d\n", Hangs());
  if (samples_.size() < 3) return;
  // The first ten seconds are warm-up.
  const auto& first = samples_[std::min<size_t>(samples_.size() / 4, 10)].held;
  const auto& middle = samples_[samples_.size() / 2].held;
  const auto& last = samples_.back().held;
  constexpr const char* kNames[] = {"private memory, KiB", "GDI objects", "USER objects", "handles"};
  for (size_t i = 0; i < std::size(kNames); ++i) {
    if (first[i] == 0 && last[i] == 0) {
      std::printf("  %-30snot available on this system\n", kNames[i]);
    } else {
      std::printf("  %-30sstart %lu, middle %lu, end %lu\n", kNames[i], first[i], middle[i], last[i]);
    }
  }
}

// ---- The program ----------------------------------------------------------------------------------------------------

HWND WaitForWindow(const kvtest::RunningProgram& program) {
  HWND window = nullptr;
  const double end = camera::Now() + 30;
  while (!window && program.isRunning() && camera::Now() < end) {
    Sleep(20);
    window = program.Find(L"kvDialog", nullptr);
  }
  return window;
}

bool Start(Soak* soak, const char* path) {
  soak->program = std::make_unique<kvtest::RunningProgram>(path, L"");
  soak->window = WaitForWindow(*soak->program);
  if (!soak->window) return false;
  soak->watch = std::make_unique<ProcessWatch>(soak->program->process(), soak->window);
  return true;
}

long CloseMs(const kvtest::RunningProgram& program, HWND window) {
  const double start = camera::Now();
  return program.Close(window) == 0 ? static_cast<long>((camera::Now() - start) * 1000) : -1;
}

int Below(Soak* soak, int end) {
  return static_cast<int>(soak->random() % static_cast<unsigned>(end));
}

void Note(Soak* soak, const char* what, POINT a, POINT b) {
  ++soak->counts[what];
  soak->actions.push_back(camera::Format("%s %ld %ld %ld %ld", what, a.x, a.y, b.x, b.y));
  if (soak->actions.size() > kMaxActions) soak->actions.pop_front();
}

void PrintCounts(const Soak& soak) {
  for (const auto& [name, count] : soak.counts) std::printf("  %-30s%ld\n", name.c_str(), count);
}

// ---- Input ----------------------------------------------------------------------------------------------------------

void PressKey(int key, bool shift, bool control) {
  const auto send = [](int code, DWORD flags) { keybd_event(static_cast<BYTE>(code), 0, flags, 0); };
  if (shift) send(VK_SHIFT, 0);
  if (control) send(VK_CONTROL, 0);
  send(key, 0);
  send(key, KEYEVENTF_KEYUP);
  if (control) send(VK_CONTROL, KEYEVENTF_KEYUP);
  if (shift) send(VK_SHIFT, KEYEVENTF_KEYUP);
}

void MoveWindowAbout(Soak* soak) {
  constexpr WPARAM kCommands[] = {SC_MINIMIZE, SC_MAXIMIZE, SC_RESTORE, SC_RESTORE};
  const int choice = Below(soak, 8);
  if (choice < 4) {
    PostMessageA(soak->window, WM_SYSCOMMAND, kCommands[choice], 0);
  } else {
    SetWindowPos(soak->window, nullptr, Below(soak, 600) - 100, Below(soak, 500) - 50, 100 + Below(soak, 1200),
                 100 + Below(soak, 900),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS | (choice < 6 ? SWP_NOSIZE : SWP_NOMOVE));
  }
}

void ChangeSurroundings(Soak* soak) {
  constexpr UINT kMessages[] = {WM_SYSCOLORCHANGE, WM_SETTINGCHANGE, WM_FONTCHANGE, WM_THEMECHANGED, WM_TIMECHANGE};
  if (Below(soak, 4) != 0) {
    PostMessageA(soak->window, kMessages[Below(soak, static_cast<int>(std::size(kMessages)))], 0, 0);
    return;
  }
  COLORREF colors[std::size(kColors)];
  for (COLORREF& color : colors) color = soak->random() & 0xFFFFFF;
  SetSysColors(static_cast<int>(std::size(kColors)), kColors, colors);
}

}  // namespace soak

int main(int argc, char** argv) {
  double seconds = 600;
  std::uint32_t seed = 1;
  std::string only;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i], value = i + 1 < argc ? argv[i + 1] : "";
    if (option == "--seed" && !value.empty()) {
      seed = static_cast<std::uint32_t>(std::strtoul(argv[++i], nullptr, 10));
    } else if (option == "--only" && (value == "tool" || value == "gallery")) {
      only = argv[++i];
    } else if (std::atof(argv[i]) > 0) {
      seconds = std::atof(argv[i]);
    } else {
      return std::fputs("usage: soak [SECONDS] [--seed NUMBER] [--only tool|gallery]\n", stderr), 2;
    }
  }
  setvbuf(stdout, nullptr, _IONBF, 0);
  // The programs write their files there.
  const std::string folder = camera::Narrow(_wgetenv(L"TEMP")) + "\\tarnwick soak";
  CreateDirectoryA(folder.c_str(), nullptr);
  SetCurrentDirectoryA(folder.c_str());
  COLORREF ownColors[std::size(soak::kColors)];
  std::ranges::transform(soak::kColors, ownColors, GetSysColor);
  timeBeginPeriod(1);
  int result = 0;
  if (only != "gallery") result |= soak::SoakTool(seconds, seed);
  if (only != "tool") result |= soak::SoakGallery(seconds, seed);
  timeEndPeriod(1);
  SetSysColors(static_cast<int>(std::size(ownColors)), soak::kColors, ownColors);
  std::puts(result == 0 ? "\nno failure" : "\nFAILED");
  return result;
}
