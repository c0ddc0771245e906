#include "kv/export/dde_client.h"

#include <shellapi.h>

#include <climits>
#include <cstring>

#include "kv/framework/shell_launch.h"

namespace kv {

namespace {

constexpr int kLibraryCodePage = 0;  // the library's default

bool IsText(const char* text) {
  return !IsBadStringPtrA(text, UINT_MAX);
}

// A string handle for the duration of a call.
class DdeString {
 public:
  DdeString(DWORD instance, const char* text, int codePage)
      : instance_(instance), handle_(DdeCreateStringHandleA(instance, text, codePage)) {}
  ~DdeString() {
    if (handle_) DdeFreeStringHandle(instance_, handle_);
  }
  DdeString(const DdeString&) = delete;
  DdeString& operator=(const DdeString&) = delete;

  operator HSZ() const { return handle_; }

 private:
  DWORD instance_;
  HSZ handle_;
};

DWORD TimeoutOrDefault(DWORD timeoutMs) {
  return timeoutMs ? timeoutMs : kDdeTimeoutMs;
}

// A client without advise loops has no transactions to process.
HDDEDATA CALLBACK IgnoreTransaction(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

BOOL StartDde(DWORD* instance) {
  if (*instance != 0) return 1;
  // Not directly into the slot, which was reported as not writable: the library would fault while it holds its locks.
  DWORD made = 0;
  DdeInitializeA(&made, IgnoreTransaction, APPCMD_CLIENTONLY, 0);
  if (IsBadWritePtr(instance, sizeof(*instance))) {
    DdeUninitialize(made);
    return 0;
  }
  *instance = made;
  return 1;
}

BOOL StopDde(DWORD* instance) {
  DdeUninitialize(*instance);
  if (!IsBadWritePtr(instance, sizeof(*instance))) *instance = 0;
  return 1;
}

}  // namespace

HCONV ddeConnect(DWORD instance, const char* service, const char* topic) {
  if (!IsText(service) || !IsText(topic)) return nullptr;
  const DdeString serviceName(instance, service, CP_WINANSI);
  const DdeString topicName(instance, topic, CP_WINANSI);
  // A null handle means "any server", so a name that is too long must not become one.
  if ((*service && !serviceName) || (*topic && !topicName)) return nullptr;
  return DdeConnect(instance, serviceName, topicName, nullptr);
}

BOOL ddeDisconnect(HCONV conversation) {
  return DdeDisconnect(conversation);
}

BOOL ddeExecute(DWORD instance, HCONV conversation, const char* command) {
  if (!IsText(command)) return 0;
  auto* bytes = reinterpret_cast<BYTE*>(const_cast<char*>(command));  // only read
  HDDEDATA data = DdeCreateDataHandle(instance, bytes, lstrlenA(command) + 1, 0, nullptr, CF_TEXT, 0);
  if (!data) return 0;
  // A length of 0xFFFFFFFF marks the pointer as a data handle.
  DdeClientTransaction(reinterpret_cast<BYTE*>(data), 0xFFFFFFFF, conversation, nullptr, CF_TEXT, XTYP_EXECUTE,
                       TIMEOUT_ASYNC, nullptr);
  return 1;
}

BOOL RequestDdeText(DWORD instance, HCONV conversation, const char* item, DWORD timeoutMs,
                    char (&reply)[kDdeReplySize]) {
  if (!IsText(item)) return FALSE;
  const DdeString itemName(instance, item, kLibraryCodePage);
  HDDEDATA data = DdeClientTransaction(nullptr, 0, conversation, itemName, CF_TEXT, XTYP_REQUEST,
                                       TimeoutOrDefault(timeoutMs), nullptr);
  if (!data) return FALSE;
  std::memset(reply, 0, sizeof(reply));
  DdeGetData(data, reinterpret_cast<BYTE*>(reply), sizeof(reply), 0);
  // The data handle is not freed: replies belong to the instance and are released when it is uninitialized.
  return TRUE;
}

BOOL ddeRequest(DWORD instance, HCONV conversation, const char* item, char* destination, DWORD timeoutMs) {
  char reply[kDdeReplySize];
  if (!RequestDdeText(instance, conversation, item, timeoutMs, reply)) return 0;
  const size_t length = strnlen(reply, sizeof(reply));
  if (IsBadWritePtr(destination, length)) return 1;
  std::memcpy(destination, reply, length);
  char* end = destination + length;
  if (length < sizeof(reply) && !IsBadWritePtr(end, 1)) *end = '\0';
  return 1;
}

HDDEDATA ddePoke(DWORD instance, HCONV conversation, const char* item, const char* text, DWORD timeoutMs) {
  if (!IsText(item) || !IsText(text)) return nullptr;
  const DdeString itemName(instance, item, CP_WINANSI);
  auto* bytes = reinterpret_cast<BYTE*>(const_cast<char*>(text));  // only read
  return DdeClientTransaction(bytes, lstrlenA(text) + 1, conversation, itemName, CF_TEXT, XTYP_POKE,
                              TimeoutOrDefault(timeoutMs), nullptr);
}

BOOL ddeStartStop(BOOL start, DWORD* instance) {
  // Quirk: rejects a writable slot, which prevents the DDE library from being used.
  if (!IsBadWritePtr(instance, sizeof(*instance))) return 0;
  if (!start && !instance) return 1;
  if (IsBadReadPtr(instance, sizeof(*instance))) return 0;
  return start ? StartDde(instance) : StopDde(instance);
}

ExcelLinkState excelLinkState{};

namespace {

static_assert(sizeof(ExcelLinkState) == 12);
static_assert(sizeof(SHELLEXECUTEINFOA) == 60);
static_assert((SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_DDEWAIT) == 0x140);

constexpr char kService[] = "Excel";
constexpr char kSystemTopic[] = "System";
constexpr char kWorkbookTopic[] = "Mappe2";

// The process handle is not closed: the spreadsheet program outlives the link.
void StartSpreadsheet() {
  SHELLEXECUTEINFOA info{};
  info.cbSize = sizeof(info);
  info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_DDEWAIT;
  info.lpVerb = "open";
  info.lpFile = "Excel.exe";
  info.lpParameters = "";
  info.nShow = SW_SHOWNORMAL;
  shellCalls.executeExA(&info);
}

void EndConversation(HCONV& conversation) {
  if (!conversation) return;
  ddeDisconnect(conversation);
  conversation = nullptr;
}

void OpenWorkbook(ExcelLinkState& link) {
  ddeExecute(link.ddeInstance, link.systemConversation, "[NEW(1)]");
  // The reply is not used. Waiting for it gives the program time to create the workbook, because executing a command
  // does not wait.
  char topics[kDdeReplySize];
  RequestDdeText(link.ddeInstance, link.systemConversation, "Topics", kDdeTimeoutMs, topics);
  link.workbookConversation = ddeConnect(link.ddeInstance, kService, kWorkbookTopic);
  if (!link.workbookConversation) EndConversation(link.systemConversation);
}

BOOL OpenLink(ExcelLinkState& link) {
  if (!ddeStartStop(1, &link.ddeInstance)) return 0;
  link.systemConversation = ddeConnect(link.ddeInstance, kService, kSystemTopic);
  if (link.systemConversation) {
    OpenWorkbook(link);
  } else {
    StartSpreadsheet();  // the program needs time to start; the next opening connects
  }
  return 0;
}

BOOL CloseLink(ExcelLinkState& link) {
  EndConversation(link.systemConversation);
  EndConversation(link.workbookConversation);
  return ddeStartStop(0, &link.ddeInstance);
}

}  // namespace

BOOL excelLink(BOOL open) {
  return open ? OpenLink(excelLinkState) : CloseLink(excelLinkState);
}

BOOL decimalPointToComma(char* number) {
  if (IsBadStringPtrA(number, UINT_MAX)) return 1;
  char* point = std::strchr(number, '.');
  if (point && !IsBadWritePtr(point, 1)) *point = ',';
  return 1;
}

}  // namespace kv
