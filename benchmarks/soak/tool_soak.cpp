// The real tool with a camera that has all faults, under random input of every kind. The camera's records contain their
// numbers, so that received records can be compared with sent ones.
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "app/app_context.h"
#include "app/resource_ids.h"
#include "benchmarks/soak/soak.h"
#include "camera/camera_record.h"
#include "camera/ports.h"
#include "camtool/faults.h"
#include "tests/support/serial_line.h"
#include "tools/uidriver/driver.h"

namespace soak {

namespace {

constexpr int kPort = 3, kFarPort = 4;
constexpr DWORD kCopyMs = 10000;
constexpr DWORD kSampleMs = 3;
// Leaves a gap of more than 5 ms after each record that is sent at once, so that the reader can resynchronize.
constexpr double kRecordSeconds = 0.011;
constexpr DWORD kTimeoutMs = 20;
constexpr long kBase = 1000;  // both halves of a number are less than it, and than 1023
// From the sender to the reader.
constexpr double kReaderSeconds = 0.003;
// After a faulty record the reader resynchronizes at the first gap that its port detects: 5 ms plus the system's delay.
// The fast pace leaves no such gap.
constexpr double kGapSeconds = 0.008;
constexpr double kSecondInstanceEvery = 25;
constexpr double kUnplugEvery = 17;

// ---- The camera -----------------------------------------------------------------------------------------------------

camtool::FaultPlan AllFaults(std::uint32_t seed) {
  using camtool::Trigger;
  camtool::FaultPlan plan{.disconnectSeconds = 1, .seed = seed};
  for (int fault = camtool::kDropFault; fault <= camtool::kGarbageFault; ++fault) {
    plan.triggers[fault] = {Trigger::kChance, 0.01};
  }
  plan.triggers[camtool::kPauseFault] = {Trigger::kPeriod, 7};
  plan.triggers[camtool::kDisconnectFault] = {Trigger::kPeriod, 23};
  plan.triggers[camtool::kSlowFault] = {Trigger::kPeriod, 31};
  plan.triggers[camtool::kFastFault] = {Trigger::kPeriod, 37};
  return plan;
}

// The record number that points encode, or -1.
long NumberIn(const kv::CameraPoint (&points)[kv::kPointCount]) {
  const auto& [x, y] = points[0];
  const bool isNumber = std::ranges::all_of(points, [&](const auto& p) { return p.x == x && p.y == y; });
  return isNumber && x >= 0 && x < kBase && y >= 0 && y < kBase ? y * kBase + x : -1;
}

struct SentRecord {
  double seconds;    // on camera::Now's clock
  bool isFaulty;     // dropped, truncated, corrupted, merged, with garbage, duplicated, or next to such a record
  bool isDelivered;  // written to the line
};

class HostileCamera {
 public:
  explicit HostileCamera(std::uint32_t seed)
      : faults(camtool::MakeFaultInjector(AllFaults(seed))), thread_([this] { Stream(); }) {}
  ~HostileCamera() { Stop(); }
  HostileCamera(const HostileCamera&) = delete;
  HostileCamera& operator=(const HostileCamera&) = delete;

  // Closes the port and releases the line for the lifetime of the returned object.
  std::unique_lock<std::mutex> Unplugged() {
    std::unique_lock<std::mutex> held(line_);
    port_.Close();
    return held;
  }
  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    port_.Close();
  }

  // Read it after Stop.
  camtool::FaultInjector faults;
  std::vector<SentRecord> sent;

 private:
  // Opens the port if it is closed: after a hang-up, or when the line was unplugged.
  bool Send(const std::string& bytes) {
    if (bytes.empty()) return true;
    if (!port_.isOpen()) camera::OpenPort(kFarPort, nullptr, &port_);
    if (!port_.isOpen()) return false;
    const camera::Written written = camera::WritePort(port_.handle(), bytes.data(), bytes.size(), kTimeoutMs);
    if (written == camera::Written::kGone) port_.Close();
    return written == camera::Written::kAll;
  }

  void Stream() {
    const double start = camera::Now();
    double due = 0;
    for (long n = 0; !stop_ && n < kBase * kBase; ++n) {
      while (!stop_ && camera::Now() < start + due) camera::SleepUntil(std::min(start + due, camera::Now() + 0.1));
      kv::CameraPoint points[kv::kPointCount];
      std::ranges::fill(points, kv::CameraPoint{n % kBase, n / kBase});
      char record[kv::kRecordLength];
      kv::WriteRecord(points, record);
      const std::string_view whole(record, sizeof(record));
      const bool wasHeld = !faults.held.empty();
      const camtool::FaultStep step = camtool::InjectFaults(&faults, due, whole);
      const std::scoped_lock held(line_);
      const bool isTaken = Send(step.bytes);
      if (step.disconnectSeconds > 0) port_.Close();
      sent.push_back({camera::Now(), wasHeld || step.bytes != whole, isTaken});
      due += kRecordSeconds / step.pace + step.pauseSeconds + step.disconnectSeconds;
    }
  }

