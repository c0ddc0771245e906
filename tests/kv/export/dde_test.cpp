#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kv/export/dde_client.h"
#include "kv/framework/shell_launch.h"
#include "kv/toolkit/dde_conversation.h"
#include "tests/support/files.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::BuildFolder;
using kvtest::GuardedBytes;

// A running server; the destructor ends it.
class Server {
 public:
  explicit Server(const std::wstring& arguments) {
    std::filesystem::remove(log_);
    const auto program = BuildFolder(L"tests") / L"kv\\export\\dde_server.exe";
    process_ = std::make_unique<kvtest::RunningProgram>(program, L"\"" + log_.wstring() + L"\" " + arguments);
    EXPECT_TRUE(Saw("ready"));
  }
  void Kill() { process_.reset(); }
  // Its log.
  std::string Log() const { return kvtest::BytesOf(log_); }
  // Waits for a text in the log; the server's answer has been dispatched by then.
  bool Saw(const std::string& text) const {
    const bool seen = kvtest::WaitUntil([&] { return Log().find(text) != std::string::npos; });
    kvtest::PumpMessages();
    return seen;
  }

 private:
  const std::filesystem::path log_ = BuildFolder(L"tests") / L"kv\\export\\dde_transcript.txt";
  std::unique_ptr<kvtest::RunningProgram> process_;
};

HDDEDATA CALLBACK Ignore(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

class Dde : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(static_cast<UINT>(DMLERR_NO_ERROR), DdeInitializeA(&instance_, Ignore, APPCMD_CLIENTONLY, 0));
  }
  void TearDown() override {
    kv::ddeDisconnect(conversation_);
    server_.reset();
    DdeUninitialize(instance_);
  }
  // Ends the previous server, if any.
  void ConverseWith(const wchar_t* arguments, const char* topic = "System") {
    kv::ddeDisconnect(conversation_);
    server_.reset();
    server_ = std::make_unique<Server>(arguments);
    conversation_ = kv::ddeConnect(instance_, "Excel", topic);
    ASSERT_TRUE(conversation_);
  }
  BOOL Request(const char* item, DWORD timeout = 0) {
    return kv::ddeRequest(instance_, conversation_, item, text_, timeout);
  }

  DWORD instance_ = 0;
  std::unique_ptr<Server> server_;
  HCONV conversation_ = nullptr;
  char text_[64] = "untouched";
};

TEST_F(Dde, ConverseWithAServerInAnotherProcess) {
  ConverseWith(L"Excel System,Mappe2", "Mappe2");
  EXPECT_FALSE(kv::ddeConnect(instance_, "Excel", "Mappe3") || kv::ddeConnect(instance_, "Other", "System"));
  EXPECT_TRUE(kv::ddePoke(instance_, conversation_, "Z1S1", "12,5", 0));
  EXPECT_TRUE(server_->Saw("poke Z1S1 \"12,5\\0\" (5 bytes)"));
  EXPECT_EQ(1, Request("Z1S1"));
  EXPECT_STREQ("12,5", text_);
  EXPECT_EQ(0, Request("Z9S9"));
  EXPECT_STREQ("12,5", text_);

  // Last, because Wine executes no transaction of a conversation after an asynchronous one.
  EXPECT_EQ(1, kv::ddeExecute(instance_, conversation_, "[NEW(1)]"));
  EXPECT_TRUE(server_->Saw("execute Mappe2 \"[NEW(1)]\\0\" (9 bytes)"));
  EXPECT_TRUE(kv::ddeDisconnect(conversation_));
  EXPECT_TRUE(server_->Saw("disconnect"));
  EXPECT_FALSE(kv::ddeDisconnect(conversation_));
  EXPECT_EQ(0, Request("Z1S1", 200));
}

