// The real tool under a camera with all faults, while it is used in every way at once.
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <random>
#include <vector>

#include "app/app_context.h"
#include "app/camera_record.h"
#include "app/resource_ids.h"
#include "benchmarks/soak/hostile_camera.h"
#include "benchmarks/soak/process_watch.h"
#include "benchmarks/soak/program.h"
#include "benchmarks/soak/soaks.h"
#include "camera/ports.h"
#include "camtool/faults.h"
#include "tests/support/serial_line.h"
#include "tools/uidriver/driver.h"

namespace soak {

namespace {

constexpr int kPort = 3, kFarPort = 4;
constexpr DWORD kCopyMs = 10000;
constexpr DWORD kLookMs = 3;
// From the sender to the reader's record.
constexpr double kReaderSeconds = 0.003;
// Behind a faulty record the reader gets into step at the first gap that its port notices: 5 ms, and what the system
// adds. The fast pace leaves no such gap.
constexpr double kGapSeconds = 0.008;
constexpr double kSecondInstanceEvery = 25;
constexpr double kUnplugEvery = 17;

// Reads the tool's own record, as a debugger would, some hundred times a second.
class Observer {
 public:
  explicit Observer(const Program& tool)
      : process_(tool.process),
        address_(reinterpret_cast<const char*>(GetWindowLongA(tool.window, DWLP_USER))),
        thread_([this] { Observe(); }) {}
  ~Observer() { Stop(); }
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  bool IsConnected() const { return isConnected_; }
  // Held by whoever needs the tool undisturbed. Wine stops a process for each look into its memory, and a process that
  // is stopped while it hands a large picture over dies of it.
  std::mutex& Look() { return look_; }
  // The line was unplugged: until the next connect the tool listens to a port that is gone.
  void LoseLine() { isDeaf_ = true; }
  // After Stop.
  bool HasSeen(size_t number) const { return number < seen_.size() && seen_[number]; }
  bool WasConnected(double seconds) const {
    return std::ranges::any_of(spans_, [&](const auto& span) { return seconds >= span[0] && seconds <= span[1]; });
  }
  bool HasLooked(double from, double to) const {
    const auto next = std::ranges::upper_bound(looks_, from);
    return next != looks_.end() && *next < to;
  }
  size_t Connects() const { return spans_.size(); }

 private:
  void Observe() {
    for (; !stop_; Sleep(kLookMs)) {
      const std::scoped_lock lock(look_);
      DWORD connected = 0;
      kv::CameraPoint points[kv::kPointCount];
      if (!ReadProcessMemory(process_, address_ + offsetof(kv::AppContext, bConnected), &connected, sizeof(connected),
                             nullptr) ||
          !ReadProcessMemory(process_, address_ + offsetof(kv::AppContext, points), points, sizeof(points), nullptr)) {
        isConnected_ = false;
        continue;
      }
      if (!connected) isDeaf_ = false;
      if (isDeaf_) connected = 0;
      const double now = camera::Now();
      looks_.push_back(now);
      if (connected && !isConnected_) spans_.push_back({now, now});
      if (connected) spans_.back()[1] = now;
      isConnected_ = connected != 0;
      const long number = NumberIn(points);
      if (!connected || number < 0) continue;
      if (seen_.size() <= static_cast<size_t>(number)) seen_.resize(static_cast<size_t>(number) + 1);
      seen_[static_cast<size_t>(number)] = true;
    }
  }