  camera::Port port_;
  std::atomic<bool> stop_{false};
  std::mutex line_;  // guards the port
  std::thread thread_;
};

// ---- The observer ---------------------------------------------------------------------------------------------------

// Reads the tool's AppContext, like a debugger, several hundred times a second.
class Observer {
 public:
  explicit Observer(const Soak& soak)
      : process_(soak.program->process()),
        address_(reinterpret_cast<const char*>(GetWindowLongA(soak.window, DWLP_USER))),
        thread_([this] { Observe(); }) {}
  ~Observer() { Stop(); }
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  bool IsConnected() const { return isConnected_; }
  // Locked by threads that need the tool to run without interruption: Wine suspends a process to read its memory, and a
  // process that is suspended while it transfers a large bitmap crashes.
  std::mutex& Mutex() { return mutex_; }
  // The line was unplugged: until the next connect, the tool reads from a removed port.
  void LoseLine() { isDeaf_ = true; }
  // After Stop.
  bool HasSeen(size_t number) const { return number < seen_.size() && seen_[number]; }
  bool WasConnected(double seconds) const {
    return std::ranges::any_of(spans_, [&](const auto& span) { return seconds >= span[0] && seconds <= span[1]; });
  }
  bool HasSampled(double from, double to) const {
    const auto next = std::ranges::upper_bound(samples_, from);
    return next != samples_.end() && *next < to;
  }
  size_t Connects() const { return spans_.size(); }