TEST_F(Dde, LongAnswersAreTruncatedToTheBuffer) {
  ConverseWith(L"Excel System");
  const auto request = [&](const char* item, char* to) {
    return kv::ddeRequest(instance_, conversation_, item, to, 0);
  };
  GuardedBytes room(kv::kDdeReplySize + 1);  // the byte after these faults
  char* text = room.as<char>();
  text[kv::kDdeReplySize] = '!';
  EXPECT_EQ(1, request("Bytes8191", text));
  EXPECT_EQ(8191u, strnlen(text, kv::kDdeReplySize));
  for (const char* item : {"Bytes8192", "Bytes9000"}) {
    memset(text, 0, kv::kDdeReplySize);
    EXPECT_EQ(1, request(item, text));
    EXPECT_EQ(8192u, strnlen(text, kv::kDdeReplySize)) << item;
    EXPECT_EQ('a' + 8191 % 26, text[8191]);
    EXPECT_EQ('!', text[8192]);  // a destination of kDdeReplySize bytes would end here
  }
  // One byte too few for the text: nothing is stored, although the server has answered.
  EXPECT_EQ(1, request("Bytes8192", text + 2));
  EXPECT_TRUE(text[2] == 'c' && text[8192] == '!');
  EXPECT_EQ(1, request("Bytes10", nullptr));
  // Large enough for the text, but not for the terminator.
  EXPECT_EQ(1, request("Bytes10", text + kv::kDdeReplySize - 9));
  EXPECT_EQ(0, memcmp("abcdefghij", text + kv::kDdeReplySize - 9, 10));
}

TEST(DdeConversation, ReturnsWholeAnswersAndEndsInItsDestructor) {
  const Server server(L"Excel System");
  std::string answer = "kept";
  {
    kv::DdeConversation conversation("Excel", "System");
    EXPECT_TRUE(conversation.IsOpen() && conversation.Poke("Z1S1", "12,5"));
    EXPECT_FALSE(conversation.Request("Z9S9", &answer, 500));
    EXPECT_EQ("kept", answer);
    EXPECT_TRUE(conversation.Request("Bytes9000", &answer) && answer.size() == 8192);
    EXPECT_TRUE(conversation.Request("Z1S1", &answer) && answer == "12,5") << answer;
  }
  EXPECT_TRUE(server.Saw("disconnect System")) << server.Log();
  kv::DdeConversation none("Other", "System");
  EXPECT_FALSE(none.IsOpen() || none.Execute("x") || none.Poke("a", "b") || none.Request("a", &answer));
}

TEST_F(Dde, TimeoutsEndTheWait) {
  ConverseWith(L"Excel System delay=700");
  const DWORD begin = GetTickCount();
  EXPECT_EQ(0, Request("Topics", 150));
  const DWORD waited = GetTickCount() - begin;
  EXPECT_TRUE(waited >= 140 && waited < 650) << waited;
  EXPECT_STREQ("untouched", text_);
  // The late answer is discarded; a later request gets its own.
  EXPECT_TRUE(server_->Saw("request Topics: answered"));
  EXPECT_EQ(1, Request("Bytes3"));
  EXPECT_STREQ("abc", text_);
}

TEST_F(Dde, RejectionsAndADeadServerAreFailures) {
  ConverseWith(L"Excel System refuse");
  EXPECT_EQ(0, Request("Topics"));
  // The system returns the result of a rejected poke, and not every system distinguishes it.
  kv::ddePoke(instance_, conversation_, "Z1S1", "1", 0);
  EXPECT_TRUE(server_->Saw("poke Z1S1 \"1\\0\" (2 bytes): refused"));
  EXPECT_EQ(1, kv::ddeExecute(instance_, conversation_, "[QUIT]"));  // sent; its result is not checked
  EXPECT_TRUE(server_->Saw("\"[QUIT]\\0\" (7 bytes): refused"));

  ConverseWith(L"Excel System");
  server_->Kill();
  EXPECT_EQ(0, Request("Topics", 500));
  EXPECT_FALSE(kv::ddePoke(instance_, conversation_, "Z1S1", "1", 500));
  EXPECT_STREQ("untouched", text_);
}

