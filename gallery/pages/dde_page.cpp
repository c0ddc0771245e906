#include "gallery/pages.h"

#include <ddeml.h>

#include <string>

#include "gallery/resource_ids.h"
#include "kv/export/dde_client.h"
#include "kv/framework/bounded_format.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr DWORD kReplyTimeoutMs = 2000;
constexpr LONG kMaxLogCharacters = 20000;
constexpr UINT_PTR kEndTimer = 1;
constexpr UINT kEndTimerMs = 500;
constexpr UINT kEnded = WM_APP + 10;  // lParam: the conversation

// The page's instance and conversation. Not created by ddeStartStop, which rejects a writable variable.
HWND ddePage = nullptr;
DWORD instance = 0;
HCONV conversation = nullptr;

// Handles only the end of a conversation, and posts it, because this may be called during a request.
HDDEDATA CALLBACK OnTransaction(UINT type, UINT, HCONV ended, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  if (type == XTYP_DISCONNECT) PostMessageW(ddePage, kEnded, 0, reinterpret_cast<LPARAM>(ended));
  return nullptr;
}

std::string FieldText(HWND page, int controlId) {
  char text[256] = "";
  GetDlgItemTextA(page, controlId, text, sizeof(text));
  return text;
}

void AppendToLog(HWND page, const wchar_t* text) {
  HWND log = GetDlgItem(page, IDC_DDE_LOG);
  LONG end = GetWindowTextLengthW(log);
  if (end > kMaxLogCharacters) {
    SetWindowTextW(log, L"");
    end = 0;
  }
  SendMessageW(log, EM_SETSEL, end, end);
  SendMessageW(log, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
}

// Appends a line of 8-bit text, as received from servers.
void AppendLine(HWND page, const char* line) {
  std::wstring wide(lstrlenA(line), L'\0');
  const int length = static_cast<int>(wide.size());
  wide.resize(MultiByteToWideChar(CP_ACP, 0, line, length, wide.data(), length));
  AppendToLog(page, (wide + L"\r\n").c_str());
}

template <class... Values>
void Log(HWND page, const char* format, Values... values) {
  char line[1024];
  kv::FormatBoundedA(line, sizeof(line), format, values...);
  AppendLine(page, line);
}

void ShowWord(HWND page, int controlId, const void* word) {
  if (!word) {
    SetDlgItemTextW(page, controlId, (L" " + kv::ResourceText(IDS_DDE_NOT_CONNECTED) + L" ").c_str());
    return;
  }
  char text[16];
  kv::FormatBoundedA(text, sizeof(text), " %08X", word);
  SetDlgItemTextA(page, controlId, text);
}

void ShowState(HWND page) {
  const kv::ExcelLinkState& link = kv::excelLinkState;
  ShowWord(page, IDC_DDE_INSTANCE, reinterpret_cast<void*>(link.ddeInstance));
  ShowWord(page, IDC_DDE_SYSTEM, link.systemConversation);
  ShowWord(page, IDC_DDE_WORKBOOK, link.workbookConversation);
  // Enable before disabling, because the focus may have to move there.
  const bool isConnected = conversation != nullptr;
  if (!isConnected) kv::EnableControl(page, IDC_DDE_CONNECT, true);
  for (int id : {IDC_DDE_DISCONNECT, IDC_DDE_REQUEST, IDC_DDE_POKE, IDC_DDE_EXECUTE})
    kv::EnableControl(page, id, isConnected);
  if (isConnected) {
    kv::EnableControl(page, IDC_DDE_CONNECT, false);
    SetTimer(page, kEndTimer, kEndTimerMs, nullptr);
  } else {
    KillTimer(page, kEndTimer);
  }
}

void Connect(HWND page) {
  if (!instance) DdeInitializeA(&instance, OnTransaction, APPCMD_CLIENTONLY, 0);
  const std::string service = FieldText(page, IDC_DDE_SERVICE), topic = FieldText(page, IDC_DDE_TOPIC);
  conversation = kv::ddeConnect(instance, service.c_str(), topic.c_str());
  Log(page, "ddeConnect \"%s\" \"%s\" = %08X", service.c_str(), topic.c_str(), conversation);
}

void Disconnect(HWND page) {
  const BOOL done = kv::ddeDisconnect(conversation);
  conversation = nullptr;
  Log(page, "ddeDisconnect = %d", done);
}

void Request(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  char reply[kv::kDdeReplySize + 1] = "";  // the longest reply has no terminator
  const BOOL done = kv::ddeRequest(instance, conversation, item.c_str(), reply, kReplyTimeoutMs);
  Log(page, "ddeRequest \"%s\" = %d", item.c_str(), done);
  if (!reply[0]) return;
  AppendLine(page, reply);
}

void Poke(HWND page) {
  const std::string item = FieldText(page, IDC_DDE_ITEM);
  std::string text = FieldText(page, IDC_DDE_TEXT);
  if (IsDlgButtonChecked(page, IDC_DDE_COMMA)) kv::decimalPointToComma(text.data());
  HDDEDATA done = kv::ddePoke(instance, conversation, item.c_str(), text.c_str(), kReplyTimeoutMs);
  Log(page, "ddePoke \"%s\" \"%s\" = %08X", item.c_str(), text.c_str(), done);
}

void Execute(HWND page) {
  const std::string command = FieldText(page, IDC_DDE_TEXT);
  const BOOL done = kv::ddeExecute(instance, conversation, command.c_str());
  Log(page, "ddeExecute \"%s\" = %d", command.c_str(), done);
}

INT_PTR OnEnded(HWND page, HCONV ended) {
  if (!ended || ended != conversation) return TRUE;
  conversation = nullptr;
  AppendToLog(page, kv::ResourceText(IDS_DDE_ENDED).c_str());
  AppendToLog(page, L"\r\n");
  ShowState(page);
  return TRUE;
}

// Not every system reports the end.
INT_PTR OnTimer(HWND page) {
  CONVINFO info{};
  info.cb = sizeof(info);
  const bool isAlive = DdeQueryConvInfo(conversation, QID_SYNC, &info) && info.wStatus & ST_CONNECTED;
  return isAlive ? TRUE : OnEnded(page, conversation);
}

INT_PTR OnTextsChanged(HWND page) {
  kv::SetEmptyText(page, IDC_DDE_LOG, kv::ResourceText(IDS_DDE_EMPTY));
  ShowState(page);
  return TRUE;
}

void SetLink(HWND page, BOOL open) {
  const BOOL result = kv::excelLink(open);
  Log(page, "excelLink %d = %d", open, result);
}

INT_PTR OnInit(HWND page) {
  ddePage = page;
  // The desktop is a server for this service.
  SetDlgItemTextA(page, IDC_DDE_SERVICE, "Progman");
  SetDlgItemTextA(page, IDC_DDE_TOPIC, "Progman");
  SetDlgItemTextA(page, IDC_DDE_ITEM, "Groups");
  SetDlgItemTextA(page, IDC_DDE_TEXT, "12.5");
  CheckDlgButton(page, IDC_DDE_COMMA, BST_CHECKED);
  ShowState(page);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT command, UINT code) {
  if (code != BN_CLICKED) return FALSE;
  switch (command) {
    case IDC_DDE_OPEN: SetLink(page, TRUE); break;
    case IDC_DDE_CLOSE: SetLink(page, FALSE); break;
    case IDC_DDE_CONNECT: Connect(page); break;
    case IDC_DDE_DISCONNECT: Disconnect(page); break;
    case IDC_DDE_REQUEST: Request(page); break;
    case IDC_DDE_POKE: Poke(page); break;
    case IDC_DDE_EXECUTE: Execute(page); break;
    default: return FALSE;
  }
  ShowState(page);
  return TRUE;
}

INT_PTR OnDestroy() {
  if (conversation) kv::ddeDisconnect(conversation);
  if (instance) DdeUninitialize(instance);
  conversation = nullptr;
  instance = 0;
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case WM_TIMER: return OnTimer(page);
    case kv::kLanguageChanged: return OnTextsChanged(page);
    case kEnded: return OnEnded(page, reinterpret_cast<HCONV>(lParam));
    case WM_DESTROY: return OnDestroy();
    default: return FALSE;
  }
}

}  // namespace gallery
