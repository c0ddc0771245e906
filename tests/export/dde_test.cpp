#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "export/dde_client.h"
#include "export/excel_link.h"
#include "framework/shell_launch.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::GuardedBytes;
using kvtest::WaitUntil;

std::string Beside(const char* file) {
  char path[MAX_PATH];
  GetModuleFileNameA(nullptr, path, sizeof(path));
  return std::string(path, strrchr(path, '\\') + 1) + file;
}

// Everything happens on a desktop of its own: a connect waits for every window of the desktop, also for those of other
// tests that do not pump messages at that moment.
std::string desktopName;

class OwnDesktop : public testing::Environment {
 public:
  void SetUp() override {
    desktopName = "kvDdeTest" + std::to_string(GetCurrentProcessId());
    HDESK desktop = CreateDesktopA(desktopName.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    ASSERT_TRUE(SetThreadDesktop(desktop));
  }
};
const testing::Environment* const ownDesktop = testing::AddGlobalTestEnvironment(new OwnDesktop);

// A running server; ends with the object. Its transcript stays beside it.
class Server {
 public:
  explicit Server(const std::string& arguments) {
    const std::string program = Beside("dde_server.exe"), log = Beside("dde_transcript.txt");
    DeleteFileA(log.c_str());
    std::string command = "\"" + program + "\" \"" + log + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.lpDesktop = desktopName.data();
    EXPECT_TRUE(
        CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_));
    EXPECT_TRUE(Saw("ready"));
  }
  ~Server() {
    PostThreadMessageA(process_.dwThreadId, WM_QUIT, 0, 0);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process_.hProcess, 5000)) << "the server hangs";
    Kill();
  }
  void Kill() {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, 5000);
  }
  std::string Log() const {
    std::ifstream file(Beside("dde_transcript.txt"), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // Whether a text comes to be in the log; what the server answered to it has been dispatched then.
  bool Saw(const std::string& text) const {
    const bool seen = WaitUntil([&] { return Log().find(text) != std::string::npos; });
    kvtest::PumpMessages();
    return seen;
  }

 private:
  PROCESS_INFORMATION process_{};
};

HDDEDATA CALLBACK Ignore(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

class Dde : public testing::Test {
 protected:
  Dde() { EXPECT_EQ(0u, DdeInitializeA(&instance_, Ignore, APPCMD_CLIENTONLY, 0)); }
  ~Dde() override { DdeUninitialize(instance_); }

  void Connect(const char* topic) { ASSERT_TRUE(conversation_ = kv::ddeConnect(instance_, "Excel", topic)); }
  BOOL Request(const char* item, char* to, DWORD timeoutMs = 0) {
    return kv::ddeRequest(instance_, conversation_, item, to, timeoutMs);
  }
  HDDEDATA Poke(const char* item, const char* text, DWORD timeoutMs = 0) {
    return kv::ddePoke(instance_, conversation_, item, text, timeoutMs);
  }

  DWORD instance_ = 0;
  HCONV conversation_ = nullptr;
};

TEST_F(Dde, ConverseWithAServerInAnotherProcess) {
  Server server("System,Mappe2");
  EXPECT_FALSE(kv::ddeConnect(instance_, "Excel", "Mappe3"));
  EXPECT_FALSE(kv::ddeConnect(instance_, "Other", "System"));
  Connect("Mappe2");
  EXPECT_TRUE(Poke("Z1S1", "12,5"));
  EXPECT_TRUE(server.Saw("poke Z1S1 \"12,5\\0\" (5 bytes)")) << server.Log();
  char text[16] = "untouched";
  EXPECT_EQ(1, Request("Z1S1", text));
  EXPECT_EQ(0, Request("Z9S9", text));
  EXPECT_STREQ("12,5", text);

  // Last, because Wine serves no further transaction of a conversation after an asynchronous one.
  EXPECT_EQ(1, kv::ddeExecute(instance_, conversation_, "[NEW(1)]"));
  EXPECT_TRUE(server.Saw("execute Mappe2 \"[NEW(1)]\\0\" (9 bytes)")) << server.Log();
  EXPECT_TRUE(kv::ddeDisconnect(conversation_));
  EXPECT_TRUE(server.Saw("disconnect"));
  EXPECT_FALSE(kv::ddeDisconnect(conversation_));
  EXPECT_EQ(0, Request("Z1S1", text, 200));
}

TEST_F(Dde, LongAnswersEndAtTheBuffer) {
  Server server("System");
  Connect("System");
  GuardedBytes room(kv::kDdeAnswerSize + 1);  // the byte after these faults
  char* text = room.as<char>();
  text[kv::kDdeAnswerSize] = '!';
  EXPECT_EQ(1, Request("Bytes8191", text));
  EXPECT_EQ(8191u, strnlen(text, kv::kDdeAnswerSize));
  for (const char* item : {"Bytes8192", "Bytes9000"}) {
    memset(text, 0, kv::kDdeAnswerSize);
    EXPECT_EQ(1, Request(item, text));
    EXPECT_EQ(8192u, strnlen(text, kv::kDdeAnswerSize)) << item;
    EXPECT_EQ('a' + 8191 % 26, text[8191]);
    EXPECT_EQ('!', text[8192]);  // a destination of kDdeAnswerSize bytes would end here
  }
  // One byte too few for the text: nothing is stored, and still the server has answered.
  EXPECT_EQ(1, Request("Bytes8192", text + 2));
  EXPECT_EQ('c', text[2]);
  EXPECT_EQ('!', text[8192]);
  EXPECT_EQ(1, Request("Bytes10", nullptr));
  // Room for the text and none for the terminator.
  EXPECT_EQ(1, Request("Bytes10", text + kv::kDdeAnswerSize - 9));
  EXPECT_EQ(0, memcmp("abcdefghij", text + kv::kDdeAnswerSize - 9, 10));
}

TEST_F(Dde, TimeOutsEndTheWaitAndADeadServerFails) {
  char text[64] = "untouched";
  Server slow("System delay=700");
  Connect("System");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(0, Request("Topics", text, 150));
  const std::chrono::duration<double, std::milli> waited = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(waited.count(), 140);
  EXPECT_LT(waited.count(), 650);
  EXPECT_STREQ("untouched", text);
  // The late answer belongs to nobody; a later request gets its own.
  EXPECT_TRUE(slow.Saw("request Topics: answered"));
  EXPECT_EQ(1, Request("Bytes3", text));
  EXPECT_STREQ("abc", text);

  slow.Kill();
  EXPECT_EQ(0, Request("Topics", text, 500));
  EXPECT_FALSE(Poke("Z1S1", "1", 500));
  EXPECT_STREQ("abc", text);
}

TEST_F(Dde, BadArgumentsAreRefused) {
  Server server("System");
  Connect("System");
  GuardedBytes unterminated(4);
  memset(unterminated.data(), 'A', 4);
  const std::string tooLong(300, 'x');
  char text[8] = "kept";
  for (const char* bad : {static_cast<const char*>(nullptr), unterminated.as<const char>(), tooLong.c_str()}) {
    EXPECT_FALSE(kv::ddeConnect(instance_, bad, "System") || kv::ddeConnect(instance_, "Excel", bad));
    if (bad == tooLong.c_str()) continue;  // too long for a name only
    EXPECT_EQ(0, kv::ddeExecute(instance_, conversation_, bad));
    EXPECT_EQ(0, Request(bad, text, 200));
    EXPECT_FALSE(Poke(bad, "1", 200) || Poke("Z1S1", bad, 200));
  }
  EXPECT_FALSE(kv::ddeConnect(0, "Excel", "System"));
  EXPECT_EQ(0, kv::ddeExecute(0, conversation_, "[NEW(1)]"));
  EXPECT_STREQ("kept", text);
}

// Makes a word's page read-only until something tries to write there, and lets that one try fail. To ddeStartStop,
// which tries before it stores, such a word is not writable and yet can be stored to: the one case in which a start
// succeeds.
class WritableAfterOneFault {
 public:
  explicit WritableAfterOneFault(void* address) {
    page_ = reinterpret_cast<ULONG_PTR>(address) / kPage;
    handler_ = AddVectoredExceptionHandler(1, Handle);
    DWORD previous = 0;
    VirtualProtect(address, 1, PAGE_READONLY, &previous);  // from here on nothing may write until the call under test
  }
  ~WritableAfterOneFault() { RemoveVectoredExceptionHandler(handler_); }

 private:
  static constexpr ULONG_PTR kPage = 4096;
  static LONG CALLBACK Handle(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.ExceptionInformation[1] / kPage == page_) {
      DWORD previous = 0;
      VirtualProtect(reinterpret_cast<void*>(record.ExceptionInformation[1]), 1, PAGE_READWRITE, &previous);
    }
    return EXCEPTION_CONTINUE_SEARCH;
  }
  static inline ULONG_PTR page_ = 0;
  void* handler_;
};

bool IsLive(DWORD instance) {
  HSZ name = DdeCreateStringHandleA(instance, "probe", CP_WINANSI);
  return name && DdeFreeStringHandle(instance, name);
}

TEST_F(Dde, StartStopRefusesAWritableSlotAndGoesOnWithOthers) {
  DWORD writable = instance_;
  EXPECT_EQ(0, kv::ddeStartStop(0, &writable));
  EXPECT_TRUE(writable == instance_ && IsLive(instance_));
  writable = 0;
  EXPECT_EQ(0, kv::ddeStartStop(1, &writable));
  EXPECT_EQ(0u, writable);

  EXPECT_EQ(0, kv::ddeStartStop(1, nullptr));
  EXPECT_EQ(1, kv::ddeStartStop(0, nullptr));
  GuardedBytes page(sizeof(DWORD));
  DWORD* slot = page.as<DWORD>();
  EXPECT_EQ(0, kv::ddeStartStop(1, slot + 1) || kv::ddeStartStop(0, slot + 1));  // unreadable

  *slot = 0;
  const auto startStop = [slot](BOOL start) {
    WritableAfterOneFault once(slot);
    EXPECT_EQ(1, kv::ddeStartStop(start, slot));
    return *slot;
  };
  const DWORD made = startStop(1);
  EXPECT_TRUE(IsLive(made));
  EXPECT_EQ(made, startStop(1));
  EXPECT_EQ(0u, startStop(0));
  EXPECT_FALSE(IsLive(made));

  // A page that stays read-only: a new instance has no place and is given back, an old one is ended.
  GuardedBytes kept(sizeof(DWORD));
  *kept.as<DWORD>() = instance_;
  page.MakeReadOnly();
  kept.MakeReadOnly();
  EXPECT_EQ(0, kv::ddeStartStop(1, slot));
  EXPECT_TRUE(kv::ddeStartStop(1, kept.as<DWORD>()) && IsLive(instance_));
  EXPECT_TRUE(kv::ddeStartStop(0, kept.as<DWORD>()) && !IsLive(instance_));
}

std::vector<SHELLEXECUTEINFOA> launches;

BOOL WINAPI NoteLaunch(SHELLEXECUTEINFOA* info) {
  launches.push_back(*info);
  return FALSE;
}

class ExcelLink : public testing::Test {
 protected:
  ExcelLink() { launches.clear(); }
  ~ExcelLink() override {
    kv::shellCalls.executeExA = previous_;
    kv::excelLink(0);
    DdeUninitialize(std::exchange(kv::excelLinkState.ddeInstance, 0));
  }
  // Opens or closes the link in the one case in which that succeeds.
  static BOOL Link(BOOL open) {
    WritableAfterOneFault once(&kv::excelLinkState.ddeInstance);
    return kv::excelLink(open);
  }
  bool IsConnected() const { return link_.systemConversation || link_.workbookConversation; }

  const kv::ExcelLinkState& link_ = kv::excelLinkState;
  const decltype(kv::shellCalls.executeExA) previous_ = std::exchange(kv::shellCalls.executeExA, NoteLaunch);
};

TEST_F(ExcelLink, StartsTheSpreadsheetThatDoesNotRun) {
  EXPECT_EQ(0, kv::excelLink(1));  // ordinarily an opening or closing ends at the start
  EXPECT_EQ(0, kv::excelLink(0));
  EXPECT_TRUE(link_.ddeInstance == 0 && !IsConnected() && launches.empty());

  EXPECT_EQ(0, Link(1));
  EXPECT_TRUE(IsLive(link_.ddeInstance));
  EXPECT_FALSE(IsConnected());
  ASSERT_EQ(1u, launches.size());
  const SHELLEXECUTEINFOA& info = launches[0];
  EXPECT_TRUE(info.cbSize == 60 && info.fMask == 0x140 && info.nShow == 1);
  EXPECT_EQ("open|Excel.exe|", std::string(info.lpVerb) + "|" + info.lpFile + "|" + info.lpParameters);
  EXPECT_TRUE(!info.hwnd && !info.lpDirectory && !info.hProcess);
  EXPECT_EQ(1, Link(0));
  EXPECT_EQ(0u, link_.ddeInstance);
}

// Takes ten seconds under Wine, which does not serve the request for the topics after the execute.
TEST_F(ExcelLink, MakesAWorkbookInTheRunningSpreadsheet) {
  Server server("System,Mappe2");
  EXPECT_EQ(0, Link(1));
  EXPECT_EQ(0u, launches.size());
  ASSERT_TRUE(link_.systemConversation && link_.workbookConversation);
  const std::string log = server.Log();
  size_t place = 0;
  for (const char* line : {"connect Excel|System: accepted", "execute System \"[NEW(1)]\\0\" (9 bytes)",
                           "request Topics: answered", "connect Excel|Mappe2: accepted"}) {
    place = log.find(line, place);
    ASSERT_NE(std::string::npos, place) << line << " is not in its place in\n" << log;
  }
  EXPECT_TRUE(kv::ddePoke(link_.ddeInstance, link_.workbookConversation, "Z1S1", "12,5", 0));
  EXPECT_EQ(0, kv::excelLink(0));
  EXPECT_FALSE(IsConnected());
  EXPECT_TRUE(server.Saw("disconnect Mappe2") && server.Saw("disconnect System"));
  EXPECT_LT(server.Log().find("disconnect System"), server.Log().find("disconnect Mappe2"));
}

TEST_F(ExcelLink, AWorkbookThatCannotBeReachedClosesBothConversations) {
  Server server("System leave");
  EXPECT_EQ(0, Link(1));
  EXPECT_FALSE(IsConnected());
  EXPECT_TRUE(IsLive(link_.ddeInstance) && launches.empty());
  EXPECT_TRUE(server.Saw("connect Excel|Mappe2: not mine"));
}

TEST(DecimalPoint, OnlyTheFirstBecomesAComma) {
  GuardedBytes unterminated(4);
  memcpy(unterminated.data(), "1.25", 4);
  char number[] = "12.5.3", whole[] = "125";
  for (char* text : {number, whole, unterminated.as<char>(), static_cast<char*>(nullptr)}) {
    EXPECT_EQ(1, kv::decimalPointToComma(text));
  }
  EXPECT_STREQ("12,5.3", number);
  EXPECT_STREQ("125", whole);
  EXPECT_EQ(0, memcmp("1.25", unterminated.data(), 4));
  memcpy(unterminated.data(), "1.2", 4);
  unterminated.MakeReadOnly();  // terminated now
  EXPECT_EQ(1, kv::decimalPointToComma(unterminated.as<char>()));
}

}  // namespace