TEST_F(Dde, BadArgumentsAreRejected) {
  ConverseWith(L"Excel System");
  const GuardedBytes unterminated(4);
  memset(unterminated.data(), 'A', 4);
  for (const char* bad : {static_cast<const char*>(nullptr), unterminated.as<const char>()}) {
    EXPECT_FALSE(kv::ddeConnect(instance_, bad, "System") || kv::ddeConnect(instance_, "Excel", bad));
    EXPECT_FALSE(kv::ddeExecute(instance_, conversation_, bad) || Request(bad, 200));
    EXPECT_FALSE(kv::ddePoke(instance_, conversation_, bad, "1", 200));
    EXPECT_FALSE(kv::ddePoke(instance_, conversation_, "Z1S1", bad, 200));
  }
  const std::string tooLong(300, 'x');
  EXPECT_FALSE(kv::ddeConnect(instance_, tooLong.c_str(), "System"));
  EXPECT_FALSE(kv::ddeConnect(instance_, "Excel", tooLong.c_str()));
  EXPECT_FALSE(kv::ddeConnect(0, "Excel", "System") || kv::ddeExecute(0, conversation_, "[NEW(1)]"));
  EXPECT_STREQ("untouched", text_);
}

// The first probe of ddeStartStop finds nothing writable, later ones everything: the only case in which a start
// succeeds.
class WritableAtSecondProbe {
 public:
  WritableAtSecondProbe() { looked_ = false; }

 private:
  static BOOL WINAPI IsBad(void*, UINT_PTR) { return !std::exchange(looked_, true); }
  static inline bool looked_;
  const kvtest::ReplacedImport import_{"IsBadWritePtr", reinterpret_cast<void*>(IsBad)};
};

bool IsLive(DWORD instance) {
  HSZ name = DdeCreateStringHandleA(instance, "probe", CP_WINANSI);
  return name && DdeFreeStringHandle(instance, name);
}

BOOL StartStop(BOOL start, DWORD* slot) {
  const WritableAtSecondProbe secondProbe;
  return kv::ddeStartStop(start, slot);
}

TEST_F(Dde, StartStopRejectsAWritableSlotAndAcceptsAReadOnlyOne) {
  DWORD none = 0, own = instance_;
  EXPECT_FALSE(kv::ddeStartStop(1, &none) || kv::ddeStartStop(0, &own));
  EXPECT_TRUE(none == 0 && own == instance_ && IsLive(instance_));

  DWORD slot = 0;
  EXPECT_TRUE(StartStop(1, &slot) && IsLive(slot));
  const DWORD made = slot;
  EXPECT_TRUE(StartStop(1, &slot) && slot == made);
  EXPECT_TRUE(StartStop(0, &slot) && slot == 0 && !IsLive(made));

  EXPECT_TRUE(!kv::ddeStartStop(1, nullptr) && kv::ddeStartStop(0, nullptr));
  // A read-only page: a new instance cannot be stored and is released, an old one is ended.
  GuardedBytes empty(sizeof(DWORD)), kept(sizeof(DWORD));
  DWORD* const unreadable = empty.as<DWORD>() + 1;
  EXPECT_FALSE(kv::ddeStartStop(1, unreadable) || kv::ddeStartStop(0, unreadable));
  *empty.as<DWORD>() = 0;
  *kept.as<DWORD>() = instance_;
  empty.MakeReadOnly();
  kept.MakeReadOnly();
  EXPECT_EQ(0, kv::ddeStartStop(1, empty.as<DWORD>()));
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
  void SetUp() override {
    launches.clear();
    previous_ = std::exchange(kv::shellCalls.executeExA, NoteLaunch);
  }
  void TearDown() override {
    kv::shellCalls.executeExA = previous_;
    kv::excelLink(0);
    DdeUninitialize(std::exchange(kv::excelLinkState.ddeInstance, 0));
  }
  // Opens the link in the only case in which its start succeeds.
  static BOOL Open() {
    const WritableAtSecondProbe secondProbe;
    return kv::excelLink(1);
  }
  const kv::ExcelLinkState& link_ = kv::excelLinkState;
  decltype(kv::shellCalls.executeExA) previous_;
};