 private:
  void Observe() {
    const auto read = [this](size_t offset, auto* to) {
      return ReadProcessMemory(process_, address_ + offset, to, sizeof(*to), nullptr) != 0;
    };
    for (; !stop_; Sleep(kSampleMs)) {
      const std::scoped_lock lock(mutex_);
      DWORD connected = 0;
      kv::CameraPoint points[kv::kPointCount];
      if (!read(offsetof(kv::AppContext, bConnected), &connected) || !read(offsetof(kv::AppContext, points), &points)) {
        isConnected_ = false;
        continue;
      }
      if (!connected) isDeaf_ = false;
      if (isDeaf_) connected = 0;
      const double now = camera::Now();
      samples_.push_back(now);
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
  std::mutex mutex_;
  std::vector<bool> seen_;
  std::vector<double> samples_;
  std::vector<std::array<double, 2>> spans_;
  std::thread thread_;
};

// ---- Actions --------------------------------------------------------------------------------------------------------

void PressConnect(Soak* soak) {
  Note(soak, "connect button");
  soak->watch->isConnecting = true;
  if (IsIconic(soak->window) || Below(soak, 2)) {
    PostMessageA(soak->window, WM_COMMAND, IDM_CONNECT, 0);
  } else {
    uidriver::ClickAt(GetDlgItem(soak->window, IDC_TOOLBAR), uidriver::ToolbarButtonCenter(soak->window, IDM_CONNECT));
  }
  DWORD_PTR response = 0;
  SendMessageTimeoutA(soak->window, WM_NULL, 0, 0, SMTO_NORMAL, kCopyMs, &response);
  soak->watch->isConnecting = false;
}

void ChangeSettings(Soak* soak) {
  constexpr std::string_view kTexts[] = {"0,0,500,500", "-99999,99999,x,", "", "2147483647,2147483647,-2147483648,1"};
  const std::string_view text = kTexts[Below(soak, static_cast<int>(std::size(kTexts)))];
  RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\korvel\\WindowPositions", "Tarnwick.Main", REG_SZ, text.data(),
                  static_cast<DWORD>(text.size()) + 1);
}

// Starts a second instance and closes it. False when that fails.
bool StartSecondInstance(Soak* soak) {
  Note(soak, "second instance");
  const kvtest::RunningProgram second(KV_TARNWICK_EXE, L"");
  HWND window = WaitForWindow(second);
  const bool isGood = window && CloseMs(second, window) >= 0;
  if (!isGood) std::printf("  a second instance did not %s\n", window ? "close" : "start");
  return isGood;
}

void Unplug(Soak* soak, HostileCamera* camera, Observer* observer, kvtest::SerialLine* line) {
  Note(soak, "line unplugged");
  const auto unplugged = camera->Unplugged();
  observer->LoseLine();
  line->Unplug();
  Sleep(static_cast<DWORD>(Below(soak, 1000)));
  line->PlugIn();
}

void DoSomething(Soak* soak, Observer* observer) {
  // Do not leave the tool disconnected for long.
  if (!observer->IsConnected() && Below(soak, 3) == 0) return PressConnect(soak);
  const int choice = Below(soak, 100);
  if (choice < 50) {
    Note(soak, "window");
    MoveWindowAbout(soak);
  } else if (choice < 60) {
    Note(soak, "tab and key");
    SetForegroundWindow(soak->window);
    PressKey(VK_TAB, Below(soak, 2) != 0);
    PressKey(Below(soak, 2) ? VK_SPACE : VK_RETURN);
  } else if (choice < 70) {
    Note(soak, "pause");
    PostMessageA(soak->window, WM_COMMAND, IDM_PAUSE, 0);
  } else if (choice < 82) {
    Note(soak, "surroundings and settings");
    ChangeSurroundings(soak);
    ChangeSettings(soak);
  } else if (choice < 97) {
    Note(soak, "picture");
    const std::scoped_lock undisturbed(observer->Mutex());
    DWORD_PTR response = 0;
    SendMessageTimeoutA(GetDlgItem(soak->window, IDC_CHART), WM_COPY, 0,
                        MAKELPARAM(Below(soak, 1600), Below(soak, 1200)), SMTO_NORMAL, kCopyMs, &response);
  } else {
    PressConnect(soak);
  }
}

// ---- The table ------------------------------------------------------------------------------------------------------

// Classifies every record as received, lost or expected to be lost.
void PrintRecords(const std::vector<SentRecord>& sent, const Observer& observer) {
  std::map<std::string, size_t> outcomes{{"not accounted for", 0}};
  bool isOutOfStep = false;
  for (size_t i = 0; i < sent.size(); ++i) {
    const double at = sent[i].seconds;
    if (i > 0 && sent[i - 1].isFaulty) {
      isOutOfStep = true;
    } else if (i > 0 && at - sent[i - 1].seconds > kGapSeconds) {
      isOutOfStep = i > 1 && sent[i - 2].isFaulty;
    }
    // The value was visible from the moment of its reception until the next one.
    const double next = i + 1 < sent.size() ? sent[i + 1].seconds : at + 1;
    ++outcomes[observer.HasSeen(i)                                               ? "seen by the tool"
               : sent[i].isFaulty                                                ? "lost: faulty"
               : !sent[i].isDelivered                                            ? "lost: not delivered"
               : !observer.WasConnected(at) || !observer.WasConnected(at - 0.05) ? "lost: not connected"
               : isOutOfStep                                                     ? "lost: after a faulty one"
               : !observer.HasSampled(at + kReaderSeconds, next)                 ? "not observed in time"
                                                                                 : "not accounted for"];
  }
  std::printf("  %-30s%zu\n", "records sent", sent.size());
  for (const auto& [outcome, count] : outcomes) std::printf("    %-28s%zu\n", outcome.c_str(), count);
}

}  // namespace

int SoakTool(double seconds, std::uint32_t seed) {
  Soak soak;
  soak.random.seed(seed);
  kvtest::SerialLine line({kPort, kFarPort});
  if (!line.isPlugged() || !Start(&soak, KV_TARNWICK_EXE)) {
    return std::puts("tool: it did not start, or has no line"), 1;
  }
  HostileCamera camera(seed);
  Observer observer(soak);
  const double start = camera::Now();
  double nextInstance = start + kSecondInstanceEvery, nextUnplug = start + kUnplugEvery;
  bool isGood = true;
  while (camera::Now() < start + seconds && soak.program->isRunning()) {
    DoSomething(&soak, &observer);
    Sleep(20UL + static_cast<DWORD>(Below(&soak, 120)));
    if (camera::Now() > nextUnplug) {
      Unplug(&soak, &camera, &observer, &line);
      nextUnplug = camera::Now() + kUnplugEvery;
    }
    if (camera::Now() > nextInstance) {
      isGood &= StartSecondInstance(&soak);
      nextInstance = camera::Now() + kSecondInstanceEvery;
    }
  }
  observer.Stop();
  camera.Stop();
  const bool crashed = !soak.program->isRunning();
  const long close = crashed ? -1 : CloseMs(*soak.program, soak.window);
  soak.watch->Stop();
  DWORD code = 0;
  GetExitCodeProcess(soak.program->process(), &code);
  std::printf("\nThe tool, %.0f s, seed %u\n", camera::Now() - start, seed);
  PrintRecords(camera.sent, observer);
  for (int i = 0; i < camtool::kFaultCount; ++i) {
    std::printf("  faults: %-22s%ld\n", camtool::kFaultNames[i], camera.faults.happened[i]);
  }
  PrintCounts(soak);
  std::printf("  %-30s%zu\n  %-30s%ld ms\n", "connects", observer.Connects(), "close", close);
  soak.watch->Print();
  std::printf("  %-30s%d (exit code %08lX)\n", "crashes", crashed, code);
  return !isGood || close < 0 || soak.watch->Hangs() > 0;
}

}  // namespace soak
