#include "export/excel_link.h"

#include <shellapi.h>

#include <climits>
#include <cstring>

#include "export/dde_client.h"
#include "framework/shell_launch.h"

namespace kv {

ExcelLinkState excelLinkState{};

namespace {

static_assert(sizeof(ExcelLinkState) == 12);
static_assert(sizeof(SHELLEXECUTEINFOA) == 60);
static_assert((SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_DDEWAIT) == 0x140);

constexpr char kService[] = "Excel";
constexpr char kSystemTopic[] = "System";
constexpr char kWorkbookTopic[] = "Mappe2";

// The process handle that comes back is not closed: the spreadsheet program outlives the link.
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
  // The answer is of no use. Waiting for it gives the program, which the command does not wait for, time to make the
  // workbook.
  char topics[kDdeAnswerSize];
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
    StartSpreadsheet();  // connecting again is the next opening's work: the program needs its time
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