  HANDLE process_;
  const char* address_;
  std::atomic<bool> stop_{false}, isConnected_{false}, isDeaf_{false};
  std::mutex look_;
  std::vector<bool> seen_;
  std::vector<double> looks_;
  std::vector<std::array<double, 2>> spans_;
  std::thread thread_;
};

// ---- What is done to the tool --------------------------------------------------------------------------------------

struct ToolSoak {
  kvtest::SerialLine line{{kPort, kFarPort}};
  std::unique_ptr<HostileCamera> camera;
  Program tool;
  std::unique_ptr<ProcessWatch> watch;
  std::unique_ptr<Observer> observer;
  std::mt19937 random;
  long presses = 0, moves = 0, changes = 0, pictures = 0, unplugs = 0, instances = 0, pauses = 0, tabs = 0;
  long failures = 0, longestClose = 0;
};

void Answered(const ToolSoak& soak) {
  DWORD_PTR answer = 0;
  SendMessageTimeoutA(soak.tool.window, WM_NULL, 0, 0, SMTO_NORMAL, kCopyMs, &answer);
}

void PressConnect(ToolSoak* soak) {
  ++soak->presses;
  soak->watch->isConnecting = true;
  HWND window = soak->tool.window;
  if (IsIconic(window) || Below(&soak->random, 2)) {
    PostMessageA(window, WM_COMMAND, IDM_CONNECT, 0);
  } else {
    uidriver::ClickAt(GetDlgItem(window, IDC_TOOLBAR), uidriver::ToolbarButtonCentre(window, IDM_CONNECT));
  }
  Answered(*soak);
  soak->watch->isConnecting = false;
}

void AskForPicture(ToolSoak* soak) {
  ++soak->pictures;
  const std::scoped_lock undisturbed(soak->observer->Look());
  DWORD_PTR answer = 0;
  const LPARAM size = MAKELPARAM(Below(&soak->random, 1600), Below(&soak->random, 1200));
  SendMessageTimeoutA(GetDlgItem(soak->tool.window, IDC_CHART), WM_COPY, 0, size, SMTO_NORMAL, kCopyMs, &answer);
}

void ChangeSettings(std::mt19937* random) {
  constexpr const char* kTexts[] = {"0,0,500,500", "-99999,99999,x,", "", "2147483647,2147483647,-2147483648,1"};
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\korvel\\WindowPositions", 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                      nullptr) != ERROR_SUCCESS) {
    return;
  }
  const char* text = kTexts[Below(random, static_cast<int>(std::size(kTexts)))];
  RegSetValueExA(key, "Tarnwick.Main", 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                 static_cast<DWORD>(std::strlen(text)) + 1);
  RegCloseKey(key);
}

void StartSecondInstance(ToolSoak* soak) {
  ++soak->instances;
  Program second = StartProgram(KV_TARNWICK_EXE, nullptr);
  const long close = second.window ? CloseProgram(&second) : -1;
  soak->failures += close < 0;
  soak->longestClose = std::max(soak->longestClose, close);
  if (close < 0) std::printf("  a second instance did not %s\n", second.window ? "close" : "start");
  DropProgram(&second);
}

void Unplug(ToolSoak* soak) {
  ++soak->unplugs;
  const auto unplugged = soak->camera->Unplugged();
  soak->observer->LoseLine();
  soak->line.Unplug();
  Sleep(static_cast<DWORD>(Below(&soak->random, 1000)));
  soak->line.PlugIn();
}

void DoSomething(ToolSoak* soak) {
  HWND window = soak->tool.window;
  std::mt19937* random = &soak->random;
  // A tool that is not connected is of little interest for long.
  if (!soak->observer->IsConnected() && Below(random, 3) == 0) return PressConnect(soak);
  const int choice = Below(random, 100);
  if (choice < 50) {
    ++soak->moves;
    MoveWindowAbout(window, random);
  } else if (choice < 60) {
    ++soak->tabs;
    SetForegroundWindow(window);
    PressKey(VK_TAB, Below(random, 2) != 0);
    PressKey(Below(random, 2) ? VK_SPACE : VK_RETURN);
  } else if (choice < 70) {
    ++soak->pauses;
    PostMessageA(window, WM_COMMAND, IDM_PAUSE, 0);
  } else if (choice < 82) {
    ++soak->changes;
    ChangeSurroundings(window, random);
    ChangeSettings(random);
  } else if (choice < 97) {
    AskForPicture(soak);
  } else {
    PressConnect(soak);
  }
}

// ---- The table -----------------------------------------------------------------------------------------------------

void PrintRecords(const ToolSoak& soak) {
  const std::vector<SentRecord> sent = soak.camera->Sent();
  long seen = 0, faulty = 0, unheard = 0, disconnected = 0, outOfStep = 0, unlooked = 0, unexplained = 0;
  bool isOutOfStep = false;
  for (size_t i = 0; i < sent.size(); ++i) {
    const auto isFaulty = [&](size_t back) { return i >= back && sent[i - back].isFaulty; };
    if (isFaulty(1)) {
      isOutOfStep = true;
    } else if (i > 0 && sent[i].seconds - sent[i - 1].seconds > kGapSeconds) {
      isOutOfStep = isFaulty(2);
    }
    // It stood from the moment that the reader had it until the next one came.
    const double next = i + 1 < sent.size() ? sent[i + 1].seconds : sent[i].seconds + 1;
    const bool wasLookedFor = soak.observer->HasLooked(sent[i].seconds + kReaderSeconds, next);
    if (soak.observer->HasSeen(i)) {
      ++seen;
    } else if (isFaulty(0)) {
      ++faulty;
    } else if (!sent[i].isDelivered) {
      ++unheard;
    } else if (!soak.observer->WasConnected(sent[i].seconds) || !soak.observer->WasConnected(sent[i].seconds - 0.05)) {
      ++disconnected;
    } else if (isOutOfStep) {
      ++outOfStep;
    } else if (!wasLookedFor) {
      ++unlooked;
    } else {
      ++unexplained;
    }
  }
  std::printf("  records sent                  %zu\n", sent.size());
  std::printf("    seen by the tool            %ld\n", seen);
  std::printf("    lost: faulty                %ld\n", faulty);
  std::printf("    lost: nobody listened       %ld\n", unheard);
  std::printf("    lost: not connected         %ld\n", disconnected);
  std::printf("    lost: behind a faulty one   %ld\n", outOfStep);
  std::printf("    not looked for in time      %ld\n", unlooked);
  std::printf("    not accounted for           %ld\n", unexplained);
}

void PrintTable(const ToolSoak& soak, bool crashed, long close) {
  PrintRecords(soak);
  const camtool::FaultInjector& faults = soak.camera->Faults();
  std::printf("  faults                       ");
  for (int i = 0; i < camtool::kFaultCount; ++i)
    std::printf(" %ld %s%s", faults.happened[i], camtool::kFaultNames[i], i + 1 < camtool::kFaultCount ? "," : "\n");
  std::printf("  connects                      %zu of %ld presses of the button; line unplugged %ld times\n",
              soak.observer->Connects(), soak.presses, soak.unplugs);
  std::printf("  window actions                %ld moves and sizes, %ld tabs, %ld pauses, %ld changes, %ld pictures\n",
              soak.moves, soak.tabs, soak.pauses, soak.changes, soak.pictures);
  PrintWatch(*soak.watch);
  std::printf("  closes                        %ld of further instances; longest %ld ms; the tool itself %ld ms\n",
              soak.instances, soak.longestClose, close);
  DWORD code = 0;
  GetExitCodeProcess(soak.tool.process, &code);
  std::printf("  crashes                       %d (exit code %08lX)\n", crashed ? 1 : 0, code);
}

}  // namespace