TEST_F(ExcelLink, OrdinaryOpeningAndClosingDoNothing) {
  EXPECT_FALSE(kv::excelLink(1) || link_.ddeInstance || link_.systemConversation || !launches.empty());
  EXPECT_EQ(0, kv::excelLink(0));
}

TEST_F(ExcelLink, StartsTheSpreadsheetIfItIsNotRunning) {
  EXPECT_EQ(0, Open());
  EXPECT_TRUE(IsLive(link_.ddeInstance));
  EXPECT_FALSE(link_.systemConversation || link_.workbookConversation);
  ASSERT_EQ(1u, launches.size());
  const SHELLEXECUTEINFOA& info = launches[0];
  EXPECT_TRUE(info.cbSize == 60 && info.fMask == 0x140 && info.nShow == 1);
  EXPECT_EQ("open Excel.exe ", std::string(info.lpVerb) + " " + info.lpFile + " " + info.lpParameters);
  EXPECT_TRUE(!info.hwnd && !info.lpDirectory && !info.hProcess);

  const WritableAtSecondProbe secondProbe;
  EXPECT_EQ(1, kv::excelLink(0));
  EXPECT_EQ(0u, link_.ddeInstance);
}

TEST_F(ExcelLink, CreatesAWorkbookInTheRunningSpreadsheet) {
  const Server server(L"Excel System,Mappe2");
  const DWORD begin = GetTickCount();
  EXPECT_EQ(0, Open());
  // Wine does not answer the request for the topics after the execute, so it takes the whole default timeout.
  const bool isWine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  EXPECT_TRUE(!isWine || GetTickCount() - begin >= kv::kDdeTimeoutMs - 10);
  ASSERT_TRUE(link_.systemConversation && link_.workbookConversation && launches.empty());
  EXPECT_TRUE(kv::ddePoke(link_.ddeInstance, link_.workbookConversation, "Z1S1", "12,5", 0));
  EXPECT_EQ(0, kv::excelLink(0));
  EXPECT_FALSE(link_.systemConversation || link_.workbookConversation);
  EXPECT_TRUE(server.Saw("disconnect Mappe2"));
  const std::string log = server.Log();
  size_t place = 0;
  for (const char* line :
       {"connect Excel|System: accepted", "execute System \"[NEW(1)]\\0\" (9 bytes)", "request Topics: answered",
        "connect Excel|Mappe2: accepted", "disconnect System", "disconnect Mappe2"}) {
    place = log.find(line, place);
    ASSERT_NE(std::string::npos, place) << line << " is not at its position in\n" << log;
  }
}

TEST_F(ExcelLink, AWorkbookThatCannotBeReachedClosesBothConversations) {
  const Server server(L"Excel System leave");
  EXPECT_EQ(0, Open());
  EXPECT_FALSE(link_.systemConversation || link_.workbookConversation || !launches.empty());
  EXPECT_TRUE(IsLive(link_.ddeInstance) && server.Saw("connect Excel|Mappe2: not mine"));
}

TEST(DecimalPoint, OnlyTheFirstBecomesAComma) {
  GuardedBytes bytes(7);
  const auto converted = [&](const char* number) {
    memcpy(bytes.data(), number, 7);
    EXPECT_EQ(1, kv::decimalPointToComma(bytes.as<char>()));
    return std::string(bytes.as<char>(), strnlen(bytes.as<char>(), 7));
  };
  EXPECT_EQ("12,5.3", converted("12.5.3"));
  EXPECT_EQ("125", converted("125\0\0\0"));    // NOLINT(bugprone-string-literal-with-embedded-nul)
  EXPECT_EQ("1.25000", converted("1.25000"));  // no terminator within the page
  memcpy(bytes.data(), "1.2500", 7);
  bytes.MakeReadOnly();
  EXPECT_EQ(1, kv::decimalPointToComma(bytes.as<char>()));
  EXPECT_EQ(1, kv::decimalPointToComma(nullptr));
}

}  // namespace