int SoakTool(double seconds, std::uint32_t seed) {
  ToolSoak soak;
  soak.random.seed(seed);
  soak.tool = StartProgram(KV_TARNWICK_EXE, nullptr);
  if (!soak.line.isPlugged() || !soak.tool.window) return std::puts("tool: it did not start, or has no line"), 1;
  soak.camera = std::make_unique<HostileCamera>(kFarPort, seed);
  soak.watch = std::make_unique<ProcessWatch>(soak.tool.process, soak.tool.window);
  soak.observer = std::make_unique<Observer>(soak.tool);
  const double start = camera::Now();
  double nextInstance = start + kSecondInstanceEvery, nextUnplug = start + kUnplugEvery;
  while (camera::Now() < start + seconds && IsRunning(soak.tool)) {
    DoSomething(&soak);
    Sleep(20UL + static_cast<DWORD>(Below(&soak.random, 120)));
    if (camera::Now() > nextUnplug) {
      Unplug(&soak);
      nextUnplug = camera::Now() + kUnplugEvery;
    }
    if (camera::Now() > nextInstance) {
      StartSecondInstance(&soak);
      nextInstance = camera::Now() + kSecondInstanceEvery;
    }
  }
  soak.observer->Stop();
  soak.camera->Stop();
  const bool crashed = !IsRunning(soak.tool);
  const long close = crashed ? -1 : CloseProgram(&soak.tool);
  RestoreColours();
  std::printf("\nThe tool, %.0f s, seed %u\n", camera::Now() - start, seed);
  PrintTable(soak, crashed, close);
  const int hangs = soak.watch->Hangs();
  soak.watch.reset();
  DropProgram(&soak.tool);
  return crashed || close < 0 || hangs > 0 || soak.failures > 0;
}

}  // namespace soak
